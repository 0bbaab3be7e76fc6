// Absolute-difference kernels, compiled once per instruction-set path (see
// core/isa_expand.h). Integer types use two saturating subtractions or-ed
// together; floats clear the sign bit of the difference.

#if ZEB_VEC_BYTES == 32
typedef __m256i vreg;
inline vreg vload(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
inline vreg vset1(uint8_t v) { return _mm256_set1_epi8(char(v)); }
inline vreg vset1(uint16_t v) { return _mm256_set1_epi16(short(v)); }
inline vreg vset1(float v) { return _mm256_castps_si256(_mm256_set1_ps(v)); }
inline vreg absdiff(vreg a, vreg b, uint8_t) {
    return _mm256_or_si256(_mm256_subs_epu8(a, b), _mm256_subs_epu8(b, a));
}
inline vreg absdiff(vreg a, vreg b, uint16_t) {
    return _mm256_or_si256(_mm256_subs_epu16(a, b), _mm256_subs_epu16(b, a));
}
inline vreg absdiff(vreg a, vreg b, float) {
    const __m256 d = _mm256_sub_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b));
    return _mm256_castps_si256(_mm256_and_ps(d, _mm256_castsi256_ps(_mm256_set1_epi32(0x7fffffff))));
}
template <Store kStore>
inline void vstore(void* p, vreg v) {
    if constexpr (kStore == Store::Stream)
        _mm256_stream_si256(static_cast<__m256i*>(p), v);
    else
        _mm256_store_si256(static_cast<__m256i*>(p), v);
}
#else
typedef __m128i vreg;
inline vreg vload(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline vreg vset1(uint8_t v) { return _mm_set1_epi8(char(v)); }
inline vreg vset1(uint16_t v) { return _mm_set1_epi16(short(v)); }
inline vreg vset1(float v) { return _mm_castps_si128(_mm_set1_ps(v)); }
inline vreg absdiff(vreg a, vreg b, uint8_t) { return _mm_or_si128(_mm_subs_epu8(a, b), _mm_subs_epu8(b, a)); }
inline vreg absdiff(vreg a, vreg b, uint16_t) {
    return _mm_or_si128(_mm_subs_epu16(a, b), _mm_subs_epu16(b, a));
}
inline vreg absdiff(vreg a, vreg b, float) {
    const __m128 d = _mm_sub_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b));
    return _mm_castps_si128(_mm_and_ps(d, _mm_castsi128_ps(_mm_set1_epi32(0x7fffffff))));
}
template <Store kStore>
inline void vstore(void* p, vreg v) {
    if constexpr (kStore == Store::Stream)
        _mm_stream_si128(static_cast<__m128i*>(p), v);
    else
        _mm_store_si128(static_cast<__m128i*>(p), v);
}
#endif

// dst = |a - b| over a w x h region; b is a second image or, with kConst,
// one value for every pixel. Two vectors per block keep both load ports busy.
template <class T, bool kConst, Store kStore>
void abs_diff_image(const T* a, int as, const T* b, int bs, T c, T* d, int ds, int w, int h) {
    constexpr int kVecElems = ZEB_VEC_BYTES / int(sizeof(T));
    const vreg vc = vset1(c);
    for (int y = 0; y < h; ++y) {
        const T* ra = row(a, as, y);
        const T* rb = kConst ? nullptr : row(b, bs, y);
        T* rd = row(d, ds, y);
        auto scalar = [&](int x) { rd[x] = ref::abs_diff(ra[x], kConst ? c : rb[x]); };
        auto block = [&](int x) {
            for (int k = 0; k < 2; ++k) {
                const int o = x + k * kVecElems;
                const vreg vb = kConst ? vc : vload(rb + o);
                vstore<kStore>(rd + o, absdiff(vload(ra + o), vb, T{}));
            }
        };
        drive_row<ZEB_VEC_BYTES, 2 * kVecElems>(rd, w, scalar, block);
    }
    if constexpr (kStore == Store::Stream) _mm_sfence();
}

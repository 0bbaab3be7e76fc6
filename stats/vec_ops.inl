// Integer vector operations of the statistics kernels, one set per
// instruction-set path (included by each kernel file inside its path's
// namespace). Lane order inside a vector never matters to the callers:
// they only form exact integer sums, maxima and minima.

#if ZEB_VEC_BYTES == 32
typedef __m256i V;
inline V vld(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
inline V vzero() { return _mm256_setzero_si256(); }
inline V vset8(int v) { return _mm256_set1_epi8(char(v)); }
inline V vset16(int v) { return _mm256_set1_epi16(short(v)); }
inline V vset32(int v) { return _mm256_set1_epi32(v); }
inline V vand(V a, V b) { return _mm256_and_si256(a, b); }
inline V vandnot(V a, V b) { return _mm256_andnot_si256(a, b); }
inline V vor(V a, V b) { return _mm256_or_si256(a, b); }
inline V vxor(V a, V b) { return _mm256_xor_si256(a, b); }
inline V vadd16(V a, V b) { return _mm256_add_epi16(a, b); }
inline V vadd32(V a, V b) { return _mm256_add_epi32(a, b); }
inline V vadd64(V a, V b) { return _mm256_add_epi64(a, b); }
inline V vsub16(V a, V b) { return _mm256_sub_epi16(a, b); }
inline V vcmpeq8(V a, V b) { return _mm256_cmpeq_epi8(a, b); }
inline V vsad(V a) { return _mm256_sad_epu8(a, _mm256_setzero_si256()); }
inline V vlo8(V a, V b) { return _mm256_unpacklo_epi8(a, b); }
inline V vhi8(V a, V b) { return _mm256_unpackhi_epi8(a, b); }
inline V vlo16(V a, V b) { return _mm256_unpacklo_epi16(a, b); }
inline V vhi16(V a, V b) { return _mm256_unpackhi_epi16(a, b); }
inline V vlo32(V a, V b) { return _mm256_unpacklo_epi32(a, b); }
inline V vhi32(V a, V b) { return _mm256_unpackhi_epi32(a, b); }
inline V vmadd(V a, V b) { return _mm256_madd_epi16(a, b); }
inline V vsrai16(V a) { return _mm256_srai_epi16(a, 8); }
inline V vsrli16(V a) { return _mm256_srli_epi16(a, 8); }
inline V vslli16(V a) { return _mm256_slli_epi16(a, 8); }
inline V vmul32(V a, V b) { return _mm256_mul_epu32(a, b); }
inline V vsrl64(V a) { return _mm256_srli_epi64(a, 32); }
inline V vminu8(V a, V b) { return _mm256_min_epu8(a, b); }
inline V vmaxu8(V a, V b) { return _mm256_max_epu8(a, b); }
inline V vmini16(V a, V b) { return _mm256_min_epi16(a, b); }
inline V vmaxi16(V a, V b) { return _mm256_max_epi16(a, b); }
inline V vsubsu8(V a, V b) { return _mm256_subs_epu8(a, b); }
inline V vsubsu16(V a, V b) { return _mm256_subs_epu16(a, b); }
inline V vabs8(V a) { return _mm256_abs_epi8(a); }
// Mask bytes of as many pixels as a vector of 16-bit values holds,
// widened to 16-bit all-ones / zero lanes (non-zero byte: all ones).
inline V vsel16(const uint8_t* m) {
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(m));
    return _mm256_cvtepi8_epi16(_mm_xor_si128(_mm_cmpeq_epi8(b, _mm_setzero_si128()), _mm_set1_epi8(-1)));
}
// The same for as many pixels as a vector of 32-bit values holds.
inline V vsel32(const uint8_t* m) {
    const __m128i b = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(m));
    return _mm256_cvtepi8_epi32(_mm_xor_si128(_mm_cmpeq_epi8(b, _mm_setzero_si128()), _mm_set1_epi8(-1)));
}
#else
typedef __m128i V;
inline V vld(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline V vzero() { return _mm_setzero_si128(); }
inline V vset8(int v) { return _mm_set1_epi8(char(v)); }
inline V vset16(int v) { return _mm_set1_epi16(short(v)); }
inline V vset32(int v) { return _mm_set1_epi32(v); }
inline V vand(V a, V b) { return _mm_and_si128(a, b); }
inline V vandnot(V a, V b) { return _mm_andnot_si128(a, b); }
inline V vor(V a, V b) { return _mm_or_si128(a, b); }
inline V vxor(V a, V b) { return _mm_xor_si128(a, b); }
inline V vadd16(V a, V b) { return _mm_add_epi16(a, b); }
inline V vadd32(V a, V b) { return _mm_add_epi32(a, b); }
inline V vadd64(V a, V b) { return _mm_add_epi64(a, b); }
inline V vsub16(V a, V b) { return _mm_sub_epi16(a, b); }
inline V vcmpeq8(V a, V b) { return _mm_cmpeq_epi8(a, b); }
inline V vsad(V a) { return _mm_sad_epu8(a, _mm_setzero_si128()); }
inline V vlo8(V a, V b) { return _mm_unpacklo_epi8(a, b); }
inline V vhi8(V a, V b) { return _mm_unpackhi_epi8(a, b); }
inline V vlo16(V a, V b) { return _mm_unpacklo_epi16(a, b); }
inline V vhi16(V a, V b) { return _mm_unpackhi_epi16(a, b); }
inline V vlo32(V a, V b) { return _mm_unpacklo_epi32(a, b); }
inline V vhi32(V a, V b) { return _mm_unpackhi_epi32(a, b); }
inline V vmadd(V a, V b) { return _mm_madd_epi16(a, b); }
inline V vsrai16(V a) { return _mm_srai_epi16(a, 8); }
inline V vsrli16(V a) { return _mm_srli_epi16(a, 8); }
inline V vslli16(V a) { return _mm_slli_epi16(a, 8); }
inline V vmul32(V a, V b) { return _mm_mul_epu32(a, b); }
inline V vsrl64(V a) { return _mm_srli_epi64(a, 32); }
inline V vminu8(V a, V b) { return _mm_min_epu8(a, b); }
inline V vmaxu8(V a, V b) { return _mm_max_epu8(a, b); }
inline V vmini16(V a, V b) { return _mm_min_epi16(a, b); }
inline V vmaxi16(V a, V b) { return _mm_max_epi16(a, b); }
inline V vsubsu8(V a, V b) { return _mm_subs_epu8(a, b); }
inline V vsubsu16(V a, V b) { return _mm_subs_epu16(a, b); }
inline V vabs8(V a) { return _mm_abs_epi8(a); }
inline V vsel16(const uint8_t* m) {
    const __m128i b = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(m));
    const __m128i s = _mm_xor_si128(_mm_cmpeq_epi8(b, _mm_setzero_si128()), _mm_set1_epi8(-1));
    return _mm_unpacklo_epi8(s, s);
}
inline V vsel32(const uint8_t* m) {
    __m128i s = _mm_cvtsi32_si128(load_u<int32_t>(m));
    s = _mm_xor_si128(_mm_cmpeq_epi8(s, _mm_setzero_si128()), _mm_set1_epi8(-1));
    s = _mm_unpacklo_epi8(s, s);
    return _mm_unpacklo_epi16(s, s);
}
#endif

inline constexpr int kVecBytes = ZEB_VEC_BYTES;

// Selected lanes of a vector of bytes: all ones where the mask byte is
// non-zero.
inline V vsel8(const uint8_t* m) { return vxor(vcmpeq8(vld(m), vzero()), vset8(-1)); }

// Lane sums, widened exactly.
inline uint64_t hsum64(V v) {
    uint64_t l[kVecBytes / 8];
    std::memcpy(l, &v, sizeof l);
    uint64_t t = 0;
    for (uint64_t e : l) t += e;
    return t;
}
inline uint64_t hsum32(V v) {
    uint32_t l[kVecBytes / 4];
    std::memcpy(l, &v, sizeof l);
    uint64_t t = 0;
    for (uint32_t e : l) t += e;
    return t;
}

// Unsigned 32-bit lanes squared into 64-bit sums: even lanes, then odd.
inline V vsq32to64(V v) {
    const V odd = vsrl64(v);
    return vadd64(vmul32(v, v), vmul32(odd, odd));
}

// Sum of the squares of the bytes of v, as 32-bit lane sums: the even and
// odd bytes are widened in place by masking and shifting (no shuffles),
// zero-extended for unsigned bytes, sign-extended for signed ones.
template <bool kSigned>
inline V vsq8(V v) {
    const V even = kSigned ? vsrai16(vslli16(v)) : vand(v, vset16(0xff));
    const V odd = kSigned ? vsrai16(v) : vsrli16(v);
    return vadd32(vmadd(even, even), vmadd(odd, odd));
}

// Number of selected pixels among n mask bytes.
inline int64_t count_selected(const uint8_t* m, int n) {
    const V one = vset8(1);
    V acc = vzero();
    int x = 0;
    for (; x + kVecBytes <= n; x += kVecBytes) acc = vadd64(acc, vsad(vand(vsel8(m + x), one)));
    int64_t c = int64_t(hsum64(acc));
    for (; x < n; ++x) c += m[x] != 0;
    return c;
}

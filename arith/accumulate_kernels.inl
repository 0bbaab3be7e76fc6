// Accumulation kernels, compiled once per instruction-set path (see
// core/isa_expand.h). One float vector holds kLanes accumulator elements.

inline constexpr int kLanes = ZEB_VEC_BYTES / 4;
typedef float vf __attribute__((vector_size(ZEB_VEC_BYTES)));
typedef int32_t vi __attribute__((vector_size(ZEB_VEC_BYTES)));

// kLanes source elements widened exactly to floats.
template <class T>
inline __attribute__((always_inline)) vf load_as_f(const T* p) {
    if constexpr (std::is_same_v<T, float>) {
        vf v;
        std::memcpy(&v, p, sizeof v);
        return v;
    } else {
#if ZEB_VEC_BYTES == 32
        __m256i i;
        if constexpr (std::is_same_v<T, uint8_t>)
            i = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
        else if constexpr (std::is_same_v<T, int8_t>)
            i = _mm256_cvtepi8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
        else
            i = _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
        return _mm256_cvtepi32_ps(i);
#else
        const __m128i z = _mm_setzero_si128();
        __m128i i;
        if constexpr (std::is_same_v<T, uint8_t>) {
            i = _mm_unpacklo_epi16(_mm_unpacklo_epi8(_mm_cvtsi32_si128(load_u<int32_t>(p)), z), z);
        } else if constexpr (std::is_same_v<T, int8_t>) {
            const __m128i b = _mm_cvtsi32_si128(load_u<int32_t>(p));
            i = _mm_srai_epi32(_mm_unpacklo_epi16(_mm_unpacklo_epi8(b, b), _mm_unpacklo_epi8(b, b)), 24);
        } else {
            i = _mm_unpacklo_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), z);
        }
        return _mm_cvtepi32_ps(i);
#endif
    }
}

// Where the mask byte is zero the old value stays: keep(m) is all ones in
// those lanes, select(r, a, keep) takes a there and r elsewhere.
#if ZEB_VEC_BYTES == 32
inline __attribute__((always_inline)) vf keep_lanes(const uint8_t* m) {
    const __m128i b = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(m));
    return _mm256_castsi256_ps(_mm256_cvtepi8_epi32(_mm_cmpeq_epi8(b, _mm_setzero_si128())));
}
inline __attribute__((always_inline)) vf select(vf r, vf a, vf keep) { return _mm256_blendv_ps(r, a, keep); }
#else
inline __attribute__((always_inline)) vf keep_lanes(const uint8_t* m) {
    const __m128i e = _mm_cmpeq_epi8(_mm_cvtsi32_si128(load_u<int32_t>(m)), _mm_setzero_si128());
    return _mm_castsi128_ps(_mm_unpacklo_epi16(_mm_unpacklo_epi8(e, e), _mm_unpacklo_epi8(e, e)));
}
inline __attribute__((always_inline)) vf select(vf r, vf a, vf keep) {
    return _mm_or_ps(_mm_and_ps(keep, a), _mm_andnot_ps(keep, r));
}
#endif

template <Store kStore>
inline __attribute__((always_inline)) void store_f(float* p, vf v) {
    if constexpr (kStore == Store::Stream) {
#if ZEB_VEC_BYTES == 32
        _mm256_stream_ps(p, v);
#else
        _mm_stream_ps(p, v);
#endif
    } else {
        std::memcpy(__builtin_assume_aligned(p, ZEB_VEC_BYTES), &v, sizeof v);
    }
}

// ---- Integer terms ----
// For 8-bit sources the terms s, s*s and s1*s2 are exact integers below
// 2^24 (and so are 16-bit s), so they can be formed in integer lanes and
// converted once: float(t) equals the single-precision term bit for bit.
// Blocks are 16 pixels; masked forms test 16 mask bytes at once.

// Not for signed products: 0 * -5 is -0.0 in single precision, and the
// sign of that zero reaches the accumulator (-0 + -0 stays -0).
template <class Op, class T>
inline constexpr bool kIntTerm = (std::is_same_v<T, uint8_t> && !std::is_same_v<Op, ref::Weighted>) ||
                                 (std::is_same_v<T, int8_t> && (std::is_same_v<Op, ref::Add> ||
                                                                std::is_same_v<Op, ref::Square>)) ||
                                 (std::is_same_v<T, uint16_t> && std::is_same_v<Op, ref::Add>);

inline constexpr int kIntVecs = 16 / kLanes;  // vectors per block of 16 pixels

inline __attribute__((always_inline)) __m128i zero_bytes16(const uint8_t* m) {
    return _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(m)), _mm_setzero_si128());
}

#if ZEB_VEC_BYTES == 32
// Lanes of 16 pixels whose mask byte is zero, as all-ones dwords.
inline __attribute__((always_inline)) void keep16(const uint8_t* m, vf keep[2]) {
    const __m128i k = zero_bytes16(m);
    keep[0] = _mm256_castsi256_ps(_mm256_cvtepi8_epi32(k));
    keep[1] = _mm256_castsi256_ps(_mm256_cvtepi8_epi32(_mm_unpackhi_epi64(k, k)));
}
// 16 source bytes widened straight to 32-bit lanes.
template <class T>
inline __attribute__((always_inline)) void byte_dwords16(const T* p, vi out[2]) {
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i h = _mm_unpackhi_epi64(b, b);
    out[0] = vi(std::is_signed_v<T> ? _mm256_cvtepi8_epi32(b) : _mm256_cvtepu8_epi32(b));
    out[1] = vi(std::is_signed_v<T> ? _mm256_cvtepi8_epi32(h) : _mm256_cvtepu8_epi32(h));
}
// 16 words from 16 bytes, or 16 words as they are.
template <class T>
inline __attribute__((always_inline)) __m256i words16(const T* p) {
    if constexpr (sizeof(T) == 2) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
    } else {
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        return std::is_signed_v<T> ? _mm256_cvtepi8_epi16(b) : _mm256_cvtepu8_epi16(b);
    }
}
// Widens 16 word terms to 32-bit lanes (signed terms sign-extended).
template <bool kSigned>
inline __attribute__((always_inline)) void dwords16(__m256i t, vi out[2]) {
    const __m128i lo = _mm256_castsi256_si128(t), hi = _mm256_extracti128_si256(t, 1);
    out[0] = vi(kSigned ? _mm256_cvtepi16_epi32(lo) : _mm256_cvtepu16_epi32(lo));
    out[1] = vi(kSigned ? _mm256_cvtepi16_epi32(hi) : _mm256_cvtepu16_epi32(hi));
}
inline __attribute__((always_inline)) __m256i mul16(__m256i a, __m256i b) { return _mm256_mullo_epi16(a, b); }
inline __attribute__((always_inline)) vf to_f(vi v) { return _mm256_cvtepi32_ps(__m256i(v)); }
#else
inline __attribute__((always_inline)) void keep16(const uint8_t* m, vf keep[4]) {
    const __m128i k = zero_bytes16(m);
    const __m128i lo = _mm_unpacklo_epi8(k, k), hi = _mm_unpackhi_epi8(k, k);
    keep[0] = _mm_castsi128_ps(_mm_unpacklo_epi16(lo, lo));
    keep[1] = _mm_castsi128_ps(_mm_unpackhi_epi16(lo, lo));
    keep[2] = _mm_castsi128_ps(_mm_unpacklo_epi16(hi, hi));
    keep[3] = _mm_castsi128_ps(_mm_unpackhi_epi16(hi, hi));
}
// 16 words as two registers of 8.
struct W16 {
    __m128i lo, hi;
};
template <class T>
inline __attribute__((always_inline)) W16 words16(const T* p) {
    if constexpr (sizeof(T) == 2) {
        return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)),
                _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 8))};
    } else {
        const __m128i z = _mm_setzero_si128();
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const __m128i ext = std::is_signed_v<T> ? _mm_cmpgt_epi8(z, b) : z;
        return {_mm_unpacklo_epi8(b, ext), _mm_unpackhi_epi8(b, ext)};
    }
}
template <bool kSigned>
inline __attribute__((always_inline)) void dwords16(W16 t, vi out[4]) {
    const __m128i z = _mm_setzero_si128();
    if constexpr (kSigned) {
        out[0] = vi(_mm_srai_epi32(_mm_unpacklo_epi16(z, t.lo), 16));
        out[1] = vi(_mm_srai_epi32(_mm_unpackhi_epi16(z, t.lo), 16));
        out[2] = vi(_mm_srai_epi32(_mm_unpacklo_epi16(z, t.hi), 16));
        out[3] = vi(_mm_srai_epi32(_mm_unpackhi_epi16(z, t.hi), 16));
    } else {
        out[0] = vi(_mm_unpacklo_epi16(t.lo, z));
        out[1] = vi(_mm_unpackhi_epi16(t.lo, z));
        out[2] = vi(_mm_unpacklo_epi16(t.hi, z));
        out[3] = vi(_mm_unpackhi_epi16(t.hi, z));
    }
}
inline __attribute__((always_inline)) W16 mul16(W16 a, W16 b) {
    return {_mm_mullo_epi16(a.lo, b.lo), _mm_mullo_epi16(a.hi, b.hi)};
}
inline __attribute__((always_inline)) vf to_f(vi v) { return _mm_cvtepi32_ps(__m128i(v)); }
#endif

// The 16 integer terms of pixels x .. x+15 in 32-bit lanes.
template <class Op, class T, bool kTwo>
inline __attribute__((always_inline)) void int_terms16(const T* s1, const T* s2, vi t[kIntVecs]) {
#if ZEB_VEC_BYTES == 32
    if constexpr (std::is_same_v<Op, ref::Add> && sizeof(T) == 1) {
        byte_dwords16(s1, t);
        return;
    }
#endif
    const auto a = words16(s1);
    if constexpr (std::is_same_v<Op, ref::Add>)
        dwords16<std::is_signed_v<T>>(a, t);
    else if constexpr (std::is_same_v<Op, ref::Square>)
        dwords16<false>(mul16(a, a), t);  // 0 .. 65025: unsigned
    else
        dwords16<std::is_signed_v<T>>(mul16(a, words16(s2)), t);
}

// One row: out[x] = Op(in[x], s1[x], s2[x], alpha), kept where the mask is
// zero. in and out are the same row for the in-place forms.
template <class Op, class T, bool kTwo, bool kMask, Store kStore>
void accumulate_row(const T* s1, const T* s2, const uint8_t* m, const float* in, float* out, int w,
                    float alpha) {
    const vf va = vf{} + alpha;
    auto scalar = [&](int x) {
        if (kMask && m[x] == 0) {
            out[x] = in[x];
            return;
        }
        const float b = kTwo ? ref::to_f(s2[x]) : 0.f;
        out[x] = Op::apply(in[x], ref::to_f(s1[x]), b, alpha);
    };
    if constexpr (kIntTerm<Op, T>) {
        // Blocks of 16 pixels, kUnroll / 2 of them per step.
        constexpr int kBlocks = kUnroll / 2;
        auto block = [&](int x0) {
            for (int b = 0; b < kBlocks; ++b) {
                const int x = x0 + 16 * b;
                vi t[kIntVecs];
                int_terms16<Op, T, kTwo>(s1 + x, kTwo ? s2 + x : nullptr, t);
                vf keep[kIntVecs];
                if constexpr (kMask) keep16(m + x, keep);
                for (int k = 0; k < kIntVecs; ++k) {
                    vf a;
                    std::memcpy(&a, in + x + k * kLanes, sizeof a);
                    vf r = a + to_f(t[k]);
                    if constexpr (kMask) r = select(r, a, keep[k]);
                    store_f<kStore>(out + x + k * kLanes, r);
                }
            }
        };
        drive_row<ZEB_VEC_BYTES, 16 * kBlocks>(out, w, scalar, block);
    } else {
        // kUnroll independent vectors per step keep enough loads in flight.
        auto block = [&](int x0) {
            for (int k = 0; k < kUnroll; ++k) {
                const int x = x0 + k * kLanes;
                vf a;
                std::memcpy(&a, in + x, sizeof a);
                const vf b = kTwo ? load_as_f(s2 + x) : vf{};
                vf r = Op::apply(a, load_as_f(s1 + x), b, va);
                if constexpr (kMask) r = select(r, a, keep_lanes(m + x));
                store_f<kStore>(out + x, r);
            }
        };
        drive_row<ZEB_VEC_BYTES, kUnroll * kLanes>(out, w, scalar, block);
    }
}

template <class Op, class T, bool kTwo, bool kMask, Store kStore>
void accumulate_image(const AccumArgs<T>& a, ZebiSize roi, float alpha) {
    for (int y = 0; y < roi.height; ++y) {
        accumulate_row<Op, T, kTwo, kMask, kStore>(
            row(a.s1, a.s1Step, y), kTwo ? row(a.s2, a.s2Step, y) : nullptr,
            kMask ? row(a.mask, a.maskStep, y) : nullptr, row(a.in, a.inStep, y), row(a.out, a.outStep, y),
            roi.width, alpha);
    }
    if constexpr (kStore == Store::Stream) _mm_sfence();
}

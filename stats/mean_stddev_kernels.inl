// Moment kernels (count, sum, sum of squares of the selected values),
// compiled once per instruction-set path (see core/isa_expand.h). Integer
// sums are exact in any order; the float kernels keep the lane layout of
// stats_ref.h, so both paths give the same bits.

#include "stats/vec_ops.inl"

// Pixels per block before the 32-bit lane sums are widened; small enough
// that no lane can wrap for any source type.
inline constexpr int kBlock = 4096;

template <class T, bool kMask>
void int_moments_run(const T* p, const uint8_t* m, int n, IntMoments& r) {
    constexpr int kE = kVecBytes / int(sizeof(T));
    int x = 0;
    while (x + kE <= n) {
        const int end = std::min(n, x + kBlock);
        const int x0 = x;
        V s = vzero(), q = vzero(), c = vzero();
        for (; x + kE <= end; x += kE) {
            V v = vld(p + x);
            if constexpr (sizeof(T) == 1) {
                const V sel = kMask ? vsel8(m + x) : vzero();
                if constexpr (std::is_same_v<T, uint8_t>) {
                    if (kMask) v = vand(v, sel);
                    s = vadd64(s, vsad(v));
                } else {
                    // x + 128 as an unsigned byte sums with sad; the bias
                    // comes off with the count below.
                    V u = vxor(v, vset8(0x80));
                    if (kMask) u = vand(u, sel), v = vand(v, sel);
                    s = vadd64(s, vsad(u));
                }
                q = vadd32(q, vsq8<std::is_same_v<T, int8_t>>(v));
                if (kMask) c = vadd64(c, vsad(vand(sel, vset8(1))));
            } else {
                if (kMask) {
                    const V sel = vsel16(m + x);
                    v = vand(v, sel);
                    c = vsub16(c, sel);
                }
                const V lo = vlo16(v, vzero()), hi = vhi16(v, vzero());
                s = vadd32(s, vadd32(lo, hi));
                q = vadd64(q, vadd64(vsq32to64(lo), vsq32to64(hi)));
            }
        }
        int64_t cnt = x - x0;
        if constexpr (kMask) cnt = sizeof(T) == 1 ? int64_t(hsum64(c)) : int64_t(hsum32(vmadd(c, vset16(1))));
        r.n += cnt;
        if constexpr (std::is_same_v<T, uint8_t>) {
            r.s += int64_t(hsum64(s));
            r.q += hsum32(q);
        } else if constexpr (std::is_same_v<T, int8_t>) {
            r.s += int64_t(hsum64(s)) - 128 * cnt;
            r.q += hsum32(q);
        } else {
            r.s += int64_t(hsum32(s));
            r.q += hsum64(q);
        }
    }
    int_moments(p + x, kMask ? m + x : nullptr, n - x, r);
}

// ---- single precision ----

typedef float vf __attribute__((vector_size(ZEB_VEC_BYTES)));
typedef int32_t vi32 __attribute__((vector_size(ZEB_VEC_BYTES)));
typedef double vd __attribute__((vector_size(ZEB_VEC_BYTES)));
typedef int64_t vi64 __attribute__((vector_size(ZEB_VEC_BYTES)));

inline constexpr int kFL = kVecBytes / 4;           // floats per vector
inline constexpr int kFR = kMomentLanes / kFL;      // vectors per lane set
inline constexpr int kDL = kVecBytes / 8;           // doubles per vector
inline constexpr int kDR = kMomentLanes / kDL;

// All ones in the 32-bit lanes of selected pixels (kFL mask bytes).
inline vi32 fsel(const uint8_t* m) {
#if ZEB_VEC_BYTES == 32
    const __m128i b = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(m));
    const __m128i s = _mm_xor_si128(_mm_cmpeq_epi8(b, _mm_setzero_si128()), _mm_set1_epi8(-1));
    return vi32(_mm256_cvtepi8_epi32(s));
#else
    const __m128i b = _mm_cvtsi32_si128(load_u<int32_t>(m));
    __m128i s = _mm_xor_si128(_mm_cmpeq_epi8(b, _mm_setzero_si128()), _mm_set1_epi8(-1));
    s = _mm_unpacklo_epi8(s, s);
    return vi32(_mm_unpacklo_epi16(s, s));
#endif
}

// All ones in the 64-bit lanes of selected pixels (kDL mask bytes).
inline vi64 dsel(const uint8_t* m) {
#if ZEB_VEC_BYTES == 32
    const __m128i b = _mm_cvtsi32_si128(load_u<int32_t>(m));
    const __m128i s = _mm_xor_si128(_mm_cmpeq_epi8(b, _mm_setzero_si128()), _mm_set1_epi8(-1));
    return vi64(_mm256_cvtepi8_epi64(s));
#else
    const __m128i b = _mm_cvtsi32_si128(load_u<uint16_t>(m));
    __m128i s = _mm_xor_si128(_mm_cmpeq_epi8(b, _mm_setzero_si128()), _mm_set1_epi8(-1));
    s = _mm_unpacklo_epi8(s, s);
    s = _mm_unpacklo_epi16(s, s);
    return vi64(_mm_unpacklo_epi32(s, s));
#endif
}

// kDL floats widened to double.
inline vd load_pd(const float* p) {
#if ZEB_VEC_BYTES == 32
    return vd(_mm256_cvtps_pd(_mm_loadu_ps(p)));
#else
    return vd(_mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)))));
#endif
}

// Adds a run of columns (starting at a multiple of kMomentLanes) to the
// sixteen sum and square lanes ls, lq.
template <bool kMask>
void float_moments_run(const float* p, const uint8_t* m, int n, float* ls, float* lq) {
    // Loaded and stored one vector at a time, so that the compiler keeps
    // the lanes in registers.
    vf s[kFR], q[kFR];
    for (int k = 0; k < kFR; ++k) {
        std::memcpy(&s[k], ls + k * kFL, sizeof(vf));
        std::memcpy(&q[k], lq + k * kFL, sizeof(vf));
    }
    int x = 0;
    for (; x + kMomentLanes <= n; x += kMomentLanes)
        for (int k = 0; k < kFR; ++k) {
            vf v;
            std::memcpy(&v, p + x + k * kFL, sizeof v);
            if constexpr (kMask) v = vf(vi32(v) & fsel(m + x + k * kFL));
            s[k] += v;
            q[k] += v * v;
        }
    for (int k = 0; k < kFR; ++k) {
        std::memcpy(ls + k * kFL, &s[k], sizeof(vf));
        std::memcpy(lq + k * kFL, &q[k], sizeof(vf));
    }
    float_moments(p + x, kMask ? m + x : nullptr, n - x, ls, lq);
}

// Adds (x - mean)^2 of a run of columns to the sixteen double lanes ld.
template <bool kMask>
void deviation_run(const float* p, const uint8_t* m, int n, double mean, double* ld) {
    vd acc[kDR];
    for (int k = 0; k < kDR; ++k) std::memcpy(&acc[k], ld + k * kDL, sizeof(vd));
    const vd mv = vd{} + mean;
    int x = 0;
    for (; x + kMomentLanes <= n; x += kMomentLanes)
        for (int k = 0; k < kDR; ++k) {
            vd d = load_pd(p + x + k * kDL) - mv;
            if constexpr (kMask) d = vd(vi64(d) & dsel(m + x + k * kDL));
            acc[k] += d * d;
        }
    for (int k = 0; k < kDR; ++k) std::memcpy(ld + k * kDL, &acc[k], sizeof(vd));
    deviation(p + x, kMask ? m + x : nullptr, n - x, mean, ld);
}

// Row and column kernels of the separable filters (row pass, column pass and
// the Gaussian filter built on them), compiled once per instruction-set path
// (see core/isa_expand.h). Every vector loop has a scalar twin that performs
// the same operations in the same order, so heads, tails and whole rows agree
// bit for bit on every path.

using namespace ::zeb::pipe;

inline constexpr int kLanes = ZEB_VEC_BYTES / 4;  // floats per vector
inline constexpr int kShorts = ZEB_VEC_BYTES / 2;  // 16-bit values per vector
// Independent accumulators of the float kernels: each output is a serial
// chain of k additions, so enough chains must be in flight to hide the
// adder's latency.
inline constexpr int kFloatUnroll = kUnroll < 4 ? 4 : kUnroll;

#if ZEB_VEC_BYTES == 32
typedef __m256 vf;
typedef __m256i vi;
inline vf f_set1(float v) { return _mm256_set1_ps(v); }
inline vf f_add(vf a, vf b) { return _mm256_add_ps(a, b); }
inline vf f_mul(vf a, vf b) { return _mm256_mul_ps(a, b); }
inline vf f_clamp(vf v, vf lo, vf hi) { return _mm256_min_ps(_mm256_max_ps(v, lo), hi); }
inline vi f_cvt(vf v) { return _mm256_cvtps_epi32(v); }
inline vi f_cvtt(vf v) { return _mm256_cvttps_epi32(v); }
inline vf i_to_f(vi v) { return _mm256_cvtepi32_ps(v); }
inline vi i_zero() { return _mm256_setzero_si256(); }
inline vi i_set1(int32_t v) { return _mm256_set1_epi32(v); }
inline vi i_add(vi a, vi b) { return _mm256_add_epi32(a, b); }
inline vi i_madd(vi a, vi b) { return _mm256_madd_epi16(a, b); }
inline vi i_lo16(vi a, vi b) { return _mm256_unpacklo_epi16(a, b); }
inline vi i_hi16(vi a, vi b) { return _mm256_unpackhi_epi16(a, b); }
template <int n>
inline vi i_sra(vi v) { return _mm256_srai_epi32(v, n); }
inline vi i_packs(vi a, vi b) { return _mm256_packs_epi32(a, b); }
inline vi i_loadu(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
inline void i_storeu(void* p, vi v) { _mm256_storeu_si256(static_cast<__m256i*>(p), v); }

template <class T>
inline vf load_f(const T* p) {
    if constexpr (std::is_same_v<T, float>) {
        return _mm256_loadu_ps(p);
    } else if constexpr (std::is_same_v<T, uint8_t>) {
        return _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p))));
    } else if constexpr (std::is_same_v<T, int16_t>) {
        return _mm256_cvtepi32_ps(_mm256_cvtepi16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))));
    } else {
        return _mm256_cvtepi32_ps(_mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))));
    }
}
// kShorts samples widened to 16-bit lanes.
template <class T>
inline vi load16(const T* p) {
    if constexpr (std::is_same_v<T, uint8_t>)
        return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
    else
        return i_loadu(p);
}
// The two 128-bit halves of an int32 vector, low elements first.
inline __m128i half_lo(vi v) { return _mm256_castsi256_si128(v); }
inline __m128i half_hi(vi v) { return _mm256_extracti128_si256(v, 1); }
// kShorts bytes from 16-bit lanes that already hold byte values.
inline void store_bytes16(void* p, vi v, bool isSigned) {
    const vi b = isSigned ? _mm256_packs_epi16(v, v) : _mm256_packus_epi16(v, v);
    _mm_storeu_si128(static_cast<__m128i*>(p), _mm256_castsi256_si128(_mm256_permute4x64_epi64(b, 0x08)));
}
#else
typedef __m128 vf;
typedef __m128i vi;
inline vf f_set1(float v) { return _mm_set1_ps(v); }
inline vf f_add(vf a, vf b) { return _mm_add_ps(a, b); }
inline vf f_mul(vf a, vf b) { return _mm_mul_ps(a, b); }
inline vf f_clamp(vf v, vf lo, vf hi) { return _mm_min_ps(_mm_max_ps(v, lo), hi); }
inline vi f_cvt(vf v) { return _mm_cvtps_epi32(v); }
inline vi f_cvtt(vf v) { return _mm_cvttps_epi32(v); }
inline vf i_to_f(vi v) { return _mm_cvtepi32_ps(v); }
inline vi i_zero() { return _mm_setzero_si128(); }
inline vi i_set1(int32_t v) { return _mm_set1_epi32(v); }
inline vi i_add(vi a, vi b) { return _mm_add_epi32(a, b); }
inline vi i_madd(vi a, vi b) { return _mm_madd_epi16(a, b); }
inline vi i_lo16(vi a, vi b) { return _mm_unpacklo_epi16(a, b); }
inline vi i_hi16(vi a, vi b) { return _mm_unpackhi_epi16(a, b); }
template <int n>
inline vi i_sra(vi v) { return _mm_srai_epi32(v, n); }
inline vi i_packs(vi a, vi b) { return _mm_packs_epi32(a, b); }
inline vi i_loadu(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline void i_storeu(void* p, vi v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }

template <class T>
inline vf load_f(const T* p) {
    const __m128i z = _mm_setzero_si128();
    if constexpr (std::is_same_v<T, float>) {
        return _mm_loadu_ps(p);
    } else if constexpr (std::is_same_v<T, uint8_t>) {
        const __m128i b = _mm_cvtsi32_si128(load_u<int32_t>(p));
        return _mm_cvtepi32_ps(_mm_unpacklo_epi16(_mm_unpacklo_epi8(b, z), z));
    } else if constexpr (std::is_same_v<T, int16_t>) {
        const __m128i s = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
        return _mm_cvtepi32_ps(_mm_srai_epi32(_mm_unpacklo_epi16(s, s), 16));
    } else {
        return _mm_cvtepi32_ps(_mm_unpacklo_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), z));
    }
}
template <class T>
inline vi load16(const T* p) {
    if constexpr (std::is_same_v<T, uint8_t>)
        return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), _mm_setzero_si128());
    else
        return i_loadu(p);
}
inline __m128i half_lo(vi v) { return v; }
inline __m128i half_hi(vi v) { return v; }
inline void store_bytes16(void* p, vi v, bool isSigned) {
    const vi b = isSigned ? _mm_packs_epi16(v, v) : _mm_packus_epi16(v, v);
    _mm_storel_epi64(static_cast<__m128i*>(p), b);
}
#endif

// kLanes converted values; clamps first so that the packs are exact.
template <class D, Cvt C>
inline void store_f(D* p, vf v) {
    if constexpr (std::is_same_v<D, float>) {
        std::memcpy(p, &v, sizeof v);
    } else {
        v = f_clamp(v, f_set1(Range<D>::lo), f_set1(Range<D>::hi));
        const vi i = C == Cvt::Trunc ? f_cvtt(v) : f_cvt(v);
        const __m128i lo = half_lo(i), hi = half_hi(i);
        __m128i s16;
        if constexpr (std::is_same_v<D, uint16_t>) {
            const __m128i bias = _mm_set1_epi32(32768);
            s16 = _mm_xor_si128(_mm_packs_epi32(_mm_sub_epi32(lo, bias), _mm_sub_epi32(hi, bias)),
                                _mm_set1_epi16(int16_t(0x8000)));
        } else {
            s16 = _mm_packs_epi32(lo, hi);
        }
        if constexpr (sizeof(D) == 2) {
            if constexpr (kLanes == 8)
                _mm_storeu_si128(reinterpret_cast<__m128i*>(p), s16);
            else
                _mm_storel_epi64(reinterpret_cast<__m128i*>(p), s16);
        } else {
            const __m128i b = std::is_signed_v<D> ? _mm_packs_epi16(s16, s16) : _mm_packus_epi16(s16, s16);
            if constexpr (kLanes == 8) {
                _mm_storel_epi64(reinterpret_cast<__m128i*>(p), b);
            } else {
                const int32_t w = _mm_cvtsi128_si32(b);
                std::memcpy(p, &w, 4);
            }
        }
    }
}

// ---------------------------------------------------------------------------
// Float taps along a line: out[e] = sum over i of c(i) * in[e + i*stride],
// i in index order, then times post (kPost), clamped and converted to D.
// The row pass uses stride = channels; K is 3, 5 or 0 (any length).
template <class S, class D, Cvt C, bool kPost, int K, class Coef>
void float_taps(const S* in, D* out, int n, int stride, int k, Coef coef, float post) {
    const int kk = K ? K : k;
    constexpr int U = kFloatUnroll;
    float cs[K ? K : 1];
    if constexpr (K != 0)
        for (int i = 0; i < K; ++i) cs[i] = coef(i);
    auto cf = [&](int i) { return K ? cs[i] : coef(i); };
    int e = 0;
    for (; e + U * kLanes <= n; e += U * kLanes) {
        vf acc[U];
        const vf c0 = f_set1(cf(0));
        for (int u = 0; u < U; ++u) acc[u] = f_mul(c0, load_f(in + e + u * kLanes));
        for (int i = 1; i < kk; ++i) {
            const vf ci = f_set1(cf(i));
            const S* p = in + e + std::ptrdiff_t(i) * stride;
            for (int u = 0; u < U; ++u) acc[u] = f_add(acc[u], f_mul(ci, load_f(p + u * kLanes)));
        }
        for (int u = 0; u < U; ++u) store_f<D, C>(out + e + u * kLanes, kPost ? f_mul(acc[u], f_set1(post)) : acc[u]);
    }
    for (; e + kLanes <= n; e += kLanes) {
        vf acc = f_mul(f_set1(cf(0)), load_f(in + e));
        for (int i = 1; i < kk; ++i) acc = f_add(acc, f_mul(f_set1(cf(i)), load_f(in + e + std::ptrdiff_t(i) * stride)));
        store_f<D, C>(out + e, kPost ? f_mul(acc, f_set1(post)) : acc);
    }
    for (; e < n; ++e) {
        float acc = cf(0) * float(in[e]);
        for (int i = 1; i < kk; ++i) acc = acc + cf(i) * float(in[e + std::ptrdiff_t(i) * stride]);
        out[e] = finish_scalar<D, C, kPost>(acc, post);
    }
}

// Float taps across rows: out[e] = sum over j of c(j) * rows[j][e]. With
// kTailTrunc the values after the last whole block of 16 are truncated
// while the others round as C says.
template <class S, class D, Cvt C, bool kPost, bool kTailTrunc, int K, class Coef>
void float_rows(const S* const* rows, D* out, int n, int k, Coef coef, float post) {
    const int kk = K ? K : k;
    constexpr int U = kFloatUnroll;
    float cs[K ? K : 1];
    const S* rs[K ? K : 1];
    if constexpr (K != 0)
        for (int i = 0; i < K; ++i) cs[i] = coef(i), rs[i] = rows[i];
    auto cf = [&](int i) { return K ? cs[i] : coef(i); };
    auto rp = [&](int i) { return K ? rs[i] : rows[i]; };
    const int body = kTailTrunc ? n - n % 16 : n;
    int e = 0;
    for (; e + U * kLanes <= body; e += U * kLanes) {
        vf acc[U];
        const vf c0 = f_set1(cf(0));
        for (int u = 0; u < U; ++u) acc[u] = f_mul(c0, load_f(rp(0) + e + u * kLanes));
        for (int j = 1; j < kk; ++j) {
            const vf cj = f_set1(cf(j));
            const S* p = rp(j) + e;
            for (int u = 0; u < U; ++u) acc[u] = f_add(acc[u], f_mul(cj, load_f(p + u * kLanes)));
        }
        for (int u = 0; u < U; ++u) store_f<D, C>(out + e + u * kLanes, kPost ? f_mul(acc[u], f_set1(post)) : acc[u]);
    }
    for (; e + kLanes <= body; e += kLanes) {
        vf acc = f_mul(f_set1(cf(0)), load_f(rp(0) + e));
        for (int j = 1; j < kk; ++j) acc = f_add(acc, f_mul(f_set1(cf(j)), load_f(rp(j) + e)));
        store_f<D, C>(out + e, kPost ? f_mul(acc, f_set1(post)) : acc);
    }
    for (; e < n; ++e) {
        float acc = cf(0) * float(rp(0)[e]);
        for (int j = 1; j < kk; ++j) acc = acc + cf(j) * float(rp(j)[e]);
        out[e] = e < body ? finish_scalar<D, C, kPost>(acc, post) : finish_scalar<D, Cvt::Trunc, kPost>(acc, post);
    }
}

// ---------------------------------------------------------------------------
// Exact integer taps with 16-bit coefficients: pairs of taps are
// interleaved and multiplied-added into 32-bit sums. Callers guarantee that
// no sum leaves the 32-bit range. Fin turns the exact sum into the output.

inline vi coef_pair(int16_t a, int16_t b) { return i_set1(int32_t(uint32_t(uint16_t(a)) | (uint32_t(uint16_t(b)) << 16))); }

// Row pass of the 16s and 8u16s forms: S * scale, clamped, truncated.
struct FinScale {
    float scale;
    int16_t scalar(int32_t s) const { return cvt_scalar<int16_t, Cvt::Trunc>(float(s) * scale); }
    vi vec(vi lo, vi hi) const {
        const vf sc = f_set1(scale), a = f_set1(-32768.f), b = f_set1(32767.f);
        return i_packs(f_cvtt(f_clamp(f_mul(i_to_f(lo), sc), a, b)), f_cvtt(f_clamp(f_mul(i_to_f(hi), sc), a, b)));
    }
};
template <class S, class Fin>
void int_taps(const S* in, int16_t* out, int n, int stride, int k, const int16_t* c, Fin fin) {
    int e = 0;
    for (; e + kShorts <= n; e += kShorts) {
        vi lo = i_zero(), hi = i_zero();
        int i = 0;
        for (; i + 1 < k; i += 2) {
            const vi a = load16(in + e + std::ptrdiff_t(i) * stride);
            const vi b = load16(in + e + std::ptrdiff_t(i + 1) * stride);
            const vi cc = coef_pair(c[i], c[i + 1]);
            lo = i_add(lo, i_madd(i_lo16(a, b), cc));
            hi = i_add(hi, i_madd(i_hi16(a, b), cc));
        }
        if (i < k) {
            const vi a = load16(in + e + std::ptrdiff_t(i) * stride);
            const vi cc = coef_pair(c[i], 0);
            lo = i_add(lo, i_madd(i_lo16(a, i_zero()), cc));
            hi = i_add(hi, i_madd(i_hi16(a, i_zero()), cc));
        }
        i_storeu(out + e, fin.vec(lo, hi));
    }
    for (; e < n; ++e) {
        int32_t s = 0;
        for (int i = 0; i < k; ++i) s += int32_t(c[i]) * int32_t(in[e + std::ptrdiff_t(i) * stride]);
        out[e] = fin.scalar(s);
    }
}

// The 8u Gaussian in unsigned 16-bit lanes, one high-half multiply per
// pair of taps. The kernel is symmetric (c[i] == c[k-1-i], as built by the
// kernel setup), a = k/2 its centre; the outer coefficients are at most
// 2048 and enter as c * 16, the centre (up to 4096) as c * 8:
//   row     R = floor(s[a] * c[a] / 32) + sum over i < a of
//               floor((s[i] + s[k-1-i]) * c[i] / 32)         (src * 128)
//   column  C = floor(R[a] * c[a] / 8192) + sum over j < a of
//               floor(((R[j] + R[k-1-j] + 1) >> 1) * c[j] / 4096)   (src * 64)
//   result  min((C + 32) >> 6, 255)
// The coefficients sum to at most 8192 (each is rounded from its exact
// share of 4096 and at most 8192 of them reach 1), so no 16-bit sum overflows.
#if ZEB_VEC_BYTES == 32
inline vi u16_mulhi(vi a, vi b) { return _mm256_mulhi_epu16(a, b); }
inline vi u16_add(vi a, vi b) { return _mm256_add_epi16(a, b); }
inline vi u16_set1(uint16_t v) { return _mm256_set1_epi16(int16_t(v)); }
template <int n>
inline vi u16_shl(vi v) { return _mm256_slli_epi16(v, n); }
template <int n>
inline vi u16_shr(vi v) { return _mm256_srli_epi16(v, n); }
#else
inline vi u16_mulhi(vi a, vi b) { return _mm_mulhi_epu16(a, b); }
inline vi u16_add(vi a, vi b) { return _mm_add_epi16(a, b); }
inline vi u16_set1(uint16_t v) { return _mm_set1_epi16(int16_t(v)); }
template <int n>
inline vi u16_shl(vi v) { return _mm_slli_epi16(v, n); }
template <int n>
inline vi u16_shr(vi v) { return _mm_srli_epi16(v, n); }
#endif

inline void gauss8_taps(const uint8_t* in, uint16_t* out, int n, int stride, int k, const uint16_t* c) {
    constexpr int U = kUnroll > 2 ? 2 : kUnroll;
    const int a = k / 2;
    const std::ptrdiff_t mid = std::ptrdiff_t(a) * stride;
    int e = 0;
    for (; e + U * kShorts <= n; e += U * kShorts) {
        vi acc[U];
        const vi ca = u16_set1(uint16_t(c[a] << 3));
        for (int u = 0; u < U; ++u) acc[u] = u16_mulhi(u16_shl<8>(load16(in + e + mid + u * kShorts)), ca);
        for (int i = 0; i < a; ++i) {
            const vi ci = u16_set1(uint16_t(c[i] << 4));
            const uint8_t* p = in + e + std::ptrdiff_t(i) * stride;
            const uint8_t* q = in + e + std::ptrdiff_t(k - 1 - i) * stride;
            for (int u = 0; u < U; ++u)
                acc[u] = u16_add(acc[u], u16_mulhi(u16_shl<7>(u16_add(load16(p + u * kShorts), load16(q + u * kShorts))), ci));
        }
        for (int u = 0; u < U; ++u) i_storeu(out + e + u * kShorts, acc[u]);
    }
    for (; e < n; ++e) {
        uint32_t acc = (uint32_t(in[e + mid]) * c[a]) >> 5;
        for (int i = 0; i < a; ++i)
            acc += ((uint32_t(in[e + std::ptrdiff_t(i) * stride]) + in[e + std::ptrdiff_t(k - 1 - i) * stride]) * c[i]) >> 5;
        out[e] = uint16_t(acc);
    }
}

#if ZEB_VEC_BYTES == 32
inline vi u16_avg(vi a, vi b) { return _mm256_avg_epu16(a, b); }
#else
inline vi u16_avg(vi a, vi b) { return _mm_avg_epu16(a, b); }
#endif

inline void gauss8_rows(const uint16_t* const* rows, uint8_t* out, int n, int k, const uint16_t* c) {
    constexpr int U = kUnroll > 2 ? 2 : kUnroll;
    const int a = k / 2;
    int e = 0;
    for (; e + U * kShorts <= n; e += U * kShorts) {
        vi acc[U];
        const vi ca = u16_set1(uint16_t(c[a] << 3));
        for (int u = 0; u < U; ++u) acc[u] = u16_mulhi(i_loadu(rows[a] + e + u * kShorts), ca);
        for (int j = 0; j < a; ++j) {
            const vi cj = u16_set1(uint16_t(c[j] << 4));
            const uint16_t* p = rows[j] + e;
            const uint16_t* q = rows[k - 1 - j] + e;
            for (int u = 0; u < U; ++u)
                acc[u] = u16_add(acc[u], u16_mulhi(u16_avg(i_loadu(p + u * kShorts), i_loadu(q + u * kShorts)), cj));
        }
        for (int u = 0; u < U; ++u)
            store_bytes16(out + e + u * kShorts, u16_shr<6>(u16_add(acc[u], u16_set1(32))), false);
    }
    for (; e < n; ++e) {
        uint32_t acc = (uint32_t(rows[a][e]) * c[a]) >> 13;
        for (int j = 0; j < a; ++j) acc += (((uint32_t(rows[j][e]) + rows[k - 1 - j][e] + 1) >> 1) * c[j]) >> 12;
        const uint32_t v = (acc + 32) >> 6;
        out[e] = uint8_t(v > 255 ? 255 : v);
    }
}

// ---------------------------------------------------------------------------
// Integer shortcuts that give exactly the single-precision results. They run
// only where the single-precision arithmetic is itself exact: a divisor of
// +-2^s makes every scaled coefficient exact, and small coefficients keep
// every product and partial sum below 2^24, so the float sum equals the
// integer sum S scaled by 1/divisor, bit for bit.

// Row pass of 8u sources: |k[i]| <= 127 and sum |k[i]| <= 128, so pairs of
// taps fit the unsigned-by-signed byte multiply-add and every 16-bit partial
// sum stays within +-32640. Output trunc(S / divisor).
inline vi trunc_shift16(vi s, int shift, bool negate) {
#if ZEB_VEC_BYTES == 32
    const vi bias = _mm256_and_si256(_mm256_srai_epi16(s, 15), _mm256_set1_epi16(int16_t((1 << shift) - 1)));
    vi q = _mm256_sra_epi16(_mm256_add_epi16(s, bias), _mm_cvtsi32_si128(shift));
    return negate ? _mm256_sub_epi16(_mm256_setzero_si256(), q) : q;
#else
    const vi bias = _mm_and_si128(_mm_srai_epi16(s, 15), _mm_set1_epi16(int16_t((1 << shift) - 1)));
    vi q = _mm_sra_epi16(_mm_add_epi16(s, bias), _mm_cvtsi32_si128(shift));
    return negate ? _mm_sub_epi16(_mm_setzero_si128(), q) : q;
#endif
}

inline void u8_pair_taps(const uint8_t* in, int16_t* out, int n, int stride, int k, const int16_t* c, int shift,
                         bool negate, float scale) {
    constexpr int kBytes = ZEB_VEC_BYTES;
    // Byte pairs of coefficients (the last padded with 0), built once per row;
    // the shortcut is taken for k <= 128 only.
    vi pairs[64];
    const int np = (k + 1) / 2;
    for (int p = 0; p < np; ++p) {
        const int16_t cc = int16_t(uint16_t(uint8_t(c[2 * p])) | uint16_t(uint8_t(2 * p + 1 < k ? c[2 * p + 1] : 0)) << 8);
#if ZEB_VEC_BYTES == 32
        pairs[p] = _mm256_set1_epi16(cc);
#else
        pairs[p] = _mm_set1_epi16(cc);
#endif
    }
    int e = 0;
    for (; e + kBytes <= n; e += kBytes) {
        vi lo = i_zero(), hi = i_zero();
        for (int p = 0; p < np; ++p) {
            const int i = 2 * p;
            const vi a = i_loadu(in + e + std::ptrdiff_t(i) * stride);
            const vi b = i + 1 < k ? i_loadu(in + e + std::ptrdiff_t(i + 1) * stride) : i_zero();
            const vi vc = pairs[p];
#if ZEB_VEC_BYTES == 32
            lo = _mm256_add_epi16(lo, _mm256_maddubs_epi16(_mm256_unpacklo_epi8(a, b), vc));
            hi = _mm256_add_epi16(hi, _mm256_maddubs_epi16(_mm256_unpackhi_epi8(a, b), vc));
#else
            lo = _mm_add_epi16(lo, _mm_maddubs_epi16(_mm_unpacklo_epi8(a, b), vc));
            hi = _mm_add_epi16(hi, _mm_maddubs_epi16(_mm_unpackhi_epi8(a, b), vc));
#endif
        }
        lo = trunc_shift16(lo, shift, negate);
        hi = trunc_shift16(hi, shift, negate);
#if ZEB_VEC_BYTES == 32
        i_storeu(out + e, _mm256_permute2x128_si256(lo, hi, 0x20));
        i_storeu(out + e + 16, _mm256_permute2x128_si256(lo, hi, 0x31));
#else
        i_storeu(out + e, lo);
        i_storeu(out + e + 8, hi);
#endif
    }
    const FinScale fin{scale};
    for (; e < n; ++e) {
        int32_t s = 0;
        for (int i = 0; i < k; ++i) s += int32_t(c[i]) * int32_t(in[e + std::ptrdiff_t(i) * stride]);
        out[e] = fin.scalar(s);
    }
}

// Column pass of 16s rows into integer D: sum |k[j]| < 512, so S stays
// below 2^24 and converts exactly; rounding as the single-precision path
// (nearest in whole blocks of 16, truncation after).
template <class D>
void s16_exact_rows(const int16_t* const* rows, D* out, int n, int k, const int16_t* c, float scale) {
    const int body = n - n % 16;
    const vf sc = f_set1(scale);
    // Coefficient pairs (the last one padded with 0) built once per row.
    constexpr int kMaxPairs = 16;
    vi pairs[kMaxPairs];
    const int np = (k + 1) / 2;
    for (int p = 0; p < np && p < kMaxPairs; ++p) pairs[p] = coef_pair(c[2 * p], 2 * p + 1 < k ? c[2 * p + 1] : 0);
    auto pair = [&](int p) { return p < kMaxPairs ? pairs[p] : coef_pair(c[2 * p], 2 * p + 1 < k ? c[2 * p + 1] : 0); };
    // Two blocks per step keep two independent chains in flight.
    auto block = [&](int e0, int nb) {
        vi a0[2], a1[2];
        for (int u = 0; u < nb; ++u) a0[u] = a1[u] = i_zero();
        for (int p = 0; p < np; ++p) {
            const int16_t* r0 = rows[2 * p];
            const int16_t* r1 = 2 * p + 1 < k ? rows[2 * p + 1] : nullptr;
            const vi cc = pair(p);
            for (int u = 0; u < nb; ++u) {
                const int e = e0 + u * kShorts;
                const vi a = i_loadu(r0 + e), b = r1 ? i_loadu(r1 + e) : i_zero();
                a0[u] = i_add(a0[u], i_madd(i_lo16(a, b), cc));
                a1[u] = i_add(a1[u], i_madd(i_hi16(a, b), cc));
            }
        }
        for (int u = 0; u < nb; ++u) {
            // |S * scale| < 2^24: rounding first and saturating in the packs
            // equals clamping first.
            const vi r = i_packs(f_cvt(f_mul(i_to_f(a0[u]), sc)), f_cvt(f_mul(i_to_f(a1[u]), sc)));
            if constexpr (sizeof(D) == 2)
                i_storeu(out + e0 + u * kShorts, r);
            else
                store_bytes16(out + e0 + u * kShorts, r, std::is_signed_v<D>);
        }
    };
    int e = 0;
    for (; e + 2 * kShorts <= body; e += 2 * kShorts) block(e, 2);
    for (; e + kShorts <= body; e += kShorts) block(e, 1);
    for (; e < n; ++e) {
        float acc = float(c[0]) * scale * float(rows[0][e]);
        for (int j = 1; j < k; ++j) acc = acc + float(c[j]) * scale * float(rows[j][e]);
        out[e] = e < body ? cvt_scalar<D, Cvt::Nearest>(acc) : cvt_scalar<D, Cvt::Trunc>(acc);
    }
}

// ---------------------------------------------------------------------------
// One row of a row pass with its horizontal border. span(in, out, count)
// computes `count` outputs where output e reads in[e + i*ch]. The interior
// reads the source row directly; the at most k-1 outputs at either end that
// need pixels outside the row read a short border-extended copy (edge, room
// for 2 * (2k - 2) * ch samples) built with the shared border rules.
template <class S, class D, class Span>
void row_with_border(const S* src, D* dst, int w, int ch, int k, int a, const border::Spec& bs, const S* value,
                     S* edge, Span&& span) {
    const int xl = bs.left ? 0 : (a < w ? a : w);
    int xr = bs.right ? w : w - (k - 1 - a);
    if (xr < xl) xr = xl;
    if (xr > xl) span(src + std::ptrdiff_t(xl - a) * ch, dst + std::ptrdiff_t(xl) * ch, (xr - xl) * ch);
    // Positions p0 .. p0+count-1 of the extended row into edge.
    auto extend = [&](int p0, int count) {
        for (int t = 0; t < count; ++t) {
            const int p = p0 + t;
            S* d = edge + std::ptrdiff_t(t) * ch;
            const bool inMem = (p < 0 && bs.left) || (p >= w && bs.right);
            const int j = inMem ? p : border::map_index(p, w, bs.mode);
            for (int c = 0; c < ch; ++c) d[c] = j < 0 && !inMem ? value[c] : src[std::ptrdiff_t(j) * ch + c];
        }
    };
    if (xl > 0) {
        extend(-a, xl + k - 1);
        span(edge, dst, xl * ch);
    }
    if (xr < w) {
        extend(xr - a, w - xr + k - 1);
        span(edge, dst + std::ptrdiff_t(xr) * ch, (w - xr) * ch);
    }
}

// ---------------------------------------------------------------------------
// Spans of the row and column passes, with the 3- and 5-tap kernels
// unrolled. Results do not depend on which one runs.

template <class S, class D, Cvt C, bool kPost, class Coef>
auto float_row_span(int k, int ch, Coef coef, float post) {
    return [=](const S* in, D* out, int n) {
        if (k == 3)
            float_taps<S, D, C, kPost, 3>(in, out, n, ch, k, coef, post);
        else if (k == 5)
            float_taps<S, D, C, kPost, 5>(in, out, n, ch, k, coef, post);
        else
            float_taps<S, D, C, kPost, 0>(in, out, n, ch, k, coef, post);
    };
}

template <class S, class D, Cvt C, bool kPost, bool kTailTrunc, class Coef>
auto float_col_span(int k, Coef coef, float post) {
    return [=](const S* const* rows, D* out, int n) {
        if (k == 3)
            float_rows<S, D, C, kPost, kTailTrunc, 3>(rows, out, n, k, coef, post);
        else if (k == 5)
            float_rows<S, D, C, kPost, kTailTrunc, 5>(rows, out, n, k, coef, post);
        else
            float_rows<S, D, C, kPost, kTailTrunc, 0>(rows, out, n, k, coef, post);
    };
}

template <class S, class Fin>
auto int_row_span(int k, int ch, const int16_t* c, Fin fin) {
    return [=](const S* in, int16_t* out, int n) { int_taps<S, Fin>(in, out, n, ch, k, c, fin); };
}

// The row pass over a whole ROI into the caller's row buffers.
template <class S, class D, class Span>
void row_pass(const S* src, int srcStep, D* const* dst, int w, int h, int ch, int k, int a, const border::Spec& bs,
              const S* value, S* edge, Span span) {
    for (int y = 0; y < h; ++y) row_with_border(row(src, srcStep, y), dst[y], w, ch, k, a, bs, value, edge, span);
}

// The column pass over a whole ROI.
template <class S, class D, class Span>
void column_pass(const S* const* rows, D* dst, int dstStep, int w, int h, int ch, Span span) {
    for (int y = 0; y < h; ++y) span(rows + y, row(dst, dstStep, y), w * ch);
}

// A whole separable filter with borders on all four sides, strip by strip
// (see StripBuffers).
template <class S, class M, class D, class RowSpan, class ColSpan>
void separable_image(const S* src, int srcStep, D* dst, int dstStep, int w, int h, int ch, int k,
                     const border::Spec& bs, const S* value, const StripBuffers& b, RowSpan rowSpan,
                     ColSpan colSpan) {
    const int a = k / 2;
    S* edge = static_cast<S*>(b.edge);
    M* constRow = static_cast<M*>(b.constRow);
    bool constReady = false;
    auto slot = [&](int j) { return reinterpret_cast<M*>(b.ring + b.pitch * ((j + a) % b.ringRows)); };
    // The filtered row of image row j (j may lie outside 0..h-1).
    auto filtered = [&](int j) -> const M* {
        const S* s = border::source_row(src, srcStep, j, h, bs);
        return s ? slot(j) : constRow;
    };
    int next = -a;  // first image row not yet filtered
    for (int y0 = 0; y0 < h; y0 += b.strip) {
        const int rows = h - y0 < b.strip ? h - y0 : b.strip;
        const int end = y0 + rows + k - 1 - a;
        for (; next < end; ++next) {
            const S* s = border::source_row(src, srcStep, next, h, bs);
            if (s) {
                row_with_border(s, slot(next), w, ch, k, a, bs, value, edge, rowSpan);
            } else if (!constReady) {
                S* cs = static_cast<S*>(b.constSrc);
                for (int x = 0; x < w; ++x)
                    for (int c = 0; c < ch; ++c) cs[std::ptrdiff_t(x) * ch + c] = value[c];
                border::Spec cb;
                cb.mode = border::kConst;
                row_with_border(static_cast<const S*>(cs), constRow, w, ch, k, a, cb, value, edge, rowSpan);
                constReady = true;
            }
        }
        const M** p = reinterpret_cast<const M**>(b.ptrs);
        for (int t = 0; t < rows + k - 1; ++t) p[t] = filtered(y0 - a + t);
        for (int y = 0; y < rows; ++y) colSpan(p + y, row(dst, dstStep, y0 + y), w * ch);
    }
}

// ---------------------------------------------------------------------------
// Whole passes as the exports run them.

// Row pass: float coefficients c (32f: the kernel; integer forms: the
// kernel times the reciprocal of the divisor), or, with exact, integer sums
// of the raw 16-bit kernel scaled afterwards.
// pairShift >= 0 selects the byte-pair shortcut for 8u sources (divisor
// +-2^pairShift, negative when negate).
template <class S, class D>
void row_job(const S* src, int srcStep, D* const* dst, int w, int h, int ch, int k, int a, const border::Spec& bs,
             const S* value, S* edge, const float* c, bool exact, const int16_t* kern, float scale, int pairShift,
             bool negate) {
    if constexpr (std::is_same_v<D, float>) {
        row_pass(src, srcStep, dst, w, h, ch, k, a, bs, value, edge,
                 float_row_span<S, D, Cvt::None, false>(k, ch, FloatCoefs{c}, 1.f));
    } else {
        if constexpr (std::is_same_v<D, int16_t> && std::is_same_v<S, uint8_t>) {
            if (exact && pairShift >= 0) {
                row_pass(src, srcStep, dst, w, h, ch, k, a, bs, value, edge,
                         [=](const uint8_t* in, int16_t* out, int n) {
                             u8_pair_taps(in, out, n, ch, k, kern, pairShift, negate, scale);
                         });
                return;
            }
        }
        if constexpr (std::is_same_v<D, int16_t>) {
            if (exact) {
                row_pass(src, srcStep, dst, w, h, ch, k, a, bs, value, edge,
                         int_row_span<S>(k, ch, kern, FinScale{scale}));
                return;
            }
        }
        row_pass(src, srcStep, dst, w, h, ch, k, a, bs, value, edge,
                 float_row_span<S, D, Cvt::Trunc, false>(k, ch, FloatCoefs{c}, 1.f));
    }
}

template <class D>
void column_exact_job(const int16_t* const* rows, D* dst, int dstStep, int w, int h, int ch, int k, const int16_t* kern,
                      float scale) {
    column_pass(rows, dst, dstStep, w, h, ch,
                [=](const int16_t* const* r, D* out, int n) { s16_exact_rows(r, out, n, k, kern, scale); });
}

template <class S, class D, Cvt C, bool kTailTrunc, class Coef>
void column_job(const S* const* rows, D* dst, int dstStep, int w, int h, int ch, int k, Coef coef) {
    column_pass(rows, dst, dstStep, w, h, ch, float_col_span<S, D, C, false, kTailTrunc>(k, coef, 1.f));
}

// The Gaussian filter over a whole ROI with the coefficient table of its
// kernel setup (float for 32f, unsigned fixed point otherwise).
template <class T>
void gauss_job(const T* src, int srcStep, T* dst, int dstStep, int w, int h, int ch, int k, const border::Spec& bs,
               const T* value, const StripBuffers& b, const unsigned char* table) {
    if constexpr (std::is_same_v<T, float>) {
        const FloatCoefs c{reinterpret_cast<const float*>(table)};
        separable_image<T, float, T>(src, srcStep, dst, dstStep, w, h, ch, k, bs, value, b,
                                     float_row_span<T, float, Cvt::None, false>(k, ch, c, 1.f),
                                     float_col_span<float, T, Cvt::None, false, false>(k, c, 1.f));
    } else if constexpr (std::is_same_v<T, uint8_t>) {
        const uint16_t* c = reinterpret_cast<const uint16_t*>(table);
        separable_image<T, uint16_t, T>(
            src, srcStep, dst, dstStep, w, h, ch, k, bs, value, b,
            [=](const uint8_t* in, uint16_t* out, int n) { gauss8_taps(in, out, n, ch, k, c); },
            [=](const uint16_t* const* rows, uint8_t* out, int n) { gauss8_rows(rows, out, n, k, c); });
    } else {
        const TableCoefs c{table};
        const float post = 1.0f / 32768.0f;
        separable_image<T, T, T>(src, srcStep, dst, dstStep, w, h, ch, k, bs, value, b,
                                 float_row_span<T, T, Cvt::Nearest, true>(k, ch, c, post),
                                 float_col_span<T, T, Cvt::Nearest, true, false>(k, c, post));
    }
}

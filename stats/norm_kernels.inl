// Norm kernels, compiled once per instruction-set path (see
// core/isa_expand.h). Masks are applied by zeroing unselected lanes
// (compare with zero, then AND); only the scalar remainders test each
// mask byte. Integer totals are exact; the 32f sums keep the per-row
// four-lane layout of stats_ref.h on both paths.

#include "stats/vec_ops.inl"

// Pixels per block before 32-bit lane sums are widened.
inline constexpr int kBlock = 4096;

// |a| or |a - b| as unsigned lanes of the source's width.
template <class T, bool kDiff>
inline V magnitude_v(V a, V b) {
    if constexpr (!kDiff) {
        return std::is_same_v<T, int8_t> ? vabs8(a) : a;
    } else if constexpr (sizeof(T) == 1) {
        if constexpr (std::is_same_v<T, int8_t>) {
            // Flipping the sign bits keeps differences and makes them unsigned.
            a = vxor(a, vset8(0x80));
            b = vxor(b, vset8(0x80));
        }
        return vor(vsubsu8(a, b), vsubsu8(b, a));
    } else {
        return vor(vsubsu16(a, b), vsubsu16(b, a));
    }
}

// Adds the lanes t (magnitudes) to the block accumulator of the kind.
template <class T, Kind K>
inline V accumulate_v(V acc, V t) {
    if constexpr (K == Kind::Inf) {
        return sizeof(T) == 1 ? vmaxu8(acc, t) : vadd16(vsubsu16(acc, t), t);
    } else if constexpr (K == Kind::L1) {
        return sizeof(T) == 1 ? vadd64(acc, vsad(t)) : vadd32(acc, vadd32(vlo16(t, vzero()), vhi16(t, vzero())));
    } else if constexpr (sizeof(T) == 1) {
        return vadd32(acc, vsq8<false>(t));
    } else {
        return vadd64(acc, vadd64(vsq32to64(vlo16(t, vzero())), vsq32to64(vhi16(t, vzero()))));
    }
}

// Folds a block accumulator into a running total.
template <class T, Kind K>
inline uint64_t fold_v(V acc, uint64_t total) {
    if constexpr (K == Kind::Inf) {
        using U = std::conditional_t<sizeof(T) == 1, uint8_t, uint16_t>;
        U l[kVecBytes / sizeof(U)];
        std::memcpy(l, &acc, sizeof l);
        for (U e : l) total = e > total ? e : total;
        return total;
    } else if constexpr ((K == Kind::L1) == (sizeof(T) == 1)) {
        return total + hsum64(acc);
    } else {
        return total + hsum32(acc);
    }
}

template <class T, Kind K, Fam F>
void int_norm_run(const T* a, const T* b, const uint8_t* m, int n, uint64_t& num, uint64_t& den) {
    constexpr int kE = kVecBytes / int(sizeof(T));
    int x = 0;
    while (x + kE <= n) {
        const int end = std::min(n, x + kBlock);
        V an = vzero(), ad = vzero();
        for (; x + kE <= end; x += kE) {
            const V sel = sizeof(T) == 1 ? vsel8(m + x) : vsel16(m + x);
            const V va = vld(a + x);
            const V vb = F == Fam::Norm ? va : vld(b + x);
            an = accumulate_v<T, K>(an, vand(magnitude_v<T, F != Fam::Norm>(va, vb), sel));
            if constexpr (F == Fam::Rel) ad = accumulate_v<T, K>(ad, vand(magnitude_v<T, false>(vb, vb), sel));
        }
        num = fold_v<T, K>(an, num);
        if constexpr (F == Fam::Rel) den = fold_v<T, K>(ad, den);
    }
    int_norm<K, F>(a + x, F == Fam::Norm ? a + x : b + x, m + x, n - x, num, den);
}

// ---- single precision ----

typedef float v4f __attribute__((vector_size(16)));
typedef int32_t v4i __attribute__((vector_size(16)));

inline v4f load4(const float* p) {
    v4f v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

template <Kind K>
inline v4f term4(v4f v) {
    if constexpr (K == Kind::L2) return v * v;
    return v4f(v4i(v) & 0x7fffffff);
}

// All ones in the lanes of unselected pixels (4 mask bytes).
inline v4i unsel4(const uint8_t* m) {
    __m128i s = _mm_cmpeq_epi8(_mm_cvtsi32_si128(load_u<int32_t>(m)), _mm_setzero_si128());
    s = _mm_unpacklo_epi8(s, s);
    return v4i(_mm_unpacklo_epi16(s, s));
}
// One group of four columns of one row into its lanes.
template <Kind K, Fam F>
inline __attribute__((always_inline)) void group4(const float* a, const float* b, v4i unsel, v4f& an, v4f& ad) {
    const v4f va = load4(a);
    const v4f vb = F == Fam::Norm ? va : load4(b);
    const v4f v = F == Fam::Norm ? va : va - vb;
    an += v4f(~unsel & v4i(term4<K>(v)));
    if constexpr (F == Fam::Rel) ad += v4f(~unsel & v4i(term4<K>(vb)));
}

// L1 and L2 of R rows at once, each row in its own four lanes (num[r],
// den[r]); the rows are independent chains of additions, so the processor
// overlaps them. The run starts at a multiple of four columns.
template <Kind K, Fam F, int R>
void float_norm_rows(const float* const* a, const float* const* b, const uint8_t* const* m, int n, float (*num)[4],
                     float (*den)[4]) {
    v4f an[R], ad[R];
    for (int r = 0; r < R; ++r) {
        an[r] = load4(num[r]);
        ad[r] = load4(den[r]);
    }
    const float* nb[R];
    for (int r = 0; r < R; ++r) nb[r] = F == Fam::Norm ? a[r] : b[r];
    int x = 0;
    for (; x + 4 <= n; x += 4)
        for (int r = 0; r < R; ++r) group4<K, F>(a[r] + x, nb[r] + x, unsel4(m[r] + x), an[r], ad[r]);
    for (int r = 0; r < R; ++r) {
        std::memcpy(num[r], &an[r], 16);
        std::memcpy(den[r], &ad[r], 16);
        float_norm_lanes<K, F>(a[r] + x, nb[r] + x, m[r] + x, n - x, num[r], den[r]);
    }
}

// Largest |value| bits (Inf) of a run.
template <Fam F>
void float_max_run(const float* a, const float* b, const uint8_t* m, int n, int32_t& num, int32_t& den) {
    constexpr int kE = kVecBytes / 4;
    int x = 0;
    if (n >= kE) {
        typedef int32_t vi __attribute__((vector_size(ZEB_VEC_BYTES)));
        typedef float vfl __attribute__((vector_size(ZEB_VEC_BYTES)));
        vi mn = vi{} + num, md = vi{} + den;
        for (; x + kE <= n; x += kE) {
            const vi s = vi(vsel32(m + x));
            vfl va;
            std::memcpy(&va, a + x, sizeof va);
            vfl vb = va;
            if constexpr (F != Fam::Norm) std::memcpy(&vb, b + x, sizeof vb);
            const vi t = vi(F == Fam::Norm ? va : va - vb) & 0x7fffffff & s;
            mn = t > mn ? t : mn;
            if constexpr (F == Fam::Rel) {
                const vi u = vi(vb) & 0x7fffffff & s;
                md = u > md ? u : md;
            }
        }
        for (int i = 0; i < kE; ++i) {
            num = mn[i] > num ? mn[i] : num;
            den = md[i] > den ? md[i] : den;
        }
    }
    float_norm_max<F>(a + x, F == Fam::Norm ? a + x : b + x, m + x, n - x, num, den);
}

// SPDX-License-Identifier: Apache-2.0
// Norm kernels, compiled once per vector target (Highway's foreach_target
// re-includes this file). Masks are applied by zeroing unselected lanes
// (compare with zero, then AND); only the scalar remainders test each mask
// byte. Integer totals are exact in any lane order; the 32f sums keep the
// per-row four-lane layout of stats_ref.h on every target.
#if defined(ZEB_STATS_NORM_KERNELS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_STATS_NORM_KERNELS_
#undef ZEB_STATS_NORM_KERNELS_
#else
#define ZEB_STATS_NORM_KERNELS_
#endif

#include <algorithm>
#include <type_traits>

#include "core/frame.h"
#include "core/simd-inl.h"
#include "stats/stats_ref.h"

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE::norm {

namespace st = zeb::stats;
using st::Fam;
using st::Kind;

// Pixels per block before 32-bit lane sums are widened (no lane can wrap).
inline constexpr int kBlock = 4096;

// |a| (kDiff false) or |a - b| as unsigned lanes of the source's width;
// |-128| = 128 fits an unsigned byte.
template <class T, bool kDiff, class V>
HWY_INLINE auto magnitude(V a, V b) {
    const hn::DFromV<V> d;
    const hn::RebindToUnsigned<decltype(d)> du;
    if constexpr (!kDiff) {
        if constexpr (std::is_signed_v<T>)
            return hn::BitCast(du, hn::Abs(a));
        else
            return a;
    } else if constexpr (std::is_signed_v<T>) {
        // Flipping the sign bits keeps differences and makes them unsigned.
        const auto flip = hn::Set(du, uint8_t(0x80));
        return AbsDiffU(hn::Xor(hn::BitCast(du, a), flip), hn::Xor(hn::BitCast(du, b), flip));
    } else {
        return AbsDiffU(a, b);
    }
}

// The block accumulator of a kind: the running maximum of the magnitudes
// (Inf), 64-bit byte sums or 32-bit sums of 16-bit values (L1), 32-bit
// pair sums of byte squares or 64-bit sums of 16-bit squares (L2).
template <class T, Kind K>
struct Acc {
    using DU = Vd<std::make_unsigned_t<T>>;
    using D = std::conditional_t<K == Kind::Inf, DU,
                                 std::conditional_t<(K == Kind::L1) == (sizeof(T) == 1),
                                                    hn::Repartition<uint64_t, DU>, hn::Repartition<uint32_t, DU>>>;
    hn::Vec<D> v;

    HWY_ATTR Acc() : v(hn::Zero(D())) {}

    HWY_INLINE void add(hn::Vec<DU> t) {
        if constexpr (K == Kind::Inf) {
            v = hn::Max(v, t);
        } else if constexpr (K == Kind::L1 && sizeof(T) == 1) {
            v = hn::Add(v, hn::SumsOf8(t));
        } else if constexpr (K == Kind::L1) {
            const auto w = WidenHalvesU16(t);
            v = hn::Add(v, hn::Add(w.lo, w.hi));
        } else if constexpr (sizeof(T) == 1) {
            const hn::Repartition<int32_t, DU> di;
            v = hn::BitCast(D(), AddSquaresOf8<false>(di, t, hn::BitCast(di, v)));
        } else {
            const auto w = WidenHalvesU16(t);
            v = AddSquaresU32(w.hi, AddSquaresU32(w.lo, v));
        }
    }

    // Folds the block into a running total.
    HWY_INLINE uint64_t fold(uint64_t total) const {
        if constexpr (K == Kind::Inf) {
            using U = std::make_unsigned_t<T>;
            HWY_ALIGN U l[hn::MaxLanes(D())];
            hn::Store(v, D(), l);
            for (size_t i = 0; i < hn::Lanes(D()); ++i) total = l[i] > total ? l[i] : total;
            return total;
        } else {
            return total + WideLaneSum(D(), v);
        }
    }
};

// Exact integer totals (numerator, and the reference image's denominator
// for the relative norms) of a run of n pixels.
template <class T, Kind K, Fam F>
void int_run(const T* HWY_RESTRICT a, const T* HWY_RESTRICT b, const uint8_t* HWY_RESTRICT m, int n, uint64_t* num,
             uint64_t* den) {
    const Vd<T> d;
    const hn::RebindToUnsigned<decltype(d)> du;
    constexpr int kE = int(hn::MaxLanes(Vd<T>()));
    int x = 0;
    while (x + kE <= n) {
        const int end = std::min(n, x + kBlock);
        Acc<T, K> an, ad;
        for (; x + kE <= end; x += kE) {
            const auto sel = hn::VecFromMask(du, SelectedLanes(du, m + x));
            const auto va = hn::LoadU(d, a + x);
            const auto vb = F == Fam::Norm ? va : hn::LoadU(d, b + x);
            an.add(hn::And(magnitude<T, F != Fam::Norm>(va, vb), sel));
            if constexpr (F == Fam::Rel) ad.add(hn::And(magnitude<T, false>(vb, vb), sel));
        }
        *num = an.fold(*num);
        if constexpr (F == Fam::Rel) *den = ad.fold(*den);
    }
    st::int_norm<K, F>(a + x, F == Fam::Norm ? a + x : b + x, m + x, n - x, *num, *den);
}

// ---- single precision ----

template <Kind K, class V>
HWY_INLINE V term(V v) {
    if constexpr (K == Kind::L2)
        return hn::Mul(v, v);
    else
        return hn::Abs(v);
}

// Byte indices that spread bytes 4g .. 4g+3 of a 16-byte vector over the
// four 32-bit lanes of group g.
alignas(16) inline constexpr uint8_t kSpread[64] = {0,  0,  0,  0,  1,  1,  1,  1,  2,  2,  2,  2,  3,  3,  3,  3,
                                                    4,  4,  4,  4,  5,  5,  5,  5,  6,  6,  6,  6,  7,  7,  7,  7,
                                                    8,  8,  8,  8,  9,  9,  9,  9,  10, 10, 10, 10, 11, 11, 11, 11,
                                                    12, 12, 12, 12, 13, 13, 13, 13, 14, 14, 14, 14, 15, 15, 15, 15};

// L1 and L2 of R rows at once, each row in its own four lanes (num[r],
// den[r]): lane j of a row takes the columns x with x % 4 == j in column
// order, as stats_ref.h's float_norm_lanes. The rows are independent
// chains of additions, so the processor overlaps them. Columns go sixteen
// at a time: one compare of sixteen mask bytes, spread over the four
// groups by byte shuffles. The run starts at a multiple of four columns.
template <Kind K, Fam F, int R>
void float_rows(const float* const* a, const float* const* b, const uint8_t* const* m, int n, float (*num)[4],
                float (*den)[4]) {
    const hn::Full128<float> d4;
    const hn::Full128<uint8_t> d8;
    hn::Vec<decltype(d8)> spread[4];
    for (int g = 0; g < 4; ++g) spread[g] = hn::Load(d8, kSpread + 16 * g);
    hn::Vec<decltype(d4)> an[R], ad[R];
    const float* nb[R];
    for (int r = 0; r < R; ++r) {
        an[r] = hn::LoadU(d4, num[r]);
        ad[r] = hn::LoadU(d4, den[r]);
        nb[r] = F == Fam::Norm ? a[r] : b[r];
    }
    int x = 0;
    // Fully unrolled, so that the accumulators stay in registers.
    for (; x + 16 <= n; x += 16) {
        HWY_UNROLL(8)
        for (int r = 0; r < R; ++r) {
            const auto unsel = hn::VecFromMask(d8, hn::Eq(hn::LoadU(d8, m[r] + x), hn::Zero(d8)));
            HWY_UNROLL(4)
            for (int g = 0; g < 4; ++g) {
                const auto u = hn::BitCast(d4, hn::TableLookupBytes(unsel, spread[g]));
                const auto va = hn::LoadU(d4, a[r] + x + 4 * g);
                const auto vb = F == Fam::Norm ? va : hn::LoadU(d4, nb[r] + x + 4 * g);
                const auto v = F == Fam::Norm ? va : hn::Sub(va, vb);
                an[r] = hn::Add(an[r], hn::AndNot(u, term<K>(v)));
                if constexpr (F == Fam::Rel) ad[r] = hn::Add(ad[r], hn::AndNot(u, term<K>(vb)));
            }
        }
    }
    for (int r = 0; r < R; ++r) {
        hn::StoreU(an[r], d4, num[r]);
        hn::StoreU(ad[r], d4, den[r]);
        st::float_norm_lanes<K, F>(a[r] + x, nb[r] + x, m[r] + x, n - x, num[r], den[r]);
    }
}

// Largest |value| bits (Inf) of a run: for non-negative floats integer
// order is float order, and NaN ranks above infinity.
template <Fam F>
void float_max_run(const float* HWY_RESTRICT a, const float* HWY_RESTRICT b, const uint8_t* HWY_RESTRICT m, int n,
                   int32_t* num, int32_t* den) {
    const Vd<float> df;
    const hn::RebindToSigned<decltype(df)> di;
    constexpr int kE = int(hn::MaxLanes(Vd<float>()));
    int x = 0;
    if (n >= kE) {
        auto mn = hn::Set(di, *num), md = hn::Set(di, *den);
        const auto bits = hn::Set(di, 0x7fffffff);
        for (; x + kE <= n; x += kE) {
            const auto sel = hn::And(bits, hn::VecFromMask(di, SelectedLanes(di, m + x)));
            const auto va = hn::LoadU(df, a + x);
            const auto vb = F == Fam::Norm ? va : hn::LoadU(df, b + x);
            mn = hn::Max(mn, hn::And(hn::BitCast(di, F == Fam::Norm ? va : hn::Sub(va, vb)), sel));
            if constexpr (F == Fam::Rel) md = hn::Max(md, hn::And(hn::BitCast(di, vb), sel));
        }
        HWY_ALIGN int32_t ln[hn::MaxLanes(Vd<int32_t>())], ld[hn::MaxLanes(Vd<int32_t>())];
        hn::Store(mn, di, ln);
        hn::Store(md, di, ld);
        for (size_t i = 0; i < hn::Lanes(di); ++i) {
            *num = ln[i] > *num ? ln[i] : *num;
            *den = ld[i] > *den ? ld[i] : *den;
        }
    }
    st::float_norm_max<F>(a + x, F == Fam::Norm ? a + x : b + x, m + x, n - x, *num, *den);
}

}  // namespace zeb::HWY_NAMESPACE::norm
HWY_AFTER_NAMESPACE();

#endif  // ZEB_STATS_NORM_KERNELS_

// SPDX-License-Identifier: Apache-2.0
// Distance-transform kernels, compiled once per vector target (Highway's
// foreach_target re-includes this file).
//
// Chamfer passes: the neighbours of a mask half that lie in the previous
// one or two rows are combined for a whole row at once with vector minima
// (the half is symmetric in x, so the forward and backward passes share
// that step, reading the rows above or below); the neighbour in the same
// row then runs as a running minimum, left to right or right to left,
// vector by vector (scan_row). Taking the minima in that order gives
// exactly the pixel-by-pixel definition:
// every term is formed from the same values, and min(p, q) + w equals
// min(p + w, q + w) for saturating and for rounded float sums.
//
// Exact transform: the column pass counts, down and up every column at
// once, the rows to the nearest site and squares the count; the row pass
// takes the lower envelope of parabolas one row at a time.
#if defined(ZEB_REGION_DISTANCE_KERNELS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_REGION_DISTANCE_KERNELS_
#undef ZEB_REGION_DISTANCE_KERNELS_
#else
#define ZEB_REGION_DISTANCE_KERNELS_
#endif

#include <cmath>
#include <cstdint>
#include <cstring>

#include "core/frame.h"
#include "core/simd-inl.h"
#include "region/distance_common.h"
#include "region/distance_ref.h"

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE::dist {

using ::zeb::dist::Envelope;
using ::zeb::dist::Mix;

template <class D, class V>
HWY_INLINE V StepSum(D d, V v, V w) {
    (void)d;
    if constexpr (hwy::IsFloat<hn::TFromD<D>>())
        return hn::Add(v, w);
    else
        return hn::SaturatedAdd(v, w);
}

// 0 where the source byte is 0, the far value elsewhere, for Lanes(d)
// bytes of src.
template <class D>
HWY_INLINE hn::Vec<D> InitFromSource(D d, const uint8_t* src) {
    using T = hn::TFromD<D>;
    const auto far = hn::Set(d, ref::far_value<T>());
    if constexpr (sizeof(T) == 1) {
        return hn::IfThenZeroElse(hn::Eq(hn::LoadU(d, src), hn::Zero(d)), far);
    } else if constexpr (!hwy::IsFloat<T>()) {
        const hn::Rebind<uint8_t, D> d8;
        return hn::IfThenZeroElse(hn::Eq(hn::PromoteTo(d, hn::LoadU(d8, src)), hn::Zero(d)), far);
    } else {
        const hn::Rebind<int32_t, D> di;
        const hn::Rebind<uint8_t, D> d8;
        const auto s = hn::PromoteTo(di, hn::LoadU(d8, src));
        return hn::IfThenZeroElse(hn::RebindMask(d, hn::Eq(s, hn::Zero(di))), far);
    }
}

template <class T>
HWY_INLINE void init_row(const uint8_t* src, T* d, int w) {
    const Vd<T> dt;
    const int n = int(hn::Lanes(dt));
    int x = 0;
    for (; x + n <= w; x += n) hn::StoreU(InitFromSource(dt, src + x), dt, d + x);
    for (; x < w; ++x) d[x] = src[x] == 0 ? T(0) : ref::far_value<T>();
}

// cur = min(cur, neighbours in r1 (one row away) and r2 (two rows away, or
// null) + their weights), over the whole row.
template <class T, int K, ::zeb::dist::Mix kMix>
HWY_INLINE void from_rows(T* HWY_RESTRICT cur, const T* HWY_RESTRICT r1, const T* HWY_RESTRICT r2, int w,
                          ref::Weights<T> m) {
    constexpr int R = K == 5 ? 2 : 1;
    auto scalar = [&](int x) {
        T v = cur[x];
        auto take = [&](const T* r, int dx, T wt) {
            if (r && x + dx >= 0 && x + dx < w) v = std::min(v, ref::step_sum(r[x + dx], wt));
        };
        take(r1, 0, m.a);
        if (kMix != Mix::kNoDiag) take(r1, -1, m.b), take(r1, 1, m.b);
        if (K == 5) take(r1, -2, m.c), take(r1, 2, m.c), take(r2, -1, m.c), take(r2, 1, m.c);
        cur[x] = v;
    };
    const Vd<T> dt;
    const int n = int(hn::Lanes(dt));
    const auto va = hn::Set(dt, m.a), vb = hn::Set(dt, m.b), vc = hn::Set(dt, m.c);
    int x = 0;
    for (; x < R && x < w; ++x) scalar(x);
    for (; x + n + R <= w; x += n) {
        auto v = hn::LoadU(dt, cur + x);
        const auto up = hn::LoadU(dt, r1 + x);
        if constexpr (kMix == Mix::kEqual) {
            const auto side = hn::Min(hn::LoadU(dt, r1 + x - 1), hn::LoadU(dt, r1 + x + 1));
            v = hn::Min(v, StepSum(dt, hn::Min(up, side), va));
        } else {
            v = hn::Min(v, StepSum(dt, up, va));
            if constexpr (kMix == Mix::kAll)
                v = hn::Min(v, StepSum(dt, hn::Min(hn::LoadU(dt, r1 + x - 1), hn::LoadU(dt, r1 + x + 1)), vb));
        }
        if constexpr (K == 5) {
            auto knight = hn::Min(hn::LoadU(dt, r1 + x - 2), hn::LoadU(dt, r1 + x + 2));
            if (r2) knight = hn::Min(knight, hn::Min(hn::LoadU(dt, r2 + x - 1), hn::LoadU(dt, r2 + x + 1)));
            v = hn::Min(v, StepSum(dt, knight, vc));
        }
        hn::StoreU(v, dt, cur + x);
    }
    for (; x < w; ++x) scalar(x);
}

// The same-row neighbour: a running minimum left to right (forward) or
// right to left, one dependent step per pixel.
template <class T, bool kForward>
HWY_INLINE void scan_scalar(T* d, int from, int w, T a) {
    if (kForward) {
        T prev = d[from - 1];
        for (int x = from; x < w; ++x) {
            const T s = ref::step_sum(prev, a);
            prev = s < d[x] ? s : d[x];
            d[x] = prev;
        }
    } else {
        T prev = d[from + 1];
        for (int x = from; x >= 0; --x) {
            const T s = ref::step_sum(prev, a);
            prev = s < d[x] ? s : d[x];
            d[x] = prev;
        }
    }
}

// v shifted by k lanes toward the scan direction, far values shifted in.
template <bool kForward, int k, class D>
HWY_INLINE hn::Vec<D> ShiftAlong(D d, hn::Vec<D> v, hn::Vec<D> far) {
    if constexpr (kForward)
        return ShiftInPrev<k>(d, v, far);
    else
        return ShiftInNext<k>(d, v, far);
}
template <bool kForward, class D>
HWY_INLINE hn::Vec<D> BlockAlong(D d, hn::Vec<D> v, hn::Vec<D> far) {
    if constexpr (kForward)
        return BlockBefore(d, v, far);
    else
        return BlockAfter(d, v, far);
}

// The running minimum of a whole vector as a prefix minimum in log2(lanes)
// shifted steps: lane i takes min(itself, the lane s before it plus s
// steps of a) for s = 1, 2, 4, ...; the value carried in from the previous
// vector enters the first lane plus one step. Every term is then some
// value plus a chain of steps: integer chains saturate, so s steps add
// min(s a, far) at once; float chains add a s times in a row, the very
// additions of the pixel-by-pixel scan (min(p, q) + a equals
// min(p + a, q + a) when rounded), so the results are bit for bit the
// scalar scan's.
template <bool kForward, int s, class D>
HWY_INLINE hn::Vec<D> ShiftBy(D d, hn::Vec<D> v, hn::Vec<D> far) {
    constexpr int kBlock = 16 / int(sizeof(hn::TFromD<D>));
    if constexpr (s < kBlock) {
        return ShiftAlong<kForward, s>(d, v, far);
    } else if constexpr (s == kBlock) {
        return BlockAlong<kForward>(d, v, far);
    } else {
        static_assert(s == 2 * kBlock, "vectors hold at most four blocks");
        return BlockAlong<kForward>(d, BlockAlong<kForward>(d, v, far), far);
    }
}

template <bool kForward, int s, class D>
HWY_INLINE hn::Vec<D> PrefixStep(D d, hn::Vec<D> v, hn::Vec<D> far, hn::TFromD<D> a) {
    using T = hn::TFromD<D>;
    hn::Vec<D> t = ShiftBy<kForward, s>(d, v, far);
    if constexpr (hwy::IsFloat<T>()) {
        const auto va = hn::Set(d, a);
        for (int k = 0; k < s; ++k) t = hn::Add(t, va);
    } else {
        t = hn::SaturatedAdd(t, hn::Set(d, T(std::min<uint32_t>(uint32_t(s) * a, ref::far_value<T>()))));
    }
    return hn::Min(v, t);
}

template <class T, bool kForward>
HWY_INLINE void scan_row(T* d, int w, T a) {
    const Vd<T> dt;
    constexpr int N = int(hn::MaxLanes(Vd<T>()));
    if (w < 2 * N) {
        if (w > 1) scan_scalar<T, kForward>(d, kForward ? 1 : w - 2, w, a);
        return;
    }
    const auto far = hn::Set(dt, ref::far_value<T>());
    const auto entry = kForward ? hn::FirstN(dt, 1) : hn::Not(hn::FirstN(dt, N - 1));
    auto prefix = [&](hn::Vec<Vd<T>> v, T carry) HWY_ATTR {
        v = hn::Min(v, hn::IfThenElse(entry, hn::Set(dt, ref::step_sum(carry, a)), far));
        v = PrefixStep<kForward, 1>(dt, v, far, a);
        if constexpr (N > 2) v = PrefixStep<kForward, 2>(dt, v, far, a);
        if constexpr (N > 4) v = PrefixStep<kForward, 4>(dt, v, far, a);
        if constexpr (N > 8) v = PrefixStep<kForward, 8>(dt, v, far, a);
        if constexpr (N > 16) v = PrefixStep<kForward, 16>(dt, v, far, a);
        if constexpr (N > 32) v = PrefixStep<kForward, 32>(dt, v, far, a);
        return v;
    };
    T carry = ref::far_value<T>();
    if (kForward) {
        int x = 0;
        for (; x + N <= w; x += N) {
            hn::StoreU(prefix(hn::LoadU(dt, d + x), carry), dt, d + x);
            carry = d[x + N - 1];
        }
        if (x < w) scan_scalar<T, true>(d, x, w, a);
    } else {
        int x = w - N;
        for (; x >= 0; x -= N) {
            hn::StoreU(prefix(hn::LoadU(dt, d + x), carry), dt, d + x);
            carry = d[x];
        }
        if (x + N > 0) scan_scalar<T, false>(d, x + N - 1, w, a);
    }
}

// The whole two-pass transform of src into d (d may be src for 8u).
template <class T, int K, ::zeb::dist::Mix kMix>
void chamfer(const uint8_t* src, int ss, T* d, int ds, int w, int h, ref::Weights<T> m) {
    for (int y = 0; y < h; ++y) {
        T* cur = row(d, ds, y);
        init_row(row(src, ss, y), cur, w);
        if (y >= 1) from_rows<T, K, kMix>(cur, row(d, ds, y - 1), y >= 2 ? row(d, ds, y - 2) : nullptr, w, m);
        scan_row<T, true>(cur, w, m.a);
    }
    for (int y = h - 1; y >= 0; --y) {
        T* cur = row(d, ds, y);
        if (y + 1 < h)
            from_rows<T, K, kMix>(cur, row(d, ds, y + 1), y + 2 < h ? row(d, ds, y + 2) : nullptr, w, m);
        scan_row<T, false>(cur, w, m.a);
    }
}

// ---- exact Euclidean transform ----

// Row count standing for "no site in this column so far": far above any
// real count, and count + 1 rounds back to it.
inline constexpr float kNoSite = 1073741824.0f;  // 2^30

// Column pass into d: the squared distance to the nearest site of each
// column, or the far value. run holds w floats.
inline void columns(const uint8_t* src, int ss, float* d, int ds, int w, int h, float* HWY_RESTRICT run) {
    const Vd<float> df;
    const int n = int(hn::Lanes(df));
    const auto one = hn::Set(df, 1.0f), none = hn::Set(df, kNoSite), far = hn::Set(df, ref::far_value<float>());
    const hn::Rebind<int32_t, Vd<float>> di;
    const hn::Rebind<uint8_t, Vd<float>> d8;
    for (int x = 0; x < w; ++x) run[x] = kNoSite;
    for (int y = 0; y < h; ++y) {
        const uint8_t* s = row(src, ss, y);
        float* r = row(d, ds, y);
        int x = 0;
        for (; x + n <= w; x += n) {
            const auto site = hn::RebindMask(df, hn::Eq(hn::PromoteTo(di, hn::LoadU(d8, s + x)), hn::Zero(di)));
            const auto g = hn::IfThenZeroElse(site, hn::Add(hn::LoadU(df, run + x), one));
            hn::StoreU(g, df, run + x);
            hn::StoreU(g, df, r + x);
        }
        for (; x < w; ++x) r[x] = run[x] = s[x] == 0 ? 0.0f : run[x] + 1.0f;
    }
    for (int x = 0; x < w; ++x) run[x] = kNoSite;
    for (int y = h - 1; y >= 0; --y) {
        float* r = row(d, ds, y);
        int x = 0;
        for (; x + n <= w; x += n) {
            const auto g = hn::Min(hn::LoadU(df, r + x), hn::Add(hn::LoadU(df, run + x), one));
            hn::StoreU(g, df, run + x);
            hn::StoreU(hn::IfThenElse(hn::Ge(g, none), far, hn::Mul(g, g)), df, r + x);
        }
        for (; x < w; ++x) {
            const float g = std::min(r[x], run[x] + 1.0f);
            run[x] = g;
            r[x] = g >= kNoSite ? ref::far_value<float>() : g * g;
        }
    }
}

// Row pass of one row: r holds the column-pass values on entry and the
// distances on return.
inline void envelope_row(float* r, int w, const Envelope& e) {
    const float far = ref::far_value<float>();
    std::memcpy(e.f, r, sizeof(float) * std::size_t(w));
    int k = -1;
    for (int q = 0; q < w; ++q) {
        const float fq = e.f[q];
        if (fq == far) continue;
        const float hq = fq + e.sq[q];
        float s = -far;
        while (k >= 0) {
            s = (hq - e.hv[k]) * e.rcp[q - e.v[k]];
            if (s > e.z[k]) break;
            --k;
        }
        if (k < 0) s = -far;
        ++k;
        e.v[k] = q;
        e.hv[k] = hq;
        e.z[k] = s;
    }
    if (k < 0) {
        for (int q = 0; q < w; ++q) r[q] = far;
    } else {
        int j = 0;
        for (int q = 0; q < w; ++q) {
            while (j < k && e.z[j + 1] <= float(q)) ++j;
            const int dq = q - e.v[j];
            r[q] = e.sq[dq < 0 ? -dq : dq] + e.f[e.v[j]];
        }
    }
    const Vd<float> df;
    const int n = int(hn::Lanes(df));
    int x = 0;
    for (; x + n <= w; x += n) hn::StoreU(hn::Sqrt(hn::LoadU(df, r + x)), df, r + x);
    for (; x < w; ++x) r[x] = std::sqrt(r[x]);
}

inline void exact(const uint8_t* src, int ss, float* d, int ds, int w, int h, const Envelope& e) {
    columns(src, ss, d, ds, w, h, e.f);
    for (int y = 0; y < h; ++y) envelope_row(row(d, ds, y), w, e);
}

}  // namespace zeb::HWY_NAMESPACE::dist
HWY_AFTER_NAMESPACE();

#endif  // ZEB_REGION_DISTANCE_KERNELS_

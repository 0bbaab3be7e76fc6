// SPDX-License-Identifier: Apache-2.0
// Run-length scans of the span fill, compiled once per vector target
// (Highway's foreach_target re-includes this file): how far a run of
// pixels inside (or outside) [lo, hi] reaches along one row. Whole vectors
// are tested at once; the vector that holds the end of the run is resolved
// pixel by pixel, so the answer is that of the plain loop.
#if defined(ZEB_REGION_SPAN_KERNELS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_REGION_SPAN_KERNELS_
#undef ZEB_REGION_SPAN_KERNELS_
#else
#define ZEB_REGION_SPAN_KERNELS_
#endif

#include <cstdint>
#include <type_traits>

#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE::span {

template <class T>
HWY_INLINE bool in_range(T v, T lo, T hi) {
    return lo <= v && v <= hi;
}

template <class D, class V>
HWY_INLINE auto in_range(D, V v, V lo, V hi) {
    if constexpr (hwy::IsFloat<hn::TFromV<V>>())
        return hn::And(hn::Ge(v, lo), hn::Le(v, hi));  // NaN is outside, as in the scalar test
    else
        return hn::Not(hn::Or(hn::Lt(v, lo), hn::Gt(v, hi)));
}

// The first x in [x, end) whose pixel is not (kInside) / is (!kInside) in
// [lo, hi]; end when there is none.
template <class T, bool kInside>
int run_right(const T* p, int x, int end, T lo, T hi) {
    const Vd<T> d;
    const int n = int(hn::Lanes(d));
    const auto vlo = hn::Set(d, lo), vhi = hn::Set(d, hi);
    for (; x + n <= end; x += n) {
        const auto m = in_range(d, hn::LoadU(d, p + x), vlo, vhi);
        if (kInside ? !hn::AllTrue(d, m) : !hn::AllFalse(d, m)) break;
    }
    for (; x < end; ++x)
        if (in_range(p[x], lo, hi) != kInside) return x;
    return end;
}

// The last x in [begin, x] whose pixel is not in [lo, hi], going left from
// x; begin - 1 when every pixel is inside.
template <class T>
int run_left(const T* p, int x, int begin, T lo, T hi) {
    const Vd<T> d;
    const int n = int(hn::Lanes(d));
    const auto vlo = hn::Set(d, lo), vhi = hn::Set(d, hi);
    for (; x - n + 1 >= begin; x -= n)
        if (!hn::AllTrue(d, in_range(d, hn::LoadU(d, p + x - n + 1), vlo, vhi))) break;
    for (; x >= begin; --x)
        if (!in_range(p[x], lo, hi)) return x;
    return begin - 1;
}

// The floating test of the gradient fill: q passes against its reference
// p when p - lo <= q <= p + hi (for unsigned integers q <= p + hi and
// p <= q + lo, which is the same test without wrap-around).
template <class T>
HWY_INLINE bool near(T q, T p, T lo, T hi) {
    if constexpr (std::is_floating_point_v<T>)
        return p - lo <= q && q <= p + hi;
    else
        return int64_t(q) - int64_t(p) + int64_t(lo) >= 0 && int64_t(q) - int64_t(p) <= int64_t(hi);
}

template <class D, class V>
HWY_INLINE auto near(D, V q, V p, V lo, V hi) {
    if constexpr (hwy::IsFloat<hn::TFromV<V>>())
        return hn::And(hn::Ge(q, hn::Sub(p, lo)), hn::Le(q, hn::Add(p, hi)));
    else
        return hn::Not(hn::Or(hn::Gt(q, hn::SaturatedAdd(p, hi)), hn::Gt(p, hn::SaturatedAdd(q, lo))));
}

// Lanes whose visited byte is 0.
template <class D>
HWY_INLINE auto unvisited(D d, const uint8_t* map) {
    if constexpr (sizeof(hn::TFromD<D>) == 1) {
        return hn::RebindMask(d, hn::Eq(hn::LoadU(hn::RebindToUnsigned<D>(), map), hn::Zero(hn::RebindToUnsigned<D>())));
    } else {
        const hn::Rebind<uint8_t, D> d8;
        using W = std::conditional_t<sizeof(hn::TFromD<D>) == 2, uint16_t, int32_t>;
        const hn::Rebind<W, D> ds;
        const auto wide = hn::PromoteTo(ds, hn::LoadU(d8, map));
        return hn::RebindMask(d, hn::Eq(wide, hn::Zero(ds)));
    }
}

// Pixel i of q is accepted when map[i] is 0 and it passes the floating test
// against r[i + shift]. grad_right: the first i in [x, end) whose
// acceptance differs from kAccept, or end. grad_left: the last i in
// [begin, x] not accepted, or begin - 1.
template <class T, bool kAccept>
int grad_right(const T* q, const T* r, int shift, const uint8_t* map, int x, int end, T lo, T hi) {
    const Vd<T> d;
    const int n = int(hn::Lanes(d));
    const auto vlo = hn::Set(d, lo), vhi = hn::Set(d, hi);
    for (; x + n <= end; x += n) {
        const auto m = hn::And(unvisited(d, map + x), near(d, hn::LoadU(d, q + x), hn::LoadU(d, r + x + shift), vlo, vhi));
        if (kAccept ? !hn::AllTrue(d, m) : !hn::AllFalse(d, m)) break;
    }
    for (; x < end; ++x)
        if ((map[x] == 0 && near(q[x], r[x + shift], lo, hi)) != kAccept) return x;
    return end;
}

// The first i in [x, end) that is unvisited and passes the floating test
// against any of r[i - 1], r[i], r[i + 1] (the diagonal and vertical
// neighbours of 8-connectivity, all accepted), or end.
template <class T>
int grad_find8(const T* q, const T* r, const uint8_t* map, int x, int end, T lo, T hi) {
    const Vd<T> d;
    const int n = int(hn::Lanes(d));
    const auto vlo = hn::Set(d, lo), vhi = hn::Set(d, hi);
    for (; x + n <= end; x += n) {
        const auto v = hn::LoadU(d, q + x);
        const auto any = hn::Or(near(d, v, hn::LoadU(d, r + x - 1), vlo, vhi),
                                hn::Or(near(d, v, hn::LoadU(d, r + x), vlo, vhi), near(d, v, hn::LoadU(d, r + x + 1), vlo, vhi)));
        if (!hn::AllFalse(d, hn::And(unvisited(d, map + x), any))) break;
    }
    for (; x < end; ++x)
        if (map[x] == 0 &&
            (near(q[x], r[x - 1], lo, hi) || near(q[x], r[x], lo, hi) || near(q[x], r[x + 1], lo, hi)))
            return x;
    return end;
}

template <class T>
int grad_left(const T* q, const T* r, int shift, const uint8_t* map, int x, int begin, T lo, T hi) {
    const Vd<T> d;
    const int n = int(hn::Lanes(d));
    const auto vlo = hn::Set(d, lo), vhi = hn::Set(d, hi);
    for (; x - n + 1 >= begin; x -= n) {
        const int b = x - n + 1;
        const auto m = hn::And(unvisited(d, map + b), near(d, hn::LoadU(d, q + b), hn::LoadU(d, r + b + shift), vlo, vhi));
        if (!hn::AllTrue(d, m)) break;
    }
    for (; x >= begin; --x)
        if (!(map[x] == 0 && near(q[x], r[x + shift], lo, hi))) return x;
    return begin - 1;
}

}  // namespace zeb::HWY_NAMESPACE::span
HWY_AFTER_NAMESPACE();

#endif  // ZEB_REGION_SPAN_KERNELS_

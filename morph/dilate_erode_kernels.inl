// SPDX-License-Identifier: Apache-2.0
// Dilation/erosion kernels, compiled once per vector target (Highway's
// foreach_target re-includes this file). Every path reduces to three row
// operations: the extremum of two rows, of a list of rows, and the step of
// the block running extremum that advances a prefix while it finishes the
// previous block's outputs.
#if defined(ZEB_MORPH_DILATE_ERODE_KERNELS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_MORPH_DILATE_ERODE_KERNELS_
#undef ZEB_MORPH_DILATE_ERODE_KERNELS_
#else
#define ZEB_MORPH_DILATE_ERODE_KERNELS_
#endif

#include "core/simd-inl.h"
#include "morph/morph_ref.h"

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE::morph {

template <bool kMax, class V>
HWY_INLINE V Ext(V a, V b) {
    if constexpr (kMax)
        return hn::Max(a, b);
    else
        return hn::Min(a, b);
}

// out[i] = ext(a[i], b[i]) for i < n. out may be a itself with b ahead of
// it (b = a + d, d > 0): every element is read before it is overwritten.
template <class T, bool kMax>
void pair(const T* a, const T* b, T* out, int n) {
    const Vd<T> d;
    constexpr int N = int(hn::MaxLanes(Vd<T>()));
    int i = 0;
    for (; i + 2 * N <= n; i += 2 * N) {
        const auto r0 = Ext<kMax>(hn::LoadU(d, a + i), hn::LoadU(d, b + i));
        const auto r1 = Ext<kMax>(hn::LoadU(d, a + i + N), hn::LoadU(d, b + i + N));
        hn::StoreU(r0, d, out + i);
        hn::StoreU(r1, d, out + i + N);
    }
    for (; i + N <= n; i += N) hn::StoreU(Ext<kMax>(hn::LoadU(d, a + i), hn::LoadU(d, b + i)), d, out + i);
    for (; i < n; ++i) out[i] = zeb::morph::ref::ext<kMax>(a[i], b[i]);
}

// out[i] = extremum over k < cnt of p[k][i], i < n (cnt >= 1). out does not
// overlap the rows, so the last vector may overlap the one before it.
template <class T, bool kMax>
void list(const T* const* p, int cnt, T* out, int n) {
    const Vd<T> d;
    constexpr int N = int(hn::MaxLanes(Vd<T>()));
    if (n < N) {
        for (int i = 0; i < n; ++i) {
            T acc = p[0][i];
            for (int k = 1; k < cnt; ++k) acc = zeb::morph::ref::ext<kMax>(acc, p[k][i]);
            out[i] = acc;
        }
        return;
    }
    auto at = [&](int i) HWY_ATTR {
        auto acc = hn::LoadU(d, p[0] + i);
        for (int k = 1; k < cnt; ++k) acc = Ext<kMax>(acc, hn::LoadU(d, p[k] + i));
        hn::StoreU(acc, d, out + i);
    };
    if (cnt == 3) {  // the 3-element rows and columns of small rectangles
        const T *p0 = p[0], *p1 = p[1], *p2 = p[2];
        auto at3 = [&](int i) HWY_ATTR {
            const auto v = Ext<kMax>(Ext<kMax>(hn::LoadU(d, p0 + i), hn::LoadU(d, p1 + i)), hn::LoadU(d, p2 + i));
            hn::StoreU(v, d, out + i);
        };
        int i = 0;
        for (; i + 2 * N <= n; i += 2 * N) at3(i), at3(i + N);
        for (; i + N <= n; i += N) at3(i);
        if (i < n) at3(n - N);
        return;
    }
    int i = 0;
    for (; i + N <= n; i += N) at(i);
    if (i < n) at(n - N);
}

// One step of the block running extremum: with p = prev[i], s = suf[i],
// r = cur[i]: prev[i] = ext(p, s) (an output finished), cur[i] = ext(p, r)
// (the prefix advanced), suf[i] = r (the raw row kept for the next
// block's suffixes).
template <class T, bool kMax>
void step(T* prev, T* cur, T* suf, int n) {
    const Vd<T> d;
    constexpr int N = int(hn::MaxLanes(Vd<T>()));
    int i = 0;
    for (; i + N <= n; i += N) {
        const auto p = hn::LoadU(d, prev + i), s = hn::LoadU(d, suf + i), r = hn::LoadU(d, cur + i);
        hn::StoreU(Ext<kMax>(p, s), d, prev + i);
        hn::StoreU(Ext<kMax>(p, r), d, cur + i);
        hn::StoreU(r, d, suf + i);
    }
    for (; i < n; ++i) {
        const T p = prev[i], s = suf[i], r = cur[i];
        prev[i] = zeb::morph::ref::ext<kMax>(p, s);
        cur[i] = zeb::morph::ref::ext<kMax>(p, r);
        suf[i] = r;
    }
}

}  // namespace zeb::HWY_NAMESPACE::morph
HWY_AFTER_NAMESPACE();

#endif  // ZEB_MORPH_DILATE_ERODE_KERNELS_

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

#include <algorithm>

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

// out[i] = extremum over k < kCnt of p[k][i], i < n, n >= lanes: the
// pointers stay in registers and the last vector may overlap the one
// before it (out does not overlap the rows).
template <int kCnt, class T, bool kMax>
HWY_INLINE void list_fixed(const T* const* HWY_RESTRICT pp, T* out, int n) {
    const Vd<T> d;
    constexpr int N = int(hn::MaxLanes(Vd<T>()));
    const T* p[kCnt];
    for (int k = 0; k < kCnt; ++k) p[k] = pp[k];
    auto at = [&](int i) HWY_ATTR {
        auto acc = hn::LoadU(d, p[0] + i);
        for (int k = 1; k < kCnt; ++k) acc = Ext<kMax>(acc, hn::LoadU(d, p[k] + i));
        hn::StoreU(acc, d, out + i);
    };
    int i = 0;
    for (; i + 2 * N <= n; i += 2 * N) at(i), at(i + N);
    for (; i + N <= n; i += N) at(i);
    if (i < n) at(n - N);
}

// out[i] = extremum over k < cnt of p[k][i], i < n (cnt >= 1). out does not
// overlap the rows.
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
    switch (cnt) {
        case 1: return list_fixed<1, T, kMax>(p, out, n);
        case 2: return list_fixed<2, T, kMax>(p, out, n);
        case 3: return list_fixed<3, T, kMax>(p, out, n);
        case 4: return list_fixed<4, T, kMax>(p, out, n);
        case 5: return list_fixed<5, T, kMax>(p, out, n);
        case 6: return list_fixed<6, T, kMax>(p, out, n);
        case 7: return list_fixed<7, T, kMax>(p, out, n);
        case 8: return list_fixed<8, T, kMax>(p, out, n);
        default: break;
    }
    // Long lists: the first eight rows, then the rest folded into out.
    list_fixed<8, T, kMax>(p, out, n);
    for (int k = 8; k < cnt; k += 7) {
        const int m = std::min(7, cnt - k);
        const T* q[8] = {out};
        for (int j = 0; j < m; ++j) q[j + 1] = p[k + j];
        for (int j = m; j < 7; ++j) q[j + 1] = out;
        auto at = [&](int i) HWY_ATTR {
            auto acc = hn::LoadU(d, q[0] + i);
            for (int j = 1; j < 8; ++j) acc = Ext<kMax>(acc, hn::LoadU(d, q[j] + i));
            hn::StoreU(acc, d, out + i);
        };
        for (int i = 0; i + N <= n; i += N) at(i);
        if (n % N) at(n - N);
    }
}

// Two output rows of a short column window at once: with the shared rows
// p[1] .. p[kCnt - 2], out0 takes p[0] and out1 takes p[kCnt - 1] as well
// (n >= lanes; the outputs overlap no row).
template <int kCnt, class T, bool kMax>
HWY_INLINE void pair_rows_fixed(const T* const* HWY_RESTRICT pp, T* out0, T* out1, int n) {
    const Vd<T> d;
    constexpr int N = int(hn::MaxLanes(Vd<T>()));
    const T* p[kCnt];
    for (int k = 0; k < kCnt; ++k) p[k] = pp[k];
    auto at = [&](int i) HWY_ATTR {
        auto acc = hn::LoadU(d, p[1] + i);
        for (int k = 2; k < kCnt - 1; ++k) acc = Ext<kMax>(acc, hn::LoadU(d, p[k] + i));
        hn::StoreU(Ext<kMax>(acc, hn::LoadU(d, p[0] + i)), d, out0 + i);
        hn::StoreU(Ext<kMax>(acc, hn::LoadU(d, p[kCnt - 1] + i)), d, out1 + i);
    };
    int i = 0;
    for (; i + N <= n; i += N) at(i);
    if (i < n) at(n - N);
}

// out0 = extremum of rows p[0] .. p[cnt - 2], out1 of rows p[1] .. p[cnt - 1]
// (3 <= cnt <= 8).
template <class T, bool kMax>
void pair_rows(const T* const* p, int cnt, T* out0, T* out1, int n) {
    constexpr int N = int(hn::MaxLanes(Vd<T>()));
    if (n < N) {
        list<T, kMax>(p, cnt - 1, out0, n);
        list<T, kMax>(p + 1, cnt - 1, out1, n);
        return;
    }
    switch (cnt) {
        case 3: return pair_rows_fixed<3, T, kMax>(p, out0, out1, n);
        case 4: return pair_rows_fixed<4, T, kMax>(p, out0, out1, n);
        case 5: return pair_rows_fixed<5, T, kMax>(p, out0, out1, n);
        case 6: return pair_rows_fixed<6, T, kMax>(p, out0, out1, n);
        case 7: return pair_rows_fixed<7, T, kMax>(p, out0, out1, n);
        default: return pair_rows_fixed<8, T, kMax>(p, out0, out1, n);
    }
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

// SPDX-License-Identifier: Apache-2.0
// Morphological reconstruction kernels, compiled once per vector target.
//
// The marker J is raised (dilation form) or lowered (erosion form) towards
// the mask I by raster scans. A forward visit of row y runs left to right
// and takes the left neighbour and the neighbours in row y-1; a backward
// visit runs right to left and takes the right neighbour and the
// neighbours in row y+1. Each pixel becomes
//     J[x] = shrink(grow(J[x], neighbours already visited), I[x])
// with grow = max and shrink = min for dilation (the other way round for
// erosion). The neighbours of the adjacent row are one pixel (4-
// neighbourhood) or three pixels (8-neighbourhood); their contribution is
// element-wise and vectorised into a scratch row, the running value along
// the row is a chain of clamps done one pixel at a time.
//
// Each row carries two flag bits: F (a forward visit may change it) and B
// (a backward visit may change it). A row stays correct for a direction as
// long as neither it nor the row that direction reads changes, so a change
// to row y during a visit sets B[y] or F[y] (the other direction over the
// same row), F[y+1] and B[y-1]. Passes alternate until no flag is set:
// then every pixel is at least shrink(grow of every neighbour, I), which is
// the fixed point.
#if defined(ZEB_MORPH_RECONSTRUCT_KERNELS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_MORPH_RECONSTRUCT_KERNELS_
#undef ZEB_MORPH_RECONSTRUCT_KERNELS_
#else
#define ZEB_MORPH_RECONSTRUCT_KERNELS_
#endif

#include <cstdint>
#include <cstring>

#include "core/frame.h"
#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE::recon {

enum : uint8_t { kFwd = 1, kBwd = 2 };

// Scalar grow / shrink with the lane semantics of Max / Min.
template <bool kDil, class T>
HWY_INLINE T grow(T a, T b) {
    if constexpr (kDil) return a > b ? a : b;
    else return a < b ? a : b;
}
template <bool kDil, class T>
HWY_INLINE T shrink(T a, T b) {
    return grow<!kDil>(a, b);
}
template <bool kDil, class V>
HWY_INLINE V Grow(V a, V b) {
    if constexpr (kDil) return hn::Max(a, b);
    else return hn::Min(a, b);
}

// Bit-pattern inequality: floats compare by their bits, so that no value
// (a NaN included) counts as changed when it was rewritten as it was.
template <class T>
HWY_INLINE bool differs(T a, T b) {
    return std::memcmp(&a, &b, sizeof(T)) != 0;
}

// t[x] = grow(J[x], the neighbours of x in the adjacent row P).
template <class T, bool kDil, bool kEight>
HWY_INLINE void adjacent(const T* HWY_RESTRICT J, const T* HWY_RESTRICT P, T* HWY_RESTRICT t, int w) {
    const Vd<T> d;
    constexpr int kN = int(hn::MaxLanes(Vd<T>()));
    auto one = [&](int x) {
        T v = grow<kDil>(J[x], P[x]);
        if (kEight) {
            if (x > 0) v = grow<kDil>(v, P[x - 1]);
            if (x + 1 < w) v = grow<kDil>(v, P[x + 1]);
        }
        t[x] = v;
    };
    int x = 0;
    if (kEight) {
        one(0);
        x = 1;
        for (; x + kN + 1 <= w; x += kN) {
            auto v = Grow<kDil>(hn::LoadU(d, J + x), hn::LoadU(d, P + x));
            v = Grow<kDil>(v, Grow<kDil>(hn::LoadU(d, P + x - 1), hn::LoadU(d, P + x + 1)));
            hn::StoreU(v, d, t + x);
        }
    } else {
        for (; x + kN <= w; x += kN)
            hn::StoreU(Grow<kDil>(hn::LoadU(d, J + x), hn::LoadU(d, P + x)), d, t + x);
    }
    for (; x < w; ++x) one(x);
}

// One visit of a row: J is updated in place from t (J and the adjacent
// row's contribution) and I, left to right when kFwdDir, else right to
// left. Returns whether any value changed.
template <class T, bool kDil, bool kFwdDir>
HWY_INLINE bool sweep(T* HWY_RESTRICT J, const T* HWY_RESTRICT I, const T* HWY_RESTRICT t, int w) {
    bool changed = false;
    const int x0 = kFwdDir ? 0 : w - 1, dx = kFwdDir ? 1 : -1;
    T cur = shrink<kDil>(t[x0], I[x0]);
    changed |= differs(cur, J[x0]);
    J[x0] = cur;
    for (int i = 1, x = x0 + dx; i < w; ++i, x += dx) {
        const T v = shrink<kDil>(grow<kDil>(t[x], cur), I[x]);
        changed |= differs(v, J[x]);
        J[x] = v;
        cur = v;
    }
    return changed;
}

// Reconstruction of the marker J (in place) under the mask I, w x h pixels.
// rowTmp holds one row of scratch, flags one byte per row.
template <class T, bool kDil, bool kEight>
void reconstruct(const T* I, int is, T* J, int js, int w, int h, T* rowTmp, uint8_t* flags) {
    std::memset(flags, kFwd | kBwd, std::size_t(h));
    auto visit = [&](int y, bool fwd) HWY_ATTR {
        T* jr = row(J, js, y);
        const T* ir = row(I, is, y);
        const int py = fwd ? y - 1 : y + 1;
        const T* t = jr;
        if (py >= 0 && py < h) {
            adjacent<T, kDil, kEight>(jr, row(static_cast<const T*>(J), js, py), rowTmp, w);
            t = rowTmp;
        }
        return fwd ? sweep<T, kDil, true>(jr, ir, t, w) : sweep<T, kDil, false>(jr, ir, t, w);
    };
    for (bool any = true; any;) {
        any = false;
        for (int y = 0; y < h; ++y) {
            if (!(flags[y] & kFwd)) continue;
            flags[y] &= uint8_t(~kFwd);
            if (!visit(y, true)) continue;
            any = true;
            flags[y] |= kBwd;
            if (y + 1 < h) flags[y + 1] |= kFwd;
            if (y > 0) flags[y - 1] |= kBwd;
        }
        for (int y = h - 1; y >= 0; --y) {
            if (!(flags[y] & kBwd)) continue;
            flags[y] &= uint8_t(~kBwd);
            if (!visit(y, false)) continue;
            any = true;
            flags[y] |= kFwd;
            if (y + 1 < h) flags[y + 1] |= kFwd;
            if (y > 0) flags[y - 1] |= kBwd;
        }
    }
}

}  // namespace zeb::HWY_NAMESPACE::recon
HWY_AFTER_NAMESPACE();

#endif  // ZEB_MORPH_RECONSTRUCT_KERNELS_

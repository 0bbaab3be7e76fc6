// SPDX-License-Identifier: Apache-2.0
// Absolute-difference kernels, compiled once per vector target (Highway's
// foreach_target re-includes this file). Integer types take the larger of
// two saturating differences; floats clear the sign bit of the difference.
#if defined(ZEB_ARITH_ABS_DIFF_KERNELS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_ARITH_ABS_DIFF_KERNELS_
#undef ZEB_ARITH_ABS_DIFF_KERNELS_
#else
#define ZEB_ARITH_ABS_DIFF_KERNELS_
#endif

#include "arith/arith_ref.h"
#include "core/frame.h"
#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE::absdiff {

template <class V>
HWY_INLINE V abs_diff(V a, V b) {
    if constexpr (hwy::IsFloat<hn::TFromV<V>>())
        return AbsDiffF(a, b);
    else
        return AbsDiffU(a, b);
}

// dst = |a - b| over a w x h region; b is a second image or, with kConst,
// one value for every pixel. Two vectors per block keep both load ports busy.
template <class T, bool kConst, Store kStore>
void image(const T* a, int as, const T* b, int bs, T c, T* d, int ds, int w, int h) {
    const Vd<T> dt;
    constexpr int kN = int(hn::MaxLanes(Vd<T>()));
    const auto vc = hn::Set(dt, c);
    for (int y = 0; y < h; ++y) {
        const T* ra = row(a, as, y);
        const T* rb = kConst ? nullptr : row(b, bs, y);
        T* rd = row(d, ds, y);
        auto scalar = [&](int x) { rd[x] = ref::abs_diff(ra[x], kConst ? c : rb[x]); };
        auto block = [&](int x) HWY_ATTR {
            for (int k = 0; k < 2; ++k) {
                const int o = x + k * kN;
                const auto vb = kConst ? vc : hn::LoadU(dt, rb + o);
                StoreKind<kStore>(abs_diff(hn::LoadU(dt, ra + o), vb), dt, rd + o);
            }
        };
        drive_row<kVecBytes, 2 * kN>(rd, w, scalar, block);
    }
    FinishStores<kStore>();
}

}  // namespace zeb::HWY_NAMESPACE::absdiff
HWY_AFTER_NAMESPACE();

#endif  // ZEB_ARITH_ABS_DIFF_KERNELS_

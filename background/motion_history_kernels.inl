// SPDX-License-Identifier: Apache-2.0
// Motion-history update kernels, compiled once per vector target (Highway's
// foreach_target re-includes this file). A lane takes the timestamp where
// the silhouette is set, keeps its value where that is not below the
// limit, and becomes 0 otherwise; the comparisons are exact, so every
// target matches the per-pixel definition bit for bit.
#if defined(ZEB_BACKGROUND_MOTION_HISTORY_KERNELS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_BACKGROUND_MOTION_HISTORY_KERNELS_
#undef ZEB_BACKGROUND_MOTION_HISTORY_KERNELS_
#else
#define ZEB_BACKGROUND_MOTION_HISTORY_KERNELS_
#endif

#include "background/background_ref.h"
#include "core/frame.h"
#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE::mhi {

// Lanes of a float vector whose silhouette element is non-zero. Floats
// compare as numbers, so -0.0 counts as no motion.
template <class S, class DF>
HWY_INLINE hn::Mask<DF> moving(DF df, const S* HWY_RESTRICT s) {
    if constexpr (std::is_same_v<S, float>) {
        return hn::Ne(hn::LoadU(df, s), hn::Zero(df));
    } else {
        const hn::RebindToUnsigned<DF> du;
        const hn::Rebind<S, DF> ds;
        return hn::RebindMask(df, hn::Ne(hn::PromoteTo(du, hn::LoadU(ds, s)), hn::Zero(du)));
    }
}

// Lanes below the limit clear; NaN is not below it and stays.
template <class DF, class V>
HWY_INLINE V remembered(DF, V old, V limit) {
    return hn::IfThenZeroElse(hn::Lt(old, limit), old);
}

template <class S>
void update(const S* sil, int ss, float* m, int ms, int w, int h, float ts, float limit) {
    const Vd<float> df;
    constexpr int kN = int(hn::MaxLanes(Vd<float>()));
    // 8-bit silhouettes: one byte vector covers four float vectors and is
    // compared once.
    constexpr int kVecs = sizeof(S) == 1 ? 4 : 2;
    const auto vts = hn::Set(df, ts), vlim = hn::Set(df, limit);
    for (int y = 0; y < h; ++y) {
        const S* rs = row(sil, ss, y);
        float* rm = row(m, ms, y);
        auto scalar = [&](int x) { rm[x] = ref::mhi(rs[x], rm[x], ts, limit); };
        auto block = [&](int x) HWY_ATTR {
            if constexpr (sizeof(S) == 1) {
                hn::Mask<decltype(df)> still[4];
                ZeroBytesToFloatMasks4(df, rs + x, still);
                for (int k = 0; k < 4; ++k) {
                    const int o = x + k * kN;
                    const auto kept = remembered(df, hn::Load(df, rm + o), vlim);
                    hn::Store(hn::IfThenElse(still[k], kept, vts), df, rm + o);
                }
            } else {
                for (int k = 0; k < 2; ++k) {
                    const int o = x + k * kN;
                    const auto kept = remembered(df, hn::Load(df, rm + o), vlim);
                    hn::Store(hn::IfThenElse(moving(df, rs + o), vts, kept), df, rm + o);
                }
            }
        };
        drive_row<kVecBytes, kVecs * kN>(rm, w, scalar, block);
    }
}

}  // namespace zeb::HWY_NAMESPACE::mhi
HWY_AFTER_NAMESPACE();

#endif  // ZEB_BACKGROUND_MOTION_HISTORY_KERNELS_

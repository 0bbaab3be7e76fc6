// SPDX-License-Identifier: Apache-2.0
// Extremum kernels, compiled once per vector target (Highway's
// foreach_target re-includes this file). Values are compared as
// order-preserving keys (stats_ref.h); unselected lanes take the neutral
// key of each side, so they never win. Minima and maxima are exact in any
// lane order.
#if defined(ZEB_STATS_MIN_MAX_KERNELS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_STATS_MIN_MAX_KERNELS_
#undef ZEB_STATS_MIN_MAX_KERNELS_
#else
#define ZEB_STATS_MIN_MAX_KERNELS_
#endif

#include <type_traits>

#include "core/frame.h"
#include "core/simd-inl.h"
#include "stats/stats_ref.h"

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE::extrema {

namespace st = zeb::stats;

// Folds the lanes of a running minimum and maximum into e.
template <class D, class K>
HWY_INLINE void fold_keys(D d, hn::Vec<D> vmn, hn::Vec<D> vmx, K& mn, K& mx) {
    HWY_ALIGN K a[hn::MaxLanes(D())], b[hn::MaxLanes(D())];
    hn::Store(vmn, d, a);
    hn::Store(vmx, d, b);
    for (size_t i = 0; i < hn::Lanes(d); ++i) {
        mn = a[i] < mn ? a[i] : mn;
        mx = b[i] > mx ? b[i] : mx;
    }
}

// Updates e with the selected pixels of a run of n pixels.
//
// Keys per type: bytes compare as unsigned bytes (signed ones with the
// sign bit flipped), 16-bit values as signed 16-bit lanes with the sign
// bit flipped, floats as they are. For floats the pixel is the first
// operand of Min/Max: the x86 minimum and maximum return the second
// operand when either is NaN, so NaN pixels are skipped as in the scalar
// definition.
template <class T, bool kMask>
void run(const T* HWY_RESTRICT p, const uint8_t* HWY_RESTRICT m, int n, st::Extrema<T>* e) {
    using K = typename st::Key<T>::K;
    const Vd<K> dk;
    const Vd<T> dt;
    constexpr int kE = int(hn::MaxLanes(Vd<T>()));
    static_assert(sizeof(K) == sizeof(T));
    int x = 0;
    if (n >= kE) {
        auto mn = hn::Set(dk, e->mn), mx = hn::Set(dk, e->mx);
        const auto hi = hn::Set(dk, st::Key<T>::hi), lo = hn::Set(dk, st::Key<T>::lo);
        auto any = hn::MaskFromVec(hn::Zero(dk));
        for (; x + kE <= n; x += kE) {
            hn::Vec<Vd<K>> k;
            if constexpr (std::is_same_v<T, float>)
                k = hn::LoadU(dt, p + x);
            else if constexpr (std::is_same_v<T, uint8_t>)
                k = hn::LoadU(dt, p + x);
            else if constexpr (std::is_same_v<T, int8_t>)
                k = hn::Xor(hn::BitCast(dk, hn::LoadU(dt, p + x)), hn::Set(dk, K(0x80)));
            else
                k = hn::Xor(hn::BitCast(dk, hn::LoadU(dt, p + x)), hn::Set(dk, K(-32768)));
            if constexpr (kMask && sizeof(K) == 1) {
                // Byte keys span 0..255: an unselected lane becomes 255 for
                // the minimum and 0 for the maximum with one OR and one AND.
                const auto unsel = hn::VecFromMask(dk, hn::Eq(hn::LoadU(dk, m + x), hn::Zero(dk)));
                any = hn::Or(any, hn::Not(hn::MaskFromVec(unsel)));
                mn = hn::Min(hn::Or(k, unsel), mn);
                mx = hn::Max(hn::AndNot(unsel, k), mx);
            } else if constexpr (kMask) {
                const auto sel = SelectedLanes(dk, m + x);
                any = hn::Or(any, sel);
                mn = hn::Min(hn::IfThenElse(sel, k, hi), mn);
                mx = hn::Max(hn::IfThenElse(sel, k, lo), mx);
            } else {
                mn = hn::Min(k, mn);
                mx = hn::Max(k, mx);
            }
        }
        fold_keys(dk, mn, mx, e->mn, e->mx);
        e->any = e->any || !kMask || !hn::AllFalse(dk, any);
    }
    st::extrema(p + x, kMask ? m + x : nullptr, n - x, *e);
}

}  // namespace zeb::HWY_NAMESPACE::extrema
HWY_AFTER_NAMESPACE();

#endif  // ZEB_STATS_MIN_MAX_KERNELS_

// SPDX-License-Identifier: Apache-2.0
// Minimum and maximum with the positions of their first occurrence, of one
// channel: one- or three-channel images of 8u, 8s, 16u and 32f, with or
// without a mask.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "stats/min_max_kernels.inl"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "stats/min_max_kernels.inl"

#if HWY_ONCE
#include "core/dispatch.h"
#include "core/simd_dispatch.h"
#include "stats/stats_common.h"

namespace zeb::impl {
namespace {

using namespace zeb::stats;

// The leftmost selected pixel of a row whose key equals k (it exists: the
// row's extremum came from it).
template <class T>
int first_in_row(const T* r, const uint8_t* m, int w, int ch, typename Key<T>::K k) {
    for (int x = 0; x < w; ++x)
        if (selected(m, x) && Key<T>::of(r[std::ptrdiff_t(x) * ch]) == k) return x;
    return 0;
}

// One pass finds the extreme keys and the first rows holding them; the
// columns come from a second look at those two rows.
template <class T, bool kMask>
ZebStatus min_max(const T* src, int ss, const uint8_t* mask, int ms, ZebiSize roi, int ch, int coi, Zeb32f* pMin,
                  Zeb32f* pMax, ZebiPoint* pMinIdx, ZebiPoint* pMaxIdx) {
    if (any_null(src) || (kMask && !mask)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    if (ZebStatus st = moment_steps<T>(ss, kMask ? &ms : nullptr, roi.width, ch)) return st;
    if (ch == 3 && bad_coi(coi)) return zebStsCOIErr;
    const int c = ch == 3 ? coi - 1 : 0;
    using K = typename Key<T>::K;
    bool found = false;
    K gmn{}, gmx{};
    int ymn = 0, ymx = 0;
    for (int y = 0; y < roi.height; ++y) {
        const uint8_t* m = kMask ? row(mask, ms, y) : nullptr;
        Extrema<T> e;
        for_channel<T>(row(src, ss, y), nullptr, ch, c, roi.width, [&](const T* p, const T*, int x0, int len) {
            ZEB_DISPATCH(extrema::run<T, kMask>)(p, m + (kMask ? x0 : 0), len, &e);
        });
        if (!e.any || !(e.mn <= e.mx)) continue;  // nothing selected (or only NaN)
        if (!found) {
            gmn = e.mn, gmx = e.mx, ymn = ymx = y, found = true;
            continue;
        }
        if (e.mn < gmn) gmn = e.mn, ymn = y;
        if (e.mx > gmx) gmx = e.mx, ymx = y;
    }
    float vmn = 0, vmx = 0;
    ZebiPoint imn{0, 0}, imx{0, 0};
    if (found) {
        const T* rmn = row(src, ss, ymn) + c;
        const T* rmx = row(src, ss, ymx) + c;
        imn = {first_in_row<T>(rmn, kMask ? row(mask, ms, ymn) : nullptr, roi.width, ch, gmn), ymn};
        imx = {first_in_row<T>(rmx, kMask ? row(mask, ms, ymx) : nullptr, roi.width, ch, gmx), ymx};
        // The pixels' own values: for floats this keeps the sign of a zero.
        vmn = float(rmn[std::ptrdiff_t(imn.x) * ch]);
        vmx = float(rmx[std::ptrdiff_t(imx.x) * ch]);
    }
    if (pMin) *pMin = vmn;
    if (pMax) *pMax = vmx;
    if (pMinIdx) *pMinIdx = imn;
    if (pMaxIdx) *pMaxIdx = imx;
    return zebStsNoErr;
}

}  // namespace

ZebStatus zebiMinMaxIndx_8u_C1R(const Zeb8u* p, int ps, ZebiSize r, Zeb32f* mn, Zeb32f* mx, ZebiPoint* imn,
                                ZebiPoint* imx) {
    return min_max<Zeb8u, false>(p, ps, nullptr, 0, r, 1, 1, mn, mx, imn, imx);
}
ZebStatus zebiMinMaxIndx_8u_C1MR(const Zeb8u* p, int ps, const Zeb8u* m, int ms, ZebiSize r, Zeb32f* mn, Zeb32f* mx,
                                 ZebiPoint* imn, ZebiPoint* imx) {
    return min_max<Zeb8u, true>(p, ps, m, ms, r, 1, 1, mn, mx, imn, imx);
}
ZebStatus zebiMinMaxIndx_8u_C3CR(const Zeb8u* p, int ps, ZebiSize r, int coi, Zeb32f* mn, Zeb32f* mx, ZebiPoint* imn,
                                 ZebiPoint* imx) {
    return min_max<Zeb8u, false>(p, ps, nullptr, 0, r, 3, coi, mn, mx, imn, imx);
}
ZebStatus zebiMinMaxIndx_8u_C3CMR(const Zeb8u* p, int ps, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb32f* mn,
                                  Zeb32f* mx, ZebiPoint* imn, ZebiPoint* imx) {
    return min_max<Zeb8u, true>(p, ps, m, ms, r, 3, coi, mn, mx, imn, imx);
}
ZebStatus zebiMinMaxIndx_8s_C1R(const Zeb8s* p, int ps, ZebiSize r, Zeb32f* mn, Zeb32f* mx, ZebiPoint* imn,
                                ZebiPoint* imx) {
    return min_max<Zeb8s, false>(p, ps, nullptr, 0, r, 1, 1, mn, mx, imn, imx);
}
ZebStatus zebiMinMaxIndx_8s_C1MR(const Zeb8s* p, int ps, const Zeb8u* m, int ms, ZebiSize r, Zeb32f* mn, Zeb32f* mx,
                                 ZebiPoint* imn, ZebiPoint* imx) {
    return min_max<Zeb8s, true>(p, ps, m, ms, r, 1, 1, mn, mx, imn, imx);
}
ZebStatus zebiMinMaxIndx_8s_C3CR(const Zeb8s* p, int ps, ZebiSize r, int coi, Zeb32f* mn, Zeb32f* mx, ZebiPoint* imn,
                                 ZebiPoint* imx) {
    return min_max<Zeb8s, false>(p, ps, nullptr, 0, r, 3, coi, mn, mx, imn, imx);
}
ZebStatus zebiMinMaxIndx_8s_C3CMR(const Zeb8s* p, int ps, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb32f* mn,
                                  Zeb32f* mx, ZebiPoint* imn, ZebiPoint* imx) {
    return min_max<Zeb8s, true>(p, ps, m, ms, r, 3, coi, mn, mx, imn, imx);
}
ZebStatus zebiMinMaxIndx_16u_C1R(const Zeb16u* p, int ps, ZebiSize r, Zeb32f* mn, Zeb32f* mx, ZebiPoint* imn,
                                 ZebiPoint* imx) {
    return min_max<Zeb16u, false>(p, ps, nullptr, 0, r, 1, 1, mn, mx, imn, imx);
}
ZebStatus zebiMinMaxIndx_16u_C1MR(const Zeb16u* p, int ps, const Zeb8u* m, int ms, ZebiSize r, Zeb32f* mn, Zeb32f* mx,
                                  ZebiPoint* imn, ZebiPoint* imx) {
    return min_max<Zeb16u, true>(p, ps, m, ms, r, 1, 1, mn, mx, imn, imx);
}
ZebStatus zebiMinMaxIndx_16u_C3CR(const Zeb16u* p, int ps, ZebiSize r, int coi, Zeb32f* mn, Zeb32f* mx,
                                  ZebiPoint* imn, ZebiPoint* imx) {
    return min_max<Zeb16u, false>(p, ps, nullptr, 0, r, 3, coi, mn, mx, imn, imx);
}
ZebStatus zebiMinMaxIndx_16u_C3CMR(const Zeb16u* p, int ps, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb32f* mn,
                                   Zeb32f* mx, ZebiPoint* imn, ZebiPoint* imx) {
    return min_max<Zeb16u, true>(p, ps, m, ms, r, 3, coi, mn, mx, imn, imx);
}
ZebStatus zebiMinMaxIndx_32f_C1R(const Zeb32f* p, int ps, ZebiSize r, Zeb32f* mn, Zeb32f* mx, ZebiPoint* imn,
                                 ZebiPoint* imx) {
    return min_max<Zeb32f, false>(p, ps, nullptr, 0, r, 1, 1, mn, mx, imn, imx);
}
ZebStatus zebiMinMaxIndx_32f_C1MR(const Zeb32f* p, int ps, const Zeb8u* m, int ms, ZebiSize r, Zeb32f* mn, Zeb32f* mx,
                                  ZebiPoint* imn, ZebiPoint* imx) {
    return min_max<Zeb32f, true>(p, ps, m, ms, r, 1, 1, mn, mx, imn, imx);
}
ZebStatus zebiMinMaxIndx_32f_C3CR(const Zeb32f* p, int ps, ZebiSize r, int coi, Zeb32f* mn, Zeb32f* mx,
                                  ZebiPoint* imn, ZebiPoint* imx) {
    return min_max<Zeb32f, false>(p, ps, nullptr, 0, r, 3, coi, mn, mx, imn, imx);
}
ZebStatus zebiMinMaxIndx_32f_C3CMR(const Zeb32f* p, int ps, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb32f* mn,
                                   Zeb32f* mx, ZebiPoint* imn, ZebiPoint* imx) {
    return min_max<Zeb32f, true>(p, ps, m, ms, r, 3, coi, mn, mx, imn, imx);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiMinMaxIndx_8u_C1R);
ZEB_EXPORT(zebiMinMaxIndx_8u_C1MR);
ZEB_EXPORT(zebiMinMaxIndx_8u_C3CR);
ZEB_EXPORT(zebiMinMaxIndx_8u_C3CMR);
ZEB_EXPORT(zebiMinMaxIndx_8s_C1R);
ZEB_EXPORT(zebiMinMaxIndx_8s_C1MR);
ZEB_EXPORT(zebiMinMaxIndx_8s_C3CR);
ZEB_EXPORT(zebiMinMaxIndx_8s_C3CMR);
ZEB_EXPORT(zebiMinMaxIndx_16u_C1R);
ZEB_EXPORT(zebiMinMaxIndx_16u_C1MR);
ZEB_EXPORT(zebiMinMaxIndx_16u_C3CR);
ZEB_EXPORT(zebiMinMaxIndx_16u_C3CMR);
ZEB_EXPORT(zebiMinMaxIndx_32f_C1R);
ZEB_EXPORT(zebiMinMaxIndx_32f_C1MR);
ZEB_EXPORT(zebiMinMaxIndx_32f_C3CR);
ZEB_EXPORT(zebiMinMaxIndx_32f_C3CMR);
#endif  // HWY_ONCE

// Minimum and maximum with the positions of their first occurrence, of one
// channel: one- or three-channel images of 8u, 8s, 16u and 32f, with or
// without a mask.
#include <type_traits>

#include "core/dispatch.h"
#include "core/row_driver.h"
#include "stats/stats_common.h"

namespace zeb::ZEB_VNS {
namespace {

using namespace zeb::stats;

#define ZEB_KERNELS "stats/min_max_kernels.inl"
#include "core/isa_expand.h"

template <class T, bool kMask>
void run(const T* p, const uint8_t* m, int n, Extrema<T>& e) {
    if (use_avx2())
        avx2::extrema_run<T, kMask>(p, m, n, e);
    else
        ssse3::extrema_run<T, kMask>(p, m, n, e);
}

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
        for_channel<T>(row(src, ss, y), nullptr, ch, c, roi.width,
                       [&](const T* p, const T*, int x0, int len) { run<T, kMask>(p, m + (kMask ? x0 : 0), len, e); });
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

#define ZEB_MINMAX(T, c)                                                                                          \
    ZebStatus zebiMinMaxIndx_##c##_C1R(const T* p, int ss, ZebiSize roi, Zeb32f* mn, Zeb32f* mx, ZebiPoint* imn,  \
                                       ZebiPoint* imx) {                                                          \
        return min_max<T, false>(p, ss, nullptr, 0, roi, 1, 1, mn, mx, imn, imx);                                 \
    }                                                                                                             \
    ZebStatus zebiMinMaxIndx_##c##_C1MR(const T* p, int ss, const Zeb8u* m, int ms, ZebiSize roi, Zeb32f* mn,    \
                                        Zeb32f* mx, ZebiPoint* imn, ZebiPoint* imx) {                             \
        return min_max<T, true>(p, ss, m, ms, roi, 1, 1, mn, mx, imn, imx);                                       \
    }                                                                                                             \
    ZebStatus zebiMinMaxIndx_##c##_C3CR(const T* p, int ss, ZebiSize roi, int coi, Zeb32f* mn, Zeb32f* mx,       \
                                        ZebiPoint* imn, ZebiPoint* imx) {                                         \
        return min_max<T, false>(p, ss, nullptr, 0, roi, 3, coi, mn, mx, imn, imx);                               \
    }                                                                                                             \
    ZebStatus zebiMinMaxIndx_##c##_C3CMR(const T* p, int ss, const Zeb8u* m, int ms, ZebiSize roi, int coi,      \
                                         Zeb32f* mn, Zeb32f* mx, ZebiPoint* imn, ZebiPoint* imx) {                \
        return min_max<T, true>(p, ss, m, ms, roi, 3, coi, mn, mx, imn, imx);                                     \
    }

ZEB_MINMAX(Zeb8u, 8u)
ZEB_MINMAX(Zeb8s, 8s)
ZEB_MINMAX(Zeb16u, 16u)
ZEB_MINMAX(Zeb32f, 32f)

}  // namespace zeb::ZEB_VNS

#define ZEB_MINMAX_EXPORTS(c)                \
    ZEB_EXPORT(zebiMinMaxIndx_##c##_C1R);    \
    ZEB_EXPORT(zebiMinMaxIndx_##c##_C1MR);   \
    ZEB_EXPORT(zebiMinMaxIndx_##c##_C3CR);   \
    ZEB_EXPORT(zebiMinMaxIndx_##c##_C3CMR)

ZEB_MINMAX_EXPORTS(8u);
ZEB_MINMAX_EXPORTS(8s);
ZEB_MINMAX_EXPORTS(16u);
ZEB_MINMAX_EXPORTS(32f);

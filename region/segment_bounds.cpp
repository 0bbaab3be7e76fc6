// SPDX-License-Identifier: Apache-2.0
// Segment bounds: one in-place raster pass marks a pixel when a neighbour
// already visited belongs to another segment (and is not itself a bound).
#include "core/checks.h"
#include "core/dispatch.h"

namespace zeb::impl {
namespace {

template <class T>
ZebStatus bound(T* img, int step, ZebiSize roi, T val, int norm) {
    if (img == nullptr) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const StepReq r = req<T>(step, roi.width);
    if (ZebStatus s = first_error({min_steps({r}), even_steps({r})})) return s;
    if (norm != 0 && norm != 1) return zebStsBadArgErr;
    const int w = roi.width;
    const bool diag = norm == 0 && w > 1;
    auto row = [&](int y) { return reinterpret_cast<T*>(reinterpret_cast<uint8_t*>(img) + std::ptrdiff_t(step) * y); };
    auto other = [&](T n, T v) { return n != v && n != val; };
    T* cur = row(0);
    for (int x = 1; x < w; ++x)
        if (other(cur[x - 1], cur[x])) cur[x] = val;
    for (int y = 1; y < roi.height; ++y) {
        const T* up = row(y - 1);
        cur = row(y);
        for (int x = 0; x < w; ++x) {
            const T v = cur[x];
            bool mark = other(up[x], v);
            if (x > 0) mark = mark || other(cur[x - 1], v);
            if (diag) {
                if (x > 0) mark = mark || other(up[x - 1], v);
                if (x + 1 < w) mark = mark || other(up[x + 1], v);
            }
            if (mark) cur[x] = val;
        }
    }
    return zebStsNoErr;
}

}  // namespace

ZebStatus zebiBoundSegments_8u_C1IR(Zeb8u* m, int step, ZebiSize roi, Zeb8u val, ZebiNorm norm) {
    return bound(m, step, roi, val, norm);
}
ZebStatus zebiBoundSegments_16u_C1IR(Zeb16u* m, int step, ZebiSize roi, Zeb16u val, ZebiNorm norm) {
    return bound(m, step, roi, val, norm);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiBoundSegments_8u_C1IR);
ZEB_EXPORT(zebiBoundSegments_16u_C1IR);

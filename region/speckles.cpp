// SPDX-License-Identifier: Apache-2.0
// Speckle marking: small 4-connected blobs of similar values are set to a
// new value. Regions grow depth first from an explicit stack in the
// caller's buffer; a region's fate is decided once, at its first pixel, and
// kept in one flag byte per label for the pixels the scan reaches later.
#include <cmath>
#include <cstring>
#include <type_traits>

#include "core/checks.h"
#include "core/dispatch.h"

namespace zeb::impl {
namespace {

template <class T>
bool near(T a, T b, T maxDiff) {
    if constexpr (std::is_floating_point_v<T>)
        return std::fabs(a - b) <= maxDiff;
    else
        return std::abs(int32_t(a) - int32_t(b)) <= int32_t(maxDiff);
}

template <class T>
ZebStatus speckles(T* img, int step, ZebiSize roi, T newVal, int maxSize, T maxDiff, int norm, uint8_t* buf) {
    if (any_null(img, buf)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const StepReq r = req<T>(step, roi.width);
    if (ZebStatus s = first_error({min_steps({r}), even_steps({r})})) return s;
    if (norm != 1) return zebStsBadNormErr;

    const int w = roi.width, h = roi.height;
    const int64_t px = int64_t(w) * h;
    const std::ptrdiff_t sw = step / std::ptrdiff_t(sizeof(T));  // the step in pixels (checked above)
    uint8_t* base = reinterpret_cast<uint8_t*>((reinterpret_cast<uintptr_t>(buf) + 63) & ~uintptr_t(63));
    int32_t* labels = reinterpret_cast<int32_t*>(base);
    int32_t* stack = labels + px;                                 // {x, y} pairs
    uint8_t* flags = reinterpret_cast<uint8_t*>(stack + 2 * px);  // indexed by label
    std::memset(labels, 0, size_t(px) * sizeof(int32_t));

    int32_t next = 1;
    for (int y = 0; y < h; ++y) {
        T* row = img + sw * y;
        int32_t* lrow = labels + int64_t(w) * y;
        for (int x = 0; x < w; ++x) {
            T& v = row[x];
            if (v == newVal) continue;
            if (lrow[x]) {
                if (flags[lrow[x]]) v = newVal;
                continue;
            }
            lrow[x] = next;
            int64_t sp = 1, count = 1;
            stack[0] = x, stack[1] = y;
            while (sp > 0) {
                --sp;
                const int cx = stack[2 * sp], cy = stack[2 * sp + 1];
                const T* c = img + sw * cy + cx;
                int32_t* lc = labels + int64_t(w) * cy + cx;
                const T pv = *c;
                // Right, left, upper, lower: offsets in pixels and in labels.
                auto visit = [&](std::ptrdiff_t di, std::ptrdiff_t dl, int nx, int ny) {
                    if (lc[dl]) return;
                    const T nv = c[di];
                    if (nv == newVal || !near(nv, pv, maxDiff)) return;
                    lc[dl] = next;
                    stack[2 * sp] = nx, stack[2 * sp + 1] = ny, ++sp;
                    ++count;
                };
                if (cx + 1 < w) visit(1, 1, cx + 1, cy);
                if (cx > 0) visit(-1, -1, cx - 1, cy);
                if (cy > 0) visit(-sw, -w, cx, cy - 1);
                if (cy + 1 < h) visit(sw, w, cx, cy + 1);
            }
            const bool speckle = count <= int64_t(maxSize);
            flags[next] = speckle;
            if (speckle) v = newVal;
            ++next;
        }
    }
    return zebStsNoErr;
}

}  // namespace

ZebStatus zebiMarkSpecklesGetBufferSize(ZebiSize roi, ZebDataType type, int channels, int* size) {
    if (size == nullptr) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    if (type != zeb8u && type != zeb16u && type != zeb16s && type != zeb32f) return zebStsDataTypeErr;
    if (channels != 1) return zebStsNumChannelsErr;
    return put_size(int64_t(roi.width) * roi.height * 13 + 64, size);
}

ZebStatus zebiMarkSpeckles_8u_C1IR(Zeb8u* img, int step, ZebiSize roi, Zeb8u newVal, int maxSpeckleSize,
                                   Zeb8u maxPixDiff, ZebiNorm norm, Zeb8u* buf) {
    return speckles(img, step, roi, newVal, maxSpeckleSize, maxPixDiff, norm, buf);
}
ZebStatus zebiMarkSpeckles_16u_C1IR(Zeb16u* img, int step, ZebiSize roi, Zeb16u newVal, int maxSpeckleSize,
                                    Zeb16u maxPixDiff, ZebiNorm norm, Zeb8u* buf) {
    return speckles(img, step, roi, newVal, maxSpeckleSize, maxPixDiff, norm, buf);
}
ZebStatus zebiMarkSpeckles_16s_C1IR(Zeb16s* img, int step, ZebiSize roi, Zeb16s newVal, int maxSpeckleSize,
                                    Zeb16s maxPixDiff, ZebiNorm norm, Zeb8u* buf) {
    return speckles(img, step, roi, newVal, maxSpeckleSize, maxPixDiff, norm, buf);
}
ZebStatus zebiMarkSpeckles_32f_C1IR(Zeb32f* img, int step, ZebiSize roi, Zeb32f newVal, int maxSpeckleSize,
                                    Zeb32f maxPixDiff, ZebiNorm norm, Zeb8u* buf) {
    return speckles(img, step, roi, newVal, maxSpeckleSize, maxPixDiff, norm, buf);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiMarkSpecklesGetBufferSize);
ZEB_EXPORT(zebiMarkSpeckles_8u_C1IR);
ZEB_EXPORT(zebiMarkSpeckles_16u_C1IR);
ZEB_EXPORT(zebiMarkSpeckles_16s_C1IR);
ZEB_EXPORT(zebiMarkSpeckles_32f_C1IR);

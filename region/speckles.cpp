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
    uint8_t* base = reinterpret_cast<uint8_t*>((reinterpret_cast<uintptr_t>(buf) + 63) & ~uintptr_t(63));
    int32_t* labels = reinterpret_cast<int32_t*>(base);
    int32_t* stack = labels + px;                                 // {x, y} pairs
    uint8_t* flags = reinterpret_cast<uint8_t*>(stack + 2 * px);  // indexed by label
    std::memset(labels, 0, size_t(px) * sizeof(int32_t));
    auto at = [&](int x, int y) -> T& { return reinterpret_cast<T*>(reinterpret_cast<uint8_t*>(img) + std::ptrdiff_t(step) * y)[x]; };

    int32_t next = 1;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            T& v = at(x, y);
            if (v == newVal) continue;
            int32_t& lab = labels[int64_t(y) * w + x];
            if (lab) {
                if (flags[lab]) v = newVal;
                continue;
            }
            lab = next;
            int64_t sp = 0, count = 1;
            stack[0] = x, stack[1] = y, sp = 1;
            while (sp > 0) {
                --sp;
                const int px0 = stack[2 * sp], py0 = stack[2 * sp + 1];
                const T pv = at(px0, py0);
                auto visit = [&](int nx, int ny) {
                    int32_t& nl = labels[int64_t(ny) * w + nx];
                    if (nl) return;
                    const T nv = at(nx, ny);
                    if (nv == newVal || !near(nv, pv, maxDiff)) return;
                    nl = next;
                    stack[2 * sp] = nx, stack[2 * sp + 1] = ny, ++sp;
                    ++count;
                };
                if (px0 + 1 < w) visit(px0 + 1, py0);
                if (px0 > 0) visit(px0 - 1, py0);
                if (py0 > 0) visit(px0, py0 - 1);
                if (py0 + 1 < h) visit(px0, py0 + 1);
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

// SPDX-License-Identifier: Apache-2.0
// Corner response of float and 8-bit images and its buffer-size query.
// The image is cut into regions: strips along the sides whose neighbours
// follow the border rule, and interior tiles whose neighbours are all in
// memory, small enough that a tile's product planes stay in the first-level
// cache. Every region is computed the same way (a float block of the
// pixels its windows reach, then the vector kernels), so the cut does not
// change any value.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "feature/harris_kernels.inl"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "feature/harris_kernels.inl"

#if HWY_ONCE
#include <algorithm>
#include <cmath>

#include "core/border.h"
#include "core/checks.h"
#include "core/dispatch.h"
#include "core/simd_dispatch.h"
#include "feature/harris_ref.h"

namespace zeb::harris {
namespace {

// Window geometry: the window of x covers x - lo .. x + hi.
struct Window {
    int aw, lo, hi;
    explicit Window(int a) : aw(a), lo(a / 2 - (a % 2 == 0 ? 1 : 0)), hi(a / 2) {}
};

// The largest region one call computes at once: the interior tile of
// tile constant t (floats per product plane), without the limit of the
// interior's size.
struct Tile {
    int w, h;
};
Tile tile_limit(int aw, int t) {
    const int64_t root = int64_t(std::sqrt(double(t)));
    int64_t q = std::max<int64_t>(root - (aw - 1), 0);
    q = (q + 15) / 16 * 16;
    const int64_t w = std::max<int64_t>(8 * int64_t(aw), q);
    const int64_t h = std::max<int64_t>(8 * int64_t(aw), t / (q + aw - 1) - (aw - 1));
    return {int(std::min<int64_t>(w, INT32_MAX)), int(std::min<int64_t>(h, INT32_MAX))};
}

constexpr int kTile8u = 8827, kTile32f = 7111;

// Windows beyond this side make regions whose sizes no int holds.
constexpr int kMaxWindow = 1 << 20;

// Work arrays for regions of up to rw x rh pixels with kernel radius r.
struct Layout {
    int64_t block, line, plane, sums;
    Layout(int rw, int rh, int aw, int r) {
        const int64_t dw = int64_t(rw) + aw - 1, dh = int64_t(rh) + aw - 1;
        const int64_t bw = dw + 2 * r, bh = dh + 2 * r;
        block = bw * bh, line = bw, plane = dw * dh, sums = 3 * dw;
    }
    // Floats, each of the seven arrays padded to 64 bytes, and the 32-byte
    // alignment of the buffer's start.
    int64_t bytes() const { return 4 * (block + 2 * line + 3 * plane + sums) + 7 * 64 + 32; }
};

int64_t buffer_bytes(ZebiSize roi, int r, int aw, int tileConst) {
    const Tile t = tile_limit(aw, tileConst);
    return Layout(std::min(t.w, roi.width), std::min(t.h, roi.height), aw, r).bytes();
}

// One call's arguments, as the region computation sees them.
template <class S>
struct Job {
    const S* src;
    int ss;
    float* dst;
    int ds;
    int w, h;
    int kind;  // 0 Sobel 3x3, 1 Sobel 5x5, 2 Scharr, 3 central differences
    int r;
    Window win;
    float k, s;
    int32_t mode;  // 0 constant, 1 replicate (6 turned into the four flags)
    bool top, bottom, left, right;
    S value;
    Tile limit;
    unsigned char* buffer;  // aligned to 32
};

// Computes the responses of the region x0 .. x0+rw-1, y0 .. y0+rh-1.
template <class S>
void region(const Job<S>& j, int x0, int y0, int rw, int rh) {
    const int aw = j.win.aw, r = j.r;
    const int dw = rw + aw - 1, dh = rh + aw - 1, bw = dw + 2 * r, bh = dh + 2 * r;
    const int bx = x0 - j.win.lo - r, by = y0 - j.win.lo - r;  // block origin in image coordinates
    const Layout lay(rw, rh, aw, r);
    Carver carve(j.buffer);
    float* block = carve.take<float>(std::size_t(lay.block));
    float* tx = carve.take<float>(std::size_t(lay.line));
    float* ty = carve.take<float>(std::size_t(lay.line));
    float* pxx = carve.take<float>(std::size_t(lay.plane));
    float* pyy = carve.take<float>(std::size_t(lay.plane));
    float* pxy = carve.take<float>(std::size_t(lay.plane));
    float* sums = carve.take<float>(std::size_t(lay.sums));

    // The block: pixels in memory are converted, the rest follow the rule.
    const auto convert = ZEB_DISPATCH(harris::convert_row<S>);
    const int memLo = j.left ? INT32_MIN : 0, memHi = j.right ? INT32_MAX : j.w;
    const int a = std::clamp(memLo, bx, bx + bw), b = std::clamp(memHi, bx, bx + bw);
    for (int y = 0; y < bh; ++y) {
        const int yy = by + y;
        float* out = block + std::ptrdiff_t(y) * bw;
        const bool inMem = (yy >= 0 && yy < j.h) || (yy < 0 && j.top) || (yy >= j.h && j.bottom);
        const S* srow = nullptr;
        if (inMem)
            srow = row(j.src, j.ss, yy);
        else if (j.mode == border::kRepl)
            srow = row(j.src, j.ss, yy < 0 ? 0 : j.h - 1);
        if (srow == nullptr) {
            std::fill(out, out + bw, float(j.value));
            continue;
        }
        if (b > a) convert(srow + a, out + (a - bx), b - a);
        for (int x = bx; x < a; ++x) out[x - bx] = j.mode == border::kRepl ? float(srow[0]) : float(j.value);
        for (int x = std::max(b, bx); x < bx + bw; ++x)
            out[x - bx] = j.mode == border::kRepl ? float(srow[j.w - 1]) : float(j.value);
    }

    switch (j.kind) {
        case 0: ZEB_DISPATCH(harris::products<Sobel3>)(block, bw, dw, dh, tx, ty, pxx, pyy, pxy); break;
        case 1: ZEB_DISPATCH(harris::products<Sobel5>)(block, bw, dw, dh, tx, ty, pxx, pyy, pxy); break;
        case 2: ZEB_DISPATCH(harris::products<Scharr3>)(block, bw, dw, dh, tx, ty, pxx, pyy, pxy); break;
        default: ZEB_DISPATCH(harris::products<Central3>)(block, bw, dw, dh, tx, ty, pxx, pyy, pxy); break;
    }
    ZEB_DISPATCH(harris::response)(pxx, pyy, pxy, rw, rh, aw, sums, j.k, j.s,
                                   row(j.dst, j.ds, y0) + x0, j.ds);
}

// A rectangle cut into regions of at most tw x th pixels, in bands of th
// rows from the top, each band from the left.
template <class S>
void tiles(const Job<S>& j, int x0, int y0, int w, int h, int tw, int th) {
    for (int y = 0; y < h; y += th)
        for (int x = 0; x < w; x += tw) region(j, x0 + x, y0 + y, std::min(tw, w - x), std::min(th, h - y));
}

template <class S>
void run(Job<S>& j) {
    const int m1 = j.r + j.win.lo, m2 = j.r + j.win.hi;
    const int w = j.w, h = j.h;
    const Tile lim = j.limit;
    if (m1 + m2 >= w || m1 + m2 >= h) {  // no interior: all of it by the border rule
        tiles(j, 0, 0, w, h, std::min(lim.w, w), std::min(lim.h, h));
        return;
    }
    const int top = j.top ? 0 : m1, bottom = j.bottom ? 0 : m2;
    const int left = j.left ? 0 : m1, right = j.right ? 0 : m2;
    // Strips: top, left, right, bottom.
    if (top) tiles(j, 0, 0, w, top, lim.w, lim.h);
    if (left) tiles(j, 0, top, left, h - top - bottom, lim.w, lim.h);
    if (right) tiles(j, w - right, top, right, h - top - bottom, lim.w, lim.h);
    if (bottom) tiles(j, 0, h - bottom, w, bottom, lim.w, lim.h);
    // The interior in tiles of the interior's own size.
    const int iw = w - left - right, ih = h - top - bottom;
    if (iw < 1 || ih < 1) return;
    tiles(j, left, top, iw, ih, std::min(lim.w, iw), std::min(lim.h, ih));
}

template <class S>
ZebStatus harris(const S* src, int ss, float* dst, int ds, ZebiSize roi, int filterType, int mask, int aw, float k,
                 float scale, int32_t borderType, S value, uint8_t* buffer) {
    constexpr bool kFloat = std::is_same_v<S, float>;
    if (any_null(src, dst, buffer)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    if ((kFloat && ss % 4 != 0) || ds % 4 != 0) return zebStsNotEvenStepErr;
    if (filterType != 2 && filterType != 5 && filterType != 8) return zebStsBadFilterTypeErr;
    if (mask != 33 && !(mask == 55 && filterType == 2)) return zebStsMaskSizeErr;
    const int32_t mode = borderType & 7;
    if (mode != border::kConst && mode != border::kRepl && mode != border::kInMem) return zebStsBorderErr;
    if (aw < 1 || aw > kMaxWindow) return zebStsSizeErr;
    if (ss < 0 || ds < 0) return zebStsStepErr;
    if constexpr (kFloat)
        if (static_cast<const void*>(src) == static_cast<const void*>(dst)) return zebStsInplaceModeNotSupportedErr;

    const uint32_t a = uint32_t(aw);
    const float s = float(double(a * a * a * a) * double(scale));
    const bool inMem = mode == border::kInMem;
    Job<S> j{src, ss, dst, ds, roi.width, roi.height,
             filterType == 5 ? 2 : filterType == 8 ? 3 : mask == 55 ? 1 : 0, mask == 55 ? 2 : 1, Window(aw), k, s,
             inMem ? border::kRepl : mode,
             inMem || (borderType & border::kTop), inMem || (borderType & border::kBottom),
             inMem || (borderType & border::kLeft), inMem || (borderType & border::kRight),
             value, tile_limit(aw, kFloat ? kTile32f : kTile8u), align_up(buffer, 32)};
    run(j);
    return zebStsNoErr;
}

}  // namespace
}  // namespace zeb::harris

namespace zeb::impl {

ZebStatus zebiHarrisCornerGetBufferSize(ZebiSize roi, ZebiMaskSize filterMask, int avgWndSize, ZebDataType dataType,
                                        int numChannels, int* pBufferSize) {
    if (pBufferSize == nullptr) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    if (filterMask != 33 && filterMask != 55) return zebStsMaskSizeErr;
    if (dataType != zeb8u && dataType != zeb32f) return zebStsDataTypeErr;
    if (numChannels != 1) return zebStsNumChannelsErr;
    if (avgWndSize < 1 || avgWndSize > harris::kMaxWindow) return zebStsSizeErr;
    return put_size(harris::buffer_bytes(roi, filterMask == 55 ? 2 : 1, avgWndSize,
                                         dataType == zeb8u ? harris::kTile8u : harris::kTile32f),
                    pBufferSize);
}

ZebStatus zebiHarrisCorner_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roi,
                                   ZebiDifferentialKernel filterType, ZebiMaskSize filterMask, int avgWndSize,
                                   float k, float scale, ZebiBorderType borderType, Zeb32f borderValue,
                                   Zeb8u* pBuffer) {
    return harris::harris(pSrc, srcStep, pDst, dstStep, roi, filterType, filterMask, avgWndSize, k, scale,
                          borderType, borderValue, pBuffer);
}

ZebStatus zebiHarrisCorner_8u32f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roi,
                                     ZebiDifferentialKernel filterType, ZebiMaskSize filterMask, int avgWndSize,
                                     float k, float scale, ZebiBorderType borderType, Zeb8u borderValue,
                                     Zeb8u* pBuffer) {
    return harris::harris(pSrc, srcStep, pDst, dstStep, roi, filterType, filterMask, avgWndSize, k, scale,
                          borderType, borderValue, pBuffer);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiHarrisCornerGetBufferSize);
ZEB_EXPORT(zebiHarrisCorner_32f_C1R);
ZEB_EXPORT(zebiHarrisCorner_8u32f_C1R);
#endif  // HWY_ONCE

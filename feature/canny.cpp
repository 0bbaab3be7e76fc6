// SPDX-License-Identifier: Apache-2.0
// Edge detection: the detectors over caller-given derivatives (16s, 32f)
// and over an 8-bit image with its own derivatives and border rule, with
// their buffer-size queries. Each call runs the rows through the vector
// kernels (magnitude, suppression into a framed map of candidates) and then
// grows the edges from the strong candidates with a stack kept in the
// caller's buffer.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "feature/canny_kernels.inl"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "feature/canny_kernels.inl"

#if HWY_ONCE
#include <cmath>
#include <cstring>

#include "core/border.h"
#include "core/checks.h"
#include "core/dispatch.h"
#include "core/simd_dispatch.h"
#include "feature/canny_ref.h"

namespace zeb::canny {
namespace {

// A byte count rounded up to a multiple of 32.
constexpr int64_t a32(int64_t v) { return (v + 31) / 32 * 32; }

// Sixteen-bit stack coordinates serve while both dimensions stay below
// 65533 (a framed coordinate then still fits).
bool short_stack(ZebiSize roi) { return roi.width < 65533 && roi.height < 65533; }

int64_t derivative_bytes(ZebiSize roi) {
    const int64_t framed = (int64_t(roi.width) + 2) * (int64_t(roi.height) + 2);
    return 16 * int64_t(roi.width) + 160 + (short_stack(roi) ? 5 : 9) * framed;
}

int64_t border_bytes(ZebiSize roi, int k) {
    const int64_t W = int64_t(roi.width) + k - 1, H = int64_t(roi.height) + k - 1;
    return a32(16 * W) + a32(W * H) + a32(4 * W * H) + (k > std::min(roi.width, roi.height) ? a32(W * H) : 0) + 64;
}

// A float threshold truncated toward zero for the 16-bit magnitudes; one
// beyond every magnitude (or NaN, which no magnitude passes) stays above
// them all.
int32_t truncated(float t) {
    if (!(t < 2147483648.f)) return INT32_MAX;
    return int32_t(t);
}

// The edges: the candidates (map bytes with the top bit set) 8-connected
// to the pixels on the stack, whose destination bytes are already 255.
// map is framed: pixel (r, c) at map[(r + 1) * ms + c + 1], the frame 0.
template <class C>
class Tracer {
public:
    Tracer(const uint8_t* map, int ms, uint8_t* dst, int ds, int w, int h, C* stack, std::size_t capacity)
        : map_(map), ms_(ms), dst_(dst), ds_(ds), w_(w), h_(h), stack_(stack), cap_(capacity) {}

    // Marks (r, c) as an edge and remembers it; false once the stack is
    // full (the pixel is marked all the same).
    bool push(int r, int c) {
        row(dst_, ds_, r)[c] = 255;
        if (n_ == cap_) {
            overflow_ = true;
            return false;
        }
        stack_[2 * n_] = C(r), stack_[2 * n_ + 1] = C(c);
        ++n_;
        return true;
    }

    void trace() {
        while (n_ > 0 && !overflow_) {
            --n_;
            const int r = int(stack_[2 * n_]), c = int(stack_[2 * n_ + 1]);
            const uint8_t* m = map_ + std::ptrdiff_t(r) * ms_ + c;  // the framed (r - 1, c - 1)
            static constexpr int kOff[8][2] = {{-1, -1}, {-1, 0}, {-1, 1}, {0, -1}, {0, 1}, {1, -1}, {1, 0}, {1, 1}};
            for (const auto& o : kOff) {
                if (!(m[std::ptrdiff_t(o[0] + 1) * ms_ + o[1] + 1] & 0x80)) continue;  // frame bytes are 0
                const int rr = r + o[0], cc = c + o[1];
                if (row(dst_, ds_, rr)[cc] == 0 && !push(rr, cc)) break;
            }
        }
        if (overflow_) sweep();
    }

    // Without room on the stack: sweeps the image forward and backward,
    // marking candidates next to an edge, until nothing changes. The set of
    // edges is the same.
    void sweep() {
        auto grow = [&](int r, int c) {
            if (row(dst_, ds_, r)[c] != 0 || !(map_[std::ptrdiff_t(r + 1) * ms_ + c + 1] & 0x80)) return false;
            for (int dr = -1; dr <= 1; ++dr)
                for (int dc = -1; dc <= 1; ++dc) {
                    const int rr = r + dr, cc = c + dc;
                    if (rr < 0 || rr >= h_ || cc < 0 || cc >= w_) continue;
                    if (row(dst_, ds_, rr)[cc] == 255) {
                        row(dst_, ds_, r)[c] = 255;
                        return true;
                    }
                }
            return false;
        };
        for (bool changed = true; changed;) {
            changed = false;
            for (int r = 0; r < h_; ++r)
                for (int c = 0; c < w_; ++c) changed |= grow(r, c);
            for (int r = h_ - 1; r >= 0; --r)
                for (int c = w_ - 1; c >= 0; --c) changed |= grow(r, c);
        }
    }

private:
    const uint8_t* map_;
    int ms_;
    uint8_t* dst_;
    int ds_, w_, h_;
    C* stack_;
    std::size_t cap_, n_ = 0;
    bool overflow_ = false;
};

// Calls f(x) for every strong byte (255) of a map row of w bytes.
template <class F>
void for_strong(const uint8_t* m, int w, F&& f) {
    const uint8_t* p = m;
    const uint8_t* end = m + w;
    while ((p = static_cast<const uint8_t*>(std::memchr(p, kStrong, std::size_t(end - p)))) != nullptr) {
        f(int(p - m));
        if (++p == end) break;
    }
}

void clear(uint8_t* dst, int ds, int w, int h) {
    for (int y = 0; y < h; ++y) std::memset(row(dst, ds, y), 0, std::size_t(w));
}

// The detectors over caller-given derivatives. M is the magnitude type
// (int32 for 16-bit derivatives, float for float ones), C the stack's
// coordinate type.
template <class S, class M, class C>
void detect(const S* dx, int dxs, const S* dy, int dys, uint8_t* dst, int ds, int w, int h, M low, M high,
            uint8_t* buffer) {
    uint8_t* p = align_up(buffer, 32);
    const int rs = w + 2;  // ring row: a zero, the w magnitudes, a zero
    M* ring = reinterpret_cast<M*>(p);
    std::memset(ring, 0, sizeof(M) * std::size_t(4 * rs));
    p = align_up(p + sizeof(M) * std::size_t(4 * rs), 32);
    uint8_t* map = p;
    const int ms = w + 2;
    std::memset(map, 0, std::size_t(ms) * std::size_t(h + 2));
    C* stack = reinterpret_cast<C*>(align_up(p + std::size_t(ms) * std::size_t(h + 2), 32));
    clear(dst, ds, w, h);

    Tracer<C> tracer(map, ms, dst, ds, w, h, stack, std::size_t(ms) * std::size_t(h + 2));
    const M* zero = ring + 3 * rs + 1;
    auto slot = [&](int y) { return ring + (y % 3) * rs + 1; };
    auto finish = [&](int y) {  // suppression and strong pixels of row y
        const M* prev = y > 0 ? slot(y - 1) : zero;
        const M* next = y + 1 < h ? slot(y + 1) : zero;
        uint8_t* mr = map + std::ptrdiff_t(y + 1) * ms + 1;
        ZEB_DISPATCH(canny::suppress_row<S, M>)(row(dx, dxs, y), row(dy, dys, y), prev, slot(y), next, mr, w, high);
        for_strong(mr, w, [&](int x) { tracer.push(y, x); });
    };
    const auto magnitude = ZEB_DISPATCH(canny::magnitude_row<S, M>);
    for (int y = 0; y < h; ++y) {
        magnitude(row(dx, dxs, y), row(dy, dys, y), slot(y), w, low);
        if (y > 0) finish(y - 1);
    }
    finish(h - 1);
    tracer.trace();
}

template <class S>
ZebStatus derivative_detector(const S* dx, int dxs, const S* dy, int dys, uint8_t* dst, int ds, ZebiSize roi,
                              float low, float high, uint8_t* buffer) {
    if (any_null(dx, dy, dst, buffer)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const StepReq rx = req<S>(dxs, roi.width), ry = req<S>(dys, roi.width), rd = req<uint8_t>(ds, roi.width);
    if (ZebStatus s = first_error({min_steps({rx, ry, rd}), even_steps({rx, ry})})) return s;
    if (low < 0 || low > high) return zebStsBadArgErr;
    const int w = roi.width, h = roi.height;
    if constexpr (std::is_same_v<S, int16_t>) {
        const int32_t lowI = truncated(low), highI = truncated(high);
        if (short_stack(roi))
            detect<S, int32_t, uint16_t>(dx, dxs, dy, dys, dst, ds, w, h, lowI, highI, buffer);
        else
            detect<S, int32_t, uint32_t>(dx, dxs, dy, dys, dst, ds, w, h, lowI, highI, buffer);
    } else {
        if (short_stack(roi))
            detect<S, float, uint16_t>(dx, dxs, dy, dys, dst, ds, w, h, low, high, buffer);
        else
            detect<S, float, uint32_t>(dx, dxs, dy, dys, dst, ds, w, h, low, high, buffer);
    }
    return zebStsNoErr;
}

// The detector over an 8-bit image: kKind 0 Sobel 3x3, 1 Scharr 3x3, 2
// Sobel 5x5. Rows of the source with k/2 border pixels on each side are
// made one at a time into a ring of k rows (in the stack's area, which is
// free until the tracing starts); each output row takes its gradient from
// them, and the row above it is suppressed.
template <int kKind, bool kL2>
void detect_border(const uint8_t* src, int ss, uint8_t* dst, int ds, int w, int h, const border::Spec& spec,
                   uint8_t value, float low, float high, uint8_t* buffer) {
    constexpr int k = kKind == 2 ? 5 : 3, r = k / 2;
    const int W = w + k - 1, H = h + k - 1;
    uint8_t* p = align_up(buffer, 32);
    float* ring = reinterpret_cast<float*>(p);  // three rows and a zero row of W floats
    std::memset(ring, 0, sizeof(float) * std::size_t(4) * std::size_t(W));
    p += a32(16 * int64_t(W));
    uint8_t* map = p;
    const int ms = w + 2;  // fits in W * H bytes
    std::memset(map, 0, std::size_t(ms) * std::size_t(h + 2));
    p += a32(int64_t(W) * H);
    uint8_t* area = p;
    const std::size_t areaBytes = std::size_t(4) * std::size_t(W) * std::size_t(H);

    uint8_t* ext = area;  // k rows of W bytes
    auto ext_row = [&](int j) { return ext + std::ptrdiff_t(((j % k) + k) % k) * W; };
    auto make_row = [&](int j) {
        const uint8_t* s = border::source_row(src, ss, j, h, spec);
        if (s == nullptr)
            std::memset(ext_row(j), value, std::size_t(W));
        else
            border::extend_row(s, w, 1, r, r, spec, &value, ext_row(j));
    };
    for (int j = -r; j < r; ++j) make_row(j);

    const float* zero = ring + 3 * W + 1;
    auto slot = [&](int y) { return ring + (y % 3) * W + 1; };
    const auto suppress = ZEB_DISPATCH(canny::suppress_code_row);
    auto finish = [&](int y) {
        suppress(map + std::ptrdiff_t(y + 1) * ms + 1, y > 0 ? slot(y - 1) : zero, slot(y),
                 y + 1 < h ? slot(y + 1) : zero, w, high);
    };
    const auto gradient = ZEB_DISPATCH(canny::gradient_row<kKind, kL2>);
    for (int y = 0; y < h; ++y) {
        make_row(y + r);
        const uint8_t* rows[k];
        for (int j = 0; j < k; ++j) rows[j] = ext_row(y - r + j);
        gradient(rows, slot(y), map + std::ptrdiff_t(y + 1) * ms + 1, w, low);
        if (y > 0) finish(y - 1);
    }
    finish(h - 1);

    // Every strong pixel is stacked first, then the destination is cleared
    // and the stacked pixels become edges.
    uint32_t* stack = reinterpret_cast<uint32_t*>(area);
    const std::size_t cap = areaBytes / (2 * sizeof(uint32_t));
    std::size_t n = 0;
    bool full = false;
    for (int y = 0; y < h && !full; ++y)
        for_strong(map + std::ptrdiff_t(y + 1) * ms + 1, w, [&](int x) {
            if (n == cap) {
                full = true;
                return;
            }
            stack[2 * n] = uint32_t(y), stack[2 * n + 1] = uint32_t(x);
            ++n;
        });
    clear(dst, ds, w, h);
    Tracer<uint32_t> tracer(map, ms, dst, ds, w, h, stack, cap);
    if (full) {
        // More strong pixels than stack entries: mark them all and let the
        // tracer sweep.
        for (int y = 0; y < h; ++y)
            for_strong(map + std::ptrdiff_t(y + 1) * ms + 1, w, [&](int x) { row(dst, ds, y)[x] = 255; });
        tracer.sweep();
        return;
    }
    // The stacked pixels become edges; the tracer takes them as its own.
    for (std::size_t i = 0; i < n; ++i) tracer.push(int(stack[2 * i]), int(stack[2 * i + 1]));
    tracer.trace();
}

template <int kKind>
void detect_border_norm(bool l2, const uint8_t* src, int ss, uint8_t* dst, int ds, int w, int h,
                        const border::Spec& spec, uint8_t value, float low, float high, uint8_t* buffer) {
    if (l2)
        detect_border<kKind, true>(src, ss, dst, ds, w, h, spec, value, low, high, buffer);
    else
        detect_border<kKind, false>(src, ss, dst, ds, w, h, spec, value, low, high, buffer);
}

}  // namespace
}  // namespace zeb::canny

namespace zeb::impl {

using namespace canny;

ZebStatus zebiCannyGetSize(ZebiSize roi, int* pBufferSize) {
    if (pBufferSize == nullptr) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    return put_size(derivative_bytes(roi), pBufferSize);
}

ZebStatus zebiCanny_16s8u_C1R(const Zeb16s* pSrcDx, int srcDxStep, const Zeb16s* pSrcDy, int srcDyStep,
                              Zeb8u* pDstEdges, int dstEdgeStep, ZebiSize roi, Zeb32f lowThresh, Zeb32f highThresh,
                              Zeb8u* pBuffer) {
    return derivative_detector(pSrcDx, srcDxStep, pSrcDy, srcDyStep, pDstEdges, dstEdgeStep, roi, lowThresh,
                               highThresh, pBuffer);
}

ZebStatus zebiCanny_32f8u_C1R(const Zeb32f* pSrcDx, int srcDxStep, const Zeb32f* pSrcDy, int srcDyStep,
                              Zeb8u* pDstEdges, int dstEdgeStep, ZebiSize roi, Zeb32f lowThresh, Zeb32f highThresh,
                              Zeb8u* pBuffer) {
    return derivative_detector(pSrcDx, srcDxStep, pSrcDy, srcDyStep, pDstEdges, dstEdgeStep, roi, lowThresh,
                               highThresh, pBuffer);
}

ZebStatus zebiCannyBorderGetSize(ZebiSize roi, ZebiDifferentialKernel, ZebiMaskSize mask, ZebDataType,
                                 int* pBufferSize) {
    if (pBufferSize == nullptr) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    if (mask != 33 && mask != 55) return zebStsMaskSizeErr;
    return put_size(border_bytes(roi, mask == 33 ? 3 : 5), pBufferSize);
}

ZebStatus zebiCannyBorder_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep, ZebiSize roi,
                                 ZebiDifferentialKernel filterType, ZebiMaskSize mask, ZebiBorderType borderType,
                                 Zeb8u borderValue, Zeb32f lowThresh, Zeb32f highThresh, ZebNormType norm,
                                 Zeb8u* pBuffer) {
    if ((mask != 33 && mask != 55) || (filterType == 5 && mask == 55)) return zebStsMaskSizeErr;
    if (any_null(pSrc, pDst, pBuffer)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    if ((filterType != 2 && filterType != 5) || (norm != 2 && norm != 4)) return zebStsBadArgErr;
    if (lowThresh < 0 || lowThresh > highThresh) return zebStsBadArgErr;
    const int32_t mode = borderType & 0xf;
    if (mode != border::kConst && mode != border::kRepl && mode != border::kInMem) return zebStsBorderErr;

    const border::Spec spec = border::decode(borderType);
    const int kind = filterType == 5 ? 1 : mask == 55 ? 2 : 0;
    const bool l2 = norm == 4;
    auto go = [&](auto kindTag) {
        detect_border_norm<decltype(kindTag)::value>(l2, pSrc, srcStep, pDst, dstStep, roi.width, roi.height, spec,
                                                     borderValue, lowThresh, highThresh, pBuffer);
    };
    if (kind == 0) go(std::integral_constant<int, 0>{});
    else if (kind == 1) go(std::integral_constant<int, 1>{});
    else go(std::integral_constant<int, 2>{});
    return zebStsNoErr;
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiCannyGetSize);
ZEB_EXPORT(zebiCanny_16s8u_C1R);
ZEB_EXPORT(zebiCanny_32f8u_C1R);
ZEB_EXPORT(zebiCannyBorderGetSize);
ZEB_EXPORT(zebiCannyBorder_8u_C1R);
#endif  // HWY_ONCE

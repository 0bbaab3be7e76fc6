// SPDX-License-Identifier: Apache-2.0
// Marker labelling: every connected region of non-zero markers gets its own
// label, found with the span flood fill in raster order of the regions'
// first pixels.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "region/span_kernels.inl"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "region/span_kernels.inl"

#if HWY_ONCE
#include <cstring>
#include <limits>

#include "core/checks.h"
#include "core/dispatch.h"
#include "core/simd_dispatch.h"
#include "region/span_fill.h"

namespace zeb::impl {
namespace {

// Pixels holding `unl` are unlabelled; filling writes the current label.
// A region is complete when its fill ends, so an earlier region with the
// same label (labels wrap) never touches an unlabelled pixel: the label
// alone tells the rescan what this fill took.
// Runs of unlabelled pixels are found with the vector scans.
template <class M>
struct LabelPolicy {
    uint8_t* base;
    int step, w;
    M unl, label;
    int (*inRight)(const M*, int, int, M, M);
    int (*outRight)(const M*, int, int, M, M);
    int (*inLeft)(const M*, int, int, M, M);
    M* row(int y) const { return reinterpret_cast<M*>(base + std::ptrdiff_t(step) * y); }
    M& at(int x, int y) const { return row(y)[x]; }
    bool ok(int x, int y, int, int) const { return at(x, y) == unl; }
    void take(int x, int y) { at(x, y) = label; }
    bool taken(int x, int y) const { return at(x, y) == label; }
    int extend_right(int x, int y) {
        M* r = row(y);
        const int e = inRight(r, x + 1, w, unl, unl);
        for (int i = x + 1; i < e; ++i) r[i] = label;
        return e - 1;
    }
    int extend_left(int x, int y) {
        M* r = row(y);
        const int b = inLeft(r, x - 1, 0, unl, unl) + 1;
        for (int i = b; i < x; ++i) r[i] = label;
        return b;
    }
    int find(int a, int b, int y) { return outRight(row(y), a, b + 1, unl, unl); }
};

// Labels the marker plane m, whose non-zero pixels already hold unl.
template <class M>
int label_plane(M* m, int step, ZebiSize roi, M unl, int minLabel, int maxLabel, int norm, uint8_t* buf) {
    const int64_t px = int64_t(roi.width) * roi.height;
    int64_t cap;
    region::Span* stack = region::stack_at(buf, 6 * px + 32, &cap);
    LabelPolicy<M> p{reinterpret_cast<uint8_t*>(m),
                     step,
                     roi.width,
                     unl,
                     M(minLabel),
                     ZEB_DISPATCH(span::run_right<M, true>),
                     ZEB_DISPATCH(span::run_right<M, false>),
                     ZEB_DISPATCH(span::run_left<M>)};
    int count = 0;
    for (int y = 0; y < roi.height; ++y) {
        for (int x = p.find(0, roi.width - 1, y); x < roi.width; x = p.find(x + 1, roi.width - 1, y)) {
            if (norm == 0)
                region::SpanFill<LabelPolicy<M>, true>(p, roi.width, roi.height, stack, cap).run(x, y);
            else
                region::SpanFill<LabelPolicy<M>, false>(p, roi.width, roi.height, stack, cap).run(x, y);
            ++count;
            p.label = int(p.label) == maxLabel ? M(minLabel) : M(p.label + 1);
        }
    }
    return count;
}

template <class S, class M>
void mark_unlabelled(const S* s, int ss, M* d, int ds, ZebiSize roi, M unl) {
    for (int y = 0; y < roi.height; ++y) {
        const S* rs = reinterpret_cast<const S*>(reinterpret_cast<const uint8_t*>(s) + std::ptrdiff_t(ss) * y);
        M* rd = reinterpret_cast<M*>(reinterpret_cast<uint8_t*>(d) + std::ptrdiff_t(ds) * y);
        for (int x = 0; x < roi.width; ++x) rd[x] = rs[x] ? unl : M(0);
    }
}

template <class M>
ZebStatus label_in_place(M* m, int step, ZebiSize roi, int minLabel, int maxLabel, int norm, int* number,
                         uint8_t* buf) {
    if (any_null(m, buf, number)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const StepReq r = req<M>(step, roi.width);
    if (ZebStatus s = first_error({min_steps({r}), even_steps({r})})) return s;
    constexpr int unl = int(std::numeric_limits<M>::max());
    if (minLabel < 1 || maxLabel >= unl || minLabel > maxLabel) return zebStsBadArgErr;
    if (norm != 0 && norm != 1) return zebStsBadArgErr;
    mark_unlabelled(m, step, m, step, roi, M(unl));
    *number = label_plane(m, step, roi, M(unl), minLabel, maxLabel, norm, buf);
    return zebStsNoErr;
}

ZebStatus label_size(ZebiSize roi, int* size) {
    if (size == nullptr) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    return zebiFloodFillGetSize(roi, size);
}

}  // namespace

ZebStatus zebiLabelMarkersGetBufferSize_8u_C1R(ZebiSize roi, int* size) { return label_size(roi, size); }
ZebStatus zebiLabelMarkersGetBufferSize_16u_C1R(ZebiSize roi, int* size) { return label_size(roi, size); }
ZebStatus zebiLabelMarkersGetBufferSize_8u32s_C1R(ZebiSize roi, int* size) { return label_size(roi, size); }

ZebStatus zebiLabelMarkers_8u_C1IR(Zeb8u* m, int step, ZebiSize roi, int minLabel, int maxLabel, ZebiNorm norm,
                                   int* number, Zeb8u* buf) {
    return label_in_place(m, step, roi, minLabel, maxLabel, norm, number, buf);
}
ZebStatus zebiLabelMarkers_16u_C1IR(Zeb16u* m, int step, ZebiSize roi, int minLabel, int maxLabel, ZebiNorm norm,
                                    int* number, Zeb8u* buf) {
    return label_in_place(m, step, roi, minLabel, maxLabel, norm, number, buf);
}
ZebStatus zebiLabelMarkers_8u32s_C1R(const Zeb8u* src, int ss, Zeb32s* dst, int ds, ZebiSize roi, int minLabel,
                                     int maxLabel, ZebiNorm norm, int* number, Zeb8u* buf) {
    if (any_null(src, dst, number, buf)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const StepReq rs = req<Zeb8u>(ss, roi.width), rd = req<Zeb32s>(ds, roi.width);
    if (ZebStatus s = first_error({min_steps({rs, rd}), even_steps({rd})})) return s;
    if (minLabel < 1 || maxLabel == std::numeric_limits<int>::max() || minLabel > maxLabel) return zebStsBadArgErr;
    if (norm != 0 && norm != 1) return zebStsBadArgErr;
    mark_unlabelled(src, ss, dst, ds, roi, Zeb32s(-1));
    *number = label_plane(dst, ds, roi, Zeb32s(-1), minLabel, maxLabel, norm, buf);
    return zebStsNoErr;
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiLabelMarkersGetBufferSize_8u_C1R);
ZEB_EXPORT(zebiLabelMarkersGetBufferSize_16u_C1R);
ZEB_EXPORT(zebiLabelMarkersGetBufferSize_8u32s_C1R);
ZEB_EXPORT(zebiLabelMarkers_8u_C1IR);
ZEB_EXPORT(zebiLabelMarkers_16u_C1IR);
ZEB_EXPORT(zebiLabelMarkers_8u32s_C1R);
#endif  // HWY_ONCE

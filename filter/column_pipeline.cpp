// SPDX-License-Identifier: Apache-2.0
// Column pass of the separable filters: kernelSize consecutive filtered rows
// from the caller's row-pointer array combined into each destination row;
// and the work-buffer queries of the column pass.
#include <limits>
#include <type_traits>

#include "core/checks.h"
#include "core/dispatch.h"
#include "filter/pipeline_dispatch.h"
#include "filter/pipeline_sizes.h"

namespace zeb::impl {
namespace {

// Whether the single-precision sums of 16s rows are exact: a divisor of
// +-2^s (exact scaled coefficients) and sum |k| < 512 (every product and
// partial sum below 2^24 in magnitude). Then integer sums give the same bits.
bool exact_in_single(const int16_t* kern, int k, int divisor) {
    const int64_t d = divisor < 0 ? -int64_t(divisor) : divisor;
    if ((d & (d - 1)) != 0) return false;
    int64_t total = 0;
    for (int j = 0; j < k; ++j) total += kern[j] < 0 ? -int64_t(kern[j]) : kern[j];
    return total < 512;
}

template <class S, class D, class K>
ZebStatus column(const S* const* src, D* dst, int dstStep, ZebiSize roi, const K* kern, int k, int divisor, Zeb8u* buf,
                 int ch) {
    if (any_null(src, dst, kern)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const int64_t rows = int64_t(roi.height) + k - 1;
    for (int64_t j = 0; j < rows; ++j)
        if (!src[j]) return zebStsNullPtrErr;
    if (k < 1) return zebStsSizeErr;
    const StepReq rd = req<D>(dstStep, roi.width, ch);
    if (ZebStatus s = first_error({min_steps({rd}), even_steps({rd})})) return s;
    if (!buf) return zebStsNullPtrErr;
    if (!std::is_same_v<K, float> && divisor == 0) return zebStsBadArgErr;

    pipe::ColumnPass<S, D> job{src, dst, dstStep, roi.width, roi.height, ch, k};
    if constexpr (std::is_same_v<K, float>) {
        job.c = kern;
    } else {
        // Coefficients pKernel[i] * (1.0f / divisor).
        job.kern = kern;
        job.scale = 1.0f / float(divisor);
        job.exact = std::is_same_v<S, int16_t> && exact_in_single(kern, k, divisor);
    }
    pipe::run_column_pass(job);
    return zebStsNoErr;
}

// The column-pass sizes depend on the width only.
ZebStatus column_size(ZebiSize roi, int k, int* size, int64_t bytes) {
    if (!size) return zebStsNullPtrErr;
    if (bad_roi(roi) || k < 1) return zebStsSizeErr;
    return put_size(bytes, size);
}

}  // namespace

// ---- buffer sizes ----
ZebStatus zebiFilterColumnPipelineGetBufferSize_16s_C1R(ZebiSize roi, int k, int* size) {
    return column_size(roi, k, size, pipeline_size::col_16s_c1(roi.width));
}
ZebStatus zebiFilterColumnPipelineGetBufferSize_16s_C3R(ZebiSize roi, int k, int* size) {
    return column_size(roi, k, size, pipeline_size::col_16s_c3(roi.width));
}
ZebStatus zebiFilterColumnPipelineGetBufferSize_16s8u_C1R(ZebiSize roi, int k, int* size) {
    return column_size(roi, k, size, pipeline_size::col_16s_c1(roi.width));
}
ZebStatus zebiFilterColumnPipelineGetBufferSize_16s8u_C3R(ZebiSize roi, int k, int* size) {
    return column_size(roi, k, size, pipeline_size::col_16s_c3(roi.width));
}
ZebStatus zebiFilterColumnPipelineGetBufferSize_16s8s_C1R(ZebiSize roi, int k, int* size) {
    return column_size(roi, k, size, pipeline_size::col_16s_c1(roi.width));
}
ZebStatus zebiFilterColumnPipelineGetBufferSize_16s8s_C3R(ZebiSize roi, int k, int* size) {
    return column_size(roi, k, size, pipeline_size::col_16s_c3(roi.width));
}
ZebStatus zebiFilterColumnPipelineGetBufferSize_16u_C1R(ZebiSize roi, int k, int* size) {
    return column_size(roi, k, size, pipeline_size::col_float_or_16u());
}
ZebStatus zebiFilterColumnPipelineGetBufferSize_16u_C3R(ZebiSize roi, int k, int* size) {
    return column_size(roi, k, size, pipeline_size::col_float_or_16u());
}
ZebStatus zebiFilterColumnPipelineGetBufferSize_32f_C1R(ZebiSize roi, int k, int* size) {
    return column_size(roi, k, size, pipeline_size::col_float_or_16u());
}
ZebStatus zebiFilterColumnPipelineGetBufferSize_32f_C3R(ZebiSize roi, int k, int* size) {
    return column_size(roi, k, size, pipeline_size::col_float_or_16u());
}
ZebStatus zebiFilterColumnPipelineGetBufferSize_Low_16s_C1R(ZebiSize roi, int k, int* size) {
    return column_size(roi, k, size, pipeline_size::col_low_16s_c1(roi.width));
}
ZebStatus zebiFilterColumnPipelineGetBufferSize_Low_16s_C3R(ZebiSize roi, int k, int* size) {
    return column_size(roi, k, size, pipeline_size::col_low_16s_c3(roi.width));
}

// ---- column passes ----
ZebStatus zebiFilterColumnPipeline_16s_C1R(const Zeb16s* const* src, Zeb16s* dst, int ds, ZebiSize roi,
                                           const Zeb16s* kern, int k, int div, Zeb8u* buf) {
    return column<Zeb16s, Zeb16s>(src, dst, ds, roi, kern, k, div, buf, 1);
}
ZebStatus zebiFilterColumnPipeline_16s_C3R(const Zeb16s* const* src, Zeb16s* dst, int ds, ZebiSize roi,
                                           const Zeb16s* kern, int k, int div, Zeb8u* buf) {
    return column<Zeb16s, Zeb16s>(src, dst, ds, roi, kern, k, div, buf, 3);
}
ZebStatus zebiFilterColumnPipeline_16s8u_C1R(const Zeb16s* const* src, Zeb8u* dst, int ds, ZebiSize roi,
                                             const Zeb16s* kern, int k, int div, Zeb8u* buf) {
    return column<Zeb16s, Zeb8u>(src, dst, ds, roi, kern, k, div, buf, 1);
}
ZebStatus zebiFilterColumnPipeline_16s8u_C3R(const Zeb16s* const* src, Zeb8u* dst, int ds, ZebiSize roi,
                                             const Zeb16s* kern, int k, int div, Zeb8u* buf) {
    return column<Zeb16s, Zeb8u>(src, dst, ds, roi, kern, k, div, buf, 3);
}
ZebStatus zebiFilterColumnPipeline_16s8s_C1R(const Zeb16s* const* src, Zeb8s* dst, int ds, ZebiSize roi,
                                             const Zeb16s* kern, int k, int div, Zeb8u* buf) {
    return column<Zeb16s, Zeb8s>(src, dst, ds, roi, kern, k, div, buf, 1);
}
ZebStatus zebiFilterColumnPipeline_16s8s_C3R(const Zeb16s* const* src, Zeb8s* dst, int ds, ZebiSize roi,
                                             const Zeb16s* kern, int k, int div, Zeb8u* buf) {
    return column<Zeb16s, Zeb8s>(src, dst, ds, roi, kern, k, div, buf, 3);
}
ZebStatus zebiFilterColumnPipeline_16u_C1R(const Zeb16u* const* src, Zeb16u* dst, int ds, ZebiSize roi,
                                           const Zeb16s* kern, int k, int div, Zeb8u* buf) {
    return column<Zeb16u, Zeb16u>(src, dst, ds, roi, kern, k, div, buf, 1);
}
ZebStatus zebiFilterColumnPipeline_16u_C3R(const Zeb16u* const* src, Zeb16u* dst, int ds, ZebiSize roi,
                                           const Zeb16s* kern, int k, int div, Zeb8u* buf) {
    return column<Zeb16u, Zeb16u>(src, dst, ds, roi, kern, k, div, buf, 3);
}
// The reduced-precision forms give exactly the 16s results.
ZebStatus zebiFilterColumnPipeline_Low_16s_C1R(const Zeb16s* const* src, Zeb16s* dst, int ds, ZebiSize roi,
                                               const Zeb16s* kern, int k, int div, Zeb8u* buf) {
    return column<Zeb16s, Zeb16s>(src, dst, ds, roi, kern, k, div, buf, 1);
}
ZebStatus zebiFilterColumnPipeline_Low_16s_C3R(const Zeb16s* const* src, Zeb16s* dst, int ds, ZebiSize roi,
                                               const Zeb16s* kern, int k, int div, Zeb8u* buf) {
    return column<Zeb16s, Zeb16s>(src, dst, ds, roi, kern, k, div, buf, 3);
}

ZebStatus zebiFilterColumnPipeline_32f_C1R(const Zeb32f* const* src, Zeb32f* dst, int ds, ZebiSize roi,
                                           const Zeb32f* kern, int k, Zeb8u* buf) {
    return column<Zeb32f, Zeb32f>(src, dst, ds, roi, kern, k, 1, buf, 1);
}
ZebStatus zebiFilterColumnPipeline_32f_C3R(const Zeb32f* const* src, Zeb32f* dst, int ds, ZebiSize roi,
                                           const Zeb32f* kern, int k, Zeb8u* buf) {
    return column<Zeb32f, Zeb32f>(src, dst, ds, roi, kern, k, 1, buf, 3);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiFilterColumnPipelineGetBufferSize_16s_C1R);
ZEB_EXPORT(zebiFilterColumnPipelineGetBufferSize_16s_C3R);
ZEB_EXPORT(zebiFilterColumnPipelineGetBufferSize_16s8u_C1R);
ZEB_EXPORT(zebiFilterColumnPipelineGetBufferSize_16s8u_C3R);
ZEB_EXPORT(zebiFilterColumnPipelineGetBufferSize_16s8s_C1R);
ZEB_EXPORT(zebiFilterColumnPipelineGetBufferSize_16s8s_C3R);
ZEB_EXPORT(zebiFilterColumnPipelineGetBufferSize_16u_C1R);
ZEB_EXPORT(zebiFilterColumnPipelineGetBufferSize_16u_C3R);
ZEB_EXPORT(zebiFilterColumnPipelineGetBufferSize_32f_C1R);
ZEB_EXPORT(zebiFilterColumnPipelineGetBufferSize_32f_C3R);
ZEB_EXPORT(zebiFilterColumnPipelineGetBufferSize_Low_16s_C1R);
ZEB_EXPORT(zebiFilterColumnPipelineGetBufferSize_Low_16s_C3R);
ZEB_EXPORT(zebiFilterColumnPipeline_16s_C1R);
ZEB_EXPORT(zebiFilterColumnPipeline_16s_C3R);
ZEB_EXPORT(zebiFilterColumnPipeline_16s8u_C1R);
ZEB_EXPORT(zebiFilterColumnPipeline_16s8u_C3R);
ZEB_EXPORT(zebiFilterColumnPipeline_16s8s_C1R);
ZEB_EXPORT(zebiFilterColumnPipeline_16s8s_C3R);
ZEB_EXPORT(zebiFilterColumnPipeline_16u_C1R);
ZEB_EXPORT(zebiFilterColumnPipeline_16u_C3R);
ZEB_EXPORT(zebiFilterColumnPipeline_32f_C1R);
ZEB_EXPORT(zebiFilterColumnPipeline_32f_C3R);
ZEB_EXPORT(zebiFilterColumnPipeline_Low_16s_C1R);
ZEB_EXPORT(zebiFilterColumnPipeline_Low_16s_C3R);

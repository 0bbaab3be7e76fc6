// Column pass of the separable filters: kernelSize consecutive filtered rows
// from the caller's row-pointer array combined into each destination row;
// and the work-buffer queries of the column pass.
#include <limits>
#include <type_traits>

#include "core/border.h"
#include "core/checks.h"
#include "core/dispatch.h"
#include "core/row_driver.h"
#include "filter/pipeline_common.h"
#include "filter/pipeline_sizes.h"

namespace zeb::ZEB_VNS {
namespace {

using namespace ::zeb::pipe;

#define ZEB_KERNELS "filter/pipeline_kernels.inl"
#include "core/isa_expand.h"

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
ZebStatus column(const S* const* src, D* dst, int dstStep, ZebiSize roi, const K* kern, int k, int divisor,
                 Zeb8u* buf, int ch) {
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

    const int w = roi.width, h = roi.height;
    if constexpr (std::is_same_v<K, float>) {
        const FloatCoefs cf{kern};
        if (use_avx2())
            avx2::column_job<S, D, Cvt::None, false>(src, dst, dstStep, w, h, ch, k, cf);
        else
            ssse3::column_job<S, D, Cvt::None, false>(src, dst, dstStep, w, h, ch, k, cf);
    } else {
        // Coefficients pKernel[i] * (1.0f / divisor); 16-bit signed results
        // round to nearest in whole blocks of 16 values and truncate after.
        const ScaledCoefs cf{kern, 1.0f / float(divisor)};
        constexpr bool kTail = std::is_same_v<S, int16_t>;
        if constexpr (kTail) {
            if (exact_in_single(kern, k, divisor)) {
                if (use_avx2())
                    avx2::column_exact_job(src, dst, dstStep, w, h, ch, k, kern, cf.scale);
                else
                    ssse3::column_exact_job(src, dst, dstStep, w, h, ch, k, kern, cf.scale);
                return zebStsNoErr;
            }
        }
        if (use_avx2())
            avx2::column_job<S, D, Cvt::Nearest, kTail>(src, dst, dstStep, w, h, ch, k, cf);
        else
            ssse3::column_job<S, D, Cvt::Nearest, kTail>(src, dst, dstStep, w, h, ch, k, cf);
    }
    return zebStsNoErr;
}

ZebStatus column_size(ZebiSize roi, int k, int* size, int32_t value) {
    if (!size) return zebStsNullPtrErr;
    if (bad_roi(roi) || k < 1) return zebStsSizeErr;
    *size = value;
    return zebStsNoErr;
}

}  // namespace

// ---- buffer sizes ----
#define ZEB_COL_SIZE(name, expr) \
    ZebStatus name(ZebiSize roi, int k, int* size) { return column_size(roi, k, size, pipeline_size::expr); }
ZEB_COL_SIZE(zebiFilterColumnPipelineGetBufferSize_16s_C1R, col_16s_c1(roi.width))
ZEB_COL_SIZE(zebiFilterColumnPipelineGetBufferSize_16s_C3R, col_16s_c3(roi.width))
ZEB_COL_SIZE(zebiFilterColumnPipelineGetBufferSize_16s8u_C1R, col_16s_c1(roi.width))
ZEB_COL_SIZE(zebiFilterColumnPipelineGetBufferSize_16s8u_C3R, col_16s_c3(roi.width))
ZEB_COL_SIZE(zebiFilterColumnPipelineGetBufferSize_16s8s_C1R, col_16s_c1(roi.width))
ZEB_COL_SIZE(zebiFilterColumnPipelineGetBufferSize_16s8s_C3R, col_16s_c3(roi.width))
ZEB_COL_SIZE(zebiFilterColumnPipelineGetBufferSize_16u_C1R, col_float_or_16u())
ZEB_COL_SIZE(zebiFilterColumnPipelineGetBufferSize_16u_C3R, col_float_or_16u())
ZEB_COL_SIZE(zebiFilterColumnPipelineGetBufferSize_32f_C1R, col_float_or_16u())
ZEB_COL_SIZE(zebiFilterColumnPipelineGetBufferSize_32f_C3R, col_float_or_16u())
ZEB_COL_SIZE(zebiFilterColumnPipelineGetBufferSize_Low_16s_C1R, col_low_16s_c1(roi.width))
ZEB_COL_SIZE(zebiFilterColumnPipelineGetBufferSize_Low_16s_C3R, col_low_16s_c3(roi.width))
#undef ZEB_COL_SIZE

// ---- column passes ----
#define ZEB_COL_INT(name, S, D, ch)                                                                       \
    ZebStatus name(const S* const* src, D* dst, int ds, ZebiSize roi, const Zeb16s* kern, int k, int div, \
                   Zeb8u* buf) {                                                                          \
        return column<S, D>(src, dst, ds, roi, kern, k, div, buf, ch);                                    \
    }
ZEB_COL_INT(zebiFilterColumnPipeline_16s_C1R, Zeb16s, Zeb16s, 1)
ZEB_COL_INT(zebiFilterColumnPipeline_16s_C3R, Zeb16s, Zeb16s, 3)
ZEB_COL_INT(zebiFilterColumnPipeline_16s8u_C1R, Zeb16s, Zeb8u, 1)
ZEB_COL_INT(zebiFilterColumnPipeline_16s8u_C3R, Zeb16s, Zeb8u, 3)
ZEB_COL_INT(zebiFilterColumnPipeline_16s8s_C1R, Zeb16s, Zeb8s, 1)
ZEB_COL_INT(zebiFilterColumnPipeline_16s8s_C3R, Zeb16s, Zeb8s, 3)
ZEB_COL_INT(zebiFilterColumnPipeline_16u_C1R, Zeb16u, Zeb16u, 1)
ZEB_COL_INT(zebiFilterColumnPipeline_16u_C3R, Zeb16u, Zeb16u, 3)
ZEB_COL_INT(zebiFilterColumnPipeline_Low_16s_C1R, Zeb16s, Zeb16s, 1)
ZEB_COL_INT(zebiFilterColumnPipeline_Low_16s_C3R, Zeb16s, Zeb16s, 3)
#undef ZEB_COL_INT

ZebStatus zebiFilterColumnPipeline_32f_C1R(const Zeb32f* const* src, Zeb32f* dst, int ds, ZebiSize roi,
                                           const Zeb32f* kern, int k, Zeb8u* buf) {
    return column<Zeb32f, Zeb32f>(src, dst, ds, roi, kern, k, 1, buf, 1);
}
ZebStatus zebiFilterColumnPipeline_32f_C3R(const Zeb32f* const* src, Zeb32f* dst, int ds, ZebiSize roi,
                                           const Zeb32f* kern, int k, Zeb8u* buf) {
    return column<Zeb32f, Zeb32f>(src, dst, ds, roi, kern, k, 1, buf, 3);
}

}  // namespace zeb::ZEB_VNS

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

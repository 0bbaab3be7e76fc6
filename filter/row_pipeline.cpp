// SPDX-License-Identifier: Apache-2.0
// Row pass of the separable filters: each source row filtered horizontally,
// with the pixels beyond its ends supplied by the border type, into the
// caller's row buffers; and the work-buffer queries of the row pass.
#include <cstdlib>
#include <limits>
#include <type_traits>

#include "core/border.h"
#include "core/checks.h"
#include "core/dispatch.h"
#include "filter/pipeline_dispatch.h"
#include "filter/pipeline_sizes.h"

namespace zeb::impl {
namespace {

using pipe::RowPass;

// How a member treats its divisor: none (32f), != 0 or >= 1 checked with
// the border type, or != 0 checked after every other argument (8u16s).
enum class Div { None, NonZero, Positive, LateNonZero };

// The exact integer path needs every 32-bit partial sum to stay in range:
// pairs of products are summed by the multiply-add instructions, which
// cannot take -32768 twice, and the whole sum must fit.
template <class S>
bool exact_sums_fit(const int16_t* kern, int k) {
    constexpr int64_t maxSample = std::is_same_v<S, uint8_t> ? 255 : 32768;
    int64_t total = 0;
    for (int i = 0; i < k; ++i) {
        if (kern[i] == -32768) return false;
        total += std::abs(int32_t(kern[i]));
    }
    return total * maxSample <= std::numeric_limits<int32_t>::max();
}

// log2 |divisor| when it is a power of two up to 2^15, else -1.
int pow2_shift(int divisor) {
    const int64_t d = divisor < 0 ? -int64_t(divisor) : divisor;
    for (int s = 0; s <= 15; ++s)
        if (d == (int64_t(1) << s)) return s;
    return -1;
}

// The byte-pair shortcut of 8u sources: small coefficients (every pair of
// taps fits the unsigned-by-signed byte multiply-add, every 16-bit partial
// sum stays within +-32640) and a power-of-two divisor.
int byte_pair_shift(const int16_t* kern, int k, int divisor) {
    if (k > 128) return -1;  // the kernel keeps its pairs in 64 vectors
    int total = 0;
    for (int i = 0; i < k; ++i) {
        if (kern[i] > 127 || kern[i] < -127) return -1;
        total += std::abs(int(kern[i]));
    }
    return total <= 128 ? pow2_shift(divisor) : -1;
}

template <class S, class D, Div kDiv, bool kEvenCheck, class K>
ZebStatus row_border(const S* src, int srcStep, D* const* dst, ZebiSize roi, const K* kern, int k, int a,
                     int32_t borderType, const S* value, int ch, int divisor, Zeb8u* buf) {
    if (any_null(src, dst, kern, buf)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    for (int y = 0; y < roi.height; ++y)
        if (!dst[y]) return zebStsNullPtrErr;
    if (!value) return zebStsNullPtrErr;
    if (k < 1) return zebStsSizeErr;
    if (a < 0 || a >= k) return zebStsAnchorErr;
    const StepReq rs = req<S>(srcStep, roi.width, ch);
    if (ZebStatus s = min_steps({rs})) return s;
    if (kEvenCheck)
        if (ZebStatus s = even_steps({rs})) return s;
    const bool badBorder = borderType != border::kConst && borderType != border::kRepl && borderType != border::kInMem;
    if (badBorder || (kDiv == Div::NonZero && divisor == 0) || (kDiv == Div::Positive && divisor < 1))
        return zebStsBadArgErr;
    if (kDiv == Div::LateNonZero && divisor == 0) return zebStsBadArgErr;

    // Work buffer: the coefficients, then the border-extended row ends.
    float* c = reinterpret_cast<float*>(align_up(buf, 32));
    RowPass<S, D> job{src,
                      srcStep,
                      dst,
                      roi.width,
                      roi.height,
                      ch,
                      k,
                      a,
                      border::decode(borderType),
                      value,
                      reinterpret_cast<S*>(c + k),
                      c};
    if constexpr (std::is_same_v<K, float>) {
        for (int i = 0; i < k; ++i) c[i] = kern[i];
    } else {
        job.kern = kern;
        job.scale = 1.0f / float(divisor);
        job.negate = divisor < 0;
        for (int i = 0; i < k; ++i) c[i] = float(kern[i]) * job.scale;
        if constexpr (std::is_same_v<D, int16_t>) job.exact = exact_sums_fit<S>(kern, k);
        if constexpr (std::is_same_v<S, uint8_t>) job.pairShift = byte_pair_shift(kern, k, divisor);
    }
    pipe::run_row_pass(job);
    return zebStsNoErr;
}

// The row-pass sizes depend on the kernel length only.
ZebStatus row_size(ZebiSize roi, int k, int* size, int64_t (*formula)(int64_t)) {
    if (!size) return zebStsNullPtrErr;
    if (bad_roi(roi) || k < 1) return zebStsSizeErr;
    return put_size(formula(k), size);
}

}  // namespace

// ---- buffer sizes ----
ZebStatus zebiFilterRowBorderPipelineGetBufferSize_16s_C1R(ZebiSize roi, int k, int* size) {
    return row_size(roi, k, size, pipeline_size::row_16s_c1);
}
ZebStatus zebiFilterRowBorderPipelineGetBufferSize_16s_C3R(ZebiSize roi, int k, int* size) {
    return row_size(roi, k, size, pipeline_size::row_16s_c3);
}
ZebStatus zebiFilterRowBorderPipelineGetBufferSize_16u_C1R(ZebiSize roi, int k, int* size) {
    return row_size(roi, k, size, pipeline_size::row_16u_c1);
}
ZebStatus zebiFilterRowBorderPipelineGetBufferSize_16u_C3R(ZebiSize roi, int k, int* size) {
    return row_size(roi, k, size, pipeline_size::row_16u_c3);
}
ZebStatus zebiFilterRowBorderPipelineGetBufferSize_32f_C1R(ZebiSize roi, int k, int* size) {
    return row_size(roi, k, size, pipeline_size::row_32f_c1);
}
ZebStatus zebiFilterRowBorderPipelineGetBufferSize_32f_C3R(ZebiSize roi, int k, int* size) {
    return row_size(roi, k, size, pipeline_size::row_32f_c3);
}
ZebStatus zebiFilterRowBorderPipelineGetBufferSize_8u16s_C1R(ZebiSize roi, int k, int* size) {
    return row_size(roi, k, size, pipeline_size::row_8u16s_c1);
}
ZebStatus zebiFilterRowBorderPipelineGetBufferSize_8u16s_C3R(ZebiSize roi, int k, int* size) {
    return row_size(roi, k, size, pipeline_size::row_8u16s_c3);
}
ZebStatus zebiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R(ZebiSize roi, int k, int* size) {
    return row_size(roi, k, size, pipeline_size::row_low_16s_c1);
}
ZebStatus zebiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R(ZebiSize roi, int k, int* size) {
    return row_size(roi, k, size, pipeline_size::row_low_16s_c3);
}

// ---- row passes ----
// C1 forms pass the address of their one border value, C3 forms the
// caller's array (checked for null after the row pointers).
ZebStatus zebiFilterRowBorderPipeline_16s_C1R(const Zeb16s* src, int ss, Zeb16s* const* dst, ZebiSize roi,
                                              const Zeb16s* kern, int k, int a, ZebiBorderType bt, Zeb16s value,
                                              int divisor, Zeb8u* buf) {
    return row_border<Zeb16s, Zeb16s, Div::NonZero, true>(src, ss, dst, roi, kern, k, a, bt, &value, 1, divisor, buf);
}
ZebStatus zebiFilterRowBorderPipeline_16s_C3R(const Zeb16s* src, int ss, Zeb16s* const* dst, ZebiSize roi,
                                              const Zeb16s* kern, int k, int a, ZebiBorderType bt, const Zeb16s* value,
                                              int divisor, Zeb8u* buf) {
    return row_border<Zeb16s, Zeb16s, Div::NonZero, true>(src, ss, dst, roi, kern, k, a, bt, value, 3, divisor, buf);
}
// The reduced-precision forms give exactly the 16s results.
ZebStatus zebiFilterRowBorderPipeline_Low_16s_C1R(const Zeb16s* src, int ss, Zeb16s* const* dst, ZebiSize roi,
                                                  const Zeb16s* kern, int k, int a, ZebiBorderType bt, Zeb16s value,
                                                  int divisor, Zeb8u* buf) {
    return row_border<Zeb16s, Zeb16s, Div::NonZero, true>(src, ss, dst, roi, kern, k, a, bt, &value, 1, divisor, buf);
}
ZebStatus zebiFilterRowBorderPipeline_Low_16s_C3R(const Zeb16s* src, int ss, Zeb16s* const* dst, ZebiSize roi,
                                                  const Zeb16s* kern, int k, int a, ZebiBorderType bt,
                                                  const Zeb16s* value, int divisor, Zeb8u* buf) {
    return row_border<Zeb16s, Zeb16s, Div::NonZero, true>(src, ss, dst, roi, kern, k, a, bt, value, 3, divisor, buf);
}
ZebStatus zebiFilterRowBorderPipeline_16u_C1R(const Zeb16u* src, int ss, Zeb16u* const* dst, ZebiSize roi,
                                              const Zeb16s* kern, int k, int a, ZebiBorderType bt, Zeb16u value,
                                              int divisor, Zeb8u* buf) {
    return row_border<Zeb16u, Zeb16u, Div::Positive, true>(src, ss, dst, roi, kern, k, a, bt, &value, 1, divisor, buf);
}
ZebStatus zebiFilterRowBorderPipeline_16u_C3R(const Zeb16u* src, int ss, Zeb16u* const* dst, ZebiSize roi,
                                              const Zeb16s* kern, int k, int a, ZebiBorderType bt, const Zeb16u* value,
                                              int divisor, Zeb8u* buf) {
    return row_border<Zeb16u, Zeb16u, Div::Positive, true>(src, ss, dst, roi, kern, k, a, bt, value, 3, divisor, buf);
}
ZebStatus zebiFilterRowBorderPipeline_8u16s_C1R(const Zeb8u* src, int ss, Zeb16s* const* dst, ZebiSize roi,
                                                const Zeb16s* kern, int k, int a, ZebiBorderType bt, Zeb8u value,
                                                int divisor, Zeb8u* buf) {
    return row_border<Zeb8u, Zeb16s, Div::LateNonZero, false>(src, ss, dst, roi, kern, k, a, bt, &value, 1, divisor,
                                                              buf);
}
ZebStatus zebiFilterRowBorderPipeline_8u16s_C3R(const Zeb8u* src, int ss, Zeb16s* const* dst, ZebiSize roi,
                                                const Zeb16s* kern, int k, int a, ZebiBorderType bt, const Zeb8u* value,
                                                int divisor, Zeb8u* buf) {
    return row_border<Zeb8u, Zeb16s, Div::LateNonZero, false>(src, ss, dst, roi, kern, k, a, bt, value, 3, divisor,
                                                              buf);
}
ZebStatus zebiFilterRowBorderPipeline_32f_C1R(const Zeb32f* src, int ss, Zeb32f* const* dst, ZebiSize roi,
                                              const Zeb32f* kern, int k, int a, ZebiBorderType bt, Zeb32f value,
                                              Zeb8u* buf) {
    return row_border<Zeb32f, Zeb32f, Div::None, true>(src, ss, dst, roi, kern, k, a, bt, &value, 1, 1, buf);
}
ZebStatus zebiFilterRowBorderPipeline_32f_C3R(const Zeb32f* src, int ss, Zeb32f* const* dst, ZebiSize roi,
                                              const Zeb32f* kern, int k, int a, ZebiBorderType bt, const Zeb32f* value,
                                              Zeb8u* buf) {
    return row_border<Zeb32f, Zeb32f, Div::None, true>(src, ss, dst, roi, kern, k, a, bt, value, 3, 1, buf);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiFilterRowBorderPipelineGetBufferSize_16s_C1R);
ZEB_EXPORT(zebiFilterRowBorderPipelineGetBufferSize_16s_C3R);
ZEB_EXPORT(zebiFilterRowBorderPipelineGetBufferSize_16u_C1R);
ZEB_EXPORT(zebiFilterRowBorderPipelineGetBufferSize_16u_C3R);
ZEB_EXPORT(zebiFilterRowBorderPipelineGetBufferSize_32f_C1R);
ZEB_EXPORT(zebiFilterRowBorderPipelineGetBufferSize_32f_C3R);
ZEB_EXPORT(zebiFilterRowBorderPipelineGetBufferSize_8u16s_C1R);
ZEB_EXPORT(zebiFilterRowBorderPipelineGetBufferSize_8u16s_C3R);
ZEB_EXPORT(zebiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R);
ZEB_EXPORT(zebiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R);
ZEB_EXPORT(zebiFilterRowBorderPipeline_16s_C1R);
ZEB_EXPORT(zebiFilterRowBorderPipeline_16s_C3R);
ZEB_EXPORT(zebiFilterRowBorderPipeline_16u_C1R);
ZEB_EXPORT(zebiFilterRowBorderPipeline_16u_C3R);
ZEB_EXPORT(zebiFilterRowBorderPipeline_32f_C1R);
ZEB_EXPORT(zebiFilterRowBorderPipeline_32f_C3R);
ZEB_EXPORT(zebiFilterRowBorderPipeline_8u16s_C1R);
ZEB_EXPORT(zebiFilterRowBorderPipeline_8u16s_C3R);
ZEB_EXPORT(zebiFilterRowBorderPipeline_Low_16s_C1R);
ZEB_EXPORT(zebiFilterRowBorderPipeline_Low_16s_C3R);

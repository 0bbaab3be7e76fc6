// SPDX-License-Identifier: Apache-2.0
// Lowpass (mean of the 3x3 or 5x5 neighbourhood) with borders for 8u and
// 32f, with the buffer-size queries. 8u rounds the mean to nearest (the
// sum plus half the count, divided by the count; 9 and 25 are odd, so no
// ties occur); 32f multiplies the float sum by 1/9 or 1/25.
#include "core/dispatch.h"
#include "filter/fixed_filter.h"

namespace zeb::impl {

using namespace fixed;

ZebStatus zebiFilterLowpassBorder_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep, ZebiSize roi,
                                         ZebiMaskSize mask, ZebiBorderType border, Zeb8u value, Zeb8u* pBuffer) {
    return run<Lowpass3, Lowpass5, Out::U8Mean, false>(pSrc, srcStep, pDst, dstStep, roi, mask, border, value, 1,
                                                       pBuffer);
}
ZebStatus zebiFilterLowpassBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roi,
                                          ZebiMaskSize mask, ZebiBorderType border, Zeb32f value, Zeb8u* pBuffer) {
    return run<Lowpass3, Lowpass5, Out::F32Mean, false>(pSrc, srcStep, pDst, dstStep, roi, mask, border, value, 1,
                                                        pBuffer);
}

// The 8u lowpass shares the size of the 8u16s Sobel filters.
ZebStatus zebiFilterLowpassGetBufferSize_8u_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Sobel8u16s);
}
ZebStatus zebiFilterLowpassGetBufferSize_32f_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Lowpass32f);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiFilterLowpassBorder_8u_C1R);
ZEB_EXPORT(zebiFilterLowpassBorder_32f_C1R);
ZEB_EXPORT(zebiFilterLowpassGetBufferSize_8u_C1R);
ZEB_EXPORT(zebiFilterLowpassGetBufferSize_32f_C1R);

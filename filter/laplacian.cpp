// SPDX-License-Identifier: Apache-2.0
// Laplacian with borders, 3x3 and 5x5, for 8u16s, 8u8s and 32f, with the
// buffer-size queries.
#include "core/dispatch.h"
#include "filter/fixed_filter.h"

namespace zeb::impl {

using namespace fixed;

ZebStatus zebiFilterLaplacianBorder_8u16s_C1R(const Zeb8u* pSrc, int srcStep, Zeb16s* pDst, int dstStep, ZebiSize roi,
                                              ZebiMaskSize mask, ZebiBorderType border, Zeb8u value, Zeb8u* pBuffer) {
    return run<Laplacian3, Laplacian5, Out::S16, false>(pSrc, srcStep, pDst, dstStep, roi, mask, border, value, 1,
                                                        pBuffer);
}
ZebStatus zebiFilterLaplacianBorder_8u8s_C1R(const Zeb8u* pSrc, int srcStep, Zeb8s* pDst, int dstStep, ZebiSize roi,
                                             ZebiMaskSize mask, ZebiBorderType border, Zeb8u value, Zeb8u* pBuffer) {
    return run<Laplacian3, Laplacian5, Out::S8, false>(pSrc, srcStep, pDst, dstStep, roi, mask, border, value, 1,
                                                       pBuffer);
}
ZebStatus zebiFilterLaplacianBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roi,
                                            ZebiMaskSize mask, ZebiBorderType border, Zeb32f value, Zeb8u* pBuffer) {
    return run<Laplacian3, Laplacian5, Out::F32, false>(pSrc, srcStep, pDst, dstStep, roi, mask, border, value, 1,
                                                        pBuffer);
}

ZebStatus zebiFilterLaplacianGetBufferSize_8u16s_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Laplacian8u);
}
ZebStatus zebiFilterLaplacianGetBufferSize_8u8s_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Laplacian8u);
}
ZebStatus zebiFilterLaplacianGetBufferSize_32f_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Laplacian32f);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiFilterLaplacianBorder_8u16s_C1R);
ZEB_EXPORT(zebiFilterLaplacianBorder_8u8s_C1R);
ZEB_EXPORT(zebiFilterLaplacianBorder_32f_C1R);
ZEB_EXPORT(zebiFilterLaplacianGetBufferSize_8u16s_C1R);
ZEB_EXPORT(zebiFilterLaplacianGetBufferSize_8u8s_C1R);
ZEB_EXPORT(zebiFilterLaplacianGetBufferSize_32f_C1R);

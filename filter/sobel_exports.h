// The exports of one Sobel filter: the 8u16s, 8u8s and 32f forms and their
// three buffer-size queries, generated from the filter's two kernels.
#pragma once

#include "filter/fixed_filter.h"

#define ZEB_SOBEL_FAMILY(Name, D3, D5, O16, O8, OF)                                                            \
    ZebStatus zebiFilter##Name##Border_8u16s_C1R(const Zeb8u* pSrc, int srcStep, Zeb16s* pDst, int dstStep,       \
                                                 ZebiSize roi, ZebiMaskSize mask, ZebiBorderType border,          \
                                                 Zeb8u value, Zeb8u* pBuffer) {                                   \
        return fixed::run<D3, D5, O16, false>(pSrc, srcStep, pDst, dstStep, roi, mask, border, value, 1, pBuffer); \
    }                                                                                                            \
    ZebStatus zebiFilter##Name##Border_8u8s_C1R(const Zeb8u* pSrc, int srcStep, Zeb8s* pDst, int dstStep,         \
                                                ZebiSize roi, ZebiMaskSize mask, ZebiBorderType border,           \
                                                Zeb8u value, int divisor, Zeb8u* pBuffer) {                       \
        return fixed::run<D3, D5, O8, true>(pSrc, srcStep, pDst, dstStep, roi, mask, border, value, divisor,      \
                                            pBuffer);                                                            \
    }                                                                                                            \
    ZebStatus zebiFilter##Name##Border_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,        \
                                               ZebiSize roi, ZebiMaskSize mask, ZebiBorderType border,            \
                                               Zeb32f value, Zeb8u* pBuffer) {                                   \
        return fixed::run<D3, D5, OF, false>(pSrc, srcStep, pDst, dstStep, roi, mask, border, value, 1, pBuffer);  \
    }                                                                                                            \
    ZebStatus zebiFilter##Name##GetBufferSize_8u16s_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {            \
        return fixed::query(roi, mask, pSize, fixed::SizeKind::Sobel8u16s);                                      \
    }                                                                                                            \
    ZebStatus zebiFilter##Name##GetBufferSize_8u8s_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {             \
        return fixed::query(roi, mask, pSize, fixed::SizeKind::Sobel8u8s);                                       \
    }                                                                                                            \
    ZebStatus zebiFilter##Name##GetBufferSize_32f_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {              \
        return fixed::query(roi, mask, pSize, fixed::SizeKind::Sobel32f);                                        \
    }

#define ZEB_SOBEL_EXPORTS(Name)                           \
    ZEB_EXPORT(zebiFilter##Name##Border_8u16s_C1R);       \
    ZEB_EXPORT(zebiFilter##Name##Border_8u8s_C1R);        \
    ZEB_EXPORT(zebiFilter##Name##Border_32f_C1R);         \
    ZEB_EXPORT(zebiFilter##Name##GetBufferSize_8u16s_C1R); \
    ZEB_EXPORT(zebiFilter##Name##GetBufferSize_8u8s_C1R); \
    ZEB_EXPORT(zebiFilter##Name##GetBufferSize_32f_C1R);

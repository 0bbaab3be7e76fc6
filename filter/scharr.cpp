// Scharr first derivatives with borders (3x3): Horiz (d/dy) and Vert
// (d/dx), oriented like the Sobel derivatives of the same direction, for
// 8u16s, 8u8s and 32f, with their buffer-size queries.
#include "filter/fixed_filter.h"

namespace zeb::ZEB_VNS {

using fixed::Out;
using fixed::ScharrHoriz3;
using fixed::ScharrVert3;

#define ZEB_SCHARR(Name, D, SizeKind16)                                                                          \
    ZebStatus zebiFilter##Name##Border_8u16s_C1R(const Zeb8u* pSrc, int srcStep, Zeb16s* pDst, int dstStep,       \
                                                 ZebiSize roi, ZebiBorderType border, Zeb8u value,                 \
                                                 Zeb8u* pBuffer) {                                               \
        return fixed::run<D, D, Out::S16, false>(pSrc, srcStep, pDst, dstStep, roi, 33, border, value, 1, pBuffer, \
                                                 false);                                                         \
    }                                                                                                            \
    ZebStatus zebiFilter##Name##Border_8u8s_C1R(const Zeb8u* pSrc, int srcStep, Zeb8s* pDst, int dstStep,         \
                                                ZebiSize roi, ZebiBorderType border, Zeb8u value,                 \
                                                Zeb8u* pBuffer) {                                                \
        return fixed::run<D, D, Out::S8, false>(pSrc, srcStep, pDst, dstStep, roi, 33, border, value, 1, pBuffer,  \
                                                false);                                                          \
    }                                                                                                            \
    ZebStatus zebiFilter##Name##Border_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,        \
                                               ZebiSize roi, ZebiBorderType border, Zeb32f value,                 \
                                               Zeb8u* pBuffer) {                                                 \
        return fixed::run<D, D, Out::F32, false>(pSrc, srcStep, pDst, dstStep, roi, 33, border, value, 1, pBuffer, \
                                                 false);                                                         \
    }                                                                                                            \
    ZebStatus zebiFilter##Name##GetBufferSize_8u16s_C1R(ZebiSize roi, int* pSize) {                               \
        return fixed::query_scharr(roi, pSize, fixed::ScharrKind::SizeKind16);                                   \
    }                                                                                                            \
    ZebStatus zebiFilter##Name##GetBufferSize_8u8s_C1R(ZebiSize roi, int* pSize) {                                \
        return fixed::query_scharr(roi, pSize, fixed::ScharrKind::Small8u);                                      \
    }                                                                                                            \
    ZebStatus zebiFilter##Name##GetBufferSize_32f_C1R(ZebiSize roi, int* pSize) {                                 \
        return fixed::query_scharr(roi, pSize, fixed::ScharrKind::Float);                                        \
    }

ZEB_SCHARR(ScharrHoriz, ScharrHoriz3, Small8u)
ZEB_SCHARR(ScharrVert, ScharrVert3, Vert8u16s)

}  // namespace zeb::ZEB_VNS

#define ZEB_SCHARR_EXPORTS(Name)                           \
    ZEB_EXPORT(zebiFilter##Name##Border_8u16s_C1R);        \
    ZEB_EXPORT(zebiFilter##Name##Border_8u8s_C1R);         \
    ZEB_EXPORT(zebiFilter##Name##Border_32f_C1R);          \
    ZEB_EXPORT(zebiFilter##Name##GetBufferSize_8u16s_C1R); \
    ZEB_EXPORT(zebiFilter##Name##GetBufferSize_8u8s_C1R);  \
    ZEB_EXPORT(zebiFilter##Name##GetBufferSize_32f_C1R);
ZEB_SCHARR_EXPORTS(ScharrHoriz)
ZEB_SCHARR_EXPORTS(ScharrVert)

// SPDX-License-Identifier: Apache-2.0
// Status names: the text of every status value the library returns.
#include "core/dispatch.h"

namespace zeb::impl {

const char* zebcvGetStatusString(ZebStatus status) {
    switch (status) {
        case zebStsNoErr: return "zebStsNoErr";
        case zebStsBadArgErr: return "zebStsBadArgErr";
        case zebStsSizeErr: return "zebStsSizeErr";
        case zebStsNullPtrErr: return "zebStsNullPtrErr";
        case zebStsMemAllocErr: return "zebStsMemAllocErr";
        case zebStsNotSupportedModeErr: return "zebStsNotSupportedModeErr";
        case zebStsDataTypeErr: return "zebStsDataTypeErr";
        case zebStsStepErr: return "zebStsStepErr";
        case zebStsContextMatchErr: return "zebStsContextMatchErr";
        case zebStsMaskSizeErr: return "zebStsMaskSizeErr";
        case zebStsAnchorErr: return "zebStsAnchorErr";
        case zebStsChannelErr: return "zebStsChannelErr";
        case zebStsCOIErr: return "zebStsCOIErr";
        case zebStsNumChannelsErr: return "zebStsNumChannelsErr";
        case zebStsMetricErr: return "zebStsMetricErr";
        case zebStsNotEvenStepErr: return "zebStsNotEvenStepErr";
        case zebStsBorderErr: return "zebStsBorderErr";
        case zebStsBadNormErr: return "zebStsBadNormErr";
        case zebStsBadFilterTypeErr: return "zebStsBadFilterTypeErr";
        case zebStsInplaceModeNotSupportedErr: return "zebStsInplaceModeNotSupportedErr";
        case zebStsDivByZero: return "zebStsDivByZero";
        default: return "unknown status";
    }
}

}  // namespace zeb::impl

ZEB_EXPORT(zebcvGetStatusString);

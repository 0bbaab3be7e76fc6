// SPDX-License-Identifier: Apache-2.0
// The frame: variant and vector-target choice at load, version records,
// shared state release.
#include <hwy/highway.h>

#include "core/dispatch.h"
#include "core/simd_dispatch.h"

extern "C" {
__attribute__((visibility("hidden"))) int32_t zeb_cpu_variant = 0;
__attribute__((visibility("hidden"))) int32_t zeb_simd_target = 0;
}

namespace zeb {

int32_t max_simd_target() {
    const uint64_t f = zebGetEnabledCpuFeatures();
    constexpr uint64_t kAvx512 = ZEB_CPU_AVX512F | ZEB_CPU_AVX512BW | ZEB_CPU_AVX512DQ | ZEB_CPU_AVX512VL;
    int32_t t = kSimdSsse3;
    if ((HWY_TARGETS & HWY_AVX2) && (f & ZEB_CPU_AVX2) && (f & ZEB_CPU_FMA) && (f & ZEB_CPU_BMI2) &&
        (f & ZEB_CPU_F16C))
        t = kSimdAvx2;
    if (t == kSimdAvx2 && (HWY_TARGETS & HWY_AVX3) && (f & kAvx512) == kAvx512) t = kSimdAvx512;
    return t;
}

const char* simd_target_name(int32_t target) {
    switch (target) {
        case kSimdAvx2: return "AVX2";
        case kSimdAvx512: return "AVX-512";
        default: return "SSSE3";
    }
}

ZebStatus free_state(void* state) {
    if (!state) return zebStsNullPtrErr;
    release(state);
    return zebStsNoErr;
}

namespace {

// Process attach: pick the variant from the feature mask and the best
// vector target. Nothing else happens at load or unload.
__attribute__((constructor)) void choose_variant() {
    const uint64_t f = zebGetEnabledCpuFeatures();
    zeb_cpu_variant = ((f & ZEB_CPU_SSSE3) && (f & ZEB_CPU_MOVBE)) ? 1 : 0;
    zeb_simd_target = max_simd_target();
}

const ZebLibraryVersion kVersions[2] = {
    {8, 2, 3, 48108, {'u', '8', 0, 0}, "zebCV SSSE3 (u8)", "8.2.3 (r48108)", "Jul 23 2015"},
    {8, 2, 3, 48108, {'n', '8', 0, 0}, "zebCV Tavo (n8)", "8.2.3 (r48108)", "Jul 23 2015"},
};

}  // namespace

// Each variant returns its own record.
namespace u8 {
const ZebLibraryVersion* zebcvGetLibVersion(void) { return &kVersions[0]; }
}
namespace n8 {
const ZebLibraryVersion* zebcvGetLibVersion(void) { return &kVersions[1]; }
}

namespace impl {

const char* zebcvGetSimdTarget(void) { return simd_target_name(zeb_simd_target); }

ZebStatus zebiInpaintFree_8u_C1R(ZebiInpaintState_8u_C1R* s) { return free_state(s); }
ZebStatus zebiInpaintFree_8u_C3R(ZebiInpaintState_8u_C3R* s) { return free_state(s); }

}  // namespace impl
}  // namespace zeb

ZEB_EXPORT_VARIANTS(zebcvGetLibVersion);
ZEB_EXPORT(zebcvGetSimdTarget);
ZEB_EXPORT(zebiInpaintFree_8u_C1R);
ZEB_EXPORT(zebiInpaintFree_8u_C3R);

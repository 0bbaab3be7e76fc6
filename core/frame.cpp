// The frame: variant choice at load, version records, shared state release.
#include "core/dispatch.h"

#if ZEB_VARIANT == 0
extern "C" {
__attribute__((visibility("hidden"))) int32_t zeb_cpu_variant = 0;
__attribute__((visibility("hidden"))) int32_t zeb_isa_level = 0;
}

namespace zeb {

int32_t max_isa_level() {
    return (zebGetEnabledCpuFeatures() & ZEB_CPU_AVX2) ? kIsaAvx2 : kIsaSsse3;
}

ZebStatus free_state(void* state) {
    if (!state) return zebStsNullPtrErr;
    release(state);
    return zebStsNoErr;
}

namespace {

// Process attach: pick the variant from the feature mask. Nothing else
// happens at load or unload.
__attribute__((constructor)) void choose_variant() {
    const uint64_t f = zebGetEnabledCpuFeatures();
    zeb_cpu_variant = ((f & ZEB_CPU_SSSE3) && (f & ZEB_CPU_MOVBE)) ? 1 : 0;
    zeb_isa_level = max_isa_level();
}

}  // namespace

extern const ZebLibraryVersion kVersions[2];
const ZebLibraryVersion kVersions[2] = {
    {8, 2, 3, 48108, {'u', '8', 0, 0}, "zebCV SSSE3 (u8)", "8.2.3 (r48108)", "Jul 23 2015"},
    {8, 2, 3, 48108, {'n', '8', 0, 0}, "zebCV Tavo (n8)", "8.2.3 (r48108)", "Jul 23 2015"},
};

}  // namespace zeb
#endif

namespace zeb {
extern const ZebLibraryVersion kVersions[2];
}

namespace zeb::ZEB_VNS {

const ZebLibraryVersion* zebcvGetLibVersion(void) { return &kVersions[ZEB_VARIANT]; }

ZebStatus zebiInpaintFree_8u_C1R(ZebiInpaintState_8u_C1R* s) { return free_state(s); }
ZebStatus zebiInpaintFree_8u_C3R(ZebiInpaintState_8u_C3R* s) { return free_state(s); }

}  // namespace zeb::ZEB_VNS

ZEB_EXPORT(zebcvGetLibVersion);
ZEB_EXPORT(zebiInpaintFree_8u_C1R);
ZEB_EXPORT(zebiInpaintFree_8u_C3R);

// Export dispatch. Each family source is compiled once per processor
// variant: ZEB_VARIANT 0 puts its implementations into namespace zeb::u8,
// ZEB_VARIANT 1 into zeb::n8. ZEB_EXPORT(name) then emits, in the variant-0
// compile only, the two-entry table {zeb::u8::name, zeb::n8::name} and the
// exported stub: one load of the variant index and one indirect jump,
// arguments untouched.
#pragma once

#include "core/frame.h"

#if !defined(ZEB_VARIANT)
#error "family sources are compiled with ZEB_VARIANT set to 0 or 1"
#elif ZEB_VARIANT == 0
#define ZEB_VNS u8
#else
#define ZEB_VNS n8
#endif

// Tuning that differs between the variants without changing any result.
namespace zeb::ZEB_VNS {
// Independent vectors per step of the per-pixel kernels: the general
// variant keeps more loads in flight, the low-power one fewer registers busy.
inline constexpr int kUnroll = ZEB_VARIANT == 0 ? 4 : 2;
}  // namespace zeb::ZEB_VNS

#define ZEB_STUB_ASM(name)                                          \
    __asm__(".pushsection .text\n\t"                                \
            ".globl " #name "\n\t"                                  \
            ".type " #name ", @function\n\t"                        \
            ".p2align 4\n" #name ":\n\t"                            \
            "movslq zeb_cpu_variant(%rip), %rax\n\t"                \
            "leaq zeb_tbl_" #name "(%rip), %r11\n\t"                \
            "jmp *(%r11,%rax,8)\n\t"                                \
            ".size " #name ", .-" #name "\n\t"                      \
            ".popsection")

#if defined(ZEB_EMIT_STUBS)
#define ZEB_EXPORT(name)                                                            \
    namespace zeb::u8 {                                                             \
    decltype(::name) name;                                                          \
    }                                                                               \
    namespace zeb::n8 {                                                             \
    decltype(::name) name;                                                          \
    }                                                                               \
    extern "C" __attribute__((visibility("hidden"), used))                          \
    decltype(&::name) const zeb_tbl_##name[2] = {&zeb::u8::name, &zeb::n8::name};  \
    ZEB_STUB_ASM(name)
#else
#define ZEB_EXPORT(name) static_assert(true, #name)
#endif

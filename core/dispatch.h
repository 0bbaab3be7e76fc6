// SPDX-License-Identifier: Apache-2.0
// Export dispatch. Every family source is compiled once; its exported
// functions are implemented in namespace zeb::impl. ZEB_EXPORT(name) emits
// the hidden two-entry variant table {zeb::impl::name, zeb::impl::name} and
// the exported stub: one load of the variant index and one indirect jump,
// arguments untouched. Both processor variants run the same implementation;
// vector kernels inside it are chosen per instruction-set target
// (core/simd_dispatch.h).
#pragma once

#include "core/frame.h"

#define ZEB_STUB_ASM(name)                                          \
    __asm__(".pushsection .text\n\t"                                \
            ".globl " #name "\n\t"                                  \
            ".type " #name ", @function\n\t"                        \
            ".p2align 4\n" #name ":\n\t"                            \
            "endbr64\n\t"                                          \
            "movslq zeb_cpu_variant(%rip), %rax\n\t"                \
            "leaq zeb_tbl_" #name "(%rip), %r11\n\t"                \
            "jmp *(%r11,%rax,8)\n\t"                                \
            ".size " #name ", .-" #name "\n\t"                      \
            ".popsection")

#define ZEB_EXPORT(name)                                                                \
    namespace zeb::impl {                                                               \
    decltype(::name) name;                                                              \
    }                                                                                   \
    extern "C" __attribute__((visibility("hidden"), used))                              \
    decltype(&::name) const zeb_tbl_##name[2] = {&zeb::impl::name, &zeb::impl::name};   \
    ZEB_STUB_ASM(name)

// An export whose two variants are different functions, zeb::u8::name and
// zeb::n8::name (the version query returns each variant's own record).
#define ZEB_EXPORT_VARIANTS(name)                                                       \
    namespace zeb::u8 {                                                                 \
    decltype(::name) name;                                                              \
    }                                                                                   \
    namespace zeb::n8 {                                                                 \
    decltype(::name) name;                                                              \
    }                                                                                   \
    extern "C" __attribute__((visibility("hidden"), used))                              \
    decltype(&::name) const zeb_tbl_##name[2] = {&zeb::u8::name, &zeb::n8::name};       \
    ZEB_STUB_ASM(name)

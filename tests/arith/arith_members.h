// SPDX-License-Identifier: Apache-2.0
// Every difference and accumulation export: its kind, source type, whether
// it has a second source and a mask, the element sizes of its images in
// argument order, and the order of its step checks (">" a group of length
// checks, "e" a group of multiple-of-size checks, digits the images in the
// group, groups tested left to right).
#pragma once

#include "harness.h"

#define ZEB_ARITH_MEMBERS(X)                                                       \
    X(zebiAbsDiff_8u_C1R, AbsDiff, Zeb8u, 1, 0, "111", ">012")                     \
    X(zebiAbsDiff_8u_C3R, AbsDiff3, Zeb8u, 1, 0, "111", ">012")                    \
    X(zebiAbsDiff_16u_C1R, AbsDiff, Zeb16u, 1, 0, "222", ">012 e012")              \
    X(zebiAbsDiff_32f_C1R, AbsDiff, Zeb32f, 1, 0, "444", ">012 e012")              \
    X(zebiAbsDiffC_8u_C1R, AbsDiffC, Zeb8u, 0, 0, "11", ">01")                     \
    X(zebiAbsDiffC_16u_C1R, AbsDiffC, Zeb16u, 0, 0, "22", ">01 e01")               \
    X(zebiAbsDiffC_32f_C1R, AbsDiffC, Zeb32f, 0, 0, "44", ">01 e01")               \
    X(zebiAdd_8u32f_C1IR, Add, Zeb8u, 0, 0, "14", ">01 e1")                        \
    X(zebiAdd_8s32f_C1IR, Add, Zeb8s, 0, 0, "14", ">01 e1")                        \
    X(zebiAdd_16u32f_C1IR, Add, Zeb16u, 0, 0, "24", ">0 e0 >1 e1")                 \
    X(zebiAdd_8u32f_C1IMR, Add, Zeb8u, 0, 1, "114", ">012 e2")                     \
    X(zebiAdd_8s32f_C1IMR, Add, Zeb8s, 0, 1, "114", ">012 e2")                     \
    X(zebiAdd_16u32f_C1IMR, Add, Zeb16u, 0, 1, "214", ">0 e0 >12 e2")              \
    X(zebiAdd_32f_C1IMR, Add, Zeb32f, 0, 1, "414", ">012 e20")                     \
    X(zebiAddSquare_8u32f_C1IR, Square, Zeb8u, 0, 0, "14", ">01 e1")               \
    X(zebiAddSquare_8s32f_C1IR, Square, Zeb8s, 0, 0, "14", ">01 e1")               \
    X(zebiAddSquare_16u32f_C1IR, Square, Zeb16u, 0, 0, "24", ">0 e0 >1 e1")        \
    X(zebiAddSquare_32f_C1IR, Square, Zeb32f, 0, 0, "44", ">01 e01")               \
    X(zebiAddSquare_8u32f_C1IMR, Square, Zeb8u, 0, 1, "114", ">012 e2")            \
    X(zebiAddSquare_8s32f_C1IMR, Square, Zeb8s, 0, 1, "114", ">012 e2")            \
    X(zebiAddSquare_16u32f_C1IMR, Square, Zeb16u, 0, 1, "214", ">0 e0 >12 e2")     \
    X(zebiAddSquare_32f_C1IMR, Square, Zeb32f, 0, 1, "414", ">012 e02")            \
    X(zebiAddProduct_8u32f_C1IR, Product, Zeb8u, 1, 0, "114", ">012 e2")           \
    X(zebiAddProduct_8s32f_C1IR, Product, Zeb8s, 1, 0, "114", ">012 e2")           \
    X(zebiAddProduct_16u32f_C1IR, Product, Zeb16u, 1, 0, "224", ">01 e01 >2 e2")   \
    X(zebiAddProduct_32f_C1IR, Product, Zeb32f, 1, 0, "444", ">012 e012")          \
    X(zebiAddProduct_8u32f_C1IMR, Product, Zeb8u, 1, 1, "1114", ">0123 e3")        \
    X(zebiAddProduct_8s32f_C1IMR, Product, Zeb8s, 1, 1, "1114", ">0123 e3")        \
    X(zebiAddProduct_16u32f_C1IMR, Product, Zeb16u, 1, 1, "2214", ">01 e01 >23 e3") \
    X(zebiAddProduct_32f_C1IMR, Product, Zeb32f, 1, 1, "4414", ">0123 e013")       \
    X(zebiAddWeighted_8u32f_C1IR, Weighted, Zeb8u, 0, 0, "14", ">01 e1")           \
    X(zebiAddWeighted_8s32f_C1IR, Weighted, Zeb8s, 0, 0, "14", ">01 e1")           \
    X(zebiAddWeighted_16u32f_C1IR, Weighted, Zeb16u, 0, 0, "24", ">0 e0 >1 e1")    \
    X(zebiAddWeighted_32f_C1IR, Weighted, Zeb32f, 0, 0, "44", ">01 e01")           \
    X(zebiAddWeighted_8u32f_C1IMR, Weighted, Zeb8u, 0, 1, "114", ">012 e2")        \
    X(zebiAddWeighted_8s32f_C1IMR, Weighted, Zeb8s, 0, 1, "114", ">012 e2")        \
    X(zebiAddWeighted_16u32f_C1IMR, Weighted, Zeb16u, 0, 1, "214", ">0 e0 >12 e2") \
    X(zebiAddWeighted_32f_C1IMR, Weighted, Zeb32f, 0, 1, "414", ">012 e02")        \
    X(zebiAddWeighted_32f_C1R, Weighted2, Zeb32f, 1, 0, "444", ">012 e012")

#define ZEB_ARITH_DECLARE(name, ...) ZEB_TEST_TABLE(name);
ZEB_ARITH_MEMBERS(ZEB_ARITH_DECLARE)
#undef ZEB_ARITH_DECLARE

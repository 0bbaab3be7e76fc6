// SPDX-License-Identifier: Apache-2.0
// The engine behind the fixed 3x3 and 5x5 filters (Sobel, Scharr,
// Laplacian, lowpass): kernel descriptors, argument checks, work-buffer
// sizes and the entry into the vector kernels (filter/fixed_filter.cpp).
//
// A filter is one or two separable terms. Each term has a column table
// (applied in order of increasing y) and a row table (applied mirrored:
// its last coefficient weighs the pixel on the left), so that the derivative
// tables "1 0 -1" along a row and "-1 0 1" down a column both give
// "next pixel minus previous pixel". Every output row is made in two steps
// over a line t that covers the ROI width plus the kernel radius on each
// side: t(x) = sum over the column table of coefficient * pixel, then
// out(x) = sum over the row table of coefficient * t(x + offset), the terms
// added in order. Zero coefficients are skipped; the first product starts
// the sum. Integer forms compute exact sums (8-bit input never leaves the
// 16-bit range in any of these kernels), float forms round each operation
// in this fixed order in every path (filter/fixed_filter_ref.h).
#pragma once

#include <cstdint>

#include "core/border.h"
#include "core/checks.h"
#include "core/frame.h"
#include "filter/pipeline_sizes.h"

namespace zeb::fixed {

// What the final step makes of the row sum.
enum class Out {
    S16,     // exact 16-bit sum
    S16Neg,  // its negation
    S8,      // sum / divisor, rounded half away from zero, saturated to -127..127
    S8Neg,   // the same for the negated sum
    F32,     // float sum
    F32Neg,  // its negation
    F32Mean, // sum * (1 / count)
    U8Mean,  // (sum + count / 2) / count
};

// Descriptors: k taps, one or two terms, tables as listed in the header.
#define ZEB_FIXED_DESC(Name, K, Terms, ...)        \
    struct Name {                                  \
        static constexpr int k = K;                \
        static constexpr int terms = Terms;        \
        static constexpr int tab[2][2][5] = __VA_ARGS__; \
    };
// tab[term][0] is the row table, tab[term][1] the column table.
ZEB_FIXED_DESC(SobelHoriz3, 3, 1, {{{1, 2, 1}, {-1, 0, 1}}})
ZEB_FIXED_DESC(SobelHoriz5, 5, 1, {{{1, 4, 6, 4, 1}, {-1, -2, 0, 2, 1}}})
ZEB_FIXED_DESC(SobelVert3, 3, 1, {{{1, 0, -1}, {1, 2, 1}}})
ZEB_FIXED_DESC(SobelVert5, 5, 1, {{{1, 2, 0, -2, -1}, {1, 4, 6, 4, 1}}})
ZEB_FIXED_DESC(SobelHorizSecond3, 3, 1, {{{1, 2, 1}, {1, -2, 1}}})
ZEB_FIXED_DESC(SobelHorizSecond5, 5, 1, {{{1, 4, 6, 4, 1}, {1, 0, -2, 0, 1}}})
ZEB_FIXED_DESC(SobelVertSecond3, 3, 1, {{{1, -2, 1}, {1, 2, 1}}})
ZEB_FIXED_DESC(SobelVertSecond5, 5, 1, {{{1, 0, -2, 0, 1}, {1, 4, 6, 4, 1}}})
ZEB_FIXED_DESC(SobelCross3, 3, 1, {{{1, 0, -1}, {-1, 0, 1}}})
ZEB_FIXED_DESC(SobelCross5, 5, 1, {{{1, 2, 0, -2, -1}, {-1, -2, 0, 2, 1}}})
// Scharr: smoothing 3 10 3 across the derivative direction.
ZEB_FIXED_DESC(ScharrHoriz3, 3, 1, {{{3, 10, 3}, {-1, 0, 1}}})
ZEB_FIXED_DESC(ScharrVert3, 3, 1, {{{1, 0, -1}, {3, 10, 3}}})
// Laplacian 3x3: the four diagonal neighbours weigh 2, the centre -8 (a
// term whose column table is the centre alone reads the source row).
ZEB_FIXED_DESC(Laplacian3, 3, 2, {{{2, 0, 2}, {1, 0, 1}}, {{0, -8, 0}, {0, 1, 0}}})
// Laplacian 5x5: d2/dy2 plus d2/dx2 of the 5x5 Sobel second derivatives.
ZEB_FIXED_DESC(Laplacian5, 5, 2, {{{1, 4, 6, 4, 1}, {1, 0, -2, 0, 1}}, {{1, 0, -2, 0, 1}, {1, 4, 6, 4, 1}}})
ZEB_FIXED_DESC(Lowpass3, 3, 1, {{{1, 1, 1}, {1, 1, 1}}})
ZEB_FIXED_DESC(Lowpass5, 5, 1, {{{1, 1, 1, 1, 1}, {1, 1, 1, 1, 1}}})
#undef ZEB_FIXED_DESC

// Coefficients of one pass in the order they are applied (offsets -r..r).
template <class D, int T, bool kRow>
struct Taps {
    static constexpr int n = D::k;
    static constexpr int at(int i) { return kRow ? D::tab[T][0][D::k - 1 - i] : D::tab[T][1][i]; }
    static constexpr int c[5] = {at(0), at(1), at(2), n > 3 ? at(3) : 0, n > 4 ? at(4) : 0};
};

// A column table that is the centre tap alone: the term reads its source
// row directly instead of a column line.
template <class D, int T>
constexpr bool centre_only() {
    for (int i = 0; i < D::k; ++i)
        if (D::tab[T][1][i] != (i == D::k / 2 ? 1 : 0)) return false;
    return true;
}

// Count of pixels the lowpass averages.
template <class D>
constexpr int cell_count() {
    return D::k * D::k;
}

// Division of a non-negative 16-bit sum by 9 or 25 with a multiply-high
// and a shift: exact for every sum the lowpass can produce.
template <int kCount>
struct MeanMagic {
    static constexpr int shift = kCount == 9 ? 3 : 4;
    static constexpr uint32_t mul = uint32_t(((1u << (16 + shift)) + kCount - 1) / kCount);
    static constexpr bool exact() {
        for (uint32_t v = 0; v <= 255u * kCount + kCount / 2; ++v)
            if (((v * mul) >> (16 + shift)) != v / kCount) return false;
        return true;
    }
    static_assert(mul < 65536u, "the multiplier must fit an unsigned 16-bit lane");
    static_assert(exact(), "the multiply-high division must be exact over the whole range");
};

// Border argument: mode 0..4 or 6 in the low four bits, and any bit of
// 0xfff0 only together with at least one of the four side flags.
inline bool bad_border(int32_t b) {
    const int32_t mode = b & 0xf;
    if (mode > 4 && mode != border::kInMem) return true;
    return (b & 0xfff0) != 0 && (b & border::kAllSides) == 0;
}

// Kernel length of a mask-size code, 0 when the code is not accepted.
inline int taps_of(int32_t maskSize) { return maskSize == 33 ? 3 : maskSize == 55 ? 5 : 0; }

// ---- work-buffer sizes ----

enum class SizeKind { Sobel8u8s, Sobel8u16s, Sobel32f, Lowpass32f, Laplacian8u, Laplacian32f };

// Bytes for the filters of a kind, in 64 bits: every term is exact for any
// int width, so an oversized figure is reported, never wrapped.
inline int64_t buffer_bytes(SizeKind kind, int32_t w, int k) {
    namespace ps = pipeline_size;
    const int64_t w16 = (int64_t(w) + 15) / 16 * 16;
    const int64_t rows = k == 3 ? 21 : 25, ctl = k == 3 ? 72 : 120;
    // The 16s column pass: 12 * roundup4(w) + 64.
    const int64_t row8 = int64_t(ps::row_8u16s_c1(k)), col16 = 12 * ((int64_t(w) + 3) / 4 * 4) + 64;
    const int64_t rowf = int64_t(ps::row_32f_c1(k)), colf = int64_t(ps::col_float_or_16u());
    switch (kind) {
        case SizeKind::Sobel8u8s: return 2 * w16 * rows + ctl + 304 + row8 + col16;
        case SizeKind::Sobel8u16s: return 2 * w16 * rows + ctl + 368 + row8 + col16;
        case SizeKind::Sobel32f: return 4 * w16 * rows + ctl + 368 + rowf + colf;
        case SizeKind::Lowpass32f: return 4 * w16 * rows + ctl + 304 + rowf + colf;
        case SizeKind::Laplacian8u: return 4 * w16 * rows + 2 * ctl + 736 + row8 + col16;
        case SizeKind::Laplacian32f: return 8 * w16 * rows + 2 * ctl + 576 + rowf + colf;
    }
    return -1;
}

// Scharr sizes: 8u16s horizontal and both 8u8s; 8u16s vertical; 32f.
enum class ScharrKind { Small8u, Vert8u16s, Float };

inline int64_t scharr_bytes(ScharrKind kind, int32_t w) {
    namespace ps = pipeline_size;
    const int64_t w16 = (int64_t(w) + 15) / 16 * 16;
    const int64_t row8 = int64_t(ps::row_8u16s_c1(3)), col16 = 12 * ((int64_t(w) + 3) / 4 * 4) + 64;
    switch (kind) {
        case ScharrKind::Small8u: return 42 * w16 + 376 + row8 + col16;
        case ScharrKind::Vert8u16s: return 42 * w16 + 440 + row8 + col16;
        case ScharrKind::Float: return 84 * w16 + 440 + int64_t(ps::row_32f_c1(3)) + int64_t(ps::col_float_or_16u());
    }
    return -1;
}

// The GetBufferSize checks: output pointer, size, then mask size.
inline ZebStatus query(ZebiSize roi, int32_t maskSize, int* out, SizeKind kind) {
    if (out == nullptr) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const int k = taps_of(maskSize);
    if (k == 0) return zebStsMaskSizeErr;
    return put_size(buffer_bytes(kind, roi.width, k), out);
}

inline ZebStatus query_scharr(ZebiSize roi, int* out, ScharrKind kind) {
    if (out == nullptr) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    return put_size(scharr_bytes(kind, roi.width), out);
}

// ---- the filter run ----

// One call's images and work arrays, as the kernels see them.
template <class S, class Dst>
struct Job {
    const S* src;
    int32_t srcStep;
    Dst* dst;
    int32_t dstStep;
    int w, h;
    border::Spec spec;
    S value;
    int32_t divisor;
    unsigned char* buffer;  // already aligned
};

// Runs filter D3 (k = 3) or D5 (k = 5) with output rule O over the job on
// the chosen vector target, with streaming stores when `stream`. Defined,
// with one instantiation per member, in filter/fixed_filter.cpp.
template <class D3, class D5, Out O, class S, class Dst>
void filter(const Job<S, Dst>& job, int k, bool stream);

// Checks the arguments in order and runs the filter D3 / D5 with output
// rule O. kScaled: the member takes a divisor (checked after the border).
// hasMask: the member takes a mask size (otherwise 3x3).
template <class D3, class D5, Out O, bool kScaled, class S, class Dst>
ZebStatus run(const S* src, int32_t ss, Dst* dst, int32_t ds, ZebiSize roi, int32_t maskSize, int32_t borderType,
              S value, int32_t divisor, void* buffer, bool hasMask = true) {
    if (any_null(src, dst, buffer)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const StepReq rs = req<S>(ss, roi.width), rd = req<Dst>(ds, roi.width);
    if (ZebStatus s = first_error({min_steps({rs, rd}), even_steps({rs, rd})})) return s;
    if (bad_border(borderType)) return zebStsBadArgErr;
    if (kScaled && divisor == 0) return zebStsBadArgErr;
    const int k = hasMask ? taps_of(maskSize) : 3;
    if (k == 0) return zebStsMaskSizeErr;

    const Job<S, Dst> job{src, ss, dst, ds, roi.width, roi.height, border::decode(borderType), value,
                          kScaled ? divisor : 1, align_up(static_cast<unsigned char*>(buffer), 32)};
    // Results go straight to memory when the images outgrow the cache.
    filter<D3, D5, O>(job, k, use_streaming(roi, int32_t(sizeof(S) + sizeof(Dst))));
    return zebStsNoErr;
}

}  // namespace zeb::fixed

// SPDX-License-Identifier: Apache-2.0
// The prepared dilation/erosion state: its layout inside the caller's block,
// the size formulas of the queries, mask classification and the scratch
// each kernel path needs. Shared by the state, dilation/erosion and min/max
// filter sources.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "core/frame.h"

struct ZebiMorphState {};  // opaque to callers; the real record is morph::Header

namespace zeb::morph {

// Pixel kinds a state is made for.
enum class Kind : int32_t { k1u = 0, k8u = 1, k16u = 5, k16s = 7, k32f = 13 };

// Mask classes.
enum Class : int32_t { kGeneral = 0, kRect = 1, kRuns = 2, kEmpty = 3 };

// Kernel paths: the extremum over every selected element of extended rows,
// the separable rectangle, the extremum over row runs built from
// power-of-two tables, a plain copy.
enum Path : int32_t { kPathGeneral = 0, kPathRect = 1, kPathRuns = 2, kPathCopy = 3 };

inline constexpr uint32_t kMagic = 0x4d4f5250u;  // "MORP"

// One term of the general path: the mask element at (row, col).
struct Term {
    int32_t row, col;
};
// One term of the run path: the window of 2^level elements starting at
// column col of mask row `row`.
struct RunTerm {
    int32_t level, row, col, pad;
};

// The record at the start of a state block (at its first 8-byte boundary).
struct Header {
    uint32_t magic;
    int32_t kind;      // Kind
    int32_t channels;  // 1, 3 or 4
    int32_t maxWidth;  // the largest ROI width served
    int32_t mW, mH;    // mask size
    int32_t ax, ay;    // anchor
    int32_t klass;     // Class
    int32_t path;      // Path
    int32_t rx, ry, rw, rh;  // rectangle: offset of its first column/row from the anchor, and size
    int32_t nSel;            // selected elements
    int32_t nRunTerms;       // run-path terms
    int32_t levels;          // power-of-two tables the run path builds (1 = the row itself)
    int32_t rowsOff, termsOff, runTermsOff, maskOff;  // byte offsets from the header
    int32_t scratchOff;   // own scratch (older interface): byte offset from the header
    int32_t scratchBytes; // and its size; 0 for the border interface
};

inline int64_t r16(int64_t n) { return (n + 15) & ~int64_t(15); }
inline int64_t r32(int64_t n) { return (n + 31) & ~int64_t(31); }

// floor(log2(n)) + 1 for n >= 1.
inline int32_t log2_levels(int64_t n) {
    int32_t l = 0;
    while (n > 0) ++l, n >>= 1;
    return l;
}

// Bytes of one pixel as the kernels hold it (1u pixels are unpacked to a byte).
inline int64_t pixel_bytes(Kind k, int ch) {
    switch (k) {
        case Kind::k1u:
        case Kind::k8u:
            return ch;
        case Kind::k16u:
        case Kind::k16s:
            return 2 * ch;
        case Kind::k32f:
            return 4 * ch;
    }
    return 4 * ch;
}

// The scratch of the general and run paths: a ring of mH source rows, each
// extended by the mask width and held with `levels` power-of-two tables,
// one output row (1u: unpacked), the term pointers; 32 bytes to align the
// start.
inline int64_t rows_work(int64_t W, int64_t P, int64_t mW, int64_t mH, int64_t levels, int64_t terms) {
    const int64_t E = r32((W + mW - 1) * P);
    return mH * levels * E + r32(W * P) + 8 * terms + 32;
}

// The scratch of the separable rectangle path: a ring of rh rows and one
// temporary row (extended by the rectangle width when the border pixels are
// read from memory), 32 bytes to align the start.
inline int64_t rect_work(int64_t W, int64_t P, int64_t rw, int64_t rh, bool inMem) {
    const int64_t tmp = inMem ? r32((W + rw - 1) * P) : r32(W * P);
    return rh * r32(W * P) + tmp + 32;
}

// Border-interface work size: the largest need of any mask of this size.
inline int64_t border_work_bound(int64_t W, int64_t P, int64_t mW, int64_t mH) {
    return rows_work(W, P, mW, mH, log2_levels(mW), mW * mH);
}
// The table part of the border buffer and of the older state.
inline int64_t table_bytes(int64_t mW, int64_t mH) { return r16(24 * mH) + r16(mW * mH) + r16(16 * mH + 64); }
inline int64_t border_buffer_size(int64_t W, int64_t P, int64_t mW, int64_t mH) {
    return border_work_bound(W, P, mW, mH) + table_bytes(mW, mH);
}
// The state arrays (rows table, terms, mask copy) and the header.
inline int64_t state_core_size(int64_t mW, int64_t mH) { return 33 * r16(mW * mH) + 16 * mH + 160; }
inline int64_t border_spec_size(int64_t W, int64_t P, int64_t mW, int64_t mH) {
    return state_core_size(mW, mH) + border_buffer_size(W, P, mW, mH);
}
// Min/max filter buffer (P = bytes of one pixel).
inline int64_t minmax_buffer_size(int64_t W, int64_t P, int64_t mH) {
    return 32 * mH + 2 * mH * (W * P + 32) + 32;
}
inline int64_t older_state_size(int64_t W, int64_t P, int64_t mW, int64_t mH) {
    return state_core_size(mW, mH) + minmax_buffer_size(W, P, mH) + table_bytes(mW, mH);
}

// The header inside a state block.
inline Header* header(void* state) { return align_up(static_cast<Header*>(state), 8); }
inline const Header* header(const void* state) {
    return align_up(static_cast<Header*>(const_cast<void*>(state)), 8);
}
template <class T>
inline T* at(const Header* h, int32_t off) {
    return reinterpret_cast<T*>(reinterpret_cast<char*>(const_cast<Header*>(h)) + off);
}

// Builds the state in `block` for the mask and anchor. The block holds
// state_core_size bytes plus `scratch` bytes of own scratch. Arguments are
// checked by the caller.
void build_state(void* block, Kind kind, int ch, int roiWidth, const uint8_t* mask, ZebiSize maskSize,
                 ZebiPoint anchor, int64_t scratch);

// Bytes of scratch a call of width W (border pixels in memory or not)
// needs with this state.
int64_t state_work(const Header* h, int W, bool inMem);

}  // namespace zeb::morph

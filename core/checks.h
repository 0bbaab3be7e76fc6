// SPDX-License-Identifier: Apache-2.0
// Argument-check helpers. Every export checks in a fixed order and returns
// the first failing status before touching any pixel; these helpers keep
// each check a single expression.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <limits>

#include "zebcv.h"

namespace zeb {

template <class... P>
constexpr bool any_null(const P*... p) {
    return ((p == nullptr) || ...);
}

inline bool bad_roi(ZebiSize s) { return s.width < 1 || s.height < 1; }

// One image's step requirement: at least rowBytes, a multiple of elem.
struct StepReq {
    int32_t step;
    int64_t rowBytes;
    int32_t elem;
};

template <class T>
inline StepReq req(int32_t step, int32_t width, int32_t channels = 1) {
    return {step, int64_t(width) * channels * int64_t(sizeof(T)), int32_t(sizeof(T))};
}

// zebStsStepErr when any step is shorter than its row.
inline ZebStatus min_steps(std::initializer_list<StepReq> r) {
    for (const StepReq& s : r)
        if (int64_t(s.step) < s.rowBytes) return zebStsStepErr;
    return zebStsNoErr;
}

// zebStsNotEvenStepErr when any step is not a multiple of its element size.
inline ZebStatus even_steps(std::initializer_list<StepReq> r) {
    for (const StepReq& s : r)
        if (s.step % s.elem != 0) return zebStsNotEvenStepErr;
    return zebStsNoErr;
}

// The first non-zero status of an ordered list of already evaluated,
// side-effect free checks.
inline ZebStatus first_error(std::initializer_list<ZebStatus> sts) {
    for (ZebStatus s : sts)
        if (s != zebStsNoErr) return s;
    return zebStsNoErr;
}

// The end of every size query: the byte count, computed in 64 bits by the
// caller, is stored when it fits a signed 32-bit int; otherwise
// zebStsSizeErr and nothing is written.
inline ZebStatus put_size(int64_t bytes, int* size) {
    if (bytes < 0 || bytes > std::numeric_limits<int32_t>::max()) return zebStsSizeErr;
    *size = int32_t(bytes);
    return zebStsNoErr;
}

}  // namespace zeb

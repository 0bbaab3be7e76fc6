// SPDX-License-Identifier: Apache-2.0
// Work-buffer sizes of the row and column passes. The derivative, smoothing
// and Gaussian filters add them into their own buffer sizes, so they live in
// one place. k is the kernel length, w the ROI width; arguments are checked
// by the callers. Every figure is computed in 64 bits: a size query stores
// it only when it fits its int result (zeb::put_size).
#pragma once

#include <cstdint>

namespace zeb::pipeline_size {

inline constexpr int64_t roundup(int64_t v, int64_t n) { return (v + n - 1) / n * n; }

// Row pass, by type and channel count.
inline constexpr int64_t row_16s_c1(int64_t k) { return 48 * k + 112; }
inline constexpr int64_t row_16s_c3(int64_t k) { return 40 * k + 96; }
inline constexpr int64_t row_16u_c1(int64_t k) { return 48 * k + 80; }
inline constexpr int64_t row_16u_c3(int64_t k) { return 112 * k + 80; }
inline constexpr int64_t row_32f_c1(int64_t k) { return (128 * k) | 96; }
inline constexpr int64_t row_32f_c3(int64_t k) { return 192 * k + 64; }
inline constexpr int64_t row_8u16s_c1(int64_t k) { return 36 * k + 144; }
inline constexpr int64_t row_8u16s_c3(int64_t k) { return 60 * k + 144; }
inline constexpr int64_t row_low_16s_c1(int64_t k) { return 24 * k + 96; }
inline constexpr int64_t row_low_16s_c3(int64_t k) { return 208 * k + 96; }

// Column pass.
inline constexpr int64_t col_16s_c1(int64_t w) { return 12 * roundup(w, 4) + 64; }  // also 16s8u, 16s8s
inline constexpr int64_t col_16s_c3(int64_t w) { return 36 * roundup(w, 4) + 64; }
inline constexpr int64_t col_float_or_16u() { return 32; }                           // 16u and 32f, C1 and C3
inline constexpr int64_t col_low_16s_c1(int64_t w) { return 12 * roundup(w, 8) + 64; }
inline constexpr int64_t col_low_16s_c3(int64_t w) { return 36 * roundup(w, 8) + 64; }

}  // namespace zeb::pipeline_size

// SPDX-License-Identifier: Apache-2.0
// Pieces shared by the statistics families: argument checks and the walk
// over one channel of a row.
#pragma once

#include <algorithm>
#include <cstddef>

#include "core/checks.h"
#include "core/frame.h"
#include "stats/stats_ref.h"

namespace zeb::stats {

// Step checks of the mean, deviation and extrema forms; maskStep is null
// for the unmasked forms. Byte sources check both lengths; 16-bit sources
// check their own length and parity before the mask; float sources check
// both lengths before the parity.
template <class T>
inline ZebStatus moment_steps(int srcStep, const int* maskStep, int w, int ch) {
    const StepReq s = req<T>(srcStep, w, ch);
    const StepReq m = maskStep ? req<uint8_t>(*maskStep, w) : s;
    if constexpr (sizeof(T) == 1)
        return min_steps({s, m});
    else if constexpr (sizeof(T) == 2)
        return first_error({min_steps({s}), even_steps({s}), min_steps({m})});
    else
        return first_error({min_steps({s, m}), even_steps({s})});
}

// Step checks of the norms: every length, then the sources' parity.
template <class T>
inline ZebStatus norm_steps(int s1, const int* s2, int maskStep, int w, int ch) {
    const StepReq a = req<T>(s1, w, ch);
    const StepReq b = s2 ? req<T>(*s2, w, ch) : a;
    return first_error({min_steps({a, b, req<uint8_t>(maskStep, w)}), even_steps({a, b})});
}

inline bool bad_coi(int coi) { return coi < 1 || coi > 3; }

// Calls f(p1, p2, x0, n) over the pixels of one row: once with the row
// itself for a one-channel image; for three channels, channel c of pixels
// x0 .. x0+n-1 copied out in chunks of kChunk (r2 may be null).
template <class T, class F>
inline void for_channel(const T* r1, const T* r2, int ch, int c, int w, F&& f) {
    if (ch == 1) {
        f(r1, r2, 0, w);
        return;
    }
    T b1[kChunk], b2[kChunk];
    for (int x0 = 0; x0 < w; x0 += kChunk) {
        const int n = std::min(kChunk, w - x0);
        const T* s1 = r1 + std::ptrdiff_t(x0) * 3 + c;
        for (int i = 0; i < n; ++i) b1[i] = s1[3 * i];
        if (r2) {
            const T* s2 = r2 + std::ptrdiff_t(x0) * 3 + c;
            for (int i = 0; i < n; ++i) b2[i] = s2[3 * i];
        }
        f(static_cast<const T*>(b1), r2 ? static_cast<const T*>(b2) : nullptr, x0, n);
    }
}

// Kernel of the unmasked one-channel float mean and deviation: images of
// at most 5000 pixels or narrower than 4 take the plain kernel; those below
// 100000 pixels whose first pixel is 4-byte aligned and whose step is a
// multiple of 16 the aligned one; the rest the blocked one. The pixel count
// is taken in 64 bits, so an image of 2^31 pixels or more is large.
enum class FloatC1Kernel { Plain, Aligned, Blocked };
inline FloatC1Kernel float_c1_kernel(int32_t width, int32_t height, const void* p, int32_t step) {
    const int64_t n = int64_t(width) * height;
    if (n <= 5000 || width < 4) return FloatC1Kernel::Plain;
    const bool aligned = reinterpret_cast<uintptr_t>(p) % 4 == 0 && step % 16 == 0;
    return n < 100000 && aligned ? FloatC1Kernel::Aligned : FloatC1Kernel::Blocked;
}

}  // namespace zeb::stats

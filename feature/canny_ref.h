// SPDX-License-Identifier: Apache-2.0
// The per-pixel rules of the edge detector, stated plainly: magnitude and
// low cut of each detector, the sector test, non-maximum suppression with
// its tie rules. The vector kernels give the same results; their scalar
// heads and tails call these.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

namespace zeb::canny {

// tan(67.5 degrees) and tan(22.5 degrees) in single precision.
inline constexpr float kTanHigh = std::bit_cast<float>(0x401A827Au);
inline constexpr float kTanLow = std::bit_cast<float>(0x3ED413CDu);
static_assert(kTanHigh == 2.4142136f && kTanLow == 0.41421357f);

// Map bytes: a candidate has its top bit set; a strong candidate is 255.
inline constexpr uint8_t kCandidate = 128, kStrong = 255;

// Direction codes of the border detector.
enum Code : uint8_t { kHoriz = 1, kDiagMinus = 2, kVert = 3, kDiagPlus = 4 };

// Sign bit of a float (set for -0.0 too) or of an integer.
inline bool sign_bit(float v) { return (std::bit_cast<uint32_t>(v) >> 31) != 0; }
inline bool sign_bit(int32_t v) { return v < 0; }

namespace ref {

// 16-bit derivatives: |dx| + |dy| as unsigned 16-bit values, saturated;
// kept when strictly above the truncated low threshold.
inline int32_t magnitude(int16_t dx, int16_t dy, int32_t lowI) {
    const int32_t m = std::min(std::abs(int32_t(dx)) + std::abs(int32_t(dy)), 65535);
    return m > lowI ? m : 0;
}

// Float derivatives: |dx| + |dy|, kept when at least the low threshold.
inline float magnitude(float dx, float dy, float low) {
    const float m = std::fabs(dx) + std::fabs(dy);
    return m >= low ? m : 0.f;
}

// The code of a derivative pair under the detectors' sector test.
inline Code sector(float ax, float ay, bool sameSign) {
    if (ay > kTanHigh * ax) return kVert;
    if (ay < kTanLow * ax) return kHoriz;
    return sameSign ? kDiagPlus : kDiagMinus;
}

// The border detector's sector test: the vertical bound as two additions
// and one multiplication, the horizontal one with the operands swapped.
inline Code border_sector(float ax, float ay, bool sameSign) {
    if (ay > (ax + ax) + kTanLow * ax) return kVert;
    if (kTanLow * ax > ay) return kHoriz;
    return sameSign ? kDiagPlus : kDiagMinus;
}

// Non-maximum suppression of magnitude m (not 0) with its eight
// neighbours, u/c/d the rows above, at and below, l/r the columns. Along an
// axis the earlier neighbour must be smaller and the later one may be
// equal; along a diagonal both must be smaller.
template <class M>
inline bool keep(Code code, M m, M ul, M u, M ur, M l, M r, M dl, M d, M dr) {
    switch (code) {
        case kVert: return u < m && d <= m;
        case kHoriz: return l < m && r <= m;
        case kDiagPlus: return ul < m && dr < m;
        default: return ur < m && dl < m;
    }
}

// Map byte of pixel x of a magnitude row cur (rows prev and next around
// it; index -1 and w hold 0).
template <class M>
inline uint8_t suppress(Code code, const M* prev, const M* cur, const M* next, int x, M high) {
    const M m = cur[x];
    if (m == M(0)) return 0;
    if (!keep(code, m, prev[x - 1], prev[x], prev[x + 1], cur[x - 1], cur[x + 1], next[x - 1], next[x], next[x + 1]))
        return 0;
    return m > high ? kStrong : kCandidate;
}

// Derivative of the border detector at ROI column x of k rows that hold the
// row with k/2 pixels of border on either side (pixel x at index x + k/2).
// kKind: 0 Sobel 3x3, 1 Scharr 3x3, 2 Sobel 5x5.
template <int kKind>
inline void gradient(const uint8_t* const* rows, int x, int32_t& gx, int32_t& gy) {
    if constexpr (kKind == 2) {
        static constexpr int s[5] = {1, 4, 6, 4, 1}, dlt[5] = {-1, -2, 0, 2, 1};
        gx = 0, gy = 0;
        for (int j = 0; j < 5; ++j)
            for (int i = 0; i < 5; ++i) {
                const int p = rows[j][x + i];
                gx += s[j] * dlt[i] * p;
                gy += dlt[j] * s[i] * p;
            }
    } else {
        const int a = kKind == 0 ? 1 : 3, b = kKind == 0 ? 2 : 10;
        const uint8_t *r0 = rows[0] + x, *r1 = rows[1] + x, *r2 = rows[2] + x;
        gx = a * (r0[2] - r0[0]) + b * (r1[2] - r1[0]) + a * (r2[2] - r2[0]);
        gy = a * (r2[0] - r0[0]) + b * (r2[1] - r0[1]) + a * (r2[2] - r0[2]);
    }
}

// Magnitude of a border-detector gradient: L1, or L2 with the square root
// taken in double precision and rounded to single.
inline float border_magnitude(float ax, float ay, bool l2) {
    if (!l2) return ax + ay;
    return float(std::sqrt(double(ax * ax + ay * ay)));
}

}  // namespace ref
}  // namespace zeb::canny

// SPDX-License-Identifier: Apache-2.0
// One kept element of a grey-scale structuring element as the kernels read
// it: its row and column in the bordered source window, and its offset.
#pragma once

#include <cstdint>

namespace zeb {

struct GrayElem {
    int32_t row;  // mask row j: the window's j-th bordered source row
    int32_t col;  // mask column i: read at x + i of the bordered row
    float value;  // 32f: the element value b(i, j)
    uint8_t add;  // 8u: |b(i, j)| clamped to 255 in add when b > 0, in sub
    uint8_t sub;  //     when b < 0; dilation gives sat(sat(s + add) - sub),
                  //     erosion sat(sat(s + sub) - add)
    uint8_t pad[2];
};

// The offset sample of one element: 8u saturated, 32f in single precision
// (dilation adds the value, erosion subtracts it).
template <bool kDil, class T>
inline T gray_offset(T s, const GrayElem& e) {
    if constexpr (sizeof(T) == 1) {
        const int up = kDil ? e.add : e.sub, down = kDil ? e.sub : e.add;
        const int v = int(s) + up;
        const int r = (v > 255 ? 255 : v) - down;
        return T(r < 0 ? 0 : r);
    } else {
        return kDil ? s + e.value : s - e.value;
    }
}

}  // namespace zeb

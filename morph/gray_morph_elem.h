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
    uint8_t add;  // 8u: the result is sat(sat(s + add) - sub); one of the
    uint8_t sub;  //     two is 0, both already carry the operation's sign
    uint8_t pad[2];
};

// The offset sample of one element: 8u saturated, 32f in single precision
// (dilation adds the value, erosion subtracts it).
template <bool kDil, class T>
inline T gray_offset(T s, const GrayElem& e) {
    if constexpr (sizeof(T) == 1) {
        const int v = int(s) + e.add;
        const int r = (v > 255 ? 255 : v) - e.sub;
        return T(r < 0 ? 0 : r);
    } else {
        return kDil ? s + e.value : s - e.value;
    }
}

}  // namespace zeb

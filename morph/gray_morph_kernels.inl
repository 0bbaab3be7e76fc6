// SPDX-License-Identifier: Apache-2.0
// Grey-scale dilation and erosion kernels, compiled once per vector target.
// One output row is the running maximum (dilation) or minimum (erosion),
// over the kept elements of the structuring element, of a bordered source
// row read at the element's column and offset by the element's value. The
// accumulator stays in a register across all elements of one vector of
// output, so every output pixel is stored once.
#if defined(ZEB_MORPH_GRAY_MORPH_KERNELS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_MORPH_GRAY_MORPH_KERNELS_
#undef ZEB_MORPH_GRAY_MORPH_KERNELS_
#else
#define ZEB_MORPH_GRAY_MORPH_KERNELS_
#endif

#include <cstdint>

#include "core/frame.h"
#include "core/simd-inl.h"
#include "morph/gray_morph_elem.h"

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE::graymorph {

// dst[x] = extreme over elements e of offset(rows[e.row][x + e.col], e),
// starting from the value that no element can pass (start).
template <class T, bool kDil>
void filter_row(const T* const* rows, const GrayElem* e, int count, T start, T* HWY_RESTRICT dst, int w) {
    const Vd<T> d;
    constexpr int kN = int(hn::MaxLanes(Vd<T>()));
    auto scalar = [&](int x) {
        T acc = start;
        for (int k = 0; k < count; ++k) {
            const T v = gray_offset<kDil>(rows[e[k].row][x + e[k].col], e[k]);
            acc = kDil ? (v > acc ? v : acc) : (v < acc ? v : acc);
        }
        dst[x] = acc;
    };
    int x = 0;
    for (; x + kN <= w; x += kN) {
        auto acc = hn::Set(d, start);
        for (int k = 0; k < count; ++k) {
            const auto s = hn::LoadU(d, rows[e[k].row] + x + e[k].col);
            hn::Vec<Vd<T>> v;
            if constexpr (std::is_same_v<T, float>) {
                v = kDil ? hn::Add(s, hn::Set(d, e[k].value)) : hn::Sub(s, hn::Set(d, e[k].value));
            } else {
                const T up = kDil ? e[k].add : e[k].sub, down = kDil ? e[k].sub : e[k].add;
                v = hn::SaturatedSub(hn::SaturatedAdd(s, hn::Set(d, up)), hn::Set(d, down));
            }
            acc = kDil ? hn::Max(acc, v) : hn::Min(acc, v);
        }
        hn::StoreU(acc, d, dst + x);
    }
    for (; x < w; ++x) scalar(x);
}

}  // namespace zeb::HWY_NAMESPACE::graymorph
HWY_AFTER_NAMESPACE();

#endif  // ZEB_MORPH_GRAY_MORPH_KERNELS_

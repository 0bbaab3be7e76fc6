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
#include <type_traits>

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
    // offset(s) of one element, for one vector; 8u skips the saturating
    // steps of a zero offset.
    auto offset = [&](hn::Vec<Vd<T>> s, const GrayElem& el) HWY_ATTR {
        if constexpr (std::is_same_v<T, float>) {
            return kDil ? hn::Add(s, hn::Set(d, el.value)) : hn::Sub(s, hn::Set(d, el.value));
        } else {
            const T up = kDil ? el.add : el.sub, down = kDil ? el.sub : el.add;
            if (up) s = hn::SaturatedAdd(s, hn::Set(d, up));
            if (down) s = hn::SaturatedSub(s, hn::Set(d, down));
            return s;
        }
    };
    auto ext = [&](auto a, auto b) HWY_ATTR { return kDil ? hn::Max(a, b) : hn::Min(a, b); };
    int x = 0;
    // Two vectors at a time: the element's row, column and offset are read
    // once for both.
    for (; x + 2 * kN <= w; x += 2 * kN) {
        auto acc0 = hn::Set(d, start), acc1 = acc0;
        for (int k = 0; k < count; ++k) {
            const GrayElem el = e[k];
            const T* p = rows[el.row] + x + el.col;
            acc0 = ext(acc0, offset(hn::LoadU(d, p), el));
            acc1 = ext(acc1, offset(hn::LoadU(d, p + kN), el));
        }
        hn::StoreU(acc0, d, dst + x);
        hn::StoreU(acc1, d, dst + x + kN);
    }
    for (; x + kN <= w; x += kN) {
        auto acc = hn::Set(d, start);
        for (int k = 0; k < count; ++k) acc = ext(acc, offset(hn::LoadU(d, rows[e[k].row] + x + e[k].col), e[k]));
        hn::StoreU(acc, d, dst + x);
    }
    for (; x < w; ++x) scalar(x);
}

// dst[x] = extreme of rows[0][x] .. rows[n-1][x] over len samples.
template <class T, bool kDil>
void column_extreme(const T* const* rows, int n, T* HWY_RESTRICT dst, int len) {
    const Vd<T> d;
    constexpr int kN = int(hn::MaxLanes(Vd<T>()));
    int x = 0;
    for (; x + kN <= len; x += kN) {
        auto acc = hn::LoadU(d, rows[0] + x);
        for (int k = 1; k < n; ++k) {
            const auto v = hn::LoadU(d, rows[k] + x);
            acc = kDil ? hn::Max(acc, v) : hn::Min(acc, v);
        }
        hn::StoreU(acc, d, dst + x);
    }
    for (; x < len; ++x) {
        T acc = rows[0][x];
        for (int k = 1; k < n; ++k) acc = kDil ? (rows[k][x] > acc ? rows[k][x] : acc) : (rows[k][x] < acc ? rows[k][x] : acc);
        dst[x] = acc;
    }
}

}  // namespace zeb::HWY_NAMESPACE::graymorph
HWY_AFTER_NAMESPACE();

#endif  // ZEB_MORPH_GRAY_MORPH_KERNELS_

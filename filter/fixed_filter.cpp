// SPDX-License-Identifier: Apache-2.0
// The vector kernels of the fixed filters, compiled here once for every
// target, and the entry that runs one member's kernel on the chosen target.
// The family sources (Sobel, Scharr, Laplacian, lowpass) only check their
// arguments and call zeb::fixed::filter.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filter/fixed_filter_kernels.inl"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "filter/fixed_filter_kernels.inl"

#if HWY_ONCE
#include "core/simd_dispatch.h"
#include "filter/fixed_filter.h"

namespace zeb::fixed {
namespace {

template <class D, Out O, class S, class Dst>
void filter_k(const Job<S, Dst>& job, bool stream) {
    if (stream)
        ZEB_DISPATCH(fixed::filter_image<D, O, Store::Stream, S, Dst>)(job);
    else
        ZEB_DISPATCH(fixed::filter_image<D, O, Store::Cached, S, Dst>)(job);
}

}  // namespace

template <class D3, class D5, Out O, class S, class Dst>
void filter(const Job<S, Dst>& job, int k, bool stream) {
    if (k == 3)
        filter_k<D3, O>(job, stream);
    else
        filter_k<D5, O>(job, stream);
}

// One line per filter and result type that a family runs.
using U8S16 = Job<uint8_t, int16_t>;
using U8S8 = Job<uint8_t, int8_t>;
using U8U8 = Job<uint8_t, uint8_t>;
using F32 = Job<float, float>;

template void filter<SobelHoriz3, SobelHoriz5, Out::S16>(const U8S16&, int, bool);
template void filter<SobelHoriz3, SobelHoriz5, Out::S8>(const U8S8&, int, bool);
template void filter<SobelHoriz3, SobelHoriz5, Out::F32>(const F32&, int, bool);
template void filter<SobelVert3, SobelVert5, Out::S16>(const U8S16&, int, bool);
template void filter<SobelVert3, SobelVert5, Out::S8>(const U8S8&, int, bool);
template void filter<SobelVert3, SobelVert5, Out::F32>(const F32&, int, bool);
template void filter<SobelVert3, SobelVert5, Out::S16Neg>(const U8S16&, int, bool);
template void filter<SobelVert3, SobelVert5, Out::S8Neg>(const U8S8&, int, bool);
template void filter<SobelVert3, SobelVert5, Out::F32Neg>(const F32&, int, bool);
template void filter<SobelHorizSecond3, SobelHorizSecond5, Out::S16>(const U8S16&, int, bool);
template void filter<SobelHorizSecond3, SobelHorizSecond5, Out::S8>(const U8S8&, int, bool);
template void filter<SobelHorizSecond3, SobelHorizSecond5, Out::F32>(const F32&, int, bool);
template void filter<SobelVertSecond3, SobelVertSecond5, Out::S16>(const U8S16&, int, bool);
template void filter<SobelVertSecond3, SobelVertSecond5, Out::S8>(const U8S8&, int, bool);
template void filter<SobelVertSecond3, SobelVertSecond5, Out::F32>(const F32&, int, bool);
template void filter<SobelCross3, SobelCross5, Out::S16>(const U8S16&, int, bool);
template void filter<SobelCross3, SobelCross5, Out::S8>(const U8S8&, int, bool);
template void filter<SobelCross3, SobelCross5, Out::F32>(const F32&, int, bool);
template void filter<ScharrHoriz3, ScharrHoriz3, Out::S16>(const U8S16&, int, bool);
template void filter<ScharrHoriz3, ScharrHoriz3, Out::S8>(const U8S8&, int, bool);
template void filter<ScharrHoriz3, ScharrHoriz3, Out::F32>(const F32&, int, bool);
template void filter<ScharrVert3, ScharrVert3, Out::S16>(const U8S16&, int, bool);
template void filter<ScharrVert3, ScharrVert3, Out::S8>(const U8S8&, int, bool);
template void filter<ScharrVert3, ScharrVert3, Out::F32>(const F32&, int, bool);
template void filter<Laplacian3, Laplacian5, Out::S16>(const U8S16&, int, bool);
template void filter<Laplacian3, Laplacian5, Out::S8>(const U8S8&, int, bool);
template void filter<Laplacian3, Laplacian5, Out::F32>(const F32&, int, bool);
template void filter<Lowpass3, Lowpass5, Out::U8Mean>(const U8U8&, int, bool);
template void filter<Lowpass3, Lowpass5, Out::F32Mean>(const F32&, int, bool);

}  // namespace zeb::fixed
#endif  // HWY_ONCE

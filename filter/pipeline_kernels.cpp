// SPDX-License-Identifier: Apache-2.0
// The one build of the separable-filter kernels: compiled for every vector
// target, and entry points that run the target chosen at load. The row
// pass, the column pass and the Gaussian filter call these.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filter/pipeline_kernels.inl"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "filter/pipeline_kernels.inl"

#if HWY_ONCE
#include "core/simd_dispatch.h"
#include "filter/pipeline_dispatch.h"

namespace zeb::pipe {

template <class S, class D>
void run_row_pass(const RowPass<S, D>& job) {
    ZEB_DISPATCH(pipe::row_job<S, D>)(job);
}

template <class S, class D>
void run_column_pass(const ColumnPass<S, D>& job) {
    ZEB_DISPATCH(pipe::column_job<S, D>)(job);
}

template <class T>
void run_gauss(const GaussImage<T>& job) {
    ZEB_DISPATCH(pipe::gauss_job<T>)(job);
}

template void run_row_pass(const RowPass<int16_t, int16_t>&);
template void run_row_pass(const RowPass<uint16_t, uint16_t>&);
template void run_row_pass(const RowPass<uint8_t, int16_t>&);
template void run_row_pass(const RowPass<float, float>&);

template void run_column_pass(const ColumnPass<float, float>&);
template void run_column_pass(const ColumnPass<int16_t, int16_t>&);
template void run_column_pass(const ColumnPass<int16_t, uint8_t>&);
template void run_column_pass(const ColumnPass<int16_t, int8_t>&);
template void run_column_pass(const ColumnPass<uint16_t, uint16_t>&);

template void run_gauss(const GaussImage<uint8_t>&);
template void run_gauss(const GaussImage<uint16_t>&);
template void run_gauss(const GaussImage<int16_t>&);
template void run_gauss(const GaussImage<float>&);

}  // namespace zeb::pipe
#endif  // HWY_ONCE

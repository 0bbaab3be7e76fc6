// Compiles one kernel file once per instruction-set path. Before including
// this header, define ZEB_KERNELS as the kernel file's path; the kernels land
// in namespace ssse3 (baseline, 16-byte vectors) and namespace avx2
// (32-byte vectors, compiled for AVX2), both inside the current namespace.
// Kernel files see ZEB_VEC_BYTES and must give the same results either way.
// No include guard: every family includes it once for its own kernels.
// The includer has already included <immintrin.h> (core/row_driver.h does).

namespace ssse3 {
#define ZEB_VEC_BYTES 16
#include ZEB_KERNELS
#undef ZEB_VEC_BYTES
}  // namespace ssse3

#pragma GCC push_options
#pragma GCC target("avx2")
namespace avx2 {
#define ZEB_VEC_BYTES 32
#include ZEB_KERNELS
#undef ZEB_VEC_BYTES
}  // namespace avx2
#pragma GCC pop_options

#undef ZEB_KERNELS

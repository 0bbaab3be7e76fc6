// SPDX-License-Identifier: Apache-2.0
// One-dimensional Sobel kernels of any odd length: a binomial row built in
// place by repeated neighbour sums, then differenced dx times. The 16-bit
// form computes in the destination array itself, so coefficients of very
// long kernels wrap as 16-bit values do.
#include "core/checks.h"
#include "core/dispatch.h"

namespace zeb::impl {
namespace {

template <class T>
ZebStatus gen_sobel(T* k, int n, int dx, int sign) {
    if (k == nullptr) return zebStsNullPtrErr;
    if (n < 1 || n % 2 == 0 || dx < 0 || dx >= n) return zebStsSizeErr;
    for (int i = 0; i < n; ++i) k[i] = T(i == n - 1 ? 1 : 0);
    // Each smoothing step widens the non-zero tail by one entry.
    for (int s = 0; s < n - dx - 1; ++s)
        for (int i = n - 2 - s; i < n - 1; ++i) k[i] = T(k[i] + k[i + 1]);
    for (int d = 0; d < dx; ++d)
        for (int i = 0; i < n - 1; ++i) k[i] = T(k[i] - k[i + 1]);
    if (sign < 0)
        for (int i = 0; i < n; ++i) k[i] = T(-k[i]);
    return zebStsNoErr;
}

}  // namespace

ZebStatus zebiGenSobelKernel_16s(Zeb16s* pDst, int kernelSize, int dx, int sign) {
    return gen_sobel(pDst, kernelSize, dx, sign);
}
ZebStatus zebiGenSobelKernel_32f(Zeb32f* pDst, int kernelSize, int dx, int sign) {
    return gen_sobel(pDst, kernelSize, dx, sign);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiGenSobelKernel_16s);
ZEB_EXPORT(zebiGenSobelKernel_32f);

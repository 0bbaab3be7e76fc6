// One-dimensional Sobel kernel generation against OpenCV's derivative
// kernels, and its argument checks.
#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>
#include <vector>

#include "harness.h"

ZEB_TEST_TABLE(zebiGenSobelKernel_16s);
ZEB_TEST_TABLE(zebiGenSobelKernel_32f);

namespace {

TEST(DerivativeKernel, MatchesOpenCVForEveryOddLengthAndOrder) {
    for (int n = 3; n <= 25; n += 2)  // binomials stay exact in single precision
        for (int dx = 0; dx < n && dx <= 8; ++dx) {
            cv::Mat kx, ky;
            cv::getDerivKernels(kx, ky, dx, 1, n, false, CV_32F);  // kx has order dx
            for (int sign : {1, 0, -7}) {
                for (int v = 0; v < 2; ++v) {
                    std::vector<float> f(n + 1, 99.f);
                    ASSERT_EQ(zeb_tbl_zebiGenSobelKernel_32f[v](f.data(), n, dx, sign), 0);
                    EXPECT_EQ(f[n], 99.f) << "wrote past the kernel";
                    for (int i = 0; i < n; ++i)
                        ASSERT_EQ(f[i], (sign < 0 ? -1 : 1) * kx.at<float>(i)) << "n=" << n << " dx=" << dx;
                    if (n > 15) continue;  // 16-bit coefficients overflow beyond length 15
                    std::vector<Zeb16s> s(n + 1, 99);
                    ASSERT_EQ(zeb_tbl_zebiGenSobelKernel_16s[v](s.data(), n, dx, sign), 0);
                    EXPECT_EQ(s[n], 99);
                    for (int i = 0; i < n; ++i) ASSERT_EQ(s[i], int(f[i])) << "n=" << n << " dx=" << dx;
                }
            }
        }
}

TEST(DerivativeKernel, KnownKernelsAndChecks) {
    float f[5] = {7, 7, 7, 7, 7};
    ASSERT_EQ(zebiGenSobelKernel_32f(f, 1, 0, 1), 0);
    EXPECT_EQ(f[0], 1.f);
    EXPECT_EQ(f[1], 7.f);
    ASSERT_EQ(zebiGenSobelKernel_32f(f, 1, 0, -1), 0);
    EXPECT_EQ(f[0], -1.f);
    Zeb16s canary[6] = {5, 5, 5, 5, 5, 5};
    const struct {
        int n, dx;
        ZebStatus want;
    } bad[] = {{0, 0, zebStsSizeErr}, {-3, 0, zebStsSizeErr}, {4, 1, zebStsSizeErr}, {3, 3, zebStsSizeErr},
               {3, -1, zebStsSizeErr}, {5, 5, zebStsSizeErr}};
    for (auto b : bad) {
        EXPECT_EQ(zebiGenSobelKernel_16s(canary, b.n, b.dx, 1), b.want) << b.n << " " << b.dx;
        EXPECT_EQ(zebiGenSobelKernel_32f(f, b.n, b.dx, 1), b.want);
        for (Zeb16s c : canary) EXPECT_EQ(c, 5);
    }
    EXPECT_EQ(zebiGenSobelKernel_16s(nullptr, 4, 9, 1), zebStsNullPtrErr);
    EXPECT_EQ(zebiGenSobelKernel_32f(nullptr, 3, 1, 1), zebStsNullPtrErr);
}

}  // namespace

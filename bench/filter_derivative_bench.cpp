// Derivative and smoothing filters against OpenCV's Sobel, Scharr,
// Laplacian and blur with the replicate border, on the same 1920x1080
// buffers; work buffers are allocated once, outside the timed loop.
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "bench.h"
#include "zebcv.h"

namespace {

using zb::kH;
using zb::kW;

const ZebiSize kRoi{kW, kH};
constexpr std::size_t kPx = std::size_t(kW) * kH;

struct Buffers {
    cv::Mat s8 = zb::random_mat(CV_8U), sf = zb::random_mat(CV_32F);
    cv::Mat d16 = zb::random_mat(CV_16S, 0, 1), df = zb::random_mat(CV_32F), d8 = zb::random_mat(CV_8U);
    std::vector<Zeb8u> work;
    Buffers() {
        int most = 0;
        for (int mask : {33, 55}) {
            int n = 0;
            ZB_CHECK(zebiFilterLaplacianGetBufferSize_32f_C1R(kRoi, mask, &n));
            most = std::max(most, n);
            ZB_CHECK(zebiFilterSobelVertGetBufferSize_32f_C1R(kRoi, mask, &n));
            most = std::max(most, n);
            ZB_CHECK(zebiFilterLowpassGetBufferSize_8u_C1R(kRoi, mask, &n));
            most = std::max(most, n);
        }
        work.resize(std::size_t(most));
    }
};

Buffers& buf() {
    static Buffers b;
    return b;
}

int step(const cv::Mat& m) { return int(m.step); }

ZB_PAIR("FilterSobelHorizBorder_8u16s_C1R 3x3",
        [] {
            auto& b = buf();
            ZB_CHECK(zebiFilterSobelHorizBorder_8u16s_C1R(b.s8.data, step(b.s8), b.d16.ptr<Zeb16s>(), step(b.d16), kRoi,
                     33, 1, 0, b.work.data()));
        },
        [] { auto& b = buf(); cv::Sobel(b.s8, b.d16, CV_16S, 0, 1, 3, 1, 0, cv::BORDER_REPLICATE); }, 3 * kPx);
ZB_PAIR("FilterSobelVertBorder_8u16s_C1R 3x3",
        [] {
            auto& b = buf();
            ZB_CHECK(zebiFilterSobelVertBorder_8u16s_C1R(b.s8.data, step(b.s8), b.d16.ptr<Zeb16s>(), step(b.d16), kRoi,
                     33, 1, 0, b.work.data()));
        },
        [] { auto& b = buf(); cv::Sobel(b.s8, b.d16, CV_16S, 1, 0, 3, 1, 0, cv::BORDER_REPLICATE); }, 3 * kPx);
ZB_PAIR("FilterScharrVertBorder_8u16s_C1R",
        [] {
            auto& b = buf();
            ZB_CHECK(zebiFilterScharrVertBorder_8u16s_C1R(b.s8.data, step(b.s8), b.d16.ptr<Zeb16s>(), step(b.d16), kRoi,
                     1, 0, b.work.data()));
        },
        [] { auto& b = buf(); cv::Scharr(b.s8, b.d16, CV_16S, 1, 0, 1, 0, cv::BORDER_REPLICATE); }, 3 * kPx);
ZB_PAIR("FilterScharrHorizBorder_8u16s_C1R",
        [] {
            auto& b = buf();
            ZB_CHECK(zebiFilterScharrHorizBorder_8u16s_C1R(b.s8.data, step(b.s8), b.d16.ptr<Zeb16s>(), step(b.d16),
                     kRoi, 1, 0, b.work.data()));
        },
        [] { auto& b = buf(); cv::Scharr(b.s8, b.d16, CV_16S, 0, 1, 1, 0, cv::BORDER_REPLICATE); }, 3 * kPx);
ZB_PAIR("FilterSobelVertBorder_32f_C1R 5x5",
        [] {
            auto& b = buf();
            ZB_CHECK(zebiFilterSobelVertBorder_32f_C1R(b.sf.ptr<Zeb32f>(), step(b.sf), b.df.ptr<Zeb32f>(), step(b.df),
                     kRoi, 55, 1, 0.f, b.work.data()));
        },
        [] { auto& b = buf(); cv::Sobel(b.sf, b.df, CV_32F, 1, 0, 5, 1, 0, cv::BORDER_REPLICATE); }, 8 * kPx);
ZB_PAIR("FilterSobelHorizBorder_32f_C1R 5x5",
        [] {
            auto& b = buf();
            ZB_CHECK(zebiFilterSobelHorizBorder_32f_C1R(b.sf.ptr<Zeb32f>(), step(b.sf), b.df.ptr<Zeb32f>(), step(b.df),
                     kRoi, 55, 1, 0.f, b.work.data()));
        },
        [] { auto& b = buf(); cv::Sobel(b.sf, b.df, CV_32F, 0, 1, 5, 1, 0, cv::BORDER_REPLICATE); }, 8 * kPx);
ZB_PAIR("FilterLaplacianBorder_32f_C1R 3x3",
        [] {
            auto& b = buf();
            ZB_CHECK(zebiFilterLaplacianBorder_32f_C1R(b.sf.ptr<Zeb32f>(), step(b.sf), b.df.ptr<Zeb32f>(), step(b.df),
                     kRoi, 33, 1, 0.f, b.work.data()));
        },
        [] { auto& b = buf(); cv::Laplacian(b.sf, b.df, CV_32F, 3, 1, 0, cv::BORDER_REPLICATE); }, 8 * kPx);
ZB_PAIR("FilterLowpassBorder_8u_C1R 5x5",
        [] {
            auto& b = buf();
            ZB_CHECK(zebiFilterLowpassBorder_8u_C1R(b.s8.data, step(b.s8), b.d8.data, step(b.d8), kRoi,
                     55, 1, 0, b.work.data()));
        },
        [] { auto& b = buf(); cv::blur(b.s8, b.d8, {5, 5}, {-1, -1}, cv::BORDER_REPLICATE); }, 2 * kPx);
ZB_PAIR("FilterLowpassBorder_8u_C1R 3x3",
        [] {
            auto& b = buf();
            ZB_CHECK(zebiFilterLowpassBorder_8u_C1R(b.s8.data, step(b.s8), b.d8.data, step(b.d8), kRoi,
                     33, 1, 0, b.work.data()));
        },
        [] { auto& b = buf(); cv::blur(b.s8, b.d8, {3, 3}, {-1, -1}, cv::BORDER_REPLICATE); }, 2 * kPx);

}  // namespace

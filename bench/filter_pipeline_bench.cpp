// SPDX-License-Identifier: Apache-2.0
// Gaussian filter and separable row/column pipelines against OpenCV.
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "bench.h"
#include "zebcv.h"

namespace {

using zb::kH;
using zb::kRoi;
using zb::kW;
using zb::px;
using zb::step;

// A prepared Gaussian filter: kernel setup and work buffer.
struct Gauss {
    std::vector<Zeb8u> spec;
    zb::Work buf;
    Gauss(int k, float sigma, ZebDataType type, int ch) {
        int s = 0, b = 0;
        ZB_CHECK(zebiFilterGaussianGetBufferSize(kRoi, Zeb32u(k), type, ch, &s, &b));
        spec.resize(std::size_t(s));
        buf.bytes.resize(std::size_t(b));
        ZB_CHECK(zebiFilterGaussianInit(kRoi, Zeb32u(k), sigma, zebBorderRepl, type, ch, this->s(), buf.data()));
    }
    ZebFilterGaussianSpec* s() { return reinterpret_cast<ZebFilterGaussianSpec*>(spec.data()); }
};

struct Buffers {
    cv::Mat a8 = zb::random_mat(CV_8U), d8 = zb::random_mat(CV_8U);
    cv::Mat a8c3 = zb::random_mat(CV_8UC3), d8c3 = zb::random_mat(CV_8UC3);
    cv::Mat af = zb::random_mat(CV_32F), df = zb::random_mat(CV_32F);
    cv::Mat a16 = zb::random_mat(CV_16U, 0, 65536), d16 = zb::random_mat(CV_16U);
    Gauss g8{5, 1.5f, zeb8u, 1}, g8c3{5, 1.5f, zeb8u, 3}, gf{11, 3.f, zeb32f, 1}, g16{5, 1.5f, zeb16u, 1};
};

// A row + column pipeline run strip by strip through a ring of filtered
// rows, vertical borders replicated by repeating row pointers: the way a
// caller of the two passes filters a whole image.
template <class S, class M, class D>
struct Strips {
    static constexpr int kStrip = 16;
    int k;
    std::vector<std::vector<M>> ring;
    std::vector<const M*> ptrs;
    zb::Work rowBuf, colBuf;
    template <class RowQuery, class ColQuery>
    Strips(int k_, RowQuery rowQuery, ColQuery colQuery)
        : k(k_), ring(kStrip + k_, std::vector<M>(std::size_t(kW))), ptrs(kStrip + k_), rowBuf(rowQuery, kRoi, k_),
          colBuf(colQuery, kRoi, k_) {}
    template <class RowFn, class ColFn>
    void run(const cv::Mat& src, cv::Mat& dst, RowFn rowFn, ColFn colFn) {
        const int a = k / 2, R = int(ring.size());
        auto slot = [&](int j) { return ring[(j + a) % R].data(); };
        int next = -a;
        for (int y0 = 0; y0 < kH; y0 += kStrip) {
            const int rows = std::min(kStrip, kH - y0), end = y0 + rows + k - 1 - a;
            // New rows inside the image in one call; rows above or below it
            // are copies of the first or last row's filtered values.
            const int lo = std::max(next, 0), hi = std::min(end, kH);
            if (hi > lo) {
                M* out[kStrip + 64];
                for (int j = lo; j < hi; ++j) out[j - lo] = slot(j);
                rowFn(src.ptr<S>(lo), step(src), out, ZebiSize{kW, hi - lo});
            }
            for (int t = 0; t < rows + k - 1; ++t) {
                const int j = std::clamp(y0 - a + t, 0, kH - 1);
                ptrs[t] = slot(j);
            }
            colFn(ptrs.data(), dst.ptr<D>(y0), step(dst), ZebiSize{kW, rows});
            next = end;
        }
    }
};

ZB_PAIR("GaussianBorder_8u_C1R 5x5 s1.5",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiFilterGaussianBorder_8u_C1R(px<Zeb8u>(b.a8), step(b.a8), px<Zeb8u>(b.d8), step(b.d8), kRoi, 0, b.g8.s(),
                                                     b.g8.buf.data()));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::GaussianBlur(b.a8, b.d8, cv::Size(5, 5), 1.5, 1.5, cv::BORDER_REPLICATE); }, 0);
ZB_PAIR("GaussianBorder_8u_C3R 5x5 s1.5",
        [] {
            auto& b = zb::buffers<Buffers>();
            const Zeb8u v[3] = {0, 0, 0};
            ZB_CHECK(zebiFilterGaussianBorder_8u_C3R(px<Zeb8u>(b.a8c3), step(b.a8c3), px<Zeb8u>(b.d8c3), step(b.d8c3), kRoi, v,
                                                     b.g8c3.s(), b.g8c3.buf.data()));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::GaussianBlur(b.a8c3, b.d8c3, cv::Size(5, 5), 1.5, 1.5, cv::BORDER_REPLICATE); }, 0);
ZB_PAIR("GaussianBorder_32f_C1R 11x11 s3",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiFilterGaussianBorder_32f_C1R(px<Zeb32f>(b.af), step(b.af), px<Zeb32f>(b.df), step(b.df),
                                                      kRoi, 0.f, b.gf.s(), b.gf.buf.data()));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::GaussianBlur(b.af, b.df, cv::Size(11, 11), 3, 3, cv::BORDER_REPLICATE); }, 0);
ZB_PAIR("GaussianBorder_16u_C1R 5x5 s1.5",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiFilterGaussianBorder_16u_C1R(px<Zeb16u>(b.a16), step(b.a16), px<Zeb16u>(b.d16),
                                                      step(b.d16), kRoi, 0, b.g16.s(), b.g16.buf.data()));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::GaussianBlur(b.a16, b.d16, cv::Size(5, 5), 1.5, 1.5, cv::BORDER_REPLICATE); }, 0);

const Zeb32f kF5[5] = {0.0625f, 0.25f, 0.375f, 0.25f, 0.0625f};
const Zeb16s kI5[5] = {1, 4, 6, 4, 1};

ZB_PAIR("RowBorderPipeline+Column_32f_C1R 5x5",
        [] {
            auto& b = zb::buffers<Buffers>();
            static Strips<float, float, float> s(5, zebiFilterRowBorderPipelineGetBufferSize_32f_C1R,
                                                 zebiFilterColumnPipelineGetBufferSize_32f_C1R);
            s.run(b.af, b.df,
                  [&](const float* src, int ss, float* const* d, ZebiSize r) {
                      ZB_CHECK(zebiFilterRowBorderPipeline_32f_C1R(src, ss, d, r, kF5, 5, 2, zebBorderRepl, 0.f,
                                                                   s.rowBuf.data()));
                  },
                  [&](const float* const* p, float* d, int ds, ZebiSize r) {
                      ZB_CHECK(zebiFilterColumnPipeline_32f_C1R(p, d, ds, r, kF5, 5, s.colBuf.data()));
                  });
        },
        [] {
            auto& b = zb::buffers<Buffers>();
            static const cv::Mat k = cv::Mat(5, 1, CV_32F, const_cast<float*>(kF5)).clone();
            cv::sepFilter2D(b.af, b.df, CV_32F, k, k, cv::Point(-1, -1), 0, cv::BORDER_REPLICATE);
        },
        0);
ZB_PAIR("RowBorderPipeline8u16s+Column16s8u_C1R 5x5",
        [] {
            auto& b = zb::buffers<Buffers>();
            static Strips<uint8_t, int16_t, uint8_t> s(5, zebiFilterRowBorderPipelineGetBufferSize_8u16s_C1R,
                                                        zebiFilterColumnPipelineGetBufferSize_16s8u_C1R);
            s.run(b.a8, b.d8,
                  [&](const uint8_t* src, int ss, int16_t* const* d, ZebiSize r) {
                      ZB_CHECK(zebiFilterRowBorderPipeline_8u16s_C1R(src, ss, d, r, kI5, 5, 2, zebBorderRepl, 0, 1,
                                                                     s.rowBuf.data()));
                  },
                  [&](const int16_t* const* p, uint8_t* d, int ds, ZebiSize r) {
                      ZB_CHECK(zebiFilterColumnPipeline_16s8u_C1R(p, d, ds, r, kI5, 5, 256, s.colBuf.data()));
                  });
        },
        [] {
            auto& b = zb::buffers<Buffers>();
            static const cv::Mat k = cv::Mat(5, 1, CV_32F, const_cast<float*>(kF5)).clone();
            cv::sepFilter2D(b.a8, b.d8, CV_8U, k, k, cv::Point(-1, -1), 0, cv::BORDER_REPLICATE);
        },
        0);

}  // namespace

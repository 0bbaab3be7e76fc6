// SPDX-License-Identifier: Apache-2.0
// Benchmark registry: each pair runs zebcv and OpenCV on the same buffers,
// single-threaded, and the report prints the ratio zebcv/OpenCV and the time
// of a memcpy of the bytes the operation touches.
//
// The zebcv side of every pair runs on the best vector target and on each
// lower one worth reporting (SSSE3, and AVX2 below AVX-512), one report row
// per target; OpenCV runs once. Before a pair is timed, its zebcv lambda
// runs once untimed: it must make at least one call through ZB_CHECK (a
// failed status aborts the run, naming the call, the pair and the target),
// or the pair's rows say "unchecked" instead of a ratio and the run ends
// with a non-zero status.
//
// A bench file looks like this:
//
//     using zb::kRoi;
//     struct Buffers {
//         cv::Mat a = zb::random_mat(CV_8U), d = zb::random_mat(CV_8U);
//         zb::Work work{zebiFooGetBufferSize_8u_C1R, kRoi, 33};  // sized by its query
//     };
//     ZB_PAIR("Foo_8u_C1R",
//             [] { auto& b = zb::buffers<Buffers>();
//                  ZB_CHECK(zebiFoo_8u_C1R(zb::px<Zeb8u>(b.a), zb::step(b.a), zb::px<Zeb8u>(b.d),
//                                          zb::step(b.d), kRoi, b.work.data())); },
//             [] { auto& b = zb::buffers<Buffers>(); cv::foo(b.a, b.d); }, 2 * zb::kPx);
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "zebcv.h"

namespace zb {

constexpr int kW = 1920, kH = 1080;
// The ROI of every pair and its pixel count.
inline constexpr ZebiSize kRoi{kW, kH};
constexpr std::size_t kPx = std::size_t(kW) * kH;

struct Pair {
    std::string name;
    std::function<void()> zeb;
    std::function<void()> ocv;
    std::size_t bytes;  // bytes read and written per call; 0: no memcpy line
};

// Registers a pair at static-initialisation time.
int add(Pair p);

// A 1920x1080 image of the given OpenCV type with random content.
cv::Mat random_mat(int type, double lo = 0, double hi = 256, int w = kW, int h = kH);

// A sample photograph (a file of Debian's opencv-doc examples, e.g.
// "fruits.jpg") in grey, scaled to 1920x1080; random pixels, with a note on
// stderr, when it is not installed.
cv::Mat photograph(const char* name);

// The buffers of one bench file, made on first use (so that a run
// filtered to other pairs never allocates them) and shared by its pairs.
template <class B>
B& buffers() {
    static B b;
    return b;
}

// A cv::Mat's step and first pixel as a zebcv call takes them.
inline int step(const cv::Mat& m) { return int(m.step); }
template <class T>
T* px(cv::Mat& m) {
    return reinterpret_cast<T*>(m.data);
}
template <class T>
const T* px(const cv::Mat& m) {
    return reinterpret_cast<const T*>(m.data);
}

// A work buffer of the size its query returns; a failed query aborts.
struct Work {
    std::vector<Zeb8u> bytes;
    Work() = default;
    template <class Query, class... A>
    explicit Work(Query query, A... args) {
        int n = 0;
        check_query(query(args..., &n), n);
        bytes.resize(std::size_t(n));
    }
    // Grows the buffer to the size another query returns, so that one
    // buffer serves several calls.
    template <class Query, class... A>
    void fit(Query query, A... args) {
        int n = 0;
        check_query(query(args..., &n), n);
        if (std::size_t(n) > bytes.size()) bytes.resize(std::size_t(n));
    }
    Zeb8u* data() { return bytes.data(); }

private:
    static void check_query(int status, int n) {
        if (status != 0 || n < 0) {
            std::fprintf(stderr, "benchmark buffer-size query failed with status %d\n", status);
            std::abort();
        }
    }
};

// Checked calls made so far: the run verifies that every pair's zebcv
// lambda makes at least one.
inline long checkedCalls = 0;
// The pair and target being run, for the message of a failed call.
inline std::string running;

// A timed zebcv call that failed would be timed as a fast early return:
// any status other than zebStsNoErr aborts the run.
inline void check_status(int status, const char* call) {
    ++checkedCalls;
    if (status != 0) {
        std::fprintf(stderr, "benchmark call failed with status %d: %s [%s]\n", status, call, running.c_str());
        std::abort();
    }
}

}  // namespace zb

#define ZB_CHECK(call) ::zb::check_status((call), #call)

#define ZB_CAT2(a, b) a##b
#define ZB_CAT(a, b) ZB_CAT2(a, b)
#define ZB_PAIR(...) static const int ZB_CAT(zb_pair_, __LINE__) = zb::add(zb::Pair{__VA_ARGS__})

// Benchmark registry: each pair runs zebcv and OpenCV on the same buffers,
// single-threaded, and the report prints the ratio zebcv/OpenCV and the time
// of a memcpy of the bytes the operation touches.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace zb {

constexpr int kW = 1920, kH = 1080;

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

// A timed zebcv call that failed would be timed as a fast early return:
// any status other than zebStsNoErr aborts the run.
inline void check_status(int status, const char* call) {
    if (status != 0) {
        std::fprintf(stderr, "benchmark call failed with status %d: %s\n", status, call);
        std::abort();
    }
}

}  // namespace zb

#define ZB_CHECK(call) ::zb::check_status((call), #call)

#define ZB_CAT2(a, b) a##b
#define ZB_CAT(a, b) ZB_CAT2(a, b)
#define ZB_PAIR(...) static const int ZB_CAT(zb_pair_, __LINE__) = zb::add(zb::Pair{__VA_ARGS__})

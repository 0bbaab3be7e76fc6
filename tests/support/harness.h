// The test harness every suite uses: guarded images, canaries, the runner
// over processor variants and instruction-set paths, zero-copy OpenCV views.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <opencv2/core.hpp>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "zebcv.h"

extern "C" {
extern int32_t zeb_cpu_variant;
extern int32_t zeb_simd_target;
}
namespace zeb {
int32_t max_simd_target();
const char* simd_target_name(int32_t target);
}  // namespace zeb

// Declares the variant table of an export so that a test can call each
// variant's entry directly: zeb_tbl_<name>[0] is u8, [1] is n8.
#define ZEB_TEST_TABLE(name) extern "C" decltype(&::name) const zeb_tbl_##name[2]

namespace zt {

// A byte block whose last byte sits right before a PROT_NONE page, so an
// access one past the end faults at once.
class Guarded {
public:
    explicit Guarded(std::size_t bytes);
    ~Guarded();
    Guarded(const Guarded&) = delete;
    Guarded& operator=(const Guarded&) = delete;
    Guarded(Guarded&& o) noexcept;
    Guarded& operator=(Guarded&& o) noexcept;
    unsigned char* data() const { return data_; }
    std::size_t size() const { return size_; }

private:
    void* map_ = nullptr;
    std::size_t mapLen_ = 0;
    unsigned char* data_ = nullptr;
    std::size_t size_ = 0;
};

std::mt19937& rng();

template <class T>
T random_value() {
    if constexpr (std::is_floating_point_v<T>) {
        return T(std::uniform_real_distribution<double>(-1000.0, 1000.0)(rng()));
    } else {
        return T(std::uniform_int_distribution<int64_t>(std::numeric_limits<T>::min(),
                                                        std::numeric_limits<T>::max())(rng()));
    }
}

template <class T>
struct CvDepth;
template <> struct CvDepth<uint8_t> { static constexpr int v = CV_8U; };
template <> struct CvDepth<int8_t> { static constexpr int v = CV_8S; };
template <> struct CvDepth<uint16_t> { static constexpr int v = CV_16U; };
template <> struct CvDepth<int16_t> { static constexpr int v = CV_16S; };
template <> struct CvDepth<int32_t> { static constexpr int v = CV_32S; };
template <> struct CvDepth<float> { static constexpr int v = CV_32F; };
template <> struct CvDepth<double> { static constexpr int v = CV_64F; };

// An image of w x h pixels with ch interleaved channels and a step padded by
// padBytes (a multiple of the element size unless the test wants otherwise).
// The byte after its last pixel is the guard page.
template <class T>
class Image {
public:
    Image(int w, int h, int ch = 1, int padBytes = 0)
        : w_(w), h_(h), ch_(ch), step_(int(w * ch * sizeof(T)) + padBytes),
          buf_(std::size_t(step_) * (h - 1) + std::size_t(w) * ch * sizeof(T)) {
        fill_random();
    }
    int width() const { return w_; }
    int height() const { return h_; }
    int channels() const { return ch_; }
    int step() const { return step_; }
    ZebiSize size() const { return {w_, h_}; }
    T* ptr() const { return reinterpret_cast<T*>(buf_.data()); }
    T* row(int y) const { return reinterpret_cast<T*>(buf_.data() + std::size_t(step_) * y); }
    T& at(int x, int y, int c = 0) const { return row(y)[x * ch_ + c]; }
    void fill_random() {
        for (int y = 0; y < h_; ++y)
            for (int x = 0; x < w_ * ch_; ++x) row(y)[x] = random_value<T>();
        // Padding bytes hold noise too, so a kernel that reads them shows.
        for (int y = 0; y + 1 < h_; ++y)
            for (int b = w_ * ch_ * int(sizeof(T)); b < step_; ++b)
                buf_.data()[std::size_t(step_) * y + b] = uint8_t(rng()());
    }
    void fill(T v) {
        for (int y = 0; y < h_; ++y)
            for (int x = 0; x < w_ * ch_; ++x) row(y)[x] = v;
    }
    // The whole block, padding included, for canary comparisons.
    std::vector<uint8_t> bytes() const { return {buf_.data(), buf_.data() + buf_.size()}; }
    // A cv::Mat header over the same pixels (no copy).
    cv::Mat mat() const { return cv::Mat(h_, w_, CV_MAKETYPE(CvDepth<T>::v, ch_), ptr(), std::size_t(step_)); }
    // Pixels of the ROI only, row by row, for comparisons.
    std::vector<T> pixels() const {
        std::vector<T> v;
        for (int y = 0; y < h_; ++y) v.insert(v.end(), row(y), row(y) + w_ * ch_);
        return v;
    }

private:
    int w_, h_, ch_, step_;
    Guarded buf_;
};

// Vector targets: 0 SSSE3, 1 AVX2, 2 AVX-512.
inline constexpr int kTargets = 3;

// One processor variant on one vector target.
struct Path {
    int variant;
    int target;
    std::string name() const;
};

// Every variant on every vector target this machine runs.
std::vector<Path> all_paths();

// Selects a vector target for the life of the scope.
class TargetScope {
public:
    explicit TargetScope(int target) : saved_(zeb_simd_target) { zeb_simd_target = target; }
    ~TargetScope() { zeb_simd_target = saved_; }

private:
    int saved_;
};

// The fixture of every test that runs kernels: parameterised over all
// vector targets, it selects the target for the whole test body, or skips
// the test visibly where this machine lacks the target. Declare a suite
// with ZT_TARGET_SUITE(Suite) and write its tests with TEST_P(Suite, ...).
class TargetTest : public ::testing::TestWithParam<int> {
protected:
    void SetUp() override;
    void TearDown() override;
    int target() const { return GetParam(); }

private:
    int saved_ = 0;
};

std::string target_param_name(const ::testing::TestParamInfo<int>& info);

#define ZT_TARGET_SUITE(Suite)                   \
    class Suite : public ::zt::TargetTest {};    \
    INSTANTIATE_TEST_SUITE_P(Targets, Suite, ::testing::Range(0, ::zt::kTargets), ::zt::target_param_name)

// Widths that cover empty vector bodies, heads, tails and several blocks;
// pads that move the start of each row against the vector boundaries.
const std::vector<int>& test_widths();
const std::vector<int>& test_pads(int elemSize);

// Bit pattern equality of float data (NaNs included).
inline bool same_bits(float a, float b) { return std::memcmp(&a, &b, 4) == 0; }

}  // namespace zt

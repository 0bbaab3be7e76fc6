// SPDX-License-Identifier: Apache-2.0
// The test harness every suite uses: guarded images, canaries, the runner
// over processor variants and instruction-set paths, zero-copy OpenCV views.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>
#include <random>
#include <source_location>
#include <sstream>
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

// A byte block of exactly the requested size between two PROT_NONE pages.
// Pages come whole, so only one end of the block can touch its guard: with
// Side::End the last byte sits right before the page after (an access one
// past the end faults), with Side::Start the first byte sits right after
// the page before (an access one before the start faults). The bytes
// between the other end and its guard hold a canary that the destructor
// verifies, and under AddressSanitizer they are poisoned, so a read there
// is reported too.
//
// Side::Alternate (the default) takes the side from a hash of the number
// of blocks the running test has made so far, so a test that makes k
// blocks per iteration of a sweep puts each of them against both guards
// as it goes on (a strict alternation would keep every other block on one
// side). The count restarts with every test, so a test sees the same sides
// whether it runs alone or in the whole suite.
class Guarded {
public:
    enum class Side { Alternate, End, Start };
    explicit Guarded(std::size_t bytes, Side side = Side::Alternate);
    ~Guarded();
    Guarded(const Guarded&) = delete;
    Guarded& operator=(const Guarded&) = delete;
    Guarded(Guarded&& o) noexcept;
    Guarded& operator=(Guarded&& o) noexcept;
    unsigned char* data() const { return data_; }
    std::size_t size() const { return size_; }
    // The side this block touches (End or Start).
    Side side() const { return side_; }
    // Whether the bytes between the block and its far guard are as they
    // were made; reports them with ADD_FAILURE when not.
    bool slack_intact() const;

private:
    void release();
    void* map_ = nullptr;
    std::size_t mapLen_ = 0;
    unsigned char* data_ = nullptr;
    std::size_t size_ = 0;
    unsigned char* slack_ = nullptr;  // the bytes between the block and its far guard
    std::size_t slackLen_ = 0;
    Side side_ = Side::End;
};

// A work buffer of exactly the size its query returned, against a guard.
inline Guarded work_buffer(int queriedBytes, Guarded::Side side = Guarded::Side::Alternate) {
    return Guarded(std::size_t(queriedBytes < 0 ? 0 : queriedBytes), side);
}

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

// Columns (x) on each side and rows (y) above and below that surround an
// image's ROI inside its block.
struct Margin {
    int x = 0, y = 0;
};

namespace detail {
// Reports every byte outside the ROI of a block that differs from its
// snapshot (ADD_FAILURE naming the image, the block offset and the row).
bool padding_intact(const char* what, const unsigned char* block, const std::vector<uint8_t>& snapshot, int step,
                    int roiOffset, int roiRowBytes, int roiRows);
}  // namespace detail

// An image of w x h pixels with ch interleaved channels and a step padded by
// padBytes (a multiple of the element size unless the test wants otherwise),
// in a guarded block (see Guarded: the last pixel touches the guard after,
// or the first pixel the guard before). With a Margin the ROI lies inside a
// larger image of (w + 2 x) by (h + 2 y) pixels, with noise around it.
//
// The padding (every byte of the block outside the ROI pixels: the bytes
// between the end of each ROI row and the next, the margin) may not change:
// the image remembers it when it is made and whenever the test refills it
// (fill_random), and checks it when it is refilled and when it is
// destroyed, failing the test with the image's name, where it was made
// and the offset of the first changed byte. A test that writes padding on
// purpose says so with allow_padding_writes(), or calls
// remember_padding() after writing it.
template <class T>
class Image {
public:
    Image(int w, int h, int ch = 1, int padBytes = 0, std::source_location made = std::source_location::current())
        : Image(w, h, ch, padBytes, Margin{}, made) {}
    Image(int w, int h, int ch, int padBytes, Margin m, std::source_location made = std::source_location::current())
        : w_(w), h_(h), ch_(ch), mx_(m.x), my_(m.y),
          step_(int((w + 2 * m.x) * ch * sizeof(T)) + padBytes),
          buf_(block_bytes(w, h, ch, padBytes, m)), made_(made) {
        fill_random();
    }
    ~Image() {
        if (checkPadding_) check_padding();
    }
    Image(Image&& o) noexcept
        : w_(o.w_), h_(o.h_), ch_(o.ch_), mx_(o.mx_), my_(o.my_), step_(o.step_), buf_(std::move(o.buf_)),
          made_(o.made_), name_(std::move(o.name_)), padding_(std::move(o.padding_)),
          checkPadding_(o.checkPadding_) {
        o.checkPadding_ = false;
    }
    Image& operator=(Image&& o) noexcept {
        if (this != &o) {
            if (checkPadding_) check_padding();
            w_ = o.w_, h_ = o.h_, ch_ = o.ch_, mx_ = o.mx_, my_ = o.my_, step_ = o.step_;
            buf_ = std::move(o.buf_);
            made_ = o.made_;
            name_ = std::move(o.name_);
            padding_ = std::move(o.padding_);
            checkPadding_ = o.checkPadding_;
            o.checkPadding_ = false;
        }
        return *this;
    }

    int width() const { return w_; }
    int height() const { return h_; }
    int channels() const { return ch_; }
    int step() const { return step_; }
    Margin margin() const { return {mx_, my_}; }
    ZebiSize size() const { return {w_, h_}; }
    // The first ROI pixel. Rows and columns of the margin are reached with
    // negative or past-the-end coordinates through row() and at().
    T* ptr() const { return reinterpret_cast<T*>(buf_.data() + roi_offset()); }
    T* row(int y) const { return reinterpret_cast<T*>(buf_.data() + roi_offset() + std::ptrdiff_t(step_) * y); }
    T& at(int x, int y, int c = 0) const { return row(y)[x * ch_ + c]; }
    // Random pixels in the ROI and the margin, random bytes in the padding
    // between rows, so a kernel that reads them shows.
    void fill_random() {
        if (checkPadding_ && !padding_.empty()) check_padding();
        const int ow = (w_ + 2 * mx_) * ch_, oh = h_ + 2 * my_;
        for (int y = 0; y < oh; ++y)
            for (int x = 0; x < ow; ++x) outer_row(y)[x] = random_value<T>();
        for (int y = 0; y + 1 < oh; ++y)
            for (int b = ow * int(sizeof(T)); b < step_; ++b) buf_.data()[std::size_t(step_) * y + b] = uint8_t(rng()());
        remember_padding();
    }
    void fill(T v) {
        for (int y = 0; y < h_; ++y)
            for (int x = 0; x < w_ * ch_; ++x) row(y)[x] = v;
    }
    // The whole block, padding and margin included, for canary comparisons.
    std::vector<uint8_t> bytes() const { return {buf_.data(), buf_.data() + buf_.size()}; }
    // A cv::Mat header over the ROI pixels (no copy).
    cv::Mat mat() const { return cv::Mat(h_, w_, CV_MAKETYPE(CvDepth<T>::v, ch_), ptr(), std::size_t(step_)); }
    // A cv::Mat header over the ROI with its margin.
    cv::Mat outer_mat() const {
        return cv::Mat(h_ + 2 * my_, w_ + 2 * mx_, CV_MAKETYPE(CvDepth<T>::v, ch_), outer_row(0),
                       std::size_t(step_));
    }
    // Pixels of the ROI only, row by row, for comparisons.
    std::vector<T> pixels() const {
        std::vector<T> v;
        for (int y = 0; y < h_; ++y) v.insert(v.end(), row(y), row(y) + w_ * ch_);
        return v;
    }

    // A name for the messages of the padding check.
    Image& named(std::string name) {
        name_ = std::move(name);
        return *this;
    }
    // The test writes padding on purpose: no padding check for this image.
    void allow_padding_writes() { checkPadding_ = false; }
    // Takes the padding as it is now as the state to keep.
    void remember_padding() { padding_ = bytes(); }
    // Checks now that the padding is as remembered (the destructor does
    // too); false, with a failure reported, when a byte changed.
    bool check_padding() const {
        const std::string what = describe();
        return detail::padding_intact(what.c_str(), buf_.data(), padding_, step_, int(roi_offset()),
                                      w_ * ch_ * int(sizeof(T)), h_);
    }
    const Guarded& block() const { return buf_; }

private:
    static std::size_t block_bytes(int w, int h, int ch, int padBytes, Margin m) {
        const int oh = h + 2 * m.y;
        const std::size_t row = std::size_t(w + 2 * m.x) * ch * sizeof(T);
        if (w <= 0 || h <= 0) return 0;
        return (row + std::size_t(padBytes)) * std::size_t(oh - 1) + row;
    }
    std::size_t roi_offset() const { return std::size_t(step_) * my_ + std::size_t(mx_) * ch_ * sizeof(T); }
    T* outer_row(int y) const { return reinterpret_cast<T*>(buf_.data() + std::size_t(step_) * y); }
    std::string describe() const {
        std::ostringstream s;
        if (name_.empty()) s << "image";
        else s << "image \"" << name_ << '"';
        s << ' ' << w_ << 'x' << h_ << 'x' << ch_ << " of " << sizeof(T) << "-byte elements, step " << step_;
        if (mx_ || my_) s << ", margin " << mx_ << ',' << my_;
        s << ", made at " << made_.file_name() << ':' << made_.line();
        return s.str();
    }

    int w_, h_, ch_, mx_, my_, step_;
    Guarded buf_;
    std::source_location made_;
    std::string name_;
    std::vector<uint8_t> padding_;
    bool checkPadding_ = true;
};

// A photograph from OpenCV's sample data (baboon.jpg, fruits.jpg,
// building.jpg, ...), read with imread in the given mode
// (cv::IMREAD_COLOR, cv::IMREAD_GRAYSCALE); empty when it is missing.
cv::Mat photo(const std::string& file, int mode);

// A guarded image holding a copy of m's pixels, converted to T.
template <class T>
Image<T> image_of(const cv::Mat& m, int padBytes = 0, Margin margin = {},
                  std::source_location made = std::source_location::current()) {
    Image<T> img(m.cols, m.rows, m.channels(), padBytes, margin, made);
    m.convertTo(img.mat(), CvDepth<T>::v);
    return img;
}

// Vector targets: 0 SSSE3, 1 AVX2, 2 AVX-512.
inline constexpr int kTargets = 3;

// One processor variant on one vector target.
struct Path {
    int variant;
    int target;
    std::string name() const;
};

// The best vector target the tests run: the best this machine runs,
// lowered by the environment variable ZEBCV_TEST_MAX_TARGET (0, 1 or 2) to
// run the suite as on a machine without the higher targets.
int max_test_target();

// Every variant on every vector target the tests run. Called inside a
// test, it records the targets it leaves out as the test property
// "targets_not_run" and prints them, so that nothing is dropped silently.
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

// The messages of the failures that f records, captured instead of failing
// the running test: for tests of the harness itself.
std::vector<std::string> failures_of(const std::function<void()>& f);

// Bit pattern equality of float data (NaNs included).
inline bool same_bits(float a, float b) { return std::memcmp(&a, &b, 4) == 0; }

}  // namespace zt

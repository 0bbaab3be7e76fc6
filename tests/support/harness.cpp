// SPDX-License-Identifier: Apache-2.0
#include "harness.h"

#include <gtest/gtest-spi.h>
#include <sys/mman.h>
#include <unistd.h>

#include <opencv2/imgcodecs.hpp>

#include <cstdio>
#include <cstdlib>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#define ZT_POISON(p, n) ASAN_POISON_MEMORY_REGION(p, n)
#define ZT_UNPOISON(p, n) ASAN_UNPOISON_MEMORY_REGION(p, n)
#else
#define ZT_POISON(p, n) ((void)(p), (void)(n))
#define ZT_UNPOISON(p, n) ((void)(p), (void)(n))
#endif

namespace zt {

namespace {

// Blocks made since the current test started: picks the guarded side.
std::size_t g_blocks = 0;

// Restarts the count of blocks at every test.
class BlockCountReset : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo&) override { g_blocks = 0; }
};

const bool g_listening = [] {
    ::testing::UnitTest::GetInstance()->listeners().Append(new BlockCountReset);
    return true;
}();

// A 64-bit mixing function: consecutive counts give unrelated bits.
uint64_t mix(uint64_t x) {
    x += 0x9e3779b97f4a7c15ull;
    x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9ull;
    x = (x ^ (x >> 27)) * 0x94d049bb133111ebull;
    return x ^ (x >> 31);
}

uint8_t slack_byte(std::size_t i) { return uint8_t(0xa5 ^ (i * 29)); }

}  // namespace

Guarded::Guarded(std::size_t bytes, Side side) : size_(bytes) {
    (void)g_listening;
    if (side == Side::Alternate) side = (mix(g_blocks) >> 63) ? Side::Start : Side::End;
    ++g_blocks;
    side_ = side;
    const std::size_t page = std::size_t(sysconf(_SC_PAGESIZE));
    const std::size_t dataPages = (bytes + page - 1) / page;
    mapLen_ = (dataPages + 2) * page;
    map_ = mmap(nullptr, mapLen_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (map_ == MAP_FAILED) std::abort();
    unsigned char* before = static_cast<unsigned char*>(map_);
    unsigned char* after = before + (dataPages + 1) * page;
    if (mprotect(before, page, PROT_NONE) != 0 || mprotect(after, page, PROT_NONE) != 0) std::abort();
    slackLen_ = dataPages * page - bytes;
    if (side == Side::End) {
        data_ = after - bytes;
        slack_ = before + page;
    } else {
        data_ = before + page;
        slack_ = data_ + bytes;
    }
    for (std::size_t i = 0; i < slackLen_; ++i) slack_[i] = slack_byte(i);
    ZT_POISON(slack_, slackLen_);
}

bool Guarded::slack_intact() const {
    if (!map_) return true;
    ZT_UNPOISON(slack_, slackLen_);
    std::size_t n = 0, first = 0;
    for (std::size_t i = 0; i < slackLen_; ++i)
        if (slack_[i] != slack_byte(i)) {
            if (n++ == 0) first = i;
        }
    ZT_POISON(slack_, slackLen_);
    if (n == 0) return true;
    // Offsets relative to the block: negative before its first byte.
    const std::ptrdiff_t at = (slack_ + first) - data_;
    ADD_FAILURE() << "guarded block of " << size_ << " bytes: " << n << " byte(s) written outside it, first at offset "
                  << at << (at < 0 ? " (before the first byte)" : " (past the last byte)");
    return false;
}

void Guarded::release() {
    if (!map_) return;
    slack_intact();
    ZT_UNPOISON(slack_, slackLen_);
    munmap(map_, mapLen_);
    map_ = nullptr;
}

Guarded::~Guarded() { release(); }

Guarded::Guarded(Guarded&& o) noexcept
    : map_(o.map_), mapLen_(o.mapLen_), data_(o.data_), size_(o.size_), slack_(o.slack_), slackLen_(o.slackLen_),
      side_(o.side_) {
    o.map_ = nullptr;
}

Guarded& Guarded::operator=(Guarded&& o) noexcept {
    if (this != &o) {
        release();
        map_ = o.map_;
        mapLen_ = o.mapLen_;
        data_ = o.data_;
        size_ = o.size_;
        slack_ = o.slack_;
        slackLen_ = o.slackLen_;
        side_ = o.side_;
        o.map_ = nullptr;
    }
    return *this;
}

namespace detail {

bool padding_intact(const char* what, const unsigned char* block, const std::vector<uint8_t>& snapshot, int step,
                    int roiOffset, int roiRowBytes, int roiRows) {
    // The ROI bytes of row y are [roiOffset + y*step, + roiRowBytes).
    std::size_t n = 0, first = 0;
    for (std::size_t i = 0; i < snapshot.size(); ++i) {
        if (block[i] == snapshot[i]) continue;
        const std::ptrdiff_t rel = std::ptrdiff_t(i) - roiOffset;
        const std::ptrdiff_t y = rel >= 0 ? rel / step : -1;
        if (rel >= 0 && y < roiRows && rel - y * step < roiRowBytes) continue;
        if (n++ == 0) first = i;
    }
    if (n == 0) return true;
    const std::ptrdiff_t rel = std::ptrdiff_t(first) - roiOffset;
    const std::ptrdiff_t y = rel >= 0 ? rel / step : -((-rel + step - 1) / step);
    ADD_FAILURE() << what << ": " << n << " padding byte(s) changed, first at block offset " << first
                  << " (ROI row " << y << ", byte " << rel - y * step << " of the row; was " << int(snapshot[first])
                  << ", now " << int(block[first]) << ")";
    return false;
}

}  // namespace detail

std::vector<std::string> failures_of(const std::function<void()>& f) {
    ::testing::TestPartResultArray results;
    {
        ::testing::ScopedFakeTestPartResultReporter catcher(
            ::testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &results);
        f();
    }
    std::vector<std::string> out;
    for (int i = 0; i < results.size(); ++i) out.push_back(results.GetTestPartResult(i).message());
    return out;
}

cv::Mat photo(const std::string& file, int mode) {
    return cv::imread("/usr/share/doc/opencv-doc/examples/data/" + file, mode);
}

std::mt19937& rng() {
    static std::mt19937 g(12345);
    return g;
}

std::string Path::name() const {
    return std::string(variant ? "n8/" : "u8/") + zeb::simd_target_name(target);
}

int max_test_target() {
    int t = zeb::max_simd_target();
    if (const char* cap = std::getenv("ZEBCV_TEST_MAX_TARGET"); cap && *cap >= '0' && *cap <= '2' && !cap[1])
        t = std::min(t, *cap - '0');
    return t;
}

std::vector<Path> all_paths() {
    std::vector<Path> p;
    for (int v = 0; v < 2; ++v)
        for (int t = 0; t <= max_test_target(); ++t) p.push_back({v, t});
    std::string missing;
    for (int t = max_test_target() + 1; t < kTargets; ++t)
        missing += std::string(missing.empty() ? "" : ",") + zeb::simd_target_name(t);
    // Once per test: the property and a line in the test's output.
    static const ::testing::TestInfo* noted = nullptr;
    const ::testing::TestInfo* test = ::testing::UnitTest::GetInstance()->current_test_info();
    if (!missing.empty() && test && test != noted) {
        noted = test;
        ::testing::Test::RecordProperty("targets_not_run", missing);
        std::printf("note: targets not run on this machine: %s\n", missing.c_str());
    }
    return p;
}

void TargetTest::SetUp() {
    saved_ = zeb_simd_target;
    if (GetParam() > max_test_target())
        GTEST_SKIP() << "this machine does not run the " << zeb::simd_target_name(GetParam()) << " target";
    zeb_simd_target = GetParam();
}

void TargetTest::TearDown() { zeb_simd_target = saved_; }

std::string target_param_name(const ::testing::TestParamInfo<int>& info) {
    static const char* const names[kTargets] = {"SSSE3", "AVX2", "AVX512"};
    return names[info.param];
}

const std::vector<int>& test_widths() {
    static const std::vector<int> w = {1, 2, 3, 7, 15, 16, 17, 31, 33, 64, 67, 130};
    return w;
}

const std::vector<int>& test_pads(int elemSize) {
    static const std::vector<int> p1 = {0, 1, 5, 32};
    static const std::vector<int> p2 = {0, 2, 6, 32};
    static const std::vector<int> p4 = {0, 4, 12, 32};
    return elemSize == 1 ? p1 : elemSize == 2 ? p2 : p4;
}

}  // namespace zt

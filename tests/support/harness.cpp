#include "harness.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

namespace zt {

Guarded::Guarded(std::size_t bytes) : size_(bytes) {
    const std::size_t page = std::size_t(sysconf(_SC_PAGESIZE));
    const std::size_t dataPages = (bytes + page - 1) / page;
    mapLen_ = (dataPages + 1) * page;
    map_ = mmap(nullptr, mapLen_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (map_ == MAP_FAILED) std::abort();
    unsigned char* guard = static_cast<unsigned char*>(map_) + dataPages * page;
    if (mprotect(guard, page, PROT_NONE) != 0) std::abort();
    data_ = guard - bytes;
}

Guarded::~Guarded() {
    if (map_) munmap(map_, mapLen_);
}

Guarded::Guarded(Guarded&& o) noexcept
    : map_(o.map_), mapLen_(o.mapLen_), data_(o.data_), size_(o.size_) {
    o.map_ = nullptr;
}

Guarded& Guarded::operator=(Guarded&& o) noexcept {
    if (this != &o) {
        if (map_) munmap(map_, mapLen_);
        map_ = o.map_;
        mapLen_ = o.mapLen_;
        data_ = o.data_;
        size_ = o.size_;
        o.map_ = nullptr;
    }
    return *this;
}

std::mt19937& rng() {
    static std::mt19937 g(12345);
    return g;
}

std::string Path::name() const {
    return std::string(variant ? "n8/" : "u8/") + zeb::simd_target_name(target);
}

std::vector<Path> all_paths() {
    std::vector<Path> p;
    for (int v = 0; v < 2; ++v)
        for (int t = 0; t <= zeb::max_simd_target(); ++t) p.push_back({v, t});
    return p;
}

void TargetTest::SetUp() {
    saved_ = zeb_simd_target;
    if (GetParam() > zeb::max_simd_target())
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

// Argument checks of the Gaussian filter: size query, kernel setup
// building, the filters of every type and the older interface. Pairs of bad
// arguments pin down the order; failing calls leave the kernel setup,
// destination and work buffer untouched.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include "harness.h"

namespace {

constexpr ZebiSize kRoi{13, 6};

TEST(GaussianChecks, BufferSizeQuery) {
    int s = 5, b = 5;
    struct Row {
        ZebiSize roi;
        Zeb32u k;
        int type, ch;
        bool nullSpec, nullBuf;
        ZebStatus want;
    };
    const Row rows[] = {
        {kRoi, 5, zeb8u, 1, false, false, 0},
        {{0, 0}, 4, 3, 4, true, false, -8},
        {{0, 0}, 4, 3, 4, false, true, -8},
        {{0, 6}, 4, 3, 4, false, false, -6},
        {{13, -2}, 5, zeb8u, 1, false, false, -6},
        {kRoi, 4, 3, 4, false, false, -5},
        {kRoi, 2, zeb8u, 1, false, false, -5},
        {kRoi, 1, zeb8u, 1, false, false, -5},
        {kRoi, 0, zeb8u, 1, false, false, -5},
        {kRoi, 5, 3, 4, false, false, -12},
        {kRoi, 5, 0, 1, false, false, -12},
        {kRoi, 5, zeb16s, 4, false, false, -47},
        {kRoi, 5, zeb32f, 2, false, false, -47},
        // Odd lengths far beyond any buffer: the sizes do not fit 32 bits.
        {kRoi, Zeb32u(-3), zeb8u, 1, false, false, -6},
        {kRoi, (1u << 25) + 1, zeb32f, 3, false, false, -6},
        {{1 << 30, 1}, 3, zeb8u, 1, false, false, -6},
    };
    for (const Row& r : rows) {
        s = b = 5;
        EXPECT_EQ(zebiFilterGaussianGetBufferSize(r.roi, r.k, r.type, r.ch, r.nullSpec ? nullptr : &s,
                                                  r.nullBuf ? nullptr : &b),
                  r.want)
            << "k=" << r.k << " type=" << r.type << " ch=" << r.ch;
        if (r.want < 0) {
            EXPECT_TRUE(s == 5 && b == 5);
        }
    }
    EXPECT_EQ(zebiFilterGaussGetBufferSize_32f_C1R(kRoi, 5, nullptr), -8);
    EXPECT_EQ(zebiFilterGaussGetBufferSize_32f_C1R({0, 1}, 4, &b), -6);
    EXPECT_EQ(zebiFilterGaussGetBufferSize_32f_C1R(kRoi, 4, &b), -5);
    EXPECT_EQ(zebiFilterGaussGetBufferSize_32f_C1R(kRoi, 1, &b), -5);
    EXPECT_EQ(zebiFilterGaussGetBufferSize_32f_C1R(kRoi, -3, &b), -5);
}

TEST(GaussianChecks, InitOrderAndNoWriteOnFailure) {
    struct Row {
        const char* what;
        ZebiSize roi;
        Zeb32u k;
        float sigma;
        int bt, type, ch;
        bool nullSpec, nullBuf;
        ZebStatus want;
    };
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const Row rows[] = {
        {"valid", kRoi, 5, 1.f, 1, zeb8u, 1, false, false, 0},
        {"null spec", {0, 0}, 4, -1.f, 9, 3, 4, true, false, -8},
        {"null buffer", kRoi, 5, 1.f, 1, zeb8u, 1, false, true, -8},
        {"size", {0, 1}, 4, -1.f, 9, 3, 4, false, false, -6},
        {"length 4", kRoi, 4, -1.f, 9, 3, 4, false, false, -5},
        {"length 1", kRoi, 1, 1.f, 1, zeb8u, 1, false, false, -5},
        {"type 8s", kRoi, 5, -1.f, 9, zeb8s, 4, false, false, -12},
        {"four channels", kRoi, 5, -1.f, 9, zeb16u, 4, false, false, -47},
        {"sigma 0", kRoi, 5, 0.f, 9, zeb16u, 3, false, false, -5},
        {"sigma -2", kRoi, 5, -2.f, 1, zeb16u, 3, false, false, -5},
        {"sigma NaN", kRoi, 5, nan, 1, zeb32f, 3, false, false, -5},
        {"border 2", kRoi, 5, 1.f, 2, zeb32f, 1, false, false, -225},
        {"border 4", kRoi, 5, 1.f, 4, zeb32f, 1, false, false, -225},
        {"border 256+1", kRoi, 5, 1.f, 257, zeb32f, 1, false, false, -225},
        {"border 16+1", kRoi, 5, 1.f, 17, zeb32f, 1, false, false, 0},
        {"border 240+6", kRoi, 5, 1.f, 246, zeb16s, 1, false, false, 0},
        {"border 32", kRoi, 5, 1.f, 32, zeb16s, 1, false, false, 0},
        // A negative odd length passes as unsigned and builds no table.
        {"length -3", kRoi, Zeb32u(-3), 1.f, 1, zeb8u, 1, false, false, 0},
    };
    for (const Row& r : rows) {
        zt::Guarded spec(256), buf(64);
        std::memset(spec.data(), 0xab, spec.size());
        std::memset(buf.data(), 0xcd, buf.size());
        EXPECT_EQ(zebiFilterGaussianInit(r.roi, r.k, r.sigma, r.bt, r.type, r.ch,
                                         r.nullSpec ? nullptr : reinterpret_cast<ZebFilterGaussianSpec*>(spec.data()),
                                         r.nullBuf ? nullptr : buf.data()),
                  r.want)
            << r.what;
        for (std::size_t i = 0; i < buf.size(); ++i) ASSERT_EQ(buf.data()[i], 0xcd) << r.what;
        if (r.want < 0) {
            for (std::size_t i = 0; i < spec.size(); ++i) ASSERT_EQ(spec.data()[i], 0xab) << r.what;
        }
        if (r.k == Zeb32u(-3)) {
            int32_t k;
            std::memcpy(&k, spec.data(), 4);
            EXPECT_EQ(k, -3);
        }
    }
}

// One filter member through a table of cases on both variants.
template <class T>
struct Filter {
    std::string name;
    int ch;
    std::function<ZebStatus(int, const T*, int, T*, int, ZebiSize, const T*, const ZebFilterGaussianSpec*, Zeb8u*)> f;
};

#define ZEB_FILTERS(X)                            \
    X(zebiFilterGaussianBorder_8u_C1R, Zeb8u, 1)   \
    X(zebiFilterGaussianBorder_8u_C3R, Zeb8u, 3)   \
    X(zebiFilterGaussianBorder_16u_C1R, Zeb16u, 1) \
    X(zebiFilterGaussianBorder_16u_C3R, Zeb16u, 3) \
    X(zebiFilterGaussianBorder_16s_C1R, Zeb16s, 1) \
    X(zebiFilterGaussianBorder_16s_C3R, Zeb16s, 3) \
    X(zebiFilterGaussianBorder_32f_C1R, Zeb32f, 1) \
    X(zebiFilterGaussianBorder_32f_C3R, Zeb32f, 3)
#define ZEB_DECLARE(name, T, ch) ZEB_TEST_TABLE(name);
ZEB_FILTERS(ZEB_DECLARE)
ZEB_TEST_TABLE(zebiFilterGaussBorder_32f_C1R);

template <class T>
constexpr ZebDataType type_of() {
    return std::is_same_v<T, uint8_t> ? zeb8u : std::is_same_v<T, uint16_t> ? zeb16u
                                            : std::is_same_v<T, int16_t>    ? zeb16s
                                                                            : zeb32f;
}

struct FilterCase {
    std::string what;
    // src step, dst step, roi, value null, spec length, spec border, spec type
    std::function<void(int& ss, int& ds, ZebiSize& roi, bool& nulls, int& which)> change;
    int specK, specBorder, specType;  // 0: as built
    ZebStatus want;
};

template <class T>
void run_filter_cases(const Filter<T>& m) {
    const int ch = m.ch, row = kRoi.width * ch * int(sizeof(T));
    const std::vector<FilterCase> cases = {
        {"valid", [](int&, int&, ZebiSize&, bool&, int&) {}, 0, 0, 0, 0},
        {"null src", [](int&, int&, ZebiSize&, bool&, int& w) { w = 0; }, 0, 0, 0, -8},
        {"null dst", [](int&, int&, ZebiSize&, bool&, int& w) { w = 1; }, 0, 0, 0, -8},
        {"null buffer", [](int&, int&, ZebiSize&, bool&, int& w) { w = 2; }, 0, 0, 0, -8},
        {"null spec", [](int&, int&, ZebiSize&, bool&, int& w) { w = 3; }, 0, 0, 0, -8},
        {"null value", [](int&, int&, ZebiSize&, bool& n, int&) { n = true; }, 0, 0, 0, ch == 3 ? -8 : 0},
        {"short src step before size", [](int& ss, int&, ZebiSize& r, bool&, int&) { ss -= 1, r.height = 0; }, 0, 0, 0, -14},
        {"short dst step", [](int&, int& ds, ZebiSize&, bool&, int&) { ds -= int(sizeof(T)); }, 0, 0, 0, -14},
        {"size", [](int&, int&, ZebiSize& r, bool&, int&) { r.height = -1; }, 0, 0, 0, -6},
        {"uneven step, spec length 4", [](int& ss, int&, ZebiSize&, bool&, int&) { ss += 1; }, 4, 0, 0,
         sizeof(T) == 1 ? -5 : -108},
        {"spec length 4, bad border", [](int&, int&, ZebiSize&, bool&, int&) {}, 4, 2, 0, -5},
        {"spec length -3", [](int&, int&, ZebiSize&, bool&, int&) {}, -3, 0, 0, -5},
        {"spec border 3, wrong type", [](int&, int&, ZebiSize&, bool&, int&) {}, 0, 3, 3, -225},
        {"spec for another type", [](int&, int&, ZebiSize&, bool&, int&) {}, 0, 0,
         std::is_same_v<T, float> ? zeb8u : zeb32f, -12},
    };
    for (const FilterCase& c : cases)
        for (int v = 0; v < 2; ++v) {
            int specBytes = 0, bufBytes = 0;
            ASSERT_EQ(zebiFilterGaussianGetBufferSize(kRoi, 5, type_of<T>(), ch, &specBytes, &bufBytes), 0);
            zt::Guarded spec(specBytes), buf(bufBytes), src(std::size_t(row + 8) * (kRoi.height + 1)),
                dst(std::size_t(row + 8) * (kRoi.height + 1));
            ASSERT_EQ(zebiFilterGaussianInit(kRoi, 5, 1.2f, 1, type_of<T>(), ch,
                                             reinterpret_cast<ZebFilterGaussianSpec*>(spec.data()), buf.data()),
                      0);
            if (c.specK) std::memcpy(spec.data(), &c.specK, 4);
            if (c.specType) std::memcpy(spec.data() + 8, &c.specType, 4);
            if (c.specBorder) std::memcpy(spec.data() + 12, &c.specBorder, 4);
            for (std::size_t i = 0; i < dst.size(); ++i) dst.data()[i] = uint8_t(i * 5 + 1);
            const std::vector<uint8_t> before(dst.data(), dst.data() + dst.size());
            int ss = row, ds = row, which = -1;
            ZebiSize roi = kRoi;
            bool nullValue = false;
            c.change(ss, ds, roi, nullValue, which);
            const T value[3] = {1, 2, 3};
            const ZebStatus got =
                m.f(v, which == 0 ? nullptr : reinterpret_cast<const T*>(src.data()), ss,
                    which == 1 ? nullptr : reinterpret_cast<T*>(dst.data()), ds, roi, nullValue ? nullptr : value,
                    which == 3 ? nullptr : reinterpret_cast<const ZebFilterGaussianSpec*>(spec.data()),
                    which == 2 ? nullptr : buf.data());
            EXPECT_EQ(got, c.want) << m.name << " variant " << v << ": " << c.what;
            if (c.want < 0) {
                EXPECT_EQ(std::memcmp(before.data(), dst.data(), dst.size()), 0) << m.name << ": " << c.what;
            }
        }
}

TEST(GaussianChecks, FilterOrderAndNoWriteOnFailure) {
#define ZEB_RUN(name, T, ch_)                                                                                  \
    run_filter_cases<T>({#name, ch_,                                                                           \
                         [](auto v, const T* s, int ss, T* d, int ds, ZebiSize r, const T* val,               \
                            const ZebFilterGaussianSpec* sp, Zeb8u* b) {                                       \
                             if constexpr (ch_ == 1)                                                           \
                                 return zeb_tbl_##name[v](s, ss, d, ds, r, val ? val[0] : T(0), sp, b);        \
                             else                                                                              \
                                 return zeb_tbl_##name[v](s, ss, d, ds, r, val, sp, b);                        \
                         }});
    ZEB_FILTERS(ZEB_RUN)
}

TEST(GaussianChecks, OlderFilterOrder) {
    const int row = kRoi.width * 4;
    int size = 0;
    ASSERT_EQ(zebiFilterGaussGetBufferSize_32f_C1R(kRoi, 5, &size), 0);
    struct Row {
        const char* what;
        int which, dss, k;
        ZebiSize roi;
        float sigma;
        int bt;
        ZebStatus want;
    };
    const Row rows[] = {
        {"valid", -1, 0, 5, kRoi, 1.f, 1, 0},
        {"null src", 0, 0, 4, {0, 0}, 0.f, 3, -8},
        {"null dst", 1, 0, 5, kRoi, 1.f, 1, -8},
        {"null buffer", 2, 0, 5, kRoi, 1.f, 1, -8},
        {"short step before size", -1, -1, 4, {kRoi.width, 0}, 0.f, 3, -14},
        {"size", -1, 0, 4, {kRoi.width, -1}, 0.f, 3, -6},
        {"uneven step", -1, 2, 4, kRoi, 0.f, 3, -108},
        {"length 4", -1, 0, 4, kRoi, 1.f, 3, -5},
        {"sigma 0", -1, 0, 5, kRoi, 0.f, 3, -5},
        {"border 3", -1, 0, 5, kRoi, 1.f, 3, -225},
        {"border 16 + 8", -1, 0, 5, kRoi, 1.f, 24, -225},
    };
    for (const Row& r : rows)
        for (int v = 0; v < 2; ++v) {
            zt::Guarded src(std::size_t(row + 8) * (kRoi.height + 1)), dst(std::size_t(row + 8) * (kRoi.height + 1)),
                buf(size);
            std::memset(dst.data(), 0x5a, dst.size());
            const ZebStatus got = zeb_tbl_zebiFilterGaussBorder_32f_C1R[v](
                r.which == 0 ? nullptr : reinterpret_cast<const float*>(src.data()), row + r.dss,
                r.which == 1 ? nullptr : reinterpret_cast<float*>(dst.data()), row, r.roi, r.k, r.sigma, r.bt, 0.f,
                r.which == 2 ? nullptr : buf.data());
            EXPECT_EQ(got, r.want) << r.what;
            if (r.want < 0) {
                for (std::size_t i = 0; i < dst.size(); ++i) ASSERT_EQ(dst.data()[i], 0x5a) << r.what;
            }
        }
}

}  // namespace

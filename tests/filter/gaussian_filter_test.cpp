// The Gaussian filter: its kernel table, the argument checks of every
// export (check tables with canaries on every block), results of every
// type, channel count and border through both variants on every vector
// target against the per-pixel definitions (bit for bit, every buffer
// ending at a guard page), OpenCV's GaussianBlur on photographs, and the
// older one-call interface.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "check_table.h"
#include "filter/pipeline_common.h"
#include "harness.h"

ZEB_TEST_TABLE(zebiFilterGaussianGetBufferSize);
ZEB_TEST_TABLE(zebiFilterGaussianInit);
ZEB_TEST_TABLE(zebiFilterGaussianBorder_8u_C1R);
ZEB_TEST_TABLE(zebiFilterGaussianBorder_8u_C3R);
ZEB_TEST_TABLE(zebiFilterGaussianBorder_16u_C1R);
ZEB_TEST_TABLE(zebiFilterGaussianBorder_16u_C3R);
ZEB_TEST_TABLE(zebiFilterGaussianBorder_16s_C1R);
ZEB_TEST_TABLE(zebiFilterGaussianBorder_16s_C3R);
ZEB_TEST_TABLE(zebiFilterGaussianBorder_32f_C1R);
ZEB_TEST_TABLE(zebiFilterGaussianBorder_32f_C3R);
ZEB_TEST_TABLE(zebiFilterGaussGetBufferSize_32f_C1R);
ZEB_TEST_TABLE(zebiFilterGaussBorder_32f_C1R);

namespace {

using zeb::pipe::data_type;
using zt::Image;
using zt::checks::Arena;
using zt::checks::Table;

// A kernel setup and work buffer sized exactly by the query.
struct Prepared {
    zt::Guarded spec, buf;
    Prepared(int specBytes, int bufBytes) : spec(specBytes), buf(bufBytes) {}
    const ZebFilterGaussianSpec* s() const { return reinterpret_cast<const ZebFilterGaussianSpec*>(spec.data()); }
    int32_t header(int i) const {
        int32_t v;
        std::memcpy(&v, spec.data() + 4 * i, 4);
        return v;
    }
    const unsigned char* table() const {
        return reinterpret_cast<const unsigned char*>((reinterpret_cast<std::uintptr_t>(spec.data()) + 20 + 15) &
                                                      ~std::uintptr_t(15));
    }
    uint16_t fixed(int i) const {
        uint16_t v;
        std::memcpy(&v, table() + 2 * i, 2);
        return v;
    }
    float real(int i) const {
        float v;
        std::memcpy(&v, table() + 4 * i, 4);
        return v;
    }
};

std::unique_ptr<Prepared> prepare(ZebiSize roi, int k, float sigma, int bt, ZebDataType type, int ch) {
    int specBytes = 0, bufBytes = 0;
    EXPECT_EQ(zebiFilterGaussianGetBufferSize(roi, Zeb32u(k), type, ch, &specBytes, &bufBytes), 0);
    auto p = std::make_unique<Prepared>(specBytes, bufBytes);
    EXPECT_EQ(zebiFilterGaussianInit(roi, Zeb32u(k), sigma, bt, type, ch,
                                     reinterpret_cast<ZebFilterGaussianSpec*>(p->spec.data()), p->buf.data()),
              0);
    return p;
}

// Calls a member through variant v's table entry; one-channel members take
// their border value by value (0 for a null array).
template <class T, class Fn>
ZebStatus call(Fn* const* tbl, int variant, const T* src, int ss, T* dst, int ds, ZebiSize roi, const T* value,
               const ZebFilterGaussianSpec* spec, Zeb8u* buf) {
    if constexpr (std::is_invocable_v<Fn*, const T*, int, T*, int, ZebiSize, T, const ZebFilterGaussianSpec*, Zeb8u*>) {
        return tbl[variant](src, ss, dst, ds, roi, value ? value[0] : T(0), spec, buf);
    } else {
        return tbl[variant](src, ss, dst, ds, roi, value, spec, buf);
    }
}

// ---- kernel setup ----

// The table against OpenCV's Gaussian kernel (computed in double): each
// fixed-point coefficient within half a unit plus rounding of the single-
// precision weights, symmetric; a tiny sigma puts the whole weight in the
// centre (4096 for 8u, 32768 for 16 bits).
TEST(GaussianKernel, TableAgreesWithOpenCV) {
    for (ZebDataType type : {zeb8u, zeb16u, zeb16s, zeb32f})
        for (int k : {3, 5, 9, 31}) {
            auto p = prepare({40, 10}, k, 1.7f, zebBorderRepl | zebBorderInMemTop, type, 3);
            EXPECT_EQ(p->header(0), k);
            const cv::Mat ref = cv::getGaussianKernel(k, 1.7, CV_64F);
            const double one = type == zeb8u ? 4096 : 32768;
            for (int i = 0; i < k; ++i) {
                if (type == zeb32f) {
                    EXPECT_NEAR(p->real(i), ref.at<double>(i), 1e-6) << "k=" << k << " i=" << i;
                    EXPECT_EQ(p->real(i), p->real(k - 1 - i));
                } else {
                    EXPECT_NEAR(p->fixed(i), ref.at<double>(i) * one, 0.5 + 1e-3) << "k=" << k << " i=" << i;
                    EXPECT_EQ(p->fixed(i), p->fixed(k - 1 - i));
                }
            }
        }
    auto p8 = prepare({8, 8}, 3, 0.05f, 0, zeb8u, 1);
    EXPECT_EQ(std::vector<int>({p8->fixed(0), p8->fixed(1), p8->fixed(2)}), std::vector<int>({0, 4096, 0}));
    EXPECT_EQ(prepare({8, 8}, 3, 0.05f, 0, zeb16s, 1)->fixed(1), 32768);
}

// ---- argument checks ----

constexpr ZebiSize kRoi{13, 6};

struct SizeArgs {
    ZebiSize roi;
    Zeb32u k;
    int type, ch;
    int *spec, *buf;
};

// Sizes that do not fit an int give zebStsSizeErr with nothing stored;
// heights beyond the kernel length do not matter.
TEST(GaussianSizes, BufferSizeQuery) {
    using S = SizeArgs;
    zt::checks::run(Table<S>{
        "zebiFilterGaussianGetBufferSize",
        [](Arena& m) { return S{kRoi, 5, zeb8u, 1, m.array<int>("spec size", 1), m.array<int>("buffer size", 1)}; },
        [](int v, S& a) { return zeb_tbl_zebiFilterGaussianGetBufferSize[v](a.roi, a.k, a.type, a.ch, a.spec, a.buf); },
        {
            {"null spec size, width 0, length 4", [](S& a) { a.spec = nullptr, a.roi.width = 0, a.k = 4; }, -8},
            {"null buffer size", [](S& a) { a.buf = nullptr; }, -8},
            {"width 0, length 4, type 3", [](S& a) { a.roi.width = 0, a.k = 4, a.type = 3; }, -6},
            {"height -2", [](S& a) { a.roi.height = -2; }, -6},
            {"length 4, type 3", [](S& a) { a.k = 4, a.type = 3; }, -5},
            {"length 1", [](S& a) { a.k = 1; }, -5},
            {"length 0", [](S& a) { a.k = 0; }, -5},
            {"type 8s, four channels", [](S& a) { a.type = zeb8s, a.ch = 4; }, -12},
            {"type 0", [](S& a) { a.type = 0; }, -12},
            {"four channels", [](S& a) { a.ch = 4; }, -47},
            {"two channels, 32f", [](S& a) { a.ch = 2, a.type = zeb32f; }, -47},
            {"height INT_MAX", [](S& a) { a.roi.height = INT_MAX; }, 0},
            {"width INT_MAX", [](S& a) { a.roi.width = INT_MAX; }, -6},
            {"width 2^26, 16s, three channels", [](S& a) { a.roi.width = 1 << 26, a.type = zeb16s, a.ch = 3; }, -6},
            {"length 2^25 + 1, 32f", [](S& a) { a.k = (1u << 25) + 1, a.type = zeb32f; }, -6},
            {"length 2^32 - 3", [](S& a) { a.k = Zeb32u(-3); }, -6},
        }});
}

TEST(GaussianSizes, OlderBufferSizeQuery) {
    struct A {
        ZebiSize roi;
        int k;
        int* size;
    };
    zt::checks::run(
        Table<A>{"zebiFilterGaussGetBufferSize_32f_C1R",
                 [](Arena& m) {
                     return A{kRoi, 5, m.array<int>("size", 1)};
                 },
                 [](int v, A& a) { return zeb_tbl_zebiFilterGaussGetBufferSize_32f_C1R[v](a.roi, a.k, a.size); },
                 {
                     {"null size, width 0", [](A& a) { a.size = nullptr, a.roi.width = 0; }, -8},
                     {"width 0, length 4", [](A& a) { a.roi.width = 0, a.k = 4; }, -6},
                     {"length 4", [](A& a) { a.k = 4; }, -5},
                     {"length -3", [](A& a) { a.k = -3; }, -5},
                     {"height INT_MAX", [](A& a) { a.roi.height = INT_MAX; }, 0},
                     {"width INT_MAX", [](A& a) { a.roi.width = INT_MAX; }, -6},
                     {"length INT_MAX", [](A& a) { a.k = INT_MAX; }, -6},
                     {"length 20000001", [](A& a) { a.k = 20000001; }, -6},
                 }});
}

struct InitArgs {
    ZebiSize roi;
    Zeb32u k;
    float sigma;
    int bt, type, ch;
    ZebFilterGaussianSpec* spec;
    Zeb8u* buf;
};

TEST(GaussianInit, CheckOrder) {
    using I = InitArgs;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    zt::checks::run(
        Table<I>{"zebiFilterGaussianInit",
                 [](Arena& m) {
                     int specBytes = 0, bufBytes = 0;
                     EXPECT_EQ(zebiFilterGaussianGetBufferSize(kRoi, 9, zeb32f, 3, &specBytes, &bufBytes), 0);
                     return I{kRoi,
                              5,
                              1.f,
                              1,
                              zeb8u,
                              1,
                              reinterpret_cast<ZebFilterGaussianSpec*>(m.block("spec", specBytes)),
                              m.block("buffer", bufBytes)};
                 },
                 [](int v, I& a) {
                     return zeb_tbl_zebiFilterGaussianInit[v](a.roi, a.k, a.sigma, a.bt, a.type, a.ch, a.spec, a.buf);
                 },
                 {
                     {"null spec, width 0, length 4",
                      [](I& a) {
                          a.spec = nullptr, a.roi = {0, 0}, a.k = 4;
                      },
                      -8},
                     {"null buffer", [](I& a) { a.buf = nullptr; }, -8},
                     {"width 0, length 4, sigma -1", [](I& a) { a.roi.width = 0, a.k = 4, a.sigma = -1; }, -6},
                     {"length 4, type 3, border 9", [](I& a) { a.k = 4, a.type = 3, a.bt = 9; }, -5},
                     {"length 1", [](I& a) { a.k = 1; }, -5},
                     {"type 8s, four channels", [](I& a) { a.type = zeb8s, a.ch = 4; }, -12},
                     {"four channels, sigma 0", [](I& a) { a.ch = 4, a.sigma = 0; }, -47},
                     {"sigma 0, border 9", [](I& a) { a.sigma = 0, a.bt = 9; }, -5},
                     {"sigma -2", [](I& a) { a.sigma = -2; }, -5},
                     {"sigma NaN", [nan](I& a) { a.sigma = nan; }, -5},
                     {"border 2", [](I& a) { a.bt = 2; }, -225},
                     {"border 4", [](I& a) { a.bt = 4; }, -225},
                     {"border 256 + 1", [](I& a) { a.bt = 257; }, -225},
                     {"border 16 + 1", [](I& a) { a.bt = 17; }, 0},
                     {"border 240 + 6, 16s", [](I& a) { a.bt = 246, a.type = zeb16s; }, 0},
                     {"border 32, 32f C3 length 9", [](I& a) { a.bt = 32, a.type = zeb32f, a.ch = 3, a.k = 9; }, 0},
                     // A negative odd length passes as unsigned and builds no table.
                     {"length -3", [](I& a) { a.k = Zeb32u(-3); }, 0},
                 }});
}

template <class T>
struct FilterArgs {
    const T* src;
    int ss;
    T* dst;
    int ds;
    ZebiSize roi;
    const T* value;
    unsigned char* spec;
    Zeb8u* buf;
};

// One table per member; the kernel setup is built in the valid call and
// corrupted by some cases (the filters check its length, border and type).
template <class T, class Fn>
void filter_checks(const char* name, Fn* const* tbl, int ch) {
    using F = FilterArgs<T>;
    const int row = kRoi.width * ch * int(sizeof(T));
    auto field = [](int index, int32_t value) {
        return [index, value](F& a) { std::memcpy(a.spec + 4 * index, &value, 4); };
    };
    std::vector<zt::checks::Case<F>> cases = {
        {"null src, width 0", [](F& a) { a.src = nullptr, a.roi.width = 0; }, -8},
        {"null dst", [](F& a) { a.dst = nullptr; }, -8},
        {"null buffer", [](F& a) { a.buf = nullptr; }, -8},
        {"null spec", [](F& a) { a.spec = nullptr; }, -8},
        {"src step one short, height 0", [row](F& a) { a.ss = row - 1, a.roi.height = 0; }, -14},
        {"dst step one sample short", [row](F& a) { a.ds = row - int(sizeof(T)); }, -14},
        {"height -1", [](F& a) { a.roi.height = -1; }, -6},
        {"odd step, spec length 4", [](F& a) { a.ss += 1, std::memset(a.spec, 0, 4), a.spec[0] = 4; },
         sizeof(T) == 1 ? -5 : -108},
        {"spec length 4, border 2", [](F& a) { a.spec[0] = 4, a.spec[12] = 2; }, -5},
        {"spec length -3", field(0, -3), -5},
        {"spec border 3, type 8s", [](F& a) { a.spec[12] = 3, a.spec[8] = zeb8s; }, -225},
        {"spec of another type", field(2, std::is_same_v<T, float> ? zeb8u : zeb32f), -12},
        {"1x1",
         [](F& a) {
             a.roi = {1, 1};
         },
         0},
    };
    if (ch == 3) cases.push_back({"null border values", [](F& a) { a.value = nullptr; }, -8});
    zt::checks::run(
        Table<F>{name,
                 [ch](Arena& m) {
                     int specBytes = 0, bufBytes = 0;
                     EXPECT_EQ(zebiFilterGaussianGetBufferSize(kRoi, 5, data_type<T>(), ch, &specBytes, &bufBytes), 0);
                     auto src = m.image<T>("src", kRoi.width, kRoi.height, ch, 8);
                     auto dst = m.image<T>("dst", kRoi.width, kRoi.height, ch, 8);
                     F a{src.ptr,
                         src.step,
                         dst.ptr,
                         dst.step,
                         kRoi,
                         m.array<T>("border values", 3),
                         m.block("spec", specBytes),
                         m.block("buffer", bufBytes)};
                     EXPECT_EQ(zebiFilterGaussianInit(kRoi, 5, 1.2f, 1, data_type<T>(), ch,
                                                      reinterpret_cast<ZebFilterGaussianSpec*>(a.spec), a.buf),
                               0);
                     return a;
                 },
                 [tbl](int v, F& a) {
                     return call<T>(tbl, v, a.src, a.ss, a.dst, a.ds, a.roi, a.value,
                                    reinterpret_cast<const ZebFilterGaussianSpec*>(a.spec), a.buf);
                 },
                 cases});
}

ZT_TARGET_SUITE(GaussianChecks);

TEST_P(GaussianChecks, FilterOrder) {
    filter_checks<Zeb8u>("zebiFilterGaussianBorder_8u_C1R", zeb_tbl_zebiFilterGaussianBorder_8u_C1R, 1);
    filter_checks<Zeb8u>("zebiFilterGaussianBorder_8u_C3R", zeb_tbl_zebiFilterGaussianBorder_8u_C3R, 3);
    filter_checks<Zeb16u>("zebiFilterGaussianBorder_16u_C1R", zeb_tbl_zebiFilterGaussianBorder_16u_C1R, 1);
    filter_checks<Zeb16u>("zebiFilterGaussianBorder_16u_C3R", zeb_tbl_zebiFilterGaussianBorder_16u_C3R, 3);
    filter_checks<Zeb16s>("zebiFilterGaussianBorder_16s_C1R", zeb_tbl_zebiFilterGaussianBorder_16s_C1R, 1);
    filter_checks<Zeb16s>("zebiFilterGaussianBorder_16s_C3R", zeb_tbl_zebiFilterGaussianBorder_16s_C3R, 3);
    filter_checks<Zeb32f>("zebiFilterGaussianBorder_32f_C1R", zeb_tbl_zebiFilterGaussianBorder_32f_C1R, 1);
    filter_checks<Zeb32f>("zebiFilterGaussianBorder_32f_C3R", zeb_tbl_zebiFilterGaussianBorder_32f_C3R, 3);
}

TEST_P(GaussianChecks, OlderFilterOrder) {
    struct A {
        const float* src;
        int ss;
        float* dst;
        int ds;
        ZebiSize roi;
        int k;
        float sigma;
        int bt;
        Zeb8u* buf;
    };
    const int row = kRoi.width * 4;
    zt::checks::run(
        Table<A>{"zebiFilterGaussBorder_32f_C1R",
                 [](Arena& m) {
                     int bytes = 0;
                     EXPECT_EQ(zebiFilterGaussGetBufferSize_32f_C1R(kRoi, 5, &bytes), 0);
                     auto src = m.image<float>("src", kRoi.width, kRoi.height, 1, 8);
                     auto dst = m.image<float>("dst", kRoi.width, kRoi.height, 1, 8);
                     return A{src.ptr, src.step, dst.ptr, dst.step, kRoi, 5, 1.f, 1, m.block("buffer", bytes)};
                 },
                 [](int v, A& a) {
                     return zeb_tbl_zebiFilterGaussBorder_32f_C1R[v](a.src, a.ss, a.dst, a.ds, a.roi, a.k, a.sigma,
                                                                     a.bt, 0.f, a.buf);
                 },
                 {
                     {"null src, width 0, length 4", [](A& a) { a.src = nullptr, a.roi.width = 0, a.k = 4; }, -8},
                     {"null dst", [](A& a) { a.dst = nullptr; }, -8},
                     {"null buffer", [](A& a) { a.buf = nullptr; }, -8},
                     {"short step, height 0", [row](A& a) { a.ss = row - 1, a.roi.height = 0; }, -14},
                     {"height -1, length 4", [](A& a) { a.roi.height = -1, a.k = 4; }, -6},
                     {"step not a multiple of 4, length 4", [](A& a) { a.ds += 2, a.k = 4; }, -108},
                     {"length 4, border 3", [](A& a) { a.k = 4, a.bt = 3; }, -5},
                     {"sigma 0, border 3", [](A& a) { a.sigma = 0, a.bt = 3; }, -5},
                     {"border 3", [](A& a) { a.bt = 3; }, -225},
                     {"border 16 + 8", [](A& a) { a.bt = 24; }, -225},
                     {"border 0", [](A& a) { a.bt = 0; }, 0},
                 }});
}

// ---- definitions ----

// Source pixel (x, y, c) of the ROI under the border: sides in memory are
// read from the image, the others take the border value (mode 0) or the
// nearest edge pixel (mode 1); a row outside the ROI that is not in memory
// is wholly border.
template <class T>
struct Source {
    const Image<T>* img;
    int mx, my, w, h, ch, bt;
    const T* value;
    T at(int x, int y, int c) const {
        const int mode = (bt & 0xf) == 6 ? 1 : bt & 0xf;
        const bool all = (bt & 0xf) == 6;
        const bool top = all || (bt & 16), bottom = all || (bt & 32), left = all || (bt & 64),
                   right = all || (bt & 128);
        if ((y < 0 && !top) || (y >= h && !bottom)) {
            if (mode == 0) return value[c];
            y = std::clamp(y, 0, h - 1);
        }
        if ((x < 0 && !left) || (x >= w && !right)) {
            if (mode == 0) return value[c];
            x = std::clamp(x, 0, w - 1);
        }
        return img->at(x + mx, y + my, c);
    }
};

template <class T>
std::vector<T> definition(const Source<T>& s, const Prepared& p, int k) {
    const int a = k / 2, w = s.w, h = s.h, ch = s.ch;
    using M = std::conditional_t<std::is_same_v<T, uint8_t>, uint32_t, T>;
    // Filtered rows y - a .. y + a of every output row.
    std::vector<M> mid(std::size_t(h + k - 1) * w * ch);
    auto midAt = [&](int x, int y, int c) -> M& { return mid[(std::size_t(y + a) * w + x) * ch + c]; };
    for (int y = -a; y < h + k - 1 - a; ++y)
        for (int x = 0; x < w; ++x)
            for (int c = 0; c < ch; ++c) {
                auto v = [&](int i) { return s.at(x - a + i, y, c); };
                if constexpr (std::is_same_v<T, float>) {
                    float acc = p.real(0) * v(0);
                    for (int i = 1; i < k; ++i) acc = acc + p.real(i) * v(i);
                    midAt(x, y, c) = acc;
                } else if constexpr (std::is_same_v<T, uint8_t>) {
                    uint32_t acc = (uint32_t(v(a)) * p.fixed(a)) >> 5;
                    for (int i = 0; i < a; ++i) acc += ((uint32_t(v(i)) + v(k - 1 - i)) * p.fixed(i)) >> 5;
                    midAt(x, y, c) = acc;
                } else {
                    float acc = float(p.fixed(0)) * float(v(0));
                    for (int i = 1; i < k; ++i) acc = acc + float(p.fixed(i)) * float(v(i));
                    acc = std::clamp(acc * (1.0f / 32768.0f), float(std::numeric_limits<T>::lowest()),
                                     float(std::numeric_limits<T>::max()));
                    midAt(x, y, c) = T(std::nearbyint(acc));
                }
            }
    std::vector<T> out(std::size_t(h) * w * ch);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            for (int c = 0; c < ch; ++c) {
                auto m = [&](int j) { return midAt(x, y - a + j, c); };
                T& o = out[(std::size_t(y) * w + x) * ch + c];
                if constexpr (std::is_same_v<T, float>) {
                    float acc = p.real(0) * m(0);
                    for (int j = 1; j < k; ++j) acc = acc + p.real(j) * m(j);
                    o = acc;
                } else if constexpr (std::is_same_v<T, uint8_t>) {
                    uint32_t acc = (m(a) * p.fixed(a)) >> 13;
                    for (int j = 0; j < a; ++j) acc += (((m(j) + m(k - 1 - j) + 1) >> 1) * p.fixed(j)) >> 12;
                    o = T(std::min<uint32_t>((acc + 32) >> 6, 255));
                } else {
                    float acc = float(p.fixed(0)) * float(m(0));
                    for (int j = 1; j < k; ++j) acc = acc + float(p.fixed(j)) * float(m(j));
                    acc = std::clamp(acc * (1.0f / 32768.0f), float(std::numeric_limits<T>::lowest()),
                                     float(std::numeric_limits<T>::max()));
                    o = T(std::nearbyint(acc));
                }
            }
    return out;
}

template <class T, class Fn>
void check_gauss(Fn* const* tbl, int ch, int variant, int w, int h, int k, float sigma, int bt) {
    const int a = k / 2;
    // Margins of a pixels hold readable noise for the sides in memory; the
    // guard page follows the bottom-right margin.
    Image<T> src(w + 2 * a, h + 2 * a, ch, int(sizeof(T)) * ((w + h) % 3));
    Image<T> dst(w, h, ch, int(sizeof(T)) * (w % 2));
    const T value[3] = {zt::random_value<T>(), zt::random_value<T>(), zt::random_value<T>()};
    auto p = prepare({w, h}, k, sigma, bt, data_type<T>(), ch);
    const T* roi = &src.at(a, a);
    ASSERT_EQ(call<T>(tbl, variant, roi, src.step(), dst.ptr(), dst.step(), {w, h}, value, p->s(), p->buf.data()), 0);
    const std::vector<T> want = definition(Source<T>{&src, a, a, w, h, ch, bt, value}, *p, k);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w * ch; ++x) {
            const T got = dst.row(y)[x], exp = want[std::size_t(y) * w * ch + x];
            ASSERT_EQ(std::memcmp(&got, &exp, sizeof(T)), 0)
                << "variant " << variant << " w=" << w << " h=" << h << " k=" << k << " bt=" << bt << " x=" << x
                << " y=" << y << " want " << +exp << " got " << +got;
        }
}

// Widths and heights around the vector blocks and the strips, borders with
// every combination of sides in memory, short and long kernels (a kernel of
// 15 over 61 rows runs many strips through the ring).
template <class T, class Fn>
void sweep_gauss(Fn* const* tbl, int ch) {
    const int borders[] = {0, 1, 6, 16 | 1, 32, 64 | 1, 128, 16 | 64, 240 | 1};
    int turn = 0;
    for (int v = 0; v < 2; ++v) {
        for (int w : zt::test_widths())
            for (int h : {1, 2, 6, 23})
                for (int k : {3, 5, 9})
                    check_gauss<T>(tbl, ch, v, w, h, k, 0.6f + 0.4f * float(k), borders[turn++ % 9]);
        check_gauss<T>(tbl, ch, v, 45, 61, 15, 4.f, borders[turn++ % 9]);
    }
}

ZT_TARGET_SUITE(GaussianFilter);

TEST_P(GaussianFilter, EightBitMatchesDefinition) {
    sweep_gauss<uint8_t>(zeb_tbl_zebiFilterGaussianBorder_8u_C1R, 1);
    sweep_gauss<uint8_t>(zeb_tbl_zebiFilterGaussianBorder_8u_C3R, 3);
}
TEST_P(GaussianFilter, SixteenBitMatchesDefinition) {
    sweep_gauss<uint16_t>(zeb_tbl_zebiFilterGaussianBorder_16u_C1R, 1);
    sweep_gauss<uint16_t>(zeb_tbl_zebiFilterGaussianBorder_16u_C3R, 3);
    sweep_gauss<int16_t>(zeb_tbl_zebiFilterGaussianBorder_16s_C1R, 1);
    sweep_gauss<int16_t>(zeb_tbl_zebiFilterGaussianBorder_16s_C3R, 3);
}
TEST_P(GaussianFilter, FloatMatchesDefinition) {
    sweep_gauss<float>(zeb_tbl_zebiFilterGaussianBorder_32f_C1R, 1);
    sweep_gauss<float>(zeb_tbl_zebiFilterGaussianBorder_32f_C3R, 3);
}

// The older interface gives the prepared 32f filter's results.
TEST_P(GaussianFilter, OlderInterfaceMatchesPreparedFilter) {
    for (int v = 0; v < 2; ++v)
        for (int bt : {0, 1, 6, 32 | 1})
            for (int k : {3, 7}) {
                const int w = 53, h = 19, a = k / 2;
                Image<float> src(w + 2 * a, h + 2 * a), d1(w, h), d2(w, h);
                auto prep = prepare({w, h}, k, 1.3f, bt, zeb32f, 1);
                const float* roi = &src.at(a, a);
                ASSERT_EQ(zeb_tbl_zebiFilterGaussianBorder_32f_C1R[v](roi, src.step(), d1.ptr(), d1.step(), {w, h},
                                                                      7.5f, prep->s(), prep->buf.data()),
                          0);
                int size = 0;
                ASSERT_EQ(zebiFilterGaussGetBufferSize_32f_C1R({w, h}, k, &size), 0);
                zt::Guarded buf(size);
                ASSERT_EQ(zeb_tbl_zebiFilterGaussBorder_32f_C1R[v](roi, src.step(), d2.ptr(), d2.step(), {w, h}, k,
                                                                   1.3f, bt, 7.5f, buf.data()),
                          0);
                EXPECT_EQ(d1.pixels(), d2.pixels()) << "variant " << v << " bt=" << bt << " k=" << k;
            }
}

// ---- OpenCV ----

// A photograph (grey for one channel) as a guarded image of type T, scaled
// to use the 16-bit range.
template <class T>
Image<T> photo(const char* file, int ch) {
    cv::Mat m = cv::imread(std::string("/usr/share/doc/opencv-doc/examples/data/") + file,
                           ch == 1 ? cv::IMREAD_GRAYSCALE : cv::IMREAD_COLOR);
    EXPECT_FALSE(m.empty()) << file;
    if (m.empty()) m = cv::Mat(64, 64, CV_8UC(ch), cv::Scalar::all(77));
    Image<T> img(m.cols, m.rows, ch, 4 * int(sizeof(T)));
    const double scale = std::is_same_v<T, uint16_t> ? 257 : std::is_same_v<T, int16_t> ? 128 : 1;
    const double shift = std::is_same_v<T, int16_t> ? -16384 : 0;
    m.convertTo(img.mat(), zt::CvDepth<T>::v, scale, shift);
    return img;
}

// Differences from OpenCV's GaussianBlur on photographs (same length, sigma
// and border, border value 0), both on the same type and on the image
// converted to double (OpenCV then filters in double precision, our
// accuracy yardstick). Allowed: one unit, plus for the 15-bit fixed-point
// coefficients of the 16-bit types their quantisation times the largest
// sample in each of the two passes (OpenCV filters 16-bit data with exact
// float coefficients); 2e-4 for floats (pixels up to 255; single- against
// double-precision kernels). Against OpenCV's own 8u filter, whose kernels
// carry 8 fraction bits, long kernels (k > 7) may differ by two.
template <class T, class Fn>
void expect_near_opencv(Fn* const* tbl, int ch, int k, float sigma, int bt) {
    const Image<T> src = photo<T>(ch == 1 ? "baboon.jpg" : "fruits.jpg", ch);
    const int w = src.width(), h = src.height();
    Image<T> dst(w, h, ch);
    const T zero[3] = {0, 0, 0};
    auto p = prepare({w, h}, k, sigma, bt, data_type<T>(), ch);
    ASSERT_EQ(call<T>(tbl, 0, src.ptr(), src.step(), dst.ptr(), dst.step(), {w, h}, zero, p->s(), p->buf.data()), 0);
    const int cvBorder = bt == 1 ? cv::BORDER_REPLICATE : cv::BORDER_CONSTANT;
    cv::Mat want, src64, want64, dst64;
    cv::GaussianBlur(src.mat(), want, cv::Size(k, k), sigma, sigma, cvBorder);
    src.mat().convertTo(src64, CV_64F);
    cv::GaussianBlur(src64, want64, cv::Size(k, k), sigma, sigma, cvBorder);
    if constexpr (!std::is_same_v<T, float>)
        want64.forEach<double>([](double& v, const int*) { v = std::nearbyint(v); });
    dst.mat().convertTo(dst64, CV_64F);
    double allowed = 1, peak = 0;
    cv::minMaxLoc(cv::abs(src64), nullptr, &peak);
    if constexpr (std::is_same_v<T, float>) {
        allowed = 2e-4;
    } else if constexpr (sizeof(T) == 2) {
        const cv::Mat g = cv::getGaussianKernel(k, sigma, CV_64F);
        double quant = 0;
        for (int i = 0; i < k; ++i) quant += std::fabs(p->fixed(i) - 32768.0 * g.at<double>(i));
        allowed = 1 + 2 * quant / 32768.0 * peak;
    }
    EXPECT_LE(cv::norm(want64, dst64, cv::NORM_INF), allowed)
        << "vs double: k=" << k << " sigma=" << sigma << " bt=" << bt << " ch=" << ch;
    if (std::is_same_v<T, uint8_t> && k > 7) allowed = 2;
    EXPECT_LE(cv::norm(want, dst.mat(), cv::NORM_INF), allowed)
        << "k=" << k << " sigma=" << sigma << " bt=" << bt << " ch=" << ch;
}

ZT_TARGET_SUITE(GaussianOpenCV);

TEST_P(GaussianOpenCV, IntegerTypesOnPhotographs) {
    for (int bt : {0, 1})
        for (int k : {3, 5, 7, 13}) {
            const float sigma = 0.3f * ((k - 1) * 0.5f - 1) + 0.8f + 0.37f;
            expect_near_opencv<uint8_t>(zeb_tbl_zebiFilterGaussianBorder_8u_C1R, 1, k, sigma, bt);
            expect_near_opencv<uint8_t>(zeb_tbl_zebiFilterGaussianBorder_8u_C3R, 3, k, sigma, bt);
            expect_near_opencv<uint16_t>(zeb_tbl_zebiFilterGaussianBorder_16u_C1R, 1, k, sigma, bt);
            expect_near_opencv<uint16_t>(zeb_tbl_zebiFilterGaussianBorder_16u_C3R, 3, k, sigma, bt);
            expect_near_opencv<int16_t>(zeb_tbl_zebiFilterGaussianBorder_16s_C1R, 1, k, sigma, bt);
            expect_near_opencv<int16_t>(zeb_tbl_zebiFilterGaussianBorder_16s_C3R, 3, k, sigma, bt);
        }
}

TEST_P(GaussianOpenCV, FloatOnPhotographs) {
    for (int bt : {0, 1})
        for (int k : {3, 5, 11}) {
            expect_near_opencv<float>(zeb_tbl_zebiFilterGaussianBorder_32f_C1R, 1, k, 2.5f, bt);
            expect_near_opencv<float>(zeb_tbl_zebiFilterGaussianBorder_32f_C3R, 3, k, 1.1f, bt);
        }
}

}  // namespace

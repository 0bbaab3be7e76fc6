// Extrema with positions: every variant and instruction-set path against a
// plain scan in row order (strict comparisons, so first occurrences win),
// on data full of ties, NaN and signed zeros; the edge cases; OpenCV's
// minMaxLoc as the independent oracle.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <opencv2/core.hpp>

#include "harness.h"
#include "stats_test_util.h"

#define ZT_MINMAX_TABLES(c)                       \
    ZEB_TEST_TABLE(zebiMinMaxIndx_##c##_C1R);     \
    ZEB_TEST_TABLE(zebiMinMaxIndx_##c##_C1MR);    \
    ZEB_TEST_TABLE(zebiMinMaxIndx_##c##_C3CR);    \
    ZEB_TEST_TABLE(zebiMinMaxIndx_##c##_C3CMR)
ZT_MINMAX_TABLES(8u);
ZT_MINMAX_TABLES(8s);
ZT_MINMAX_TABLES(16u);
ZT_MINMAX_TABLES(32f);

namespace {

using zst::Image;

struct Ext {
    float mn = 0, mx = 0;
    ZebiPoint imn{0, 0}, imx{0, 0};
};

template <class T>
struct Fns;
#define ZT_FNS(T, c)                                                                                              \
    template <>                                                                                                   \
    struct Fns<T> {                                                                                               \
        static ZebStatus call(int v, const Image<T>& s, const Image<uint8_t>* m, int coi, Ext& e) {              \
            if (s.channels() == 3)                                                                                \
                return m ? zeb_tbl_zebiMinMaxIndx_##c##_C3CMR[v](s.ptr(), s.step(), m->ptr(), m->step(), s.size(), \
                                                                 coi, &e.mn, &e.mx, &e.imn, &e.imx)               \
                         : zeb_tbl_zebiMinMaxIndx_##c##_C3CR[v](s.ptr(), s.step(), s.size(), coi, &e.mn, &e.mx,  \
                                                                &e.imn, &e.imx);                                  \
            return m ? zeb_tbl_zebiMinMaxIndx_##c##_C1MR[v](s.ptr(), s.step(), m->ptr(), m->step(), s.size(),     \
                                                            &e.mn, &e.mx, &e.imn, &e.imx)                         \
                     : zeb_tbl_zebiMinMaxIndx_##c##_C1R[v](s.ptr(), s.step(), s.size(), &e.mn, &e.mx, &e.imn,     \
                                                           &e.imx);                                               \
        }                                                                                                         \
    };
ZT_FNS(uint8_t, 8u)
ZT_FNS(int8_t, 8s)
ZT_FNS(uint16_t, 16u)
ZT_FNS(float, 32f)

// The definition: one scan in row order, strict comparisons, NaN skipped.
template <class T>
Ext scan(const Image<T>& s, const Image<uint8_t>* m, int c) {
    Ext e;
    bool found = false;
    for (int y = 0; y < s.height(); ++y)
        for (int x = 0; x < s.width(); ++x) {
            if (m && !m->at(x, y)) continue;
            const T v = s.at(x, y, c);
            if constexpr (std::is_floating_point_v<T>)
                if (std::isnan(v)) continue;
            if (!found || v < T(e.mn)) e.mn = float(v), e.imn = {x, y};
            if (!found || v > T(e.mx)) e.mx = float(v), e.imx = {x, y};
            found = true;
        }
    return e;
}

bool same(const Ext& a, const Ext& b) {
    return zt::same_bits(a.mn, b.mn) && zt::same_bits(a.mx, b.mx) && a.imn.x == b.imn.x && a.imn.y == b.imn.y &&
           a.imx.x == b.imx.x && a.imx.y == b.imx.y;
}

std::string show(const Ext& e) {
    return "min " + std::to_string(e.mn) + " at (" + std::to_string(e.imn.x) + "," + std::to_string(e.imn.y) +
           ") max " + std::to_string(e.mx) + " at (" + std::to_string(e.imx.x) + "," + std::to_string(e.imx.y) + ")";
}

// Values from a narrow range (many ties), sprinkled for floats with NaN,
// infinities and zeros of both signs.
template <class T>
void fill_tricky(Image<T>& s, int variant) {
    if (variant == 0) return;  // full random range
    if constexpr (std::is_floating_point_v<T>) {
        const float specials[] = {0.f, -0.f, std::numeric_limits<float>::quiet_NaN(), 1.f, -1.f,
                                  std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity()};
        for (int y = 0; y < s.height(); ++y)
            for (int x = 0; x < s.width() * s.channels(); ++x) {
                const unsigned r = zt::rng()() % 16;
                s.row(y)[x] = variant == 1 ? specials[r % 4] : (r < 7 ? specials[r] : float(int(r) - 10));
            }
    } else {
        const double lo = std::numeric_limits<T>::min(), hi = std::numeric_limits<T>::max();
        if (variant == 1)
            zst::fill_range(s, lo, lo + 2);
        else
            zst::fill_range(s, hi - 2, hi);
    }
}

template <class T>
void sweep_type() {
    zst::sweep(sizeof(T), [&](const zt::Path& p, int w, int pad) {
        for (int ch : {1, 3})
            for (int h : {1, 3, 6})
                for (int kind = 0; kind < 3; ++kind) {
                    Image<T> s(w, h, ch, pad);
                    fill_tricky(s, kind);
                    Image<uint8_t> m(w, h, 1, 2);
                    zst::fill_mask(m, kind == 2 ? 10 : 60);
                    for (int coi = 1; coi <= ch; ++coi)
                        for (const Image<uint8_t>* mk : {static_cast<const Image<uint8_t>*>(nullptr), static_cast<const Image<uint8_t>*>(&m)}) {
                            Ext got;
                            got.mn = got.mx = -7;
                            ASSERT_EQ(Fns<T>::call(p.variant, s, mk, coi, got), zebStsNoErr);
                            const Ext want = scan(s, mk, coi - 1);
                            ASSERT_TRUE(same(got, want))
                                << p.name() << " w=" << w << " h=" << h << " pad=" << pad << " ch=" << ch
                                << " coi=" << coi << " kind=" << kind << (mk ? " masked" : "") << "\n got  "
                                << show(got) << "\n want " << show(want);
                        }
                }
    });
    // Rows longer than a chunk of copied channel values.
    for (const zt::Path& p : zt::all_paths()) {
        zt::IsaScope isa(p.isa);
        Image<T> s(2100, 4, 3);
        fill_tricky(s, 1);
        Image<uint8_t> m(2100, 4);
        zst::fill_mask(m);
        for (int coi = 1; coi <= 3; ++coi) {
            Ext got;
            ASSERT_EQ(Fns<T>::call(p.variant, s, &m, coi, got), 0);
            ASSERT_TRUE(same(got, scan(s, &m, coi - 1))) << p.name() << " wide coi " << coi;
        }
    }
}

TEST(MinMaxIndx, AllPathsMatchDefinition8u) { sweep_type<uint8_t>(); }
TEST(MinMaxIndx, AllPathsMatchDefinition8s) { sweep_type<int8_t>(); }
TEST(MinMaxIndx, AllPathsMatchDefinition16u) { sweep_type<uint16_t>(); }
TEST(MinMaxIndx, AllPathsMatchDefinition32f) { sweep_type<float>(); }

TEST(MinMaxIndx, FirstOccurrenceAndEmptySelection) {
    for (const zt::Path& p : zt::all_paths()) {
        zt::IsaScope isa(p.isa);
        Image<uint16_t> s(40, 6);
        s.fill(500);
        s.at(5, 2) = 3;
        s.at(1, 3) = 3;  // lower row, further left: the row wins
        s.at(30, 4) = 900;
        s.at(7, 4) = 900;  // same row: the leftmost wins
        Ext e;
        ASSERT_EQ(Fns<uint16_t>::call(p.variant, s, nullptr, 1, e), 0);
        EXPECT_EQ(e.mn, 3.f);
        EXPECT_EQ(e.imn.x, 5);
        EXPECT_EQ(e.imn.y, 2);
        EXPECT_EQ(e.mx, 900.f);
        EXPECT_EQ(e.imx.x, 7);
        EXPECT_EQ(e.imx.y, 4);
        // Masked: the masked-out minimum of row 2 no longer counts.
        Image<uint8_t> m(40, 6);
        m.fill(1);
        m.at(5, 2) = 0;
        ASSERT_EQ(Fns<uint16_t>::call(p.variant, s, &m, 1, e), 0);
        EXPECT_EQ(e.imn.x, 1);
        EXPECT_EQ(e.imn.y, 3);
        // Nothing selected: zeros everywhere, success.
        m.fill(0);
        Ext z;
        z.mn = z.mx = 9;
        z.imn = z.imx = {9, 9};
        ASSERT_EQ(Fns<uint16_t>::call(p.variant, s, &m, 1, z), 0);
        EXPECT_TRUE(same(z, Ext{})) << show(z);
        // A float image of NaN only is treated like an empty selection.
        Image<float> f(33, 2, 3);
        f.fill(std::numeric_limits<float>::quiet_NaN());
        ASSERT_EQ(Fns<float>::call(p.variant, f, nullptr, 3, z), 0);
        EXPECT_TRUE(same(z, Ext{})) << show(z);
        // Null outputs are skipped; the rest are written.
        Image<int8_t> b(70, 3);
        const Ext want = scan(b, nullptr, 0);
        float mx = 0;
        ZebiPoint imn{-1, -1};
        ASSERT_EQ(zeb_tbl_zebiMinMaxIndx_8s_C1R[p.variant](b.ptr(), b.step(), b.size(), nullptr, &mx, &imn, nullptr),
                  0);
        EXPECT_EQ(mx, want.mx);
        EXPECT_EQ(imn.x, want.imn.x);
        EXPECT_EQ(imn.y, want.imn.y);
    }
}

// OpenCV's minMaxLoc scans in row order and keeps the first occurrence too,
// so values and positions agree exactly (NaN-free data).
template <class T>
void against_opencv(double lo, double hi) {
    for (int ch : {1, 3}) {
        Image<T> s(1920, 1080, ch, 2 * int(sizeof(T)));
        zst::fill_range(s, lo, hi);
        Image<uint8_t> m(1920, 1080, 1, 3);
        zst::fill_mask(m, 50);
        for (int coi = 1; coi <= ch; ++coi) {
            const cv::Mat c = zst::channel_mat(s, coi - 1);
            for (bool masked : {false, true}) {
                double mn, mx;
                cv::Point pmn, pmx;
                cv::minMaxLoc(c, &mn, &mx, &pmn, &pmx, masked ? m.mat() : cv::noArray());
                Ext e;
                ASSERT_EQ(Fns<T>::call(zeb_cpu_variant, s, masked ? &m : nullptr, coi, e), 0);
                EXPECT_EQ(double(e.mn), mn) << ch << coi << masked;
                EXPECT_EQ(double(e.mx), mx) << ch << coi << masked;
                EXPECT_EQ(e.imn.x, pmn.x) << ch << coi << masked;
                EXPECT_EQ(e.imn.y, pmn.y) << ch << coi << masked;
                EXPECT_EQ(e.imx.x, pmx.x) << ch << coi << masked;
                EXPECT_EQ(e.imx.y, pmx.y) << ch << coi << masked;
            }
        }
    }
}

TEST(MinMaxIndx, AgreesWithOpenCV) {
    against_opencv<uint8_t>(0, 255);
    against_opencv<int8_t>(-128, 127);
    against_opencv<uint16_t>(0, 65535);
    against_opencv<float>(-1000, 1000);
    against_opencv<uint8_t>(10, 12);  // ties everywhere
}

}  // namespace

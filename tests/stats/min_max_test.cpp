// SPDX-License-Identifier: Apache-2.0
// Extrema with positions, on every vector target and both variants: a plain
// scan in row order (strict comparisons, so first occurrences win) on data
// full of ties, NaN and signed zeros; the edge cases; OpenCV's minMaxLoc on
// random images and photographs.
#include <limits>

#include "stats_support.h"

namespace {

using zst::Image;

ZT_TARGET_SUITE(MinMaxIndx);

struct Ext {
    float mn = 0, mx = 0;
    ZebiPoint imn{0, 0}, imx{0, 0};
    bool operator==(const Ext& o) const {
        return zt::same_bits(mn, o.mn) && zt::same_bits(mx, o.mx) && imn.x == o.imn.x && imn.y == o.imn.y &&
               imx.x == o.imx.x && imx.y == o.imx.y;
    }
};

std::ostream& operator<<(std::ostream& os, const Ext& e) {
    return os << "min " << e.mn << " at (" << e.imn.x << "," << e.imn.y << ") max " << e.mx << " at (" << e.imx.x << ","
              << e.imx.y << ")";
}

template <class T>
ZebStatus call(int v, const Image<T>& s, const Image<uint8_t>* m, int coi, Ext& e) {
    return zst::run<T>("zebiMinMaxIndx", v, s, nullptr, m, {&e.mn, &e.mx, &e.imn, &e.imx}, coi);
}

// The definition: one scan in row order, strict comparisons, NaN skipped.
template <class T>
Ext scan(const Image<T>& s, const Image<uint8_t>* m, int c) {
    Ext e;
    bool found = false;
    for (int y = 0; y < s.height(); ++y)
        for (int x = 0; x < s.width(); ++x) {
            const T v = s.at(x, y, c);
            if ((m && !m->at(x, y)) || v != v) continue;
            if (!found || v < T(e.mn)) e.mn = float(v), e.imn = {x, y};
            if (!found || v > T(e.mx)) e.mx = float(v), e.imx = {x, y};
            found = true;
        }
    return e;
}

// Every channel, with and without the mask: the definition, and OpenCV
// where the data is NaN-free (minMaxLoc keeps first occurrences too).
template <class T>
void check(int v, const Image<T>& s, const Image<uint8_t>& m, bool opencv, const std::string& what) {
    for (int coi = 1; coi <= s.channels(); ++coi)
        for (const Image<uint8_t>* mk : {(const Image<uint8_t>*)nullptr, &m}) {
            Ext got{-7, -7, {-7, -7}, {-7, -7}}, want = scan(s, mk, coi - 1);
            ASSERT_EQ(call(v, s, mk, coi, got), zebStsNoErr);
            if (opencv) {
                double mn, mx;
                cv::Point pmn, pmx;
                cv::minMaxLoc(zst::channel_mat(s, coi - 1), &mn, &mx, &pmn, &pmx, mk ? m.mat() : cv::noArray());
                EXPECT_EQ(want, (Ext{float(mn), float(mx), {pmn.x, pmn.y}, {pmx.x, pmx.y}})) << what;
            }
            ASSERT_EQ(got, want) << what << " variant " << v << " coi " << coi << (mk ? " masked" : "");
        }
}

// Kind 0: the full random range; 1 and 2: values from a narrow range at
// either end of the type (many ties), for floats sprinkled with NaN,
// infinities and zeros of both signs.
template <class T>
void fill_tricky(Image<T>& s, int kind) {
    if constexpr (std::is_floating_point_v<T>) {
        const float inf = std::numeric_limits<float>::infinity();
        const float specials[] = {0.f, -0.f, std::numeric_limits<float>::quiet_NaN(), 1.f, -1.f, inf, -inf};
        for (int y = 0; y < s.height(); ++y)
            for (int x = 0; x < s.width() * s.channels(); ++x) {
                const unsigned r = zt::rng()() % 16;
                s.row(y)[x] = kind == 1 ? specials[r % 4] : (r < 7 ? specials[r] : float(int(r) - 10));
            }
    } else {
        const double lo = std::numeric_limits<T>::min(), hi = std::numeric_limits<T>::max();
        zst::fill_range(s, kind == 1 ? lo : hi - 2, kind == 1 ? lo + 2 : hi);
    }
}

// Every shape and a row longer than a chunk of one channel.
template <class T>
void sweep_type() {
    zst::sweep_images<T>([](int v, Image<T>& s, Image<uint8_t>& m, const std::string& what) {
        check(v, s, m, false, what + " random");
        for (int kind = 1; kind < 3; ++kind) {
            fill_tricky(s, kind);
            if (kind == 2) zst::fill_mask(m, 10);
            check(v, s, m, false, what + " kind=" + std::to_string(kind));
        }
    });
    Image<T> s(2100, 4, 3);
    fill_tricky(s, 1);
    Image<uint8_t> m(2100, 4);
    zst::fill_mask(m);
    for (int v = 0; v < 2; ++v) check(v, s, m, false, "wide");
}

TEST_P(MinMaxIndx, MatchesDefinition8u) { sweep_type<uint8_t>(); }
TEST_P(MinMaxIndx, MatchesDefinition8s) { sweep_type<int8_t>(); }
TEST_P(MinMaxIndx, MatchesDefinition16u) { sweep_type<uint16_t>(); }
TEST_P(MinMaxIndx, MatchesDefinition32f) { sweep_type<float>(); }

TEST_P(MinMaxIndx, FirstOccurrenceEmptySelectionNullOutputs) {
    for (int v = 0; v < 2; ++v) {
        Image<uint16_t> s(40, 6);
        s.fill(500);
        s.at(5, 2) = s.at(1, 3) = 3;     // lower row, further left: the row wins
        s.at(30, 4) = s.at(7, 4) = 900;  // same row: the leftmost wins
        Ext e;
        ASSERT_EQ(call(v, s, nullptr, 1, e), 0);
        EXPECT_EQ(e, (Ext{3.f, 900.f, {5, 2}, {7, 4}}));
        // Nothing selected, or a float image of NaN only: zeros, success.
        Image<uint8_t> m(40, 6);
        m.fill(0);
        Image<float> f(33, 2, 3);
        f.fill(std::numeric_limits<float>::quiet_NaN());
        for (int k = 0; k < 2; ++k) {
            Ext z{9, 9, {9, 9}, {9, 9}};
            ASSERT_EQ(k ? call(v, f, nullptr, 3, z) : call(v, s, &m, 1, z), 0);
            EXPECT_EQ(z, Ext{}) << k;
        }
        // Null outputs are skipped; the rest are written.
        Image<int8_t> b(70, 3);
        const Ext want = scan(b, nullptr, 0);
        float mx = 0;
        ZebiPoint imn{-1, -1};
        ASSERT_EQ(zst::run<int8_t>("zebiMinMaxIndx", v, b, nullptr, nullptr, {nullptr, &mx, &imn, nullptr}), 0);
        EXPECT_TRUE(mx == want.mx && imn.x == want.imn.x && imn.y == want.imn.y);
    }
}

// OpenCV on random images and on photographs (large flat areas and
// saturated highlights give many ties).
template <class T>
void against_opencv(double lo, double hi) {
    int v = 0;
    zst::for_opencv_images<T>(lo, hi, [&](const Image<T>& s, const Image<uint8_t>& m, const std::string& what) {
        check(v ^= 1, s, m, true, what);
    });
}

TEST_P(MinMaxIndx, AgreesWithOpenCV) {
    against_opencv<uint8_t>(0, 255);
    against_opencv<int8_t>(-128, 127);
    against_opencv<uint16_t>(0, 65535);
    against_opencv<float>(-1000, 1000);
}

}  // namespace

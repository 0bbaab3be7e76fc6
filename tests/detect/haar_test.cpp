// SPDX-License-Identifier: Apache-2.0
// Haar classifier stages: the object's layout as built, the window size,
// tilting after the fact, argument checks with canaries, the tie rules, and
// a two-stage cascade whose decisions are checked against sums taken
// directly from the pixels.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "check_table.h"
#include "core/zebcore_test_hooks.h"
#include "detect/haar_object.h"
#include "harness.h"

#define ZEB_HAAR_APPLY_MEMBERS(X)                \
    X(zebiApplyHaarClassifier_32f_C1R)           \
    X(zebiApplyHaarClassifier_32s32f_C1R)        \
    X(zebiApplyHaarClassifier_32s_C1RSfs)        \
    X(zebiApplyMixedHaarClassifier_32f_C1R)      \
    X(zebiApplyMixedHaarClassifier_32s32f_C1R)   \
    X(zebiApplyMixedHaarClassifier_32s_C1RSfs)

#define ZEB_DECLARE(name) ZEB_TEST_TABLE(name);
ZEB_HAAR_APPLY_MEMBERS(ZEB_DECLARE)
#undef ZEB_DECLARE
ZEB_TEST_TABLE(zebiHaarClassifierInitAlloc_32f);
ZEB_TEST_TABLE(zebiHaarClassifierInitAlloc_32s);
ZEB_TEST_TABLE(zebiTiltedHaarClassifierInitAlloc_32f);
ZEB_TEST_TABLE(zebiTiltedHaarClassifierInitAlloc_32s);
ZEB_TEST_TABLE(zebiGetHaarClassifierSize_32f);
ZEB_TEST_TABLE(zebiGetHaarClassifierSize_32s);
ZEB_TEST_TABLE(zebiHaarClassifierFree_32f);
ZEB_TEST_TABLE(zebiHaarClassifierFree_32s);
ZEB_TEST_TABLE(zebiTiltHaarFeatures_32f);
ZEB_TEST_TABLE(zebiTiltHaarFeatures_32s);
ZEB_TEST_TABLE(zebiIntegral_8u32s_C1R);
ZEB_TEST_TABLE(zebiIntegral_8u32f_C1R);
ZEB_TEST_TABLE(zebiTiltedIntegral_8u32s_C1R);
ZEB_TEST_TABLE(zebiTiltedIntegral_8u32f_C1R);

namespace {

using zt::Image;

ZT_TARGET_SUITE(HaarObject);
ZT_TARGET_SUITE(HaarApply);

// Classifiers given as the builders take them.
template <class V>
struct Spec {
    std::vector<ZebiRect> rects;
    std::vector<V> weights, thresholds, val1, val2;
    std::vector<int> num;
    // Arrays of an empty spec are still valid pointers.
    Spec() { rects.reserve(1), weights.reserve(1), thresholds.reserve(1), val1.reserve(1), val2.reserve(1), num.reserve(1); }
    void add(std::vector<ZebiRect> r, std::vector<V> w, V thr, V v1, V v2) {
        rects.insert(rects.end(), r.begin(), r.end());
        weights.insert(weights.end(), w.begin(), w.end());
        thresholds.push_back(thr), val1.push_back(v1), val2.push_back(v2), num.push_back(int(r.size()));
    }
    int length() const { return int(num.size()); }
};

template <class V>
using Obj = zeb::haar::Object<V>;

ZebiHaarClassifier_32f* build(int v, const Spec<float>& s, bool tilted = false) {
    ZebiHaarClassifier_32f* p = nullptr;
    auto f = tilted ? zeb_tbl_zebiTiltedHaarClassifierInitAlloc_32f[v] : zeb_tbl_zebiHaarClassifierInitAlloc_32f[v];
    EXPECT_EQ(f(&p, s.rects.data(), s.weights.data(), s.thresholds.data(), s.val1.data(), s.val2.data(), s.num.data(),
                s.length()),
              zebStsNoErr);
    return p;
}
ZebiHaarClassifier_32s* build(int v, const Spec<int32_t>& s, bool tilted = false) {
    ZebiHaarClassifier_32s* p = nullptr;
    auto f = tilted ? zeb_tbl_zebiTiltedHaarClassifierInitAlloc_32s[v] : zeb_tbl_zebiHaarClassifierInitAlloc_32s[v];
    EXPECT_EQ(f(&p, s.rects.data(), s.weights.data(), s.thresholds.data(), s.val1.data(), s.val2.data(), s.num.data(),
                s.length()),
              zebStsNoErr);
    return p;
}

std::vector<ZebiPoint> upright_corners(ZebiRect r) {
    return {{r.x + r.width, r.y + r.height}, {r.x, r.y + r.height}, {r.x + r.width, r.y}, {r.x, r.y}};
}
std::vector<ZebiPoint> tilted_corners(ZebiRect r) {
    return {{r.x + r.width - r.height, r.y + r.width + r.height},
            {r.x - r.height, r.y + r.height},
            {r.x + r.width, r.y + r.width},
            {r.x, r.y}};
}
template <class V>
void expect_corners(const zeb::haar::Rect<V>& rec, const std::vector<ZebiPoint>& want, const char* what) {
    for (int j = 0; j < 4; ++j)
        EXPECT_TRUE(rec.p[j].x == want[j].x && rec.p[j].y == want[j].y)
            << what << " corner " << j << ": (" << rec.p[j].x << ", " << rec.p[j].y << "), want (" << want[j].x
            << ", " << want[j].y << ")";
}

// ---- The object ----

// Classifiers of 3, 2, 4, 2 and 3 rectangles are laid out as the two
// two-rectangle ones, the two three-rectangle ones, then the rest, each in
// input order, keeping their indices in the identity words; records follow
// the header in one block; the window record mixes widths and right edges
// as documented; the flag follows the first weights.
TEST_P(HaarObject, UprightLayout) {
    for (int v = 0; v < 2; ++v) {
        Spec<float> s;
        const int counts[] = {3, 2, 4, 2, 3};
        int k = 0;
        for (int i = 0; i < 5; ++i) {
            std::vector<ZebiRect> r;
            std::vector<float> w;
            for (int j = 0; j < counts[i]; ++j, ++k) r.push_back({k % 4, k % 3, 1 + k % 5, 1 + k % 2}), w.push_back(-1.5f + j);
            s.add(r, w, 0.25f * i, 10.0f + i, 20.0f + i);
        }
        const int64_t live = zebTestLiveBlocks();
        auto* p = build(v, s);
        ASSERT_NE(p, nullptr);
        const Obj<float>& o = *p;
        EXPECT_EQ(o.nClassifiers, 5);
        EXPECT_EQ(o.nRects, 14);
        EXPECT_EQ(o.nLaid, 14);
        EXPECT_EQ(o.state, 0);
        EXPECT_EQ(o.nTwo, 2);
        EXPECT_EQ(o.nTwoThree, 4);
        EXPECT_EQ(o.flag, 1);  // every first weight is -1.5
        const auto* base = reinterpret_cast<const unsigned char*>(p);
        EXPECT_EQ(reinterpret_cast<const unsigned char*>(o.classifiers), base + 56);
        EXPECT_EQ(reinterpret_cast<const unsigned char*>(o.classifiers[0].rects), base + 56 + 32 * 5);
        const int order[] = {1, 3, 0, 4, 2};
        const int firstRect[] = {0, 3, 5, 9, 11};
        const zeb::haar::Rect<float>* next = o.classifiers[0].rects;
        for (int c = 0; c < 5; ++c) {
            const auto& rec = o.classifiers[c];
            const int i = order[c];
            EXPECT_EQ(rec.identity, 256 * i) << "record " << c;
            EXPECT_EQ(rec.nRects, counts[i]);
            EXPECT_EQ(rec.rects, next) << "rectangle records follow in layout order";
            EXPECT_EQ(rec.threshold, 0.25f * i);
            EXPECT_EQ(rec.val1, 10.0f + i);
            EXPECT_EQ(rec.val2, 20.0f + i);
            for (int j = 0; j < rec.nRects; ++j) {
                expect_corners(rec.rects[j], upright_corners(s.rects[firstRect[i] + j]), "upright");
                EXPECT_EQ(rec.rects[j].weight, s.weights[firstRect[i] + j]);
            }
            next += rec.nRects;
        }
        ZebiSize size{-1, -1};
        ASSERT_EQ(zeb_tbl_zebiGetHaarClassifierSize_32f[v](p, &size), 0);
        int wantW = 0, wantH = 0;
        for (const ZebiRect& r : s.rects) wantW = std::max(wantW, r.x + r.width), wantH = std::max(wantH, r.y + r.height);
        EXPECT_EQ(size.width, wantW);
        EXPECT_EQ(size.height, wantH);
        EXPECT_EQ(zeb_tbl_zebiHaarClassifierFree_32f[v](p), 0);
        EXPECT_EQ(zebTestLiveBlocks(), live);
        EXPECT_EQ(zeb_tbl_zebiHaarClassifierFree_32f[v](nullptr), zebStsNullPtrErr);
        EXPECT_EQ(zeb_tbl_zebiHaarClassifierFree_32s[v](nullptr), zebStsNullPtrErr);
    }
}

TEST_P(HaarObject, WindowRecordFlagAndEmptyObject) {
    for (int v = 0; v < 2; ++v) {
        // Window (2, 3, 4, 5); (1, 1, 2, 2) moves only the origin; (6, 1,
        // 10, 1) reaches past 1 + 4, so the third field becomes the right
        // edge 16; (0, 9, 1, 4) reaches past 1 + 5: the fourth becomes 13;
        // the next classifier's (0, 0, 1, 1) moves the top to 0 only.
        Spec<int32_t> s;
        s.add({{2, 3, 4, 5}, {1, 1, 2, 2}, {6, 1, 10, 1}, {0, 9, 1, 4}}, {-1, 2, 3, 4}, 1, 2, 3);
        s.add({{0, 0, 1, 1}}, {-1}, 1, 2, 3);
        auto* p = build(v, s);
        ASSERT_NE(p, nullptr);
        EXPECT_EQ(std::vector<int>(p->window, p->window + 4), (std::vector<int>{0, 0, 16, 13}));
        EXPECT_EQ(p->flag, 1);
        zeb_tbl_zebiHaarClassifierFree_32s[v](p);

        // A first weight of -0.9 truncates to 0, -2 to -2: flag 0.
        for (float w : {-0.9f, -2.0f}) {
            Spec<float> f;
            f.add({{0, 0, 1, 1}}, {-1.99f}, 0, 0, 0);
            f.add({{0, 0, 1, 1}, {1, 1, 1, 1}}, {w, -1.0f}, 0, 0, 0);
            auto* q = build(v, f);
            ASSERT_NE(q, nullptr);
            EXPECT_EQ(q->flag, 0) << w;
            zeb_tbl_zebiHaarClassifierFree_32f[v](q);
        }

        // No classifiers: a valid object whose window size is (0, 0).
        Spec<float> none;
        auto* e = build(v, none);
        ASSERT_NE(e, nullptr);
        ZebiSize size{7, 7};
        EXPECT_EQ(zeb_tbl_zebiGetHaarClassifierSize_32f[v](e, &size), 0);
        EXPECT_TRUE(size.width == 0 && size.height == 0);
        EXPECT_EQ(zeb_tbl_zebiGetHaarClassifierSize_32f[v](e, nullptr), zebStsNullPtrErr);
        EXPECT_EQ(zeb_tbl_zebiGetHaarClassifierSize_32f[v](nullptr, &size), zebStsNullPtrErr);
        zeb_tbl_zebiHaarClassifierFree_32f[v](e);
    }
}

// The tilted builder keeps input order, marks every identity word tilted
// and stores the turned corners; a rectangle with x + 1 < height fails after
// the allocation, which is released, and leaves *ppState null.
TEST_P(HaarObject, TiltedBuilder) {
    for (int v = 0; v < 2; ++v) {
        Spec<int32_t> s;
        s.add({{3, 1, 2, 4}, {5, 0, 1, 1}, {2, 2, 2, 3}}, {1, 2, 3}, 5, 6, 7);
        s.add({{4, 2, 3, 2}, {1, 0, 1, 2}}, {-1, 1}, 5, 6, 7);
        auto* p = build(v, s, true);
        ASSERT_NE(p, nullptr);
        EXPECT_EQ(p->classifiers[0].identity, 1);
        EXPECT_EQ(p->classifiers[1].identity, 257);
        EXPECT_EQ(p->nTwo, 0);
        EXPECT_EQ(p->nTwoThree, 0);
        for (int k = 0; k < 5; ++k) {
            const auto& rec = k < 3 ? p->classifiers[0].rects[k] : p->classifiers[1].rects[k - 3];
            expect_corners(rec, tilted_corners(s.rects[k]), "tilted");
        }
        ZebiSize size;
        ASSERT_EQ(zeb_tbl_zebiGetHaarClassifierSize_32s[v](p, &size), 0);
        EXPECT_EQ(size.width, 7);    // x + w of (4, 2, 3, 2)
        EXPECT_EQ(size.height, 7);   // y + w + h of (3, 1, 2, 4) and (4, 2, 3, 2)
        zeb_tbl_zebiHaarClassifierFree_32s[v](p);

        const int64_t live = zebTestLiveBlocks();
        Spec<float> bad;
        bad.add({{2, 0, 1, 3}, {1, 0, 1, 3}}, {1, 1}, 0, 0, 0);  // 2 + 1 >= 3, but 1 + 1 < 3
        auto* q = reinterpret_cast<ZebiHaarClassifier_32f*>(&bad);  // any non-null value
        EXPECT_EQ(zeb_tbl_zebiTiltedHaarClassifierInitAlloc_32f[v](&q, bad.rects.data(), bad.weights.data(),
                                                                    bad.thresholds.data(), bad.val1.data(),
                                                                    bad.val2.data(), bad.num.data(), 1),
                  zebStsBadArgErr);
        EXPECT_EQ(q, nullptr);
        EXPECT_EQ(zebTestLiveBlocks(), live);
    }
}

// Marked classifiers are found by their index, get identity 1 and turned
// corners (flag 0: the same x, y, w, h; otherwise w and h swapped); their
// index is forgotten, so marking it again matches nothing. A set lowest bit
// of the state word refuses the call.
TEST_P(HaarObject, TiltFeatures) {
    for (int v = 0; v < 2; ++v)
        for (int flag : {0, 5}) {
            Spec<float> s;
            s.add({{0, 0, 2, 1}, {3, 1, 1, 2}, {2, 0, 1, 1}}, {1, 1, 1}, 0, 0, 0);  // index 0, laid out second
            s.add({{4, 2, 3, 1}, {5, 1, 2, 2}}, {1, 1}, 0, 0, 0);                  // index 1, laid out first
            s.add({{1, 1, 1, 1}, {2, 2, 1, 1}}, {1, 1}, 0, 0, 0);                  // index 2
            auto* p = build(v, s);
            ASSERT_NE(p, nullptr);
            const uint8_t mask[3] = {0, 7, 0};
            ASSERT_EQ(zeb_tbl_zebiTiltHaarFeatures_32f[v](mask, flag, p), 0);
            EXPECT_EQ(p->classifiers[0].identity, 1);
            EXPECT_EQ(p->classifiers[1].identity, 512);
            EXPECT_EQ(p->classifiers[2].identity, 0);
            for (int k = 0; k < 2; ++k) {
                ZebiRect r = s.rects[3 + k];
                if (flag) std::swap(r.width, r.height);
                expect_corners(p->classifiers[0].rects[k], tilted_corners(r), "tilted after the fact");
            }
            expect_corners(p->classifiers[1].rects[0], upright_corners(s.rects[5]), "untouched");
            const std::vector<uint8_t> before(reinterpret_cast<uint8_t*>(p),
                                              reinterpret_cast<uint8_t*>(p) + 56 + 32 * 3 + 36 * 7);
            ASSERT_EQ(zeb_tbl_zebiTiltHaarFeatures_32f[v](mask, flag, p), 0);  // index 1 is gone
            p->state = 1;
            const uint8_t all[3] = {1, 1, 1};
            EXPECT_EQ(zeb_tbl_zebiTiltHaarFeatures_32f[v](all, flag, p), zebStsBadArgErr);
            p->state = 0;
            EXPECT_TRUE(std::equal(before.begin(), before.end(), reinterpret_cast<uint8_t*>(p)));
            EXPECT_EQ(zeb_tbl_zebiTiltHaarFeatures_32f[v](nullptr, flag, p), zebStsNullPtrErr);
            EXPECT_EQ(zeb_tbl_zebiTiltHaarFeatures_32s[v](all, flag, nullptr), zebStsNullPtrErr);
            zeb_tbl_zebiHaarClassifierFree_32f[v](p);
        }
}

// ---- Builder checks ----

struct BuildArgs {
    void** pp;
    ZebiRect* rects;
    float* w;
    float *thr, *v1, *v2;
    int* num;
    int length;
};

TEST_P(HaarObject, BuildersCheckInOrderAndWriteNothingOnFailure) {
    for (bool tilted : {false, true}) {
        zt::checks::Table<BuildArgs> t{
            tilted ? "zebiTiltedHaarClassifierInitAlloc_32f" : "zebiHaarClassifierInitAlloc_32f",
            [](zt::checks::Arena& a) {
                BuildArgs x{a.array<void*>("ppState", 1), a.array<ZebiRect>("rects", 3), a.array<float>("weights", 3),
                            a.array<float>("thresholds", 2), a.array<float>("val1", 2), a.array<float>("val2", 2),
                            a.array<int>("num", 2), 2};
                x.rects[0] = {2, 1, 2, 2}, x.rects[1] = {3, 0, 1, 1}, x.rects[2] = {1, 2, 2, 1};
                x.num[0] = 2, x.num[1] = 1;
                return x;
            },
            [tilted](int v, BuildArgs& x) {
                auto f = tilted ? zeb_tbl_zebiTiltedHaarClassifierInitAlloc_32f[v]
                                : zeb_tbl_zebiHaarClassifierInitAlloc_32f[v];
                auto** pp = reinterpret_cast<ZebiHaarClassifier_32f**>(x.pp);
                const ZebStatus s = f(pp, x.rects, x.w, x.thr, x.v1, x.v2, x.num, x.length);
                if (s == zebStsNoErr) zeb_tbl_zebiHaarClassifierFree_32f[v](*pp);
                return s;
            },
            {}};
        auto add = [&](const char* what, std::function<void(BuildArgs&)> f, ZebStatus want) {
            t.cases.push_back({what, std::move(f), want});
        };
        add("null ppState", [](BuildArgs& x) { x.pp = nullptr, x.length = -1; }, zebStsNullPtrErr);
        add("null rects", [](BuildArgs& x) { x.rects = nullptr; }, zebStsNullPtrErr);
        add("null weights", [](BuildArgs& x) { x.w = nullptr; }, zebStsNullPtrErr);
        add("null thresholds", [](BuildArgs& x) { x.thr = nullptr; }, zebStsNullPtrErr);
        add("null val1", [](BuildArgs& x) { x.v1 = nullptr; }, zebStsNullPtrErr);
        add("null val2", [](BuildArgs& x) { x.v2 = nullptr; }, zebStsNullPtrErr);
        add("null num", [](BuildArgs& x) { x.num = nullptr; }, zebStsNullPtrErr);
        add("length -1", [](BuildArgs& x) { x.length = -1; }, zebStsSizeErr);
        add("length 0", [](BuildArgs& x) { x.length = 0; }, zebStsNoErr);
        add("no rectangles, bad rectangle", [](BuildArgs& x) { x.num[1] = 0, x.rects[0].x = -1; }, zebStsSizeErr);
        if (!tilted) {
            add("x -1", [](BuildArgs& x) { x.rects[2].x = -1; }, zebStsBadArgErr);
            add("y -1", [](BuildArgs& x) { x.rects[1].y = -1; }, zebStsBadArgErr);
            add("width 0", [](BuildArgs& x) { x.rects[0].width = 0; }, zebStsBadArgErr);
            add("height 0", [](BuildArgs& x) { x.rects[2].height = 0; }, zebStsBadArgErr);
            add("x + 1 < height is upright-valid", [](BuildArgs& x) { x.rects[2].height = 5; }, zebStsNoErr);
            add("allocation fails after a bad rectangle", [](BuildArgs& x) { x.rects[2].height = 0, zebTestFailMallocAt(1); },
                zebStsBadArgErr);
        }
        add("allocation fails", [](BuildArgs&) { zebTestFailMallocAt(1); }, zebStsMemAllocErr);
        zt::checks::run(t);
        zebTestFailMallocAt(0);
    }
}

// ---- Applying a stage ----

// A source, its integral tables (32s and 32f, upright and tilted) and a
// norm image; positions (x, y) of the ROI see a window of the tables.
struct Scene {
    Image<Zeb8u> src;
    Image<Zeb32s> up, tilt;
    Image<float> upF, tiltF;
    Scene(int w, int h, int v)
        : src(w, h, 1, 3), up(w + 1, h + 1, 1, 8), tilt(w + 2, h + 2, 1, 4), upF(w + 1, h + 1),
          tiltF(w + 2, h + 2, 1, 12) {
        EXPECT_EQ(zeb_tbl_zebiIntegral_8u32s_C1R[v](src.ptr(), src.step(), up.ptr(), up.step(), src.size(), 0), 0);
        EXPECT_EQ(zeb_tbl_zebiIntegral_8u32f_C1R[v](src.ptr(), src.step(), upF.ptr(), upF.step(), src.size(), 0), 0);
        EXPECT_EQ(zeb_tbl_zebiTiltedIntegral_8u32s_C1R[v](src.ptr(), src.step(), tilt.ptr(), tilt.step(), src.size(), 0),
                  0);
        EXPECT_EQ(
            zeb_tbl_zebiTiltedIntegral_8u32f_C1R[v](src.ptr(), src.step(), tiltF.ptr(), tiltF.step(), src.size(), 0), 0);
    }
    // Pixel sums straight from the source: the upright rectangle at
    // (x + r.x, y + r.y), or the rotated one that the tilted corners of r
    // span for position (x, y).
    int64_t upright_sum(int x, int y, ZebiRect r) const {
        int64_t s = 0;
        for (int j = y + r.y; j < y + r.y + r.height; ++j)
            for (int i = x + r.x; i < x + r.x + r.width; ++i) s += src.at(i, j);
        return s;
    }
    int64_t tilted_sum(int x, int y, ZebiRect r) const {
        const int c = x + r.x + 1, rr = y + r.y + 1, a = r.width, b = r.height;
        EXPECT_GE(c - rr + 1 - 2 * b, 0) << "rotated rectangle too close to the left edge";
        int64_t s = 0, n = 0;
        for (int j = 0; j < src.height(); ++j)
            for (int i = 0; i < src.width(); ++i) {
                const int p = i - j, u = i + j;
                if (p >= c - rr + 1 - 2 * b && p <= c - rr && u >= c + rr - 1 && u <= c + rr - 2 + 2 * a)
                    s += src.at(i, j), ++n;
            }
        EXPECT_EQ(n, 2 * a * b) << "rotated rectangle inside the image";
        return s;
    }
};

// One classifier of the test's own description, with which rectangles
// are tilted, for the direct evaluation.
struct Stage {
    Spec<float> spec;
    std::vector<bool> tilted;  // per classifier, in input order
    float threshold;
};

// The stage decision at (x, y) from the pixels: the feature sums weighted
// and added in single precision in object order (two-rectangle, then
// three-rectangle, then the other classifiers), val1 when thr * sigma > s.
bool passes(const Scene& sc, const Stage& st, int x, int y, float sigma, bool mixed) {
    std::vector<int> first(st.spec.num.size());
    for (std::size_t i = 1; i < first.size(); ++i) first[i] = first[i - 1] + st.spec.num[i - 1];
    std::vector<int> order;
    for (int pass = 0; pass < 3; ++pass)
        for (int i = 0; i < st.spec.length(); ++i) {
            const int n = st.spec.num[i];
            if ((pass == 0 && n == 2) || (pass == 1 && n == 3) || (pass == 2 && n != 2 && n != 3)) order.push_back(i);
        }
    float stage = 0;
    for (int i : order) {
        float s = 0;
        for (int k = 0; k < st.spec.num[i]; ++k) {
            const ZebiRect r = st.spec.rects[first[i] + k];
            const int64_t sum = mixed && st.tilted[i] ? sc.tilted_sum(x, y, r) : sc.upright_sum(x, y, r);
            s = s + st.spec.weights[first[i] + k] * float(sum);
        }
        stage = stage + (st.spec.thresholds[i] * sigma > s ? st.spec.val1[i] : st.spec.val2[i]);
    }
    return !(st.threshold > stage);
}

// Two stages on a 36 x 14 ROI of a 64 x 28 source: the first with two-,
// three- and four-rectangle classifiers, the second with two of its
// classifiers tilted after building. Each stage runs on the mask the
// previous one left; marked pixels are checked against the direct
// evaluation, unmarked ones must stay 0 and uncounted.
TEST_P(HaarApply, TwoStageCascadeMatchesDirectEvaluation) {
    const int W = 64, H = 28;
    const ZebiSize roi{36, 14};
    Stage s1, s2;
    s1.spec.add({{0, 0, 6, 4}, {0, 4, 6, 4}}, {1.0f, -1.0f}, 0.15f, -1.0f, 1.0f);
    s1.spec.add({{1, 1, 3, 6}, {4, 1, 3, 6}, {7, 1, 3, 6}}, {-1.0f, 2.0f, -1.0f}, -0.4f, 0.5f, -0.5f);
    s1.spec.add({{0, 0, 4, 4}, {4, 0, 4, 4}, {0, 4, 4, 4}, {4, 4, 4, 4}}, {1.0f, -1.0f, -1.0f, 1.0f}, 0.05f, 1.0f, -1.0f);
    s1.spec.add({{2, 2, 5, 3}, {3, 5, 2, 4}}, {0.5f, -2.0f}, -0.8f, 0.25f, -0.75f);
    s1.tilted = {false, false, false, false};
    s1.threshold = -0.3f;
    // Tilted rectangles sit far enough right that, for every ROI position,
    // their corners stay clear of the tilted table's left edge.
    s2.spec.add({{22, 0, 3, 2}, {25, 3, 2, 2}}, {1.0f, -1.5f}, 0.02f, 1.0f, -1.0f);
    s2.spec.add({{0, 0, 8, 8}, {2, 2, 4, 4}}, {-0.25f, 1.0f}, 0.5f, 0.75f, -0.25f);
    s2.spec.add({{21, 1, 2, 3}, {22, 2, 3, 2}, {20, 0, 1, 1}}, {1.0f, -1.0f, 2.0f}, 0.1f, 0.5f, -0.5f);
    s2.tilted = {true, false, true};
    s2.threshold = 0.1f;
    const uint8_t tiltMask[3] = {1, 0, 1};
    for (int v = 0; v < 2; ++v) {
        Scene sc(W, H, v);
        Image<float> norm(roi.width, roi.height, 1, 4);
        Image<Zeb32s> normI(roi.width, roi.height);
        for (int y = 0; y < roi.height; ++y)
            for (int x = 0; x < roi.width; ++x)
                norm.at(x, y) = float(1 + (x * 7 + y * 3) % 40), normI.at(x, y) = int32_t(norm.at(x, y));
        auto* o1 = build(v, s1.spec);
        // The second stage upright for the upright-only members, tilted in
        // part for the mixed ones.
        auto* o2u = build(v, s2.spec);
        auto* o2 = build(v, s2.spec);
        ASSERT_EQ(zeb_tbl_zebiTiltHaarFeatures_32f[v](tiltMask, 0, o2), 0);
        for (int member = 0; member < 4; ++member) {
            const bool mixed = member >= 2, intTable = member % 2 == 1;
            Image<Zeb8u> mask(roi.width, roi.height, 1, 5);
            for (int y = 0; y < roi.height; ++y)
                for (int x = 0; x < roi.width; ++x) mask.at(x, y) = (x + 2 * y) % 9 == 4 ? 0 : uint8_t(1 + x % 200);
            std::vector<uint8_t> marked = mask.pixels();
            int total = 0;
            for (const auto& [obj, st] : {std::pair{o1, &s1}, std::pair{mixed ? o2 : o2u, &s2}}) {
                int positive = -1;
                ZebStatus r;
                if (!mixed && !intTable)
                    r = zeb_tbl_zebiApplyHaarClassifier_32f_C1R[v](sc.upF.ptr(), sc.upF.step(), norm.ptr(), norm.step(),
                                                                   mask.ptr(), mask.step(), roi, &positive,
                                                                   st->threshold, obj);
                else if (!mixed)
                    r = zeb_tbl_zebiApplyHaarClassifier_32s32f_C1R[v](sc.up.ptr(), sc.up.step(), norm.ptr(),
                                                                      norm.step(), mask.ptr(), mask.step(), roi,
                                                                      &positive, st->threshold, obj);
                else if (!intTable)
                    r = zeb_tbl_zebiApplyMixedHaarClassifier_32f_C1R[v](
                        sc.upF.ptr(), sc.upF.step(), sc.tiltF.ptr(), sc.tiltF.step(), norm.ptr(), norm.step(),
                        mask.ptr(), mask.step(), roi, &positive, st->threshold, obj);
                else
                    r = zeb_tbl_zebiApplyMixedHaarClassifier_32s32f_C1R[v](
                        sc.up.ptr(), sc.up.step(), sc.tilt.ptr(), sc.tilt.step(), norm.ptr(), norm.step(), mask.ptr(),
                        mask.step(), roi, &positive, st->threshold, obj);
                ASSERT_EQ(r, zebStsNoErr);
                int want = 0;
                for (int y = 0; y < roi.height; ++y)
                    for (int x = 0; x < roi.width; ++x) {
                        uint8_t& m = marked[std::size_t(y) * roi.width + x];
                        if (m == 0) {
                            ASSERT_EQ(mask.at(x, y), 0);
                            continue;
                        }
                        const bool pass = passes(sc, *st, x, y, norm.at(x, y), mixed);
                        if (!pass) m = 0;
                        want += pass;
                        ASSERT_EQ(mask.at(x, y), m) << "member " << member << " at (" << x << ", " << y << ")";
                    }
                EXPECT_EQ(positive, want);
                total += want;
            }
            EXPECT_GT(total, 20) << "the cascade should pass some pixels";
            EXPECT_LT(total, 2 * roi.width * roi.height - 40) << "and reject some";
        }
        // The scaled integer form with scale factor 0 decides as the float
        // form on the upright stage (integer weights and values).
        Spec<int32_t> si;
        si.add({{0, 0, 6, 4}, {0, 4, 6, 4}}, {1, -1}, 2, -3, 5);
        si.add({{1, 1, 3, 6}, {4, 1, 3, 6}, {7, 1, 3, 6}}, {-1, 2, -1}, -7, 4, -2);
        Stage sf;
        sf.spec.add({{0, 0, 6, 4}, {0, 4, 6, 4}}, {1.0f, -1.0f}, 2.0f, -3.0f, 5.0f);
        sf.spec.add({{1, 1, 3, 6}, {4, 1, 3, 6}, {7, 1, 3, 6}}, {-1.0f, 2.0f, -1.0f}, -7.0f, 4.0f, -2.0f);
        sf.tilted = {false, false};
        sf.threshold = 1.0f;
        auto* oi = build(v, si);
        for (bool mixed : {false, true}) {
            Image<Zeb8u> mask(roi.width, roi.height);
            mask.fill(1);
            int positive = -1;
            const ZebStatus r =
                mixed ? zeb_tbl_zebiApplyMixedHaarClassifier_32s_C1RSfs[v](
                            sc.up.ptr(), sc.up.step(), sc.tilt.ptr(), sc.tilt.step(), normI.ptr(), normI.step(),
                            mask.ptr(), mask.step(), roi, &positive, 1, oi, 0)
                      : zeb_tbl_zebiApplyHaarClassifier_32s_C1RSfs[v](sc.up.ptr(), sc.up.step(), normI.ptr(),
                                                                      normI.step(), mask.ptr(), mask.step(), roi,
                                                                      &positive, 1, oi, 0);
            ASSERT_EQ(r, zebStsNoErr);
            int want = 0;
            for (int y = 0; y < roi.height; ++y)
                for (int x = 0; x < roi.width; ++x) {
                    const bool pass = passes(sc, sf, x, y, norm.at(x, y), false);
                    want += pass;
                    ASSERT_EQ(mask.at(x, y) != 0, pass) << "Sfs at (" << x << ", " << y << ")";
                }
            EXPECT_EQ(positive, want);
        }
        zeb_tbl_zebiHaarClassifierFree_32f[v](o1);
        zeb_tbl_zebiHaarClassifierFree_32f[v](o2);
        zeb_tbl_zebiHaarClassifierFree_32f[v](o2u);
        zeb_tbl_zebiHaarClassifierFree_32s[v](oi);
    }
}

// Ties: a feature sum equal to threshold_c * sigma takes val2; a stage
// value equal to the stage threshold passes; an empty object passes every
// marked pixel for thresholds up to 0; the scale factor scales the product
// (rounding half up) and 0 leaves it as it is.
TEST_P(HaarApply, TieRules) {
    Image<Zeb8u> src(4, 2);
    src.fill(3);
    Image<float> up(5, 3), norm(1, 1);
    Image<Zeb32s> upI(5, 3), normI(1, 1);
    for (int v = 0; v < 2; ++v) {
        ASSERT_EQ(zeb_tbl_zebiIntegral_8u32f_C1R[v](src.ptr(), src.step(), up.ptr(), up.step(), src.size(), 0), 0);
        ASSERT_EQ(zeb_tbl_zebiIntegral_8u32s_C1R[v](src.ptr(), src.step(), upI.ptr(), upI.step(), src.size(), 0), 0);
        // One rectangle of 2 x 2 pixels of 3, weight 1: s = 12.
        auto run = [&](float thr, float sigma, float stageThr, float val1, float val2) {
            Spec<float> s;
            s.add({{0, 0, 2, 2}, {2, 0, 1, 1}}, {1.0f, 0.0f}, thr, val1, val2);
            auto* o = build(v, s);
            norm.at(0, 0) = sigma;
            uint8_t m = 1;
            int positive = -1;
            EXPECT_EQ(zeb_tbl_zebiApplyHaarClassifier_32f_C1R[v](up.ptr(), up.step(), norm.ptr(), norm.step(), &m, 1,
                                                                 {1, 1}, &positive, stageThr, o),
                      0);
            zeb_tbl_zebiHaarClassifierFree_32f[v](o);
            EXPECT_EQ(positive, m ? 1 : 0);
            return m != 0;
        };
        EXPECT_FALSE(run(4.0f, 3.0f, 0.5f, 1.0f, 0.0f)) << "12 = 4 * 3 takes val2";
        EXPECT_TRUE(run(4.0f, 3.0001f, 0.5f, 1.0f, 0.0f)) << "12 < 4 * 3.0001 takes val1";
        EXPECT_TRUE(run(4.0f, 3.0f, 0.25f, 1.0f, 0.25f)) << "a stage value equal to the threshold passes";
        EXPECT_FALSE(run(4.0f, 3.0f, 0.2500001f, 1.0f, 0.25f));

        Spec<float> none;
        auto* e = build(v, none);
        for (float thr : {0.0f, -1.0f, 1e-7f}) {
            uint8_t m[3] = {1, 0, 9};
            int positive = -1;
            Image<float> n3(3, 1);
            ASSERT_EQ(zeb_tbl_zebiApplyHaarClassifier_32f_C1R[v](up.ptr(), up.step(), n3.ptr(), n3.step(), m, 3,
                                                                 {3, 1}, &positive, thr, e),
                      0);
            EXPECT_EQ(positive, thr <= 0 ? 2 : 0);
            EXPECT_EQ(m[0] != 0, thr <= 0);
            EXPECT_EQ(m[1], 0);
        }
        zeb_tbl_zebiHaarClassifierFree_32f[v](e);

        // Integer form: s = 12; threshold 5 * sigma 5 = 25 > 12 unscaled;
        // scale factor 1 gives 13 > 12, 2 gives 6 (25/4 rounded half up is
        // 6) and -1 gives 50.
        for (auto [sf, wantVal1] : {std::pair{0, true}, {1, true}, {2, false}, {-1, true}}) {
            Spec<int32_t> s;
            s.add({{0, 0, 2, 2}, {2, 0, 1, 1}}, {1, 0}, 5, 1, 0);
            auto* o = build(v, s);
            normI.at(0, 0) = 5;
            uint8_t m = 1;
            int positive = -1;
            ASSERT_EQ(zeb_tbl_zebiApplyHaarClassifier_32s_C1RSfs[v](upI.ptr(), upI.step(), normI.ptr(), normI.step(),
                                                                    &m, 1, {1, 1}, &positive, 1, o, sf),
                      0);
            EXPECT_EQ(m != 0, wantVal1) << "scale factor " << sf;
            zeb_tbl_zebiHaarClassifierFree_32s[v](o);
        }
    }
}

// ---- Apply checks ----

struct ApplyArgs {
    void *src, *tilt, *norm;
    uint8_t* mask;
    int ss, ts, ns, ms;
    ZebiSize roi;
    int* positive;
    void* obj;
};

template <class F>
ZebStatus apply_call(F f, ApplyArgs& a) {
    using namespace std;
    if constexpr (is_invocable_v<F, const Zeb32f*, int, const Zeb32f*, int, Zeb8u*, int, ZebiSize, int*, Zeb32f,
                                 ZebiHaarClassifier_32f*>)
        return f(static_cast<const Zeb32f*>(a.src), a.ss, static_cast<const Zeb32f*>(a.norm), a.ns, a.mask, a.ms,
                 a.roi, a.positive, 0.5f, static_cast<ZebiHaarClassifier_32f*>(a.obj));
    else if constexpr (is_invocable_v<F, const Zeb32s*, int, const Zeb32f*, int, Zeb8u*, int, ZebiSize, int*, Zeb32f,
                                      ZebiHaarClassifier_32f*>)
        return f(static_cast<const Zeb32s*>(a.src), a.ss, static_cast<const Zeb32f*>(a.norm), a.ns, a.mask, a.ms,
                 a.roi, a.positive, 0.5f, static_cast<ZebiHaarClassifier_32f*>(a.obj));
    else if constexpr (is_invocable_v<F, const Zeb32s*, int, const Zeb32s*, int, Zeb8u*, int, ZebiSize, int*, Zeb32s,
                                      ZebiHaarClassifier_32s*, int>)
        return f(static_cast<const Zeb32s*>(a.src), a.ss, static_cast<const Zeb32s*>(a.norm), a.ns, a.mask, a.ms,
                 a.roi, a.positive, 1, static_cast<ZebiHaarClassifier_32s*>(a.obj), 0);
    else if constexpr (is_invocable_v<F, const Zeb32f*, int, const Zeb32f*, int, const Zeb32f*, int, Zeb8u*, int,
                                      ZebiSize, int*, Zeb32f, ZebiHaarClassifier_32f*>)
        return f(static_cast<const Zeb32f*>(a.src), a.ss, static_cast<const Zeb32f*>(a.tilt), a.ts,
                 static_cast<const Zeb32f*>(a.norm), a.ns, a.mask, a.ms, a.roi, a.positive, 0.5f,
                 static_cast<ZebiHaarClassifier_32f*>(a.obj));
    else if constexpr (is_invocable_v<F, const Zeb32s*, int, const Zeb32s*, int, const Zeb32f*, int, Zeb8u*, int,
                                      ZebiSize, int*, Zeb32f, ZebiHaarClassifier_32f*>)
        return f(static_cast<const Zeb32s*>(a.src), a.ss, static_cast<const Zeb32s*>(a.tilt), a.ts,
                 static_cast<const Zeb32f*>(a.norm), a.ns, a.mask, a.ms, a.roi, a.positive, 0.5f,
                 static_cast<ZebiHaarClassifier_32f*>(a.obj));
    else
        return f(static_cast<const Zeb32s*>(a.src), a.ss, static_cast<const Zeb32s*>(a.tilt), a.ts,
                 static_cast<const Zeb32s*>(a.norm), a.ns, a.mask, a.ms, a.roi, a.positive, 1,
                 static_cast<ZebiHaarClassifier_32s*>(a.obj), 0);
}

// The object is made once per member and kept in the arena as a copy of
// its bytes, so that the canaries cover it too.
template <class Tbl>
void check_apply(const char* name, Tbl tbl, bool mixed, bool intObject) {
    constexpr int w = 6, h = 3;
    Spec<float> sf;
    sf.add({{0, 0, 2, 2}, {2, 0, 2, 2}}, {1.0f, -1.0f}, 0.1f, 1.0f, -1.0f);
    Spec<int32_t> si;
    si.add({{0, 0, 2, 2}, {2, 0, 2, 2}}, {1, -1}, 1, 1, -1);
    void* obj = intObject ? static_cast<void*>(build(0, si)) : static_cast<void*>(build(0, sf));
    zt::checks::Table<ApplyArgs> t{
        name,
        [&](zt::checks::Arena& a) {
            auto src = a.image<Zeb8u>("integral", 4 * (w + 5), h + 3, 1, 8);
            auto tl = a.image<Zeb8u>("tilted", 4 * (w + 6), h + 6, 1, 8);
            auto nm = a.image<Zeb8u>("norm", 4 * w, h, 1, 8);
            auto mk = a.image<Zeb8u>("mask", w, h, 1, 8);
            for (int i = 0; i < mk.step * (h - 1) + w; ++i) mk.ptr[i] |= 1;  // every pixel marked
            // Integral tables of zeros and norms of small integers: no NaN.
            std::memset(src.ptr, 0, std::size_t(src.step) * (h + 2) + 4 * (w + 5));
            std::memset(tl.ptr, 0, std::size_t(tl.step) * (h + 5) + 4 * (w + 6));
            std::memset(nm.ptr, 0, std::size_t(nm.step) * (h - 1) + 4 * w);
            ApplyArgs x{src.ptr, mixed ? tl.ptr : nullptr, nm.ptr, mk.ptr, src.step - 20, tl.step - 24, nm.step,
                        mk.step, {w, h}, a.array<int>("positive", 1), nullptr};
            // Exact steps: the tables are wider than the ROI, so take the
            // minimum steps over the first w elements of their rows.
            x.ss = 4 * w + 20, x.ts = 4 * w + 24;
            const std::size_t bytes = intObject ? 56 + 32 + 72 : 56 + 32 + 72;
            auto* copy = a.block("object", bytes);
            std::memcpy(copy, obj, bytes);
            // The copy's internal pointers point into the copy.
            auto* o = reinterpret_cast<zeb::haar::Object<float>*>(copy);
            o->classifiers = reinterpret_cast<zeb::haar::Classifier<float>*>(copy + 56);
            o->classifiers[0].rects = reinterpret_cast<zeb::haar::Rect<float>*>(copy + 56 + 32);
            x.obj = copy;
            return x;
        },
        [&](int v, ApplyArgs& x) { return apply_call(tbl[v], x); },
        {}};
    auto add = [&](const char* what, std::function<void(ApplyArgs&)> f, ZebStatus want) {
        t.cases.push_back({what, std::move(f), want});
    };
    add("null integral, width 0", [](ApplyArgs& x) { x.src = nullptr, x.roi.width = 0; }, zebStsNullPtrErr);
    add("null norm", [](ApplyArgs& x) { x.norm = nullptr; }, zebStsNullPtrErr);
    add("null mask", [](ApplyArgs& x) { x.mask = nullptr; }, zebStsNullPtrErr);
    add("null count", [](ApplyArgs& x) { x.positive = nullptr; }, zebStsNullPtrErr);
    add("null object", [](ApplyArgs& x) { x.obj = nullptr; }, zebStsNullPtrErr);
    if (mixed) add("null tilted", [](ApplyArgs& x) { x.tilt = nullptr; }, zebStsNullPtrErr);
    add("height 0, short steps", [](ApplyArgs& x) { x.roi.height = 0, x.ss = 1; }, zebStsSizeErr);
    add("integral step below 4w", [](ApplyArgs& x) { x.ss = 4 * w - 4; }, zebStsStepErr);
    add("norm step below 4w", [](ApplyArgs& x) { x.ns -= 4; }, zebStsStepErr);
    add("mask step below w", [](ApplyArgs& x) { x.ms -= 1; }, zebStsStepErr);
    add("uneven integral step", [](ApplyArgs& x) { x.ss += 2; }, zebStsNotEvenStepErr);
    add("uneven norm step, short mask step", [](ApplyArgs& x) { x.ns += 1, x.ms -= 1; }, zebStsStepErr);
    add("uneven norm step", [](ApplyArgs& x) { x.ns += 3; }, zebStsNotEvenStepErr);
    add("odd mask step", [](ApplyArgs& x) { x.ms += 1; }, zebStsNoErr);
    if (mixed) {
        add("tilted step below 4w", [](ApplyArgs& x) { x.ts = 4 * w - 1; }, zebStsStepErr);
        add("uneven tilted step", [](ApplyArgs& x) { x.ts += 2; }, zebStsNotEvenStepErr);
    }
    add("allocation fails", [](ApplyArgs&) { zebTestFailMallocAt(1); }, zebStsMemAllocErr);
    zt::checks::run(t);
    zebTestFailMallocAt(0);
    if (intObject)
        zeb_tbl_zebiHaarClassifierFree_32s[0](static_cast<ZebiHaarClassifier_32s*>(obj));
    else
        zeb_tbl_zebiHaarClassifierFree_32f[0](static_cast<ZebiHaarClassifier_32f*>(obj));
}

TEST_P(HaarApply, EveryMemberChecksInOrderAndWritesNothingOnFailure) {
    check_apply("zebiApplyHaarClassifier_32f_C1R", zeb_tbl_zebiApplyHaarClassifier_32f_C1R, false, false);
    check_apply("zebiApplyHaarClassifier_32s32f_C1R", zeb_tbl_zebiApplyHaarClassifier_32s32f_C1R, false, false);
    check_apply("zebiApplyHaarClassifier_32s_C1RSfs", zeb_tbl_zebiApplyHaarClassifier_32s_C1RSfs, false, true);
    check_apply("zebiApplyMixedHaarClassifier_32f_C1R", zeb_tbl_zebiApplyMixedHaarClassifier_32f_C1R, true, false);
    check_apply("zebiApplyMixedHaarClassifier_32s32f_C1R", zeb_tbl_zebiApplyMixedHaarClassifier_32s32f_C1R, true,
                false);
    check_apply("zebiApplyMixedHaarClassifier_32s_C1RSfs", zeb_tbl_zebiApplyMixedHaarClassifier_32s_C1RSfs, true,
                true);
}

}  // namespace

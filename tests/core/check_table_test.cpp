// The table-driven check runner: on two real exports, and against calls
// that break the rules on purpose, which it must report.
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "check_table.h"
#include "harness.h"

ZEB_TEST_TABLE(zebiAbsDiff_8u_C1R);
ZEB_TEST_TABLE(zebiAbsDiffC_16u_C1R);

namespace {

using zt::checks::Arena;
using zt::checks::Table;

constexpr int kW = 9, kH = 4;

struct Two {
    const Zeb8u *a, *b;
    Zeb8u* d;
    int as, bs, ds;
    ZebiSize roi;
};

struct One {
    const Zeb16u* a;
    Zeb16u* d;
    int as, ds;
    ZebiSize roi;
    int value;
};

ZT_TARGET_SUITE(CheckTable);

TEST_P(CheckTable, AbsDiff8u) {
    Table<Two> t{"zebiAbsDiff_8u_C1R",
                 [](Arena& m) {
                     auto a = m.image<Zeb8u>("src1", kW, kH, 1, 4), b = m.image<Zeb8u>("src2", kW, kH, 1, 4),
                          d = m.image<Zeb8u>("dst", kW, kH, 1, 4);
                     return Two{a.ptr, b.ptr, d.ptr, a.step, b.step, d.step, {kW, kH}};
                 },
                 [](int v, Two& x) { return zeb_tbl_zebiAbsDiff_8u_C1R[v](x.a, x.as, x.b, x.bs, x.d, x.ds, x.roi); },
                 {
                     {"null src1, width 0", [](Two& x) { x.a = nullptr, x.roi.width = 0; }, zebStsNullPtrErr},
                     {"null src2, short step", [](Two& x) { x.b = nullptr, x.as = 1; }, zebStsNullPtrErr},
                     {"null dst", [](Two& x) { x.d = nullptr; }, zebStsNullPtrErr},
                     {"width 0, short steps", [](Two& x) { x.roi.width = 0, x.as = x.ds = 1; }, zebStsSizeErr},
                     {"height -3", [](Two& x) { x.roi.height = -3; }, zebStsSizeErr},
                     {"src1 one byte short", [](Two& x) { x.as -= 1; }, zebStsStepErr},
                     {"src2 one byte short", [](Two& x) { x.bs -= 1; }, zebStsStepErr},
                     {"dst one byte short", [](Two& x) { x.ds -= 1; }, zebStsStepErr},
                     {"negative step", [](Two& x) { x.bs = -kW; }, zebStsStepErr},
                     {"odd padded steps", [](Two& x) { x.as += 1, x.bs += 3, x.ds += 1; }, zebStsNoErr},
                     {"1x1", [](Two& x) { x.roi = {1, 1}; }, zebStsNoErr},
                 }};
    zt::checks::run(t);
}

TEST_P(CheckTable, AbsDiffC16u) {
    constexpr int row = kW * 2;
    Table<One> t{"zebiAbsDiffC_16u_C1R",
                 [](Arena& m) {
                     auto a = m.image<Zeb16u>("src", kW, kH, 1, 4), d = m.image<Zeb16u>("dst", kW, kH, 1, 4);
                     return One{a.ptr, d.ptr, a.step, d.step, {kW, kH}, 1000};
                 },
                 [](int v, One& x) { return zeb_tbl_zebiAbsDiffC_16u_C1R[v](x.a, x.as, x.d, x.ds, x.roi, x.value); },
                 {
                     {"null src, height 0", [](One& x) { x.a = nullptr, x.roi.height = 0; }, zebStsNullPtrErr},
                     {"null dst, odd step", [](One& x) { x.d = nullptr, x.as = row + 1; }, zebStsNullPtrErr},
                     {"width -1, short step", [](One& x) { x.roi.width = -1, x.as = 2; }, zebStsSizeErr},
                     // Both lengths are checked before either parity.
                     {"src odd, dst short", [](One& x) { x.as = row + 1, x.ds = row - 2; }, zebStsStepErr},
                     {"src short and odd", [](One& x) { x.as = row - 1; }, zebStsStepErr},
                     {"src odd", [](One& x) { x.as = row + 1; }, zebStsNotEvenStepErr},
                     {"dst odd", [](One& x) { x.ds = row + 3; }, zebStsNotEvenStepErr},
                     {"padded steps", [](One& x) { x.as = row + 2, x.ds = row + 4; }, zebStsNoErr},
                     {"value below range", [](One& x) { x.value = -70000; }, zebStsNoErr},
                     {"value above range", [](One& x) { x.value = 1 << 20; }, zebStsNoErr},
                 }};
    zt::checks::run(t);
}

// A stand-in export with one scalar output, for the runner's own tests.
struct Fake {
    Zeb8u* d;
    int ds;
    double* out;
    bool bad;
};

Table<Fake> fake_table(std::function<ZebStatus(Fake&)> body) {
    return {"fake",
            [](Arena& m) {
                auto d = m.image<Zeb8u>("dst", kW, kH);
                return Fake{d.ptr, d.step, m.array<double>("out", 1), false};
            },
            [body](int, Fake& x) { return body(x); },
            {{"bad", [](Fake& x) { x.bad = true; }, zebStsBadArgErr}}};
}

// The failures that a run of the runner records, captured instead of
// failing this test.
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

bool mentions(const std::string& s, const char* part) { return s.find(part) != std::string::npos; }

// A byte written on failure is found in whichever block it lands. A value
// equal to the first canary fill escapes the first run but not the second
// (its complement): one report per variant.
TEST(CheckTableRunner, ReportsWritesOnFailure) {
    Arena probe(false);
    const Zeb8u firstFill = probe.block("dst", 1)[0];
    auto f = failures_of([&] {
        zt::checks::run(fake_table([firstFill](Fake& x) {
            x.d[0] = firstFill;
            return x.bad ? zebStsBadArgErr : zebStsNoErr;
        }));
    });
    ASSERT_EQ(f.size(), 2u);
    EXPECT_TRUE(mentions(f[0], "fake variant u8: bad returned -5 but wrote"));
    EXPECT_TRUE(mentions(f[0], "block \"dst\" (36 bytes): 1 byte(s) changed, first at offset 0"));
    EXPECT_TRUE(mentions(f[1], "fake variant n8"));

    f = failures_of([] {
        zt::checks::run(fake_table([](Fake& x) {
            if (x.bad) *x.out = 0;
            return x.bad ? zebStsBadArgErr : zebStsNoErr;
        }));
    });
    ASSERT_EQ(f.size(), 4u);  // both fills, both variants
    for (const std::string& m : f) EXPECT_TRUE(mentions(m, "block \"out\" (8 bytes)")) << m;
}

TEST(CheckTableRunner, ReportsWrongStatusAndBrokenValidCall) {
    auto f = failures_of([] { zt::checks::run(fake_table([](Fake& x) { return x.bad ? zebStsSizeErr : 0; })); });
    ASSERT_EQ(f.size(), 4u);
    EXPECT_TRUE(mentions(f[0], "fake variant u8: bad"));
    EXPECT_TRUE(mentions(f[2], "fake variant n8: bad"));

    f = failures_of([] { zt::checks::run(fake_table([](Fake& x) { return x.bad ? zebStsBadArgErr : -6; })); });
    ASSERT_EQ(f.size(), 2u);
    EXPECT_TRUE(mentions(f[0], "fake variant u8: valid call"));

    // A call that writes only when it succeeds passes.
    f = failures_of([] {
        zt::checks::run(fake_table([](Fake& x) {
            if (x.bad) return zebStsBadArgErr;
            x.d[0] = 1;
            *x.out = 2;
            return zebStsNoErr;
        }));
    });
    EXPECT_TRUE(f.empty()) << f.front();
}

}  // namespace

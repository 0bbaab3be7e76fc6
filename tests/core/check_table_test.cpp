// SPDX-License-Identifier: Apache-2.0
// The table-driven check runner against calls that break the rules on
// purpose, which it must report (the families' check tests run it on the
// real exports).
#include <gtest/gtest.h>

#include "check_table.h"
#include "harness.h"

namespace {

using zt::checks::Arena;
using zt::checks::Table;

constexpr int kW = 9, kH = 4;

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

using zt::failures_of;

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
    EXPECT_TRUE(mentions(f[0], "fake variant u8: bad returned -5 but wrote")) << f[0];
    EXPECT_TRUE(mentions(f[0], "block \"dst\"")) << f[0];
    EXPECT_TRUE(mentions(f[1], "fake variant n8")) << f[1];

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

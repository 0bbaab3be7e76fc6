// SPDX-License-Identifier: Apache-2.0
// The harness itself: guard pages on both sides of a block, the padding
// check of images, ROIs inside a larger block. Each check is shown to
// report the fault it exists for.
#include <gtest/gtest.h>

#include <unistd.h>

#include <set>

#include "harness.h"

namespace {

using zt::failures_of;
using zt::Guarded;
using Side = Guarded::Side;

bool mentions(const std::string& s, const char* part) { return s.find(part) != std::string::npos; }

// One byte past the end of an end-side block and one byte before the
// start of a start-side block fault; the bytes of the block do not.
TEST(HarnessDeathTest, GuardPagesOnBothSides) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (std::size_t n : {std::size_t(100), std::size_t(4096)}) {  // with and without slack
        Guarded end(n, Side::End), start(n, Side::Start);
        EXPECT_EQ(end.side(), Side::End);
        EXPECT_EQ(start.side(), Side::Start);
        volatile unsigned char sink = 0;
        sink = sink + end.data()[0] + end.data()[n - 1] + start.data()[0] + start.data()[n - 1];
        EXPECT_DEATH(sink = end.data()[n], "") << n;
        EXPECT_DEATH(sink = start.data()[-1], "") << n;
        // The far end of each block has its guard too, past the slack that
        // fills the last page.
        const std::ptrdiff_t page = sysconf(_SC_PAGESIZE), slack = (std::ptrdiff_t(n) + page - 1) / page * page - std::ptrdiff_t(n);
        EXPECT_DEATH(sink = end.data()[-slack - 1], "") << n;
        EXPECT_DEATH(sink = start.data()[std::ptrdiff_t(n) + slack], "") << n;
    }
}

// Blocks made k at a time in a loop: each of the k positions meets both
// sides within a short sweep.
TEST(Harness, AlternatingSidesReachEveryPosition) {
    for (int k = 1; k <= 6; ++k) {
        std::vector<std::set<Side>> seen{std::size_t(k)};
        for (int it = 0; it < 12; ++it)
            for (int j = 0; j < k; ++j) seen[std::size_t(j)].insert(Guarded(16).side());
        for (int j = 0; j < k; ++j) EXPECT_EQ(seen[std::size_t(j)].size(), 2u) << "k " << k << " position " << j;
    }
}

// A write into the bytes between a block and its far guard is reported
// when the block goes, with its offset relative to the block.
TEST(Harness, WritesBesideABlockAreReported) {
    auto f = failures_of([] {
        Guarded b(10, Side::End);
        b.data()[-3] = uint8_t(b.data()[-3] + 1);
    });
    ASSERT_EQ(f.size(), 1u);
    EXPECT_TRUE(mentions(f[0], "1 byte(s) written outside it, first at offset -3 (before the first byte)")) << f[0];
#if defined(__SANITIZE_ADDRESS__)
    // AddressSanitizer knows the bytes past the block as poisoned and
    // reports the write itself.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            Guarded b(10, Side::Start);
            b.data()[12] = uint8_t(b.data()[12] + 1);
        },
        "use-after-poison");
#else
    f = failures_of([] {
        Guarded b(10, Side::Start);
        b.data()[12] = uint8_t(b.data()[12] + 1);
    });
    ASSERT_EQ(f.size(), 1u);
    EXPECT_TRUE(mentions(f[0], "first at offset 12 (past the last byte)")) << f[0];
#endif
    EXPECT_TRUE(failures_of([] {
                    Guarded b(10);
                    std::memset(b.data(), 0, 10);
                }).empty());
}

// Changed ROI pixels are fine; a changed padding byte, a changed margin
// byte, or a padding byte changed before a refill is reported with the
// image's name and where it was made.
TEST(Harness, PaddingWritesAreReported) {
    EXPECT_TRUE(failures_of([] {
                    zt::Image<uint16_t> img(5, 3, 3, 6);
                    for (int y = 0; y < 3; ++y) std::memset(img.row(y), 0, 5 * 3 * 2);
                    img.fill(7);
                    img.fill_random();
                }).empty());

    auto f = failures_of([] {
        zt::Image<uint16_t> img(5, 3, 3, 6);
        img.named("dst");
        img.row(1)[15] ^= 1;  // the first padding element after row 1
    });
    ASSERT_EQ(f.size(), 1u);
    EXPECT_TRUE(mentions(f[0], "image \"dst\" 5x3x3 of 2-byte elements, step 36, made at ")) << f[0];
    EXPECT_TRUE(mentions(f[0], "harness_test.cpp:")) << f[0];
    EXPECT_TRUE(mentions(f[0], "1 padding byte(s) changed, first at block offset 66 (ROI row 1, byte 30 of the row"))
        << f[0];

    // Refilling checks first: the fault is not papered over.
    f = failures_of([] {
        zt::Image<float> img(4, 2, 1, 8);
        reinterpret_cast<unsigned char*>(img.row(0))[17] ^= 0x10;
        img.fill_random();
    });
    EXPECT_EQ(f.size(), 1u);

    // The margin around a ROI, above, left of and below it.
    for (auto [x, y] : {std::pair{0, -1}, std::pair{-1, 0}, std::pair{2, 4}, std::pair{7, 2}}) {
        f = failures_of([x = x, y = y] {
            zt::Image<uint8_t> img(7, 4, 1, 3, zt::Margin{2, 1});
            img.at(x, y) ^= 0x80;
        });
        ASSERT_EQ(f.size(), 1u) << x << "," << y;
        EXPECT_TRUE(mentions(f[0], "margin 2,1")) << f[0];
    }

    // Opting out, or taking the written padding as the state to keep.
    EXPECT_TRUE(failures_of([] {
                    zt::Image<uint8_t> img(3, 3, 1, 5);
                    img.allow_padding_writes();
                    img.row(0)[4] ^= 1;
                }).empty());
    EXPECT_TRUE(failures_of([] {
                    zt::Image<uint8_t> img(3, 3, 1, 5);
                    img.row(0)[4] ^= 1;
                    img.remember_padding();
                }).empty());
}

// A ROI inside a larger block: the cv::Mat views agree with the pointers,
// and a moved image still checks its padding.
TEST(Harness, RoiInsideALargerBlock) {
    zt::Image<int16_t> img(6, 3, 3, 4, zt::Margin{2, 3});
    const cv::Mat outer = img.outer_mat(), roi = img.mat();
    ASSERT_EQ(outer.size(), cv::Size(10, 9));
    EXPECT_EQ(cv::norm(outer(cv::Rect(2, 3, 6, 3)), roi, cv::NORM_INF), 0.0);
    // The block ends where the last margin row ends.
    EXPECT_EQ(img.block().data() + img.block().size(), outer.ptr<unsigned char>(8) + 10 * 3 * 2);
    // The margin is noise, not a constant.
    EXPECT_NE(img.at(-1, -1, 0), img.at(-2, -3, 1));

    auto f = failures_of([] {
        std::vector<zt::Image<uint8_t>> v;
        v.emplace_back(4, 2, 1, 2);
        v.emplace_back(4, 2, 1, 2);  // moves the first
        v[0].row(0)[5] ^= 1;
    });
    EXPECT_EQ(f.size(), 1u);
}

}  // namespace

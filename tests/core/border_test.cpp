// SPDX-License-Identifier: Apache-2.0
// The shared border engine against OpenCV's border interpolation.
#include <gtest/gtest.h>

#include <opencv2/core.hpp>

#include "core/border.h"

namespace {

using namespace zeb::border;

TEST(Border, IndexMappingMatchesOpenCV) {
    const std::pair<int32_t, int> modes[] = {{kRepl, cv::BORDER_REPLICATE},
                                             {kWrap, cv::BORDER_WRAP},
                                             {kMirror, cv::BORDER_REFLECT_101},
                                             {kMirrorEdge, cv::BORDER_REFLECT}};
    for (auto [ours, theirs] : modes)
        for (int n : {1, 2, 3, 5, 16})
            for (int i = -2 * n - 3; i < 3 * n + 3; ++i) {
                if (theirs == cv::BORDER_REFLECT_101 && n == 1) {
                    EXPECT_EQ(map_index(i, n, ours), 0);
                    continue;
                }
                EXPECT_EQ(map_index(i, n, ours), cv::borderInterpolate(i, n, theirs))
                    << "mode " << ours << " n " << n << " i " << i;
            }
    EXPECT_EQ(map_index(-1, 4, kConst), -1);
    EXPECT_EQ(map_index(4, 4, kConst), -1);
    EXPECT_EQ(map_index(2, 4, kConst), 2);
}

TEST(Border, DecodeTurnsInMemoryIntoAllFlags) {
    const Spec s = decode(6);
    EXPECT_TRUE(s.top && s.bottom && s.left && s.right);
    const Spec t = decode(16 | kConst);
    EXPECT_TRUE(t.top);
    EXPECT_FALSE(t.bottom || t.left || t.right);
    EXPECT_EQ(t.mode, kConst);
    const Spec u = decode(kMirror | kLeft | kRight);
    EXPECT_EQ(u.mode, kMirror);
    EXPECT_TRUE(u.left && u.right && !u.top && !u.bottom);
}

TEST(Border, ExtendRowMixesRulesAndMemory) {
    // Two pixels of memory on either side of a three-pixel, two-channel row.
    const int16_t mem[14] = {-4, -3, -2, -1, 10, 11, 20, 21, 30, 31, 90, 91, 92, 93};
    const int16_t* src = mem + 4;
    const int16_t value[2] = {7, 8};
    int16_t out[14];
    Spec s = decode(kConst | kRight);
    extend_row(src, 3, 2, 2, 2, s, value, out);
    const int16_t want1[14] = {7, 8, 7, 8, 10, 11, 20, 21, 30, 31, 90, 91, 92, 93};
    EXPECT_EQ(0, std::memcmp(out, want1, sizeof out));
    s = decode(kMirror);
    extend_row(src, 3, 2, 2, 2, s, value, out);
    const int16_t want2[14] = {30, 31, 20, 21, 10, 11, 20, 21, 30, 31, 20, 21, 10, 11};
    EXPECT_EQ(0, std::memcmp(out, want2, sizeof out));
}

TEST(Border, SourceRowsFollowTheRuleOrMemory) {
    uint8_t img[5][4] = {};
    uint8_t* base = &img[1][0];  // ROI rows 0..2, one row of memory either side
    Spec s = decode(kRepl | kTop);
    EXPECT_EQ(source_row(base, 4, -1, 3, s), &img[0][0]);
    EXPECT_EQ(source_row(base, 4, 3, 3, s), &img[3][0]);  // replicate: last ROI row
    s = decode(kConst);
    EXPECT_EQ(source_row(base, 4, -1, 3, s), nullptr);
    EXPECT_EQ(source_row(base, 4, 1, 3, s), &img[2][0]);
}

}  // namespace

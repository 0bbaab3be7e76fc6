// Argument checks of the row and column passes and of every buffer-size
// query: one check table per member (the expected status of a case follows
// the member's type, channel count and divisor rule), run through both
// variants with canaries on every block the call could touch.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <type_traits>

#include "check_table.h"
#include "harness.h"

ZEB_TEST_TABLE(zebiFilterRowBorderPipeline_16s_C1R);
ZEB_TEST_TABLE(zebiFilterRowBorderPipeline_16s_C3R);
ZEB_TEST_TABLE(zebiFilterRowBorderPipeline_Low_16s_C1R);
ZEB_TEST_TABLE(zebiFilterRowBorderPipeline_Low_16s_C3R);
ZEB_TEST_TABLE(zebiFilterRowBorderPipeline_16u_C1R);
ZEB_TEST_TABLE(zebiFilterRowBorderPipeline_16u_C3R);
ZEB_TEST_TABLE(zebiFilterRowBorderPipeline_8u16s_C1R);
ZEB_TEST_TABLE(zebiFilterRowBorderPipeline_8u16s_C3R);
ZEB_TEST_TABLE(zebiFilterRowBorderPipeline_32f_C1R);
ZEB_TEST_TABLE(zebiFilterRowBorderPipeline_32f_C3R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_16s_C1R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_16s_C3R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_Low_16s_C1R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_Low_16s_C3R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_16s8u_C1R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_16s8u_C3R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_16s8s_C1R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_16s8s_C3R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_16u_C1R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_16u_C3R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_32f_C1R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_32f_C3R);

namespace {

using zt::checks::Arena;
using zt::checks::Case;
using zt::checks::Table;

constexpr int kW = 11, kH = 3, kK = 5, kMargin = 4;

// One call of either pass, typeless; each member casts to its own types.
struct Args {
    const void* src;  // row pass: source ROI; column pass: unused
    int step;         // row pass: source step; column pass: destination step
    void** rows;
    void* dst;
    ZebiSize roi;
    const void* kern;
    int k, anchor, border;
    const void* value;
    int divisor;
    Zeb8u* buf;
};

template <class T>
T value_or_zero(const void* p) {
    T v{};
    if (p) std::memcpy(&v, p, sizeof v);
    return v;
}

// Properties of a member that decide the expected statuses.
struct Member {
    std::string name;
    int srcSize, dstSize, ch;
    bool integer, unsignedDivisor, evenCheck;
    ZebStatus (*size)(ZebiSize, int, int*);
    std::function<ZebStatus(int, Args&)> call;
};

#define ROW_MEMBER(name, sizeQuery, S, D, ch_)                                                                    \
    Member {                                                                                                      \
        #name, int(sizeof(S)), int(sizeof(D)), ch_, !std::is_same_v<S, float>, std::is_same_v<S, Zeb16u>,         \
            !std::is_same_v<S, Zeb8u>, sizeQuery, [](auto v, auto& a) -> ZebStatus {                               \
                auto rows = reinterpret_cast<D* const*>(a.rows);                                                  \
                auto src = static_cast<const S*>(a.src);                                                          \
                using K = std::conditional_t<std::is_same_v<S, float>, Zeb32f, Zeb16s>;                           \
                auto kern = static_cast<const K*>(a.kern);                                                        \
                auto val = [&] {                                                                                  \
                    if constexpr (ch_ == 1)                                                                       \
                        return value_or_zero<S>(a.value);                                                         \
                    else                                                                                          \
                        return static_cast<const S*>(a.value);                                                    \
                }();                                                                                              \
                if constexpr (std::is_same_v<S, float>)                                                           \
                    return zeb_tbl_##name[v](src, a.step, rows, a.roi, kern, a.k, a.anchor, a.border, val, a.buf); \
                else                                                                                              \
                    return zeb_tbl_##name[v](src, a.step, rows, a.roi, kern, a.k, a.anchor, a.border, val,        \
                                             a.divisor, a.buf);                                                   \
            }                                                                                                     \
    }

#define COL_MEMBER(name, sizeQuery, S, D, ch_)                                                                   \
    Member {                                                                                                     \
        #name, int(sizeof(S)), int(sizeof(D)), ch_, !std::is_same_v<S, float>, false, true, sizeQuery,           \
            [](auto v, auto& a) -> ZebStatus {                                                                  \
                auto rows = reinterpret_cast<const S* const*>(a.rows);                                           \
                if constexpr (std::is_same_v<S, float>)                                                          \
                    return zeb_tbl_##name[v](rows, static_cast<D*>(a.dst), a.step, a.roi,                        \
                                             static_cast<const Zeb32f*>(a.kern), a.k, a.buf);                    \
                else                                                                                             \
                    return zeb_tbl_##name[v](rows, static_cast<D*>(a.dst), a.step, a.roi,                        \
                                             static_cast<const Zeb16s*>(a.kern), a.k, a.divisor, a.buf);         \
            }                                                                                                    \
    }

std::vector<Member> row_members() {
    return {
        ROW_MEMBER(zebiFilterRowBorderPipeline_16s_C1R, zebiFilterRowBorderPipelineGetBufferSize_16s_C1R, Zeb16s, Zeb16s, 1),
        ROW_MEMBER(zebiFilterRowBorderPipeline_16s_C3R, zebiFilterRowBorderPipelineGetBufferSize_16s_C3R, Zeb16s, Zeb16s, 3),
        ROW_MEMBER(zebiFilterRowBorderPipeline_Low_16s_C1R, zebiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R, Zeb16s, Zeb16s, 1),
        ROW_MEMBER(zebiFilterRowBorderPipeline_Low_16s_C3R, zebiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R, Zeb16s, Zeb16s, 3),
        ROW_MEMBER(zebiFilterRowBorderPipeline_16u_C1R, zebiFilterRowBorderPipelineGetBufferSize_16u_C1R, Zeb16u, Zeb16u, 1),
        ROW_MEMBER(zebiFilterRowBorderPipeline_16u_C3R, zebiFilterRowBorderPipelineGetBufferSize_16u_C3R, Zeb16u, Zeb16u, 3),
        ROW_MEMBER(zebiFilterRowBorderPipeline_8u16s_C1R, zebiFilterRowBorderPipelineGetBufferSize_8u16s_C1R, Zeb8u, Zeb16s, 1),
        ROW_MEMBER(zebiFilterRowBorderPipeline_8u16s_C3R, zebiFilterRowBorderPipelineGetBufferSize_8u16s_C3R, Zeb8u, Zeb16s, 3),
        ROW_MEMBER(zebiFilterRowBorderPipeline_32f_C1R, zebiFilterRowBorderPipelineGetBufferSize_32f_C1R, Zeb32f, Zeb32f, 1),
        ROW_MEMBER(zebiFilterRowBorderPipeline_32f_C3R, zebiFilterRowBorderPipelineGetBufferSize_32f_C3R, Zeb32f, Zeb32f, 3),
    };
}

std::vector<Member> column_members() {
    return {
        COL_MEMBER(zebiFilterColumnPipeline_16s_C1R, zebiFilterColumnPipelineGetBufferSize_16s_C1R, Zeb16s, Zeb16s, 1),
        COL_MEMBER(zebiFilterColumnPipeline_16s_C3R, zebiFilterColumnPipelineGetBufferSize_16s_C3R, Zeb16s, Zeb16s, 3),
        COL_MEMBER(zebiFilterColumnPipeline_Low_16s_C1R, zebiFilterColumnPipelineGetBufferSize_Low_16s_C1R, Zeb16s, Zeb16s, 1),
        COL_MEMBER(zebiFilterColumnPipeline_Low_16s_C3R, zebiFilterColumnPipelineGetBufferSize_Low_16s_C3R, Zeb16s, Zeb16s, 3),
        COL_MEMBER(zebiFilterColumnPipeline_16s8u_C1R, zebiFilterColumnPipelineGetBufferSize_16s8u_C1R, Zeb16s, Zeb8u, 1),
        COL_MEMBER(zebiFilterColumnPipeline_16s8u_C3R, zebiFilterColumnPipelineGetBufferSize_16s8u_C3R, Zeb16s, Zeb8u, 3),
        COL_MEMBER(zebiFilterColumnPipeline_16s8s_C1R, zebiFilterColumnPipelineGetBufferSize_16s8s_C1R, Zeb16s, Zeb8s, 1),
        COL_MEMBER(zebiFilterColumnPipeline_16s8s_C3R, zebiFilterColumnPipelineGetBufferSize_16s8s_C3R, Zeb16s, Zeb8s, 3),
        COL_MEMBER(zebiFilterColumnPipeline_16u_C1R, zebiFilterColumnPipelineGetBufferSize_16u_C1R, Zeb16u, Zeb16u, 1),
        COL_MEMBER(zebiFilterColumnPipeline_16u_C3R, zebiFilterColumnPipelineGetBufferSize_16u_C3R, Zeb16u, Zeb16u, 3),
        COL_MEMBER(zebiFilterColumnPipeline_32f_C1R, zebiFilterColumnPipelineGetBufferSize_32f_C1R, Zeb32f, Zeb32f, 1),
        COL_MEMBER(zebiFilterColumnPipeline_32f_C3R, zebiFilterColumnPipelineGetBufferSize_32f_C3R, Zeb32f, Zeb32f, 3),
    };
}

// A valid call: a 5-tap kernel of small integers, the source ROI kMargin
// pixels inside a block wide enough for border 6 and a longer step, rows
// and buffer at exactly their sizes, one row pointer more than the pass
// reads (so a case can null the one after the last).
Args valid_call(Arena& m, const Member& mb, bool rowPass) {
    Args a{};
    const int pixel = mb.ch * (rowPass ? mb.srcSize : mb.dstSize);
    const int nRows = (rowPass ? kH : kH + kK - 1) + 1;
    a.rows = m.array<void*>("row pointers", nRows);
    for (int j = 0; j < nRows; ++j)
        a.rows[j] = m.block("row " + std::to_string(j), std::size_t(kW) * mb.ch * (rowPass ? mb.dstSize : mb.srcSize));
    if (rowPass) {
        const auto src = m.image<Zeb8u>("src", (kW + 2 * kMargin) * pixel, kH, 1, 4 * pixel);
        a.src = src.ptr + kMargin * pixel;
        a.step = src.step;
    } else {
        const auto dst = m.image<Zeb8u>("dst", kW * pixel, kH, 1, 4 * pixel);
        a.dst = dst.ptr;
        a.step = dst.step;
    }
    a.roi = {kW, kH};
    auto* kern = m.array<Zeb32f>("kernel", kK);  // room for either coefficient type
    for (int i = 0; i < kK; ++i) {
        const Zeb16s small = Zeb16s(i - 2);
        if (mb.integer)
            std::memcpy(reinterpret_cast<char*>(kern) + 2 * i, &small, 2);
        else
            kern[i] = float(small);
    }
    a.kern = kern;
    a.k = kK, a.anchor = kK / 2, a.border = 1, a.divisor = 3;
    a.value = m.array<Zeb32f>("border value", 3);
    int bytes = 0;
    EXPECT_EQ(mb.size(a.roi, kK, &bytes), 0);
    a.buf = m.block("work buffer", bytes);
    return a;
}

using C = Case<Args>;

ZT_TARGET_SUITE(PipelineChecks);

TEST_P(PipelineChecks, RowPassOrder) {
    for (const Member& mb : row_members()) {
        const int px = mb.ch * mb.srcSize, row = kW * px;
        std::vector<C> cases = {
            {"null src, width 0", [](Args& a) { a.src = nullptr, a.roi.width = 0; }, -8},
            {"null rows", [](Args& a) { a.rows = nullptr; }, -8},
            {"null kernel", [](Args& a) { a.kern = nullptr; }, -8},
            {"null buffer, k 0", [](Args& a) { a.buf = nullptr, a.k = 0; }, -8},
            {"width 0, null row", [](Args& a) { a.roi.width = 0, a.rows[1] = nullptr; }, -6},
            {"height -1", [](Args& a) { a.roi.height = -1; }, -6},
            {"null last row, k 0", [](Args& a) { a.rows[kH - 1] = nullptr, a.k = 0; }, -8},
            {"row after the last null", [](Args& a) { a.rows[kH] = nullptr; }, 0},
            {"null border value, k 0", [](Args& a) { a.value = nullptr, a.k = 0; }, mb.ch == 3 ? -8 : -6},
            {"k 0, anchor 7", [](Args& a) { a.k = 0, a.anchor = 7; }, -6},
            {"anchor k, short step", [row](Args& a) { a.anchor = kK, a.step = row - 1; }, -34},
            {"anchor -1", [](Args& a) { a.anchor = -1; }, -34},
            {"anchor k-1", [](Args& a) { a.anchor = kK - 1; }, 0},
            {"k 1, anchor 0", [](Args& a) { a.k = 1, a.anchor = 0; }, 0},
            {"step one short, border 2", [row](Args& a) { a.step = row - 1, a.border = 2; }, -14},
            {"step exactly the row", [row](Args& a) { a.step = row; }, 0},
            {"odd step, border 3", [](Args& a) { a.step += 1, a.border = 3; }, mb.evenCheck ? -108 : -5},
            {"odd step", [](Args& a) { a.step += 1; }, mb.evenCheck ? -108 : 0},
            {"divisor 0", [](Args& a) { a.divisor = 0; }, mb.integer ? -5 : 0},
            {"divisor -2", [](Args& a) { a.divisor = -2; }, mb.unsignedDivisor ? -5 : 0},
            {"border 0", [](Args& a) { a.border = 0; }, 0},
            {"border 6", [](Args& a) { a.border = 6; }, 0},
            {"1x1", [](Args& a) { a.roi = {1, 1}; }, 0},
        };
        for (int bt : {2, 3, 4, 5, 7, 16, 17, 33, 240, -1})
            cases.push_back({"border " + std::to_string(bt), [bt](Args& a) { a.border = bt; }, -5});
        zt::checks::run(Table<Args>{mb.name, [&mb](Arena& m) { return valid_call(m, mb, true); }, mb.call, cases});
    }
}

TEST_P(PipelineChecks, ColumnPassOrder) {
    for (const Member& mb : column_members()) {
        const int row = kW * mb.ch * mb.dstSize;
        const std::vector<C> cases = {
            {"null rows, width 0", [](Args& a) { a.rows = nullptr, a.roi.width = 0; }, -8},
            {"null dst", [](Args& a) { a.dst = nullptr; }, -8},
            {"null kernel", [](Args& a) { a.kern = nullptr; }, -8},
            {"width -3", [](Args& a) { a.roi.width = -3; }, -6},
            {"last row null", [](Args& a) { a.rows[kH + kK - 2] = nullptr; }, -8},
            {"row after the last null", [](Args& a) { a.rows[kH + kK - 1] = nullptr; }, 0},
            // With k 0 the pointer loop covers height - 1 entries.
            {"row h-2 null, k 0", [](Args& a) { a.rows[kH - 2] = nullptr, a.k = 0; }, -8},
            {"row h-1 null, k 0", [](Args& a) { a.rows[kH - 1] = nullptr, a.k = 0; }, -6},
            {"k -1", [](Args& a) { a.k = -1; }, -6},
            {"step one short, null buffer", [row](Args& a) { a.step = row - 1, a.buf = nullptr; }, -14},
            {"odd step, null buffer", [](Args& a) { a.step += 1, a.buf = nullptr; }, mb.dstSize == 1 ? -8 : -108},
            {"null buffer, divisor 0", [](Args& a) { a.buf = nullptr, a.divisor = 0; }, -8},
            {"divisor 0", [](Args& a) { a.divisor = 0; }, mb.integer ? -5 : 0},
            {"k 1", [](Args& a) { a.k = 1; }, 0},
            {"1x1", [](Args& a) { a.roi = {1, 1}; }, 0},
        };
        zt::checks::run(Table<Args>{mb.name, [&mb](Arena& m) { return valid_call(m, mb, false); }, mb.call, cases});
    }
}

// Every query: null output, sizes below 1, and arguments whose byte count
// does not fit an int (zebStsSizeErr, nothing stored); heights never matter,
// widths only to the column pass of 16-bit signed rows.
TEST(PipelineSizes, ChecksAndCountsBeyondAnInt) {
    for (bool rowPass : {true, false})
        for (const Member& mb : rowPass ? row_members() : column_members()) {
            const bool widthMatters = !rowPass && mb.srcSize == 2 && mb.integer && mb.name.find("16u") == std::string::npos;
            struct Q {
                ZebiSize roi;
                int k;
                ZebStatus want;
            };
            const Q qs[] = {
                {{0, 0}, 0, -6},
                {{5, -1}, 3, -6},
                {{5, 5}, 0, -6},
                {{5, INT_MAX}, 3, 0},
                {{INT_MAX, 5}, 3, widthMatters ? -6 : 0},
                {{INT_MAX / 12, 5}, 3, widthMatters ? -6 : 0},
                {{5, 5}, INT_MAX / 16, rowPass ? -6 : 0},
                {{5, 5}, INT_MAX, rowPass ? -6 : 0},
            };
            EXPECT_EQ(mb.size({5, 5}, 3, nullptr), -8) << mb.name;
            for (const Q& q : qs) {
                int size = -77;
                EXPECT_EQ(mb.size(q.roi, q.k, &size), q.want)
                    << mb.name << " " << q.roi.width << "x" << q.roi.height << " k=" << q.k;
                if (q.want == 0)
                    EXPECT_GT(size, 0) << mb.name;
                else
                    EXPECT_EQ(size, -77) << mb.name << " stored a size on failure";
            }
        }
}

}  // namespace

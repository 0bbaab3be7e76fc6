// The row and column passes: argument checks of every member (check tables
// with canaries on every block), results through both variants on every
// vector target against the per-sample definitions (bit for bit, every row
// and work buffer at exactly its queried size against a guard page, over
// widths, pads, kernel lengths, anchors, borders and channel counts), the
// buffer-size queries, and OpenCV's sepFilter2D on photographs.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <functional>
#include <memory>
#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
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

using zt::Image;
using zt::checks::Arena;
using zt::checks::Case;
using zt::checks::Table;

// One call of either pass, typeless; each member casts to its own types.
struct Args {
    const void* src;  // row pass: source ROI
    int step;         // row pass: source step; column pass: destination step
    void** rows;      // row pass: destination rows; column pass: source rows
    void* dst;        // column pass: destination
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

struct Member;
using Sweep = void (*)(const Member&, int variant, int magnitude);

// What decides a member's expected statuses, its export (through a variant
// table entry), its size query and the sweep of its results.
struct Member {
    std::string name;
    bool rowPass;
    int srcSize, dstSize, ch;
    bool integer, unsignedDivisor, evenCheck;
    ZebStatus (*size)(ZebiSize, int, int*);
    std::function<ZebStatus(int, Args&)> call;
    Sweep sweep;
};

template <class S, class D, class K>
void sweep_row(const Member& m, int variant, int magnitude);
template <class S, class D, class K>
void sweep_column(const Member& m, int variant, int magnitude);

#define ROW_MEMBER(name, sizeQuery, S, D, ch_)                                                              \
    Member {                                                                                                \
#name, true, int(sizeof(S)), int(sizeof(D)), ch_, !std::is_same_v<S, float>, std::is_same_v<S, Zeb16u>,   \
            !std::is_same_v<S, Zeb8u>, sizeQuery,                                                                 \
            [](auto v, auto& a) -> ZebStatus {                                                                    \
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
            },                                                                                                    \
            sweep_row<S, D, std::conditional_t<std::is_same_v<S, float>, Zeb32f, Zeb16s>> \
    }

#define COL_MEMBER(name, sizeQuery, S, D, ch_)                                                             \
    Member {                                                                                               \
#name, false, int(sizeof(S)), int(sizeof(D)), ch_, !std::is_same_v<S, float>, false, true, sizeQuery,    \
            [](auto v, auto& a) -> ZebStatus {                                                                   \
                auto rows = reinterpret_cast<const S* const*>(a.rows);                                           \
                if constexpr (std::is_same_v<S, float>)                                                          \
                    return zeb_tbl_##name[v](rows, static_cast<D*>(a.dst), a.step, a.roi,                        \
                                             static_cast<const Zeb32f*>(a.kern), a.k, a.buf);                    \
                else                                                                                             \
                    return zeb_tbl_##name[v](rows, static_cast<D*>(a.dst), a.step, a.roi,                        \
                                             static_cast<const Zeb16s*>(a.kern), a.k, a.divisor, a.buf);         \
            },                                                                                                   \
            sweep_column<S, D, std::conditional_t<std::is_same_v<S, float>, Zeb32f, Zeb16s>> \
    }

const std::vector<Member>& members() {
    static const std::vector<Member> m = {
        ROW_MEMBER(zebiFilterRowBorderPipeline_16s_C1R, zebiFilterRowBorderPipelineGetBufferSize_16s_C1R, Zeb16s,
                   Zeb16s, 1),
        ROW_MEMBER(zebiFilterRowBorderPipeline_16s_C3R, zebiFilterRowBorderPipelineGetBufferSize_16s_C3R, Zeb16s,
                   Zeb16s, 3),
        ROW_MEMBER(zebiFilterRowBorderPipeline_Low_16s_C1R, zebiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R,
                   Zeb16s, Zeb16s, 1),
        ROW_MEMBER(zebiFilterRowBorderPipeline_Low_16s_C3R, zebiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R,
                   Zeb16s, Zeb16s, 3),
        ROW_MEMBER(zebiFilterRowBorderPipeline_16u_C1R, zebiFilterRowBorderPipelineGetBufferSize_16u_C1R, Zeb16u,
                   Zeb16u, 1),
        ROW_MEMBER(zebiFilterRowBorderPipeline_16u_C3R, zebiFilterRowBorderPipelineGetBufferSize_16u_C3R, Zeb16u,
                   Zeb16u, 3),
        ROW_MEMBER(zebiFilterRowBorderPipeline_8u16s_C1R, zebiFilterRowBorderPipelineGetBufferSize_8u16s_C1R, Zeb8u,
                   Zeb16s, 1),
        ROW_MEMBER(zebiFilterRowBorderPipeline_8u16s_C3R, zebiFilterRowBorderPipelineGetBufferSize_8u16s_C3R, Zeb8u,
                   Zeb16s, 3),
        ROW_MEMBER(zebiFilterRowBorderPipeline_32f_C1R, zebiFilterRowBorderPipelineGetBufferSize_32f_C1R, Zeb32f,
                   Zeb32f, 1),
        ROW_MEMBER(zebiFilterRowBorderPipeline_32f_C3R, zebiFilterRowBorderPipelineGetBufferSize_32f_C3R, Zeb32f,
                   Zeb32f, 3),
        COL_MEMBER(zebiFilterColumnPipeline_16s_C1R, zebiFilterColumnPipelineGetBufferSize_16s_C1R, Zeb16s, Zeb16s, 1),
        COL_MEMBER(zebiFilterColumnPipeline_16s_C3R, zebiFilterColumnPipelineGetBufferSize_16s_C3R, Zeb16s, Zeb16s, 3),
        COL_MEMBER(zebiFilterColumnPipeline_Low_16s_C1R, zebiFilterColumnPipelineGetBufferSize_Low_16s_C1R, Zeb16s,
                   Zeb16s, 1),
        COL_MEMBER(zebiFilterColumnPipeline_Low_16s_C3R, zebiFilterColumnPipelineGetBufferSize_Low_16s_C3R, Zeb16s,
                   Zeb16s, 3),
        COL_MEMBER(zebiFilterColumnPipeline_16s8u_C1R, zebiFilterColumnPipelineGetBufferSize_16s8u_C1R, Zeb16s, Zeb8u,
                   1),
        COL_MEMBER(zebiFilterColumnPipeline_16s8u_C3R, zebiFilterColumnPipelineGetBufferSize_16s8u_C3R, Zeb16s, Zeb8u,
                   3),
        COL_MEMBER(zebiFilterColumnPipeline_16s8s_C1R, zebiFilterColumnPipelineGetBufferSize_16s8s_C1R, Zeb16s, Zeb8s,
                   1),
        COL_MEMBER(zebiFilterColumnPipeline_16s8s_C3R, zebiFilterColumnPipelineGetBufferSize_16s8s_C3R, Zeb16s, Zeb8s,
                   3),
        COL_MEMBER(zebiFilterColumnPipeline_16u_C1R, zebiFilterColumnPipelineGetBufferSize_16u_C1R, Zeb16u, Zeb16u, 1),
        COL_MEMBER(zebiFilterColumnPipeline_16u_C3R, zebiFilterColumnPipelineGetBufferSize_16u_C3R, Zeb16u, Zeb16u, 3),
        COL_MEMBER(zebiFilterColumnPipeline_32f_C1R, zebiFilterColumnPipelineGetBufferSize_32f_C1R, Zeb32f, Zeb32f, 1),
        COL_MEMBER(zebiFilterColumnPipeline_32f_C3R, zebiFilterColumnPipelineGetBufferSize_32f_C3R, Zeb32f, Zeb32f, 3),
    };
    return m;
}

// ---- argument checks ----

constexpr int kW = 11, kH = 3, kK = 5, kMargin = 4;

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

ZT_TARGET_SUITE(PipelineChecks);

TEST_P(PipelineChecks, RowPassOrder) {
    for (const Member& mb : members())
        if (mb.rowPass) {
            const int px = mb.ch * mb.srcSize, row = kW * px;
            std::vector<Case<Args>> cases = {
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
                {"1x1",
                 [](Args& a) {
                     a.roi = {1, 1};
                 },
                 0},
            };
            for (int bt : {2, 3, 4, 5, 7, 16, 17, 33, 240, -1})
                cases.push_back({"border " + std::to_string(bt), [bt](Args& a) { a.border = bt; }, -5});
            zt::checks::run(Table<Args>{mb.name, [&mb](Arena& m) { return valid_call(m, mb, true); }, mb.call, cases});
        }
}

TEST_P(PipelineChecks, ColumnPassOrder) {
    for (const Member& mb : members())
        if (!mb.rowPass) {
            const int row = kW * mb.ch * mb.dstSize;
            const std::vector<Case<Args>> cases = {
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
                {"1x1",
                 [](Args& a) {
                     a.roi = {1, 1};
                 },
                 0},
            };
            zt::checks::run(Table<Args>{mb.name, [&mb](Arena& m) { return valid_call(m, mb, false); }, mb.call, cases});
        }
}

// Every query: null output, sizes below 1, and arguments whose byte count
// does not fit an int (zebStsSizeErr, nothing stored); heights never matter,
// widths only to the column pass of 16-bit signed rows.
TEST(PipelineSizes, ChecksAndCountsBeyondAnInt) {
    for (const Member& mb : members()) {
        const bool rowPass = mb.rowPass;
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

// ---- definitions ----

template <class T>
float lo_of() {
    return float(std::numeric_limits<T>::lowest());
}
template <class T>
float hi_of() {
    return float(std::numeric_limits<T>::max());
}

// Pixel p (which may lie outside 0..w-1) of a source row under border bt.
template <class S>
S ext(const S* row, int w, int ch, int p, int c, int bt, const S* value) {
    if (p >= 0 && p < w) return row[p * ch + c];
    if (bt == 6) return row[p * ch + c];
    if (bt == 1) return row[std::clamp(p, 0, w - 1) * ch + c];
    return value[c];
}

// Whether the row pass sums exact integers: 16s and 8u16s with no
// coefficient -32768 and sum|k| * max|sample| below 2^31.
template <class S, class D>
bool exact_path(const std::vector<int16_t>& k) {
    if (!std::is_same_v<D, int16_t>) return false;
    int64_t t = 0;
    for (int16_t v : k) {
        if (v == -32768) return false;
        t += std::abs(int(v));
    }
    return t * (std::is_same_v<S, uint8_t> ? 255 : 32768) <= INT32_MAX;
}

template <class S, class D, class K>
D row_definition(const S* row, int w, int ch, int x, int c, const std::vector<K>& kern, int a, int bt, const S* value,
                 int divisor) {
    const int k = int(kern.size());
    auto px = [&](int i) { return ext(row, w, ch, x - a + i, c, bt, value); };
    if constexpr (std::is_same_v<K, float>) {
        float acc = kern[0] * px(0);
        for (int i = 1; i < k; ++i) acc = acc + kern[i] * px(i);
        return acc;
    } else {
        const float r = 1.0f / float(divisor);
        float v;
        if (exact_path<S, D>(kern)) {
            int64_t s = 0;
            for (int i = 0; i < k; ++i) s += int64_t(kern[i]) * px(i);
            v = float(int32_t(s)) * r;
        } else {
            v = (float(kern[0]) * r) * float(px(0));
            for (int i = 1; i < k; ++i) v = v + (float(kern[i]) * r) * float(px(i));
        }
        return D(std::trunc(std::clamp(v, lo_of<D>(), hi_of<D>())));
    }
}

template <class S, class D, class K>
D col_definition(const S* const* rows, int e, int n, const std::vector<K>& kern, int divisor) {
    const int k = int(kern.size());
    if constexpr (std::is_same_v<K, float>) {
        float acc = kern[0] * rows[0][e];
        for (int j = 1; j < k; ++j) acc = acc + kern[j] * rows[j][e];
        return acc;
    } else {
        const float r = 1.0f / float(divisor);
        float v = (float(kern[0]) * r) * float(rows[0][e]);
        for (int j = 1; j < k; ++j) v = v + (float(kern[j]) * r) * float(rows[j][e]);
        v = std::clamp(v, lo_of<D>(), hi_of<D>());
        const bool tail = std::is_same_v<S, int16_t> && e >= n - n % 16;
        return D(tail ? std::trunc(v) : std::nearbyint(v));
    }
}

template <class K>
std::vector<K> random_kernel(int k, int magnitude) {
    std::vector<K> v(k);
    for (K& c : v) {
        if constexpr (std::is_same_v<K, float>)
            c = std::uniform_real_distribution<float>(-1.f, 1.f)(zt::rng());
        else
            c = K(std::uniform_int_distribution<int>(-magnitude, magnitude)(zt::rng()));
    }
    return v;
}

// Divisors of either sign (16u: positive); powers of two with small kernels
// keep the exact integer paths, the others and larger magnitudes leave them.
std::vector<int> divisors(const Member& m) {
    if (!m.integer) return {1};
    if (m.unsignedDivisor || (!m.rowPass && m.srcSize == 2 && m.name.find("16u") != std::string::npos))
        return {1, 3, 256, 4, 40000};
    return {1, 4, -3, 7, 64, -16, 256, 1000, -2, 30000};
}

// Row pass on a w x h ROI against the definition. For border 6 the source
// holds k-1 extra pixels around the ROI; every destination row and the work
// buffer end at guard pages.
template <class S, class D, class K>
void check_row(const Member& m, int variant, int w, int pad, const std::vector<K>& kern, int a, int bt, int divisor) {
    const int h = 2, ch = m.ch, k = int(kern.size());
    const int left = bt == 6 ? a : 0, right = bt == 6 ? k - 1 - a : 0;
    Image<S> src(w + left + right, h, ch, pad);
    std::vector<std::unique_ptr<zt::Guarded>> rows;
    std::vector<void*> ptrs;
    for (int y = 0; y < h; ++y) {
        rows.push_back(std::make_unique<zt::Guarded>(sizeof(D) * w * ch));
        ptrs.push_back(rows.back()->data());
    }
    int size = 0;
    ASSERT_EQ(m.size({w, h}, k, &size), 0);
    zt::Guarded buf(size);
    const S value[3] = {zt::random_value<S>(), zt::random_value<S>(), zt::random_value<S>()};
    Args args{src.ptr() + left * ch,
              src.step(),
              ptrs.data(),
              nullptr,
              {w, h},
              kern.data(),
              k,
              a,
              bt,
              value,
              divisor,
              buf.data()};
    ASSERT_EQ(m.call(variant, args), 0) << m.name;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            for (int c = 0; c < ch; ++c) {
                const D want = row_definition<S, D>(src.row(y) + left * ch, w, ch, x, c, kern, a, bt, value, divisor);
                const D got = static_cast<const D*>(ptrs[y])[x * ch + c];
                ASSERT_EQ(std::memcmp(&want, &got, sizeof(D)), 0)
                    << m.name << " variant " << variant << " w=" << w << " pad=" << pad << " k=" << k << " a=" << a
                    << " bt=" << bt << " div=" << divisor << " x=" << x << " c=" << c << " want " << +want << " got "
                    << +got;
            }
}

template <class S, class D, class K>
void sweep_row(const Member& m, int variant, int magnitude) {
    const std::vector<int> div = divisors(m);
    for (int k : {1, 2, 3, 4, 5, 7, 12})
        for (int w : zt::test_widths()) {
            const int pad = zt::test_pads(sizeof(S))[(w + k) % 4];
            const std::vector<K> kern = random_kernel<K>(k, magnitude);
            for (int a : {0, k / 2, k - 1})
                for (int bt : {0, 1, 6})
                    check_row<S, D>(m, variant, w, pad, kern, a, bt, div[(w + a + bt) % div.size()]);
        }
}

// Column pass: source rows in scrambled order, each against its own guard
// page, into a padded destination.
template <class S, class D, class K>
void check_column(const Member& m, int variant, int w, int h, int pad, const std::vector<K>& kern, int divisor) {
    const int ch = m.ch, k = int(kern.size()), n = w * ch;
    std::vector<std::unique_ptr<zt::Guarded>> blocks;
    std::vector<void*> rows;
    for (int j = 0; j < h + k - 1; ++j) {
        blocks.push_back(std::make_unique<zt::Guarded>(sizeof(S) * n));
        S* r = reinterpret_cast<S*>(blocks.back()->data());
        for (int e = 0; e < n; ++e) r[e] = zt::random_value<S>();
        rows.push_back(r);
    }
    if (h + k - 1 > 2) std::swap(rows[0], rows[2]);
    Image<D> dst(w, h, ch, pad);
    int size = 0;
    ASSERT_EQ(m.size({w, h}, k, &size), 0);
    zt::Guarded buf(size);
    Args args{nullptr, dst.step(), rows.data(), dst.ptr(), {w, h}, kern.data(), k, 0, 0, nullptr, divisor, buf.data()};
    ASSERT_EQ(m.call(variant, args), 0) << m.name;
    for (int y = 0; y < h; ++y)
        for (int e = 0; e < n; ++e) {
            const D want =
                col_definition<S, D>(reinterpret_cast<const S* const*>(rows.data()) + y, e, n, kern, divisor);
            const D got = dst.row(y)[e];
            ASSERT_EQ(std::memcmp(&want, &got, sizeof(D)), 0)
                << m.name << " variant " << variant << " w=" << w << " k=" << k << " div=" << divisor << " e=" << e
                << " want " << +want << " got " << +got;
        }
}

template <class S, class D, class K>
void sweep_column(const Member& m, int variant, int magnitude) {
    const std::vector<int> div = divisors(m);
    for (int k : {1, 2, 3, 5, 6, 9, 35})
        for (int w : zt::test_widths()) {
            const int pad = zt::test_pads(sizeof(D))[(w + k) % 4];
            check_column<S, D, K>(m, variant, w, 3, pad, random_kernel<K>(k, magnitude), div[(w + k) % div.size()]);
        }
}

ZT_TARGET_SUITE(PipelineResults);

// Magnitude 5 keeps the exact integer paths (the byte-pair row pass of 8u
// sources, the integer column pass with power-of-two divisors), 300 (row
// passes) keeps the exact row sums but no byte pairs, 32767 leaves every
// integer path for single precision.
TEST_P(PipelineResults, EveryMemberMatchesItsDefinition) {
    for (const Member& m : members())
        for (int v = 0; v < 2; ++v)
            for (int magnitude : {5, 300, 32767}) {
                if (magnitude == 300 && !m.rowPass) continue;
                m.sweep(m, v, magnitude);
                if (!m.integer) break;
            }
}

// A coefficient of -32768 forces single precision for the whole call even
// when the kernel is short; long kernels of small coefficients take the
// integer paths whatever their length.
TEST_P(PipelineResults, SwitchesBetweenIntegerAndSinglePrecision) {
    const Member& m16 = members()[0];
    const Member& m8 = members()[6];
    ASSERT_EQ(m8.name, "zebiFilterRowBorderPipeline_8u16s_C1R");
    for (int v = 0; v < 2; ++v) {
        for (int w : zt::test_widths()) {
            check_row<Zeb16s, Zeb16s>(m16, v, w, 0, std::vector<Zeb16s>{-32768, 3, 1}, 1, 1, 7);
            check_row<Zeb16s, Zeb16s>(m16, v, w, 0, std::vector<Zeb16s>{1, -32768, 2, 5, 1}, 2, 0, -3);
        }
        for (int k : {128, 129, 150}) {
            std::vector<Zeb16s> kern(k, 0);
            kern[0] = 3, kern[k / 2] = -5, kern[k - 1] = 7;
            for (int w : {40, 200}) check_row<Zeb8u, Zeb16s>(m8, v, w, 0, kern, k / 2, 1, 2);
        }
    }
}

// ---- OpenCV ----

ZT_TARGET_SUITE(PipelineOpenCV);

// Runs a row pass over the whole image with replicated or zero borders,
// then builds the vertical border by pointer (replicate: repeated first and
// last rows; constant 0: a row filtered from a zero row) and runs the
// column pass.
template <class S, class M, class D, class RowFn, class ColFn>
void pipeline_image(const Image<S>& src, Image<D>& dst, int kx, int ky, int bt, RowFn rowFn, ColFn colFn) {
    const int w = src.width(), h = src.height(), ch = src.channels(), ay = ky / 2;
    std::vector<std::vector<M>> mid(h + 1, std::vector<M>(std::size_t(w) * ch));
    std::vector<M*> midPtrs;
    for (int y = 0; y < h; ++y) midPtrs.push_back(mid[y].data());
    ASSERT_EQ(rowFn(src.ptr(), src.step(), midPtrs.data(), src.size()), 0);
    Image<S> zero(w, 1, ch);
    zero.fill(S(0));
    M* zeroRow = mid[h].data();
    ASSERT_EQ(rowFn(zero.ptr(), zero.step(), &zeroRow, ZebiSize{w, 1}), 0);
    std::vector<const M*> ptrs;
    for (int j = -ay; j < h + ky - 1 - ay; ++j) {
        if (j >= 0 && j < h)
            ptrs.push_back(mid[j].data());
        else
            ptrs.push_back(bt == 1 ? mid[std::clamp(j, 0, h - 1)].data() : zeroRow);
    }
    ASSERT_EQ(colFn(ptrs.data(), dst.ptr(), dst.step(), dst.size()), 0);
    (void)kx;
}

// A photograph (grey for one channel) as a guarded image of type T.
template <class T>
Image<T> photo(const char* file, int ch) {
    cv::Mat m = cv::imread(std::string("/usr/share/doc/opencv-doc/examples/data/") + file,
                           ch == 1 ? cv::IMREAD_GRAYSCALE : cv::IMREAD_COLOR);
    EXPECT_FALSE(m.empty()) << file;
    if (m.empty()) m = cv::Mat(64, 64, CV_8UC(ch), cv::Scalar::all(77));
    Image<T> img(m.cols, m.rows, ch, 4 * int(sizeof(T)));
    m.convertTo(img.mat(), zt::CvDepth<T>::v);
    return img;
}

// Random kernels of length 3, 5 and 9 on photographs, constant 0 and
// replicated borders. Both compute single-precision products, OpenCV in its
// own order of summation: sums of k*k products of pixels up to 255 agree
// to far better than 1e-2.
TEST_P(PipelineOpenCV, FloatPipelineAgreesWithSepFilter2D) {
    for (int ch : {1, 3})
        for (int k : {3, 5, 9}) {
            const Image<Zeb32f> src = photo<Zeb32f>(ch == 1 ? "building.jpg" : "fruits.jpg", ch);
            Image<Zeb32f> dst(src.width(), src.height(), ch);
            const std::vector<Zeb32f> kx = random_kernel<Zeb32f>(k, 0), ky = random_kernel<Zeb32f>(k, 0);
            int rs = 0, cs = 0;
            ASSERT_EQ(zebiFilterRowBorderPipelineGetBufferSize_32f_C3R(src.size(), k, &rs), 0);
            ASSERT_EQ(zebiFilterColumnPipelineGetBufferSize_32f_C3R(src.size(), k, &cs), 0);
            zt::Guarded rb(rs), cb(cs);
            for (int bt : {0, 1}) {
                const Zeb32f zero[3] = {0, 0, 0};
                auto rowFn = [&](const Zeb32f* s, int ss, Zeb32f* const* d, ZebiSize r) {
                    return ch == 1 ? zebiFilterRowBorderPipeline_32f_C1R(s, ss, d, r, kx.data(), k, k / 2, bt, 0.f,
                                                                         rb.data())
                                   : zebiFilterRowBorderPipeline_32f_C3R(s, ss, d, r, kx.data(), k, k / 2, bt, zero,
                                                                         rb.data());
                };
                auto colFn = [&](const Zeb32f* const* s, Zeb32f* d, int ds, ZebiSize r) {
                    return ch == 1 ? zebiFilterColumnPipeline_32f_C1R(s, d, ds, r, ky.data(), k, cb.data())
                                   : zebiFilterColumnPipeline_32f_C3R(s, d, ds, r, ky.data(), k, cb.data());
                };
                pipeline_image<Zeb32f, Zeb32f>(src, dst, k, k, bt, rowFn, colFn);
                cv::Mat want;
                cv::sepFilter2D(src.mat(), want, CV_32F, cv::Mat(kx), cv::Mat(ky), cv::Point(-1, -1), 0,
                                bt == 1 ? cv::BORDER_REPLICATE : cv::BORDER_CONSTANT);
                EXPECT_LT(cv::norm(want, dst.mat(), cv::NORM_INF), 1e-2) << "ch=" << ch << " k=" << k << " bt=" << bt;
            }
        }
}

// 8u photographs, integer row pass into 16s, column pass to 8u: binomial
// 5x5 (row divisor 1 keeps the intermediate exact, column divisor 256),
// against OpenCV's 8u filter with the same normalised kernels; one unit
// apart at most (the two round halves differently).
TEST_P(PipelineOpenCV, EightBitPipelineWithinOneOfSepFilter2D) {
    const std::vector<Zeb16s> kern = {1, 4, 6, 4, 1};
    const cv::Mat kcv = (cv::Mat_<float>(5, 1) << 1 / 16.f, 4 / 16.f, 6 / 16.f, 4 / 16.f, 1 / 16.f);
    for (int ch : {1, 3}) {
        const Image<Zeb8u> src = photo<Zeb8u>(ch == 1 ? "baboon.jpg" : "fruits.jpg", ch);
        Image<Zeb8u> dst(src.width(), src.height(), ch, 1);
        int rs = 0, cs = 0;
        ASSERT_EQ(zebiFilterRowBorderPipelineGetBufferSize_8u16s_C3R(src.size(), 5, &rs), 0);
        ASSERT_EQ(zebiFilterColumnPipelineGetBufferSize_16s8u_C3R(src.size(), 5, &cs), 0);
        zt::Guarded rb(rs), cb(cs);
        for (int bt : {0, 1}) {
            const Zeb8u zero[3] = {0, 0, 0};
            auto rowFn = [&](const Zeb8u* s, int ss, Zeb16s* const* d, ZebiSize r) {
                return ch == 1
                           ? zebiFilterRowBorderPipeline_8u16s_C1R(s, ss, d, r, kern.data(), 5, 2, bt, 0, 1, rb.data())
                           : zebiFilterRowBorderPipeline_8u16s_C3R(s, ss, d, r, kern.data(), 5, 2, bt, zero, 1,
                                                                   rb.data());
            };
            auto colFn = [&](const Zeb16s* const* s, Zeb8u* d, int ds, ZebiSize r) {
                return ch == 1 ? zebiFilterColumnPipeline_16s8u_C1R(s, d, ds, r, kern.data(), 5, 256, cb.data())
                               : zebiFilterColumnPipeline_16s8u_C3R(s, d, ds, r, kern.data(), 5, 256, cb.data());
            };
            pipeline_image<Zeb8u, Zeb16s>(src, dst, 5, 5, bt, rowFn, colFn);
            cv::Mat want;
            cv::sepFilter2D(src.mat(), want, CV_8U, kcv, kcv, cv::Point(-1, -1), 0,
                            bt == 1 ? cv::BORDER_REPLICATE : cv::BORDER_CONSTANT);
            EXPECT_LE(cv::norm(want, dst.mat(), cv::NORM_INF), 1) << "ch=" << ch << " bt=" << bt;
        }
    }
}

}  // namespace

// SPDX-License-Identifier: Apache-2.0
// The row and column passes: argument checks of every member (check tables
// with canaries), the size queries, results through both variants on every
// vector target against the per-sample definitions (bit for bit, every row
// and work buffer at exactly its size against a guard page), and OpenCV's
// sepFilter2D on photographs.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <functional>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <string>
#include <type_traits>

#include "check_table.h"
#include "harness.h"
#include "separable_ref.h"

// One line per member: export, its size query, source, row/destination
// type, channels.
#define ZT_ROW_MEMBERS(X)                                                                                         \
    X(zebiFilterRowBorderPipeline_16s_C1R, zebiFilterRowBorderPipelineGetBufferSize_16s_C1R, Zeb16s, Zeb16s, 1)          \
    X(zebiFilterRowBorderPipeline_16s_C3R, zebiFilterRowBorderPipelineGetBufferSize_16s_C3R, Zeb16s, Zeb16s, 3)          \
    X(zebiFilterRowBorderPipeline_Low_16s_C1R, zebiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R, Zeb16s, Zeb16s, 1)  \
    X(zebiFilterRowBorderPipeline_Low_16s_C3R, zebiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R, Zeb16s, Zeb16s, 3)  \
    X(zebiFilterRowBorderPipeline_16u_C1R, zebiFilterRowBorderPipelineGetBufferSize_16u_C1R, Zeb16u, Zeb16u, 1)          \
    X(zebiFilterRowBorderPipeline_16u_C3R, zebiFilterRowBorderPipelineGetBufferSize_16u_C3R, Zeb16u, Zeb16u, 3)          \
    X(zebiFilterRowBorderPipeline_8u16s_C1R, zebiFilterRowBorderPipelineGetBufferSize_8u16s_C1R, Zeb8u, Zeb16s, 1)       \
    X(zebiFilterRowBorderPipeline_8u16s_C3R, zebiFilterRowBorderPipelineGetBufferSize_8u16s_C3R, Zeb8u, Zeb16s, 3)       \
    X(zebiFilterRowBorderPipeline_32f_C1R, zebiFilterRowBorderPipelineGetBufferSize_32f_C1R, Zeb32f, Zeb32f, 1)          \
    X(zebiFilterRowBorderPipeline_32f_C3R, zebiFilterRowBorderPipelineGetBufferSize_32f_C3R, Zeb32f, Zeb32f, 3)
#define ZT_COL_MEMBERS(X)                                                                                         \
    X(zebiFilterColumnPipeline_16s_C1R, zebiFilterColumnPipelineGetBufferSize_16s_C1R, Zeb16s, Zeb16s, 1)                \
    X(zebiFilterColumnPipeline_16s_C3R, zebiFilterColumnPipelineGetBufferSize_16s_C3R, Zeb16s, Zeb16s, 3)                \
    X(zebiFilterColumnPipeline_Low_16s_C1R, zebiFilterColumnPipelineGetBufferSize_Low_16s_C1R, Zeb16s, Zeb16s, 1)        \
    X(zebiFilterColumnPipeline_Low_16s_C3R, zebiFilterColumnPipelineGetBufferSize_Low_16s_C3R, Zeb16s, Zeb16s, 3)        \
    X(zebiFilterColumnPipeline_16s8u_C1R, zebiFilterColumnPipelineGetBufferSize_16s8u_C1R, Zeb16s, Zeb8u, 1)             \
    X(zebiFilterColumnPipeline_16s8u_C3R, zebiFilterColumnPipelineGetBufferSize_16s8u_C3R, Zeb16s, Zeb8u, 3)             \
    X(zebiFilterColumnPipeline_16s8s_C1R, zebiFilterColumnPipelineGetBufferSize_16s8s_C1R, Zeb16s, Zeb8s, 1)             \
    X(zebiFilterColumnPipeline_16s8s_C3R, zebiFilterColumnPipelineGetBufferSize_16s8s_C3R, Zeb16s, Zeb8s, 3)             \
    X(zebiFilterColumnPipeline_16u_C1R, zebiFilterColumnPipelineGetBufferSize_16u_C1R, Zeb16u, Zeb16u, 1)                \
    X(zebiFilterColumnPipeline_16u_C3R, zebiFilterColumnPipelineGetBufferSize_16u_C3R, Zeb16u, Zeb16u, 3)                \
    X(zebiFilterColumnPipeline_32f_C1R, zebiFilterColumnPipelineGetBufferSize_32f_C1R, Zeb32f, Zeb32f, 1)                \
    X(zebiFilterColumnPipeline_32f_C3R, zebiFilterColumnPipelineGetBufferSize_32f_C3R, Zeb32f, Zeb32f, 3)

#define ZT_DECLARE(fn, q, S, D, ch) ZEB_TEST_TABLE(fn); ZEB_TEST_TABLE(q);
ZT_ROW_MEMBERS(ZT_DECLARE)
ZT_COL_MEMBERS(ZT_DECLARE)
#undef ZT_DECLARE

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

template <class S>
using Coef = std::conditional_t<std::is_same_v<S, float>, Zeb32f, Zeb16s>;

struct Member;
using Sweep = void (*)(const Member&, int variant, int magnitude);

// What decides a member's expected statuses, its export and size query
// (through variant v's table entries) and the sweep of its results.
struct Member {
    std::string name;
    bool rowPass;
    int srcSize, dstSize, ch;
    bool integer, unsignedDivisor, evenCheck, widthSized;
    std::function<ZebStatus(int, ZebiSize, int, int*)> size;
    std::function<ZebStatus(int, Args&)> call;
    Sweep sweep;
};

template <class S, class D>
void sweep_row(const Member& m, int variant, int magnitude);
template <class S, class D>
void sweep_column(const Member& m, int variant, int magnitude);

template <class S, class D, int ch, class Fn, class Q>
Member row_member(const char* name, Fn* const* tbl, Q* const* qtbl) {
    constexpr bool f = std::is_same_v<S, float>;
    return {name, true, int(sizeof(S)), int(sizeof(D)), ch, !f, std::is_same_v<S, Zeb16u>, !std::is_same_v<S, Zeb8u>,
            false, [qtbl](int v, ZebiSize r, int k, int* o) { return qtbl[v](r, k, o); },
            [tbl](int v, Args& a) -> ZebStatus {
                auto rows = reinterpret_cast<D* const*>(a.rows);
                auto src = static_cast<const S*>(a.src);
                auto kern = static_cast<const Coef<S>*>(a.kern);
                auto val = [&] {
                    if constexpr (ch == 1) {
                        S v{};
                        if (a.value) std::memcpy(&v, a.value, sizeof v);
                        return v;
                    } else {
                        return static_cast<const S*>(a.value);
                    }
                }();
                if constexpr (f)
                    return tbl[v](src, a.step, rows, a.roi, kern, a.k, a.anchor, a.border, val, a.buf);
                else
                    return tbl[v](src, a.step, rows, a.roi, kern, a.k, a.anchor, a.border, val, a.divisor, a.buf);
            },
            sweep_row<S, D>};
}

template <class S, class D, int ch, class Fn, class Q>
Member col_member(const char* name, Fn* const* tbl, Q* const* qtbl) {
    constexpr bool f = std::is_same_v<S, float>;
    return {name, false, int(sizeof(S)), int(sizeof(D)), ch, !f, false, true, std::is_same_v<S, Zeb16s>,
            [qtbl](int v, ZebiSize r, int k, int* o) { return qtbl[v](r, k, o); },
            [tbl](int v, Args& a) -> ZebStatus {
                auto rows = reinterpret_cast<const S* const*>(a.rows);
                auto kern = static_cast<const Coef<S>*>(a.kern);
                if constexpr (f)
                    return tbl[v](rows, static_cast<D*>(a.dst), a.step, a.roi, kern, a.k, a.buf);
                else
                    return tbl[v](rows, static_cast<D*>(a.dst), a.step, a.roi, kern, a.k, a.divisor, a.buf);
            },
            sweep_column<S, D>};
}

const std::vector<Member>& members() {
#define ZT_ROW(fn, q, S, D, ch) row_member<S, D, ch>(#fn, zeb_tbl_##fn, zeb_tbl_##q),
#define ZT_COL(fn, q, S, D, ch) col_member<S, D, ch>(#fn, zeb_tbl_##fn, zeb_tbl_##q),
    static const std::vector<Member> m = {ZT_ROW_MEMBERS(ZT_ROW) ZT_COL_MEMBERS(ZT_COL)};
#undef ZT_ROW
#undef ZT_COL
    return m;
}

const Member& member(const std::string& name) {
    for (const Member& m : members())
        if (m.name == name) return m;
    throw std::logic_error(name);
}

// ---- argument checks ----

constexpr int kW = 11, kH = 3, kK = 5, kMargin = 4;

// A valid call: a 5-tap kernel of small integers, the source ROI kMargin
// pixels inside a block wide enough for border 6 and a longer step, rows
// and buffer at exactly their sizes, one row pointer more than the pass
// reads (so a case can null the one after the last).
Args valid_call(Arena& m, const Member& mb) {
    Args a{};
    const bool rowPass = mb.rowPass;
    const int pixel = mb.ch * (rowPass ? mb.srcSize : mb.dstSize);
    const int nRows = (rowPass ? kH : kH + kK - 1) + 1;
    a.rows = m.array<void*>("row pointers", nRows);
    for (int j = 0; j < nRows; ++j)
        a.rows[j] = m.block("row " + std::to_string(j), std::size_t(kW) * mb.ch * (rowPass ? mb.dstSize : mb.srcSize));
    const auto img = m.image<Zeb8u>(rowPass ? "src" : "dst", (kW + (rowPass ? 2 * kMargin : 0)) * pixel, kH, 1,
                                    4 * pixel);
    if (rowPass)
        a.src = img.ptr + kMargin * pixel;
    else
        a.dst = img.ptr;
    a.step = img.step;
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
    EXPECT_EQ(mb.size(0, a.roi, kK, &bytes), 0);
    a.buf = m.block("work buffer", bytes);
    return a;
}

std::vector<Case<Args>> row_cases(const Member& mb) {
    const int row = kW * mb.ch * mb.srcSize;
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
        {"1x1", [](Args& a) { a.roi = {1, 1}; }, 0},
    };
    for (int bt : {2, 4, 5, 7, 16, 17, 240, -1})
        cases.push_back({"border " + std::to_string(bt), [bt](Args& a) { a.border = bt; }, -5});
    return cases;
}

std::vector<Case<Args>> column_cases(const Member& mb) {
    const int row = kW * mb.ch * mb.dstSize;
    return {
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
}

ZT_TARGET_SUITE(PipelineChecks);

TEST_P(PipelineChecks, EveryMemberChecksInOrder) {
    for (const Member& mb : members())
        zt::checks::run(Table<Args>{mb.name, [&mb](Arena& m) { return valid_call(m, mb); }, mb.call,
                                    mb.rowPass ? row_cases(mb) : column_cases(mb)});
}

// Every query: null output, sizes below 1, and arguments whose byte count
// does not fit an int (zebStsSizeErr, nothing stored); heights never matter,
// widths only to the column pass of 16-bit signed rows.
TEST(PipelineSizes, ChecksAndCountsBeyondAnInt) {
    struct Q {
        ZebiSize roi;
        int k;
        int* out;
    };
    for (const Member& mb : members()) {
        const bool wide = mb.widthSized, row = mb.rowPass;
        zt::checks::run(Table<Q>{mb.name + " size query",
                                 [](Arena& m) { return Q{{5, 5}, 3, m.array<int>("size", 1)}; },
                                 [&mb](int v, Q& q) { return mb.size(v, q.roi, q.k, q.out); },
                                 {{"null output, width 0", [](Q& q) { q.out = nullptr, q.roi.width = 0; }, -8},
                                  {"height -1", [](Q& q) { q.roi.height = -1; }, -6},
                                  {"k 0", [](Q& q) { q.k = 0; }, -6},
                                  {"height INT_MAX", [](Q& q) { q.roi.height = INT_MAX; }, 0},
                                  {"width INT_MAX", [](Q& q) { q.roi.width = INT_MAX; }, wide ? -6 : 0},
                                  {"width INT_MAX / 12", [](Q& q) { q.roi.width = INT_MAX / 12; }, wide ? -6 : 0},
                                  {"k INT_MAX / 16", [](Q& q) { q.k = INT_MAX / 16; }, row ? -6 : 0},
                                  {"k INT_MAX", [](Q& q) { q.k = INT_MAX; }, row ? -6 : 0}}});
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

// The coefficients scaled by the reciprocal of the divisor, as the integer
// forms apply them in single precision.
template <class K>
std::vector<float> scaled(const std::vector<K>& kern, int divisor) {
    const float r = 1.0f / float(divisor);
    std::vector<float> c;
    for (K v : kern) c.push_back(std::is_same_v<K, float> ? float(v) : float(v) * r);
    return c;
}

template <class S, class D, class K>
D row_definition(const zt::filter::Bordered<S>& src, int x, int y, int c, const std::vector<K>& kern, int a,
                 int divisor) {
    const int k = int(kern.size());
    auto px = [&](int i) { return src.at(x - a + i, y, c); };
    const std::vector<float> sc = scaled(kern, divisor);
    float v = zt::filter::dot<float>(sc.data(), k, px);
    if constexpr (std::is_same_v<K, float>) {
        return v;
    } else {
        if (exact_path<S, D>(kern)) v = float(int32_t(zt::filter::dot<int64_t>(kern.data(), k, px))) * (1.0f / float(divisor));
        return D(std::trunc(std::clamp(v, lo_of<D>(), hi_of<D>())));
    }
}

// The column pass rounds to nearest in its vector blocks of 16 elements
// and truncates the elements after the last whole block of a row.
template <class S, class D, class K>
D col_definition(const S* const* rows, int e, int n, const std::vector<K>& kern, int divisor) {
    const std::vector<float> sc = scaled(kern, divisor);
    const float v = zt::filter::dot<float>(sc.data(), int(kern.size()), [&](int j) { return rows[j][e]; });
    if constexpr (std::is_same_v<K, float>) {
        return v;
    } else {
        const float cl = std::clamp(v, lo_of<D>(), hi_of<D>());
        const bool tail = std::is_same_v<S, int16_t> && e >= n - n % 16;
        return D(tail ? std::trunc(cl) : std::nearbyint(cl));
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
    if (m.srcSize == 2 && !m.widthSized && m.name.find("16u") != std::string::npos) return {1, 3, 256, 4, 40000};
    return {1, 4, -3, 7, 64, -16, 256, 1000, -2, 30000};
}

// Widths around the vector blocks of every target (head, one block, body
// and tail, several blocks); pads move each row against the boundaries.
const int kWidths[] = {1, 2, 7, 16, 17, 33, 64, 67, 130};

// Row pass on a w x 2 ROI against the definition. For border 6 the source
// holds the pixels the kernel reaches around the ROI; every destination
// row and the work buffer end at guard pages.
template <class S, class D, class K>
void check_row(const Member& m, int variant, int w, int pad, const std::vector<K>& kern, int a, int bt, int divisor) {
    const int h = 2, ch = m.ch, k = int(kern.size());
    const int left = bt == 6 ? a : 0, right = bt == 6 ? k - 1 - a : 0;
    Image<S> src(w + left + right, h, ch, pad);
    std::vector<zt::Guarded> rows;
    std::vector<void*> ptrs;
    for (int y = 0; y < h; ++y) ptrs.push_back(rows.emplace_back(sizeof(D) * w * ch).data());
    int size = 0;
    ASSERT_EQ(m.size(variant, {w, h}, k, &size), 0);
    zt::Guarded buf = zt::work_buffer(size);
    const S value[3] = {zt::random_value<S>(), zt::random_value<S>(), zt::random_value<S>()};
    Args args{src.ptr() + left * ch, src.step(), ptrs.data(), nullptr, {w, h}, kern.data(), k, a, bt, value, divisor,
              buf.data()};
    ASSERT_EQ(m.call(variant, args), 0) << m.name;
    const zt::filter::Bordered<S> in{src.ptr() + left * ch, src.step(), w, h, ch, bt == 6 ? 64 | 128 | 1 : bt, value};
    for (int y = 0; y < h; ++y)
        for (int e = 0; e < w * ch; ++e) {
            const D want = row_definition<S, D>(in, e / ch, y, e % ch, kern, a, divisor);
            const D got = static_cast<const D*>(ptrs[y])[e];
            ASSERT_EQ(std::memcmp(&want, &got, sizeof(D)), 0)
                << m.name << " variant " << variant << " w=" << w << " pad=" << pad << " k=" << k << " a=" << a
                << " bt=" << bt << " div=" << divisor << " e=" << e << " want " << +want << " got " << +got;
        }
}

template <class S, class D>
void sweep_row(const Member& m, int variant, int magnitude) {
    using K = Coef<S>;
    const std::vector<int> div = divisors(m);
    for (int k : {1, 2, 3, 5, 7})
        for (int w : kWidths) {
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
    std::vector<zt::Guarded> blocks;
    std::vector<void*> rows;
    for (int j = 0; j < h + k - 1; ++j) {
        S* r = reinterpret_cast<S*>(blocks.emplace_back(sizeof(S) * n).data());
        for (int e = 0; e < n; ++e) r[e] = zt::random_value<S>();
        rows.push_back(r);
    }
    if (h + k - 1 > 2) std::swap(rows[0], rows[2]);
    Image<D> dst(w, h, ch, pad);
    int size = 0;
    ASSERT_EQ(m.size(variant, {w, h}, k, &size), 0);
    zt::Guarded buf = zt::work_buffer(size);
    Args args{nullptr, dst.step(), rows.data(), dst.ptr(), {w, h}, kern.data(), k, 0, 0, nullptr, divisor, buf.data()};
    ASSERT_EQ(m.call(variant, args), 0) << m.name;
    for (int y = 0; y < h; ++y)
        for (int e = 0; e < n; ++e) {
            const D want = col_definition<S, D>(reinterpret_cast<const S* const*>(rows.data()) + y, e, n, kern, divisor);
            const D got = dst.row(y)[e];
            ASSERT_EQ(std::memcmp(&want, &got, sizeof(D)), 0)
                << m.name << " variant " << variant << " w=" << w << " k=" << k << " div=" << divisor << " e=" << e
                << " want " << +want << " got " << +got;
        }
}

template <class S, class D>
void sweep_column(const Member& m, int variant, int magnitude) {
    const std::vector<int> div = divisors(m);
    for (int k : {1, 2, 3, 5, 6, 35})
        for (int w : kWidths) {
            const int pad = zt::test_pads(sizeof(D))[(w + k) % 4];
            check_column<S, D>(m, variant, w, 3, pad, random_kernel<Coef<S>>(k, magnitude), div[(w + k) % div.size()]);
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
                if (!m.integer || HasFatalFailure()) break;
            }
}

// A coefficient of -32768 forces single precision for the whole call even
// when the kernel is short; long kernels of small coefficients take the
// integer paths whatever their length.
TEST_P(PipelineResults, SwitchesBetweenIntegerAndSinglePrecision) {
    const Member& m16 = member("zebiFilterRowBorderPipeline_16s_C1R");
    const Member& m8 = member("zebiFilterRowBorderPipeline_8u16s_C1R");
    for (int v = 0; v < 2; ++v) {
        for (int w : kWidths) {
            check_row<Zeb16s, Zeb16s>(m16, v, w, 0, std::vector<Zeb16s>{-32768, 3, 1}, 1, 1, 7);
            check_row<Zeb16s, Zeb16s>(m16, v, w, 0, std::vector<Zeb16s>{1, -32768, 2, 5, 1}, 2, 0, -3);
        }
        for (int k : {128, 129}) {
            std::vector<Zeb16s> kern(k, 0);
            kern[0] = 3, kern[k / 2] = -5, kern[k - 1] = 7;
            for (int w : {40, 200}) check_row<Zeb8u, Zeb16s>(m8, v, w, 0, kern, k / 2, 1, 2);
        }
    }
}

// ---- OpenCV ----

// Both passes over a photograph converted to S: the row pass over the
// whole image (border 0 with value 0, or 1), then the vertical border by
// pointer (replicate: the first and last rows repeated; constant: a row
// filtered from a zero row) and the column pass into D. Compared with
// sepFilter2D of the same kernels, normalised by the divisors.
template <class S, class M, class D>
void expect_like_sepfilter(const char* file, int ch, const std::vector<Coef<S>>& kx, int rowDiv,
                           const std::vector<Coef<S>>& ky, int colDiv, double tol) {
    const std::string rowName = std::string("zebiFilterRowBorderPipeline_") + (std::is_same_v<S, float> ? "32f" : "8u16s") +
                                (ch == 1 ? "_C1R" : "_C3R");
    const std::string colName = std::string("zebiFilterColumnPipeline_") + (std::is_same_v<S, float> ? "32f" : "16s8u") +
                                (ch == 1 ? "_C1R" : "_C3R");
    const Member &rowM = member(rowName), &colM = member(colName);
    const cv::Mat m = zt::photo(file, ch == 1 ? cv::IMREAD_GRAYSCALE : cv::IMREAD_COLOR);
    ASSERT_FALSE(m.empty()) << file;
    const Image<S> src = zt::image_of<S>(m, 4 * int(sizeof(S)));
    const int w = src.width(), h = src.height(), k = int(kx.size()), ay = k / 2;
    Image<D> dst(w, h, ch, int(sizeof(D)));
    std::vector<std::vector<M>> mid(h + 1, std::vector<M>(std::size_t(w) * ch));
    int rs = 0, cs = 0;
    ASSERT_EQ(rowM.size(1, src.size(), k, &rs), 0);
    ASSERT_EQ(colM.size(1, src.size(), k, &cs), 0);
    zt::Guarded rb = zt::work_buffer(rs), cb = zt::work_buffer(cs);
    const S zero[3] = {};
    Image<S> zeroRow(w, 1, ch);
    zeroRow.fill(S(0));
    for (int bt : {0, 1}) {
        std::vector<void*> ptrs;
        for (int y = 0; y <= h; ++y) ptrs.push_back(mid[y].data());
        Args row{src.ptr(), src.step(), ptrs.data(), nullptr, src.size(), kx.data(), k, k / 2, bt, zero, rowDiv, rb.data()};
        ASSERT_EQ(rowM.call(1, row), 0);
        row.src = zeroRow.ptr(), row.rows = &ptrs[h], row.roi = {w, 1};
        ASSERT_EQ(rowM.call(1, row), 0);
        std::vector<void*> colPtrs;
        for (int j = -ay; j < h + k - 1 - ay; ++j)
            colPtrs.push_back(j >= 0 && j < h ? ptrs[j] : bt == 1 ? ptrs[std::clamp(j, 0, h - 1)] : ptrs[h]);
        Args col{nullptr, dst.step(), colPtrs.data(), dst.ptr(), src.size(), ky.data(), k, 0, 0, nullptr, colDiv,
                 cb.data()};
        ASSERT_EQ(colM.call(1, col), 0);
        cv::Mat want, kxm, kym;
        cv::Mat(kx).convertTo(kxm, CV_32F, 1.0 / rowDiv);
        cv::Mat(ky).convertTo(kym, CV_32F, 1.0 / colDiv);
        cv::sepFilter2D(src.mat(), want, zt::CvDepth<D>::v, kxm, kym, cv::Point(-1, -1), 0,
                        bt == 1 ? cv::BORDER_REPLICATE : cv::BORDER_CONSTANT);
        EXPECT_LE(cv::norm(want, dst.mat(), cv::NORM_INF), tol) << file << " ch=" << ch << " k=" << k << " bt=" << bt;
    }
}

ZT_TARGET_SUITE(PipelineOpenCV);

// Random float kernels: both sides sum single-precision products, in their
// own orders, of pixels up to 255; far better than 1e-2 apart.
TEST_P(PipelineOpenCV, FloatPipelineAgreesWithSepFilter2D) {
    for (int ch : {1, 3})
        for (int k : {3, 5, 9})
            expect_like_sepfilter<Zeb32f, Zeb32f, Zeb32f>(ch == 1 ? "building.jpg" : "fruits.jpg", ch,
                                                          random_kernel<Zeb32f>(k, 0), 1, random_kernel<Zeb32f>(k, 0),
                                                          1, 1e-2);
}

// Binomial 5x5 into 16s rows (divisor 1 keeps them exact) and to 8u
// (divisor 256): one unit apart at most (the two round halves differently).
TEST_P(PipelineOpenCV, EightBitPipelineWithinOneOfSepFilter2D) {
    const std::vector<Zeb16s> kern = {1, 4, 6, 4, 1};
    for (int ch : {1, 3})
        expect_like_sepfilter<Zeb8u, Zeb16s, Zeb8u>(ch == 1 ? "baboon.jpg" : "fruits.jpg", ch, kern, 1, kern, 256, 1);
}

}  // namespace

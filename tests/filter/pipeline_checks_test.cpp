// Argument checks of the row and column passes and their size queries:
// one table of cases per pass, run through both variants of every member;
// each case mutates a valid call, and where two arguments are bad at once
// the expected status pins down the order. Every failing call must leave
// the rows, destination and work buffer byte for byte as they were.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "harness.h"

#define ZEB_ROW(X)                                              \
    X(zebiFilterRowBorderPipeline_16s_C1R, Zeb16s, Zeb16s, 1)    \
    X(zebiFilterRowBorderPipeline_16s_C3R, Zeb16s, Zeb16s, 3)    \
    X(zebiFilterRowBorderPipeline_Low_16s_C1R, Zeb16s, Zeb16s, 1) \
    X(zebiFilterRowBorderPipeline_Low_16s_C3R, Zeb16s, Zeb16s, 3) \
    X(zebiFilterRowBorderPipeline_16u_C1R, Zeb16u, Zeb16u, 1)    \
    X(zebiFilterRowBorderPipeline_16u_C3R, Zeb16u, Zeb16u, 3)    \
    X(zebiFilterRowBorderPipeline_8u16s_C1R, Zeb8u, Zeb16s, 1)   \
    X(zebiFilterRowBorderPipeline_8u16s_C3R, Zeb8u, Zeb16s, 3)   \
    X(zebiFilterRowBorderPipeline_32f_C1R, Zeb32f, Zeb32f, 1)    \
    X(zebiFilterRowBorderPipeline_32f_C3R, Zeb32f, Zeb32f, 3)

#define ZEB_COL(X)                                             \
    X(zebiFilterColumnPipeline_16s_C1R, Zeb16s, Zeb16s, 1)      \
    X(zebiFilterColumnPipeline_16s_C3R, Zeb16s, Zeb16s, 3)      \
    X(zebiFilterColumnPipeline_Low_16s_C1R, Zeb16s, Zeb16s, 1)  \
    X(zebiFilterColumnPipeline_Low_16s_C3R, Zeb16s, Zeb16s, 3)  \
    X(zebiFilterColumnPipeline_16s8u_C1R, Zeb16s, Zeb8u, 1)     \
    X(zebiFilterColumnPipeline_16s8u_C3R, Zeb16s, Zeb8u, 3)     \
    X(zebiFilterColumnPipeline_16s8s_C1R, Zeb16s, Zeb8s, 1)     \
    X(zebiFilterColumnPipeline_16s8s_C3R, Zeb16s, Zeb8s, 3)     \
    X(zebiFilterColumnPipeline_16u_C1R, Zeb16u, Zeb16u, 1)      \
    X(zebiFilterColumnPipeline_16u_C3R, Zeb16u, Zeb16u, 3)      \
    X(zebiFilterColumnPipeline_32f_C1R, Zeb32f, Zeb32f, 1)      \
    X(zebiFilterColumnPipeline_32f_C3R, Zeb32f, Zeb32f, 3)

#define ZEB_DECLARE(name, S, D, ch) ZEB_TEST_TABLE(name);
ZEB_ROW(ZEB_DECLARE)
ZEB_COL(ZEB_DECLARE)

namespace {

constexpr int kW = 11, kH = 3, kK = 5;

// Arguments of one call, typeless; members cast them to their own types.
struct Args {
    const void* src;
    int step;
    void* const* rows;
    void* dst;
    ZebiSize roi;
    const void* kern;
    int k, anchor, border;
    const void* value;
    int divisor;
    Zeb8u* buf;
};

struct Member {
    std::string name;
    int srcSize, dstSize, ch;
    bool integer;
    std::function<ZebStatus(int, const Args&)> call;
};

template <class T>
T first(const void* p) {
    T v{};
    if (p) std::memcpy(&v, p, sizeof v);
    return v;
}

std::vector<Member> row_members() {
    std::vector<Member> m;
#define ZEB_ROW_MEMBER(name, S, D, ch_)                                                                         \
    m.push_back({#name, int(sizeof(S)), int(sizeof(D)), ch_, !std::is_same_v<S, float>,                         \
                 [](auto v, const auto& a) -> ZebStatus {                                                        \
                     auto rows = reinterpret_cast<D* const*>(a.rows);                                           \
                     auto src = static_cast<const S*>(a.src);                                                   \
                     if constexpr (std::is_same_v<S, float>) {                                                  \
                         auto kern = static_cast<const Zeb32f*>(a.kern);                                        \
                         if constexpr (ch_ == 1)                                                                \
                             return zeb_tbl_##name[v](src, a.step, rows, a.roi, kern, a.k, a.anchor, a.border,  \
                                                      first<Zeb32f>(a.value), a.buf);                           \
                         else                                                                                   \
                             return zeb_tbl_##name[v](src, a.step, rows, a.roi, kern, a.k, a.anchor, a.border,  \
                                                      static_cast<const Zeb32f*>(a.value), a.buf);              \
                     } else {                                                                                   \
                         auto kern = static_cast<const Zeb16s*>(a.kern);                                        \
                         if constexpr (ch_ == 1)                                                                \
                             return zeb_tbl_##name[v](src, a.step, rows, a.roi, kern, a.k, a.anchor, a.border,  \
                                                      first<S>(a.value), a.divisor, a.buf);                     \
                         else                                                                                   \
                             return zeb_tbl_##name[v](src, a.step, rows, a.roi, kern, a.k, a.anchor, a.border,  \
                                                      static_cast<const S*>(a.value), a.divisor, a.buf);        \
                     }                                                                                          \
                 }});
    ZEB_ROW(ZEB_ROW_MEMBER)
    return m;
}

std::vector<Member> col_members() {
    std::vector<Member> m;
#define ZEB_COL_MEMBER(name, S, D, ch_)                                                                        \
    m.push_back({#name, int(sizeof(S)), int(sizeof(D)), ch_, !std::is_same_v<S, float>,                        \
                 [](auto v, const auto& a) -> ZebStatus {                                                       \
                     auto rows = reinterpret_cast<const S* const*>(a.rows);                                    \
                     if constexpr (std::is_same_v<S, float>)                                                   \
                         return zeb_tbl_##name[v](rows, static_cast<D*>(a.dst), a.step, a.roi,                 \
                                                  static_cast<const Zeb32f*>(a.kern), a.k, a.buf);             \
                     else                                                                                      \
                         return zeb_tbl_##name[v](rows, static_cast<D*>(a.dst), a.step, a.roi,                 \
                                                  static_cast<const Zeb16s*>(a.kern), a.k, a.divisor, a.buf);  \
                 }});
    ZEB_COL(ZEB_COL_MEMBER)
    return m;
}

// Guarded memory for one member, noise everywhere, remembered for the
// canary comparison.
struct World {
    std::vector<std::unique_ptr<zt::Guarded>> blocks;
    std::vector<std::vector<uint8_t>> before;
    std::vector<void*> rows;
    void* src;
    void* dst;
    Zeb8u* buf;
    alignas(8) unsigned char kern[64];
    alignas(8) unsigned char value[16];
    unsigned char* add(std::size_t n) {
        blocks.push_back(std::make_unique<zt::Guarded>(n));
        for (std::size_t b = 0; b < n; ++b) blocks.back()->data()[b] = uint8_t(b * 13 + 7);
        return blocks.back()->data();
    }
    World(const Member& m, int nRows) {
        const int n = kW * m.ch;
        src = add(std::size_t(n + 8 * m.ch) * m.srcSize * (kH + 1));
        dst = add(std::size_t(n + 8) * m.dstSize * (kH + 1));
        for (int j = 0; j < nRows; ++j) rows.push_back(add(std::size_t(n) * 4));
        buf = add(4096);
        for (std::size_t b = 0; b < sizeof kern; ++b) kern[b] = uint8_t(b % 3);
        std::memset(value, 1, sizeof value);
        for (auto& b : blocks) before.emplace_back(b->data(), b->data() + b->size());
    }
    bool unchanged() const {
        for (std::size_t i = 0; i < blocks.size(); ++i)
            if (std::memcmp(blocks[i]->data(), before[i].data(), before[i].size()) != 0) return false;
        return true;
    }
};

struct Case {
    std::string what;
    std::function<void(Args&, World&, const Member&)> change;
    std::function<ZebStatus(const Member&)> want;
};

ZebStatus st(ZebStatus s) { return s; }

void run_cases(const std::vector<Member>& members, const std::vector<Case>& cases, bool rowPass) {
    for (const Member& m : members)
        for (const Case& c : cases)
            for (int v = 0; v < 2; ++v) {
                World w(m, kH + kK - 1);
                Args a{w.src, kW * m.ch * (rowPass ? m.srcSize : m.dstSize), w.rows.data(), w.dst, {kW, kH},
                       w.kern, kK, kK / 2, 1, w.value, 3, w.buf};
                c.change(a, w, m);
                const ZebStatus want = c.want(m);
                EXPECT_EQ(m.call(v, a), want) << m.name << " variant " << v << ": " << c.what;
                if (want < 0) {
                    EXPECT_TRUE(w.unchanged()) << m.name << " wrote on failure: " << c.what;
                }
            }
}

TEST(PipelineChecks, RowPassOrder) {
    const auto any = [](ZebStatus s) { return [s](const Member&) { return s; }; };
    std::vector<Case> cases = {
        {"valid", [](Args&, World&, const Member&) {}, any(0)},
        {"null src, bad roi", [](Args& a, World&, const Member&) { a.src = nullptr, a.roi = {0, 0}; }, any(-8)},
        {"null rows", [](Args& a, World&, const Member&) { a.rows = nullptr; }, any(-8)},
        {"null kernel", [](Args& a, World&, const Member&) { a.kern = nullptr; }, any(-8)},
        {"null buffer, k 0", [](Args& a, World&, const Member&) { a.buf = nullptr, a.k = 0; }, any(-8)},
        {"width 0, null row", [](Args& a, World& w, const Member&) { a.roi = {0, kH}, w.rows[1] = nullptr; }, any(-6)},
        {"height -1", [](Args& a, World&, const Member&) { a.roi = {kW, -1}; }, any(-6)},
        {"null last row, k 0", [](Args& a, World& w, const Member&) { w.rows[kH - 1] = nullptr, a.k = 0; }, any(-8)},
        {"row past height null", [](Args&, World& w, const Member&) { w.rows[kH] = nullptr; }, any(0)},
        {"null value, k 0", [](Args& a, World&, const Member&) { a.value = nullptr, a.k = 0; },
         [](const Member& m) { return st(m.ch == 3 ? -8 : -6); }},
        {"k 0, anchor 7", [](Args& a, World&, const Member&) { a.k = 0, a.anchor = 7; }, any(-6)},
        {"anchor k, short step", [](Args& a, World&, const Member&) { a.anchor = kK, a.step = 1; }, any(-34)},
        {"anchor -1", [](Args& a, World&, const Member&) { a.anchor = -1; }, any(-34)},
        {"anchor k-1", [](Args& a, World&, const Member&) { a.anchor = kK - 1; }, any(0)},
        {"k 1, anchor 0", [](Args& a, World&, const Member&) { a.k = 1, a.anchor = 0; }, any(0)},
        {"short step, bad border", [](Args& a, World&, const Member&) { a.step -= 1, a.border = 2; }, any(-14)},
        {"uneven step, bad border",
         [](Args& a, World&, const Member&) { a.step += 1, a.border = 3; },
         [](const Member& m) { return st(m.srcSize == 1 ? -5 : -108); }},
        {"uneven step", [](Args& a, World&, const Member&) { a.step += 1; },
         [](const Member& m) { return st(m.srcSize == 1 ? 0 : -108); }},
        {"divisor 0", [](Args& a, World&, const Member&) { a.divisor = 0; },
         [](const Member& m) { return st(m.integer ? -5 : 0); }},
        {"divisor -2", [](Args& a, World&, const Member&) { a.divisor = -2; },
         [](const Member& m) { return st(m.name.find("16u") != std::string::npos ? -5 : 0); }},
        {"border 0", [](Args& a, World&, const Member&) { a.border = 0; }, any(0)},
    };
    for (int bt : {2, 3, 4, 5, 7, 16, 17, 33, 240, -1})
        cases.push_back({"border " + std::to_string(bt), [bt](Args& a, World&, const Member&) { a.border = bt; }, any(-5)});
    // Border 6 reads around the ROI: give it an ROI inside the source block.
    cases.push_back({"border 6", [](Args& a, World& w, const Member& m) {
                         a.border = 6, a.src = static_cast<char*>(w.src) + 4 * m.ch * m.srcSize, a.step += 8 * m.ch * m.srcSize;
                     },
                     any(0)});
    run_cases(row_members(), cases, true);
}

TEST(PipelineChecks, ColumnPassOrder) {
    const auto any = [](ZebStatus s) { return [s](const Member&) { return s; }; };
    const std::vector<Case> cases = {
        {"valid", [](Args&, World&, const Member&) {}, any(0)},
        {"null rows, bad roi", [](Args& a, World&, const Member&) { a.rows = nullptr, a.roi = {0, 1}; }, any(-8)},
        {"null dst", [](Args& a, World&, const Member&) { a.dst = nullptr; }, any(-8)},
        {"null kernel", [](Args& a, World&, const Member&) { a.kern = nullptr; }, any(-8)},
        {"width -3", [](Args& a, World&, const Member&) { a.roi = {-3, kH}; }, any(-6)},
        {"last row null", [](Args&, World& w, const Member&) { w.rows[kH + kK - 2] = nullptr; }, any(-8)},
        // With k 0 the loop covers h - 1 entries.
        {"row h-2 null with k 0", [](Args& a, World& w, const Member&) { w.rows[kH - 2] = nullptr, a.k = 0; }, any(-8)},
        {"row h-1 null with k 0", [](Args& a, World& w, const Member&) { w.rows[kH - 1] = nullptr, a.k = 0; }, any(-6)},
        {"k -1", [](Args& a, World&, const Member&) { a.k = -1; }, any(-6)},
        {"short step, null buffer", [](Args& a, World&, const Member&) { a.step -= 1, a.buf = nullptr; }, any(-14)},
        {"uneven step, null buffer", [](Args& a, World&, const Member&) { a.step += 1, a.buf = nullptr; },
         [](const Member& m) { return st(m.dstSize == 1 ? -8 : -108); }},
        {"null buffer, divisor 0", [](Args& a, World&, const Member&) { a.buf = nullptr, a.divisor = 0; }, any(-8)},
        {"divisor 0", [](Args& a, World&, const Member&) { a.divisor = 0; },
         [](const Member& m) { return st(m.integer ? -5 : 0); }},
        {"k 1", [](Args& a, World&, const Member&) { a.k = 1; }, any(0)},
    };
    run_cases(col_members(), cases, false);
}

// Sufficiency of every figure is proven by the result tests, which run each
// pass with a work buffer of exactly the queried size against a guard page.
TEST(PipelineChecks, BufferSizeQueries) {
    using Q = ZebStatus (*)(ZebiSize, int, int*);
#define ZEB_Q(pass, t) zebiFilter##pass##PipelineGetBufferSize_##t##_C1R, zebiFilter##pass##PipelineGetBufferSize_##t##_C3R
    const Q queries[] = {ZEB_Q(RowBorder, 16s), ZEB_Q(RowBorder, 16u),    ZEB_Q(RowBorder, 32f),
                         ZEB_Q(RowBorder, 8u16s), ZEB_Q(RowBorder, Low_16s), ZEB_Q(Column, 16s),
                         ZEB_Q(Column, 16s8u),  ZEB_Q(Column, 16s8s),   ZEB_Q(Column, 16u),
                         ZEB_Q(Column, 32f),    ZEB_Q(Column, Low_16s)};
    for (Q q : queries) {
        int size = 77;
        EXPECT_EQ(q({0, 0}, 0, nullptr), -8);
        EXPECT_EQ(q({0, 5}, 3, &size), -6);
        EXPECT_EQ(q({5, -1}, 3, &size), -6);
        EXPECT_EQ(q({5, 5}, 0, &size), -6);
        EXPECT_EQ(size, 77) << "wrote on failure";
        EXPECT_EQ(q({1921, 2}, 31, &size), 0);
        EXPECT_GT(size, 0);
    }
}

}  // namespace

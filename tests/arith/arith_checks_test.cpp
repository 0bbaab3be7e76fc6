// Argument checks of the difference and accumulation exports, table driven:
// each member lists its images and the order in which their steps are
// checked; every case runs through both variants and must leave every
// image byte for byte as it was when the call fails.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "call.h"
#include "harness.h"

#define ZEB_MEMBERS(X)                                                                                     \
    X(zebiAbsDiff_8u_C1R, "1 1 1", ">012")                                                                  \
    X(zebiAbsDiff_8u_C3R, "1 1 1", ">012")                                                                  \
    X(zebiAbsDiff_16u_C1R, "2 2 2", ">012 e012")                                                            \
    X(zebiAbsDiff_32f_C1R, "4 4 4", ">012 e012")                                                            \
    X(zebiAbsDiffC_8u_C1R, "1 1", ">01")                                                                    \
    X(zebiAbsDiffC_16u_C1R, "2 2", ">01 e01")                                                               \
    X(zebiAbsDiffC_32f_C1R, "4 4", ">01 e01")                                                               \
    X(zebiAdd_8u32f_C1IR, "1 4", ">01 e1")                                                                  \
    X(zebiAdd_8s32f_C1IR, "1 4", ">01 e1")                                                                  \
    X(zebiAdd_16u32f_C1IR, "2 4", ">0 e0 >1 e1")                                                            \
    X(zebiAdd_8u32f_C1IMR, "1 1 4", ">012 e2")                                                              \
    X(zebiAdd_8s32f_C1IMR, "1 1 4", ">012 e2")                                                              \
    X(zebiAdd_16u32f_C1IMR, "2 1 4", ">0 e0 >12 e2")                                                        \
    X(zebiAdd_32f_C1IMR, "4 1 4", ">012 e20")                                                               \
    X(zebiAddSquare_8u32f_C1IR, "1 4", ">01 e1")                                                            \
    X(zebiAddSquare_8s32f_C1IR, "1 4", ">01 e1")                                                            \
    X(zebiAddSquare_16u32f_C1IR, "2 4", ">0 e0 >1 e1")                                                      \
    X(zebiAddSquare_32f_C1IR, "4 4", ">01 e01")                                                             \
    X(zebiAddSquare_8u32f_C1IMR, "1 1 4", ">012 e2")                                                        \
    X(zebiAddSquare_8s32f_C1IMR, "1 1 4", ">012 e2")                                                        \
    X(zebiAddSquare_16u32f_C1IMR, "2 1 4", ">0 e0 >12 e2")                                                  \
    X(zebiAddSquare_32f_C1IMR, "4 1 4", ">012 e02")                                                         \
    X(zebiAddProduct_8u32f_C1IR, "1 1 4", ">012 e2")                                                        \
    X(zebiAddProduct_8s32f_C1IR, "1 1 4", ">012 e2")                                                        \
    X(zebiAddProduct_16u32f_C1IR, "2 2 4", ">01 e01 >2 e2")                                                 \
    X(zebiAddProduct_32f_C1IR, "4 4 4", ">012 e012")                                                        \
    X(zebiAddProduct_8u32f_C1IMR, "1 1 1 4", ">0123 e3")                                                    \
    X(zebiAddProduct_8s32f_C1IMR, "1 1 1 4", ">0123 e3")                                                    \
    X(zebiAddProduct_16u32f_C1IMR, "2 2 1 4", ">01 e01 >23 e3")                                             \
    X(zebiAddProduct_32f_C1IMR, "4 4 1 4", ">0123 e013")                                                    \
    X(zebiAddWeighted_8u32f_C1IR, "1 4", ">01 e1")                                                          \
    X(zebiAddWeighted_8s32f_C1IR, "1 4", ">01 e1")                                                          \
    X(zebiAddWeighted_16u32f_C1IR, "2 4", ">0 e0 >1 e1")                                                    \
    X(zebiAddWeighted_32f_C1IR, "4 4", ">01 e01")                                                           \
    X(zebiAddWeighted_8u32f_C1IMR, "1 1 4", ">012 e2")                                                      \
    X(zebiAddWeighted_8s32f_C1IMR, "1 1 4", ">012 e2")                                                      \
    X(zebiAddWeighted_16u32f_C1IMR, "2 1 4", ">0 e0 >12 e2")                                                \
    X(zebiAddWeighted_32f_C1IMR, "4 1 4", ">012 e02")                                                       \
    X(zebiAddWeighted_32f_C1R, "4 4 4", ">012 e012")

#define ZEB_DECLARE(name, elems, order) ZEB_TEST_TABLE(name);
ZEB_MEMBERS(ZEB_DECLARE)

namespace {

// One export: its images' element sizes, its step-check groups in order
// (">" a group of length checks, "e" a group of multiple-of-size checks,
// digits the images in it), and its two variant entries.
struct Member {
    std::string name;
    std::vector<int> elems;
    std::vector<std::string> groups;
    std::function<ZebStatus(int variant, const zt::CallArgs&)> call;
    int channels = 1;
};

std::vector<int> parse_elems(const std::string& s) {
    std::vector<int> v;
    for (char c : s)
        if (c != ' ') v.push_back(c - '0');
    return v;
}

std::vector<std::string> parse_groups(const std::string& s) {
    std::vector<std::string> g;
    std::size_t i = 0;
    while (i < s.size()) {
        std::size_t j = s.find(' ', i);
        if (j == std::string::npos) j = s.size();
        g.push_back(s.substr(i, j - i));
        i = j + 1;
    }
    return g;
}

std::vector<Member> members() {
    std::vector<Member> m;
#define ZEB_MEMBER(name, elems, order)                                                                         \
    m.push_back({#name, parse_elems(elems), parse_groups(order),                                               \
                 [](int v, const zt::CallArgs& a) { return zt::call(zeb_tbl_##name[v], a); },                  \
                 std::string(#name).find("_C3R") != std::string::npos ? 3 : 1});
    ZEB_MEMBERS(ZEB_MEMBER)
    return m;
}

constexpr int kW = 9, kH = 4;

// The status the member's check order gives for these steps.
ZebStatus expected_for(const Member& m, const std::vector<int>& steps) {
    for (const std::string& g : m.groups) {
        for (std::size_t k = 1; k < g.size(); ++k) {
            const int i = g[k] - '0';
            const int minStep = kW * m.channels * m.elems[i];
            if (g[0] == '>' && steps[i] < minStep) return zebStsStepErr;
            if (g[0] == 'e' && steps[i] % m.elems[i] != 0) return zebStsNotEvenStepErr;
        }
    }
    return zebStsNoErr;
}

// Images for one member, each two rows taller and wider than any case
// reads, filled with noise that must survive every failing call.
struct Images {
    std::vector<std::unique_ptr<zt::Guarded>> blocks;
    std::vector<std::vector<uint8_t>> before;
    explicit Images(const Member& m) {
        for (int e : m.elems) {
            blocks.push_back(std::make_unique<zt::Guarded>(std::size_t(kW * m.channels * e + 64) * (kH + 1)));
            for (std::size_t b = 0; b < blocks.back()->size(); ++b) blocks.back()->data()[b] = uint8_t(b * 7 + 3);
            before.emplace_back(blocks.back()->data(), blocks.back()->data() + blocks.back()->size());
        }
    }
    bool unchanged() const {
        for (std::size_t i = 0; i < blocks.size(); ++i)
            if (std::memcmp(blocks[i]->data(), before[i].data(), before[i].size()) != 0) return false;
        return true;
    }
    zt::CallArgs args(const Member& m) const {
        zt::CallArgs a;
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            a.ptrs.push_back(blocks[i]->data());
            a.steps.push_back(kW * m.channels * m.elems[i]);
        }
        a.roi = {kW, kH};
        return a;
    }
};

void expect_case(const Member& m, const zt::CallArgs& a, ZebStatus want, const std::string& what) {
    for (int v = 0; v < 2; ++v) {
        Images fresh(m);
        zt::CallArgs b = a;
        for (std::size_t i = 0; i < b.ptrs.size(); ++i)
            if (b.ptrs[i]) b.ptrs[i] = fresh.blocks[i]->data();
        EXPECT_EQ(m.call(v, b), want) << m.name << " variant " << v << ": " << what;
        if (want < 0) {
            EXPECT_TRUE(fresh.unchanged()) << m.name << " wrote on failure: " << what;
        }
    }
}

TEST(ArithChecks, NullPointersComeFirst) {
    for (const Member& m : members()) {
        Images im(m);
        for (std::size_t i = 0; i < m.elems.size(); ++i) {
            zt::CallArgs a = im.args(m);
            a.ptrs[i] = nullptr;
            expect_case(m, a, zebStsNullPtrErr, "null image " + std::to_string(i));
            a.roi = {0, kH};
            a.steps[i] = 0;
            expect_case(m, a, zebStsNullPtrErr, "null image with bad size and step");
        }
    }
}

TEST(ArithChecks, SizeBeforeSteps) {
    for (const Member& m : members()) {
        Images im(m);
        for (ZebiSize bad : {ZebiSize{0, kH}, ZebiSize{kW, 0}, ZebiSize{-1, kH}, ZebiSize{kW, -5}}) {
            zt::CallArgs a = im.args(m);
            a.roi = bad;
            a.steps[0] = 1;
            expect_case(m, a, zebStsSizeErr, "bad roi");
        }
    }
}

// Single bad steps and every pair of a short step with an uneven one: the
// pairs pin down the order of the groups.
TEST(ArithChecks, StepOrder) {
    for (const Member& m : members()) {
        Images im(m);
        const std::size_t n = m.elems.size();
        for (std::size_t i = 0; i < n; ++i) {
            zt::CallArgs a = im.args(m);
            a.steps[i] -= 1;
            expect_case(m, a, expected_for(m, a.steps), "short step " + std::to_string(i));
            a = im.args(m);
            a.steps[i] += 1;
            expect_case(m, a, expected_for(m, a.steps), "uneven step " + std::to_string(i));
            for (std::size_t j = 0; j < n; ++j) {
                if (i == j || m.elems[j] == 1) continue;
                a = im.args(m);
                a.steps[i] -= m.elems[i];
                a.steps[j] += 1;
                const ZebStatus want = expected_for(m, a.steps);
                expect_case(m, a, want, "short " + std::to_string(i) + " uneven " + std::to_string(j));
            }
        }
        // Exact row lengths are accepted.
        expect_case(m, im.args(m), zebStsNoErr, "exact steps");
    }
}

// The pair cases above include both orders the members differ in; check the
// two that matter most by name so a regression reads plainly.
TEST(ArithChecks, SixteenBitSourcesAreCheckedBeforeTheAccumulator) {
    for (const Member& m : members()) {
        if (m.name != "zebiAdd_16u32f_C1IR" && m.name != "zebiAdd_8u32f_C1IR") continue;
        Images im(m);
        zt::CallArgs a = im.args(m);
        a.steps[0] += 1;   // odd source step (meaningless for 8u)
        a.steps[1] -= 4;   // accumulator too short
        expect_case(m, a, m.elems[0] == 2 ? zebStsNotEvenStepErr : zebStsStepErr, "mixed");
        a = im.args(m);
        a.steps[1] += 1;   // odd accumulator step
        a.steps[0] -= 1;   // source too short
        expect_case(m, a, zebStsStepErr, "odd accumulator, short source");
    }
}

}  // namespace

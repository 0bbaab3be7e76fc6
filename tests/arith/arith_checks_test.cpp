// Argument checks of the difference and accumulation exports, table driven
// from the member list: null pointers, then sizes, then the member's step
// groups in order. Every case runs through both variants on every vector
// target; a failing call must leave every image byte for byte as it was.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "arith_members.h"
#include "call.h"

namespace {

struct Member {
    std::string name, elems, order;
    ZebStatus (*call[2])(const zt::CallArgs&);
    int channels;
};

std::vector<Member> members() {
    std::vector<Member> m;
#define ZEB_MEMBER(name, kind, T, two, mask, elems, order)                                              \
    m.push_back({#name, elems, order,                                                                   \
                 {[](const zt::CallArgs& a) { return zt::call(zeb_tbl_##name[0], a); },                 \
                  [](const zt::CallArgs& a) { return zt::call(zeb_tbl_##name[1], a); }},                \
                 std::string(#kind) == "AbsDiff3" ? 3 : 1});
    ZEB_ARITH_MEMBERS(ZEB_MEMBER)
    return m;
}

constexpr int kW = 9, kH = 4;

int elem(const Member& m, std::size_t i) { return m.elems[i] - '0'; }
int min_step(const Member& m, std::size_t i) { return kW * m.channels * elem(m, i); }

// The status the member's documented order gives for these steps.
ZebStatus expected_for(const Member& m, const std::vector<int>& steps) {
    for (std::size_t g = 0; g < m.order.size(); ++g) {
        const char kind = m.order[g];
        for (; g + 1 < m.order.size() && m.order[g + 1] != ' '; ++g) {
            const std::size_t i = std::size_t(m.order[g + 1] - '0');
            if (kind == '>' && steps[i] < min_step(m, i)) return zebStsStepErr;
            if (kind == 'e' && steps[i] % elem(m, i) != 0) return zebStsNotEvenStepErr;
        }
        ++g;
    }
    return zebStsNoErr;
}

// Runs one case through both variants on fresh noise-filled images and
// checks the status and, on failure, that nothing was written.
void expect_case(const Member& m, zt::CallArgs a, ZebStatus want, const std::string& what) {
    for (int v = 0; v < 2; ++v) {
        std::vector<std::unique_ptr<zt::Guarded>> imgs;
        std::vector<std::vector<uint8_t>> before;
        for (std::size_t i = 0; i < m.elems.size(); ++i) {
            imgs.push_back(std::make_unique<zt::Guarded>(std::size_t(min_step(m, i) + 64) * (kH + 1)));
            for (std::size_t b = 0; b < imgs[i]->size(); ++b) imgs[i]->data()[b] = uint8_t(b * 7 + 3);
            before.emplace_back(imgs[i]->data(), imgs[i]->data() + imgs[i]->size());
            if (a.ptrs[i]) a.ptrs[i] = imgs[i]->data();
        }
        EXPECT_EQ(m.call[v](a), want) << m.name << " variant " << v << ": " << what;
        for (std::size_t i = 0; want < 0 && i < imgs.size(); ++i)
            EXPECT_EQ(0, std::memcmp(imgs[i]->data(), before[i].data(), before[i].size())) << m.name << ": " << what;
    }
}

ZT_TARGET_SUITE(ArithChecks);

zt::CallArgs valid(const Member& m) {
    zt::CallArgs a;
    for (std::size_t i = 0; i < m.elems.size(); ++i) {
        a.ptrs.push_back(&a);  // replaced by a real image in expect_case
        a.steps.push_back(min_step(m, i));
    }
    a.roi = {kW, kH};
    return a;
}

TEST_P(ArithChecks, NullPointersThenSizes) {
    for (const Member& m : members()) {
        for (std::size_t i = 0; i < m.elems.size(); ++i) {
            zt::CallArgs a = valid(m);
            a.ptrs[i] = nullptr;
            a.steps[i] = 0;
            a.roi = {0, kH};
            expect_case(m, a, zebStsNullPtrErr, "null image " + std::to_string(i) + " with bad size and step");
        }
        for (ZebiSize bad : {ZebiSize{0, kH}, ZebiSize{kW, 0}, ZebiSize{-1, kH}, ZebiSize{kW, -5}}) {
            zt::CallArgs a = valid(m);
            a.roi = bad;
            a.steps[0] = 1;
            expect_case(m, a, zebStsSizeErr, "bad roi with a bad step");
        }
    }
}

// Single short or uneven steps, and every pair of a short step with an
// uneven one: the pairs pin down the order of the groups (a 16-bit source
// is checked completely before the mask and accumulator, for example).
TEST_P(ArithChecks, StepOrder) {
    for (const Member& m : members()) {
        const std::size_t n = m.elems.size();
        for (std::size_t i = 0; i < n; ++i) {
            for (int delta : {-1, +1}) {
                zt::CallArgs a = valid(m);
                a.steps[i] += delta;
                expect_case(m, a, expected_for(m, a.steps), "step " + std::to_string(i) + " off by " + std::to_string(delta));
            }
            for (std::size_t j = 0; j < n; ++j) {
                if (i == j || elem(m, j) == 1) continue;
                zt::CallArgs a = valid(m);
                a.steps[i] -= elem(m, i);
                a.steps[j] += 1;
                expect_case(m, a, expected_for(m, a.steps), "short " + std::to_string(i) + " uneven " + std::to_string(j));
            }
        }
        expect_case(m, valid(m), zebStsNoErr, "exact row lengths");
    }
}

// The oracle itself must reflect the documented examples.
TEST(ArithCheckOracle, DocumentedOrderExamples) {
    const auto ms = members();
    auto find = [&](const char* n) { return *std::find_if(ms.begin(), ms.end(), [&](const Member& m) { return m.name == n; }); };
    EXPECT_EQ(expected_for(find("zebiAdd_16u32f_C1IR"), {kW * 2 + 1, kW * 4 - 4}), zebStsNotEvenStepErr);
    EXPECT_EQ(expected_for(find("zebiAdd_8u32f_C1IR"), {kW - 1, kW * 4 + 1}), zebStsStepErr);
}

}  // namespace

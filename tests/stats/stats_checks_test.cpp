// Argument checks of every statistics export, table driven: each member's
// images, which of them are required, the order of its step checks and
// the channel-of-interest check last. Every failing case runs through both
// variants and must leave every image and output byte for byte unchanged.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "call.h"
#include "harness.h"

// Every export of one type: X(name, family, element size, channels, masked).
#define ZT_TYPE_MEMBERS(X, c, e)                                                                            \
    X(zebiMean_##c##_C1MR, Mean, e, 1, 1) X(zebiMean_##c##_C3CMR, Mean, e, 3, 1)                            \
    X(zebiMean_StdDev_##c##_C1R, MeanStdDev, e, 1, 0) X(zebiMean_StdDev_##c##_C1MR, MeanStdDev, e, 1, 1)    \
    X(zebiMean_StdDev_##c##_C3CR, MeanStdDev, e, 3, 0) X(zebiMean_StdDev_##c##_C3CMR, MeanStdDev, e, 3, 1)  \
    X(zebiMinMaxIndx_##c##_C1R, MinMax, e, 1, 0) X(zebiMinMaxIndx_##c##_C1MR, MinMax, e, 1, 1)              \
    X(zebiMinMaxIndx_##c##_C3CR, MinMax, e, 3, 0) X(zebiMinMaxIndx_##c##_C3CMR, MinMax, e, 3, 1)            \
    ZT_NORM_MEMBERS(X, c, e, Inf) ZT_NORM_MEMBERS(X, c, e, L1) ZT_NORM_MEMBERS(X, c, e, L2)
#define ZT_NORM_MEMBERS(X, c, e, k)                                                                           \
    X(zebiNorm_##k##_##c##_C1MR, Norm, e, 1, 1) X(zebiNorm_##k##_##c##_C3CMR, Norm, e, 3, 1)                  \
    X(zebiNormDiff_##k##_##c##_C1MR, NormDiff, e, 1, 1) X(zebiNormDiff_##k##_##c##_C3CMR, NormDiff, e, 3, 1)  \
    X(zebiNormRel_##k##_##c##_C1MR, NormRel, e, 1, 1) X(zebiNormRel_##k##_##c##_C3CMR, NormRel, e, 3, 1)
#define ZT_STATS_MEMBERS(X) \
    ZT_TYPE_MEMBERS(X, 8u, 1) ZT_TYPE_MEMBERS(X, 8s, 1) ZT_TYPE_MEMBERS(X, 16u, 2) ZT_TYPE_MEMBERS(X, 32f, 4)

#define ZT_DECLARE(name, fam, elem, ch, masked) ZEB_TEST_TABLE(name);
ZT_STATS_MEMBERS(ZT_DECLARE)

namespace {

enum class Fam { Mean, MeanStdDev, MinMax, Norm, NormDiff, NormRel };

// One image argument: element size (for sources), bytes (for outputs),
// whether it has a step and whether a null pointer is refused.
struct Arg {
    int elem;
    bool stepped;
    bool required;
    std::size_t outBytes;
};

struct Member {
    std::string name;
    Fam fam;
    int elem, ch;
    bool masked;
    std::vector<Arg> args;
    std::vector<std::string> groups;  // ">" length checks, "e" parity checks, digits: stepped images
    std::function<ZebStatus(int, const zt::CallArgs&)> call;
};

Member make(std::string name, Fam fam, int elem, int ch, bool masked,
            std::function<ZebStatus(int, const zt::CallArgs&)> call) {
    Member m{std::move(name), fam, elem, ch, masked, {}, {}, std::move(call)};
    const bool two = fam == Fam::NormDiff || fam == Fam::NormRel;
    m.args.push_back({elem, true, true, 0});
    if (two) m.args.push_back({elem, true, true, 0});
    if (masked) m.args.push_back({1, true, true, 0});
    switch (fam) {
        case Fam::Mean: m.args.push_back({0, false, true, 8}); break;
        case Fam::MeanStdDev:
            m.args.push_back({0, false, false, 8});
            m.args.push_back({0, false, false, 8});
            break;
        case Fam::MinMax:
            for (std::size_t b : {4, 4, 8, 8}) m.args.push_back({0, false, false, b});
            break;
        default: m.args.push_back({0, false, true, 8}); break;
    }
    const std::string all = masked ? (two ? "012" : "01") : "0";
    const std::string srcs = two ? "01" : "0";
    if (fam >= Fam::Norm) {
        m.groups = {">" + all, "e" + srcs};
    } else if (elem == 2) {
        m.groups = {">0", "e0"};
        if (masked) m.groups.push_back(">1");
    } else {
        m.groups = {">" + all, "e0"};
    }
    return m;
}

std::vector<Member> members() {
    std::vector<Member> v;
#define ZT_MEMBER(name, fam, elem, ch, masked)                                                             \
    v.push_back(make(#name, Fam::fam, elem, ch, masked,                                                     \
                     [](int var, const zt::CallArgs& a) { return zt::call(zeb_tbl_##name[var], a); }));
    ZT_STATS_MEMBERS(ZT_MEMBER)
    return v;
}

constexpr int kW = 9, kH = 4;

// Width in bytes of a stepped image's row.
int row_bytes(const Member& m, std::size_t i) {
    const bool isMask = m.masked && i + 1 == std::size_t(m.fam == Fam::NormDiff || m.fam == Fam::NormRel ? 3 : 2);
    return isMask ? kW : kW * m.ch * m.args[i].elem;
}

// The status the member's documented order gives for these steps.
ZebStatus expected_for(const Member& m, const std::vector<int>& steps) {
    for (const std::string& g : m.groups)
        for (std::size_t k = 1; k < g.size(); ++k) {
            const std::size_t i = std::size_t(g[k] - '0');
            if (g[0] == '>' && steps[i] < row_bytes(m, i)) return zebStsStepErr;
            if (g[0] == 'e' && steps[i] % m.args[i].elem != 0) return zebStsNotEvenStepErr;
        }
    return zebStsNoErr;
}

// Every argument's memory, filled with a pattern that failing calls must
// leave alone.
struct Images {
    std::vector<std::unique_ptr<zt::Guarded>> blocks;
    std::vector<std::vector<uint8_t>> before;
    explicit Images(const Member& m) {
        for (std::size_t i = 0; i < m.args.size(); ++i) {
            const std::size_t bytes =
                m.args[i].stepped ? std::size_t(row_bytes(m, i) + 64) * (kH + 1) : m.args[i].outBytes;
            blocks.push_back(std::make_unique<zt::Guarded>(bytes));
            for (std::size_t b = 0; b < bytes; ++b) blocks.back()->data()[b] = uint8_t(b * 13 + 5);
            before.emplace_back(blocks.back()->data(), blocks.back()->data() + bytes);
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
            if (m.args[i].stepped) a.steps.push_back(row_bytes(m, i));
        }
        a.roi = {kW, kH};
        a.param = 2;  // channel of interest
        return a;
    }
};

// Runs a case on fresh images in both variants: the status, and no write
// at all when it is an error.
void expect_case(const Member& m, const zt::CallArgs& a, ZebStatus want, const std::string& what) {
    for (int v = 0; v < 2; ++v) {
        Images fresh(m);
        zt::CallArgs b = a;
        for (std::size_t i = 0; i < b.ptrs.size(); ++i)
            if (b.ptrs[i]) b.ptrs[i] = fresh.blocks[i]->data();
        const ZebStatus got = m.call(v, b);
        if (want == zebStsNoErr) {
            // Results of the valid calls are for the other suites; a warning
            // (relative norms over these images) also counts as success.
            EXPECT_GE(got, 0) << m.name << " variant " << v << ": " << what;
        } else {
            EXPECT_EQ(got, want) << m.name << " variant " << v << ": " << what;
            EXPECT_TRUE(fresh.unchanged()) << m.name << " wrote on failure: " << what;
        }
    }
}

TEST(StatsChecks, NullPointersComeFirst) {
    for (const Member& m : members()) {
        Images im(m);
        for (std::size_t i = 0; i < m.args.size(); ++i) {
            zt::CallArgs a = im.args(m);
            a.ptrs[i] = nullptr;
            if (!m.args[i].required) {
                expect_case(m, a, zebStsNoErr, "optional output " + std::to_string(i) + " null");
                continue;
            }
            expect_case(m, a, zebStsNullPtrErr, "null argument " + std::to_string(i));
            a.roi = {0, kH};
            a.steps[0] = 0;
            a.param = 0;
            expect_case(m, a, zebStsNullPtrErr, "null argument with bad size, step and coi");
        }
    }
}

TEST(StatsChecks, AllOptionalOutputsNullIsAValidCall) {
    for (const Member& m : members()) {
        if (m.fam != Fam::MeanStdDev && m.fam != Fam::MinMax) continue;
        Images im(m);
        zt::CallArgs a = im.args(m);
        for (std::size_t i = 0; i < m.args.size(); ++i)
            if (!m.args[i].stepped) a.ptrs[i] = nullptr;
        expect_case(m, a, zebStsNoErr, "every output null");
        // Still checked, though nothing is written.
        a.roi = {kW, -1};
        expect_case(m, a, zebStsSizeErr, "every output null, bad size");
    }
}

TEST(StatsChecks, SizeBeforeStepsAndChannel) {
    for (const Member& m : members()) {
        Images im(m);
        for (ZebiSize bad : {ZebiSize{0, kH}, ZebiSize{kW, 0}, ZebiSize{-3, kH}, ZebiSize{kW, -1}}) {
            zt::CallArgs a = im.args(m);
            a.roi = bad;
            a.steps[0] = 1;
            a.param = 0;
            expect_case(m, a, zebStsSizeErr, "bad roi");
        }
    }
}

// Single bad steps, and every pair of a short step with an uneven one: the
// pairs pin down the order of the groups. A bad channel of interest never
// hides a step error.
TEST(StatsChecks, StepOrder) {
    for (const Member& m : members()) {
        Images im(m);
        const std::size_t n = im.args(m).steps.size();
        for (std::size_t i = 0; i < n; ++i) {
            zt::CallArgs a = im.args(m);
            a.steps[i] -= 1;
            a.param = 0;
            expect_case(m, a, expected_for(m, a.steps), "short step " + std::to_string(i));
            a = im.args(m);
            a.steps[i] += 1;
            const ZebStatus uneven = expected_for(m, a.steps);
            expect_case(m, a, uneven, "long uneven step " + std::to_string(i));
            for (std::size_t j = 0; j < n; ++j) {
                if (i == j || m.args[j].elem == 1) continue;
                a = im.args(m);
                a.steps[i] -= m.args[i].elem;
                a.steps[j] += 1;
                expect_case(m, a, expected_for(m, a.steps), "short " + std::to_string(i) + " uneven " + std::to_string(j));
            }
        }
        expect_case(m, im.args(m), zebStsNoErr, "exact steps");
    }
}

TEST(StatsChecks, ChannelOfInterestIsCheckedLast) {
    for (const Member& m : members()) {
        Images im(m);
        for (int coi : {0, 4, -1, 1000}) {
            zt::CallArgs a = im.args(m);
            a.param = coi;
            expect_case(m, a, m.ch == 3 ? zebStsCOIErr : zebStsNoErr, "coi " + std::to_string(coi));
        }
        for (int coi : {1, 2, 3}) {
            zt::CallArgs a = im.args(m);
            a.param = coi;
            expect_case(m, a, zebStsNoErr, "coi " + std::to_string(coi));
        }
    }
}

}  // namespace

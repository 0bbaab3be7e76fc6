// Argument checks of every statistics export, table driven: each member's
// images, which of them are required, the order of its step checks and
// the channel-of-interest check last. Every case runs through both
// variants on every vector target; every failing one must leave every
// image and output byte for byte unchanged.
#include <memory>

#include "stats_support.h"

namespace {

using Fam = zst::Family;

ZT_TARGET_SUITE(StatsChecks);

// One argument: element size (sources), bytes (outputs), whether it has a
// step and whether a null pointer is refused.
struct Arg {
    int elem;
    bool stepped, required;
    std::size_t outBytes;
};

struct Member {
    std::string name;
    const zst::Fn* fn;
    Fam fam;
    int ch, mask = -1;  // index of the mask argument
    std::vector<Arg> args;
    std::vector<std::string> groups;  // ">" length checks, "e" parity checks, digits: stepped images
};

constexpr int kW = 9, kH = 4;

std::vector<Member> members() {
    std::vector<Member> v;
    for (const zst::Member& e : zst::members()) {
        const Fam fam = e.id.fam;
        const int elem = std::abs(e.id.elem), ch = e.id.ch;
        const bool masked = e.id.masked;
        Member m{e.name, &e.fn, fam, ch, -1, {}, {}};
        const bool two = fam == Fam::NormDiff || fam == Fam::NormRel;
        m.args.assign(two ? 2 : 1, {elem, true, true, 0});
        if (masked) m.mask = int(m.args.size()), m.args.push_back({1, true, true, 0});
        if (fam == Fam::MeanStdDev)
            m.args.insert(m.args.end(), 2, {0, false, false, 8});
        else if (fam == Fam::MinMax)
            for (std::size_t b : {4, 4, 8, 8}) m.args.push_back({0, false, false, b});
        else
            m.args.push_back({0, false, true, 8});
        const std::string all = masked ? (two ? "012" : "01") : "0";
        if (fam >= Fam::Norm)
            m.groups = {">" + all, two ? "e01" : "e0"};
        else if (elem == 2)
            m.groups = {">0", "e0", masked ? ">1" : ">"};
        else
            m.groups = {">" + all, "e0"};
        v.push_back(m);
    }
    return v;
}

int row_bytes(const Member& m, std::size_t i) { return int(i) == m.mask ? kW : kW * m.ch * m.args[i].elem; }

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

// Exact steps, the full ROI and channel 2; pointers are set per call.
zt::CallArgs good_args(const Member& m) {
    zt::CallArgs a;
    for (std::size_t i = 0; i < m.args.size(); ++i) {
        a.ptrs.push_back(&a);  // any non-null marker
        if (m.args[i].stepped) a.steps.push_back(row_bytes(m, i));
    }
    a.roi = {kW, kH};
    a.param = 2;
    return a;
}

// Runs a case in both variants on fresh guarded blocks filled with a
// pattern: the status, and no write at all when it is an error.
void expect_case(const Member& m, zt::CallArgs a, ZebStatus want, const std::string& what) {
    const zst::Fn& fn = *m.fn;
    for (int v = 0; v < 2; ++v) {
        std::vector<std::unique_ptr<zt::Guarded>> blocks;
        std::vector<std::vector<uint8_t>> before;
        for (std::size_t i = 0; i < m.args.size(); ++i) {
            const std::size_t n =
                m.args[i].stepped ? std::size_t(row_bytes(m, i) + 64) * (kH + 1) : m.args[i].outBytes;
            blocks.push_back(std::make_unique<zt::Guarded>(n));
            for (std::size_t b = 0; b < n; ++b) blocks.back()->data()[b] = uint8_t(b * 13 + 5);
            before.emplace_back(blocks.back()->data(), blocks.back()->data() + n);
            if (a.ptrs[i]) a.ptrs[i] = blocks.back()->data();
        }
        const ZebStatus got = fn(v, a);
        // A warning (relative norms over these images) counts as success.
        if (want == zebStsNoErr) {
            EXPECT_GE(got, 0) << m.name << " variant " << v << ": " << what;
            continue;
        }
        EXPECT_EQ(got, want) << m.name << " variant " << v << ": " << what;
        for (std::size_t i = 0; i < blocks.size(); ++i)
            EXPECT_EQ(0, std::memcmp(blocks[i]->data(), before[i].data(), before[i].size()))
                << m.name << " wrote argument " << i << " on failure: " << what;
    }
}

// Null required pointers fail before anything else; optional outputs may be
// null, all of them at once too, and the size is still checked then.
TEST_P(StatsChecks, NullPointersComeFirst) {
    for (const Member& m : members()) {
        zt::CallArgs none = good_args(m);
        for (std::size_t i = 0; i < m.args.size(); ++i) {
            zt::CallArgs a = good_args(m);
            a.ptrs[i] = nullptr;
            if (!m.args[i].required) {
                none.ptrs[i] = nullptr;
                expect_case(m, a, zebStsNoErr, "optional output " + std::to_string(i) + " null");
                continue;
            }
            expect_case(m, a, zebStsNullPtrErr, "null argument " + std::to_string(i));
            a.roi = {0, kH}, a.steps[0] = 0, a.param = 0;
            expect_case(m, a, zebStsNullPtrErr, "null argument with bad size, step and coi");
        }
        if (m.fam != Fam::MeanStdDev && m.fam != Fam::MinMax) continue;
        expect_case(m, none, zebStsNoErr, "every output null");
        none.roi = {kW, -1};
        expect_case(m, none, zebStsSizeErr, "every output null, bad size");
    }
}

// Bad sizes come before steps and channel; the channel of interest comes
// last, and only three-channel forms check it.
TEST_P(StatsChecks, SizeFirstChannelLast) {
    for (const Member& m : members()) {
        for (ZebiSize bad : {ZebiSize{0, kH}, ZebiSize{kW, 0}, ZebiSize{-3, kH}, ZebiSize{kW, -1}}) {
            zt::CallArgs a = good_args(m);
            a.roi = bad, a.steps[0] = 1, a.param = 0;
            expect_case(m, a, zebStsSizeErr, "bad roi");
        }
        for (int coi : {0, 4, -1, 1000, 1, 2, 3}) {
            zt::CallArgs a = good_args(m);
            a.param = coi;
            const bool bad = m.ch == 3 && (coi < 1 || coi > 3);
            expect_case(m, a, bad ? zebStsCOIErr : zebStsNoErr, "coi " + std::to_string(coi));
        }
    }
}

// Single bad steps, and every pair of a short step with an uneven one: the
// pairs pin down the order of the groups. A bad channel of interest never
// hides a step error.
TEST_P(StatsChecks, StepOrder) {
    for (const Member& m : members()) {
        const std::size_t n = good_args(m).steps.size();
        for (std::size_t i = 0; i < n; ++i) {
            zt::CallArgs a = good_args(m);
            a.steps[i] -= 1, a.param = 0;
            expect_case(m, a, expected_for(m, a.steps), "short step " + std::to_string(i));
            a = good_args(m);
            a.steps[i] += 1;
            expect_case(m, a, expected_for(m, a.steps), "long uneven step " + std::to_string(i));
            for (std::size_t j = 0; j < n; ++j) {
                if (i == j || m.args[j].elem == 1) continue;
                a = good_args(m);
                a.steps[i] -= m.args[i].elem, a.steps[j] += 1;
                const std::string what = "short " + std::to_string(i) + ", uneven " + std::to_string(j);
                expect_case(m, a, expected_for(m, a.steps), what);
            }
        }
    }
}

}  // namespace

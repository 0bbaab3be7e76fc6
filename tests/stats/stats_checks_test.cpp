// SPDX-License-Identifier: Apache-2.0
// Argument checks of every statistics export, one table per member: which
// pointers are required, the size before the steps, the member's order of
// length and parity checks, the channel of interest last. Failing cases
// must leave every image and output byte for byte unchanged.
#include "check_table.h"
#include "stats_support.h"

namespace {

using A = zt::CallArgs;
constexpr int kW = 9, kH = 4;

// A member's arguments as its name gives them: the images (sources, then
// the mask) with their element sizes, the outputs with their sizes, and
// the groups of step checks in order (">" lengths, "e" parity, of the
// listed images).
struct Shape {
    std::vector<int> elem, outBytes;
    int mask = -1, ch = 1;
    bool outsOptional = true;
    std::vector<std::string> groups;
};

Shape shape_of(const std::string& name) {
    auto has = [&](const char* s) { return name.find(s) != std::string::npos; };
    Shape s;
    const bool norm = has("Norm"), two = has("NormDiff") || has("NormRel"), masked = has("MR");
    const int elem = has("_32f_") ? 4 : has("_16u_") ? 2 : 1;
    s.ch = has("C3C") ? 3 : 1;
    s.elem.assign(two ? 2 : 1, elem);
    if (masked) s.mask = int(s.elem.size()), s.elem.push_back(1);
    s.outBytes = has("MinMax") ? std::vector<int>{4, 4, 8, 8} : has("StdDev") ? std::vector<int>{8, 8} : std::vector{8};
    s.outsOptional = has("MinMax") || has("StdDev");
    const std::string all = masked ? (two ? "012" : "01") : "0";
    if (norm)
        s.groups = {">" + all, two ? "e01" : "e0"};
    else if (elem == 2)
        s.groups = {">0", "e0", masked ? ">1" : ">"};
    else
        s.groups = {">" + all, "e0"};
    return s;
}

int row_bytes(const Shape& s, int i) { return i == s.mask ? kW : kW * s.ch * s.elem[i]; }

// The status the member's documented order gives for these steps.
ZebStatus expected_for(const Shape& s, const std::vector<int>& steps) {
    for (const std::string& g : s.groups)
        for (std::size_t k = 1; k < g.size(); ++k) {
            const int i = g[k] - '0';
            if (g[0] == '>' && steps[i] < row_bytes(s, i)) return zebStsStepErr;
            if (g[0] == 'e' && steps[i] % s.elem[i] != 0) return zebStsNotEvenStepErr;
        }
    return zebStsNoErr;
}

TEST(StatsChecks, EveryMemberInDocumentedOrder) {
    for (const auto& [name, fn] : zst::members()) {
        const Shape s = shape_of(name);
        const int nImg = int(s.elem.size()), nArg = nImg + int(s.outBytes.size());
        std::vector<zt::checks::Case<A>> cases;
        auto add = [&](std::string what, std::function<void(A&)> f, ZebStatus want) {
            cases.push_back({std::move(what), std::move(f), want});
        };
        // Null required pointers come first, even with a bad size, step and
        // channel; optional outputs may be null, all at once too, and the
        // size is still checked then.
        for (int i = 0; i < nArg; ++i) {
            const std::string n = std::to_string(i);
            if (i < nImg || !s.outsOptional) {
                add(
                    "null " + n, [i](A& a) { a.ptrs[i] = nullptr; }, zebStsNullPtrErr);
                add(
                    "null " + n + ", bad size, step and coi",
                    [i](A& a) { a.ptrs[i] = nullptr, a.roi.width = 0, a.steps[0] = 0, a.param = 0; }, zebStsNullPtrErr);
            } else {
                add(
                    "null output " + n, [i](A& a) { a.ptrs[i] = nullptr; }, zebStsNoErr);
            }
        }
        auto no_outputs = [nImg](A& a) { std::fill(a.ptrs.begin() + nImg, a.ptrs.end(), nullptr); };
        if (s.outsOptional) {
            add("every output null", no_outputs, zebStsNoErr);
            add(
                "every output null, bad size", [=](A& a) { no_outputs(a), a.roi.height = -1; }, zebStsSizeErr);
        }
        // Bad sizes come before steps and channel.
        for (ZebiSize bad : {ZebiSize{0, kH}, ZebiSize{kW, 0}, ZebiSize{-3, kH}, ZebiSize{kW, -1}})
            add(
                "roi " + std::to_string(bad.width) + "x" + std::to_string(bad.height),
                [bad](A& a) { a.roi = bad, a.steps[0] = 1, a.param = 0; }, zebStsSizeErr);
        // The channel of interest comes last; one-channel forms ignore it.
        for (int coi : {0, 4, -1, 1, 3})
            add(
                "coi " + std::to_string(coi), [coi](A& a) { a.param = coi; },
                s.ch == 3 && (coi < 1 || coi > 3) ? zebStsCOIErr : zebStsNoErr);
        // Single bad steps (a bad channel never hides them), and every pair
        // of a short step with an uneven one: the pairs pin down the order
        // of the groups.
        std::vector<int> good;
        for (int i = 0; i < nImg; ++i) good.push_back(row_bytes(s, i));
        for (int i = 0; i < nImg; ++i)
            for (int j = -2; j < nImg; ++j) {
                if (i == j || (j >= 0 && s.elem[j] == 1)) continue;
                std::vector<int> t = good;
                // j -2: short by one byte, bad coi; -1: long by one byte;
                // else short by one element with an uneven step j.
                const int di = j == -2 ? -1 : j == -1 ? 1 : -s.elem[i];
                t[i] += di;
                if (j >= 0) t[j] += 1;
                add(
                    "step " + std::to_string(i) + " by " + std::to_string(di) + ", uneven " + std::to_string(j),
                    [i, j, di](A& a) {
                        a.steps[i] += di;
                        if (j >= 0) a.steps[j] += 1;
                        if (j == -2) a.param = 0;
                    },
                    expected_for(s, t));
            }
        // The valid call: exact steps, channel 2, and images of one non-zero
        // byte value (every pixel selected, relative norms divide by a
        // non-zero reference and return no warning).
        auto valid = [s, nImg](zt::checks::Arena& m) {
            A a;
            for (int i = 0; i < nImg; ++i) {
                auto img = m.image<uint8_t>("image " + std::to_string(i), row_bytes(s, i), kH, 1, 4);
                std::memset(img.ptr, 0x3f, std::size_t(img.step + 4) * (kH - 1) + std::size_t(img.step));
                a.ptrs.push_back(img.ptr), a.steps.push_back(img.step);
            }
            for (std::size_t o = 0; o < s.outBytes.size(); ++o)
                a.ptrs.push_back(m.block("output " + std::to_string(o), std::size_t(s.outBytes[o])));
            a.roi = {kW, kH}, a.param = 2;
            return a;
        };
        zt::checks::run(zt::checks::Table<A>{name, valid, [&fn](int v, A& a) { return fn(v, a); }, std::move(cases)});
    }
}

}  // namespace

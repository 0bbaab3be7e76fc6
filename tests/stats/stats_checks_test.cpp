// Argument checks of every statistics export, one table per member: which
// pointers are required, the size before the steps, the member's order of
// length and parity checks, the channel of interest last. Failing cases
// must leave every image and output byte for byte unchanged.
#include "check_table.h"
#include "stats_support.h"

namespace {

using Fam = zst::Family;
using zt::checks::Case;

constexpr int kW = 9, kH = 4;

// The images and outputs of a member, in argument order.
struct Arg {
    int elem;       // element size of an image; 0 for an output
    bool required;  // a null pointer is refused
    int outBytes;
};

struct Shape {
    std::vector<Arg> args;
    int nImages = 0, mask = -1;       // index of the mask image
    std::vector<std::string> groups;  // ">" length checks, "e" parity checks of the listed images
};

Shape shape_of(const zst::Member& e) {
    Shape s;
    const Fam fam = e.id.fam;
    const int elem = std::abs(e.id.elem);
    const bool two = fam == Fam::NormDiff || fam == Fam::NormRel;
    s.args.assign(two ? 2 : 1, {elem, true, 0});
    if (e.id.masked) s.mask = int(s.args.size()), s.args.push_back({1, true, 0});
    s.nImages = int(s.args.size());
    if (fam == Fam::MeanStdDev)
        s.args.insert(s.args.end(), 2, {0, false, 8});
    else if (fam == Fam::MinMax)
        for (int b : {4, 4, 8, 8}) s.args.push_back({0, false, b});
    else
        s.args.push_back({0, true, 8});
    const std::string all = e.id.masked ? (two ? "012" : "01") : "0";
    if (fam >= Fam::Norm)
        s.groups = {">" + all, two ? "e01" : "e0"};
    else if (elem == 2)
        s.groups = {">0", "e0", e.id.masked ? ">1" : ">"};
    else
        s.groups = {">" + all, "e0"};
    return s;
}

int row_bytes(const Shape& s, const zst::Member& e, int i) { return i == s.mask ? kW : kW * e.id.ch * s.args[i].elem; }

// The status the member's documented order gives for these steps.
ZebStatus expected_for(const Shape& s, const zst::Member& e, const std::vector<int>& steps) {
    for (const std::string& g : s.groups)
        for (std::size_t k = 1; k < g.size(); ++k) {
            const int i = g[k] - '0';
            if (g[0] == '>' && steps[i] < row_bytes(s, e, i)) return zebStsStepErr;
            if (g[0] == 'e' && steps[i] % s.args[i].elem != 0) return zebStsNotEvenStepErr;
        }
    return zebStsNoErr;
}

TEST(StatsChecks, EveryMemberInDocumentedOrder) {
    for (const zst::Member& e : zst::members()) {
        const Shape s = shape_of(e);
        using A = zt::CallArgs;
        std::vector<Case<A>> cases;
        auto add = [&](std::string name, std::function<void(A&)> f, ZebStatus want) {
            cases.push_back({std::move(name), std::move(f), want});
        };
        // Null required pointers come first, even with a bad size, step and
        // channel; optional outputs may be null, all at once too, and the
        // size is still checked then.
        for (int i = 0; i < int(s.args.size()); ++i) {
            const std::string n = std::to_string(i);
            if (s.args[i].required) {
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
        if (!s.args.back().required) {
            const int first = s.nImages;
            add(
                "every output null", [first](A& a) { std::fill(a.ptrs.begin() + first, a.ptrs.end(), nullptr); },
                zebStsNoErr);
            add(
                "every output null, bad size",
                [first](A& a) { std::fill(a.ptrs.begin() + first, a.ptrs.end(), nullptr), a.roi.height = -1; },
                zebStsSizeErr);
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
                e.id.ch == 3 && (coi < 1 || coi > 3) ? zebStsCOIErr : zebStsNoErr);
        // Single bad steps (a bad channel never hides them), and every pair
        // of a short step with an uneven one: the pairs pin down the order
        // of the groups.
        A good;
        for (int i = 0; i < s.nImages; ++i) good.steps.push_back(row_bytes(s, e, i));
        for (int i = 0; i < s.nImages; ++i) {
            const std::string n = std::to_string(i);
            for (int d : {-1, 1}) {
                A t = good;
                t.steps[i] += d;
                add(
                    "step " + n + (d < 0 ? " short, bad coi" : " long, uneven"),
                    [i, d](A& a) { a.steps[i] += d, a.param = d < 0 ? 0 : a.param; }, expected_for(s, e, t.steps));
            }
            for (int j = 0; j < s.nImages; ++j) {
                if (i == j || s.args[j].elem == 1) continue;
                A t = good;
                const int di = s.args[i].elem;
                t.steps[i] -= di, t.steps[j] += 1;
                add(
                    "short " + n + ", uneven " + std::to_string(j),
                    [i, j, di](A& a) { a.steps[i] -= di, a.steps[j] += 1; }, expected_for(s, e, t.steps));
            }
        }
        // The valid call: exact steps, every pixel selected, channel 2, and
        // sources of one non-zero value (so that relative norms divide by a
        // non-zero reference and return no warning).
        zt::checks::Table<A> t{e.name,
                               [s, e](zt::checks::Arena& m) {
                                   A a;
                                   for (int i = 0; i < int(s.args.size()); ++i) {
                                       const std::string n = "arg " + std::to_string(i);
                                       if (i >= s.nImages) {
                                           a.ptrs.push_back(m.block(n, std::size_t(s.args[i].outBytes)));
                                           continue;
                                       }
                                       const int ch = i == s.mask ? 1 : e.id.ch;
                                       auto img = m.image<uint8_t>(n, kW * s.args[i].elem, kH, ch, 4);
                                       std::memset(img.ptr, 0x3f,
                                                   std::size_t(img.step + 4) * (kH - 1) + std::size_t(img.step));
                                       a.ptrs.push_back(img.ptr), a.steps.push_back(img.step);
                                   }
                                   a.roi = {kW, kH}, a.param = 2;
                                   return a;
                               },
                               [&e](int v, A& a) { return e.fn(v, a); }, std::move(cases)};
        zt::checks::run(t);
    }
}

}  // namespace

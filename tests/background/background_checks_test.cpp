// SPDX-License-Identifier: Apache-2.0
// Argument checks of every background-modelling export, in their
// documented order, with canaries proving that a refused call writes
// nothing (destinations, caller-owned states and state outputs).
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>

#include "background_members.h"
#include "check_table.h"
#include "core/zebcore_test_hooks.h"

namespace {

using zt::checks::Arena;
using zt::checks::Table;
constexpr int kW = 7, kH = 5;

// ---- Motion history ----

template <class S>
struct MhiArgs {
    const S* sil;
    int ss;
    Zeb32f* mhi;
    int ms;
    ZebiSize roi;
    float ts, dur;
};

template <class S>
void mhi_table(const char* name, ZebStatus (*const* tbl)(const S*, int, Zeb32f*, int, ZebiSize, Zeb32f, Zeb32f)) {
    using A = MhiArgs<S>;
    const int es = int(sizeof(S));
    Table<A> t{name,
               [](Arena& m) {
                   auto s = m.image<S>("silhouette", kW, kH, 1, 8);
                   auto h = m.image<Zeb32f>("mhi", kW, kH, 1, 8);
                   return A{s.ptr, s.step, h.ptr, h.step, {kW, kH}, 10.f, 3.f};
               },
               [tbl](int v, A& x) { return tbl[v](x.sil, x.ss, x.mhi, x.ms, x.roi, x.ts, x.dur); },
               {{"null silhouette, width 0", [](A& x) { x.sil = nullptr, x.roi.width = 0; }, zebStsNullPtrErr},
                {"null mhi, negative duration", [](A& x) { x.mhi = nullptr, x.dur = -1; }, zebStsNullPtrErr},
                {"height 0, short step", [](A& x) { x.roi.height = 0, x.ms -= 4; }, zebStsSizeErr},
                {"width -1", [](A& x) { x.roi.width = -1; }, zebStsSizeErr},
                {"short mhi step, uneven silhouette step", [](A& x) { x.ms -= 4, x.ss += 1; }, zebStsStepErr},
                {"mhi step one byte short", [](A& x) { x.ms -= 1; }, zebStsStepErr},
                {"uneven mhi step, negative duration", [](A& x) { x.ms += 2, x.dur = -1; }, zebStsNotEvenStepErr},
                {"negative duration", [](A& x) { x.dur = -0.5f; }, zebStsNotSupportedModeErr},
                {"duration 0", [](A& x) { x.dur = 0; }, zebStsNoErr}}};
    t.cases.push_back({"silhouette step one short", [es](A& x) { x.ss -= es; }, zebStsStepErr});
    // An 8-bit silhouette's step has no parity to check.
    t.cases.push_back({"silhouette step + 1", [](A& x) { x.ss += 1; }, es == 1 ? zebStsNoErr : zebStsNotEvenStepErr});
    zt::checks::run(t);
}

TEST(BackgroundChecks, MotionHistory) {
    mhi_table<Zeb8u>("zebiUpdateMotionHistory_8u32f_C1IR", zeb_tbl_zebiUpdateMotionHistory_8u32f_C1IR);
    mhi_table<Zeb16u>("zebiUpdateMotionHistory_16u32f_C1IR", zeb_tbl_zebiUpdateMotionHistory_16u32f_C1IR);
    mhi_table<Zeb32f>("zebiUpdateMotionHistory_32f_C1IR", zeb_tbl_zebiUpdateMotionHistory_32f_C1IR);
}

// ---- FGMM ----

struct SizeArgs {
    ZebiSize roi;
    int n;
    int* out;
};

struct FgmmArgs {
    const Zeb8u* src;
    int ss;
    Zeb8u* dst;
    int ds;
    ZebiSize roi;
    ZebFGMMState_8u_C3R* st;
    const ZebFGMMModel* model;
    float rate;
};

// A state laid out for kW x kH with 3 components, in a block of exactly
// its queried size.
ZebFGMMState_8u_C3R* fgmm_state(Arena& m, const ZebFGMMModel* model, int w = kW, int h = kH) {
    int bytes = 0;
    EXPECT_EQ(zebiFGMMGetBufferSize_8u_C3R({w, h}, 3, &bytes), zebStsNoErr);
    auto* st = reinterpret_cast<ZebFGMMState_8u_C3R*>(m.block("state", std::size_t(bytes)));
    EXPECT_EQ(zebiFGMMInit_8u_C3R({w, h}, 3, model, st), zebStsNoErr);
    return st;
}

TEST(BackgroundChecks, FGMM) {
    static const ZebFGMMModel model = zt::bg::default_fgmm();
    zt::checks::run(Table<SizeArgs>{
        "zebiFGMMGetBufferSize_8u_C3R",
        [](Arena& m) { return SizeArgs{{kW, kH}, 3, m.array<int>("size", 1)}; },
        [](int v, SizeArgs& x) { return zeb_tbl_zebiFGMMGetBufferSize_8u_C3R[v](x.roi, x.n, x.out); },
        {{"null size, width 0", [](SizeArgs& x) { x.out = nullptr, x.roi.width = 0; }, zebStsNullPtrErr},
         {"height 0, no components", [](SizeArgs& x) { x.roi.height = 0, x.n = 0; }, zebStsSizeErr},
         {"no components", [](SizeArgs& x) { x.n = 0; }, zebStsBadArgErr},
         {"256 components", [](SizeArgs& x) { x.n = 256; }, zebStsBadArgErr},
         {"255 components", [](SizeArgs& x) { x.n = 255; }, zebStsNoErr},
         {"more than an int", [](SizeArgs& x) { x.roi = {40000, 40000}; }, zebStsSizeErr}}});

    struct InitArgs {
        ZebiSize roi;
        int n;
        const ZebFGMMModel* model;
        ZebFGMMState_8u_C3R* st;
    };
    zt::checks::run(Table<InitArgs>{
        "zebiFGMMInit_8u_C3R",
        [](Arena& m) {
            int bytes = 0;
            EXPECT_EQ(zebiFGMMGetBufferSize_8u_C3R({kW, kH}, 3, &bytes), zebStsNoErr);
            return InitArgs{{kW, kH}, 3, &model,
                            reinterpret_cast<ZebFGMMState_8u_C3R*>(m.block("state", std::size_t(bytes)))};
        },
        [](int v, InitArgs& x) { return zeb_tbl_zebiFGMMInit_8u_C3R[v](x.roi, x.n, x.model, x.st); },
        {{"null model, width 0", [](InitArgs& x) { x.model = nullptr, x.roi.width = 0; }, zebStsNullPtrErr},
         {"null state", [](InitArgs& x) { x.st = nullptr; }, zebStsNullPtrErr},
         {"width -3, no components", [](InitArgs& x) { x.roi.width = -3, x.n = 0; }, zebStsSizeErr},
         {"no components", [](InitArgs& x) { x.n = 0; }, zebStsBadArgErr},
         {"more than an int", [](InitArgs& x) { x.roi = {40000, 40000}; }, zebStsSizeErr}}});

    zt::checks::run(Table<FgmmArgs>{
        "zebiFGMMForeground_8u_C3R",
        [](Arena& m) {
            auto s = m.image<Zeb8u>("src", kW, kH, 3, 4);
            auto d = m.image<Zeb8u>("dst", kW, kH, 1, 4);
            return FgmmArgs{s.ptr, s.step, d.ptr, d.step, {kW, kH}, fgmm_state(m, &model), nullptr, -1.f};
        },
        [](int v, FgmmArgs& x) {
            return zeb_tbl_zebiFGMMForeground_8u_C3R[v](x.src, x.ss, x.dst, x.ds, x.roi, x.st, x.model, x.rate);
        },
        {{"null src, width 0", [](FgmmArgs& x) { x.src = nullptr, x.roi.width = 0; }, zebStsNullPtrErr},
         {"null dst", [](FgmmArgs& x) { x.dst = nullptr; }, zebStsNullPtrErr},
         {"null state", [](FgmmArgs& x) { x.st = nullptr; }, zebStsNullPtrErr},
         {"height 0, short step", [](FgmmArgs& x) { x.roi.height = 0, x.ss = 1; }, zebStsSizeErr},
         {"src step one short", [](FgmmArgs& x) { x.ss -= 1; }, zebStsStepErr},
         {"dst step one short, other size", [](FgmmArgs& x) { x.ds -= 1, x.roi.height -= 1; }, zebStsStepErr},
         {"smaller than the state", [](FgmmArgs& x) { x.roi.height -= 1; }, zebStsSizeErr},
         {"wider than the state", [](FgmmArgs& x) { x.roi.width += 1, x.ss += 4, x.ds += 4; }, zebStsSizeErr},
         {"rate above 1", [](FgmmArgs& x) { x.rate = 1.5f; }, zebStsBadArgErr},
         {"rate NaN", [](FgmmArgs& x) { x.rate = std::numeric_limits<float>::quiet_NaN(); }, zebStsBadArgErr},
         {"rate 1, model given", [](FgmmArgs& x) { x.rate = 1.f, x.model = &model; }, zebStsNoErr}}});

    struct BgArgs {
        Zeb8u* dst;
        int ds;
        ZebiSize roi;
        const ZebFGMMState_8u_C3R* st;
    };
    zt::checks::run(Table<BgArgs>{
        "zebiFGMMBackground_8u_C3R",
        [](Arena& m) {
            auto d = m.image<Zeb8u>("dst", kW, kH, 3);
            return BgArgs{d.ptr, d.step, {kW, kH}, fgmm_state(m, &model)};
        },
        [](int v, BgArgs& x) { return zeb_tbl_zebiFGMMBackground_8u_C3R[v](x.dst, x.ds, x.roi, x.st); },
        {{"null dst, step 0", [](BgArgs& x) { x.dst = nullptr, x.ds = 0; }, zebStsNullPtrErr},
         {"null state", [](BgArgs& x) { x.st = nullptr; }, zebStsNullPtrErr},
         {"step 0, width 0", [](BgArgs& x) { x.ds = 0, x.roi.width = 0; }, zebStsStepErr},
         {"step -21", [](BgArgs& x) { x.ds = -21; }, zebStsStepErr},
         {"width 0, height 0", [](BgArgs& x) { x.roi = {0, 0}; }, zebStsSizeErr},
         {"height 0", [](BgArgs& x) { x.roi.height = 0; }, zebStsSizeErr},
         {"other size", [](BgArgs& x) { x.roi.width -= 2; }, zebStsSizeErr}}});
}

// ---- InitAlloc states ----

// Frees every state a table's valid calls made when the test ends.
template <class S, ZebStatus (*Free)(S*)>
struct Owned {
    std::vector<S*> states;
    ~Owned() {
        for (S* s : states) EXPECT_EQ(Free(s), zebStsNoErr);
    }
};

template <class S, class Model>
struct InitArgs {
    const Zeb8u* src;
    int ss;
    ZebiSize roi;
    const Model* model;
    S** out;
};

template <class S, class Model>
void init_table(const char* name, int ch, ZebStatus (*const* tbl)(const Zeb8u*, int, ZebiSize, const Model*, S**),
                ZebStatus (*free)(S*), std::vector<zt::checks::Case<InitArgs<S, Model>>> extra) {
    using A = InitArgs<S, Model>;
    static const Model model{};
    Table<A> t{name,
               [ch](Arena& m) {
                   auto s = m.image<Zeb8u>("src", kW, kH, ch, 4);
                   return A{s.ptr, s.step, {kW, kH}, &model, m.array<S*>("state pointer", 1)};
               },
               [tbl, free](int v, A& x) {
                   const ZebStatus st = tbl[v](x.src, x.ss, x.roi, x.model, x.out);
                   if (st == zebStsNoErr) {
                       EXPECT_EQ(free(*x.out), zebStsNoErr);
                   }
                   return st;
               },
               {{"null src, width 0", [](A& x) { x.src = nullptr, x.roi.width = 0; }, zebStsNullPtrErr},
                {"null model", [](A& x) { x.model = nullptr; }, zebStsNullPtrErr},
                {"null output", [](A& x) { x.out = nullptr; }, zebStsNullPtrErr},
                {"height 0, short step", [](A& x) { x.roi.height = 0, x.ss = 0; }, zebStsSizeErr},
                {"step one short", [](A& x) { x.ss -= 1; }, zebStsStepErr}}};
    for (auto& c : extra) t.cases.push_back(c);
    zt::checks::run(t);
    // Every allocation of the state failing in turn: -9, nothing left allocated.
    for (int k = 1; k <= 6; ++k) {
        Arena m(false);
        A x = t.valid(m);
        m.snapshot();
        const int64_t live = zebTestLiveBlocks();
        zebTestFailMallocAt(k);
        const ZebStatus st = tbl[0](x.src, x.ss, x.roi, x.model, x.out);
        zebTestFailMallocAt(0);
        if (st == zebStsNoErr) {  // fewer allocations than k
            EXPECT_EQ(free(*x.out), zebStsNoErr);
            EXPECT_GE(k, 3) << name;
            break;
        }
        EXPECT_EQ(st, zebStsMemAllocErr) << name << " allocation " << k;
        EXPECT_EQ(zebTestLiveBlocks(), live) << name << " allocation " << k;
        EXPECT_EQ(m.changes(), "") << name << " allocation " << k;
    }
}

template <class S>
struct RunArgs {
    const Zeb8u* src;
    int ss;
    Zeb8u* img;  // destination or mask
    int is;
    ZebiSize roi;
    S* st;
    double rate;
};

// The checks shared by the classify and update calls; `state` makes a
// kW x kH state that the table owns.
template <class S>
Table<RunArgs<S>> run_table(const char* name, int ch, std::function<S*()> state,
                            std::function<ZebStatus(int, RunArgs<S>&)> call) {
    using A = RunArgs<S>;
    return Table<A>{name,
                    [ch, state](Arena& m) {
                        auto s = m.image<Zeb8u>("src", kW, kH, ch, 4);
                        auto d = m.image<Zeb8u>("mask", kW, kH, 1, 4);
                        return A{s.ptr, s.step, d.ptr, d.step, {kW, kH}, state(), -1.0};
                    },
                    call,
                    {{"null src, width 0", [](A& x) { x.src = nullptr, x.roi.width = 0; }, zebStsNullPtrErr},
                     {"null mask", [](A& x) { x.img = nullptr; }, zebStsNullPtrErr},
                     {"null state", [](A& x) { x.st = nullptr; }, zebStsNullPtrErr},
                     {"width 0, short step", [](A& x) { x.roi.width = 0, x.ss = 0; }, zebStsSizeErr},
                     {"src step one short", [](A& x) { x.ss -= 1; }, zebStsStepErr},
                     {"mask step one short, other size", [](A& x) { x.is -= 1, x.roi.height = 2; }, zebStsStepErr},
                     {"smaller than the state", [](A& x) { x.roi.height -= 1; }, zebStsSizeErr},
                     {"wider than the state", [](A& x) { x.roi.width += 1, x.ss += 4, x.is += 4; }, zebStsSizeErr}}};
}

template <class S, class Model, ZebStatus (*Init)(const Zeb8u*, int, ZebiSize, const Model*, S**),
          ZebStatus (*Free)(S*)>
std::function<S*()> maker(int ch, Owned<S, Free>& owned) {
    return [ch, &owned] {
        std::vector<Zeb8u> frame(std::size_t(kW * kH * ch), 90);
        const Model model{};
        S* s = nullptr;
        EXPECT_EQ(Init(frame.data(), kW * ch, {kW, kH}, &model, &s), zebStsNoErr);
        owned.states.push_back(s);
        return s;
    };
}

TEST(BackgroundChecks, GaussianModel) {
    using S1 = ZebForegroundGaussianState_8u_C1R;
    using S3 = ZebForegroundGaussianState_8u_C3R;
    using M = ZebForegroundGaussianModel;
    using A1 = InitArgs<S1, M>;
    using A3 = InitArgs<S3, M>;
    static const M six{0, 6, 0, 0, 0, 0, 0};
    init_table<S1, M>("zebiForegroundGaussianInitAlloc_8u_C1R", 1, zeb_tbl_zebiForegroundGaussianInitAlloc_8u_C1R,
                      zebiForegroundGaussianFree_8u_C1R,
                      {{"6 components, step one short", [](A1& x) { x.model = &six, x.ss -= 1; }, zebStsStepErr},
                       {"6 components", [](A1& x) { x.model = &six; }, zebStsBadArgErr}});
    init_table<S3, M>("zebiForegroundGaussianInitAlloc_8u_C3R", 3, zeb_tbl_zebiForegroundGaussianInitAlloc_8u_C3R,
                      zebiForegroundGaussianFree_8u_C3R,
                      {{"6 components", [](A3& x) { x.model = &six; }, zebStsBadArgErr}});

    Owned<S1, zebiForegroundGaussianFree_8u_C1R> own1;
    Owned<S3, zebiForegroundGaussianFree_8u_C3R> own3;
    auto t1 = run_table<S1>("zebiForegroundGaussian_8u_C1R", 1,
                            maker<S1, M, zebiForegroundGaussianInitAlloc_8u_C1R, zebiForegroundGaussianFree_8u_C1R>(1, own1),
                            [](int v, RunArgs<S1>& x) {
                                return zeb_tbl_zebiForegroundGaussian_8u_C1R[v](x.src, x.ss, x.img, x.is, x.roi, x.st,
                                                                                x.rate);
                            });
    auto t3 = run_table<S3>("zebiForegroundGaussian_8u_C3R", 3,
                            maker<S3, M, zebiForegroundGaussianInitAlloc_8u_C3R, zebiForegroundGaussianFree_8u_C3R>(3, own3),
                            [](int v, RunArgs<S3>& x) {
                                return zeb_tbl_zebiForegroundGaussian_8u_C3R[v](x.src, x.ss, x.img, x.is, x.roi, x.st,
                                                                                x.rate);
                            });
    t1.cases.push_back({"rate 1.01", [](RunArgs<S1>& x) { x.rate = 1.01; }, zebStsBadArgErr});
    t1.cases.push_back({"rate NaN", [](RunArgs<S1>& x) { x.rate = std::nan(""); }, zebStsBadArgErr});
    t1.cases.push_back({"rate 0", [](RunArgs<S1>& x) { x.rate = 0; }, zebStsNoErr});
    t3.cases.push_back({"rate 2", [](RunArgs<S3>& x) { x.rate = 2; }, zebStsBadArgErr});
    zt::checks::run(t1);
    zt::checks::run(t3);

    for (int v = 0; v < 2; ++v) {
        EXPECT_EQ(zeb_tbl_zebiForegroundGaussianFree_8u_C1R[v](nullptr), zebStsNullPtrErr);
        EXPECT_EQ(zeb_tbl_zebiForegroundGaussianFree_8u_C3R[v](nullptr), zebStsNullPtrErr);
    }
    // Either Free releases either state: one operation.
    const int64_t live = zebTestLiveBlocks();
    S1* s = maker<S1, M, zebiForegroundGaussianInitAlloc_8u_C1R, zebiForegroundGaussianFree_8u_C1R>(1, own1)();
    own1.states.pop_back();
    EXPECT_GT(zebTestLiveBlocks(), live);
    EXPECT_EQ(zeb_tbl_zebiForegroundGaussianFree_8u_C3R[1](reinterpret_cast<S3*>(s)), zebStsNoErr);
    EXPECT_EQ(zebTestLiveBlocks(), live);
}

TEST(BackgroundChecks, HistogramModel) {
    using S1 = ZebForegroundHistogramState_8u_C1R;
    using S3 = ZebForegroundHistogramState_8u_C3R;
    using M = ZebForegroundHistogramModel;
    using A1 = InitArgs<S1, M>;
    using A3 = InitArgs<S3, M>;
    static const M levels{257, 0, 0, 0, 0, 0, 0, 0, 0}, entries{0, 0, 0, 65, 0, 0, 0, 0, 0};
    init_table<S1, M>("zebiForegroundHistogramInitAlloc_8u_C1R", 1, zeb_tbl_zebiForegroundHistogramInitAlloc_8u_C1R,
                      zebiForegroundHistogramFree_8u_C1R,
                      {{"257 levels, step one short", [](A1& x) { x.model = &levels, x.ss -= 1; }, zebStsStepErr},
                       {"257 levels", [](A1& x) { x.model = &levels; }, zebStsBadArgErr}});
    init_table<S3, M>("zebiForegroundHistogramInitAlloc_8u_C3R", 3, zeb_tbl_zebiForegroundHistogramInitAlloc_8u_C3R,
                      zebiForegroundHistogramFree_8u_C3R,
                      {{"65 entries", [](A3& x) { x.model = &entries; }, zebStsBadArgErr}});

    Owned<S1, zebiForegroundHistogramFree_8u_C1R> own1;
    Owned<S3, zebiForegroundHistogramFree_8u_C3R> own3;
    auto make1 = maker<S1, M, zebiForegroundHistogramInitAlloc_8u_C1R, zebiForegroundHistogramFree_8u_C1R>(1, own1);
    auto make3 = maker<S3, M, zebiForegroundHistogramInitAlloc_8u_C3R, zebiForegroundHistogramFree_8u_C3R>(3, own3);
    zt::checks::run(run_table<S1>("zebiForegroundHistogram_8u_C1R", 1, make1, [](int v, RunArgs<S1>& x) {
        return zeb_tbl_zebiForegroundHistogram_8u_C1R[v](x.src, x.ss, x.img, x.is, x.roi, x.st);
    }));
    zt::checks::run(run_table<S3>("zebiForegroundHistogram_8u_C3R", 3, make3, [](int v, RunArgs<S3>& x) {
        return zeb_tbl_zebiForegroundHistogram_8u_C3R[v](x.src, x.ss, x.img, x.is, x.roi, x.st);
    }));
    zt::checks::run(run_table<S1>("zebiForegroundHistogramUpdate_8u_C1R", 1, make1, [](int v, RunArgs<S1>& x) {
        return zeb_tbl_zebiForegroundHistogramUpdate_8u_C1R[v](x.src, x.ss, x.img, x.is, x.roi, x.st);
    }));
    zt::checks::run(run_table<S3>("zebiForegroundHistogramUpdate_8u_C3R", 3, make3, [](int v, RunArgs<S3>& x) {
        return zeb_tbl_zebiForegroundHistogramUpdate_8u_C3R[v](x.src, x.ss, x.img, x.is, x.roi, x.st);
    }));

    for (int v = 0; v < 2; ++v) {
        EXPECT_EQ(zeb_tbl_zebiForegroundHistogramFree_8u_C1R[v](nullptr), zebStsNullPtrErr);
        EXPECT_EQ(zeb_tbl_zebiForegroundHistogramFree_8u_C3R[v](nullptr), zebStsNullPtrErr);
    }
    const int64_t live = zebTestLiveBlocks();
    S3* s = make3();
    own3.states.pop_back();
    EXPECT_EQ(zeb_tbl_zebiForegroundHistogramFree_8u_C1R[0](reinterpret_cast<S1*>(s)), zebStsNoErr);
    EXPECT_EQ(zebTestLiveBlocks(), live);
}


}  // namespace

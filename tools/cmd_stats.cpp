// SPDX-License-Identifier: Apache-2.0
// zebcv stats: mean, standard deviation, extrema with positions and the
// three norms of every channel of an image, optionally under a mask.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "cli.h"
#include "zebcv.h"

namespace zcli {
namespace {

struct ChannelStats {
    double mean = 0, sd = 0;
    float mn = 0, mx = 0;
    ZebiPoint imn{}, imx{};
    double inf = 0, l1 = 0, l2 = 0;
};

// The library functions for one sample type: the one-channel forms for grey
// images, the channel-of-interest forms for colour. The norms are always
// masked; without a mask the caller passes one that selects everything.
template <class T>
struct StatsFns {
    Fn<ZebStatus(const T*, int, ZebiSize, Zeb64f*, Zeb64f*)> sdC1;
    Fn<ZebStatus(const T*, int, const Zeb8u*, int, ZebiSize, Zeb64f*, Zeb64f*)> sdC1M;
    Fn<ZebStatus(const T*, int, ZebiSize, int, Zeb64f*, Zeb64f*)> sdC3;
    Fn<ZebStatus(const T*, int, const Zeb8u*, int, ZebiSize, int, Zeb64f*, Zeb64f*)> sdC3M;
    Fn<ZebStatus(const T*, int, ZebiSize, Zeb32f*, Zeb32f*, ZebiPoint*, ZebiPoint*)> mmC1;
    Fn<ZebStatus(const T*, int, const Zeb8u*, int, ZebiSize, Zeb32f*, Zeb32f*, ZebiPoint*, ZebiPoint*)> mmC1M;
    Fn<ZebStatus(const T*, int, ZebiSize, int, Zeb32f*, Zeb32f*, ZebiPoint*, ZebiPoint*)> mmC3;
    Fn<ZebStatus(const T*, int, const Zeb8u*, int, ZebiSize, int, Zeb32f*, Zeb32f*, ZebiPoint*, ZebiPoint*)> mmC3M;
    Fn<ZebStatus(const T*, int, const Zeb8u*, int, ZebiSize, Zeb64f*)> infC1, l1C1, l2C1;
    Fn<ZebStatus(const T*, int, const Zeb8u*, int, ZebiSize, int, Zeb64f*)> infC3, l1C3, l2C3;
};

const StatsFns<Zeb8u> kFns8u{
    ZCLI_FN(zebiMean_StdDev_8u_C1R),   ZCLI_FN(zebiMean_StdDev_8u_C1MR), ZCLI_FN(zebiMean_StdDev_8u_C3CR),
    ZCLI_FN(zebiMean_StdDev_8u_C3CMR), ZCLI_FN(zebiMinMaxIndx_8u_C1R),   ZCLI_FN(zebiMinMaxIndx_8u_C1MR),
    ZCLI_FN(zebiMinMaxIndx_8u_C3CR),   ZCLI_FN(zebiMinMaxIndx_8u_C3CMR), ZCLI_FN(zebiNorm_Inf_8u_C1MR),
    ZCLI_FN(zebiNorm_L1_8u_C1MR),      ZCLI_FN(zebiNorm_L2_8u_C1MR),     ZCLI_FN(zebiNorm_Inf_8u_C3CMR),
    ZCLI_FN(zebiNorm_L1_8u_C3CMR),     ZCLI_FN(zebiNorm_L2_8u_C3CMR),
};

const StatsFns<Zeb16u> kFns16u{
    ZCLI_FN(zebiMean_StdDev_16u_C1R),   ZCLI_FN(zebiMean_StdDev_16u_C1MR), ZCLI_FN(zebiMean_StdDev_16u_C3CR),
    ZCLI_FN(zebiMean_StdDev_16u_C3CMR), ZCLI_FN(zebiMinMaxIndx_16u_C1R),   ZCLI_FN(zebiMinMaxIndx_16u_C1MR),
    ZCLI_FN(zebiMinMaxIndx_16u_C3CR),   ZCLI_FN(zebiMinMaxIndx_16u_C3CMR), ZCLI_FN(zebiNorm_Inf_16u_C1MR),
    ZCLI_FN(zebiNorm_L1_16u_C1MR),      ZCLI_FN(zebiNorm_L2_16u_C1MR),     ZCLI_FN(zebiNorm_Inf_16u_C3CMR),
    ZCLI_FN(zebiNorm_L1_16u_C3CMR),     ZCLI_FN(zebiNorm_L2_16u_C3CMR),
};

// The library calls of one channel coi of an image of ch channels.
template <class T>
void run_channel(LibCalls& k, const StatsFns<T>& f, const T* p, int ps, const Zeb8u* m, int ms, ZebiSize r, int ch,
                 int coi, bool masked, ChannelStats& s) {
    if (ch == 1) {
        if (masked)
            k(f.sdC1M, p, ps, m, ms, r, &s.mean, &s.sd);
        else
            k(f.sdC1, p, ps, r, &s.mean, &s.sd);
        if (masked)
            k(f.mmC1M, p, ps, m, ms, r, &s.mn, &s.mx, &s.imn, &s.imx);
        else
            k(f.mmC1, p, ps, r, &s.mn, &s.mx, &s.imn, &s.imx);
        k(f.infC1, p, ps, m, ms, r, &s.inf);
        k(f.l1C1, p, ps, m, ms, r, &s.l1);
        k(f.l2C1, p, ps, m, ms, r, &s.l2);
        return;
    }
    if (masked)
        k(f.sdC3M, p, ps, m, ms, r, coi, &s.mean, &s.sd);
    else
        k(f.sdC3, p, ps, r, coi, &s.mean, &s.sd);
    if (masked)
        k(f.mmC3M, p, ps, m, ms, r, coi, &s.mn, &s.mx, &s.imn, &s.imx);
    else
        k(f.mmC3, p, ps, r, coi, &s.mn, &s.mx, &s.imn, &s.imx);
    k(f.infC3, p, ps, m, ms, r, coi, &s.inf);
    k(f.l1C3, p, ps, m, ms, r, coi, &s.l1);
    k(f.l2C3, p, ps, m, ms, r, coi, &s.l2);
}

const char* channel_name(int channels, int c) {
    static const char* const rgb[] = {"red", "green", "blue"};
    return channels == 1 ? "grey" : rgb[c];
}

// Statistics of every channel of img under mask (null: every pixel);
// prints one line per channel. The time of the library calls is in calls.
void report(LibCalls& calls, const Image& img, const Image* mask) {
    const ZebiSize roi{img.width, img.height};
    Image all;
    if (!mask) {
        all = Image(img.width, img.height, 1, 1);
        std::fill(all.data.begin(), all.data.end(), uint8_t(255));
    }
    const Image& m = mask ? *mask : all;
    std::vector<ChannelStats> st(img.channels);
    for (int c = 0; c < img.channels; ++c) {
        if (img.bytesPerSample == 2)
            run_channel(calls, kFns16u, img.ptr<Zeb16u>(), img.step(), m.data.data(), m.step(), roi, img.channels,
                        c + 1, mask != nullptr, st[c]);
        else
            run_channel(calls, kFns8u, img.data.data(), img.step(), m.data.data(), m.step(), roi, img.channels, c + 1,
                        mask != nullptr, st[c]);
    }
    if (!calls.ok()) return;
    std::printf("%-7s %10s %10s %8s %-12s %8s %-12s %8s %14s %12s\n", "channel", "mean", "std dev", "min", "  at",
                "max", "  at", "norm Inf", "norm L1", "norm L2");
    for (int c = 0; c < img.channels; ++c) {
        const ChannelStats& s = st[c];
        const std::string at0 = "  (" + std::to_string(s.imn.x) + "," + std::to_string(s.imn.y) + ")";
        const std::string at1 = "  (" + std::to_string(s.imx.x) + "," + std::to_string(s.imx.y) + ")";
        std::printf("%-7s %10.3f %10.3f %8.0f %-12s %8.0f %-12s %8.0f %14.0f %12.1f\n", channel_name(img.channels, c),
                    s.mean, s.sd, double(s.mn), at0.c_str(), double(s.mx), at1.c_str(), s.inf, s.l1, s.l2);
    }
}

std::size_t count_selected(const Image& m) {
    std::size_t n = 0;
    for (uint8_t v : m.data) n += v != 0;
    return n;
}

int cmd_stats(const std::vector<std::string>& args) {
    std::string path, maskPath;
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--mask" && i + 1 < args.size())
            maskPath = args[++i];
        else if (path.empty() && !args[i].empty() && args[i][0] != '-')
            path = args[i];
        else
            return kExitUsage;
    }
    if (path.empty()) return kExitUsage;
    Image img, mask;
    std::string err;
    if (!read_image(path, img, err)) return fail(err);
    img = drop_alpha(img);
    const bool masked = !maskPath.empty();
    if (masked) {
        if (!read_image(maskPath, mask, err)) return fail(err);
        if (mask.width != img.width || mask.height != img.height)
            return fail("mask is " + std::to_string(mask.width) + "x" + std::to_string(mask.height) + ", image " +
                        std::to_string(img.width) + "x" + std::to_string(img.height));
        mask = to_mask8(mask);
    }
    std::printf("%s: %dx%d, %d channel(s), %d-bit", path.c_str(), img.width, img.height, img.channels,
                8 * img.bytesPerSample);
    if (masked) {
        const std::size_t n = count_selected(mask), total = std::size_t(img.width) * img.height;
        std::printf("; mask %s selects %zu of %zu pixels (%.2f%%)", maskPath.c_str(), n, total,
                    100.0 * double(n) / double(total));
    }
    std::printf("\n");
    LibCalls calls;
    report(calls, img, masked ? &mask : nullptr);
    if (!calls.ok()) return calls.fail();
    std::printf("statistics in %.3f ms\n", calls.ms());
    return kExitOk;
}
ZCLI_COMMAND("stats", "IMAGE [--mask MASK]",
             "mean, standard deviation, extrema with positions and norms of "
             "every channel",
             "  --mask MASK\tonly the pixels where MASK (an image of the same "
             "size) is non-zero in any colour "
             "channel\n"
             "8-bit and 16-bit images are measured at their own depth; an "
             "alpha channel is left out.",
             cmd_stats);

// The demo: the grey scene whole, the colour scene under a mask of the
// bright objects, and how much the second frame differs from the first.
int demo_stats(const DemoContext& ctx) {
    Image mask(ctx.frame0.width, ctx.frame0.height, 1, 1);
    for (std::size_t i = 0; i < mask.data.size(); ++i) mask.data[i] = ctx.frame0.data[i] > 180 ? 255 : 0;
    std::printf("grey scene:\n");
    LibCalls grey, colour, frames;
    report(grey, ctx.frame0, nullptr);
    if (!grey.ok()) return grey.fail();
    std::printf("in %.3f ms\ncolour scene, bright objects only (%zu pixels):\n", grey.ms(), count_selected(mask));
    report(colour, ctx.colour, &mask);
    if (!colour.ok()) return colour.fail();
    std::printf("in %.3f ms\n", colour.ms());
    std::fill(mask.data.begin(), mask.data.end(), uint8_t(1));
    const ZebiSize roi{ctx.frame0.width, ctx.frame0.height};
    double diff = 0, rel = 0;
    frames(ZCLI_FN(zebiNormDiff_L2_8u_C1MR), ctx.frame1.data.data(), ctx.frame1.step(), ctx.frame0.data.data(),
           ctx.frame0.step(), mask.data.data(), mask.step(), roi, &diff);
    frames(ZCLI_FN(zebiNormRel_L2_8u_C1MR), ctx.frame1.data.data(), ctx.frame1.step(), ctx.frame0.data.data(),
           ctx.frame0.step(), mask.data.data(), mask.step(), roi, &rel);
    if (!frames.ok()) return frames.fail();
    std::printf("frame 1 against frame 0: L2 distance %.1f, relative %.4f, in %.3f ms\n", diff, rel, frames.ms());
    return kExitOk;
}
ZCLI_DEMO_STEP("statistics: mean, deviation, extrema and norms", 15, demo_stats);

}  // namespace
}  // namespace zcli

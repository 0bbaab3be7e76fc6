// SPDX-License-Identifier: Apache-2.0
// zebcv diff: absolute difference of two images.
#include <cstdio>

#include "cli.h"
#include "zebcv.h"

namespace zcli {
namespace {

// |a - b| per sample into out, which has a's layout and is allocated by
// the caller. Samples of every channel are differenced alike, so any
// channel count runs as one wide channel; 8-bit colour uses the
// three-channel form.
void abs_diff(LibCalls& calls, const Image& a, const Image& b, Image& out) {
    const ZebiSize roi{a.width * (a.channels == 3 && a.bytesPerSample == 1 ? 1 : a.channels), a.height};
    if (a.bytesPerSample == 2)
        calls(ZCLI_FN(zebiAbsDiff_16u_C1R), a.ptr<Zeb16u>(), a.step(), b.ptr<Zeb16u>(), b.step(), out.ptr<Zeb16u>(),
              out.step(), roi);
    else if (a.channels == 3)
        calls(ZCLI_FN(zebiAbsDiff_8u_C3R), a.data.data(), a.step(), b.data.data(), b.step(), out.data.data(),
              out.step(), roi);
    else
        calls(ZCLI_FN(zebiAbsDiff_8u_C1R), a.data.data(), a.step(), b.data.data(), b.step(), out.data.data(),
              out.step(), roi);
}

void summarise(const Image& d) {
    uint64_t sum = 0, changed = 0;
    unsigned peak = 0;
    const std::size_t n = d.data.size() / d.bytesPerSample;
    for (std::size_t i = 0; i < n; ++i) {
        const unsigned v = sample(d, i);
        sum += v;
        changed += v != 0;
        peak = v > peak ? v : peak;
    }
    std::printf("%dx%d, %d channel(s), %d-bit: mean difference %.3f, largest %u, %.2f%% of samples differ\n",
                d.width, d.height, d.channels, 8 * d.bytesPerSample, double(sum) / double(n), peak,
                100.0 * double(changed) / double(n));
}

std::string shape(const Image& i) {
    return std::to_string(i.width) + "x" + std::to_string(i.height) + ", " + std::to_string(i.channels) +
           " channel(s), " + std::to_string(8 * i.bytesPerSample) + "-bit";
}

int cmd_diff(const std::vector<std::string>& args) {
    if (args.size() != 3) return kExitUsage;
    Image a, b;
    std::string err;
    if (!read_image(args[0], a, err) || !read_image(args[1], b, err)) return fail(err);
    if (a.width != b.width || a.height != b.height || a.channels != b.channels ||
        a.bytesPerSample != b.bytesPerSample)
        return fail("images differ in size, channels or depth: " + shape(a) + " against " + shape(b));
    Image d(a.width, a.height, a.channels, a.bytesPerSample);
    LibCalls calls;
    abs_diff(calls, a, b, d);
    if (!calls.ok()) return calls.fail();
    summarise(d);
    if (!write_image(args[2], d, err)) return fail(err);
    std::printf("absolute difference in %.3f ms, written to %s\n", calls.ms(), args[2].c_str());
    return kExitOk;
}
ZCLI_COMMAND("diff", "A B OUT", "absolute difference of two images of the same size, channels and depth",
             "OUT has the inputs' layout and depth: 16-bit inputs give a 16-bit difference (write it as .png, "
             ".pgm or .ppm).",
             cmd_diff);

int demo_diff(const DemoContext& ctx) {
    Image d(ctx.frame0.width, ctx.frame0.height, 1, 1);
    LibCalls calls;
    abs_diff(calls, ctx.frame0, ctx.frame1, d);
    if (!calls.ok()) return calls.fail();
    summarise(d);
    std::string err;
    if (!write_image(ctx.outDir + "/diff.png", d, err)) return fail(err);
    std::printf("frame difference in %.3f ms -> %s/diff.png\n", calls.ms(), ctx.outDir.c_str());
    return kExitOk;
}
ZCLI_DEMO_STEP("motion: absolute frame difference", 10, demo_diff);

}  // namespace
}  // namespace zcli

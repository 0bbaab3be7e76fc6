// zebcv diff: absolute difference of two images.
#include <cstdio>

#include "cli.h"
#include "zebcv.h"

namespace zcli {
namespace {

// |a - b| per sample into out (same layout as a). Returns a library status.
int abs_diff(const Image& a, const Image& b, Image& out) {
    out = Image(a.width, a.height, a.channels, a.bytesPerSample);
    const ZebiSize roi{a.width * (a.channels == 3 ? 1 : a.channels), a.height};
    if (a.bytesPerSample == 2)
        return zebiAbsDiff_16u_C1R(a.ptr<Zeb16u>(), a.step(), b.ptr<Zeb16u>(), b.step(), out.ptr<Zeb16u>(), out.step(),
                                   roi);
    if (a.channels == 3)
        return zebiAbsDiff_8u_C3R(a.data.data(), a.step(), b.data.data(), b.step(), out.data.data(), out.step(), roi);
    return zebiAbsDiff_8u_C1R(a.data.data(), a.step(), b.data.data(), b.step(), out.data.data(), out.step(), roi);
}

void summarise(const Image& d) {
    uint64_t sum = 0, changed = 0;
    unsigned peak = 0;
    const std::size_t n = d.data.size() / d.bytesPerSample;
    for (std::size_t i = 0; i < n; ++i) {
        const unsigned v = d.bytesPerSample == 2 ? d.ptr<Zeb16u>()[i] : d.data[i];
        sum += v;
        changed += v != 0;
        peak = v > peak ? v : peak;
    }
    std::printf("%dx%d, %d channel(s): mean difference %.3f, largest %u, %.2f%% of samples differ\n", d.width,
                d.height, d.channels, double(sum) / double(n), peak, 100.0 * double(changed) / double(n));
}

int cmd_diff(const std::vector<std::string>& args) {
    if (args.size() != 3) return kExitUsage;
    Image a, b, d;
    std::string err;
    if (!read_image(args[0], a, err) || !read_image(args[1], b, err)) return fail(err);
    if (a.width != b.width || a.height != b.height || a.channels != b.channels ||
        a.bytesPerSample != b.bytesPerSample)
        return fail("images differ in size, channels or depth: " + std::to_string(a.width) + "x" +
                    std::to_string(a.height) + "x" + std::to_string(a.channels) + " vs " + std::to_string(b.width) +
                    "x" + std::to_string(b.height) + "x" + std::to_string(b.channels));
    int st = 0;
    const double ms = time_ms([&] { st = abs_diff(a, b, d); });
    if (st != 0) return fail_status("zebiAbsDiff", st);
    summarise(d);
    if (d.bytesPerSample == 2) {  // write the high bytes
        Image e(d.width, d.height, d.channels, 1);
        for (std::size_t i = 0; i < e.data.size(); ++i) e.data[i] = uint8_t(d.ptr<Zeb16u>()[i] >> 8);
        d = e;
    }
    if (!write_image(args[2], d, err)) return fail(err);
    std::printf("absolute difference in %.3f ms, written to %s\n", ms, args[2].c_str());
    return kExitOk;
}
ZCLI_COMMAND("diff", "A B OUT", "absolute difference of two images", cmd_diff);

int demo_diff(const DemoContext& ctx) {
    Image d;
    int st = 0;
    const double ms = time_ms([&] { st = abs_diff(ctx.frame0, ctx.frame1, d); });
    if (st != 0) return fail_status("zebiAbsDiff_8u_C1R", st);
    summarise(d);
    std::string err;
    if (!write_image(ctx.outDir + "/diff.png", d, err)) return fail(err);
    std::printf("frame difference in %.3f ms -> %s/diff.png\n", ms, ctx.outDir.c_str());
    return kExitOk;
}
ZCLI_DEMO_STEP("motion: absolute frame difference", 10, demo_diff);

}  // namespace
}  // namespace zcli

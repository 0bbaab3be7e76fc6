// SPDX-License-Identifier: Apache-2.0
// zebcv distance: the distance of every pixel to the nearest zero pixel of
// an image, as a grey map (the largest distance becomes white).
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "cli.h"
#include "zebcv.h"

namespace zcli {
namespace {

// The distance map of an 8-bit image whose zero pixels are the sites:
// "c" and "l1" are 3x3 chamfer maps with the max and sum norms, "l2" the
// 5x5 Euclidean chamfer map, "exact" the exact Euclidean transform,
// "march" fast marching without a radius bound.
std::vector<float> distance_map(LibCalls& calls, const std::vector<Zeb8u>& sites, ZebiSize roi,
                                const std::string& metric) {
    std::vector<float> d(std::size_t(roi.width) * roi.height);
    const int ss = roi.width, ds = roi.width * int(sizeof(float));
    if (metric == "exact" || metric == "march") {
        const bool exact = metric == "exact";
        int n = 0;
        if (!calls(exact ? ZCLI_FN(zebiTrueDistanceTransformGetBufferSize_8u32f_C1R)
                         : ZCLI_FN(zebiFastMarchingGetBufferSize_8u32f_C1R),
                   roi, &n))
            return d;
        std::vector<Zeb8u> buf(static_cast<std::size_t>(n));
        if (exact)
            calls(ZCLI_FN(zebiTrueDistanceTransform_8u32f_C1R), sites.data(), ss, d.data(), ds, roi, buf.data());
        else
            calls(ZCLI_FN(zebiFastMarching_8u32f_C1R), sites.data(), ss, d.data(), ds, roi, 1e30f, buf.data());
        return d;
    }
    const int k = metric == "l2" ? 5 : 3;
    Zeb32f mask[3];
    if (!calls(ZCLI_FN(zebiGetDistanceTransformMask_32f), k, metric == "c" ? zebiNormInf : metric == "l1" ? zebiNormL1
                                                                                                        : zebiNormL2,
               mask))
        return d;
    calls(k == 5 ? ZCLI_FN(zebiDistanceTransform_5x5_8u32f_C1R) : ZCLI_FN(zebiDistanceTransform_3x3_8u32f_C1R),
          sites.data(), ss, d.data(), ds, roi, mask);
    return d;
}

// Largest distance and where it is, printed with the call time; false
// when the image had no site.
bool report(const std::vector<float>& d, int width, const std::string& metric, double ms) {
    const auto it = std::max_element(d.begin(), d.end());
    const long i = long(it - d.begin());
    if (*it > 1e18f) return false;
    std::printf("%s distance map in %.3f ms: largest distance %.3f at (%ld,%ld)\n", metric.c_str(), ms,
                double(*it), i % width, i / width);
    return true;
}

// Any depth and channel count: a pixel is a site when all its samples are 0.
std::vector<Zeb8u> sites_of(const Image& img) {
    const Image m = to_mask8(img);
    return std::vector<Zeb8u>(m.data.begin(), m.data.end());
}

int cmd_distance(const std::vector<std::string>& args) {
    std::vector<std::string> pos;
    std::string metric = "l2";
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--metric") {
            if (i + 1 == args.size()) return usage_error("--metric needs a value"), kExitUsage;
            metric = args[++i];
            if (metric != "c" && metric != "l1" && metric != "l2" && metric != "exact" && metric != "march")
                return usage_error("unknown metric " + metric + " (c, l1, l2, exact, march)"), kExitUsage;
        } else if (args[i].rfind("--", 0) == 0) {
            return usage_error("unknown option " + args[i]), kExitUsage;
        } else {
            pos.push_back(args[i]);
        }
    }
    if (pos.size() != 2) return kExitUsage;
    Image img;
    std::string err;
    if (!read_image(pos[0], img, err)) return fail(err);
    const ZebiSize roi{img.width, img.height};
    LibCalls calls;
    const std::vector<float> d = distance_map(calls, sites_of(img), roi, metric);
    if (!calls.ok()) return calls.fail();
    if (!report(d, img.width, metric, calls.ms()))
        return fail(pos[0] + " has no zero pixel: distances are measured to the zero pixels");
    if (!write_image(pos[1], to_view8(d.data(), img.width, img.height), err)) return fail(err);
    std::printf("written to %s\n", pos[1].c_str());
    return kExitOk;
}

ZCLI_COMMAND("distance", "IMAGE OUT [--metric c|l1|l2|exact|march]",
             "distance of every pixel to the nearest zero pixel, as a grey map",
             "  --metric NAME\tc: 3x3 chamfer, max norm; l1: 3x3 chamfer, sum norm; l2: 5x5 Euclidean chamfer "
             "(default); exact: exact Euclidean; march: fast marching\n"
             "A pixel is a site when all its samples are 0. OUT is 8-bit: the largest distance becomes 255.",
             cmd_distance);

// The dark parts of the scene (below a quarter of full scale) are the
// sites; the demo writes the Euclidean maps of the three methods.
int demo_distance(const DemoContext& ctx) {
    const Image& g = ctx.frame0;
    const ZebiSize roi{g.width, g.height};
    std::vector<Zeb8u> sites(g.data.size());
    for (std::size_t i = 0; i < sites.size(); ++i) sites[i] = g.data[i] < 64 ? 0 : 255;
    for (const char* metric : {"l2", "exact", "march"}) {
        LibCalls calls;
        const std::vector<float> d = distance_map(calls, sites, roi, metric);
        if (!calls.ok()) return calls.fail();
        if (!report(d, g.width, metric, calls.ms())) {
            std::printf("no dark pixel in the scene: no distance map\n");
            return kExitOk;
        }
        std::string err;
        const std::string file = ctx.outDir + "/distance_" + metric + ".png";
        if (!write_image(file, to_view8(d.data(), g.width, g.height), err)) return fail(err);
        std::printf("  -> %s\n", file.c_str());
    }
    return kExitOk;
}
ZCLI_DEMO_STEP("distance: chamfer, exact and fast-marching maps of the dark regions", 40, demo_distance);

}  // namespace
}  // namespace zcli

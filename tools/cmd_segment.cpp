// SPDX-License-Identifier: Apache-2.0
// zebcv segment: watershed segmentation from automatically placed markers.
// One marker per cell of a grid, at the cell's flattest pixel; the regions
// grow across the smallest grey-level steps first and meet along one-pixel
// boundaries. The output paints each region with its mean colour and the
// boundaries black.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "cli.h"
#include "zebcv.h"

namespace zcli {
namespace {

struct Options {
    std::string in, out;
    int cell = 32;
};

bool parse(const std::vector<std::string>& args, Options& o) {
    std::vector<std::string> pos;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a.rfind("--", 0) != 0) {
            pos.push_back(a);
            continue;
        }
        if (a != "--cell") return usage_error("unknown option " + a);
        if (i + 1 >= args.size()) return usage_error(a + " needs a value");
        if (!parse_int(args[++i], o.cell) || o.cell < 4) return usage_error("--cell takes 4 or more");
    }
    if (pos.size() != 2) return false;
    o.in = pos[0];
    o.out = pos[1];
    return true;
}

// Markers: label k at the pixel of cell k with the smallest |dx| + |dy|.
std::vector<Zeb16u> place_markers(const Image& g, int cell, int& count) {
    const int w = g.width, h = g.height;
    std::vector<Zeb16u> m(std::size_t(w) * h, 0);
    const Zeb8u* p = g.data.data();
    count = 0;
    for (int cy = 0; cy < h; cy += cell)
        for (int cx = 0; cx < w; cx += cell) {
            int best = 1 << 30, bx = cx, by = cy;
            for (int y = cy; y < std::min(cy + cell, h); ++y)
                for (int x = cx; x < std::min(cx + cell, w); ++x) {
                    const int gx = std::abs(int(p[y * w + std::min(x + 1, w - 1)]) - p[y * w + std::max(x - 1, 0)]);
                    const int gy = std::abs(int(p[std::min(y + 1, h - 1) * w + x]) - p[std::max(y - 1, 0) * w + x]);
                    if (gx + gy < best) best = gx + gy, bx = x, by = y;
                }
            if (count < 65534) m[std::size_t(by) * w + bx] = Zeb16u(++count);
        }
    return m;
}

int segment(const Image& input, int cell, Image& result, int& regions, int& boundary, double& ms) {
    const Image colour = drop_alpha(input);
    if (colour.bytesPerSample != 1) return fail("segment takes 8-bit images");
    const Image g = to_gray(colour);
    const int w = g.width, h = g.height;
    const ZebiSize roi{w, h};
    std::vector<Zeb16u> markers = place_markers(g, cell, regions);
    LibCalls calls;
    int bytes = 0;
    if (!calls(ZCLI_FN(zebiSegmentWatershedGetBufferSize_8u16u_C1R), roi, &bytes)) return calls.fail();
    std::vector<Zeb8u> buf(static_cast<std::size_t>(bytes));
    if (!calls(ZCLI_FN(zebiSegmentWatershed_8u16u_C1IR), g.data.data(), g.step(), markers.data(),
               int(w * sizeof(Zeb16u)), roi, zebiNormL1, int(zebSegmentDiff), buf.data()))
        return calls.fail();
    ms = calls.ms();
    // Mean colour per label.
    const int ch = colour.channels;
    std::vector<double> sum(std::size_t(regions + 1) * ch, 0.0);
    std::vector<double> n(std::size_t(regions + 1), 0.0);
    boundary = 0;
    for (std::size_t i = 0; i < markers.size(); ++i) {
        const int l = markers[i];
        if (l == 65535 || l == 0) {
            boundary += l == 65535;
            continue;
        }
        n[l] += 1;
        for (int c = 0; c < ch; ++c) sum[std::size_t(l) * ch + c] += colour.data[i * ch + c];
    }
    result = Image(w, h, ch);
    for (std::size_t i = 0; i < markers.size(); ++i) {
        const int l = markers[i];
        for (int c = 0; c < ch; ++c)
            result.data[i * ch + c] =
                l == 65535 || l == 0 ? 0 : Zeb8u(sum[std::size_t(l) * ch + c] / n[l] + 0.5);
    }
    return kExitOk;
}

int cmd_segment(const std::vector<std::string>& args) {
    Options o;
    if (!parse(args, o)) return kExitUsage;
    Image in, out;
    std::string err;
    if (!read_image(o.in, in, err)) return fail(err);
    int regions = 0, boundary = 0;
    double ms = 0;
    if (int r = segment(in, o.cell, out, regions, boundary, ms)) return r;
    if (!write_image(o.out, out, err)) return fail(err);
    std::printf("watershed of %dx%d from %d markers (one per %dx%d cell): %d boundary pixels, %.3f ms, written to %s\n",
                in.width, in.height, regions, o.cell, o.cell, boundary, ms, o.out.c_str());
    return kExitOk;
}
ZCLI_COMMAND("segment", "IMAGE OUT [--cell N]", "watershed segmentation from automatically placed markers",
             "  --cell N\tone marker per N x N cell, at its flattest pixel (default 32)\n"
             "Regions grow from the markers across the smallest grey-level steps first. OUT shows each region in "
             "its mean colour, boundaries in black. 8-bit grey or colour images.",
             cmd_segment);

int demo_segment(const DemoContext& ctx) {
    Image out;
    int regions = 0, boundary = 0;
    double ms = 0;
    if (int r = segment(ctx.colour, 24, out, regions, boundary, ms)) return r;
    std::string err;
    if (!write_image(ctx.outDir + "/segments.png", out, err)) return fail(err);
    std::printf("watershed from %d markers: %d boundary pixels, %.3f ms -> %s/segments.png\n", regions, boundary, ms,
                ctx.outDir.c_str());
    return kExitOk;
}
ZCLI_DEMO_STEP("segmentation: watershed from grid markers", 85, demo_segment);

}  // namespace
}  // namespace zcli

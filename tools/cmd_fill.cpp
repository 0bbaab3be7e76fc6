// SPDX-License-Identifier: Apache-2.0
// zebcv fill: flood fill of the region around a seed pixel, by equality,
// by a fixed range around the seed's value or by a range that floats from
// neighbour to neighbour.
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "cli.h"
#include "zebcv.h"

namespace zcli {
namespace {

struct Options {
    std::string in, out;
    ZebiPoint seed{-1, -1};
    bool range = false, grad = false, eight = false;
    int lo = 8, hi = 8;
    int value = -1;  // -1: a colour that stands out from the seed's
};

bool parse_pair(const std::string& s, int& a, int& b) {
    const std::size_t comma = s.find(',');
    return comma != std::string::npos && parse_int(s.substr(0, comma), a) && parse_int(s.substr(comma + 1), b);
}

bool parse(const std::vector<std::string>& args, Options& o) {
    std::vector<std::string> pos;
    bool seedGiven = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--grad") {
            o.grad = true;
            continue;
        }
        if (a == "--8") {
            o.eight = true;
            continue;
        }
        if (a.rfind("--", 0) != 0) {
            pos.push_back(a);
            continue;
        }
        if (a != "--seed" && a != "--range" && a != "--value") return usage_error("unknown option " + a);
        if (i + 1 >= args.size()) return usage_error(a + " needs a value");
        const std::string& v = args[++i];
        if (a == "--seed") {
            if (!parse_pair(v, o.seed.x, o.seed.y)) return usage_error("--seed takes X,Y");
            seedGiven = true;
        } else if (a == "--range") {
            if (!parse_pair(v, o.lo, o.hi) || o.lo < 0 || o.hi < 0) return usage_error("--range takes LO,HI >= 0");
            o.range = true;
        } else if (!parse_int(v, o.value) || o.value < 0 || o.value > 255) {
            return usage_error("--value takes 0 to 255");
        }
    }
    if (pos.size() != 2) return false;
    if (!seedGiven) return usage_error("--seed X,Y is required");
    o.in = pos[0];
    o.out = pos[1];
    return true;
}

// Fills an 8-bit grey or colour image in place; the record and the time go
// to the caller.
template <int C>
bool fill(LibCalls& calls, Image& img, const Options& o, ZebConnectedComp& rc) {
    const ZebiSize roi{img.width, img.height};
    int bytes = 0;
    if (!(o.grad ? calls(ZCLI_FN(zebiFloodFillGetSize_Grad), roi, &bytes)
                 : calls(ZCLI_FN(zebiFloodFillGetSize), roi, &bytes)))
        return false;
    std::vector<Zeb8u> buf(static_cast<std::size_t>(bytes));
    Zeb8u* p = img.data.data();
    const int step = img.step();
    Zeb8u nv[3], lo[3], hi[3];
    for (int c = 0; c < 3; ++c) nv[c] = Zeb8u(o.value), lo[c] = Zeb8u(std::min(o.lo, 255)), hi[c] = Zeb8u(std::min(o.hi, 255));
    if (o.value < 0) {  // red on colour, black or white on grey
        const bool inside = o.seed.x >= 0 && o.seed.y >= 0 && o.seed.x < img.width && o.seed.y < img.height;
        const int s = inside ? p[std::size_t(o.seed.y) * step + std::size_t(o.seed.x) * C] : 0;
        nv[0] = C == 3 ? 255 : (s < 128 ? 255 : 0), nv[1] = nv[2] = 0;
        if (C == 3 && inside && p[std::size_t(o.seed.y) * step + std::size_t(o.seed.x) * C] == 255) nv[1] = 64;
    }
    if constexpr (C == 1) {
        if (o.grad)
            return o.eight ? calls(ZCLI_FN(zebiFloodFill_Grad8Con_8u_C1IR), p, step, roi, o.seed, nv[0], lo[0], hi[0],
                                   &rc, buf.data())
                           : calls(ZCLI_FN(zebiFloodFill_Grad4Con_8u_C1IR), p, step, roi, o.seed, nv[0], lo[0], hi[0],
                                   &rc, buf.data());
        if (o.range)
            return o.eight ? calls(ZCLI_FN(zebiFloodFill_Range8Con_8u_C1IR), p, step, roi, o.seed, nv[0], lo[0], hi[0],
                                   &rc, buf.data())
                           : calls(ZCLI_FN(zebiFloodFill_Range4Con_8u_C1IR), p, step, roi, o.seed, nv[0], lo[0], hi[0],
                                   &rc, buf.data());
        return o.eight ? calls(ZCLI_FN(zebiFloodFill_8Con_8u_C1IR), p, step, roi, o.seed, nv[0], &rc, buf.data())
                       : calls(ZCLI_FN(zebiFloodFill_4Con_8u_C1IR), p, step, roi, o.seed, nv[0], &rc, buf.data());
    } else {
        if (o.grad)
            return o.eight ? calls(ZCLI_FN(zebiFloodFill_Grad8Con_8u_C3IR), p, step, roi, o.seed, nv, lo, hi, &rc,
                                   buf.data())
                           : calls(ZCLI_FN(zebiFloodFill_Grad4Con_8u_C3IR), p, step, roi, o.seed, nv, lo, hi, &rc,
                                   buf.data());
        if (o.range)
            return o.eight ? calls(ZCLI_FN(zebiFloodFill_Range8Con_8u_C3IR), p, step, roi, o.seed, nv, lo, hi, &rc,
                                   buf.data())
                           : calls(ZCLI_FN(zebiFloodFill_Range4Con_8u_C3IR), p, step, roi, o.seed, nv, lo, hi, &rc,
                                   buf.data());
        return o.eight ? calls(ZCLI_FN(zebiFloodFill_8Con_8u_C3IR), p, step, roi, o.seed, nv, &rc, buf.data())
                       : calls(ZCLI_FN(zebiFloodFill_4Con_8u_C3IR), p, step, roi, o.seed, nv, &rc, buf.data());
    }
}

const char* mode_name(const Options& o) { return o.grad ? "floating range" : o.range ? "fixed range" : "equality"; }

int run_fill(Image& img, const Options& o, LibCalls& calls, ZebConnectedComp& rc) {
    rc = ZebConnectedComp{};
    img = drop_alpha(img);
    if (img.channels == 3)
        fill<3>(calls, img, o, rc);
    else
        fill<1>(calls, img, o, rc);
    return calls.ok() ? kExitOk : calls.fail();
}

int cmd_fill(const std::vector<std::string>& args) {
    Options o;
    if (!parse(args, o)) return kExitUsage;
    Image img;
    std::string err;
    if (!read_image(o.in, img, err)) return fail(err);
    if (img.bytesPerSample != 1) return fail("fill takes 8-bit images");
    LibCalls calls;
    ZebConnectedComp rc;
    if (int r = run_fill(img, o, calls, rc)) return r;
    if (!write_image(o.out, img, err)) return fail(err);
    std::printf("%s fill (%d-connected) from %d,%d: %.0f pixels in %d,%d %dx%d, %.3f ms, written to %s\n",
                mode_name(o), o.eight ? 8 : 4, o.seed.x, o.seed.y, rc.area, rc.rect.x, rc.rect.y, rc.rect.width,
                rc.rect.height, calls.ms(), o.out.c_str());
    return kExitOk;
}
ZCLI_COMMAND("fill", "IMAGE OUT --seed X,Y [OPTIONS]", "flood fill of the region around a seed pixel",
             "  --seed X,Y\tthe seed pixel (required)\n"
             "  --range LO,HI\tfill pixels within [seed - LO, seed + HI] in every channel (default: equal to the seed)\n"
             "  --grad\tlet the range float: each pixel within [p - LO, p + HI] of its filled neighbour p "
             "(LO,HI default 8,8)\n"
             "  --8\t8-connected regions (default 4-connected)\n"
             "  --value V\tthe fill value in every channel (default red on colour, black or white on grey)\n"
             "8-bit grey or colour images; a seed outside the image is refused by the library.",
             cmd_fill);

int demo_fill(const DemoContext& ctx) {
    struct Step {
        bool range, grad;
        const char* file;
    } steps[] = {{false, false, "fill_equal.png"}, {true, false, "fill_range.png"}, {true, true, "fill_grad.png"}};
    for (const Step& s : steps) {
        Options o;
        o.seed = {ctx.colour.width / 2, ctx.colour.height / 2};
        o.range = s.range, o.grad = s.grad, o.eight = true;
        o.lo = o.hi = s.grad ? 3 : 24;
        Image img = ctx.colour;
        LibCalls calls;
        ZebConnectedComp rc;
        if (int r = run_fill(img, o, calls, rc)) return r;
        std::string err;
        if (!write_image(ctx.outDir + "/" + s.file, img, err)) return fail(err);
        std::printf("%s fill from the centre: %.0f pixels, %dx%d box, %.3f ms -> %s/%s\n", mode_name(o), rc.area,
                    rc.rect.width, rc.rect.height, calls.ms(), ctx.outDir.c_str(), s.file);
    }
    return kExitOk;
}
ZCLI_DEMO_STEP("flood fill: equality, fixed range and floating range", 80, demo_fill);

}  // namespace
}  // namespace zcli

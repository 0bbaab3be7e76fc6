// SPDX-License-Identifier: Apache-2.0
// zebcv edges and zebcv corners: edge maps and corner points of an image.
// 8-bit images run the edge detector with its own derivatives and the 8-bit
// corner response; 16-bit images are differentiated in single precision on
// their exact values and run the float forms.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "cli.h"
#include "zebcv.h"

namespace zcli {
namespace {

template <class Query, class... A>
std::vector<Zeb8u> buffer_for(LibCalls& calls, Fn<Query> query, A... a) {
    int n = 0;
    return calls(query, a..., &n) ? std::vector<Zeb8u>(std::size_t(n)) : std::vector<Zeb8u>();
}

std::vector<float> to_float(const Image& g) {
    std::vector<float> v(std::size_t(g.width) * g.height);
    for (std::size_t i = 0; i < v.size(); ++i) v[i] = float(sample(g, i));
    return v;
}

// Parses "--name value" pairs into the handler; positional arguments are
// collected. False (with a message) on a usage error.
template <class Handler>
bool parse_options(const std::vector<std::string>& args, const std::vector<std::string>& names,
                   std::vector<std::string>& pos, Handler&& handle) {
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a.rfind("--", 0) != 0) {
            pos.push_back(a);
            continue;
        }
        if (std::find(names.begin(), names.end(), a) == names.end()) return usage_error("unknown option " + a);
        if (i + 1 >= args.size()) return usage_error(a + " needs a value");
        if (!handle(a, args[++i])) return false;
    }
    return true;
}

// ---- edges ----

struct EdgeOptions {
    std::string in, out;
    float low = 50.f, high = 150.f;
    bool scharr = false, l2 = false;
    int mask = 3;
};

bool parse_edges(const std::vector<std::string>& args, EdgeOptions& o) {
    std::vector<std::string> pos;
    const bool ok = parse_options(args, {"--low", "--high", "--kernel", "--mask", "--norm"}, pos,
                                  [&](const std::string& a, const std::string& v) {
                                      if (a == "--low" || a == "--high") {
                                          float& t = a == "--low" ? o.low : o.high;
                                          if (!parse_float(v, t) || !(t >= 0))
                                              return usage_error(a + " takes a number of at least 0");
                                      } else if (a == "--kernel") {
                                          if (v != "sobel" && v != "scharr")
                                              return usage_error("--kernel takes sobel or scharr");
                                          o.scharr = v == "scharr";
                                      } else if (a == "--mask") {
                                          if (!parse_int(v, o.mask) || (o.mask != 3 && o.mask != 5))
                                              return usage_error("--mask takes 3 or 5");
                                      } else {
                                          if (v != "l1" && v != "l2") return usage_error("--norm takes l1 or l2");
                                          o.l2 = v == "l2";
                                      }
                                      return true;
                                  });
    if (!ok) return false;
    if (pos.size() != 2) return usage_error("edges takes IMAGE OUT");
    o.in = pos[0], o.out = pos[1];
    if (o.low > o.high) return usage_error("--low may not exceed --high");
    if (o.scharr && o.mask != 3) return usage_error("scharr is 3x3 only");
    return true;
}

// The edge map of a grey image: 8-bit images through the detector with its
// own derivatives (replicated border); 16-bit ones through float
// derivatives and the float detector (L1 only).
Image edge_map(LibCalls& calls, const Image& g, const EdgeOptions& o) {
    const ZebiSize roi{g.width, g.height};
    Image out(g.width, g.height, 1);
    const int mask = o.mask == 5 ? zebMskSize5x5 : zebMskSize3x3;
    const int kernel = o.scharr ? zebFilterScharr : zebFilterSobel;
    if (g.bytesPerSample == 1) {
        std::vector<Zeb8u> buf = buffer_for(calls, ZCLI_FN(zebiCannyBorderGetSize), roi, kernel, mask, zeb8u);
        calls(ZCLI_FN(zebiCannyBorder_8u_C1R), g.data.data(), g.step(), out.data.data(), out.step(), roi, kernel, mask,
              zebBorderRepl, Zeb8u(0), o.low, o.high, o.l2 ? zebNormL2 : zebNormL1, buf.data());
        return out;
    }
    const std::vector<float> f = to_float(g);
    const int fs = g.width * int(sizeof(float));
    std::vector<float> dx(f.size()), dy(f.size());
    std::vector<Zeb8u> wx, wy;
    if (o.scharr) {
        wx = buffer_for(calls, ZCLI_FN(zebiFilterScharrVertGetBufferSize_32f_C1R), roi);
        wy = buffer_for(calls, ZCLI_FN(zebiFilterScharrHorizGetBufferSize_32f_C1R), roi);
        calls(ZCLI_FN(zebiFilterScharrVertBorder_32f_C1R), f.data(), fs, dx.data(), fs, roi, zebBorderRepl, 0.f,
              wx.data());
        calls(ZCLI_FN(zebiFilterScharrHorizBorder_32f_C1R), f.data(), fs, dy.data(), fs, roi, zebBorderRepl, 0.f,
              wy.data());
    } else {
        wx = buffer_for(calls, ZCLI_FN(zebiFilterSobelVertGetBufferSize_32f_C1R), roi, mask);
        wy = buffer_for(calls, ZCLI_FN(zebiFilterSobelHorizGetBufferSize_32f_C1R), roi, mask);
        calls(ZCLI_FN(zebiFilterSobelVertBorder_32f_C1R), f.data(), fs, dx.data(), fs, roi, mask, zebBorderRepl, 0.f,
              wx.data());
        calls(ZCLI_FN(zebiFilterSobelHorizBorder_32f_C1R), f.data(), fs, dy.data(), fs, roi, mask, zebBorderRepl, 0.f,
              wy.data());
    }
    std::vector<Zeb8u> buf = buffer_for(calls, ZCLI_FN(zebiCannyGetSize), roi);
    calls(ZCLI_FN(zebiCanny_32f8u_C1R), dx.data(), fs, dy.data(), fs, out.data.data(), out.step(), roi, o.low, o.high,
          buf.data());
    return out;
}

std::string edge_text(const EdgeOptions& o) {
    char t[96];
    std::snprintf(t, sizeof t, "%s %dx%d %s, thresholds %g/%g", o.scharr ? "scharr" : "sobel", o.mask, o.mask,
                  o.l2 ? "L2" : "L1", double(o.low), double(o.high));
    return t;
}

std::size_t count_edges(const Image& e) { return std::size_t(std::count(e.data.begin(), e.data.end(), 255)); }

int cmd_edges(const std::vector<std::string>& args) {
    EdgeOptions o;
    if (!parse_edges(args, o)) return kExitUsage;
    Image in;
    std::string err;
    if (!read_image(o.in, in, err)) return fail(err);
    const Image g = to_gray(drop_alpha(in));
    if (g.bytesPerSample != 1 && o.l2) return fail("the L2 norm needs an 8-bit image; use --norm l1");
    LibCalls calls;
    const Image e = edge_map(calls, g, o);
    if (!calls.ok()) return calls.fail();
    if (!write_image(o.out, e, err)) return fail(err);
    const std::size_t n = count_edges(e);
    std::printf("edges %s on %dx%d %d-bit in %.3f ms: %zu edge pixels (%.2f%%), written to %s\n",
                edge_text(o).c_str(), g.width, g.height, 8 * g.bytesPerSample, calls.ms(), n,
                100.0 * double(n) / (double(g.width) * g.height), o.out.c_str());
    return kExitOk;
}
ZCLI_COMMAND("edges", "IMAGE OUT [OPTIONS]", "edge map (255 on edges, 0 elsewhere)",
             "  --low L\tlower hysteresis threshold (default 50)\n"
             "  --high H\tupper threshold: edges grow from pixels above it (default 150)\n"
             "  --kernel K\tsobel (default) or scharr\n"
             "  --mask 3|5\tsobel mask size (default 3; scharr is 3x3 only)\n"
             "  --norm N\tgradient magnitude l1 (|gx| + |gy|, default) or l2\n"
             "Thresholds are in units of the derivative: a step of 1 between two grey levels gives 4 with the "
             "3x3 Sobel kernel, 16 with Scharr. 16-bit images are differentiated in single precision (L1 only).",
             cmd_edges);

int demo_edges(const DemoContext& ctx) {
    for (bool l2 : {false, true}) {
        EdgeOptions o;
        o.l2 = l2;
        o.low = 40, o.high = 120;
        LibCalls calls;
        const Image e = edge_map(calls, ctx.frame0, o);
        if (!calls.ok()) return calls.fail();
        const std::string file = l2 ? "edges_l2.png" : "edges.png";
        std::string err;
        if (!write_image(ctx.outDir + "/" + file, e, err)) return fail(err);
        std::printf("edges %s in %.3f ms: %zu edge pixels -> %s/%s\n", edge_text(o).c_str(), calls.ms(),
                    count_edges(e), ctx.outDir.c_str(), file.c_str());
    }
    return kExitOk;
}
ZCLI_DEMO_STEP("edges: hysteresis edge maps, L1 and L2", 30, demo_edges);

// ---- corners ----

struct CornerOptions {
    std::string in, out;
    float k = 0.04f;
    int window = 3, top = 50;
};

bool parse_corners(const std::vector<std::string>& args, CornerOptions& o) {
    std::vector<std::string> pos;
    const bool ok = parse_options(args, {"--k", "--window", "--top"}, pos,
                                  [&](const std::string& a, const std::string& v) {
                                      if (a == "--k") {
                                          if (!parse_float(v, o.k) || !(o.k >= 0) || !(o.k < 1))
                                              return usage_error("--k takes a number from 0 up to 1");
                                      } else if (a == "--window") {
                                          if (!parse_int(v, o.window) || o.window < 1 || o.window > 64)
                                              return usage_error("--window takes 1 to 64");
                                      } else if (!parse_int(v, o.top) || o.top < 1) {
                                          return usage_error("--top takes a positive count");
                                      }
                                      return true;
                                  });
    if (!ok) return false;
    if (pos.size() != 2) return usage_error("corners takes IMAGE OUT");
    o.in = pos[0], o.out = pos[1];
    return true;
}

struct Corner {
    int x, y;
    float r;
};

// The corner response of a grey image (Sobel 3x3, replicated border).
std::vector<float> response(LibCalls& calls, const Image& g, const CornerOptions& o) {
    const ZebiSize roi{g.width, g.height};
    std::vector<float> r(std::size_t(g.width) * g.height);
    const int rs = g.width * int(sizeof(float));
    const bool eight = g.bytesPerSample == 1;
    std::vector<Zeb8u> buf = buffer_for(calls, ZCLI_FN(zebiHarrisCornerGetBufferSize), roi, zebMskSize3x3, o.window,
                                        eight ? zeb8u : zeb32f, 1);
    if (eight) {
        calls(ZCLI_FN(zebiHarrisCorner_8u32f_C1R), g.data.data(), g.step(), r.data(), rs, roi, zebFilterSobel,
              zebMskSize3x3, o.window, o.k, 1.f, zebBorderRepl, Zeb8u(0), buf.data());
    } else {
        const std::vector<float> f = to_float(g);
        calls(ZCLI_FN(zebiHarrisCorner_32f_C1R), f.data(), rs, r.data(), rs, roi, zebFilterSobel, zebMskSize3x3,
              o.window, o.k, 1.f, zebBorderRepl, 0.f, buf.data());
    }
    return r;
}

// The strongest local maxima (over 3x3, above 1% of the largest response),
// strongest first.
std::vector<Corner> strongest(const std::vector<float>& r, int w, int h, int top) {
    const float peak = r.empty() ? 0.f : *std::max_element(r.begin(), r.end());
    std::vector<Corner> c;
    if (!(peak > 0)) return c;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const float v = r[std::size_t(y) * w + x];
            if (!(v > 0.01f * peak)) continue;
            bool max = true;
            for (int dy = -1; dy <= 1 && max; ++dy)
                for (int dx = -1; dx <= 1 && max; ++dx) {
                    const int xx = x + dx, yy = y + dy;
                    if ((dx || dy) && xx >= 0 && yy >= 0 && xx < w && yy < h) {
                        const float n = r[std::size_t(yy) * w + xx];
                        // Of equal neighbours the first in reading order wins.
                        max = n < v || (n == v && (dy > 0 || (dy == 0 && dx > 0)));
                    }
                }
            if (max) c.push_back({x, y, v});
        }
    std::stable_sort(c.begin(), c.end(), [](const Corner& a, const Corner& b) { return a.r > b.r; });
    if (int(c.size()) > top) c.resize(std::size_t(top));
    return c;
}

// An 8-bit colour copy of the image with a red ring around every corner.
Image draw(const Image& img, const std::vector<Corner>& corners) {
    const Image src = drop_alpha(img);
    Image out(src.width, src.height, 3);
    const std::size_t n = std::size_t(src.width) * src.height;
    for (std::size_t i = 0; i < n; ++i)
        for (int c = 0; c < 3; ++c) {
            const std::size_t s = i * src.channels + (src.channels == 3 ? c : 0);
            out.data[i * 3 + c] = uint8_t(src.bytesPerSample == 2 ? sample(src, s) >> 8 : sample(src, s));
        }
    for (const Corner& k : corners)
        for (int dy = -4; dy <= 4; ++dy)
            for (int dx = -4; dx <= 4; ++dx) {
                const int d2 = dx * dx + dy * dy, x = k.x + dx, y = k.y + dy;
                if (d2 < 9 || d2 > 20 || x < 0 || y < 0 || x >= out.width || y >= out.height) continue;
                uint8_t* p = &out.data[(std::size_t(y) * out.width + x) * 3];
                p[0] = 255, p[1] = 0, p[2] = 0;
            }
    return out;
}

int cmd_corners(const std::vector<std::string>& args) {
    CornerOptions o;
    if (!parse_corners(args, o)) return kExitUsage;
    Image in;
    std::string err;
    if (!read_image(o.in, in, err)) return fail(err);
    const Image g = to_gray(drop_alpha(in));
    LibCalls calls;
    const std::vector<float> r = response(calls, g, o);
    if (!calls.ok()) return calls.fail();
    const std::vector<Corner> c = strongest(r, g.width, g.height, o.top);
    if (!write_image(o.out, draw(in, c), err)) return fail(err);
    std::printf("corners (Sobel 3x3, window %d, k %g) on %dx%d %d-bit in %.3f ms: %zu drawn, written to %s\n",
                o.window, double(o.k), g.width, g.height, 8 * g.bytesPerSample, calls.ms(), c.size(), o.out.c_str());
    for (std::size_t i = 0; i < c.size() && i < 5; ++i)
        std::printf("  (%d,%d) response %.4g\n", c[i].x, c[i].y, double(c[i].r));
    return kExitOk;
}
ZCLI_COMMAND("corners", "IMAGE OUT [OPTIONS]", "corner points drawn on the image",
             "  --k K\tthe corner constant of the response (default 0.04)\n"
             "  --window W\tside of the summation window, 1 to 64 (default 3)\n"
             "  --top N\tthe N strongest corners are drawn (default 50)\n"
             "Corners are the local maxima over 3x3 of the response det - k * trace^2 of the window means of the "
             "gradient products (Sobel 3x3, replicated border), above 1% of the largest. The output is an 8-bit "
             "colour copy of the image with a red ring around each corner.",
             cmd_corners);

int demo_corners(const DemoContext& ctx) {
    CornerOptions o;
    LibCalls calls;
    const Image g = to_gray(drop_alpha(ctx.colour));
    const std::vector<float> r = response(calls, g, o);
    if (!calls.ok()) return calls.fail();
    const std::vector<Corner> c = strongest(r, g.width, g.height, o.top);
    std::string err;
    if (!write_image(ctx.outDir + "/corners.png", draw(ctx.colour, c), err)) return fail(err);
    std::printf("corners (window %d, k %g) in %.3f ms: %zu drawn -> %s/corners.png\n", o.window, double(o.k),
                calls.ms(), c.size(), ctx.outDir.c_str());
    return kExitOk;
}
ZCLI_DEMO_STEP("corners: corner response and its strongest maxima", 31, demo_corners);

}  // namespace
}  // namespace zcli

// zebcv filter: derivative and smoothing filters with borders on an image.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "cli.h"
#include "zebcv.h"

namespace zcli {
namespace {

struct Options {
    std::string filter, in, out;
    int mask = 3;
    int border = zebBorderRepl;
    std::string borderName = "repl";
    float sigma = 1.5f;
    int size = 0;  // 0: from sigma
};

// An 8-bit copy with the same channels (16-bit samples keep the high byte).
Image to_8bit(const Image& img) {
    if (img.bytesPerSample == 1) return img;
    Image o(img.width, img.height, img.channels, 1);
    for (std::size_t i = 0; i < o.data.size(); ++i) o.data[i] = uint8_t(img.ptr<uint16_t>()[i] >> 8);
    return o;
}

// Work buffer of the size a query reported, or a message on failure.
struct Work {
    std::vector<Zeb8u> bytes;
    int status = 0;
};

template <class Query, class... A>
Work work_for(Query q, A... a) {
    Work w;
    int n = 0;
    w.status = q(a..., &n);
    if (w.status == 0) w.bytes.resize(std::size_t(n));
    return w;
}

// |d/dx| + |d/dy| of a grey image with the Sobel or Scharr pair.
int gradient(const Image& g, bool scharr, const Options& o, std::vector<float>& mag, const char*& failed) {
    const ZebiSize roi{g.width, g.height};
    std::vector<Zeb16s> gx(std::size_t(g.width) * g.height), gy(gx.size());
    const int step16 = g.width * 2;
    int st;
    if (scharr) {
        Work w = work_for(zebiFilterScharrVertGetBufferSize_8u16s_C1R, roi);
        Work h = work_for(zebiFilterScharrHorizGetBufferSize_8u16s_C1R, roi);
        if ((st = w.status) || (st = h.status)) return failed = "zebiFilterScharrGetBufferSize", st;
        if ((st = zebiFilterScharrVertBorder_8u16s_C1R(g.data.data(), g.step(), gx.data(), step16, roi, o.border, 0,
                                                       w.bytes.data())))
            return failed = "zebiFilterScharrVertBorder_8u16s_C1R", st;
        if ((st = zebiFilterScharrHorizBorder_8u16s_C1R(g.data.data(), g.step(), gy.data(), step16, roi, o.border, 0,
                                                        h.bytes.data())))
            return failed = "zebiFilterScharrHorizBorder_8u16s_C1R", st;
    } else {
        const int mask = o.mask == 5 ? zebMskSize5x5 : zebMskSize3x3;
        Work w = work_for(zebiFilterSobelVertGetBufferSize_8u16s_C1R, roi, mask);
        Work h = work_for(zebiFilterSobelHorizGetBufferSize_8u16s_C1R, roi, mask);
        if ((st = w.status) || (st = h.status)) return failed = "zebiFilterSobelGetBufferSize", st;
        if ((st = zebiFilterSobelVertBorder_8u16s_C1R(g.data.data(), g.step(), gx.data(), step16, roi, mask, o.border,
                                                      0, w.bytes.data())))
            return failed = "zebiFilterSobelVertBorder_8u16s_C1R", st;
        if ((st = zebiFilterSobelHorizBorder_8u16s_C1R(g.data.data(), g.step(), gy.data(), step16, roi, mask,
                                                       o.border, 0, h.bytes.data())))
            return failed = "zebiFilterSobelHorizBorder_8u16s_C1R", st;
    }
    mag.resize(gx.size());
    for (std::size_t i = 0; i < gx.size(); ++i) mag[i] = float(std::abs(gx[i]) + std::abs(gy[i]));
    return 0;
}

int laplacian(const Image& g, const Options& o, std::vector<float>& mag, const char*& failed) {
    const ZebiSize roi{g.width, g.height};
    const int mask = o.mask == 5 ? zebMskSize5x5 : zebMskSize3x3;
    std::vector<Zeb16s> l(std::size_t(g.width) * g.height);
    Work w = work_for(zebiFilterLaplacianGetBufferSize_8u16s_C1R, roi, mask);
    if (w.status) return failed = "zebiFilterLaplacianGetBufferSize_8u16s_C1R", w.status;
    if (int st = zebiFilterLaplacianBorder_8u16s_C1R(g.data.data(), g.step(), l.data(), g.width * 2, roi, mask,
                                                     o.border, 0, w.bytes.data()))
        return failed = "zebiFilterLaplacianBorder_8u16s_C1R", st;
    mag.resize(l.size());
    for (std::size_t i = 0; i < l.size(); ++i) mag[i] = float(std::abs(l[i]));
    return 0;
}

// Lowpass of every channel of an 8-bit image.
int lowpass(const Image& img, const Options& o, Image& out, const char*& failed) {
    const ZebiSize roi{img.width, img.height};
    const int mask = o.mask == 5 ? zebMskSize5x5 : zebMskSize3x3;
    Work w = work_for(zebiFilterLowpassGetBufferSize_8u_C1R, roi, mask);
    if (w.status) return failed = "zebiFilterLowpassGetBufferSize_8u_C1R", w.status;
    out = Image(img.width, img.height, img.channels, 1);
    Image plane(img.width, img.height, 1, 1), result(img.width, img.height, 1, 1);
    for (int c = 0; c < img.channels; ++c) {
        for (std::size_t i = 0; i < plane.data.size(); ++i) plane.data[i] = img.data[i * img.channels + c];
        if (int st = zebiFilterLowpassBorder_8u_C1R(plane.data.data(), plane.step(), result.data.data(), result.step(),
                                                    roi, mask, o.border, 0, w.bytes.data()))
            return failed = "zebiFilterLowpassBorder_8u_C1R", st;
        for (std::size_t i = 0; i < plane.data.size(); ++i) out.data[i * img.channels + c] = result.data[i];
    }
    return 0;
}

int gauss(const Image& img, const Options& o, Image& out, const char*& failed) {
    const ZebiSize roi{img.width, img.height};
    const int k = o.size > 0 ? o.size : 2 * int(std::ceil(3 * o.sigma)) + 1;
    const int ch = img.channels >= 3 ? 3 : 1;
    int specBytes = 0, bufBytes = 0;
    if (int st = zebiFilterGaussianGetBufferSize(roi, Zeb32u(k), zeb8u, ch, &specBytes, &bufBytes))
        return failed = "zebiFilterGaussianGetBufferSize", st;
    std::vector<Zeb8u> spec(std::size_t(specBytes), 0);
    std::vector<Zeb8u> buf(std::size_t(bufBytes), 0);
    auto* s = reinterpret_cast<ZebFilterGaussianSpec*>(spec.data());
    if (int st = zebiFilterGaussianInit(roi, Zeb32u(k), o.sigma, o.border, zeb8u, ch, s, buf.data()))
        return failed = "zebiFilterGaussianInit", st;
    Image src = img;
    if (img.channels != ch) {  // grey with alpha or similar: keep the first channel
        src = Image(img.width, img.height, 1, 1);
        for (std::size_t i = 0; i < src.data.size(); ++i) src.data[i] = img.data[i * img.channels];
    }
    out = Image(img.width, img.height, ch, 1);
    const Zeb8u zero[3] = {0, 0, 0};
    const int st = ch == 3 ? zebiFilterGaussianBorder_8u_C3R(src.data.data(), src.step(), out.data.data(), out.step(),
                                                             roi, zero, s, buf.data())
                           : zebiFilterGaussianBorder_8u_C1R(src.data.data(), src.step(), out.data.data(), out.step(),
                                                             roi, 0, s, buf.data());
    if (st) return failed = ch == 3 ? "zebiFilterGaussianBorder_8u_C3R" : "zebiFilterGaussianBorder_8u_C1R", st;
    return 0;
}

void describe(const std::vector<float>& v, const char* what) {
    double sum = 0;
    float peak = 0;
    for (float x : v) {
        sum += x;
        peak = x > peak ? x : peak;
    }
    std::printf("%s: mean %.2f, largest %.0f\n", what, v.empty() ? 0.0 : sum / double(v.size()), double(peak));
}

bool parse_border(const std::string& s, int& out) {
    const struct {
        const char* name;
        int value;
    } names[] = {{"const", zebBorderConst},
                 {"repl", zebBorderRepl},
                 {"wrap", zebBorderWrap},
                 {"mirror", zebBorderMirror},
                 {"mirror-edge", zebBorderMirrorEdge}};
    for (const auto& n : names)
        if (s == n.name) return out = n.value, true;
    return false;
}

// Parses the arguments; false (with a message) on a usage error.
bool parse(const std::vector<std::string>& args, Options& o) {
    std::vector<std::string> pos;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a.rfind("--", 0) != 0) {
            pos.push_back(a);
            continue;
        }
        if (i + 1 >= args.size()) return std::fprintf(stderr, "zebcv: %s needs a value\n", a.c_str()), false;
        const std::string& v = args[++i];
        if (a == "--mask") {
            if (!parse_int(v, o.mask) || (o.mask != 3 && o.mask != 5))
                return std::fprintf(stderr, "zebcv: --mask takes 3 or 5\n"), false;
        } else if (a == "--border") {
            if (!parse_border(v, o.border))
                return std::fprintf(stderr, "zebcv: --border takes const, repl, mirror, mirror-edge or wrap\n"), false;
            o.borderName = v;
        } else if (a == "--sigma") {
            if (!parse_float(v, o.sigma) || !(o.sigma > 0))
                return std::fprintf(stderr, "zebcv: --sigma takes a positive number\n"), false;
        } else if (a == "--size") {
            if (!parse_int(v, o.size) || o.size < 3 || o.size % 2 == 0)
                return std::fprintf(stderr, "zebcv: --size takes an odd number of at least 3\n"), false;
        } else {
            return std::fprintf(stderr, "zebcv: unknown option %s\n", a.c_str()), false;
        }
    }
    if (pos.size() != 3) return false;
    o.filter = pos[0];
    o.in = pos[1];
    o.out = pos[2];
    if (o.filter != "sobel" && o.filter != "scharr" && o.filter != "laplacian" && o.filter != "lowpass" &&
        o.filter != "gauss")
        return std::fprintf(stderr, "zebcv: unknown filter '%s'\n", o.filter.c_str()), false;
    if (o.filter == "scharr" && o.mask != 3) return std::fprintf(stderr, "zebcv: scharr is 3x3 only\n"), false;
    if (o.filter == "gauss" && o.border != zebBorderConst && o.border != zebBorderRepl)
        return std::fprintf(stderr, "zebcv: gauss takes --border const or repl\n"), false;
    return true;
}

// Runs the chosen filter; the result is an 8-bit image for viewing.
int apply(const Image& input, const Options& o, Image& result, double& ms) {
    const Image img = to_8bit(input);
    const char* failed = "";
    int st = 0;
    if (o.filter == "lowpass" || o.filter == "gauss") {
        ms = time_ms([&] { st = o.filter == "gauss" ? gauss(img, o, result, failed) : lowpass(img, o, result, failed); });
        if (st) return fail_status(failed, st);
        return kExitOk;
    }
    const Image g = to_gray8(img);
    std::vector<float> v;
    ms = time_ms([&] { st = o.filter == "laplacian" ? laplacian(g, o, v, failed) : gradient(g, o.filter == "scharr", o, v, failed); });
    if (st) return fail_status(failed, st);
    describe(v, o.filter == "laplacian" ? "|laplacian|" : "|d/dx| + |d/dy|");
    result = to_view8(v.data(), g.width, g.height);
    return kExitOk;
}

int cmd_filter(const std::vector<std::string>& args) {
    Options o;
    if (!parse(args, o)) return kExitUsage;
    Image in, out;
    std::string err;
    if (!read_image(o.in, in, err)) return fail(err);
    double ms = 0;
    if (int rc = apply(in, o, out, ms)) return rc;
    if (!write_image(o.out, out, err)) return fail(err);
    const std::string mask = o.filter == "gauss" ? "size " + std::to_string(o.size > 0 ? o.size : 2 * int(std::ceil(3 * o.sigma)) + 1)
                                                 : std::to_string(o.mask) + "x" + std::to_string(o.mask);
    std::printf("%s %s, border %s, on %dx%d in %.3f ms, written to %s\n", o.filter.c_str(), mask.c_str(),
                o.borderName.c_str(), in.width, in.height, ms, o.out.c_str());
    return kExitOk;
}
ZCLI_COMMAND("filter",
             "sobel|scharr|laplacian|lowpass|gauss IMAGE OUT [--mask 3|5] "
             "[--border const|repl|mirror|mirror-edge|wrap] [--sigma S --size K]",
             "derivative and smoothing filters with borders", cmd_filter);

int demo_filter(const DemoContext& ctx) {
    struct Step {
        const char* filter;
        int mask;
        const char* file;
    } steps[] = {{"sobel", 3, "sobel.png"},
                 {"scharr", 3, "scharr.png"},
                 {"laplacian", 5, "laplacian.png"},
                 {"lowpass", 5, "lowpass.png"},
                 {"gauss", 3, "gauss.png"}};
    for (const Step& s : steps) {
        Options o;
        o.filter = s.filter;
        o.mask = s.mask;
        o.sigma = 2.0f;
        Image out;
        double ms = 0;
        const Image& src = o.filter == "lowpass" || o.filter == "gauss" ? ctx.colour : ctx.frame0;
        if (int rc = apply(src, o, out, ms)) return rc;
        std::string err;
        if (!write_image(ctx.outDir + "/" + s.file, out, err)) return fail(err);
        if (o.filter == "gauss")
            std::printf("%s sigma %.1f in %.3f ms -> %s/%s\n", s.filter, double(o.sigma), ms, ctx.outDir.c_str(), s.file);
        else
            std::printf("%s %dx%d in %.3f ms -> %s/%s\n", s.filter, s.mask, s.mask, ms, ctx.outDir.c_str(), s.file);
    }
    return kExitOk;
}
ZCLI_DEMO_STEP("filters: Sobel, Scharr, Laplacian, lowpass and Gaussian", 20, demo_filter);

}  // namespace
}  // namespace zcli

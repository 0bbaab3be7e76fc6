// SPDX-License-Identifier: Apache-2.0
// zebcv filter: derivative and smoothing filters with borders on an image.
// 8-bit images run the 8-bit forms; 16-bit images run the Gaussian's
// 16-bit forms and, for the other filters, the single-precision forms on
// the exact sample values (the library has no 16-bit forms of those).
#include <algorithm>
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
    int kernel_size() const { return size > 0 ? size : 2 * int(std::ceil(3 * sigma)) + 1; }
    int mask_code() const { return mask == 5 ? zebMskSize5x5 : zebMskSize3x3; }
};

// A work buffer of the size its query reported.
template <class Query, class... A>
std::vector<Zeb8u> work_for(LibCalls& calls, Fn<Query> query, A... a) {
    int n = 0;
    return calls(query, a..., &n) ? std::vector<Zeb8u>(std::size_t(n)) : std::vector<Zeb8u>();
}

// The derivative forms of one source type S with result type D: 8u16s for
// 8-bit images, 32f for 16-bit ones.
template <class S, class D>
struct DerivativeForms {
    using Masked = ZebStatus(const S*, int, D*, int, ZebiSize, ZebiMaskSize, ZebiBorderType, S, Zeb8u*);
    using Fixed = ZebStatus(const S*, int, D*, int, ZebiSize, ZebiBorderType, S, Zeb8u*);
    using MaskedSize = ZebStatus(ZebiSize, ZebiMaskSize, int*);
    using FixedSize = ZebStatus(ZebiSize, int*);
    Fn<Masked> sobelVert, sobelHoriz, laplacian;
    Fn<MaskedSize> sobelVertSize, sobelHorizSize, laplacianSize;
    Fn<Fixed> scharrVert, scharrHoriz;
    Fn<FixedSize> scharrVertSize, scharrHorizSize;
};

const DerivativeForms<Zeb8u, Zeb16s> kForms8u{
    ZCLI_FN(zebiFilterSobelVertBorder_8u16s_C1R),           ZCLI_FN(zebiFilterSobelHorizBorder_8u16s_C1R),
    ZCLI_FN(zebiFilterLaplacianBorder_8u16s_C1R),           ZCLI_FN(zebiFilterSobelVertGetBufferSize_8u16s_C1R),
    ZCLI_FN(zebiFilterSobelHorizGetBufferSize_8u16s_C1R),   ZCLI_FN(zebiFilterLaplacianGetBufferSize_8u16s_C1R),
    ZCLI_FN(zebiFilterScharrVertBorder_8u16s_C1R),          ZCLI_FN(zebiFilterScharrHorizBorder_8u16s_C1R),
    ZCLI_FN(zebiFilterScharrVertGetBufferSize_8u16s_C1R),   ZCLI_FN(zebiFilterScharrHorizGetBufferSize_8u16s_C1R)};
const DerivativeForms<Zeb32f, Zeb32f> kForms32f{
    ZCLI_FN(zebiFilterSobelVertBorder_32f_C1R),             ZCLI_FN(zebiFilterSobelHorizBorder_32f_C1R),
    ZCLI_FN(zebiFilterLaplacianBorder_32f_C1R),             ZCLI_FN(zebiFilterSobelVertGetBufferSize_32f_C1R),
    ZCLI_FN(zebiFilterSobelHorizGetBufferSize_32f_C1R),     ZCLI_FN(zebiFilterLaplacianGetBufferSize_32f_C1R),
    ZCLI_FN(zebiFilterScharrVertBorder_32f_C1R),            ZCLI_FN(zebiFilterScharrHorizBorder_32f_C1R),
    ZCLI_FN(zebiFilterScharrVertGetBufferSize_32f_C1R),     ZCLI_FN(zebiFilterScharrHorizGetBufferSize_32f_C1R)};

// Magnitude of a grey image's derivative: |d/dx| + |d/dy| with the Sobel or
// Scharr pair, or |laplacian|.
template <class S, class D>
std::vector<float> derivative(LibCalls& calls, const DerivativeForms<S, D>& f, const S* src, int srcStep,
                              ZebiSize roi, const Options& o) {
    const std::size_t n = std::size_t(roi.width) * roi.height;
    const int step = roi.width * int(sizeof(D));
    std::vector<D> a(n), b;
    std::vector<float> mag(n);
    if (o.filter == "laplacian") {
        std::vector<Zeb8u> w = work_for(calls, f.laplacianSize, roi, o.mask_code());
        if (calls.ok()) calls(f.laplacian, src, srcStep, a.data(), step, roi, o.mask_code(), o.border, S(0), w.data());
        for (std::size_t i = 0; i < n; ++i) mag[i] = std::fabs(float(a[i]));
        return mag;
    }
    b.resize(n);
    if (o.filter == "scharr") {
        std::vector<Zeb8u> wv = work_for(calls, f.scharrVertSize, roi);
        std::vector<Zeb8u> wh = work_for(calls, f.scharrHorizSize, roi);
        calls(f.scharrVert, src, srcStep, a.data(), step, roi, o.border, S(0), wv.data());
        calls(f.scharrHoriz, src, srcStep, b.data(), step, roi, o.border, S(0), wh.data());
    } else {
        std::vector<Zeb8u> wv = work_for(calls, f.sobelVertSize, roi, o.mask_code());
        std::vector<Zeb8u> wh = work_for(calls, f.sobelHorizSize, roi, o.mask_code());
        calls(f.sobelVert, src, srcStep, a.data(), step, roi, o.mask_code(), o.border, S(0), wv.data());
        calls(f.sobelHoriz, src, srcStep, b.data(), step, roi, o.mask_code(), o.border, S(0), wh.data());
    }
    for (std::size_t i = 0; i < n; ++i) mag[i] = std::fabs(float(a[i])) + std::fabs(float(b[i]));
    return mag;
}

std::vector<float> to_float(const Image& img) {
    std::vector<float> v(img.data.size() / img.bytesPerSample);
    for (std::size_t i = 0; i < v.size(); ++i) v[i] = float(sample(img, i));
    return v;
}

// Lowpass of every channel, one plane at a time: the 8-bit form, or the
// single-precision form rounded back to 16 bits.
void lowpass(LibCalls& calls, const Image& img, const Options& o, Image& out) {
    const ZebiSize roi{img.width, img.height};
    const std::size_t n = std::size_t(img.width) * img.height;
    out = Image(img.width, img.height, img.channels, img.bytesPerSample);
    if (img.bytesPerSample == 1) {
        std::vector<Zeb8u> w = work_for(calls, ZCLI_FN(zebiFilterLowpassGetBufferSize_8u_C1R), roi, o.mask_code());
        std::vector<Zeb8u> plane(n), result(n);
        for (int c = 0; c < img.channels && calls.ok(); ++c) {
            for (std::size_t i = 0; i < n; ++i) plane[i] = img.data[i * img.channels + c];
            calls(ZCLI_FN(zebiFilterLowpassBorder_8u_C1R), plane.data(), img.width, result.data(), img.width, roi,
                  o.mask_code(), o.border, Zeb8u(0), w.data());
            for (std::size_t i = 0; i < n; ++i) out.data[i * img.channels + c] = result[i];
        }
        return;
    }
    std::vector<Zeb8u> w = work_for(calls, ZCLI_FN(zebiFilterLowpassGetBufferSize_32f_C1R), roi, o.mask_code());
    const std::vector<float> all = to_float(img);
    std::vector<float> plane(n), result(n);
    const int step = img.width * int(sizeof(float));
    for (int c = 0; c < img.channels && calls.ok(); ++c) {
        for (std::size_t i = 0; i < n; ++i) plane[i] = all[i * img.channels + c];
        calls(ZCLI_FN(zebiFilterLowpassBorder_32f_C1R), plane.data(), step, result.data(), step, roi, o.mask_code(),
              o.border, 0.f, w.data());
        for (std::size_t i = 0; i < n; ++i)
            out.ptr<Zeb16u>()[i * img.channels + c] = Zeb16u(std::lround(std::clamp(result[i], 0.f, 65535.f)));
    }
}

// Gaussian of a grey or colour image at its own depth.
void gauss(LibCalls& calls, const Image& img, const Options& o, Image& out) {
    const ZebiSize roi{img.width, img.height};
    const Zeb32u k = Zeb32u(o.kernel_size());
    const bool wide = img.bytesPerSample == 2;
    int specBytes = 0, bufBytes = 0;
    if (!calls(ZCLI_FN(zebiFilterGaussianGetBufferSize), roi, k, wide ? zeb16u : zeb8u, img.channels, &specBytes,
               &bufBytes))
        return;
    std::vector<Zeb8u> spec(static_cast<std::size_t>(specBytes)), buf(static_cast<std::size_t>(bufBytes));
    auto* s = reinterpret_cast<ZebFilterGaussianSpec*>(spec.data());
    if (!calls(ZCLI_FN(zebiFilterGaussianInit), roi, k, o.sigma, o.border, wide ? zeb16u : zeb8u, img.channels, s,
               buf.data()))
        return;
    out = Image(img.width, img.height, img.channels, img.bytesPerSample);
    if (wide && img.channels == 3) {
        const Zeb16u zero[3] = {0, 0, 0};
        calls(ZCLI_FN(zebiFilterGaussianBorder_16u_C3R), img.ptr<Zeb16u>(), img.step(), out.ptr<Zeb16u>(), out.step(),
              roi, zero, s, buf.data());
    } else if (wide) {
        calls(ZCLI_FN(zebiFilterGaussianBorder_16u_C1R), img.ptr<Zeb16u>(), img.step(), out.ptr<Zeb16u>(), out.step(),
              roi, Zeb16u(0), s, buf.data());
    } else if (img.channels == 3) {
        const Zeb8u zero[3] = {0, 0, 0};
        calls(ZCLI_FN(zebiFilterGaussianBorder_8u_C3R), img.data.data(), img.step(), out.data.data(), out.step(), roi,
              zero, s, buf.data());
    } else {
        calls(ZCLI_FN(zebiFilterGaussianBorder_8u_C1R), img.data.data(), img.step(), out.data.data(), out.step(), roi,
              Zeb8u(0), s, buf.data());
    }
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

// Parses the arguments; false (with a message) on a usage error. Border
// modes a filter does not take are left for the library to refuse.
bool parse(const std::vector<std::string>& args, Options& o) {
    std::vector<std::string> pos;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a.rfind("--", 0) != 0) {
            pos.push_back(a);
            continue;
        }
        if (a != "--mask" && a != "--border" && a != "--sigma" && a != "--size")
            return usage_error("unknown option " + a);
        if (i + 1 >= args.size()) return usage_error(a + " needs a value");
        const std::string& v = args[++i];
        if (a == "--mask") {
            if (!parse_int(v, o.mask) || (o.mask != 3 && o.mask != 5)) return usage_error("--mask takes 3 or 5");
        } else if (a == "--border") {
            if (!parse_border(v, o.border))
                return usage_error("--border takes const, repl, mirror, mirror-edge or wrap");
            o.borderName = v;
        } else if (a == "--sigma") {
            if (!parse_float(v, o.sigma) || !(o.sigma > 0)) return usage_error("--sigma takes a positive number");
        } else if (!parse_int(v, o.size) || o.size < 3 || o.size % 2 == 0) {
            return usage_error("--size takes an odd number of at least 3");
        }
    }
    if (pos.size() != 3) return false;
    o.filter = pos[0];
    o.in = pos[1];
    o.out = pos[2];
    if (o.filter != "sobel" && o.filter != "scharr" && o.filter != "laplacian" && o.filter != "lowpass" &&
        o.filter != "gauss")
        return usage_error("unknown filter '" + o.filter + "'");
    if (o.filter == "scharr" && o.mask != 3) return usage_error("scharr is 3x3 only");
    return true;
}

// Runs the chosen filter. Smoothing keeps the input's depth and colour
// (alpha is dropped); derivatives give an 8-bit view of the magnitude.
void apply(LibCalls& calls, const Image& input, const Options& o, Image& result) {
    const Image img = drop_alpha(input);
    if (o.filter == "lowpass" || o.filter == "gauss") {
        if (o.filter == "gauss")
            gauss(calls, img, o, result);
        else
            lowpass(calls, img, o, result);
        return;
    }
    const Image g = to_gray(img);
    const ZebiSize roi{g.width, g.height};
    std::vector<float> mag;
    if (g.bytesPerSample == 1) {
        mag = derivative(calls, kForms8u, g.data.data(), g.step(), roi, o);
    } else {
        const std::vector<float> f = to_float(g);
        mag = derivative(calls, kForms32f, f.data(), g.width * int(sizeof(float)), roi, o);
    }
    if (!calls.ok()) return;
    describe(mag, o.filter == "laplacian" ? "|laplacian|" : "|d/dx| + |d/dy|");
    result = to_view8(mag.data(), g.width, g.height);
}

std::string kernel_text(const Options& o) {
    char text[64];
    if (o.filter == "gauss")
        std::snprintf(text, sizeof text, "size %d sigma %g", o.kernel_size(), double(o.sigma));
    else
        std::snprintf(text, sizeof text, "%dx%d", o.mask, o.mask);
    return text;
}

int cmd_filter(const std::vector<std::string>& args) {
    Options o;
    if (!parse(args, o)) return kExitUsage;
    Image in, out;
    std::string err;
    if (!read_image(o.in, in, err)) return fail(err);
    LibCalls calls;
    apply(calls, in, o, out);
    if (!calls.ok()) return calls.fail();
    if (!write_image(o.out, out, err)) return fail(err);
    std::printf("%s %s, border %s, on %dx%d %d-bit in %.3f ms, written to %s (%d-bit)\n", o.filter.c_str(),
                kernel_text(o).c_str(), o.borderName.c_str(), in.width, in.height, 8 * in.bytesPerSample, calls.ms(),
                o.out.c_str(), 8 * out.bytesPerSample);
    return kExitOk;
}
ZCLI_COMMAND("filter", "KIND IMAGE OUT [OPTIONS]", "derivative and smoothing filters with borders",
             "KIND is sobel, scharr, laplacian, lowpass or gauss.\n"
             "  --mask 3|5\tmask size of sobel, laplacian and lowpass (default 3; scharr is 3x3 only)\n"
             "  --border MODE\tconst (zero), repl (default), mirror, mirror-edge or wrap; gauss takes const or "
             "repl\n"
             "  --sigma S\tgauss: standard deviation (default 1.5)\n"
             "  --size K\tgauss: odd kernel length of at least 3 (default 2 * ceil(3 * S) + 1)\n"
             "sobel and scharr write |d/dx| + |d/dy|, laplacian its magnitude, each scaled to 8 bits for "
             "viewing. lowpass and gauss keep the image's channels and depth: 16-bit images give 16-bit results "
             "(write them as .png, .pgm or .ppm). 16-bit images are differentiated and lowpass-filtered in single "
             "precision on their exact values; gauss runs at 16 bits.",
             cmd_filter);

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
        LibCalls calls;
        apply(calls, o.filter == "lowpass" || o.filter == "gauss" ? ctx.colour : ctx.frame0, o, out);
        if (!calls.ok()) return calls.fail();
        std::string err;
        if (!write_image(ctx.outDir + "/" + s.file, out, err)) return fail(err);
        std::printf("%s %s in %.3f ms -> %s/%s\n", s.filter, kernel_text(o).c_str(), calls.ms(), ctx.outDir.c_str(),
                    s.file);
    }
    return kExitOk;
}
ZCLI_DEMO_STEP("filters: Sobel, Scharr, Laplacian, lowpass and Gaussian", 20, demo_filter);

}  // namespace
}  // namespace zcli

// SPDX-License-Identifier: Apache-2.0
// zebcv morph: dilation, erosion, opening, closing, top-hat, black-hat and
// gradient with a rectangle, cross or ellipse. 8-bit images run the 8u
// forms (grey, colour), 16-bit grey images the 16u form, 16-bit colour
// images the single-precision form on the exact sample values.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "cli.h"
#include "zebcv.h"

namespace zcli {
namespace {

struct Options {
    std::string op, in, out, shape = "rect";
    int size = 3;
};

const char* const kOps[] = {"dilate", "erode", "open", "close", "tophat", "blackhat", "gradient"};

// The K x K element, one byte per position: a full square, a centred
// cross, or the ellipse inscribed in the square (row half-widths rounded
// from the circle of radius K / 2 about the centre).
std::vector<Zeb8u> element(const std::string& shape, int k) {
    std::vector<Zeb8u> m(std::size_t(k) * k, shape == "rect" ? 1 : 0);
    const int c = k / 2;
    for (int y = 0; y < k; ++y)
        for (int x = 0; x < k; ++x) {
            if (shape == "cross" && (x == c || y == c)) m[std::size_t(y) * k + x] = 1;
            if (shape == "ellipse") {
                const int dy = y - c;
                const double r = k / 2;
                const int dx = r > 0 ? int(std::lround(c * std::sqrt(std::max(0.0, (r * r - dy * dy) / (r * r))))) : 0;
                if (x >= c - dx && x <= c + dx) m[std::size_t(y) * k + x] = 1;
            }
        }
    return m;
}

// One pixel layout: the dilation/erosion and compound forms it runs.
template <class T, class BV>
struct Forms {
    using Op = ZebStatus(const T*, int, T*, int, ZebiSize, ZebiBorderType, BV, const ZebiMorphState*, Zeb8u*);
    using Adv = ZebStatus(const T*, int, T*, int, ZebiSize, ZebiBorderType, BV, const ZebiMorphAdvState*, Zeb8u*);
    Fn<ZebStatus(int, ZebiSize, int*, int*)> size;
    Fn<ZebStatus(int, const Zeb8u*, ZebiSize, ZebiMorphState*, Zeb8u*)> init;
    Fn<Op> dilate, erode;
    Fn<ZebStatus(ZebiSize, ZebiSize, int*, int*)> advSize;
    Fn<ZebStatus(ZebiSize, const Zeb8u*, ZebiSize, ZebiMorphAdvState*, Zeb8u*)> advInit;
    Fn<Adv> open, close, tophat, blackhat, gradient;
};

const Forms<Zeb8u, Zeb8u> kGrey8{
    ZCLI_FN(zebiMorphologyBorderGetSize_8u_C1R), ZCLI_FN(zebiMorphologyBorderInit_8u_C1R),
    ZCLI_FN(zebiDilateBorder_8u_C1R),            ZCLI_FN(zebiErodeBorder_8u_C1R),
    ZCLI_FN(zebiMorphAdvGetSize_8u_C1R),         ZCLI_FN(zebiMorphAdvInit_8u_C1R),
    ZCLI_FN(zebiMorphOpenBorder_8u_C1R),         ZCLI_FN(zebiMorphCloseBorder_8u_C1R),
    ZCLI_FN(zebiMorphTophatBorder_8u_C1R),       ZCLI_FN(zebiMorphBlackhatBorder_8u_C1R),
    ZCLI_FN(zebiMorphGradientBorder_8u_C1R)};
const Forms<Zeb8u, const Zeb8u*> kColour8{
    ZCLI_FN(zebiMorphologyBorderGetSize_8u_C3R), ZCLI_FN(zebiMorphologyBorderInit_8u_C3R),
    ZCLI_FN(zebiDilateBorder_8u_C3R),            ZCLI_FN(zebiErodeBorder_8u_C3R),
    ZCLI_FN(zebiMorphAdvGetSize_8u_C3R),         ZCLI_FN(zebiMorphAdvInit_8u_C3R),
    ZCLI_FN(zebiMorphOpenBorder_8u_C3R),         ZCLI_FN(zebiMorphCloseBorder_8u_C3R),
    ZCLI_FN(zebiMorphTophatBorder_8u_C3R),       ZCLI_FN(zebiMorphBlackhatBorder_8u_C3R),
    ZCLI_FN(zebiMorphGradientBorder_8u_C3R)};
const Forms<Zeb16u, Zeb16u> kGrey16{
    ZCLI_FN(zebiMorphologyBorderGetSize_16u_C1R), ZCLI_FN(zebiMorphologyBorderInit_16u_C1R),
    ZCLI_FN(zebiDilateBorder_16u_C1R),            ZCLI_FN(zebiErodeBorder_16u_C1R),
    ZCLI_FN(zebiMorphAdvGetSize_16u_C1R),         ZCLI_FN(zebiMorphAdvInit_16u_C1R),
    ZCLI_FN(zebiMorphOpenBorder_16u_C1R),         ZCLI_FN(zebiMorphCloseBorder_16u_C1R),
    ZCLI_FN(zebiMorphTophatBorder_16u_C1R),       ZCLI_FN(zebiMorphBlackhatBorder_16u_C1R),
    ZCLI_FN(zebiMorphGradientBorder_16u_C1R)};
const Forms<Zeb32f, const Zeb32f*> kColourF{
    ZCLI_FN(zebiMorphologyBorderGetSize_32f_C3R), ZCLI_FN(zebiMorphologyBorderInit_32f_C3R),
    ZCLI_FN(zebiDilateBorder_32f_C3R),            ZCLI_FN(zebiErodeBorder_32f_C3R),
    ZCLI_FN(zebiMorphAdvGetSize_32f_C3R),         ZCLI_FN(zebiMorphAdvInit_32f_C3R),
    ZCLI_FN(zebiMorphOpenBorder_32f_C3R),         ZCLI_FN(zebiMorphCloseBorder_32f_C3R),
    ZCLI_FN(zebiMorphTophatBorder_32f_C3R),       ZCLI_FN(zebiMorphBlackhatBorder_32f_C3R),
    ZCLI_FN(zebiMorphGradientBorder_32f_C3R)};

// Runs one operation over a whole image with a replicated border.
template <class T, class BV>
void run(LibCalls& calls, const Forms<T, BV>& f, const std::string& op, const std::vector<Zeb8u>& mask, int k,
         const T* src, int srcStep, T* dst, int dstStep, ZebiSize roi) {
    const ZebiSize ms{k, k};
    const T zero[3] = {0, 0, 0};
    BV bv{};
    if constexpr (std::is_pointer_v<BV>) bv = zero;
    int specBytes = 0, bufBytes = 0;
    if (op == "dilate" || op == "erode") {
        if (!calls(f.size, roi.width, ms, &specBytes, &bufBytes)) return;
        std::vector<Zeb8u> spec(static_cast<std::size_t>(specBytes)), buf(static_cast<std::size_t>(bufBytes));
        auto* s = reinterpret_cast<ZebiMorphState*>(spec.data());
        if (!calls(f.init, roi.width, mask.data(), ms, s, buf.data())) return;
        calls(op == "dilate" ? f.dilate : f.erode, src, srcStep, dst, dstStep, roi, zebBorderRepl, bv, s, buf.data());
        return;
    }
    if (!calls(f.advSize, roi, ms, &specBytes, &bufBytes)) return;
    std::vector<Zeb8u> spec(static_cast<std::size_t>(specBytes)), buf(static_cast<std::size_t>(bufBytes));
    auto* s = reinterpret_cast<ZebiMorphAdvState*>(spec.data());
    if (!calls(f.advInit, roi, mask.data(), ms, s, buf.data())) return;
    const auto& g = op == "open" ? f.open : op == "close" ? f.close : op == "tophat" ? f.tophat
                  : op == "blackhat" ? f.blackhat : f.gradient;
    calls(g, src, srcStep, dst, dstStep, roi, zebBorderRepl, bv, s, buf.data());
}

// The operation on an image of one or three channels (alpha dropped), at
// the image's depth.
void apply(LibCalls& calls, const Image& input, const Options& o, Image& out) {
    const Image img = drop_alpha(input);
    const ZebiSize roi{img.width, img.height};
    const std::vector<Zeb8u> mask = element(o.shape, o.size);
    out = Image(img.width, img.height, img.channels, img.bytesPerSample);
    if (img.bytesPerSample == 1 && img.channels == 1)
        run(calls, kGrey8, o.op, mask, o.size, img.ptr<Zeb8u>(), img.step(), out.ptr<Zeb8u>(), out.step(), roi);
    else if (img.bytesPerSample == 1)
        run(calls, kColour8, o.op, mask, o.size, img.ptr<Zeb8u>(), img.step(), out.ptr<Zeb8u>(), out.step(), roi);
    else if (img.channels == 1)
        run(calls, kGrey16, o.op, mask, o.size, img.ptr<Zeb16u>(), img.step(), out.ptr<Zeb16u>(), out.step(), roi);
    else {
        const std::size_t n = std::size_t(img.width) * img.height * 3;
        std::vector<float> a(n), b(n);
        for (std::size_t i = 0; i < n; ++i) a[i] = float(img.ptr<Zeb16u>()[i]);
        const int step = img.width * 3 * int(sizeof(float));
        run(calls, kColourF, o.op, mask, o.size, a.data(), step, b.data(), step, roi);
        for (std::size_t i = 0; i < n; ++i) out.ptr<Zeb16u>()[i] = Zeb16u(std::clamp(b[i], 0.f, 65535.f));
    }
}

bool parse(const std::vector<std::string>& args, Options& o) {
    std::vector<std::string> pos;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a.rfind("--", 0) != 0) {
            pos.push_back(a);
            continue;
        }
        if (a != "--shape" && a != "--size") return usage_error("unknown option " + a);
        if (i + 1 >= args.size()) return usage_error(a + " needs a value");
        const std::string& v = args[++i];
        if (a == "--shape") {
            if (v != "rect" && v != "cross" && v != "ellipse") return usage_error("--shape takes rect, cross or ellipse");
            o.shape = v;
        } else if (!parse_int(v, o.size) || o.size < 1 || o.size > 255) {
            return usage_error("--size takes a number from 1 to 255");
        }
    }
    if (pos.size() != 3) return false;
    o.op = pos[0], o.in = pos[1], o.out = pos[2];
    if (std::find(std::begin(kOps), std::end(kOps), o.op) == std::end(kOps))
        return usage_error("unknown operation '" + o.op + "'");
    return true;
}

int cmd_morph(const std::vector<std::string>& args) {
    Options o;
    if (!parse(args, o)) return kExitUsage;
    Image in, out;
    std::string err;
    if (!read_image(o.in, in, err)) return fail(err);
    LibCalls calls;
    apply(calls, in, o, out);
    if (!calls.ok()) return calls.fail();
    if (!write_image(o.out, out, err)) return fail(err);
    std::printf("%s %s %dx%d, border repl, on %dx%d %d-bit in %.3f ms, written to %s\n", o.op.c_str(), o.shape.c_str(),
                o.size, o.size, in.width, in.height, 8 * in.bytesPerSample, calls.ms(), o.out.c_str());
    return kExitOk;
}

ZCLI_COMMAND("morph", "OP IMAGE OUT [OPTIONS]", "dilation, erosion and compound morphology",
             "OP is dilate, erode, open, close, tophat, blackhat or gradient.\n"
             "  --shape S\trect (default), cross or ellipse\n"
             "  --size K\tside of the K x K element, 1 to 255 (default 3), anchored at its centre\n"
             "The border replicates the edge pixels. Images keep their channels (alpha is dropped) and depth: "
             "8-bit grey and colour, 16-bit grey run at their own depth, 16-bit colour in single precision on "
             "the exact sample values.",
             cmd_morph);

// Gradient and top-hat of the grey frame, closing of the colour scene, and
// the regional maxima of the grey frame rising at least 32 above their
// surroundings (frame minus its reconstruction from frame - 32), scaled.
int demo_morph(const DemoContext& ctx) {
    struct Step {
        const char* op;
        const char* shape;
        int size;
        bool colour;
        const char* file;
    } steps[] = {{"gradient", "ellipse", 3, false, "morph_gradient.png"},
                 {"tophat", "rect", 15, false, "morph_tophat.png"},
                 {"close", "cross", 5, true, "morph_close.png"}};
    std::string err;
    for (const Step& s : steps) {
        Options o;
        o.op = s.op, o.shape = s.shape, o.size = s.size;
        Image out;
        LibCalls calls;
        apply(calls, s.colour ? ctx.colour : ctx.frame0, o, out);
        if (!calls.ok()) return calls.fail();
        if (!write_image(ctx.outDir + "/" + s.file, out, err)) return fail(err);
        std::printf("%s %s %dx%d in %.3f ms -> %s/%s\n", s.op, s.shape, s.size, s.size, calls.ms(), ctx.outDir.c_str(),
                    s.file);
    }
    const Image g = to_gray(drop_alpha(ctx.frame0));
    if (g.bytesPerSample != 1) return kExitOk;
    const ZebiSize roi{g.width, g.height};
    Image domes(g.width, g.height, 1);
    std::vector<Zeb8u> marker(g.data.size());
    for (std::size_t i = 0; i < marker.size(); ++i) marker[i] = Zeb8u(std::max(0, g.data[i] - 32));
    LibCalls calls;
    int bytes = 0;
    if (calls(ZCLI_FN(zebiMorphReconstructGetBufferSize_8u_C1), roi, &bytes)) {
        std::vector<Zeb8u> buf(static_cast<std::size_t>(bytes));
        calls(ZCLI_FN(zebiMorphReconstructDilate_8u_C1IR), g.ptr<Zeb8u>(), g.step(), marker.data(), g.width, roi,
              buf.data(), 1);
    }
    if (!calls.ok()) return calls.fail();
    for (std::size_t i = 0; i < marker.size(); ++i) domes.data[i] = Zeb8u(std::min(255, 8 * (g.data[i] - marker[i])));
    if (!write_image(ctx.outDir + "/morph_domes.png", domes, err)) return fail(err);
    std::printf("reconstruction: domes of height 32 in %.3f ms -> %s/morph_domes.png\n", calls.ms(), ctx.outDir.c_str());
    return kExitOk;
}
ZCLI_DEMO_STEP("morphology: gradient, top-hat, closing, reconstruction domes", 30, demo_morph);

}  // namespace
}  // namespace zcli

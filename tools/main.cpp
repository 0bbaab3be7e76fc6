// zebcv: runs image pipelines built on the library's public C API.
#include <sys/stat.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <algorithm>

#include "cli.h"
#include "zebcv.h"

namespace zcli {

namespace {
std::vector<Command>& command_list() {
    static std::vector<Command> c;
    return c;
}
std::vector<DemoStep>& step_list() {
    static std::vector<DemoStep> s;
    return s;
}
}  // namespace

int add_command(Command c) {
    command_list().push_back(c);
    return 0;
}
int add_demo_step(DemoStep s) {
    step_list().push_back(s);
    return 0;
}
const std::vector<Command>& commands() { return command_list(); }
const std::vector<DemoStep>& demo_steps() { return step_list(); }

int fail(const std::string& message) {
    std::fprintf(stderr, "zebcv: error: %s\n", message.c_str());
    return kExitFailure;
}

int fail_status(const char* call, int status) {
    return fail(std::string(call) + " returned status " + std::to_string(status));
}

bool parse_int(const std::string& s, int& out) {
    char* end = nullptr;
    errno = 0;
    const long v = std::strtol(s.c_str(), &end, 10);
    if (s.empty() || *end || errno || v < INT32_MIN || v > INT32_MAX) return false;
    out = int(v);
    return true;
}

bool parse_float(const std::string& s, float& out) {
    char* end = nullptr;
    const float v = std::strtof(s.c_str(), &end);
    if (s.empty() || *end || !std::isfinite(v)) return false;
    out = v;
    return true;
}

namespace {

void usage(FILE* f) {
    std::fprintf(f, "usage: zebcv COMMAND [ARGS]\n\ncommands:\n");
    for (const Command& c : commands()) {
        const std::string head = std::string(c.name) + " " + c.usage;
        std::fprintf(f, "  %-52s %s\n", head.c_str(), c.summary);
    }
    std::fprintf(f, "\nImages are PNG, JPEG, PGM or PPM. Exit status: 0 success, 1 failure, 2 usage error.\n");
}

int cmd_version(const std::vector<std::string>&) {
    const ZebLibraryVersion* v = zebcvGetLibVersion();
    const uint64_t f = zebGetEnabledCpuFeatures();
    std::printf("%s %s, built %s\n", v->name, v->version, v->buildDate);
    std::printf("version %d.%d.%d build %d, variant %.4s (%s)\n", v->major, v->minor, v->majorBuild, v->build,
                v->targetCpu, v->targetCpu[0] == 'n' ? "SSSE3 with MOVBE" : "SSSE3");
    int32_t cache = 0;
    zebGetMaxCacheSizeB(&cache);
    std::printf("cpu: ssse3=%d movbe=%d avx2=%d, largest data cache %d KiB\n", !!(f & ZEB_CPU_SSSE3),
                !!(f & ZEB_CPU_MOVBE), !!(f & ZEB_CPU_AVX2), cache / 1024);
    return kExitOk;
}
ZCLI_COMMAND("version", "", "print the library version record and the chosen variant", cmd_version);

// A grey test scene: a soft gradient, a bright disc, a dark square and a
// ring, placed by t so that two frames show motion, plus faint noise.
Image make_scene(int w, int h, float t, unsigned seed) {
    Image img(w, h, 1, 1);
    std::srand(seed);
    const float cx = w * (0.35f + 0.1f * t), cy = h * 0.45f, r = h * 0.18f;
    const float sx = w * (0.62f - 0.05f * t), sy = h * (0.30f + 0.04f * t), half = h * 0.12f;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            float v = 60.f + 80.f * x / w + 40.f * y / h;
            const float d = std::hypot(x - cx, y - cy);
            if (d < r) v = 220.f - 30.f * d / r;
            if (std::fabs(x - sx) < half && std::fabs(y - sy) < half) v = 25.f;
            const float ring = std::hypot(x - w * 0.2f, y - h * 0.75f);
            if (ring > h * 0.08f && ring < h * 0.11f) v = 240.f;
            v += float(std::rand() % 7) - 3.f;
            img.data[std::size_t(y) * w + x] = uint8_t(std::clamp(v, 0.f, 255.f));
        }
    return img;
}

Image colourise(const Image& g) {
    Image c(g.width, g.height, 3, 1);
    for (std::size_t i = 0; i < g.data.size(); ++i) {
        c.data[3 * i] = g.data[i];
        c.data[3 * i + 1] = uint8_t(255 - g.data[i]);
        c.data[3 * i + 2] = uint8_t((g.data[i] * 3) / 4 + (i % 64));
    }
    return c;
}

int cmd_demo(const std::vector<std::string>& args) {
    if (args.size() > 1) return kExitUsage;
    DemoContext ctx;
    ctx.outDir = args.empty() ? "zebcv-demo" : args[0];
    if (mkdir(ctx.outDir.c_str(), 0755) != 0 && errno != EEXIST)
        return fail("cannot create " + ctx.outDir + ": " + std::strerror(errno));
    ctx.frame0 = make_scene(640, 480, 0.f, 1);
    ctx.frame1 = make_scene(640, 480, 1.f, 2);
    ctx.colour = colourise(ctx.frame0);
    std::string err;
    for (const auto& [name, img] : {std::pair<const char*, const Image*>{"frame0.png", &ctx.frame0},
                                    {"frame1.png", &ctx.frame1}, {"colour.png", &ctx.colour}})
        if (!write_image(ctx.outDir + "/" + name, *img, err)) return fail(err);
    std::printf("zebcv demo: sample scenes 640x480 written to %s/\n", ctx.outDir.c_str());
    cmd_version({});
    std::vector<DemoStep> steps = demo_steps();
    std::stable_sort(steps.begin(), steps.end(), [](const DemoStep& a, const DemoStep& b) { return a.order < b.order; });
    for (const DemoStep& s : steps) {
        std::printf("\n== %s\n", s.name);
        if (int rc = s.run(ctx)) return rc;
    }
    std::printf("\nall %zu pipelines done\n", steps.size());
    return kExitOk;
}
ZCLI_COMMAND("demo", "[OUTDIR]", "run every pipeline on generated sample scenes (default ./zebcv-demo)", cmd_demo);

}  // namespace
}  // namespace zcli

int main(int argc, char** argv) {
    using namespace zcli;
    if (argc < 2 || !std::strcmp(argv[1], "-h") || !std::strcmp(argv[1], "--help") || !std::strcmp(argv[1], "help")) {
        usage(argc < 2 ? stderr : stdout);
        return argc < 2 ? kExitUsage : kExitOk;
    }
    const std::vector<std::string> args(argv + 2, argv + argc);
    for (const Command& c : commands()) {
        if (std::strcmp(c.name, argv[1]) != 0) continue;
        const int rc = c.run(args);
        if (rc == kExitUsage) std::fprintf(stderr, "usage: zebcv %s %s\n", c.name, c.usage);
        return rc;
    }
    std::fprintf(stderr, "zebcv: unknown command '%s'\n\n", argv[1]);
    usage(stderr);
    return kExitUsage;
}

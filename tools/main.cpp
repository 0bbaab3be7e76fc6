// SPDX-License-Identifier: Apache-2.0
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

std::string status_text(ZebStatus status) {
    return std::string(zebcvGetStatusString(status)) + " (" + std::to_string(status) + ")";
}

int fail_status(const char* call, ZebStatus status) {
    return fail(std::string(call) + " failed: " + status_text(status));
}

void LibCalls::warn(const char* call, ZebStatus st) {
    std::fprintf(stderr, "zebcv: warning: %s: %s\n", call, status_text(st).c_str());
}

bool usage_error(const std::string& message) {
    std::fprintf(stderr, "zebcv: usage: %s\n", message.c_str());
    return false;
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

constexpr int kLineWidth = 80;

// Prints `first`, then text word-wrapped to the line width from column
// `indent` on: on first's own line when first ends before that column,
// else from the next line. Continuation lines are indented alike.
void print_wrapped(FILE* f, const std::string& first, int indent, const std::string& text) {
    std::string line = first;
    if (int(line.size()) + 1 > indent) {
        if (!line.empty()) std::fprintf(f, "%s\n", line.c_str());
        line.clear();
    }
    line.resize(std::size_t(indent), ' ');
    bool empty = true;
    std::size_t i = 0;
    while (i < text.size()) {
        while (i < text.size() && text[i] == ' ') ++i;
        const std::size_t j = std::min(text.find(' ', i), text.size());
        if (i == j) break;
        const std::string word = text.substr(i, j - i);
        if (!empty && int(line.size() + 1 + word.size()) > kLineWidth) {
            std::fprintf(f, "%s\n", line.c_str());
            line.assign(std::size_t(indent), ' ');
            empty = true;
        }
        line += (empty ? "" : " ") + word;
        empty = false;
        i = j;
    }
    std::fprintf(f, "%s\n", line.c_str());
}

void usage(FILE* f) {
    std::fprintf(f, "usage: zebcv COMMAND [ARGS]\n       zebcv COMMAND --help\n       zebcv --version\n\n"
                    "commands:\n");
    std::vector<Command> sorted = commands();
    std::sort(sorted.begin(), sorted.end(),
              [](const Command& a, const Command& b) { return std::strcmp(a.name, b.name) < 0; });
    for (const Command& c : sorted) {
        std::string head = std::string("  ") + c.name;
        if (*c.args) head += std::string(" ") + c.args;
        print_wrapped(f, head, kHelpColumn, c.summary);
    }
    std::fprintf(f, "\n");
    print_wrapped(f, "", 0,
                  "Images are PNG, JPEG, PGM or PPM, 8 or 16 bits per sample. Exit status: 0 success, 1 failure "
                  "(unreadable input, failed library call, unwritable output), 2 usage error.");
}

// zebcv COMMAND --help: the synopsis, the summary, then the command's own
// text, option lines "  --opt VALUE\tdescription" aligned on the column.
void command_help(const Command& c) {
    std::printf("usage: zebcv %s%s%s\n\n", c.name, *c.args ? " " : "", c.args);
    print_wrapped(stdout, "", 0, c.summary);
    const std::string help = c.help;
    std::size_t start = 0;
    if (!help.empty()) std::printf("\n");
    while (start < help.size()) {
        const std::size_t end = std::min(help.find('\n', start), help.size());
        const std::string line = help.substr(start, end - start);
        const std::size_t tab = line.find('\t');
        if (tab == std::string::npos)
            print_wrapped(stdout, "", line.rfind("  ", 0) == 0 ? 2 : 0, line);
        else
            print_wrapped(stdout, line.substr(0, tab), kHelpColumn, line.substr(tab + 1));
        start = end + 1;
    }
}

bool wants_help(const std::string& a) { return a == "--help" || a == "-h"; }

const Command* find_command(const std::string& name) {
    for (const Command& c : commands())
        if (name == c.name) return &c;
    return nullptr;
}

int cmd_version(const std::vector<std::string>& args) {
    if (!args.empty()) return kExitUsage;
    const ZebLibraryVersion* v = zebcvGetLibVersion();
    const uint64_t f = zebGetEnabledCpuFeatures();
    std::printf("%s %s, built %s\n", v->name, v->version, v->buildDate);
    std::printf("version %d.%d.%d build %d, variant %.4s (%s)\n", v->major, v->minor, v->majorBuild, v->build,
                v->targetCpu, v->targetCpu[0] == 'n' ? "SSSE3 with MOVBE" : "SSSE3");
    std::printf("vector target: %s (the best of SSSE3, AVX2 and AVX-512 this processor runs)\n", zebcvGetSimdTarget());
    int32_t cache = 0;
    const int32_t cacheStatus = zebGetMaxCacheSizeB(&cache);
    std::printf("cpu: ssse3=%d movbe=%d avx2=%d avx512=%d, largest data cache ", !!(f & ZEB_CPU_SSSE3),
                !!(f & ZEB_CPU_MOVBE), !!(f & ZEB_CPU_AVX2), !!(f & ZEB_CPU_AVX512F));
    if (cacheStatus == 0)
        std::printf("%d KiB\n", cache / 1024);
    else
        std::printf("not reported\n");
    return kExitOk;
}
ZCLI_COMMAND("version", "", "print the version record, the processor variant and the vector target in use", "",
             cmd_version);

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
    if (args.size() > 1 || (args.size() == 1 && args[0].rfind("-", 0) == 0)) return kExitUsage;
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
ZCLI_COMMAND("demo", "[OUTDIR]", "run every pipeline on generated sample scenes",
             "Writes the sample scenes and every result image to OUTDIR (default ./zebcv-demo) and prints what "
             "each pipeline did, with the time of its library calls.",
             cmd_demo);

}  // namespace
}  // namespace zcli

int main(int argc, char** argv) {
    using namespace zcli;
    if (argc < 2) {
        usage(stderr);
        return kExitUsage;
    }
    const std::string first = argv[1];
    // zebcv --help, zebcv help, zebcv help COMMAND (or --help COMMAND).
    if (wants_help(first) || first == "help") {
        if (argc == 2) {
            usage(stdout);
            return kExitOk;
        }
        const Command* c = argc == 3 ? find_command(argv[2]) : nullptr;
        if (c) {
            command_help(*c);
            return kExitOk;
        }
        std::fprintf(stderr, "zebcv: %s takes one command name, not '%s'%s\n\n", argv[1], argv[2],
                     argc > 3 ? " ..." : "");
        usage(stderr);
        return kExitUsage;
    }
    // --version is the version command.
    const Command* c = find_command(first == "--version" ? "version" : first);
    if (!c) {
        std::fprintf(stderr, "zebcv: unknown command '%s'\n\n", argv[1]);
        usage(stderr);
        return kExitUsage;
    }
    const std::vector<std::string> args(argv + 2, argv + argc);
    for (const std::string& a : args)
        if (wants_help(a)) {
            command_help(*c);
            return kExitOk;
        }
    const int rc = c->run(args);
    if (rc == kExitUsage)
        std::fprintf(stderr, "usage: zebcv %s%s%s\n(zebcv %s --help tells more)\n", c->name, *c->args ? " " : "",
                     c->args, c->name);
    return rc;
}

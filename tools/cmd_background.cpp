// SPDX-License-Identifier: Apache-2.0
// zebcv background: foreground masks and the background image of a frame
// sequence, with one of the library's three background models, and the
// motion history of the foreground.
#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "cli.h"
#include "zebcv.h"

namespace zcli {
namespace {

namespace fs = std::filesystem;

// Frames seen as recent motion in the motion-history image.
constexpr float kHistoryFrames = 15.f;
// Learning rate of the running background of the models without their own
// background image.
constexpr float kBackgroundRate = 0.05f;

bool is_image_name(const fs::path& p) {
    std::string e = p.extension().string();
    std::transform(e.begin(), e.end(), e.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return e == ".png" || e == ".jpg" || e == ".jpeg" || e == ".pgm" || e == ".ppm";
}

// The image files of a folder in name order; false with a message when the
// folder cannot be listed.
bool list_frames(const std::string& dir, std::vector<std::string>& out, std::string& err) {
    std::error_code ec;
    fs::directory_iterator it(dir, ec);
    if (ec) {
        err = "cannot open frame folder " + dir + ": " + ec.message();
        return false;
    }
    for (const fs::directory_entry& e : it)
        if (e.is_regular_file(ec) && is_image_name(e.path())) out.push_back(e.path().string());
    std::sort(out.begin(), out.end());
    return true;
}

// One model over the whole sequence: frame by frame it writes the mask;
// at the end the background image.
class Model {
public:
    virtual ~Model() = default;
    // The first frame (models that learn from it at creation).
    virtual bool start(LibCalls& calls, const Image& f) = 0;
    virtual bool mask(LibCalls& calls, const Image& f, Image& mask) = 0;
    virtual bool background(LibCalls& calls, Image& out) = 0;
};

class Fgmm final : public Model {
public:
    bool start(LibCalls& calls, const Image& f) override {
        roi_ = {f.width, f.height};
        int bytes = 0;
        if (!calls(ZCLI_FN(zebiFGMMGetBufferSize_8u_C3R), roi_, kComponents, &bytes)) return false;
        state_.resize(std::size_t(bytes));
        const ZebFGMMModel m{500, 15.f, 4.f, 75.f, 16.f, 0.9f, 9.f, 0.05f, 127, 1, 0.5f};
        return calls(ZCLI_FN(zebiFGMMInit_8u_C3R), roi_, kComponents, &m, st());
    }
    bool mask(LibCalls& calls, const Image& f, Image& mask) override {
        return calls(ZCLI_FN(zebiFGMMForeground_8u_C3R), f.data.data(), f.step(), mask.data.data(), mask.step(),
                     roi_, st(), nullptr, -1.f);
    }
    bool background(LibCalls& calls, Image& out) override {
        out = Image(roi_.width, roi_.height, 3);
        return calls(ZCLI_FN(zebiFGMMBackground_8u_C3R), out.data.data(), out.step(), roi_, st());
    }

private:
    static constexpr int kComponents = 5;
    ZebFGMMState_8u_C3R* st() { return reinterpret_cast<ZebFGMMState_8u_C3R*>(state_.data()); }
    ZebiSize roi_{};
    std::vector<Zeb8u> state_;
};

// The models without a background image of their own: the program keeps
// a running average of the pixels they call background.
class Averaged : public Model {
public:
    bool background(LibCalls&, Image& out) override {
        out = Image(roi_.width, roi_.height, channels_);
        for (std::size_t i = 0; i < avg_.size(); ++i)
            out.data[i] = Zeb8u(std::clamp(avg_[i] + 0.5f, 0.f, 255.f));
        return true;
    }

protected:
    void start_average(const Image& f) {
        roi_ = {f.width, f.height};
        channels_ = f.channels;
        avg_.assign(f.data.begin(), f.data.end());
    }
    // Moves the average towards the frame where the mask is 0.
    bool average(LibCalls& calls, const Image& f, const Image& mask) {
        still_.resize(f.data.size());
        for (std::size_t i = 0; i < still_.size(); ++i) still_[i] = mask.data[i / std::size_t(channels_)] == 0;
        const int samples = roi_.width * channels_;
        return calls(ZCLI_FN(zebiAddWeighted_8u32f_C1IMR), f.data.data(), samples, still_.data(), samples,
                     avg_.data(), samples * int(sizeof(float)), ZebiSize{samples, roi_.height}, kBackgroundRate);
    }
    ZebiSize roi_{};
    int channels_ = 0;

private:
    std::vector<float> avg_;
    std::vector<Zeb8u> still_;
};

class Gaussian final : public Averaged {
public:
    ~Gaussian() override {
        if (c1_) zebiForegroundGaussianFree_8u_C1R(c1_);
        if (c3_) zebiForegroundGaussianFree_8u_C3R(c3_);
    }
    bool start(LibCalls& calls, const Image& f) override {
        start_average(f);
        const ZebForegroundGaussianModel defaults{};
        if (f.channels == 1)
            return calls(ZCLI_FN(zebiForegroundGaussianInitAlloc_8u_C1R), f.data.data(), f.step(), roi_, &defaults, &c1_);
        return calls(ZCLI_FN(zebiForegroundGaussianInitAlloc_8u_C3R), f.data.data(), f.step(), roi_, &defaults, &c3_);
    }
    bool mask(LibCalls& calls, const Image& f, Image& m) override {
        const bool ok = f.channels == 1 ? calls(ZCLI_FN(zebiForegroundGaussian_8u_C1R), f.data.data(), f.step(),
                                                m.data.data(), m.step(), roi_, c1_, -1.0)
                                        : calls(ZCLI_FN(zebiForegroundGaussian_8u_C3R), f.data.data(), f.step(),
                                                m.data.data(), m.step(), roi_, c3_, -1.0);
        return ok && average(calls, f, m);
    }

private:
    ZebForegroundGaussianState_8u_C1R* c1_ = nullptr;
    ZebForegroundGaussianState_8u_C3R* c3_ = nullptr;
};

class Histogram final : public Averaged {
public:
    ~Histogram() override {
        if (c1_) zebiForegroundHistogramFree_8u_C1R(c1_);
        if (c3_) zebiForegroundHistogramFree_8u_C3R(c3_);
    }
    bool start(LibCalls& calls, const Image& f) override {
        start_average(f);
        const ZebForegroundHistogramModel defaults{};
        if (f.channels == 1)
            return calls(ZCLI_FN(zebiForegroundHistogramInitAlloc_8u_C1R), f.data.data(), f.step(), roi_, &defaults,
                         &c1_);
        return calls(ZCLI_FN(zebiForegroundHistogramInitAlloc_8u_C3R), f.data.data(), f.step(), roi_, &defaults, &c3_);
    }
    bool mask(LibCalls& calls, const Image& f, Image& m) override {
        bool ok;
        if (f.channels == 1)
            ok = calls(ZCLI_FN(zebiForegroundHistogram_8u_C1R), f.data.data(), f.step(), m.data.data(), m.step(), roi_,
                       c1_) &&
                 calls(ZCLI_FN(zebiForegroundHistogramUpdate_8u_C1R), f.data.data(), f.step(), m.data.data(),
                       m.step(), roi_, c1_);
        else
            ok = calls(ZCLI_FN(zebiForegroundHistogram_8u_C3R), f.data.data(), f.step(), m.data.data(), m.step(), roi_,
                       c3_) &&
                 calls(ZCLI_FN(zebiForegroundHistogramUpdate_8u_C3R), f.data.data(), f.step(), m.data.data(),
                       m.step(), roi_, c3_);
        return ok && average(calls, f, m);
    }

private:
    ZebForegroundHistogramState_8u_C1R* c1_ = nullptr;
    ZebForegroundHistogramState_8u_C3R* c3_ = nullptr;
};

// Grey frames run the grey forms, except with the colour-only mixture.
Image prepare(const Image& raw, bool colourOnly) {
    Image f = drop_alpha(raw);
    if (!colourOnly || f.channels == 3) return f;
    Image c(f.width, f.height, 3);
    for (std::size_t i = 0; i < f.data.size(); ++i) c.data[3 * i] = c.data[3 * i + 1] = c.data[3 * i + 2] = f.data[i];
    return c;
}

std::string frame_name(const std::string& dir, std::size_t i) {
    char name[32];
    std::snprintf(name, sizeof name, "/mask_%04zu.png", i);
    return dir + name;
}

struct Result {
    std::size_t frames = 0;
    double foreground = 0;  // mean share of foreground pixels
    double ms = 0;
};

// Runs a model over frames given by a reader, writing masks, the
// background and the motion history into outDir.
template <class Reader>
int run_model(const std::string& modelName, std::size_t count, Reader&& read, const std::string& outDir,
              Result& res) {
    std::unique_ptr<Model> model;
    if (modelName == "fgmm") model = std::make_unique<Fgmm>();
    else if (modelName == "gaussian") model = std::make_unique<Gaussian>();
    else model = std::make_unique<Histogram>();
    LibCalls calls;
    std::string err;
    Image first;
    if (!read(0, first, err)) return fail(err);
    first = prepare(first, modelName == "fgmm");
    if (first.bytesPerSample != 1) return fail("16-bit frames are not supported: convert them to 8-bit");
    if (!model->start(calls, first)) return calls.fail();
    const ZebiSize roi{first.width, first.height};
    Image mask(first.width, first.height, 1);
    std::vector<float> mhi(std::size_t(first.width) * first.height, 0.f);
    std::size_t fgPixels = 0;
    for (std::size_t i = 0; i < count; ++i) {
        Image f;
        if (i == 0) {
            f = first;
        } else {
            if (!read(i, f, err)) return fail(err);
            f = prepare(f, modelName == "fgmm");
            if (f.width != first.width || f.height != first.height || f.channels != first.channels ||
                f.bytesPerSample != 1)
                return fail("frame " + std::to_string(i) + " differs in size, channels or depth from the first");
        }
        if (!model->mask(calls, f, mask)) return calls.fail();
        if (!calls(ZCLI_FN(zebiUpdateMotionHistory_8u32f_C1IR), mask.data.data(), mask.step(), mhi.data(),
                   int(first.width * sizeof(float)), roi, float(i + 1), kHistoryFrames))
            return calls.fail();
        fgPixels += std::size_t(std::count_if(mask.data.begin(), mask.data.end(), [](Zeb8u v) { return v == 255; }));
        if (!write_image(frame_name(outDir, i), mask, err)) return fail(err);
    }
    Image bg;
    if (!model->background(calls, bg)) return calls.fail();
    if (!write_image(outDir + "/background.png", bg, err)) return fail(err);
    // Recent motion bright, older motion darker, none black.
    Image motion(first.width, first.height, 1);
    const float now = float(count);
    for (std::size_t i = 0; i < mhi.size(); ++i)
        motion.data[i] = mhi[i] > 0.f ? Zeb8u(255.f * (1.f - (now - mhi[i]) / (kHistoryFrames + 1.f))) : 0;
    if (!write_image(outDir + "/motion.png", motion, err)) return fail(err);
    res.frames = count;
    res.foreground = double(fgPixels) / (double(count) * double(mask.data.size()));
    res.ms = calls.ms();
    return kExitOk;
}

bool make_dir(const std::string& d, std::string& err) {
    if (mkdir(d.c_str(), 0755) == 0 || errno == EEXIST) return true;
    err = "cannot create " + d + ": " + std::strerror(errno);
    return false;
}

int cmd_background(const std::vector<std::string>& args) {
    std::vector<std::string> pos;
    std::string modelName = "fgmm";
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--model" && i + 1 < args.size()) {
            modelName = args[++i];
            if (modelName != "fgmm" && modelName != "gaussian" && modelName != "histogram")
                return usage_error("--model takes fgmm, gaussian or histogram, not " + modelName), kExitUsage;
        } else if (args[i].rfind("-", 0) == 0) {
            return usage_error("unknown option " + args[i]), kExitUsage;
        } else {
            pos.push_back(args[i]);
        }
    }
    if (pos.size() != 2) return kExitUsage;
    std::vector<std::string> files;
    std::string err;
    if (!list_frames(pos[0], files, err)) return fail(err);
    if (files.empty()) return fail("no frame images (.png, .jpg, .pgm, .ppm) in " + pos[0]);
    if (!make_dir(pos[1], err)) return fail(err);
    Result r;
    auto read = [&](std::size_t i, Image& img, std::string& e) { return read_image(files[i], img, e); };
    if (int rc = run_model(modelName, files.size(), read, pos[1], r)) return rc;
    std::printf("%zu frames, model %s: %.2f%% of pixels foreground on average; library calls %.3f ms (%.3f ms a "
                "frame)\nmasks mask_0000.png.., background.png and motion.png written to %s\n",
                r.frames, modelName.c_str(), 100.0 * r.foreground, r.ms, r.ms / double(r.frames), pos[1].c_str());
    return kExitOk;
}
ZCLI_COMMAND("background", "FRAMES OUT_DIR [--model M]", "foreground masks and background of a frame sequence",
             "  --model M\tfgmm (default: adaptive mixture on colour), gaussian (fixed mixture) or histogram "
             "(colour and co-occurrence statistics)\n"
             "FRAMES is a folder of frame images of one size, taken in file-name order. OUT_DIR receives one mask "
             "per frame (mask_NNNN.png: 255 foreground, 127 shadow with fgmm, 0 background), background.png and "
             "motion.png (the motion history of the last 15 frames).",
             cmd_background);

// The demo: a square crossing the colour scene, with sensor noise.
int demo_background(const DemoContext& ctx) {
    const int n = 40, side = 48;
    const std::string dir = ctx.outDir + "/background";
    std::string err;
    if (!make_dir(dir, err)) return fail(err);
    uint32_t seed = 12345;
    auto frame = [&](std::size_t i, Image& img, std::string&) {
        img = ctx.colour;
        for (Zeb8u& v : img.data) {
            seed = seed * 1664525u + 1013904223u;
            v = Zeb8u(std::clamp(int(v) + int(seed >> 29) - 4, 0, 255));
        }
        if (i >= 20) {
            const int x0 = 40 + int(i - 20) * 12, y0 = img.height / 2 - side / 2;
            for (int y = y0; y < y0 + side; ++y)
                for (int x = x0; x < x0 + side && x < img.width; ++x)
                    for (int c = 0; c < 3; ++c) img.data[(std::size_t(y) * img.width + x) * 3 + c] = c == 1 ? 230 : 20;
        }
        return true;
    };
    Result r;
    if (int rc = run_model("fgmm", n, frame, dir, r)) return rc;
    std::printf("%d frames of a square crossing the colour scene: %.2f%% foreground on average, %.3f ms a frame -> "
                "%s/ (masks, background.png, motion.png)\n",
                n, 100.0 * r.foreground, r.ms / n, dir.c_str());
    return kExitOk;
}
ZCLI_DEMO_STEP("background: adaptive mixture and motion history", 90, demo_background);

}  // namespace
}  // namespace zcli

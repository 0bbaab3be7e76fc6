// SPDX-License-Identifier: Apache-2.0
// Runs every registered pair through Google Benchmark and prints, per pair
// and vector target, zebcv and OpenCV times, the ratio zebcv/OpenCV and the
// ratio to memcpy. Accepts Google Benchmark's flags
// (--benchmark_filter=<regex>, --benchmark_min_time=<s>,
// --benchmark_repetitions=<n>: the report then takes the median).
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <random>
#include <set>

#include "bench.h"
#include "core/simd_dispatch.h"

namespace zb {

std::vector<Pair>& registry() {
    static std::vector<Pair> r;
    return r;
}

int add(Pair p) {
    registry().push_back(std::move(p));
    return 0;
}

cv::Mat photograph(const char* name) {
    const std::string file = std::string("/usr/share/doc/opencv-doc/examples/data/") + name;
    const cv::Mat m = cv::imread(file, cv::IMREAD_GRAYSCALE);
    if (m.empty()) {
        std::fprintf(stderr, "bench: %s missing, using random pixels\n", file.c_str());
        return random_mat(CV_8U);
    }
    cv::Mat out;
    cv::resize(m, out, cv::Size(kW, kH), 0, 0, cv::INTER_LINEAR);
    return out;
}

cv::Mat random_mat(int type, double lo, double hi, int w, int h) {
    cv::Mat m(h, w, type);
    cv::RNG rng(1234);
    rng.fill(m, cv::RNG::UNIFORM, lo, hi);
    return m;
}

namespace {

class Collector : public benchmark::ConsoleReporter {
public:
    std::map<std::string, double> ns;  // run name -> real time per iteration
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& r : runs)
            if (r.run_type == Run::RT_Iteration || r.aggregate_name == "median")
                ns[r.benchmark_name()] = r.GetAdjustedRealTime();
        ConsoleReporter::ReportRuns(runs);
    }
};

// The targets each pair's zebcv side runs on, best first: the best this
// machine runs, AVX2 below AVX-512, and the SSSE3 baseline.
std::vector<int32_t> report_targets() {
    std::vector<int32_t> t;
    for (int32_t i = zeb::max_simd_target(); i >= 0; --i)
        if (i == zeb::max_simd_target() || i == zeb::kSimdAvx2 || i == zeb::kSimdSsse3) t.push_back(i);
    return t;
}

// Whether each pair's zebcv lambda made a checked call when it was run
// once before timing: -1 not yet run, 0 no, 1 yes.
std::map<std::string, int> g_checked;

// Runs the zebcv side of a pair once, untimed, on each target before it
// is first timed there.
void verify(const Pair& p, const std::string& target) {
    static std::set<std::string> done;
    running = p.name + " on " + target;
    if (!done.insert(running).second) return;
    const long before = checkedCalls;
    p.zeb();
    int& seen = g_checked[p.name];
    seen = (seen != 0) && checkedCalls > before ? 1 : 0;
}

// Sets the vector target for the life of the scope.
struct TargetScope {
    int32_t saved = zeb_simd_target;
    explicit TargetScope(int32_t t) { zeb_simd_target = t; }
    ~TargetScope() { zeb_simd_target = saved; }
};

std::string lib_size() {
    std::error_code ec;
    const auto n = std::filesystem::file_size(ZB_LIBZEBCV_FILE, ec);
    if (ec) return std::string("libzebcv.so: not found at ") + ZB_LIBZEBCV_FILE;
    char line[512];
    std::snprintf(line, sizeof line, "libzebcv.so: %ju bytes (%.1f KiB), %s", std::uintmax_t(n), double(n) / 1024.0,
                  ZB_LIBZEBCV_FILE);
    return line;
}

}  // namespace
}  // namespace zb

int main(int argc, char** argv) {
    cv::setNumThreads(1);
    const std::vector<int32_t> targets = zb::report_targets();
    std::vector<std::unique_ptr<std::vector<char>>> copies;
    for (zb::Pair& p : zb::registry()) {
        zb::g_checked[p.name] = -1;
        for (int32_t t : targets) {
            const std::string tname = zeb::simd_target_name(t);
            benchmark::RegisterBenchmark((p.name + "/zebcv/" + tname).c_str(), [&p, t, tname](benchmark::State& s) {
                zb::TargetScope scope(t);
                zb::verify(p, tname);
                for (auto _ : s) p.zeb();
            })->Unit(benchmark::kMicrosecond);
        }
        benchmark::RegisterBenchmark((p.name + "/opencv").c_str(), [&p](benchmark::State& s) {
            for (auto _ : s) p.ocv();
        })->Unit(benchmark::kMicrosecond);
        if (p.bytes) {
            // Half the bytes are read, half written: copy bytes/2.
            copies.push_back(std::make_unique<std::vector<char>>(p.bytes, 1));
            std::vector<char>* buf = copies.back().get();
            benchmark::RegisterBenchmark((p.name + "/memcpy").c_str(), [buf](benchmark::State& s) {
                const std::size_t half = buf->size() / 2;
                for (auto _ : s) {
                    std::memcpy(buf->data() + half, buf->data(), half);
                    benchmark::ClobberMemory();
                }
            })->Unit(benchmark::kMicrosecond);
        }
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    std::printf("%s\nzebcv target chosen at load: %s\n", zb::lib_size().c_str(),
                zeb::simd_target_name(zeb_simd_target));
    zb::Collector rep;
    benchmark::RunSpecifiedBenchmarks(&rep);

    std::printf("\n%s\n", zb::lib_size().c_str());
    std::printf("%-40s %-8s %11s %11s %9s %9s\n", "function (1920x1080, 1 thread)", "target", "zebcv us", "opencv us",
                "zeb/ocv", "zeb/copy");
    int unchecked = 0;
    for (const zb::Pair& p : zb::registry()) {
        const auto o = rep.ns.find(p.name + "/opencv");
        const auto c = rep.ns.find(p.name + "/memcpy");
        const bool checked = zb::g_checked[p.name] == 1;
        bool first = true;
        for (int32_t t : targets) {
            const auto z = rep.ns.find(p.name + "/zebcv/" + zeb::simd_target_name(t));
            if (z == rep.ns.end()) continue;
            char ocv[16] = "-", ratio[16] = "-", copy[16] = "-";
            if (o != rep.ns.end()) {
                if (first) std::snprintf(ocv, sizeof ocv, "%.1f", o->second);
                std::snprintf(ratio, sizeof ratio, "%.2f", z->second / o->second);
            }
            if (c != rep.ns.end()) std::snprintf(copy, sizeof copy, "%.2f", z->second / c->second);
            if (!checked) std::snprintf(ratio, sizeof ratio, "unchecked");
            std::printf("%-40s %-8s %11.1f %11s %9s %9s\n", first ? p.name.c_str() : "", zeb::simd_target_name(t),
                        z->second, ocv, ratio, copy);
            first = false;
        }
        if (!first && !checked) ++unchecked;
    }
    benchmark::Shutdown();
    if (unchecked) {
        std::printf("\n%d pair(s) time zebcv calls whose status nobody checks: wrap each call in ZB_CHECK(...)\n",
                    unchecked);
        return 1;
    }
    return 0;
}

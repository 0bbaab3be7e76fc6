// Runs every registered pair through Google Benchmark and prints, per pair,
// zebcv and OpenCV times, the ratio zebcv/OpenCV and the ratio to memcpy.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <opencv2/core.hpp>
#include <random>

#include "bench.h"

namespace zb {

std::vector<Pair>& registry() {
    static std::vector<Pair> r;
    return r;
}

int add(Pair p) {
    registry().push_back(std::move(p));
    return 0;
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

}  // namespace
}  // namespace zb

int main(int argc, char** argv) {
    cv::setNumThreads(1);
    std::vector<std::unique_ptr<std::vector<char>>> copies;
    for (zb::Pair& p : zb::registry()) {
        benchmark::RegisterBenchmark((p.name + "/zebcv").c_str(), [&p](benchmark::State& s) {
            for (auto _ : s) p.zeb();
        })->Unit(benchmark::kMicrosecond);
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
    zb::Collector rep;
    benchmark::RunSpecifiedBenchmarks(&rep);
    std::printf("\n%-44s %11s %11s %9s %9s\n", "function (1920x1080, 1 thread)", "zebcv us", "opencv us",
                "zeb/ocv", "zeb/copy");
    for (const zb::Pair& p : zb::registry()) {
        const auto z = rep.ns.find(p.name + "/zebcv"), o = rep.ns.find(p.name + "/opencv");
        if (z == rep.ns.end() || o == rep.ns.end()) continue;
        const auto c = rep.ns.find(p.name + "/memcpy");
        char copy[16] = "-";
        if (c != rep.ns.end()) std::snprintf(copy, sizeof copy, "%.2f", z->second / c->second);
        std::printf("%-44s %11.1f %11.1f %9.2f %9s\n", p.name.c_str(), z->second, o->second, z->second / o->second,
                    copy);
    }
    benchmark::Shutdown();
    return 0;
}

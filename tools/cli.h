// SPDX-License-Identifier: Apache-2.0
// The zebcv command-line program: commands and demo steps register
// themselves from their own source files.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "image_io.h"
#include "zebcv.h"

namespace zcli {

// Exit codes of the program.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;  // unreadable input, failed call, unwritable output
inline constexpr int kExitUsage = 2;    // wrong arguments

// Width of the left column of every help listing; synopses and option
// names longer than it put their description on the next line.
inline constexpr int kHelpColumn = 34;

struct Command {
    const char* name;
    const char* args;     // synopsis of the arguments, e.g. "A B OUT"
    const char* summary;  // one sentence
    // What `zebcv NAME --help` adds below the synopsis and summary: option
    // lines "  --opt VALUE\tdescription" and free text; may be empty.
    const char* help;
    int (*run)(const std::vector<std::string>& args);
};

// What the demo hands every step: sample images and the output folder.
struct DemoContext {
    Image frame0;  // 8-bit grey scene
    Image frame1;  // the same scene a moment later: objects have moved
    Image colour;  // 8-bit three-channel scene
    std::string outDir;
};

struct DemoStep {
    const char* name;
    int order;  // steps run in ascending order
    int (*run)(const DemoContext& ctx);
};

int add_command(Command c);
int add_demo_step(DemoStep s);
const std::vector<Command>& commands();
const std::vector<DemoStep>& demo_steps();

// Prints "zebcv: error: ..." to stderr and returns kExitFailure.
int fail(const std::string& message);
// Prints "zebcv: error: CALL failed: zebStsSizeErr (-6)" and returns
// kExitFailure.
int fail_status(const char* call, ZebStatus status);
// "zebStsSizeErr (-6)".
std::string status_text(ZebStatus status);
// Prints "zebcv: usage: ..." to stderr and returns false, for parsers.
bool usage_error(const std::string& message);
// Parses an integer or float option value; false on junk.
bool parse_int(const std::string& s, int& out);
bool parse_float(const std::string& s, float& out);

// A library function with its name, for LibCalls: ZCLI_FN(zebiAbsDiff_8u_C1R).
template <class F>
struct Fn {
    F* f;
    const char* name;
};
#define ZCLI_FN(f) ::zcli::Fn<decltype(f)>{f, #f}

// Runs library calls, adds up the wall-clock time spent inside them alone
// (the program's own allocation, conversion and copies are not counted),
// and keeps the first failure. Once a call has failed, later calls are
// skipped. A warning (positive status) is printed and the run goes on.
class LibCalls {
public:
    template <class F, class... A>
    bool operator()(Fn<F> fn, A&&... args) {
        if (status_ < 0) return false;
        const auto t0 = std::chrono::steady_clock::now();
        const ZebStatus st = fn.f(std::forward<A>(args)...);
        ms_ += std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count();
        if (st > 0) warn(fn.name, st);
        if (st < 0) {
            status_ = st;
            failed_ = fn.name;
        }
        return st >= 0;
    }
    bool ok() const { return status_ >= 0; }
    double ms() const { return ms_; }
    // Reports the failed call (fail_status) and returns kExitFailure.
    int fail() const { return fail_status(failed_, status_); }

private:
    static void warn(const char* call, ZebStatus st);
    double ms_ = 0;
    ZebStatus status_ = 0;
    const char* failed_ = "";
};

}  // namespace zcli

#define ZCLI_CAT2(a, b) a##b
#define ZCLI_CAT(a, b) ZCLI_CAT2(a, b)
#define ZCLI_COMMAND(...) static const int ZCLI_CAT(zcli_cmd_, __LINE__) = zcli::add_command(zcli::Command{__VA_ARGS__})
#define ZCLI_DEMO_STEP(...) static const int ZCLI_CAT(zcli_demo_, __LINE__) = zcli::add_demo_step(zcli::DemoStep{__VA_ARGS__})

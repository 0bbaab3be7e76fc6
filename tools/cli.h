// The zebcv command-line program: commands and demo steps register
// themselves from their own source files.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "image_io.h"

namespace zcli {

// Exit codes of the program.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;  // unreadable input, failed call, unwritable output
inline constexpr int kExitUsage = 2;    // wrong arguments

struct Command {
    const char* name;
    const char* usage;    // arguments, e.g. "A B OUT"
    const char* summary;  // one line
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

// Prints "error: ..." to stderr and returns kExitFailure.
int fail(const std::string& message);
// Prints the status name of a failed library call and returns kExitFailure.
int fail_status(const char* call, int status);
// Parses an integer or float option value; false on junk.
bool parse_int(const std::string& s, int& out);
bool parse_float(const std::string& s, float& out);

// Wall-clock milliseconds of f().
template <class F>
double time_ms(F&& f) {
    const auto t0 = std::chrono::steady_clock::now();
    f();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count();
}

}  // namespace zcli

#define ZCLI_CAT2(a, b) a##b
#define ZCLI_CAT(a, b) ZCLI_CAT2(a, b)
#define ZCLI_COMMAND(...) static const int ZCLI_CAT(zcli_cmd_, __LINE__) = zcli::add_command(zcli::Command{__VA_ARGS__})
#define ZCLI_DEMO_STEP(...) static const int ZCLI_CAT(zcli_demo_, __LINE__) = zcli::add_demo_step(zcli::DemoStep{__VA_ARGS__})

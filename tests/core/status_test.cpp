// SPDX-License-Identifier: Apache-2.0
// Status names: every status the public header defines is named by its
// enumerator, through both variants; anything else gets one fixed text.
#include <gtest/gtest.h>

#include <cctype>
#include <fstream>
#include <limits>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include "harness.h"

ZEB_TEST_TABLE(zebcvGetStatusString);

namespace {

// The status enumerators of include/zebcv/types.h, read from the header
// itself so that a status added there without a name is caught here.
std::map<std::string, int> header_statuses() {
    std::string path = __FILE__;
    path = path.substr(0, path.rfind("/tests/")) + "/include/zebcv/types.h";
    std::ifstream in(path);
    EXPECT_TRUE(in) << "cannot read " << path;
    std::stringstream text;
    text << in.rdbuf();
    const std::string s = text.str();
    // Entries read "zebStsName = value".
    std::map<std::string, int> out;
    for (std::size_t at = s.find("zebSts"); at != std::string::npos; at = s.find("zebSts", at)) {
        std::size_t end = at;
        while (end < s.size() && std::isalnum(static_cast<unsigned char>(s[end]))) ++end;
        const std::string name = s.substr(at, end - at);
        std::istringstream rest(s.substr(end, 32));
        char eq = 0;
        int value = 0;
        if (rest >> eq >> value && eq == '=') out[name] = value;
        at = end;
    }
    return out;
}

// Every status of the header is named by its enumerator, values do not
// repeat, and anything else gets one fixed text, through both variants.
TEST(StatusString, HeaderStatusesAreNamedAndOthersAreUnknown) {
    const std::map<std::string, int> statuses = header_statuses();
    // The header's table as compiled agrees with the text read above.
    ASSERT_EQ(statuses.at("zebStsSizeErr"), zebStsSizeErr);
    ASSERT_EQ(statuses.at("zebStsDivByZero"), zebStsDivByZero);
    ASSERT_GE(statuses.size(), 21u);
    std::set<int> values;
    for (const auto& [name, value] : statuses) {
        EXPECT_TRUE(values.insert(value).second) << name << " repeats the value " << value;
        for (int v = 0; v < 2; ++v) EXPECT_STREQ(zeb_tbl_zebcvGetStatusString[v](value), name.c_str()) << value;
    }
    for (int32_t s : {1, -1, -7, 5, -109, -9996, -9998, std::numeric_limits<int32_t>::min(),
                      std::numeric_limits<int32_t>::max()})
        for (int v = 0; v < 2; ++v) EXPECT_STREQ(zeb_tbl_zebcvGetStatusString[v](s), "unknown status") << s;
}

}  // namespace

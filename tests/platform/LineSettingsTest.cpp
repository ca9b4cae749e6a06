#include "platform/LineSettings.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

TEST(LineSettings, ReadsEveryFieldOfAUsableText) {
    using enum Parity;
    const std::pair<const char*, LineSettings> cases[] = {
        {"38400,N,8,1", {38400, None, 8, 1}}, {"300,E,7,2", {300, Even, 7, 2}},
        {"600,O,6,1", {600, Odd, 6, 1}},      {"1200,N,5,1", {1200, None, 5, 1}},
        {"2400,N,8,2", {2400, None, 8, 2}},   {"4800,E,8,1", {4800, Even, 8, 1}},
        {"9600,O,7,1", {9600, Odd, 7, 1}},    {"19200,N,8,1", {19200, None, 8, 1}},
        {"57600,N,8,1", {57600, None, 8, 1}}, {"115200,N,8,1", {115200, None, 8, 1}}};
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(parseLineSettings(text), expected) << text;
}

/// In whichever field; 4294967596 is 300 when it is cut to 32 bits.
TEST(LineSettings, RefusesAnythingElse) {
    const std::vector<std::string> unusable[] = {{"", "38401", "038400", "+38400", "-300", "0",
                                                  "3840", "384000", "230400", "4294967596",
                                                  "38400.0", " 38400"},
                                                 {"", "n", "M", "NE", " N"},
                                                 {"", "4", "9", "8.0"},
                                                 {"", "0", "3", "1.5", "11", "1 ", "1,", "1,0"}};
    for (std::size_t field = 0; field < 4; ++field)
        for (const std::string& text : unusable[field]) {
            std::string fields[] = {"38400", "N", "8", "1"};
            fields[field] = text;
            const std::string line =
                fields[0] + "," + fields[1] + "," + fields[2] + "," + fields[3];
            EXPECT_FALSE(parseLineSettings(line)) << line;
        }
    for (const char* text : {"", ",", ",,,", "38400", "38400,N", "38400,N,8", "38400;N;8;1",
                             "38400N81", "N,38400,8,1"})
        EXPECT_FALSE(parseLineSettings(text)) << text;
    EXPECT_FALSE(parseLineSettings(std::string_view("38400,N,8,1\0", 12)));
}

} // namespace
} // namespace orvane::test

#include "platform/LineSettings.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

TEST(LineSettings, ReadsEveryFieldOfAUsableText) {
    const struct {
        const char* text;
        LineSettings expected;
    } cases[] = {
        {"38400,N,8,1", {38400, Parity::None, 8, 1}},
        {"300,E,7,2", {300, Parity::Even, 7, 2}},
        {"600,O,6,1", {600, Parity::Odd, 6, 1}},
        {"1200,N,5,1", {1200, Parity::None, 5, 1}},
        {"2400,N,8,2", {2400, Parity::None, 8, 2}},
        {"4800,E,8,1", {4800, Parity::Even, 8, 1}},
        {"9600,O,7,1", {9600, Parity::Odd, 7, 1}},
        {"19200,N,8,1", {19200, Parity::None, 8, 1}},
        {"57600,N,8,1", {57600, Parity::None, 8, 1}},
        {"115200,N,8,1", {115200, Parity::None, 8, 1}},
    };
    for (const auto& [text, expected] : cases) {
        const auto read = parseLineSettings(text);
        ASSERT_TRUE(read) << text;
        EXPECT_EQ(*read, expected) << text;
    }
}

TEST(LineSettings, RefusesAnythingElse) {
    const char* const cases[] = {
        "",
        ",",
        ",,,",
        "38400",
        "38400,N",
        "38400,N,8",
        "38400,N,8,",
        "38400,N,8,1,",
        "38400,N,8,1,0",
        "38400,N,8,1 ",
        " 38400,N,8,1",
        "38400, N,8,1",
        "38400;N;8;1",
        "38400N81",
        "38401,N,8,1",
        "038400,N,8,1",
        "+38400,N,8,1",
        "-300,N,8,1",
        "0,N,8,1",
        "3840,N,8,1",
        "384000,N,8,1",
        "230400,N,8,1",
        "4294967596,N,8,1", // 300 when it is cut to 32 bits
        "38400.0,N,8,1",
        "38400,n,8,1",
        "38400,M,8,1",
        "38400,,8,1",
        "38400,NE,8,1",
        "38400,N,4,1",
        "38400,N,9,1",
        "38400,N,8.0,1",
        "38400,N,8,0",
        "38400,N,8,3",
        "38400,N,8,1.5",
        "38400,N,8,11",
        "N,38400,8,1",
    };
    for (const char* text : cases)
        EXPECT_FALSE(parseLineSettings(text)) << text;
    EXPECT_FALSE(parseLineSettings(std::string_view("38400,N,8,1\0", 12)));
}

} // namespace
} // namespace orvane::test

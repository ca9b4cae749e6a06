#include "platform/JsonText.h"

#include "platform/Conversions.h"

#include <gtest/gtest.h>

#include <cmath>

namespace orvane::test {
namespace {

/// The ill-formed ones are those of table 3-8 and its neighbours in the Unicode standard.
TEST(JsonText, WritesAnyBytesAsAString) {
    const std::pair<std::string, std::string> cases[] = {
        {"plain", "\"plain\""},
        {"", "\"\""},
        {"a\"b\\c\nd\te\x01", "\"a\\\"b\\\\c\\nd\\u0009e\\u0001\""},
        {std::string("\0", 1), "\"\\u0000\""},
        {"\x7F \xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80",
         "\"\x7F \xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80\""},
        {"\x80", "\"\xEF\xBF\xBD\""},
        {"\xC0\xAF", "\"\xEF\xBF\xBD\xEF\xBF\xBD\""},                 // longer than needed
        {"\xE0\x80\xAF", "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\""}, // the same
        {"\xED\xA0\x80", "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\""}, // a surrogate
        {"\xE2\x82", "\"\xEF\xBF\xBD\xEF\xBF\xBD\""},                 // cut off
        {"\xE2\x82x", "\"\xEF\xBF\xBD\xEF\xBF\xBDx\""},
        {"\xF4\x90\x80\x80", "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\""}};
    for (const auto& [bytes, text] : cases)
        EXPECT_EQ(jsonString(bytes), text);
}

TEST(JsonText, WritesOnlyFiniteNumbers) {
    const std::pair<double, const char*> cases[] = {
        {0, "0.0"},      {-0.04, "0.0"},           {-0.25, "-0.3"},
        {35.96, "36.0"}, {1234567.0, "1234567.0"}, {1e300, "null"},
        {NAN, "null"},   {INFINITY, "null"}};
    for (const auto& [number, text] : cases)
        EXPECT_EQ(jsonDecimal(number), text);
}

TEST(JsonText, LaysObjectsOutLineByLine) {
    EXPECT_EQ(
        jsonObject(
            {{"a", "1"}, {"b", jsonArray({jsonObject({{"c", "null"}})})}, {"d", jsonArray({})}}),
        "{\n  \"a\": 1,\n  \"b\": [\n    {\n      \"c\": null\n    }\n  ],\n  \"d\": []\n}");
}

TEST(Conversions, WriteMomentsWithTheirOffset) {
    const WallTime time = WallTime(std::chrono::local_days(std::chrono::year(2006) / 11 / 15)) +
                          12h + 30min + 59s + 999ms;
    EXPECT_EQ(isoTime(time, 540min), "2006-11-15T12:30:59+09:00");
    EXPECT_EQ(isoTime(time, -210min), "2006-11-15T12:30:59-03:30");
    EXPECT_EQ(isoTime(time, 0min), "2006-11-15T12:30:59+00:00");
    EXPECT_EQ(universalSeconds(time, 0min), 1163593859); // date -u -d "2006-11-15 12:30:59" +%s
    EXPECT_EQ(universalSeconds(time, 540min), 1163593859 - 9 * 3600);
}

} // namespace
} // namespace orvane::test

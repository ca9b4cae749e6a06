#include "platform/JsonText.h"
#include "platform/LineSettings.h"
#include "platform/Page.h"
#include "platform/SystemCalls.h"
#include "platform/qt/QtClock.h"
#include "platform/qt/QtProcess.h"
#include "tests/support/Finish.h"
#include "tests/support/TestStation.h"

#include <cmath>

#include <QCoreApplication>

namespace orvane::test {
namespace {

const std::string kBytes = std::string("a\0b\r\n\x1A", 6) + std::string(200'000, '\xFF');

TEST(FileCopy, CopiesEveryByteAndReplacesAnOlderFile) {
    const TempFolder folder;
    const auto from = folder.path() / std::filesystem::path(u8"空.jpg");
    const auto to = folder.path() / std::filesystem::path(u8"copié.jpg");
    for (const std::string& bytes : {kBytes, std::string()}) {
        writeFile(from, bytes);
        writeFile(to, "older and to be replaced");
        EXPECT_EQ(copyToFinalName(from, to), std::nullopt);
        EXPECT_EQ(contentsOf(to), bytes);
        EXPECT_EQ(contentsOf(from), bytes);
        EXPECT_EQ(listing(folder.path()).size(), 2u);
    }
}

TEST(FileCopy, TellsTheSystemsReasonAndLeavesNothing) {
    const TempFolder folder;
    writeFile(folder.path() / "taken" / "inside", "x");
    const auto before = listing(folder.path());
    EXPECT_TRUE(writeToFinalName(kBytes, folder.path() / "taken"));
    EXPECT_EQ(writeToFinalName(kBytes, folder.path() / "missing" / "file"),
              "No such file or directory");
    EXPECT_EQ(copyToFinalName(folder.path() / "missing", folder.path() / "file"),
              "No such file or directory");
    EXPECT_TRUE(copyToFinalName(folder.path() / "taken", folder.path() / "file"));
    EXPECT_EQ(listing(folder.path()), before);
}

TEST(FileLock, IsHeldByOneAtATime) {
    const TempFolder folder;
    const auto file = folder.path() / "orvane.lock";
    const auto outcomeOf = [](FileLock::Outcome outcome) {
        return std::pair(outcome.isOthers, outcome.fault.has_value());
    };
    {
        FileLock first, second;
        EXPECT_EQ(outcomeOf(first.take(file)), std::pair(false, false));
        EXPECT_EQ(outcomeOf(second.take(file)), std::pair(true, false));
    }
    writeFile(file, "left behind by a killed program");
    FileLock next, impossible;
    EXPECT_EQ(outcomeOf(next.take(file)), std::pair(false, false));
    EXPECT_EQ(outcomeOf(impossible.take(folder.path() / "nowhere" / "orvane.lock")),
              std::pair(false, true));
}

/// A name that no single code page can write, and more than 260 characters in all.
TEST(Paths, AStationRecordsIntoAnyFolder) {
    TestStation s(at(2006, 11, 15, 9, 29));
    auto folder = s.folder.path() / std::filesystem::path(u8"観測 ü Données №1");
    for (int i = 0; i < 5; ++i)
        folder /= std::string(60, static_cast<char>('a' + i));
    std::filesystem::create_directories(folder);
    s.store.values["DataPath/PathDataFile"] = utf8FromPath(folder);
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 31));
    const std::filesystem::path name = "20061115_093000_00.jpg";
    EXPECT_TRUE(std::filesystem::exists(folder / "20061115" / name));
    EXPECT_TRUE(std::filesystem::exists(folder / "Edit" / "20061115" / name));
    EXPECT_TRUE(ErrorLog(folder, s.clock, {}).write("recMessage:SUM ERROR"));
    EXPECT_EQ(contentsOf(folder / "ERROR.LOG"), "2006/11/15 09:31:00 recMessage:SUM ERROR\r\n");
}

/// Programs that every system has: this one itself, which lists its tests, and none.
struct ProcessTest : testing::Test {
    ProcessEnd list(const std::string& tests) {
        for (const char* share : {"GTEST_TOTAL_SHARDS", "GTEST_SHARD_INDEX"})
            qunsetenv(share); // all are listed, whichever share of them this process runs
        process.start(self(), {"--gtest_list_tests", "--gtest_filter=" + tests});
        return finish(process.end(20s));
    }
    static std::filesystem::path self() {
        return QCoreApplication::applicationFilePath().toStdString();
    }

    QtClock clock;
    QtProcess process{clock};
};

TEST_F(ProcessTest, TellsWhatItSaysAndItsExitCode) {
    const ProcessEnd listed = list("ProcessTest.TellsWhatItSays*");
    EXPECT_FALSE(listed.fault) << *listed.fault;
    EXPECT_EQ(listed.code, 0);
    EXPECT_NE(listed.said.find("  TellsWhatItSaysAndItsExitCode"), std::string::npos);
    EXPECT_EQ(list("none").said.find("TellsWhatItSays"), std::string::npos) << "the one before";
}

TEST_F(ProcessTest, WhatCannotBeStartedIsToldByBoth) {
    process.start("no-such-program", {});
    const std::string bytes(100, 'x');
    runEventLoopUntil([&] { return finish(process.write(bytes, 1s)).has_value(); });
    const Fault fault = finish(process.end(20s)).fault;
    EXPECT_TRUE(fault && fault->starts_with("it cannot be started: ")) << fault.value_or("none");
    EXPECT_EQ(process.find("no-such-program"), std::filesystem::path());
    // this one is beside "this program", the tests
    EXPECT_EQ(process.find(self().stem().string()).filename(), self().filename());
}

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

TEST(JsonText, WritesOnlyFiniteNumbersAndALineForEachMember) {
    const std::pair<double, const char*> cases[] = {
        {0, "0.0"},      {-0.04, "0.0"},           {-0.25, "-0.3"},
        {35.96, "36.0"}, {1234567.0, "1234567.0"}, {1e300, "null"},
        {NAN, "null"},   {INFINITY, "null"}};
    for (const auto& [number, text] : cases)
        EXPECT_EQ(jsonDecimal(number), text);
    // objects are laid out line by line
    EXPECT_EQ(
        jsonObject(
            {{"a", "1"}, {"b", jsonArray({jsonObject({{"c", "null"}})})}, {"d", jsonArray({})}}),
        "{\n  \"a\": 1,\n  \"b\": [\n    {\n      \"c\": null\n    }\n  ],\n  \"d\": []\n}");
}

/// 4294967596 is 300 when it is cut to 32 bits.
TEST(LineSettings, AreReadFieldByFieldOrRefused) {
    using enum Parity;
    const std::pair<const char*, LineSettings> cases[] = {{"38400,N,8,1", {38400, None, 8, 1}},
                                                          {"300,E,7,2", {300, Even, 7, 2}},
                                                          {"600,O,6,1", {600, Odd, 6, 1}},
                                                          {"1200,N,5,1", {1200, None, 5, 1}}};
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(parseLineSettings(text), expected) << text;
    const std::vector<std::string> unusable[] = {
        {"", "38401", "038400", "+38400", "-300", "0", "384000", "4294967596", "38400.0", " 38400"},
        {"", "n", "M", "NE", " N"},
        {"", "4", "9", "8.0"},
        {"", "0", "3", "1.5", "11", "1 ", "1,", "1,0"}};
    for (std::size_t field = 0; field < 4; ++field)
        for (const std::string& text : unusable[field]) {
            std::string fields[] = {"38400", "N", "8", "1"};
            fields[field] = text;
            const auto line = fields[0] + "," + fields[1] + "," + fields[2] + "," + fields[3];
            EXPECT_FALSE(parseLineSettings(line)) << line;
        }
    for (const char* text : {"", ",", ",,,", "38400", "38400,N,8", "38400;N;8;1", "N,38400,8,1"})
        EXPECT_FALSE(parseLineSettings(text)) << text;
    EXPECT_FALSE(parseLineSettings(std::string_view("38400,N,8,1\0", 12)));
}

TEST(Page, HtmlBecomesWhatAReaderSeesAndPlainTextStays) {
    for (const char* text : {"", "<", "1,2,record/a.jpg,", " NO_DATA\r\n", "a <b> &amp; c"})
        EXPECT_EQ(textOfPage(text), text);
    const std::pair<const char*, const char*> cases[] = {
        {"<html><body>1,2,record/a.jpg,</body></html>", "1,2,record/a.jpg,\n"},
        {"\r\n<!DOCTYPE html><HTML><title>Search</title><BODY>NO_DATA</BODY>", "NO_DATA\n"},
        {"<p>one</p><p>two<br/>three", "one\ntwo\nthree"},
        {"<b>a</b>b <i> c</i>", "ab c"},
        {"<pre>1,2,a.jpg,\n1,2,b.jpg,\n</pre>", "1,2,a.jpg, 1,2,b.jpg,\n"},
        {"<script>if (a < b) '</p>'; </scripture> x</script>seen", "seen"},
        {"<style>p > a {}</style><!-- <p>hidden --> seen", "seen"},
        {"<a title='>' href=\"x>y\">seen</a>", "seen"},
        {"<p>&lt;&#65;&#x42;&amp;&nbsp;&quot;&eacute;&#233;&#0;&#xD800;&", "<AB& \"&eacute;é??&"},
        {"<p>1 < 2 <3 </p>", "1 < 2 <3\n"},
        {"<tr><td>a</td><td>b</td></tr>", "a b\n"}};
    for (const auto& [html, text] : cases)
        EXPECT_EQ(textOfPage(html), text) << html;
    for (const char* unfinished : {"<a", "<!--", "<script>", "<p title='"})
        EXPECT_EQ(textOfPage(unfinished), "") << unfinished;
}

/// What takes a document's builder minutes, and more than is ever read.
TEST(Page, NestingCostsNothing) {
    for (const char* part :
         {"<div>", "<table><tr><td>", "<script></", "<!--", "<!-- --", "&#", "<p '", "</"}) {
        std::string page = "<html>";
        while (page.size() < 2'000'000)
            page += part;
        EXPECT_LE(textOfPage(page).size(), 256U * 1024) << part;
    }
}

} // namespace
} // namespace orvane::test

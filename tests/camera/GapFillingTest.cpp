#include "tests/support/FakeCameraStore.h"
#include "tests/support/TestStation.h"

#include <cstring>
#include <gtest/gtest.h>

namespace orvane::test {
namespace {

using namespace std::string_view_literals;

/// A station whose camera records a picture a minute, seven seconds past, all day.
struct Filling : TestStation {
    explicit Filling(WallTime now = at(2006, 11, 15, 8, 59)) : TestStation(now) {
        stored.record("20061115", 0, 24);
        gapBrowser.answer = [this](const std::string& url) {
            return storeAnswers ? stored.search(url) : std::string();
        };
        gapHttp.answer = [this](const std::string& url) { return stored.picture(url); };
        http.answer = [this](const std::string&) {
            return liveAnswers ? FakeHttp::picture(std::to_string(++live))
                               : FakeHttp::failed("refused");
        };
    }
    void runUntil(int hour, int minute, int second = 0) {
        clock.runUntil(at(2006, 11, 15, hour, minute, second));
    }
    std::size_t askings() const { return gapBrowser.pages().size(); }
    std::vector<std::string> images() const { return imagesOf("20061115"); }
    std::ptrdiff_t fetchedLater() const {
        return std::ranges::count_if(
            images(), [](const std::string& name) { return name.ends_with("07_00.jpg"); });
    }

    FakeCameraStore stored;
    bool liveAnswers = true;
    bool storeAnswers = true;
    int live = 0;
};

/// The live picture fails.
struct GapFillingTest : testing::Test {
    GapFillingTest() { s.liveAnswers = false; }
    Filling s;
};

/// The live picture fails for an hour while the camera goes on recording.
TEST(GapFilling, AnOutageIsFilledWithinTenMinutes) {
    for (const int interval : {1, 5}) {
        SCOPED_TRACE(interval);
        Filling s;
        s.store.values["Settings/Delay"] = "15";
        s.setSchedule("9", "17", std::to_string(interval));
        s.start(true);
        s.runUntil(9, 59, 30);
        s.liveAnswers = false;
        s.runUntil(10, 59, 30);
        s.liveAnswers = true;
        s.runUntil(11, 10);
        std::vector<std::string> expected;
        for (int minute = 9 * 60; minute < 11 * 60 + 10; minute += interval) {
            expected.push_back(ImageName::ofCapture(at(2006, 11, 15, 0, minute)).text());
            // the last minute of the outage is captured at its end
            if (minute >= 10 * 60 && minute < 10 * 60 + 59) expected.back().replace(13, 2, "07");
        }
        EXPECT_EQ(s.images(), expected);
        EXPECT_EQ(s.imagesOf("20061115", "Edit"), expected);
        EXPECT_EQ(s.countLogged("Gap filled:20061115_103007_00.jpg"), 1);
        EXPECT_EQ(s.gapHttp.requests, interval == 1 ? 59 : 12);
    }
}

/// After a restart the files tell what is missing; what is there is left alone.
TEST(GapFilling, ARestartFillsTheMorning) {
    Filling s;
    s.store.values["Settings/FillGaps"] = "0";
    s.setSchedule("7", "17", "30");
    writeFile(s.dataFolder() / "20061115" / "20061115_073000_00.jpg", jpegLike("kept"));
    s.start(true);
    s.clock.run(30s);
    EXPECT_EQ(s.askings(), 0U);
    s.panel.chk_fill.ticked = true;
    s.clock.run(20s);
    EXPECT_EQ(s.images(),
              (std::vector<std::string>{"20061115_070007_00.jpg", "20061115_073000_00.jpg",
                                        "20061115_080007_00.jpg", "20061115_083007_00.jpg"}));
    EXPECT_EQ(s.views.newest.filename(), "20061115_083007_00.jpg");
}

/// A request that hangs when a minute falls due is cut off, and its minute is asked for again.
TEST_F(GapFillingTest, StandsBackForCaptures) {
    s.setSchedule("9", "17", "2");
    s.gapBrowser.latency = 70s;
    s.start(true);
    s.runUntil(9, 1, 55);
    s.liveAnswers = true;
    s.clock.run(5500ms);
    EXPECT_FALSE(s.gapBrowser.running());
    s.runUntil(9, 2, 5);
    EXPECT_EQ(s.images(), std::vector<std::string>{"20061115_090200_00.jpg"});
    s.gapBrowser.latency = 20ms;
    s.runUntil(9, 3, 30);
    EXPECT_EQ(s.fetchedLater(), 1);
}

/// Whatever is missing. Pages of a busy camera are no answers either.
TEST_F(GapFillingTest, AStoreThatDoesNotAnswerIsAskedOnceAMinute) {
    s.gapBrowser.answer = [&](const std::string& url) {
        if (s.storeAnswers) return s.stored.search(url);
        return std::string(s.askings() % 2 == 0 ? "" : "Busy, please wait, or try later, thanks,");
    };
    s.storeAnswers = false;
    s.setSchedule("9", "17", "1");
    s.start(true);
    s.runUntil(9, 4, 30); // four minutes are missing
    s.liveAnswers = true;
    s.runUntil(9, 20, 30);
    EXPECT_EQ(s.fetchedLater(), 0);
    EXPECT_NEAR(static_cast<double>(s.askings()), 18, 2);
    s.storeAnswers = true;
    s.clock.run(150s);
    EXPECT_EQ(s.fetchedLater(), 4);
}

/// Names that are no pictures', or pictures that do not come: each minute is asked for twice in
/// all, once a minute at most, and the log stays short.
TEST(GapFilling, EndsWhateverIsListedAndSent) {
    struct Case {
        const char* name;
        std::size_t askings; ///< of one minute; 0: on and on
        std::size_t filed;
        HttpReply sent = FakeHttp::picture("stored");
    };
    const Case cases[] = {
        {"20061115_093000_00.JPG", 1, 1},
        {"20061115_093059_00.jpg", 1, 1},
        {"20061115_093007_99.jpg", 1, 1},
        {"20061115_092959_00.jpg", 2, 0}, // of other minutes
        {"20061115_093100_00.jpg", 2, 0},
        {"20991231_235959_00.jpg", 2, 0},
        {"../../evil.jpg", 2, 0},
        {"20061115_093060_00.jpg", 2, 0},
        {"20061115_0930ab_00.jpg", 2, 0},
        {"20061115_093007_0x.jpg", 2, 0},
        {"20061115_093007_00.jpeg", 0, 0},
        {"20061115_093007_00.jpg", 2, 0, FakeHttp::failed("HTTP status 404")},
        {"20061115_093007_00.jpg", 2, 0, {true, 200, "<html>Busy</html>", ""}},
        {"20061115_093007_00.jpg", 2, 0, {true, 200, jpegLike("cut").substr(0, 30), ""}}};
    for (const auto& [name, askings, filed, sent] : cases) {
        SCOPED_TRACE(name + sent.fault + sent.body);
        Filling s(at(2006, 11, 15, 9, 29));
        s.liveAnswers = false;
        s.setSchedule("9", "10", "30");
        std::vector<Ticks> asked; // for 9:30
        s.gapBrowser.answer = [&](const std::string& url) {
            if (url.find("&from_hour=9&from_min=30&") == std::string::npos)
                return std::string("NO_DATA");
            EXPECT_EQ(url, "http://192.168.0.10:80/cgi/srch.cgi?srch_type=0&s_mode=0&dl=1&ar0=on"
                           "&from_year=6&from_mon=10&from_day=14&from_hour=9&from_min=30"
                           "&from_sec=0&from_frame=0&maxnum=2");
            asked.push_back(s.clock.ticks());
            return "1,2,record/" + std::string(name) + ",";
        };
        s.gapHttp.answer = [&](const std::string&) { return sent; };
        s.start(true);
        s.runUntil(10, 15);
        EXPECT_TRUE(asked.size() == askings || askings == 0) << asked.size();
        EXPECT_LT(asked.size(), 47U) << "once a minute";
        for (std::size_t i = 1; i < asked.size(); ++i)
            EXPECT_GE(asked[i] - asked[i - 1], 1min);
        EXPECT_EQ(s.images().size(), filed);
        EXPECT_LT(s.logged().size(), 100U);
    }
}

/// A folder that can be written but not listed: nothing is missing as far as anybody knows.
TEST_F(GapFillingTest, NothingIsFilledOnAFolderThatCannotBeRead) {
    s.unlistable = true;
    s.start(true);
    s.runUntil(10, 2);
    EXPECT_EQ(s.askings(), 0U);
    EXPECT_LT(s.listings, 200);
    const std::string warning = s.warnings.text;
    EXPECT_NE(warning.find("cannot be read: Permission denied"), std::string::npos);
    EXPECT_NE(warning.find("No image at 09:00 and 09:30"), std::string::npos);
    s.liveAnswers = true;
    s.unlistable = false;
    s.runUntil(10, 32);
    EXPECT_EQ(s.fetchedLater(), 3);
    EXPECT_EQ(s.warnings.text.get(), "");
}

TEST_F(GapFillingTest, ForAnotherDataFolderEachMinuteIsAskedForAnew) {
    s.gapBrowser.answer = [](const std::string&) { return "NO_DATA"; };
    s.setSchedule("9", "10", "30");
    s.start(true);
    s.runUntil(10, 15);
    const std::size_t askings = s.askings();
    EXPECT_EQ(askings, 4U) << "9:00 and 9:30, twice";
    const auto other = s.folder.path() / "other";
    std::filesystem::create_directory(other);
    s.settings.selectDataFolder(other);
    s.clock.run(90s);
    EXPECT_EQ(s.askings(), askings + 2);
}

ImageStamp stamp(const char* name) {
    ImageStamp stamp;
    ParseImageName(name, stamp);
    return stamp;
}

TEST(StoreSearch, ReachesBackAcrossMonthYearAndMidnight) {
    const std::tuple<WallTime, const char*, double, ImageStamp> cases[] = {
        {at(2006, 3, 5, 14, 37, 9), "30", 0, {2006, 3, 5, 14, 7, 9, 0}},
        {at(2006, 3, 1, 0, 10, 0), "30", 0, {2006, 2, 28, 23, 40, 0, 0}},
        {at(2008, 3, 1, 0, 0, 59), "1", 0, {2008, 2, 29, 23, 59, 59, 0}},
        {at(2007, 1, 1, 0, 29, 59), "30", 30, {2006, 12, 31, 23, 29, 59, 0}},
        {at(2000, 1, 1, 0, 0, 0), "1", 0, {1999, 12, 31, 23, 59, 0, 0}},
        {at(2006, 3, 5, 14, 7, 9), "", 0, {2006, 3, 5, 14, 7, 9, 0}}, // no span
        {at(2006, 3, 5, 14, 7, 9), "0.5", 0, {2006, 3, 5, 14, 6, 39, 0}}};
    for (const auto& [now, span, extra, from] : cases)
        EXPECT_EQ(stampOf(movedBack(now, span, extra)), from) << span;
    EXPECT_LT(movedBack(at(2006, 1, 1), "1e300"), at(1907, 1, 1)); // and no overflow
    EXPECT_EQ(searchQuery({2006, 3, 5, 14, 7, 9, 0}),
              "srch_type=0&s_mode=0&dl=1&ar0=on&from_year=6&from_mon=2&from_day=4&from_hour=14"
              "&from_min=7&from_sec=9&from_frame=0&maxnum=2");
    EXPECT_TRUE(searchQuery({1999, 12, 31, 23, 59, 0, 0})
                    .ends_with("&from_year=-1&from_mon=11&from_day=30&from_hour=23&from_min=59"
                               "&from_sec=0&from_frame=0&maxnum=2"));
}

TEST(StoreSearch, ReadsNamesByPosition) {
    EXPECT_EQ(stamp("20061115_093007_42.jpg"), (ImageStamp{2006, 11, 15, 9, 30, 7, 42}));
    EXPECT_EQ(stamp("20061115x093007x42.bmp"), (ImageStamp{2006, 11, 15, 9, 30, 7, 42}));
    EXPECT_EQ(stamp("2006111_093007_42.jpg"), ImageStamp{});
    EXPECT_EQ(stamp("20061115_093007_042.jpg"), ImageStamp{});
    ImageStamp kept{1, 2, 3, 4, 5, 6, 7};
    ParseImageName("20061115_xx30-7_42.jpg", kept);
    EXPECT_EQ(kept, (ImageStamp{2006, 11, 15, 4, 30, 6, 42}));
}

TEST(StoreSearch, ComparesDatesBeforeTimes) {
    const char* ascending[] = {"20061115_093007_00.jpg", "20061115_093007_01.jpg",
                               "20061115_093008_00.jpg", "20061115_235959_99.jpg",
                               "20061116_000000_00.jpg", "20061130_235959_00.jpg",
                               "20061201_000000_00.jpg", "20070101_000000_00.jpg"};
    for (const char* a : ascending)
        for (const char* b : ascending)
            EXPECT_EQ(CompareStamp(stamp(a), stamp(b)),
                      (std::strcmp(a, b) > 0) - (std::strcmp(a, b) < 0))
                << a << " " << b;
}

TEST(StoreSearch, RepliesYieldCompleteRecordsOnly) {
    std::string_view reply = "1,2006,a/one.jpg,2,2006,b/c/two.jpg,3,2006,three.jpg";
    EXPECT_EQ(recordCount(reply), 2U);
    EXPECT_EQ(nextPicturePath(reply), "a/one.jpg");
    EXPECT_EQ(FileNameOfPath(*nextPicturePath(reply)), "two.jpg");
    EXPECT_EQ(nextPicturePath(reply), std::nullopt); // no comma after its third field
    std::string_view odd = "a,b";
    EXPECT_EQ(NextField(odd, ','), "a");
    EXPECT_EQ(NextField(odd, ','), std::nullopt);
    EXPECT_EQ(odd, "b");
    EXPECT_EQ(FileNameOfPath("name.jpg"), "");
    EXPECT_TRUE(CheckStartTime(-1, 59, 59) && CheckStartTime(23, 0, -5));
    EXPECT_FALSE(CheckStartTime(24, 0, 0) || CheckStartTime(0, 60, 0) || CheckStartTime(0, 0, 60));
}

TEST(StoreSearch, OnlyPlainNamesNameFiles) {
    for (const char* name :
         {"20061115_093007_00.jpg", "a", ".hidden", "b c.jpg", "コン.jpg", "CONE"})
        EXPECT_TRUE(isPlainName(name)) << name;
    const std::string tooLong(256, 'a');
    for (const std::string_view name :
         {""sv, "."sv, ".."sv, "a..b"sv, "..\\a.jpg"sv, "a/b"sv, "C:a.jpg"sv, "a:b"sv, "a*.jpg"sv,
          "con"sv, "LPT1.jpg"sv, "a."sv, "a "sv, "a\nb"sv, "a\0b"sv, std::string_view(tooLong)})
        EXPECT_FALSE(isPlainName(name)) << name;
}

/// A busy camera's page is no answer; a list without usable names is one.
TEST(StoreSearch, TellsAListFromAPage) {
    for (const char* reply : {"1,2,r/20061115_093007_00.jpg,", "1,x,a/b/20061115_0930ab_00.JPG,\n"})
        EXPECT_TRUE(isPictureList(reply)) << reply;
    for (const char* reply :
         {"", "<html><body>Busy, please wait, or come back later,</body></html>", ",,,,,,", "1,2,",
          "1,2,r/20061115_093007_00.jpg", "1,2,20061115_093007_00.jpg,", "1,2,r/..,",
          "a,b,text/css,"})
        EXPECT_FALSE(isPictureList(reply)) << reply;
}

} // namespace
} // namespace orvane::test

#include "camera/StoreSearch.h"
#include "tests/support/JumpingClock.h"

#include <gtest/gtest.h>

#include <cstring>

namespace orvane::test {
namespace {

using namespace std::string_view_literals;

ImageStamp stamp(const char* name) {
    ImageStamp stamp;
    ParseImageName(name, stamp);
    return stamp;
}

TEST(StoreSearch, ReachesBackAcrossMonthYearAndMidnight) {
    struct Case {
        WallTime now;
        const char* span;
        double extra;
        ImageStamp from;
    };
    const Case cases[] = {
        {at(2006, 3, 5, 14, 37, 9), "30", 0, {2006, 3, 5, 14, 7, 9, 0}},
        {at(2006, 3, 1, 0, 10, 0), "30", 0, {2006, 2, 28, 23, 40, 0, 0}},
        {at(2008, 3, 1, 0, 0, 59), "1", 0, {2008, 2, 29, 23, 59, 59, 0}},
        {at(2007, 1, 1, 0, 29, 59), "30", 30, {2006, 12, 31, 23, 29, 59, 0}},
        {at(2000, 1, 1, 0, 0, 0), "1", 0, {1999, 12, 31, 23, 59, 0, 0}},
        {at(2006, 3, 5, 14, 7, 9), "", 0, {2006, 3, 5, 14, 7, 9, 0}}, // no span
        {at(2006, 3, 5, 14, 7, 9), "0.5", 0, {2006, 3, 5, 14, 6, 39, 0}},
    };
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
            EXPECT_EQ(CompareStamp(stamp(a), stamp(b)), std::strcmp(a, b) > 0 ? 1
                                                        : a == b              ? 0
                                                                              : -1)
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

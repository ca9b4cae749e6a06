#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

#include <fstream>

namespace orvane::test {
namespace {

TEST(DataFolderInUse, UnusableDataFolderIsToldAndRecoversByItself) {
    TestStation s(at(2006, 11, 15, 9, 29));
    std::ofstream(s.dataFolder() / "Edit") << "not a folder";
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 31));
    EXPECT_NE(s.warnings.text.get().find("The data folder cannot be written"), std::string::npos);
    EXPECT_GT(s.http.requests, 10); // tried again within the minute
    std::filesystem::remove(s.dataFolder() / "Edit");
    s.clock.runUntil(at(2006, 11, 15, 10, 1));
    EXPECT_TRUE(s.warnings.text.get().empty()) << s.warnings.text.get();
    EXPECT_EQ(s.imagesOf("20061115").back(), "20061115_100000_00.jpg");
}

/// A disk that is pulled out, at any moment, and comes back: nothing is lost, and its folder, in
/// whose place another disk would be filled, is never made.
TEST(DataFolderInUse, AChosenFolderThatGoesIsNotMadeAndUsedAgainWhenItComes) {
    for (const Ticks moment : {Ticks(-20min), Ticks(-1s), Ticks(3s)}) { // seen from 10:00
        TestStation s(at(2006, 11, 15, 9, 29));
        s.store.values["Settings/Delay"] = "5";
        s.start(true);
        s.clock.runUntil(at(2006, 11, 15, 10, 0) + moment);
        const auto away = s.folder.path() / "away";
        const std::string stored = s.store.values["DataPath/PathDataFile"];
        std::filesystem::rename(s.dataFolder(), away);
        s.clock.runUntil(at(2006, 11, 15, 10, 31));
        const auto meanwhile = s.folder.path() / "pictures" / "Orvane";
        for (const char* name : {"20061115_100000_00.jpg", "20061115_103000_00.jpg"})
            EXPECT_TRUE(std::filesystem::exists(meanwhile / "20061115" / name)) << name;
        EXPECT_FALSE(std::filesystem::exists(s.dataFolder()));
        EXPECT_EQ(s.panel.Dir1[0].path.get(), meanwhile);
        EXPECT_EQ(s.store.values["DataPath/PathDataFile"], stored);
        const std::string warning = "The data folder " + stored + " is not there. Pictures go to " +
                                    utf8FromPath(meanwhile) + " meanwhile.";
        EXPECT_EQ(s.warnings.text.get(), warning);

        std::filesystem::rename(away, s.dataFolder());
        s.clock.runUntil(at(2006, 11, 15, 10, 33));
        EXPECT_TRUE(s.warnings.text.get().empty()) << "what lies elsewhere is not missed";
        s.clock.runUntil(at(2006, 11, 15, 11, 1));
        EXPECT_EQ(s.imagesOf("20061115").back(), "20061115_110000_00.jpg");
        EXPECT_TRUE(s.warnings.text.get().empty()) << s.warnings.text.get();
        EXPECT_EQ(s.countLogged(warning), 1);
        EXPECT_EQ(s.countLogged("Data folder: " + stored), 1);
    }
}

TEST(DataFolderInUse, AFolderMissingAtTheStartIsToldAndTheDefaultOneIsMade) {
    TestStation s(at(2006, 11, 15, 9, 29));
    std::filesystem::remove(s.dataFolder());
    s.gapBrowser.answer = [](const std::string&) { return "1,2,record/20061115_090000_00.jpg,"; };
    s.start(true);
    s.clock.run(1s);
    EXPECT_TRUE(s.warnings.stands(Warnings::Cause::ChosenFolder));
    const auto meanwhile = s.folder.path() / "pictures";
    EXPECT_FALSE(std::filesystem::exists(meanwhile)) << "made at the first capture";
    s.clock.runUntil(at(2006, 11, 15, 9, 31));
    EXPECT_TRUE(std::filesystem::exists(meanwhile / "Orvane/20061115/20061115_093000_00.jpg"));
    EXPECT_TRUE(s.gapBrowser.pages().empty()) << "what lies in the other folder is not missing";
}

} // namespace
} // namespace orvane::test

#include "archive/DaySurvey.h"
#include "archive/FolderScan.h"
#include "archive/ShownDay.h"
#include "tests/archive/ArchiveStation.h"

#include <gtest/gtest.h>

#include <map>
#include <sys/inotify.h>
#include <unistd.h>

namespace orvane::test {
namespace {

constexpr int kDays = 1100;
constexpr std::chrono::local_days kToday{std::chrono::days(13467)}; // 2006/11/15

/// Tells which folders of some were opened, or had one of their files opened: the system says so.
class Opened {
  public:
    ~Opened() { close(queue_); }

    bool watch(const std::filesystem::path& folder) {
        const int number = inotify_add_watch(queue_, folder.c_str(), IN_OPEN);
        names_[number] = folder.filename().string();
        return number >= 0;
    }
    /// Since the last call.
    std::set<std::string> folders() const {
        std::set<std::string> folders;
        alignas(inotify_event) char bytes[4096];
        for (ssize_t size = read(queue_, bytes, sizeof bytes); size > 0;
             size = read(queue_, bytes, sizeof bytes))
            for (ssize_t at = 0; at < size;) {
                const auto* event = reinterpret_cast<const inotify_event*>(bytes + at);
                folders.insert(names_.at(event->wd));
                at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
            }
        return folders;
    }

  private:
    int queue_ = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    std::map<int, std::string> names_;
};

/// A day each, with one picture and a ledger, and a station that looks at them.
class ThreeYears : public testing::Test {
  protected:
    void SetUp() override {
        const auto ledgers = s.dataFolder() / "Ledger";
        std::filesystem::create_directory(ledgers);
        for (auto day = kToday - std::chrono::days(kDays); day <= kToday; ++day) {
            const std::string name = dateDigits(WallTime(day));
            s.write(name + "_090000_00.jpg");
            writeFile(ledgers / (name + ".csv"), "time,offset,event,file,detail\r\n");
            // a folder that has just been changed is read again
            const auto dated = s.dataFolder() / name;
            const auto written = std::filesystem::last_write_time(dated);
            std::filesystem::last_write_time(dated, written - 1h);
            if (!opened.watch(dated)) GTEST_SKIP() << "the system watches no more folders";
        }
        s.type(9, 10, 30);
        s.days.refresh();
        opened.folders();
    }
    void turnTo(std::chrono::local_days day) {
        shown.turnTo(day);
        shown.wantKeogram(true);
        ASSERT_TRUE(s.clock.runUntil([&] { return !shown.isReading(); }, 1min));
        for (int second = 0; second < 5; ++second) {
            shown.refresh();
            shown.plan();
            s.clock.run(1s);
        }
    }

    Opened opened;
    ArchiveStation s{WallTime(kToday) + 12h};
    FakeImageControl control;
    Keograms keograms{{control, s.module, s.busy, s.clock}};
    ShownDay shown{{s.days, s.panel, keograms, s.clock, s.faults}};
};

TEST_F(ThreeYears, OnlyWhatIsInViewIsRead) {
    using Names = std::set<std::string>;
    const std::pair<int, const char*> days[] = {
        {1000, "20040219"}, {1, "20061114"}, {9999, "20031111"}};
    for (const auto& [back, name] : days) {
        turnTo(kToday - std::chrono::days(back));
        EXPECT_EQ(opened.folders(), Names{name});
    }
    EXPECT_EQ(shown.day(), kToday - std::chrono::days(kDays)) << "the archive's first";
    EXPECT_EQ(shown.plan().text, "taken 1 of 2, 1 missed");

    DaySurvey survey{{s.days, s.panel, s.clock, s.faults}};
    const auto first = kToday - std::chrono::days(1000);
    survey.start({first, first + std::chrono::days(2)});
    ASSERT_TRUE(s.clock.runUntil([&] { return survey.found == 3; }, 1min));
    s.clock.run(1min);
    EXPECT_EQ(opened.folders(), (Names{"20040219", "20040220", "20040221"}));
}

/// Only an attribute word of exactly 16 marks a sub-folder. Windows and Wine keep other bits of a
/// folder in other ways.
TEST(FolderScan, AReadOnlyFolderCountsAsAFile) {
    const TempFolder temp;
    const auto folder = temp.path() / "sky";
    std::filesystem::create_directory(folder);
    Module1 module;
    OperationPanel panel;
    panel.Dir1[1].path = temp.path();
    FolderScan scan(module, panel);
    scan.file_check("sky");
    EXPECT_EQ(module.foundCount, 1);
    using std::filesystem::perms;
    std::filesystem::permissions(folder, perms::owner_read | perms::owner_exec);
    scan.file_check("sky");
    EXPECT_EQ(module.foundCount, 2);
    EXPECT_EQ(module.foundImages[1], folder);
    std::filesystem::permissions(folder, perms::owner_all);
}

} // namespace
} // namespace orvane::test

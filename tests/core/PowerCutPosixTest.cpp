#include "archive/Ledger.h"
#include "imaging/JpegMarkers.h"
#include "platform/qt/QtSettingsStore.h"
#include "tests/support/PowerCut.h"
#include "tests/support/StationDay.h"

namespace orvane::test {
namespace {

constexpr const char* kDay = "data/20061115/";
constexpr const char* kLedger = "data/Ledger/20061115.csv";

/// What the station shows as the latest capture may not be lost any more.
struct PromisingViews final : ImageViews {
    explicit PromisingViews(FileRecord& to) : record(to) {}
    void refreshThumbnails(const ThumbnailHistory&) override {}
    void showLatest(const std::filesystem::path& file) override { record.promise(file); }
    void showLive(const std::string&) override {}
    void tellLive(const std::string&) override {}

    FileRecord& record;
};

std::vector<std::string> ledgerLines(const std::string& text) {
    std::vector<std::string> lines;
    for (const LedgerLine& line : parseLedger(text))
        lines.push_back(ledgerText(line));
    return lines;
}

/// Empty for what is not there.
std::string bytesAt(const Tree& tree, const std::string& path) {
    const auto found = tree.find(path);
    return found == tree.end() ? "" : found->second.value_or("");
}

/// A station that records a picture a minute from 9:29 on, and those that are started at 9:33 on
/// what a power cut has left of its files.
struct PowerCut : testing::Test {
    PowerCut() { prepare(s, "first "); }
    void beginRecord() {
        record = std::make_unique<FileRecord>(s.folder.path());
        views = std::make_unique<PromisingViews>(*record);
        s.views.shown = views.get();
    }
    static void prepare(TestStation& station, const std::string& series) {
        station.setSchedule("0", "23", "1", "59");
        station.store.values["Settings/FillGaps"] = "0";
        station.http.answer = [series, count = 0](const std::string&) mutable {
            return FakeHttp::picture(series + std::to_string(++count));
        };
    }
    std::filesystem::path file(const std::string& name) const { return s.folder.path() / name; }
    void take(const std::string& content, const std::string& name, Arrival arrival) {
        const Filing filing =
            finish(s.clock, s.archive.take(jpegLike(content), file(kDay + name), arrival));
        EXPECT_EQ(filing.outcome, Filing::Outcome::Filed) << name;
        known.insert(jpegLike(content));
    }

    /// What is wrong: the dated folder holds whole pictures only, and those that were promised.
    std::string isSound(const Left& left) const {
        for (const auto& [path, bytes] : left.tree) {
            const bool isPicture = path.starts_with(kDay) && ImageName::ofFile(path);
            if (isPicture && !known.contains(*bytes)) return path + " is no picture";
        }
        for (const std::string& path : left.promised)
            if (!isWholeJpeg(bytesAt(left.tree, path))) return path + " is lost";
        return "";
    }

    /// The next start judges the day by what is there, and takes its minutes' pictures.
    std::string goesOn(const Left& left) const {
        TestStation next(at(2006, 11, 15, 9, 33, 50));
        restore(left.tree, next.folder.path());
        prepare(next, "next ");
        next.start(true);
        next.clock.runUntil(at(2006, 11, 15, 9, 34, 2));
        for (int minute = 9 * 60 + 29; minute <= 9 * 60 + 34; ++minute) {
            const std::string name = "20061115_09" + twoDigits(minute % 60) + "00_00.jpg";
            const bool isThere = isWholeJpeg(contentsOf(next.dataFolder() / "20061115" / name));
            const auto state = next.days.plan().states[static_cast<std::size_t>(minute)];
            if (minute >= 9 * 60 + 33 && !isThere) return name + " was not taken";
            if (isThere != (state == DayState::Taken)) return name + " is judged wrongly";
        }
        for (const char* below : {"", "Edit"})
            for (const std::string& name : next.imagesOf("20061115", below))
                if (isTemporary(name)) return name + " stays";
        if (next.warnings.stands(Warnings::Cause::DataFolder)) return next.warnings.text.get();
        return hasLedger(bytesAt(left.tree, kLedger), contentsOf(next.folder.path() / kLedger));
    }

    /// Lines that were written, in their order, then those of the next start, then what that
    /// judges.
    std::string hasLedger(const std::string& before, const std::string& now) const {
        std::vector<std::string> expected = ledgerLines(before);
        auto place = written.begin();
        for (const std::string& line : expected) {
            place = std::find(place, written.end(), line);
            if (place == written.end()) return "a line that nobody wrote: " + line;
        }
        for (const char* line :
             {"program started,,", "schedule,,00:00 to 23:59 every 01 min", "recording on,,"})
            expected.push_back(std::string("09:33,+09:00,") + line);
        const std::vector<std::string> lines = ledgerLines(now);
        const bool goesOn = lines.size() > expected.size() &&
                            std::equal(expected.begin(), expected.end(), lines.begin()) &&
                            lines.back() == "09:33,+09:00,taken,20061115_093300_00.jpg,";
        return goesOn ? "" : "a ledger that does not go on:\n" + now;
    }

    int look() {
        record->end();
        written = ledgerLines(contentsOf(file(kLedger)));
        std::set<Tree> started;
        return forEachCut(record->steps(), [&](const Left& left) {
            std::string fault = isSound(left);
            if (fault.empty() && started.insert(left.tree).second) fault = goesOn(left);
            EXPECT_EQ(fault, "") << left.where;
            return fault.empty();
        });
    }

    TestStation s{at(2006, 11, 15, 9, 29, 50), FileWriter::Force::Yes};
    std::unique_ptr<FileRecord> record;
    std::unique_ptr<PromisingViews> views;
    std::set<std::string> known;      ///< what may stand under a picture's name
    std::vector<std::string> written; ///< all lines of the ledger
};

TEST_F(PowerCut, OfARecordingStationCostsNoCaptureAndNoStart) {
    beginRecord();
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 29, 58));
    record->settle(); // systems write by themselves, within half a minute or so
    s.clock.runUntil(at(2006, 11, 15, 9, 31));
    for (const char* content : {"first 1", "first 2"})
        known.insert(jpegLike(content));
    EXPECT_GT(look(), 300);
    EXPECT_EQ(written.size(), 4U);
}

/// What stands in the way of a picture: another capture of the same minute, the older copy of a
/// stored picture, and what an earlier power cut has left.
TEST_F(PowerCut, WhilePicturesGetAFrameOrReplaceAFile) {
    const std::string zeros(60, '\0');
    known = {zeros, jpegLike("older copy")};
    s.store.values["Settings/LrFlg"] = "1";
    ASSERT_FALSE(makeFolder(file(kDay)));
    writeFile(file(kDay) / "20061115_092907_00.jpg", jpegLike("older copy"));
    writeFile(file(kDay) / "20061115_093000_00.jpg", zeros);
    s.panel.Dir1[0].path = s.dataFolder();
    s.module.image.RawFlg = 1;
    s.days.refresh();
    beginRecord();
    take("capture", "20061115_092900_00.jpg", Arrival::Capture);
    record->settle();
    take("another", "20061115_092900_00.jpg", Arrival::Capture);
    record->settle();
    take("newer copy", "20061115_092907_00.jpg", Arrival::Run);
    take("stored", "20061115_093000_00.jpg", Arrival::Run);
    s.archive.flush();
    record->promise(file(kDay) / "20061115_092907_00.jpg");
    record->promise(file(kDay) / "20061115_093000_00.jpg");
    record->settle();
    take("gap", "20061115_093107_00.jpg", Arrival::Gap);
    record->promise(file(kDay) / "20061115_093107_00.jpg");
    EXPECT_GT(look(), 300);
    EXPECT_EQ(contentsOf(file(kDay) / "20061115_092900_01.jpg"), jpegLike("another"));
    EXPECT_EQ(contentsOf(file(kDay) / "20061115_093000_00.jpg"), jpegLike("stored"));
}

/// Nothing but these files is decided by what is left of them, and they are written anew.
TEST_F(PowerCut, LeavesNoBrokenStatusFile) {
    s.tellsStatus = true;
    beginRecord();
    s.start(false);
    s.clock.run(2s);
    record->end();
    std::set<Tree> started;
    forEachCut(record->steps(), [&](const Left& left) {
        Tree tree = left.tree;
        std::erase_if(tree, [](const auto& entry) {
            return entry.first.find("status") == std::string::npos;
        });
        if (!started.insert(tree).second) return true;
        TestStation next(s.clock.now());
        restore(tree, next.folder.path());
        next.tellsStatus = true;
        next.start(false);
        next.clock.run(1100ms);
        const auto text = [&](const char* name) {
            return contentsOf(next.module.programFolder / name);
        };
        const std::string object = text("status.json");
        const bool isWhole =
            !next.warnings.stands(Warnings::Cause::StatusFile) &&
            text("status.html") == contentsOf(file("program/status.html")) &&
            object.starts_with("{") && object.ends_with("}\n") &&
            text("status.js") ==
                "var orvaneStatus = " + object.substr(0, object.size() - 1) + ";\n";
        EXPECT_TRUE(isWhole) << left.where;
        return isWhole;
    });
    EXPECT_GT(started.size(), 20U);
}

TEST(FullDisk, UnderALedgerCostsNoCapture) {
    TestStation s(at(2006, 11, 15, 8, 50));
    std::filesystem::create_directory(s.dataFolder() / "Ledger");
    std::filesystem::create_symlink("/dev/full", s.dataFolder() / "Ledger" / "20061115.csv");
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 17, 10));
    EXPECT_EQ(s.imagesOf("20061115").size(), 16U);
    EXPECT_EQ(s.countLogged("The day's ledger cannot be written: No space left on device"), 1);
    EXPECT_EQ(s.warnings.text.get(), "");
    EXPECT_EQ(s.days.plan().taken, 16);
}

QtSettingsStore settingsIn(const std::filesystem::path& folder) {
    return QtSettingsStore(QString::fromStdString(utf8FromPath(folder / "Orvane.ini")));
}

std::string valuesOf(const QtSettingsStore& store) {
    std::string values;
    for (const char* key : {"IP", "Delay", "Quality"})
        values += store.GetSetting("Settings", key, "none") + " ";
    return values;
}

/// Those that a program has saved before, or, in a folder without a file, none. What it has left
/// locked is free half a minute later, and then settings can be saved again.
TEST(PowerCutOfSettings, LeavesThemAsTheyOnceWere) {
    for (const bool areFirst : {true, false}) {
        const TempFolder folder;
        if (!areFirst)
            writeFile(folder.path() / "Orvane.ini", "[Settings]\nIP=10.0.0.1\nQuality=24\n");
        FileRecord record(folder.path());
        QtSettingsStore store = settingsIn(folder.path());
        std::set<std::string> known{valuesOf(store)};
        for (const auto& [key, value] : {std::pair{"IP", "192.168.0.11"}, {"Delay", "20"}}) {
            EXPECT_TRUE(store.SaveSetting("Settings", key, value));
            known.insert(valuesOf(store));
        }
        record.end();
        const int cuts = forEachCut(record.steps(), [&](const Left& left) {
            const TempFolder after;
            restore(left.tree, after.path());
            const auto lock = after.path() / "Orvane.ini.lock";
            const auto old = std::filesystem::file_time_type::clock::now() - 1min;
            if (std::filesystem::exists(lock)) std::filesystem::last_write_time(lock, old);
            QtSettingsStore next = settingsIn(after.path());
            const bool isGood = !next.unreadable() && known.contains(valuesOf(next)) &&
                                next.SaveSetting("Settings", "IP", "10.0.0.2") &&
                                valuesOf(settingsIn(after.path())).starts_with("10.0.0.2 ");
            EXPECT_TRUE(isGood) << left.where << "\n" << bytesAt(left.tree, "Orvane.ini");
            return isGood;
        });
        EXPECT_GT(cuts, 10);
    }
}

} // namespace
} // namespace orvane::test

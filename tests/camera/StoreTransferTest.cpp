#include "camera/ImageStore.h"
#include "imaging/JpegMarkers.h"
#include "platform/curl/CurlTransfer.h"
#include "platform/qt/QtClock.h"
#include "simulators/sky-camera/CameraClock.h"
#include "simulators/sky-camera/SkyCamera.h"
#include "tests/support/Fakes.h"
#include "tests/support/Patience.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <random>
#include <set>

namespace orvane::test {
namespace {

/// The runs against the simulated camera's store, over real connections.
struct StoreTransfer : testing::Test {
    StoreTransfer() {
        skycamera::SkyCameraOptions options;
        // behind the PC, and far from the turn of a minute, which takes a picture out of its list
        const QDateTime now = QDateTime::currentDateTime();
        const QTime minute(now.time().hour(), now.time().minute());
        options.startTime = skycamera::calendarTime(now.date(), minute).addSecs(-40);
        options.size = {160, 120};
        options.store.stored = 600;
        options.store.storedOnce = true;
        simulator = std::make_unique<skycamera::SkyCamera>(options);
        EXPECT_TRUE(simulator->start());
        module.programFolder = folder.path() / "program";
        std::filesystem::create_directory(module.programFolder);
        panel.Dir1[0].path = data;
        module.defaultDataFolder = data; // which is made when it is not there
        panel.txtIp.text = "127.0.0.1";
        panel.txtPort.text = std::to_string(simulator->port());
        panel.Text1[5].text = "30";
        panel.lbl_sync.caption = "30";
    }
    void run(Task<> (ImageStore::*start)()) {
        Task<> task = runAndQuit((store.*start)());
        task.start();
        QTimer::singleShot(60s, &giveUp, [] { QCoreApplication::quit(); });
        QCoreApplication::exec(); // waiting by turns of 10 ms would make it slow
        EXPECT_TRUE(task.done());
        EXPECT_FALSE(busy.active());
    }
    static Task<> runAndQuit(Task<> task) {
        co_await task;
        QCoreApplication::quit();
    }
    /// Every file below the data folder is one of a dated folder or its processed copies, and the
    /// dated folder holds whole pictures only.
    int checkedFiles() const {
        int pictures = 0;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path())) {
            if (!entry.is_regular_file()) continue;
            if (entry.path() == module.programFolder / "ERROR.LOG") continue;
            const auto dated = entry.path().parent_path();
            EXPECT_EQ(dated.filename().string().size(), 8U) << entry.path();
            EXPECT_TRUE(dated.parent_path() == data || dated.parent_path() == data / "Edit");
            std::string bytes;
            readWholeFile(entry.path(), bytes);
            EXPECT_TRUE(isWholeJpeg(bytes)) << entry.path();
            if (dated.parent_path() == data) ++pictures;
        }
        return pictures;
    }

    QObject giveUp;
    TempFolder folder;
    std::filesystem::path data = folder.path() / "data";
    std::unique_ptr<skycamera::SkyCamera> simulator;
    QtClock clock;
    CurlLoop curl;
    HttpLimits limits = measuredLimits();
    CurlTransfer transfer{curl, clock, limits};
    CurlTransfer pages1{curl, clock, limits};
    CurlTransfer pages2{curl, clock, limits};
    FakeOperator op{clock};
    FakeViews views;
    FakeImageControl imageControl;
    Busy busy;
    Module1 module;
    OperationPanel panel;
    ErrorLog log{folder.path() / "program", clock};
    Faults faults{log, clock, op};
    Warnings warnings{clock};
    DaySchedules schedules{module, panel, clock, [](auto) { return 9h; }};
    DayWatch days{module, panel, schedules, clock};
    DiskWatch disk;
    FileWriter files{FileWriter::Force::No};
    PictureArchive archive{{module, days, disk, files, imageControl, views, warnings, log, clock}};
    ImageStore store{
        {module, panel, archive, transfer, pages1, pages2, log, faults, op, clock, busy}};
};

TEST_F(StoreTransfer, DownloadsWhatTheCameraLists) {
    run(&ImageStore::Test_DL);
    EXPECT_EQ(checkedFiles(), 2);
    EXPECT_EQ(panel.lbl_dlcnt.caption.get(), "2");
    run(&ImageStore::cmd_Download); // the bare search lists the last hour
    EXPECT_EQ(panel.lbl_dlcnt.caption.get(), "60");
    EXPECT_EQ(simulator->status().searchesServed, 2U);
}

TEST_F(StoreTransfer, EveryFaultOfTheSearchEndsInBoundedTime) {
    struct Case {
        const char* fault;
        int most; ///< pictures it may bring
    };
    const Case cases[] = {
        {"list-html", 2},   {"list-nocomma", 2}, {"list-names", 2}, {"list-paths", 1},
        {"list-future", 0}, {"list-missing", 0}, {"list-big:5", 0}, {"list-onefield:5", 0},
        {"html", 0},        {"silent", 0},       {"cut", 2},        {"short", 0},
        {"reset", 0},       {"status:500", 0},   {"empty", 0},      {"refuse", 0},
        {"drip:20", 0}};
    for (const auto& [fault, most] : cases) {
        std::filesystem::remove_all(data);
        const quint64 before = simulator->status().requestsServed;
        ASSERT_TRUE(simulator->setFault(fault, 0, "/cgi/srch.cgi")) << fault;
        run(&ImageStore::Test_DL);
        EXPECT_LE(simulator->status().requestsServed - before, 11U + 20U) << fault;
        EXPECT_LE(checkedFiles(), most) << fault;
        EXPECT_FALSE(panel.Label7.caption.get().empty()) << fault;
        ASSERT_TRUE(simulator->setFault(QString("none")));
        run(&ImageStore::Test_DL);
        EXPECT_EQ(panel.lbl_dlcnt.caption.get(), "2") << "after " << fault;
    }
}

TEST_F(StoreTransfer, FaultsOfThePicturesFileNothingBroken) {
    for (const char* fault : {"cut", "html", "empty", "short", "reset", "status:404", "stall"}) {
        std::filesystem::remove_all(data);
        ASSERT_TRUE(simulator->setFault(fault, 1, "/record/")) << fault;
        run(&ImageStore::Test_DL);
        EXPECT_EQ(checkedFiles(), 1) << fault; // the second of the page is sound
    }
}

/// Faults in any order: each picture that the camera sent whole is filed, and no other.
TEST_F(StoreTransfer, RandomFaults) {
    std::set<std::string> sent;
    QObject::connect(simulator.get(), &skycamera::SkyCamera::logged, [&](const QString& line) {
        const qsizetype name = line.indexOf(".jpg -> 200");
        if (name > 0) sent.insert(line.mid(name - 18, 22).toStdString());
    });
    for (const unsigned seed : {1U, 2U}) {
        QStringList turns{"short",      "cut",    "reset",    "nolength-cut",
                          "status:503", "html",   "empty",    "status:404",
                          "stall",      "silent", "drip:200", "delay:60000"};
        while (turns.size() < 60)
            turns << "none";
        std::shuffle(turns.begin(), turns.end(), std::mt19937(seed));
        std::filesystem::remove_all(data);
        sent.clear();
        ASSERT_TRUE(simulator->setFault(turns.join(','), 60, "/record/"));
        run(&ImageStore::cmd_Download); // the bare search lists the last hour
        EXPECT_EQ(panel.lbl_dlcnt.caption.get(), "48");
        EXPECT_EQ(checkedFiles(), 48);
        std::set<std::string> filed;
        for (const auto& dated : std::filesystem::directory_iterator(data)) {
            if (dated.path().filename() == "Edit") continue;
            for (const auto& entry : std::filesystem::directory_iterator(dated))
                filed.insert(entry.path().filename().string());
        }
        EXPECT_EQ(filed, sent) << seed;
    }
}

} // namespace
} // namespace orvane::test

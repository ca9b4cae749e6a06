#include "imaging/JpegMarkers.h"
#include "simulators/sky-camera/CameraClock.h"
#include "simulators/sky-camera/SkyCamera.h"
#include "tests/support/RawServer.h"
#include "tests/support/TestPictures.h"
#include "tests/support/TestStation.h"

#include <QCoreApplication>

#include <random>

namespace orvane::test {
namespace {

skycamera::SkyCameraOptions fullStore() {
    skycamera::SkyCameraOptions options;
    options.size = {160, 120};
    // behind the PC, and far from the turn of a minute, which takes a picture out of its list
    const QDateTime now = QDateTime::currentDateTime();
    const QTime minute(now.time().hour(), now.time().minute());
    options.startTime = skycamera::calendarTime(now.date(), minute).addSecs(-40);
    options.store.stored = 600;
    options.store.storedOnce = true;
    return options;
}

/// A station whose camera is the simulated one, over real connections and in real time.
struct StoreTransfer : testing::Test {
    StoreTransfer() {
        EXPECT_TRUE(simulator.start());
        s.panel.txtIp.text = "127.0.0.1";
        s.panel.txtPort.text = std::to_string(simulator.port());
        s.panel.Dir1[0].path = data;
        s.module.defaultDataFolder = data; // which is made when it is not there
        s.panel.Text1[5].text = "30";
        s.panel.lbl_sync.caption = "30";
    }
    void setFault(const QString& faults, int requests = 0, const QByteArray& path = {}) {
        ASSERT_TRUE(simulator.setFault(faults, requests, path)) << faults.toStdString();
    }
    void run(Task<> (ImageStore::*start)()) {
        Task<> task = runAndQuit((store.*start)());
        task.start();
        QTimer::singleShot(60s, &giveUp, [] { QCoreApplication::quit(); });
        QCoreApplication::exec(); // waiting by turns of 10 ms would make it slow
        EXPECT_TRUE(task.done());
        EXPECT_FALSE(s.busy.active());
    }
    static Task<> runAndQuit(Task<> task) {
        co_await task;
        QCoreApplication::quit();
    }
    /// The pictures in the dated folder. Every file below the station's folder is one of these, all
    /// whole, or its processed copy.
    std::vector<std::string> pictures() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(s.folder.path())) {
            const auto dated = entry.path().parent_path();
            if (!entry.is_regular_file() || entry.path().filename() == "ERROR.LOG") continue;
            EXPECT_EQ(dated.filename().string().size(), 8U) << entry.path();
            EXPECT_TRUE(dated.parent_path() == data || dated.parent_path() == data / "Edit");
            EXPECT_TRUE(isWholeJpeg(contentsOf(entry.path()))) << entry.path();
            if (dated.parent_path() == data) names.push_back(entry.path().filename().string());
        }
        std::ranges::sort(names);
        return names;
    }
    std::string downloaded() const { return s.panel.lbl_dlcnt.caption; }

    skycamera::SkyCamera simulator{fullStore()};
    TestStation s{at(2006, 11, 15)};
    QtClock clock;
    CurlLoop curl;
    HttpLimits limits = measuredLimits();
    CurlTransfer transfer{curl, clock, limits};
    QObject giveUp;
    std::filesystem::path data = s.dataFolder();
    CurlTransfer pages1{curl, clock, limits};
    CurlTransfer pages2{curl, clock, limits};
    ImageStore store{{s.module, s.panel, s.archive, transfer, pages1, pages2, s.log, s.faults, s.op,
                      clock, s.busy}};
};

TEST_F(StoreTransfer, AHugeAnswerIsCutOff) {
    setFault("list-big:5", 0, "/cgi/srch.cgi");
    for (const Wanted wanted : {Wanted::Page, Wanted::Nothing}) {
        Task<HttpReply> task = transfer.get(cameraBaseUrl(s.panel) + "/cgi/srch.cgi", wanted);
        task.start();
        EXPECT_EQ(finish(task).fault, "the answer is too large");
    }
}

TEST_F(StoreTransfer, OverwritesInPlaceWithoutShortening) {
    CameraPanel camera{s.module, s.panel, transfer, s.switches,    s.views,
                       s.busy,   s.op,    clock,    s.imageControl};
    const auto file = s.folder.path() / "picture.jpg";
    const auto download = [&] {
        Task<HttpReply> task = camera.DownloadFile(cameraBaseUrl(s.panel) + kLatestImagePath,
                                                   s.folder.path() / "", "picture.jpg");
        task.start();
        return finish(task).fault;
    };
    const std::string old(100'000, 'o');
    writeFile(file, old);
    setFault("status:503");
    EXPECT_EQ(download(), "HTTP status 503");
    EXPECT_EQ(contentsOf(file), old);
    setFault("none");
    EXPECT_EQ(download(), "");
    const std::string bytes = contentsOf(file);
    EXPECT_EQ(bytes.size(), old.size());
    EXPECT_TRUE(isWholeJpeg(bytes.substr(0, bytes.find_last_not_of('o') + 1)));
    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    EXPECT_TRUE(download().starts_with("cannot write picture.jpg"));
}

TEST_F(StoreTransfer, EveryFaultOfTheSearchEndsInBoundedTime) {
    const std::pair<const char*, std::size_t> cases[] = {
        // pictures that it brings
        {"list-html", 2},   {"list-nocomma", 1}, {"list-names", 0}, {"list-paths", 0},
        {"list-future", 0}, {"list-missing", 0}, {"list-big:5", 0}, {"list-onefield:5", 0},
        {"html", 0},        {"silent", 0},       {"cut", 1},        {"short", 0},
        {"reset", 0},       {"status:500", 0},   {"empty", 0},      {"refuse", 0},
        {"drip:20", 0}};
    for (const auto& [fault, brought] : cases) {
        SCOPED_TRACE(fault);
        std::filesystem::remove_all(data);
        const quint64 before = simulator.status().requestsServed;
        setFault(fault, 0, "/cgi/srch.cgi");
        run(&ImageStore::Test_DL);
        EXPECT_LE(simulator.status().requestsServed - before, 11U + 20U);
        EXPECT_EQ(pictures().size(), brought);
        EXPECT_FALSE(s.panel.Label7.caption.get().empty());
        setFault("none");
        run(&ImageStore::Test_DL);
        EXPECT_EQ(downloaded(), "2");
    }
}

/// Faults in any order: each picture that the camera sent whole is filed, and no other.
TEST_F(StoreTransfer, RandomFaults) {
    std::vector<std::string> sent;
    QObject::connect(&simulator, &skycamera::SkyCamera::logged, [&](const QString& line) {
        const qsizetype name = line.indexOf(".jpg -> 200");
        if (name > 0) sent.push_back(line.mid(name - 18, 22).toStdString());
    });
    QStringList turns{"short", "cut",        "reset", "nolength-cut", "status:503", "html",
                      "empty", "status:404", "stall", "silent",       "drip:200",   "delay:60000"};
    while (turns.size() < 60)
        turns << "none";
    std::shuffle(turns.begin(), turns.end(), std::mt19937(1));
    setFault(turns.join(','), 60, "/record/");
    run(&ImageStore::cmd_Download); // the bare search lists the last hour
    EXPECT_EQ(downloaded(), "48");
    std::ranges::sort(sent);
    EXPECT_EQ(pictures(), sent);
}

} // namespace
} // namespace orvane::test

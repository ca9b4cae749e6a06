#include "simulators/sky-camera/CommandLine.h"
#include "simulators/sky-camera/SkyCamera.h"
#include "tests/simulators/CameraClient.h"

#include <QImage>
#include <QSet>

namespace {

using namespace skycamera;
using namespace skycamera::test;

constexpr auto kSearch = "/cgi/srch.cgi";

/// The names of the third field of each record, read as a client of the camera does.
QList<QByteArray> namesIn(const Answer& answer) {
    const QList<QByteArray> fields = answer.body.split(',');
    QList<QByteArray> names;
    for (qsizetype i = 2; i < fields.size() - 1; i += 3)
        names << fields[i].mid(fields[i].lastIndexOf('/') + 1);
    return names;
}

QByteArray nameOf(const QDateTime& time, const char* frame = "00") {
    return time.toString("yyyyMMdd_HHmmss").toLatin1() + '_' + frame + ".jpg";
}

/// A camera whose PC's clock stands until a test moves it.
class SkyCameraStore : public testing::Test {
  protected:
    SkyCameraOptions withStored(int count, int every = 60) {
        SkyCameraOptions options;
        options.size = QSize(48, 32);
        options.pcClock = [this] { return pcTime_; };
        options.store.stored = count;
        options.store.storedEvery = every;
        return options;
    }
    void start(const SkyCameraOptions& options) {
        camera_ = std::make_unique<SkyCamera>(options);
        ASSERT_TRUE(camera_->start()) << qPrintable(camera_->errorString());
    }

    Answer fetch(const QByteArray& target) { return fetchFrom(camera_->port(), target); }
    Answer search(const QDateTime& from, int maxnum, int frame = 0) {
        // Written out on purpose: years from 2000, months and days from 0.
        return fetch(QString("/cgi/srch.cgi?srch_type=0&s_mode=0&dl=1&ar0=on&from_year=%1"
                             "&from_mon=%2&from_day=%3&from_hour=%4&from_min=%5&from_sec=%6"
                             "&from_frame=%7&maxnum=%8")
                         .arg(from.date().year() - 2000)
                         .arg(from.date().month() - 1)
                         .arg(from.date().day() - 1)
                         .arg(from.time().hour())
                         .arg(from.time().minute())
                         .arg(from.time().second())
                         .arg(frame)
                         .arg(maxnum)
                         .toLatin1());
    }

    QDateTime pcTime_{QDate(2006, 11, 15), QTime(9, 30, 0)};
    std::unique_ptr<SkyCamera> camera_;
};

TEST_F(SkyCameraStore, RecordFormat) {
    start(withStored(3));
    const Answer page = search(pcTime_.addDays(-1), 10);
    EXPECT_TRUE(page.head.contains("Content-Type: text/plain"));
    EXPECT_EQ(page.body, "1,20061115092707,record/20061115/20061115_092707_00.jpg,\n"
                         "2,20061115092807,record/20061115/20061115_092807_00.jpg,\n"
                         "3,20061115092907,record/20061115/20061115_092907_00.jpg,\n");
    EXPECT_EQ(camera_->status().searchesServed, 1U);
    EXPECT_EQ(camera_->status().picturesHeld, 3);
}

TEST_F(SkyCameraStore, SearchBeginsWithItsMoment) {
    // Hours around the turn of a year, a month that ends on the 28th, and a leap day.
    for (const QDateTime& turn :
         {QDateTime(QDate(2007, 1, 1), QTime(0, 0)), QDateTime(QDate(2006, 3, 1), QTime(0, 0)),
          QDateTime(QDate(2008, 3, 1), QTime(0, 0))}) {
        SCOPED_TRACE(qPrintable(turn.toString()));
        pcTime_ = turn.addSecs(7200);
        start(withStored(4, 3600));
        const QDateTime last = turn.addSecs(-3593);
        const QList<QByteArray> both{nameOf(last), nameOf(turn.addSecs(7))};
        EXPECT_EQ(namesIn(search(last, 2)), both);
        EXPECT_EQ(namesIn(search(last.addSecs(1), 1)), both.last(1));
        EXPECT_EQ(namesIn(search(last, 1, 1)), both.last(1));
        EXPECT_EQ(namesIn(search(last.addSecs(-1), 1, 100)), both.first(1));
        EXPECT_EQ(namesIn(search(last, 100)).size(), 3);
        EXPECT_EQ(search(turn.addSecs(3608), 2).body, "NO_DATA\n");
    }
}

TEST_F(SkyCameraStore, FieldsThatAreMissingOrWrong) {
    start(withStored(300));
    struct Case {
        const char* query;
        qsizetype records;
    };
    for (const Case& c : {
             Case{"?maxnum=7", 7},
             Case{"?maxnum=x", 100},
             Case{"?maxnum=0", 1},
             Case{"?from_year=6&from_mon=x&from_day=-1&from_hour=&maxnum=1000", 300},
             Case{"?from_year=2006", 0},
             Case{"?from_year=6&from_mon=10&from_day=31&maxnum=1000", 0},
             Case{"", 60},
         })
        EXPECT_EQ(namesIn(fetch(QByteArray(kSearch) + c.query)).size(), c.records) << c.query;
    SkyCameraOptions all = withStored(300);
    all.store.listAll = true;
    start(all);
    EXPECT_EQ(namesIn(search(pcTime_.addDays(-1), 2)).size(), 300);
}

TEST_F(SkyCameraStore, RecordsByItsClockWhileItIsOn) {
    start(withStored(0));
    const QDateTime on = pcTime_;
    fetch("/cgi/live_s_hide2.cgi?rec=1");
    pcTime_ = on.addSecs(3600);
    fetch("/cgi/live_s_hide2.cgi?rec=0");
    pcTime_ = on.addSecs(7200);
    fetch("/cgi/live_s_hide2.cgi?rec=1");
    pcTime_ = on.addSecs(7200 + 67);
    const QList<QByteArray> names = namesIn(search(on, 1000));
    ASSERT_EQ(names.size(), 62);
    EXPECT_EQ(names.front(), "20061115_093007_00.jpg");
    EXPECT_EQ(names[59], "20061115_102907_00.jpg");
    EXPECT_EQ(names[60], "20061115_113007_00.jpg");
    EXPECT_EQ(names[61], "20061115_113107_00.jpg");
    // what the clock leaps over was never there; the same second once more is another frame
    fetch("/cgi/conf_sys_inp.cgi?i_year=2007&i_mon=1&i_day=1&i_hour=0&i_min=0&i_sec=0");
    EXPECT_EQ(camera_->status().picturesHeld, 62);
    fetch("/cgi/conf_sys_inp.cgi?i_year=2006&i_mon=11&i_day=15&i_hour=9&i_min=30&i_sec=0");
    pcTime_ = pcTime_.addSecs(60);
    EXPECT_EQ(namesIn(search(on, 2)).last(), "20061115_093007_01.jpg");
}

TEST_F(SkyCameraStore, RecordsFromTheStartAsOftenAsToldAndOnlySoMany) {
    SkyCameraOptions often = withStored(2, 0);
    often.store.recording = true;
    often.store.recordEvery = 20;
    start(often);
    pcTime_ = pcTime_.addSecs(27);
    EXPECT_EQ(namesIn(search(pcTime_.addDays(-1), 100)),
              (QList<QByteArray>{"20061115_092927_00.jpg", "20061115_092947_00.jpg",
                                 "20061115_093007_00.jpg", "20061115_093027_00.jpg"}));
    pcTime_ = pcTime_.addYears(1);
    EXPECT_EQ(camera_->status().picturesHeld, Store::kCapacity);
    EXPECT_EQ(namesIn(search(pcTime_, 2)), QList<QByteArray>{nameOf(pcTime_)});
}

TEST_F(SkyCameraStore, PicturesOfTheirMoment) {
    start(withStored(2));
    const QByteArray target = "/record/20061115/20061115_092907_00.jpg";
    const Answer page = fetch(target);
    EXPECT_EQ(page.status(), 200);
    EXPECT_TRUE(page.head.contains("Content-Type: image/jpeg"));
    EXPECT_TRUE(page.wholeJpeg());
    EXPECT_TRUE(page.body.contains("2006:11:15 09:29:07"));
    EXPECT_EQ(QImage::fromData(page.body, "JPG").size(), QSize(48, 32));
    const Answer other = fetch("/record/20061115/20061115_092807_00.jpg");
    EXPECT_TRUE(other.body.contains("2006:11:15 09:28:07"));
    EXPECT_EQ(camera_->status().picturesServed, 2U);
    EXPECT_EQ(fetch(target).body, page.body);

    for (const char* missing : {
             "/record/20061115/20061115_093007_00.jpg",
             "/record/20061115/20061115_092907_01.jpg",
             "/record/20061114/20061115_092907_00.jpg",
             "/record/x/../20061115/20061115_092907_00.jpg",
             "/record/20061115/..%2F20061115_092907_00.jpg",
             "/record/20061115/20061115-092907-00.jpg",
             "/record/",
         })
        EXPECT_EQ(fetch(missing).status(), 404) << missing;
}

TEST_F(SkyCameraStore, SizeOfStoredPictures) {
    for (const bool once : {false, true}) {
        SkyCameraOptions sized = withStored(2);
        sized.store.storedSize = 131'075; // comments of three segments
        sized.store.storedPictureSize = QSize(64, 48);
        sized.store.storedOnce = once;
        start(sized);
        const QByteArray body = fetch("/record/20061115/20061115_092907_00.jpg").body;
        EXPECT_GE(body.size(), 131'075);
        EXPECT_LT(body.size(), 133'000);
        EXPECT_EQ(QImage::fromData(body, "JPG").size(), QSize(64, 48));
        EXPECT_NE(fetch("/record/20061115/20061115_092807_00.jpg").body, body);
    }
}

TEST_F(SkyCameraStore, SpoiltLists) {
    start(withStored(20));
    const QDateTime from = pcTime_.addSecs(-600);
    const QByteArray proper = search(from, 10).body;

    camera_->setFault("list-html");
    const Answer html = search(from, 10);
    EXPECT_TRUE(html.head.contains("Content-Type: text/html"));
    EXPECT_TRUE(html.body.startsWith("<!DOCTYPE html>"));
    EXPECT_TRUE(html.body.contains(proper));

    camera_->setFault("list-nocomma");
    EXPECT_EQ(search(from, 10).body + ",\n", proper);

    camera_->setFault("list-names");
    const QList<QByteArray> names = namesIn(search(from, 2));
    ASSERT_EQ(names.size(), 2);
    EXPECT_GT(names[0].size(), 22);
    EXPECT_LT(names[1].size(), 22);

    camera_->setFault("list-paths");
    QByteArray seen;
    for (int i = 0; i < 8; ++i)
        seen += search(from, 2).body;
    for (const char* trap : {"/..\\", "/..,", "/C:\\", "/C:0", "/\\\\", "../.."})
        EXPECT_TRUE(seen.contains(trap)) << trap;

    camera_->setFault("list-future");
    EXPECT_EQ(namesIn(search(from, 2)),
              (QList<QByteArray>{"20990101_000007_00.jpg", "20990101_000107_00.jpg"}));
    EXPECT_EQ(camera_->status().faultsServed, 12U);
}

TEST_F(SkyCameraStore, ListsOfMissingPicturesGoOnForEver) {
    start(withStored(20));
    camera_->setFault("list-missing");
    for (const QDateTime& from : {pcTime_.addYears(-1), pcTime_.addSecs(-53), pcTime_}) {
        const QList<QByteArray> names = namesIn(search(from, 2));
        ASSERT_EQ(names.size(), 2);
        for (const QByteArray& name : names) {
            EXPECT_GE(name, nameOf(from));
            EXPECT_EQ(name.size(), 22);
            EXPECT_EQ(fetch("/record/" + name.left(8) + '/' + name).status(), 404);
        }
    }
    EXPECT_EQ(namesIn(fetch(kSearch)).size(), 100);
}

TEST_F(SkyCameraStore, VeryLongLists) {
    start(withStored(1));
    camera_->setFault("list-big:3,list-onefield:2");
    const QByteArray records = fetch(kSearch).body;
    EXPECT_EQ(records.size(), 3'000'000);
    EXPECT_GT(records.count(','), 100'000);
    const QByteArray field = fetch(kSearch).body;
    EXPECT_EQ(field.size(), 2'000'000);
    EXPECT_FALSE(field.contains(','));
}

TEST_F(SkyCameraStore, FaultsOfTheLineConcernTheStoreToo) {
    start(withStored(20));
    const QByteArray target = "/record/20061115/20061115_092907_00.jpg";
    for (const QByteArray& path : {QByteArray(kSearch), target}) {
        camera_->setFault("none");
        const QByteArray whole = fetch(path).body;
        ASSERT_TRUE(camera_->setFault("short,status:503,empty,html,drip:1000000", 0, path));
        const Answer broken = fetch(path);
        EXPECT_EQ(broken.length(), whole.size());
        EXPECT_EQ(broken.body, whole.left(whole.size() / 2));
        EXPECT_EQ(fetch(path).status(), 503);
        EXPECT_TRUE(fetch(path).body.isEmpty());
        EXPECT_TRUE(fetch(path).body.startsWith("<!DOCTYPE html>"));
        EXPECT_EQ(fetch(path).body, whole);
    }
    camera_->setFault("stale", 0, "/record/");
    const QByteArray stale = fetch("/record/20061115/20061115_092807_00.jpg").body;
    EXPECT_TRUE(stale.contains("2006:11:15 09:29:07"));
}

TEST(SkyCameraCommandLine, FaultsOfSearchesFallOnTheSearchPage) {
    auto pathOfRule = [](const QStringList& arguments) {
        return parseCommandLine(QStringList{"sky-camera"} + arguments).options.fault.pathPrefix;
    };
    EXPECT_EQ(pathOfRule({"--fault", "none,list-future"}), kSearch);
    EXPECT_EQ(pathOfRule({"--fault", "short"}), "/Images/");
    EXPECT_EQ(pathOfRule({"--fault", "list-future", "--fault-path", "/cgi/"}), "/cgi/");
    for (const QStringList& bad : {QStringList{"--stored", "100001"}, {"--record-every", "0"}})
        EXPECT_NE(parseCommandLine(QStringList{"sky-camera"} + bad).error, "");
}

} // namespace

#include "simulators/sky-camera/CommandLine.h"
#include "simulators/sky-camera/SkyCamera.h"

#include <QEventLoop>
#include <QImage>
#include <QSet>
#include <QTcpSocket>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

using namespace skycamera;

constexpr int kPatienceMs = 5000;
constexpr auto kSearch = "/cgi/srch.cgi";
constexpr auto kRecordOn = "/cgi/live_s_hide2.cgi?rec=1";
constexpr auto kRecordOff = "/cgi/live_s_hide2.cgi?rec=0";

struct Page {
    QByteArray head;
    QByteArray body;

    int status() const { return head.mid(9, 3).toInt(); }
    /// The third field of each record, read as a client of the camera does.
    QList<QByteArray> paths() const {
        const QList<QByteArray> fields = body.split(',');
        QList<QByteArray> paths;
        for (qsizetype i = 2; i < fields.size() - 1; i += 3)
            paths << fields[i];
        return paths;
    }
    QList<QByteArray> names() const {
        QList<QByteArray> names = paths();
        for (QByteArray& name : names)
            name = name.mid(name.lastIndexOf('/') + 1);
        return names;
    }
};

QByteArray nameOf(const QDateTime& time, const char* frame = "00") {
    return time.toString("yyyyMMdd_HHmmss").toLatin1() + '_' + frame + ".jpg";
}

/// The markers of a JPEG file, each found where the length of the one before says; up to the scan.
QByteArray segmentsUpToScan(const QByteArray& jpeg) {
    QByteArray markers;
    for (qsizetype at = 2;
         at + 4 < jpeg.size() && jpeg[at] == '\xFF' && !markers.endsWith('\xDA');) {
        markers += jpeg[at + 1];
        at += 2 + jpeg.mid(at + 2, 2).toHex().toInt(nullptr, 16);
    }
    return markers;
}

/// A camera whose PC's clock stands until a test moves it.
class SkyCameraStore : public testing::Test {
  protected:
    SkyCameraOptions options() {
        SkyCameraOptions options;
        options.size = QSize(48, 32);
        options.pcClock = [this] { return pcTime_; };
        return options;
    }
    SkyCameraOptions withStored(int count, int every = 60) {
        SkyCameraOptions options = this->options();
        options.store.stored = count;
        options.store.storedEvery = every;
        return options;
    }
    void start(const SkyCameraOptions& options) {
        camera_ = std::make_unique<SkyCamera>(options);
        ASSERT_TRUE(camera_->start()) << qPrintable(camera_->errorString());
    }

    Page fetch(const QByteArray& target) {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, camera_->port());
        socket.write("GET " + target + " HTTP/1.1\r\nConnection: close\r\n\r\n");
        // Not qWaitFor: it sleeps between its looks.
        QEventLoop loop;
        QObject::connect(&socket, &QTcpSocket::disconnected, &loop, &QEventLoop::quit);
        QTimer::singleShot(kPatienceMs, &loop, &QEventLoop::quit);
        loop.exec();
        EXPECT_EQ(socket.state(), QTcpSocket::UnconnectedState);
        const QByteArray all = socket.readAll();
        const qsizetype end = all.indexOf("\r\n\r\n");
        return {all.left(end + 4), all.mid(end + 4)};
    }
    Page search(const QDateTime& from, int maxnum, int frame = 0) {
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
    void setClock(const QDateTime& time) {
        EXPECT_EQ(fetch(time.toString("'/cgi/conf_sys_inp.cgi?i_year='yyyy'&i_mon='M'&i_day='d"
                                      "'&i_hour='H'&i_min='m'&i_sec='s")
                            .toLatin1())
                      .status(),
                  200);
    }

    QDateTime pcTime_{QDate(2006, 11, 15), QTime(9, 30, 0)};
    std::unique_ptr<SkyCamera> camera_;
};

TEST_F(SkyCameraStore, RecordFormat) {
    start(withStored(3));
    const Page page = search(pcTime_.addDays(-1), 10);
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
        EXPECT_EQ(search(last, 2).names(), both);
        EXPECT_EQ(search(last, 1).names(), both.first(1));
        EXPECT_EQ(search(last.addSecs(1), 1).names(), both.last(1));
        EXPECT_EQ(search(last, 1, 1).names(), both.last(1));
        EXPECT_EQ(search(last.addSecs(-1), 1, 100).names(), both.first(1));
        EXPECT_EQ(search(last, 100).names().size(), 3);
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
             Case{"?srch_type=0", 100},
             Case{"?maxnum=x", 100},
             Case{"?maxnum=-3", 100},
             Case{"?maxnum=0", 1},
             Case{"?maxnum=99999999", 300},
             Case{"?from_year=6&from_mon=x&from_day=-1&from_hour=&maxnum=1000", 300},
             Case{"?from_year=6&from_mon=10&from_day=14&from_hour=9&maxnum=1000", 30},
             Case{"?from_year=2006", 0},
             Case{"?from_year=6&from_mon=10&from_day=31&maxnum=1000", 0},
             Case{"?from_year=6&from_mon=9&from_day=30&from_hour=99&maxnum=1000", 300},
             Case{"?", 60},
             Case{"", 60},
         })
        EXPECT_EQ(fetch(QByteArray(kSearch) + c.query).names().size(), c.records) << c.query;
}

TEST_F(SkyCameraStore, ListAllIgnoresMaxnum) {
    SkyCameraOptions all = withStored(300);
    all.store.listAll = true;
    start(all);
    EXPECT_EQ(search(pcTime_.addDays(-1), 2).names().size(), 300);
}

TEST_F(SkyCameraStore, RecordsByItsClockWhileItIsOn) {
    start(options());
    pcTime_ = pcTime_.addSecs(3600);
    EXPECT_EQ(fetch(kSearch).body, "NO_DATA\n");

    const QDateTime on = pcTime_;
    fetch(kRecordOn);
    pcTime_ = on.addSecs(3600);
    fetch(kRecordOff);
    pcTime_ = on.addSecs(7200);
    fetch(kRecordOn);
    pcTime_ = on.addSecs(7200 + 67);
    const QList<QByteArray> names = search(on, 1000).names();
    ASSERT_EQ(names.size(), 62);
    EXPECT_EQ(names.front(), "20061115_103007_00.jpg");
    EXPECT_EQ(names[59], "20061115_112907_00.jpg");
    EXPECT_EQ(names[60], "20061115_123007_00.jpg");
    EXPECT_EQ(names[61], "20061115_123107_00.jpg");
    EXPECT_EQ(camera_->status().picturesHeld, 62);
}

TEST_F(SkyCameraStore, RecordsFromTheStartAndAsOftenAsTold) {
    SkyCameraOptions often = withStored(2, 0);
    often.store.recording = true;
    often.store.recordEvery = 20;
    start(often);
    EXPECT_TRUE(camera_->recording());
    pcTime_ = pcTime_.addSecs(27);
    EXPECT_EQ(search(pcTime_.addDays(-1), 100).names(),
              (QList<QByteArray>{"20061115_092927_00.jpg", "20061115_092947_00.jpg",
                                 "20061115_093007_00.jpg", "20061115_093027_00.jpg"}));
}

TEST_F(SkyCameraStore, SettingTheClockRecordsNothing) {
    start(options());
    fetch(kRecordOn);
    pcTime_ = pcTime_.addSecs(120);
    for (const int days : {1, 400, -800})
        setClock(pcTime_.addDays(days));
    EXPECT_EQ(camera_->status().picturesHeld, 2);
    pcTime_ = pcTime_.addSecs(60);
    EXPECT_EQ(camera_->status().picturesHeld, 3);
    // The same minutes once more: the same seconds, other frames.
    setClock(QDateTime(QDate(2006, 11, 15), QTime(9, 30, 0)));
    EXPECT_EQ(fetch(kSearch).body, "NO_DATA\n");
    pcTime_ = pcTime_.addSecs(60);
    const QList<QByteArray> names =
        search(QDateTime(QDate(2006, 11, 15), QTime(9, 30)), 100).names();
    EXPECT_EQ(names, (QList<QByteArray>{"20061115_093007_00.jpg", "20061115_093007_01.jpg",
                                        "20061115_093107_00.jpg"}));
}

TEST_F(SkyCameraStore, NeverHoldsMoreThanItCan) {
    SkyCameraOptions endless = options();
    endless.store.recording = true;
    endless.store.recordEvery = 1;
    start(endless);
    const QDateTime end = pcTime_.addYears(3);
    pcTime_ = end;
    EXPECT_EQ(camera_->status().picturesHeld, Store::kCapacity);
    EXPECT_EQ(search(end, 2).names(), QList<QByteArray>{nameOf(end)});
    pcTime_ = end.addSecs(5);
    EXPECT_EQ(camera_->status().picturesHeld, Store::kCapacity);
    EXPECT_EQ(search(end.addYears(-1), 1).names().front(),
              nameOf(end.addSecs(6 - Store::kCapacity)));
}

TEST_F(SkyCameraStore, PicturesOfTheirMoment) {
    start(withStored(2));
    const QByteArray target = "/record/20061115/20061115_092907_00.jpg";
    const Page page = fetch(target);
    EXPECT_EQ(page.status(), 200);
    EXPECT_TRUE(page.head.contains("Content-Type: image/jpeg"));
    EXPECT_TRUE(page.body.startsWith("\xFF\xD8\xFF") && page.body.endsWith("\xFF\xD9"));
    EXPECT_TRUE(page.body.contains("2006:11:15 09:29:07"));
    EXPECT_EQ(QImage::fromData(page.body, "JPG").size(), QSize(48, 32));
    const Page other = fetch("/record/20061115/20061115_092807_00.jpg");
    EXPECT_TRUE(other.body.contains("2006:11:15 09:28:07"));
    EXPECT_EQ(camera_->status().picturesServed, 2U);
    fetch("/Images/full.jpg");
    EXPECT_EQ(fetch(target).body, page.body);

    for (const char* missing : {
             "/record/20061115/20061115_093007_00.jpg",
             "/record/20061115/20061115_092907_01.jpg",
             "/record/20061114/20061115_092907_00.jpg",
             "/record/20061115/20061115_092907_00.jpeg",
             "/record/20061115/20061115_092907_00.jpg/",
             "/record/x/../20061115/20061115_092907_00.jpg",
             "/record/20061115/..%2F20061115_092907_00.jpg",
             "/record/20061115/20061115-092907-00.jpg",
             "/record/20061115/",
             "/record/",
         })
        EXPECT_EQ(fetch(missing).status(), 404) << missing;
}

TEST_F(SkyCameraStore, SizeOfStoredPictures) {
    for (const bool once : {false, true}) {
        for (const int bytes : {2'000, 100'000, 131'075}) {
            SCOPED_TRACE(bytes);
            SkyCameraOptions sized = withStored(2);
            sized.store.storedSize = bytes;
            sized.store.storedPictureSize = QSize(64, 48);
            sized.store.storedOnce = once;
            start(sized);
            const QByteArray body = fetch("/record/20061115/20061115_092907_00.jpg").body;
            EXPECT_GE(body.size(), bytes);
            EXPECT_LT(body.size(), bytes + 2'000);
            EXPECT_EQ(QImage::fromData(body, "JPG").size(), QSize(64, 48));
            EXPECT_EQ(body.mid(6, 4), "Exif");
            EXPECT_EQ(segmentsUpToScan(body).last(1), "\xDA");
            start(sized);
            EXPECT_NE(fetch("/record/20061115/20061115_092807_00.jpg").body, body);
            EXPECT_EQ(fetch("/record/20061115/20061115_092907_00.jpg").body, body);
        }
    }
}

TEST_F(SkyCameraStore, SpoiltLists) {
    start(withStored(20));
    const QDateTime from = pcTime_.addSecs(-600);
    const QByteArray proper = search(from, 10).body;

    camera_->setFault("list-html");
    const Page html = search(from, 10);
    EXPECT_TRUE(html.head.contains("Content-Type: text/html"));
    EXPECT_TRUE(html.body.startsWith("<!DOCTYPE html>"));
    EXPECT_TRUE(html.body.contains(proper));

    camera_->setFault("list-nocomma");
    EXPECT_EQ(search(from, 10).body + ",\n", proper);

    camera_->setFault("list-names");
    QSet<bool> lengths;
    for (const QByteArray& name : search(from, 2).names()) {
        EXPECT_NE(name.size(), 22);
        lengths << (name.size() > 22);
    }
    EXPECT_EQ(lengths.size(), 2);

    camera_->setFault("list-paths");
    QByteArray seen;
    for (int i = 0; i < 8; ++i)
        seen += search(from, 2).body;
    for (const char* trap : {"/..\\", "/..,", "/C:\\", "/C:0", "/\\\\", "../.."})
        EXPECT_TRUE(seen.contains(trap)) << trap;

    camera_->setFault("list-future");
    for (const QByteArray& name : search(from, 2).names())
        EXPECT_TRUE(name.startsWith("2099") && name.size() == 22) << name.toStdString();
    EXPECT_EQ(camera_->status().faultsServed, 12U);
}

TEST_F(SkyCameraStore, ListsOfMissingPicturesGoOnForEver) {
    start(withStored(20));
    camera_->setFault("list-missing");
    for (const QDateTime& from : {pcTime_.addYears(-1), pcTime_.addSecs(-53), pcTime_}) {
        const QList<QByteArray> names = search(from, 2).names();
        ASSERT_EQ(names.size(), 2);
        for (const QByteArray& name : names) {
            EXPECT_GE(name, nameOf(from));
            EXPECT_EQ(name.size(), 22);
            EXPECT_EQ(fetch("/record/" + name.left(8) + '/' + name).status(), 404);
        }
    }
    EXPECT_EQ(fetch(kSearch).names().size(), 100);
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
        const Page broken = fetch(path);
        EXPECT_TRUE(broken.head.contains("Content-Length: " + QByteArray::number(whole.size())));
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

TEST(SkyCameraStoreFaults, FallOnTheSearchPageUnlessToldOtherwise) {
    auto pathOfRule = [](const QStringList& arguments) {
        return parseCommandLine(QStringList{"sky-camera"} + arguments).options.fault.pathPrefix;
    };
    EXPECT_EQ(pathOfRule({"--fault", "none,list-future"}), kSearch);
    EXPECT_EQ(pathOfRule({"--fault", "short"}), "/Images/");
    EXPECT_EQ(pathOfRule({"--fault", "list-future", "--fault-path", "/cgi/"}), "/cgi/");
    const CommandLine line = parseCommandLine(
        {"sky-camera", "--record", "--record-every", "30", "--stored", "5", "--stored-every", "90",
         "--stored-size", "1000", "--stored-picture-size", "32x24", "--stored-once", "--list-all"});
    const StoreOptions& store = line.options.store;
    EXPECT_EQ(line.error, "");
    EXPECT_TRUE(store.recording && store.storedOnce && store.listAll);
    EXPECT_EQ(store.recordEvery * 1000 + store.storedEvery, 30'090);
    EXPECT_EQ(store.stored + store.storedSize, 1005);
    EXPECT_EQ(store.storedPictureSize, QSize(32, 24));
    for (const QStringList& bad : {QStringList{"--stored", "100001"}, {"--record-every", "0"}})
        EXPECT_NE(parseCommandLine(QStringList{"sky-camera"} + bad).error, "");
}

} // namespace

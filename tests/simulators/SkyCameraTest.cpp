#include "simulators/sky-camera/SkyCamera.h"

#include <QElapsedTimer>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QTcpSocket>
#include <QTest>
#include <cmath>
#include <deque>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

namespace {

using namespace skycamera;

constexpr int kPatienceMs = 5000;
constexpr auto kPicture = "/Images/full.jpg";

struct Answer {
    QByteArray head;
    QByteArray body;

    int status() const { return head.mid(9, 3).toInt(); }
    /// -1 when no length was announced.
    qsizetype length() const {
        const qsizetype at = head.indexOf("Content-Length: ");
        return at < 0 ? -1 : head.mid(at + 16, head.indexOf('\r', at) - at - 16).toInt();
    }
    bool wholeJpeg() const { return body.startsWith("\xFF\xD8\xFF") && body.endsWith("\xFF\xD9"); }
};

/// A client that shows the bytes as they are.
class Client {
  public:
    explicit Client(quint16 port) { socket_.connectToHost(QHostAddress::LocalHost, port); }

    bool connected() { return waitFor(QAbstractSocket::ConnectedState); }
    bool closed() { return waitFor(QAbstractSocket::UnconnectedState); }
    bool open() const { return socket_.state() == QAbstractSocket::ConnectedState; }
    QAbstractSocket::SocketError error() const { return socket_.error(); }
    void send(const QByteArray& bytes) {
        ASSERT_TRUE(connected());
        socket_.write(bytes);
    }
    void get(const QByteArray& target) { send("GET " + target + " HTTP/1.1\r\nHost: c\r\n\r\n"); }

    /// What has come so far, as one answer.
    Answer soFar() {
        input_ += socket_.readAll();
        const qsizetype end = input_.indexOf("\r\n\r\n");
        return end < 0 ? Answer{} : Answer{input_.left(end + 4), input_.mid(end + 4)};
    }
    /// The next whole answer; what follows it stays for the next call.
    Answer next() {
        auto whole = [this] {
            const Answer answer = soFar();
            return !answer.head.isEmpty() && answer.body.size() >= answer.length();
        };
        EXPECT_TRUE(QTest::qWaitFor(whole, kPatienceMs));
        Answer answer = soFar();
        answer.body.truncate(answer.length());
        input_.remove(0, answer.head.size() + answer.body.size());
        return answer;
    }

  private:
    bool waitFor(QAbstractSocket::SocketState state) {
        return QTest::qWaitFor([&] { return socket_.state() == state; }, kPatienceMs);
    }

    QTcpSocket socket_;
    QByteArray input_;
};

class SkyCameraTest : public testing::Test {
  protected:
    SkyCameraOptions options() {
        SkyCameraOptions options;
        options.size = QSize(160, 120);
        options.pcClock = [this] { return pcTime_; };
        return options;
    }
    void SetUp() override { ASSERT_TRUE(camera_.start()) << qPrintable(camera_.errorString()); }

    Answer fetch(const QByteArray& target) { return fetchFrom(camera_, target); }
    static Answer fetchFrom(const SkyCamera& camera, const QByteArray& target) {
        Client client(camera.port());
        client.get(target);
        return client.next();
    }

    QDateTime pcTime_{QDate(2026, 3, 1), QTime(12, 0, 0)};
    SkyCamera camera_{options()};
};

TEST_F(SkyCameraTest, EachPictureIsFreshAndDecodes) {
    camera_.setFault("none");
    Client client(camera_.port());
    client.get(kPicture);
    const Answer first = client.next();
    client.get(kPicture);
    const Answer second = client.next();
    EXPECT_NE(first.body, second.body);
    for (const Answer& answer : {first, second}) {
        EXPECT_EQ(answer.status(), 200);
        EXPECT_TRUE(answer.head.contains("Content-Type: image/jpeg\r\n"));
        EXPECT_TRUE(answer.wholeJpeg());
        EXPECT_EQ(QImage::fromData(answer.body, "JPG").size(), QSize(160, 120));
        EXPECT_EQ(answer.body.mid(6, 6), QByteArray("Exif\0\0", 6));
        EXPECT_TRUE(answer.body.contains("2026:03:01 12:00:00"));
    }
    EXPECT_EQ(camera_.status().picturesServed, 2U);
}

TEST_F(SkyCameraTest, SameSeedTimeAndNumberGiveTheSameBytes) {
    auto firstPicture = [this](quint32 seed, QTime time) {
        SkyCameraOptions different = options();
        different.seed = seed;
        different.startTime = calendarTime(QDate(2006, 11, 15), time);
        SkyCamera camera(different);
        EXPECT_TRUE(camera.start());
        return fetchFrom(camera, kPicture).body;
    };
    const QByteArray picture = firstPicture(3, QTime(9, 30, 0));
    EXPECT_EQ(picture, firstPicture(3, QTime(9, 30, 0)));
    EXPECT_NE(picture, firstPicture(4, QTime(9, 30, 0)));
    EXPECT_NE(picture, firstPicture(3, QTime(9, 30, 1)));
}

TEST_F(SkyCameraTest, ClockIsSetAndRunsOn) {
    const QByteArray set = "/cgi/conf_sys_inp.cgi?";
    EXPECT_EQ(fetch(set + "i_year=2006&i_mon=7&i_day=5&i_hour=9&i_min=3&i_sec=0").status(), 200);
    pcTime_ = pcTime_.addSecs(90);
    const QDateTime expected = calendarTime(QDate(2006, 7, 5), QTime(9, 4, 30));
    EXPECT_EQ(camera_.clock(), expected);
    EXPECT_TRUE(fetch(kPicture).body.contains("2006:07:05 09:04:30"));
    for (const char* bad : {
             "",
             "i_year=2006&i_mon=7&i_day=5&i_hour=9&i_min=3",
             "i_year=2006&i_mon=2&i_day=29&i_hour=9&i_min=3&i_sec=0",
             "i_year=2006&i_mon=7&i_day=5&i_hour=24&i_min=3&i_sec=0",
             "i_year=2006&i_mon=7&i_day=5&i_hour=9&i_min=-3&i_sec=0",
             "i_year=2006&i_mon=7&i_day=5&i_hour=9&i_min=3&i_sec=x",
             "i_year=1999&i_mon=7&i_day=5&i_hour=9&i_min=3&i_sec=0",
         })
        EXPECT_EQ(fetch(set + bad).status(), 400) << bad;
    EXPECT_EQ(camera_.clock(), expected);
}

TEST_F(SkyCameraTest, RecordingIsSwitched) {
    EXPECT_EQ(fetch("/cgi/live_s_hide2.cgi?rec=1").status(), 200);
    EXPECT_TRUE(camera_.recording());
    for (const char* bad : {"", "?rec=", "?rec=2", "?rec=on"})
        EXPECT_EQ(fetch(QByteArray("/cgi/live_s_hide2.cgi") + bad).status(), 400) << bad;
    EXPECT_TRUE(camera_.recording());
    const Answer status = fetch("/sim/status");
    EXPECT_TRUE(QJsonDocument::fromJson(status.body).object()["recording"].toBool());
    EXPECT_EQ(fetch("/cgi/live_s_hide2.cgi?rec=0").status(), 200);
    EXPECT_FALSE(camera_.recording());
    EXPECT_TRUE(fetch("/").body.contains("<html>"));
    EXPECT_EQ(fetch("/cgi/other.cgi").status(), 404);
}

TEST_F(SkyCameraTest, BrokenTransfersOnTheWire) {
    struct Case {
        const char* fault;
        bool announced;
        bool closed;
    };
    for (const Case& c : {Case{"stall", true, false}, Case{"reset", true, true},
                          Case{"short", true, true}, Case{"nolength-cut", false, true}}) {
        SCOPED_TRACE(c.fault);
        ASSERT_TRUE(camera_.setFault(c.fault));
        Client client(camera_.port());
        client.get(kPicture);
        EXPECT_TRUE(QTest::qWaitFor([&] { return client.soFar().body.size() > 500; }, kPatienceMs));
        // A closed connection may take a moment; an open one must stay open for that moment.
        const int wait = c.closed ? kPatienceMs : 60;
        EXPECT_EQ(QTest::qWaitFor([&] { return !client.open(); }, wait), c.closed);
        const Answer answer = client.soFar();
        EXPECT_EQ(answer.status(), 200);
        EXPECT_TRUE(answer.body.startsWith("\xFF\xD8\xFF"));
        EXPECT_FALSE(answer.body.contains("\xFF\xD9"));
        EXPECT_EQ(answer.length() > answer.body.size(), c.announced);
        EXPECT_EQ(answer.length() == -1, !c.announced);
    }
    EXPECT_EQ(camera_.status().picturesServed, 0U);
    EXPECT_EQ(camera_.status().faultsServed, 4U);
}

TEST_F(SkyCameraTest, WrongAnswersWithARightLength) {
    struct Case {
        const char* fault;
        int status;
        const char* start;
    };
    for (const Case& c : {Case{"status:503", 503, "<!DOCTYPE html>"}, Case{"status:401", 401, "<"},
                          Case{"html", 200, "<!DOCTYPE html>"}, Case{"empty", 200, ""},
                          Case{"cut", 200, "\xFF\xD8\xFF"}}) {
        SCOPED_TRACE(c.fault);
        ASSERT_TRUE(camera_.setFault(c.fault));
        const Answer answer = fetch(kPicture);
        EXPECT_EQ(answer.status(), c.status);
        EXPECT_TRUE(answer.body.startsWith(c.start));
        EXPECT_FALSE(answer.wholeJpeg());
        EXPECT_EQ(answer.body.isEmpty(), QByteArray(c.fault) == "empty");
    }
}

TEST_F(SkyCameraTest, SilentLateAndSlowAnswers) {
    camera_.setFault("silent");
    Client silent(camera_.port());
    silent.get(kPicture);
    QTest::qWait(60);
    EXPECT_TRUE(silent.soFar().head.isEmpty());
    EXPECT_TRUE(silent.open());
    EXPECT_EQ(camera_.status().faultsServed, 1U);

    camera_.setFault("delay:80");
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(fetch(kPicture).wholeJpeg());
    EXPECT_GE(timer.elapsed(), 80);

    // 2000 bytes a second: after a quarter of a second about 500.
    camera_.setFault("drip:2000");
    Client slow(camera_.port());
    slow.get(kPicture);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !slow.soFar().head.isEmpty(); }, kPatienceMs));
    QTest::qWait(250);
    EXPECT_GT(slow.soFar().body.size(), 100);
    EXPECT_LT(slow.soFar().body.size(), 1000);
    EXPECT_TRUE(slow.open());
}

TEST_F(SkyCameraTest, StaleRepeatsTheBytes) {
    const QByteArray picture = fetch(kPicture).body;
    camera_.setFault("stale", 2);
    EXPECT_EQ(fetch(kPicture).body, picture);
    EXPECT_EQ(fetch(kPicture).body, picture);
    EXPECT_NE(fetch(kPicture).body, picture);
}

TEST_F(SkyCameraTest, HugePictureHas20Megapixels) {
    camera_.setFault("huge", 1);
    const QByteArray body = fetch(kPicture).body;
    // Only the frame header is read: FF C0, length, precision, height, width.
    const qsizetype frame = body.indexOf(QByteArray("\xFF\xC0\x00\x11\x08", 5));
    ASSERT_GT(frame, 0);
    EXPECT_EQ(body.mid(frame + 5, 4).toHex(), QByteArray("0e401560"));
}

TEST_F(SkyCameraTest, RefusedUntilCleared) {
    const quint16 port = camera_.port();
    Client before(port);
    ASSERT_TRUE(before.connected());
    camera_.setFault("refuse");
    Client refused(port);
    EXPECT_TRUE(refused.closed());
    EXPECT_EQ(refused.error(), QAbstractSocket::ConnectionRefusedError);
    EXPECT_TRUE(before.closed());
    camera_.setFault("none");
    EXPECT_EQ(camera_.port(), port);
    EXPECT_EQ(fetch(kPicture).status(), 200);
}

TEST_F(SkyCameraTest, FaultsByCountAndPathOverTheNetwork) {
    EXPECT_EQ(fetch("/sim/fault?name=status&arg=404&count=2&path=/cgi/").status(), 200);
    EXPECT_EQ(fetch(kPicture).status(), 200);
    const QByteArray on = "/cgi/live_s_hide2.cgi?rec=1";
    EXPECT_EQ(fetch(on).status(), 404);
    EXPECT_FALSE(camera_.recording());
    EXPECT_EQ(fetch(on).status(), 404);
    EXPECT_EQ(fetch(on).status(), 200);

    EXPECT_EQ(fetch("/sim/fault?name=empty,none,status:500&path=/").status(), 200);
    EXPECT_EQ(fetch(kPicture).length(), 0);
    EXPECT_TRUE(fetch(kPicture).wholeJpeg());
    EXPECT_EQ(fetch(kPicture).status(), 500);
    EXPECT_EQ(fetch("/sim/fault?name=none").status(), 200);
    EXPECT_TRUE(fetch(kPicture).wholeJpeg());
    for (const char* bad : {"", "?name=", "?name=rain", "?name=drip&arg=fast", "?name=cut&arg=1",
                            "?name=status&arg=200", "?name=cut&count=-1", "?name=refuse&arg=0"})
        EXPECT_EQ(fetch(QByteArray("/sim/fault") + bad).status(), 400) << bad;
    EXPECT_EQ(camera_.status().fault, "none");
}

TEST(SkyCameraFaults, RandomFaultsRepeatWithTheirSeed) {
    auto draw = [](const char* list) {
        FaultSource source;
        source.setRule({parseFaults(list).faults});
        QStringList drawn;
        for (int i = 0; i < 200; ++i)
            drawn << textOf(source.next(kPicture));
        return drawn;
    };
    const QStringList drawn = draw("random:7");
    EXPECT_EQ(drawn, draw("random:7"));
    EXPECT_NE(drawn, draw("random:8"));
    EXPECT_EQ(QSet<QString>(drawn.begin(), drawn.end()).size(), 15);
    EXPECT_NEAR(static_cast<double>(drawn.count("none")), 100.0, 30.0);
}

TEST(SkyCameraFaults, RandomFaultsSuitTheRequest) {
    auto drawn = [](const char* path) {
        FaultSource source;
        source.setRule({parseFaults("random:7").faults, 0, "/"});
        QSet<QString> kinds;
        for (int i = 0; i < 600; ++i)
            kinds << textOf(source.next(path)).section(':', 0, 0);
        return kinds;
    };
    const QSet<QString> pictures{"huge", "stale"};
    const QSet<QString> lists{"list-html",   "list-nocomma", "list-names", "list-paths",
                              "list-future", "list-missing", "list-big",   "list-onefield"};
    const QSet<QString> other = drawn("/");
    EXPECT_EQ(drawn(kSearchPath), other + lists);
    for (const char* path : {kPicture, "/record/20061115/20061115_092907_00.jpg"})
        EXPECT_EQ(drawn(path), other + pictures) << path;
    EXPECT_FALSE(other.intersects(pictures + lists));
}

TEST_F(SkyCameraTest, NonsenseIsAnsweredAndClosed) {
    struct Case {
        QByteArray bytes;
        int status;
    };
    const std::vector<Case> cases{
        Case{"hello\r\n\r\n", 400},
        Case{"GET /\r\n\r\n", 400},
        Case{"GET nowhere HTTP/1.1\r\n\r\n", 400},
        Case{"GET / HTTP/1.1\r\nno colon\r\n\r\n", 400},
        Case{QByteArray("\0\xFF\x16\x03\n\n", 6), 400},
        Case{"GET / HTTP/2.0\r\n\r\n", 505},
        Case{"POST / HTTP/1.1\r\nContent-Length: 3\r\n\r\nabc", 405},
        Case{"GET / HTTP/1.1\r\nContent-Length: 3\r\n\r\nabc", 413},
        Case{"GET /" + QByteArray(40'000, 'x'), 431},
    };
    // All at once: the camera lingers a little before it closes.
    std::deque<Client> clients;
    for (const Case& c : cases)
        clients.emplace_back(camera_.port()).send(c.bytes);
    for (std::size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE(cases[i].bytes.left(40).toStdString());
        EXPECT_EQ(clients[i].next().status(), cases[i].status);
        EXPECT_TRUE(clients[i].closed());
    }
    EXPECT_EQ(fetch(kPicture).status(), 200);
}

TEST_F(SkyCameraTest, SeveralRequestsOnOneConnection) {
    Client client(camera_.port());
    const QByteArray many = "GET /sim/status HTTP/1.1\r\n\r\n"
                            "HEAD /Images/full.jpg HTTP/1.1\r\n\r\n"
                            "\r\nGET http://c/missing HTTP/1.1\r\n\r\n"
                            "GET /Images/full.jpg HTTP/1.0\nConnection: keep-alive\n\n"
                            "GET / HTTP/1.1\r\nConnection: close\r\n\r\n"
                            "GET / HTTP/1.1\r\n\r\n";
    client.send(many.left(20));
    QTest::qWait(5);
    client.send(many.mid(20));
    EXPECT_TRUE(client.next().body.startsWith('{'));
    // The answer to HEAD has a length, but no body.
    ASSERT_TRUE(QTest::qWaitFor([&] { return client.soFar().head.contains("image/jpeg"); }));
    EXPECT_TRUE(client.closed());
    const Answer head = client.soFar();
    EXPECT_GT(head.length(), 500);
    EXPECT_TRUE(head.body.startsWith("HTTP/1.1 404"));
    EXPECT_EQ(head.body.count("HTTP/1.1 200"), 2);
    EXPECT_EQ(head.body.count("\xFF\xD9"), 1);
    EXPECT_TRUE(head.body.endsWith("</html>\n"));
}

TEST(SkyCameraSun, AgreesWithTheAlmanac) {
    struct Case {
        QDateTime time;
        SkySite site;
        double elevation;
        double azimuth;
    };
    // Culminations: 90 degrees less latitude plus declination, at noon less the equation of time
    // (+16.4 minutes on 3 November, -1.8 on 21 June). Half a day before the equinox of March 2006
    // the declination is -0.2 degrees.
    for (const Case& c : {
             Case{calendarTime({2006, 11, 3}, {11, 43, 36}), {52.0, 0.0, 0}, 22.9, 180.0},
             Case{calendarTime({2006, 6, 21}, {12, 1, 48}), {35.0, 135.0, 540}, 78.4, 180.0},
             Case{calendarTime({2006, 6, 21}, {12, 1, 48}), {-35.0, 135.0, 540}, 31.6, 0.0},
             Case{calendarTime({2006, 3, 20}, {6, 7, 30}), {0.0, 0.0, 0}, 0.0, 90.2},
         }) {
        const SkyDirection sun = sunPosition(c.time, c.site);
        EXPECT_NEAR(sun.elevation, c.elevation, 0.3);
        // Azimuths lie close together near the zenith.
        const double side = std::remainder(sun.azimuth - c.azimuth, 360.0);
        EXPECT_NEAR(side * std::cos(c.elevation * std::numbers::pi / 180.0), 0.0, 0.5);
    }
}

} // namespace

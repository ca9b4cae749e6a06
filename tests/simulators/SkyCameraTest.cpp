#include "simulators/sky-camera/SkyCamera.h"
#include "tests/simulators/CameraClient.h"

#include <QElapsedTimer>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <cmath>
#include <deque>
#include <map>
#include <numbers>
#include <vector>

namespace {

using namespace skycamera;
using namespace skycamera::test;

constexpr auto kPicture = "/Images/full.jpg";

class SkyCameraTest : public testing::Test {
  protected:
    SkyCameraOptions options() {
        SkyCameraOptions options;
        options.size = QSize(160, 120);
        options.pcClock = [this] { return pcTime_; };
        return options;
    }
    void SetUp() override { ASSERT_TRUE(camera_.start()) << qPrintable(camera_.errorString()); }

    Answer fetch(const QByteArray& target) { return fetchFrom(camera_.port(), target); }

    QDateTime pcTime_{QDate(2026, 3, 1), QTime(12, 0, 0)};
    SkyCamera camera_{options()};
};

TEST_F(SkyCameraTest, EachPictureIsFreshAndDecodes) {
    Client client(camera_.port());
    QSet<QByteArray> bodies;
    for (int i = 0; i < 3; ++i) { // the third of another moment
        if (i == 2) pcTime_ = pcTime_.addSecs(1);
        client.get(kPicture);
        const Answer answer = client.next();
        EXPECT_EQ(answer.status(), 200);
        EXPECT_TRUE(answer.head.contains("Content-Type: image/jpeg\r\n"));
        EXPECT_TRUE(answer.wholeJpeg());
        EXPECT_EQ(QImage::fromData(answer.body, "JPG").size(), QSize(160, 120));
        EXPECT_EQ(answer.body.mid(6, 6), QByteArray("Exif\0\0", 6));
        EXPECT_EQ(answer.body.count(i < 2 ? "2026:03:01 12:00:00" : "2026:03:01 12:00:01"), 2);
        bodies << answer.body;
    }
    EXPECT_EQ(bodies.size(), 3);
    EXPECT_EQ(camera_.status().picturesServed, 3U);
}

TEST(SkyCameraPicture, IsAFunctionOfItsScene) {
    const SkyPicture picture;
    SkyScene scene;
    scene.time = calendarTime(QDate(2006, 11, 15), QTime(9, 30, 0));
    scene.size = QSize(320, 240);
    std::vector<SkyScene> others(4, scene);
    others[0].seed = 2;
    others[1].time = scene.time.addSecs(1);
    others[2].frame = 1;
    others[3].recording = true;
    const QByteArray bytes = picture.jpeg(scene);
    EXPECT_EQ(bytes, picture.jpeg(scene));
    for (const SkyScene& other : others)
        EXPECT_NE(bytes, picture.jpeg(other));
}

/// The view is 180 degrees wide, south in its middle, and from -6 to 88 degrees high.
TEST(SkyCameraPicture, TheSunStandsWhereItBelongs) {
    const SkyPicture picture;
    for (const int hour : {9, 12, 15}) {
        SkyScene scene;
        scene.time = calendarTime(QDate(2006, 11, 20), QTime(hour, 0));
        scene.size = QSize(360, 188);
        scene.seed = 5; // fine weather at these hours
        const QImage image = QImage::fromData(picture.jpeg(scene), "JPG");
        double count = 0;
        QPointF sum;
        for (int y = image.height() / 8; y < image.height(); ++y) // below the white time and number
            for (int x = 0; x < image.width(); ++x) {
                const QRgb pixel = image.pixel(x, y);
                if (qRed(pixel) + qGreen(pixel) + qBlue(pixel) < 730) continue;
                sum += QPointF(x, y);
                ++count;
            }
        ASSERT_GT(count, 0) << hour;
        const SkyDirection sun = sunPosition(scene.time, scene.site);
        EXPECT_NEAR(sum.x() / count, 180.0 + 2.0 * (sun.azimuth - 180.0), 4.0) << hour;
        EXPECT_NEAR(sum.y() / count, 2.0 * (88.0 - sun.elevation), 4.0) << hour;
    }
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

TEST_F(SkyCameraTest, ClockIsSetAndRunsOn) {
    const QByteArray set = "/cgi/conf_sys_inp.cgi?";
    EXPECT_EQ(fetch(set + "i_year=2006&i_mon=7&i_day=5&i_hour=9&i_min=3&i_sec=0").status(), 200);
    pcTime_ = pcTime_.addSecs(90);
    const QDateTime expected = calendarTime(QDate(2006, 7, 5), QTime(9, 4, 30));
    EXPECT_EQ(camera_.clock(), expected);
    for (const char* bad : {"", "i_year=2006&i_mon=7&i_day=5&i_hour=9&i_min=3",
                            "i_year=2006&i_mon=2&i_day=29&i_hour=9&i_min=3&i_sec=0",
                            "i_year=2006&i_mon=7&i_day=5&i_hour=9&i_min=-3&i_sec=0",
                            "i_year=1999&i_mon=7&i_day=5&i_hour=9&i_min=3&i_sec=0"})
        EXPECT_EQ(fetch(set + bad).status(), 400) << bad;
    EXPECT_EQ(camera_.clock(), expected);
}

TEST_F(SkyCameraTest, RecordingIsSwitched) {
    EXPECT_EQ(fetch("/cgi/live_s_hide2.cgi?rec=1").status(), 200);
    for (const char* bad : {"", "?rec=2", "?rec=on"})
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
        EXPECT_TRUE(client.until([&] { return client.soFar().body.size() > 500; }));
        // A closed connection may take a moment; an open one must stay open for that moment.
        EXPECT_EQ(c.closed ? client.closed() : client.closed(60), c.closed);
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
    EXPECT_FALSE(silent.closed(60));
    EXPECT_TRUE(silent.soFar().head.isEmpty());
    EXPECT_EQ(camera_.status().faultsServed, 1U);

    QElapsedTimer timer;
    timer.start();
    camera_.setFault("delay:80");
    EXPECT_TRUE(fetch(kPicture).wholeJpeg());
    EXPECT_GE(timer.restart(), 80);

    // 2000 bytes a second: 400 of them not before a fifth of a second, less the first portion
    camera_.setFault("drip:2000");
    Client slow(camera_.port());
    slow.get(kPicture);
    EXPECT_TRUE(slow.until([&] { return slow.soFar().body.size() >= 400; }));
    EXPECT_GE(timer.elapsed(), 150);
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
    before.get(kPicture); // connected is not yet taken by the camera
    ASSERT_EQ(before.next().status(), 200);
    camera_.setFault("refuse");
    Client refused(port);
    EXPECT_TRUE(refused.closed());
    EXPECT_EQ(refused.socket.error(), QAbstractSocket::ConnectionRefusedError);
    EXPECT_TRUE(before.closed());
    camera_.setFault("none");
    EXPECT_EQ(camera_.port(), port);
    EXPECT_EQ(fetch(kPicture).status(), 200);
}

TEST_F(SkyCameraTest, FaultsByCountAndPathOverTheNetwork) {
    EXPECT_EQ(fetch("/sim/fault?name=status&arg=404&count=2&path=/cgi/").status(), 200);
    EXPECT_EQ(fetch(kPicture).status(), 200);
    for (const int status : {404, 404, 200})
        EXPECT_EQ(fetch("/cgi/live_s_hide2.cgi?rec=1").status(), status);

    EXPECT_EQ(fetch("/sim/fault?name=empty,none,status:500&path=/").status(), 200);
    EXPECT_EQ(fetch(kPicture).length(), 0);
    EXPECT_TRUE(fetch(kPicture).wholeJpeg());
    EXPECT_EQ(fetch(kPicture).status(), 500);
    EXPECT_EQ(fetch("/sim/fault?name=none").status(), 200);
    EXPECT_TRUE(fetch(kPicture).wholeJpeg());
    for (const char* bad : {"", "?name=rain", "?name=drip&arg=fast", "?name=cut&arg=1",
                            "?name=status&arg=200", "?name=cut&count=-1", "?name=refuse&arg=0"})
        EXPECT_EQ(fetch(QByteArray("/sim/fault") + bad).status(), 400) << bad;
    EXPECT_EQ(camera_.status().fault, "none");
}

TEST(SkyCameraFaults, RandomOnesRepeatWithTheirSeedAndSuitTheRequest) {
    auto draw = [](const char* list, const char* path) {
        FaultSource source;
        source.setRule({parseFaults(list).faults, 0, "/"});
        QStringList drawn;
        for (int i = 0; i < 600; ++i)
            drawn << textOf(source.next(path)).section(':', 0, 0);
        return drawn;
    };
    const QStringList drawn = draw("random:7", "/");
    EXPECT_EQ(drawn, draw("random:7", "/"));
    EXPECT_NE(drawn, draw("random:8", "/"));
    EXPECT_NEAR(static_cast<double>(drawn.count("none")), 300.0, 60.0);

    auto kinds = [](const QStringList& list) { return QSet<QString>(list.begin(), list.end()); };
    const QSet<QString> pictures{"huge", "stale"};
    const QSet<QString> lists{"list-html",   "list-nocomma", "list-names", "list-paths",
                              "list-future", "list-missing", "list-big",   "list-onefield"};
    EXPECT_EQ(kinds(draw("random:7", kSearchPath)), kinds(drawn) + lists);
    for (const char* path : {kPicture, "/record/20061115/20061115_092907_00.jpg"})
        EXPECT_EQ(kinds(draw("random:7", path)), kinds(drawn) + pictures) << path;
    EXPECT_FALSE(kinds(drawn).intersects(pictures + lists));
}

TEST_F(SkyCameraTest, NonsenseIsAnsweredAndClosed) {
    const std::map<int, QByteArray> requests{
        {400, "GET / HTTP/1.1\r\nno colon\r\n\r\n"},
        {405, "POST / HTTP/1.1\r\nContent-Length: 3\r\n\r\nabc"},
        {431, "GET /" + QByteArray(40'000, 'x')},
        {505, "GET / HTTP/2.0\r\n\r\n"},
    };
    // All at once: the camera lingers a little before it closes.
    std::deque<Client> clients;
    for (const auto& [status, bytes] : requests)
        clients.emplace_back(camera_.port()).socket.write(bytes);
    for (const auto& [status, bytes] : requests) {
        EXPECT_EQ(clients.front().next().status(), status);
        EXPECT_TRUE(clients.front().closed());
        clients.pop_front();
    }
}

TEST_F(SkyCameraTest, SeveralRequestsOnOneConnection) {
    Client client(camera_.port());
    client.socket.write("GET /sim/status HTTP/1.1\r\n\r\n"
                        "GET /missing HTTP/1.1\r\n\r\n"
                        "GET / HTTP/1.1\r\nConnection: close\r\n\r\n"
                        "GET / HTTP/1.1\r\n\r\n");
    EXPECT_TRUE(client.next().body.startsWith('{'));
    EXPECT_EQ(client.next().status(), 404);
    EXPECT_TRUE(client.next().body.endsWith("</html>\n"));
    EXPECT_TRUE(client.closed());
    EXPECT_TRUE(client.soFar().head.isEmpty());
}

} // namespace

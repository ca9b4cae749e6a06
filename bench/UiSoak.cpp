// The windows over a long time and with a large picture, on the offscreen platform:
//
//   orvane-ui-soak week [days]   a capture every minute and a live picture every five seconds, with
//                                the latest-image window and the thumbnails open; fails when memory
//                                or the number of decoded pictures grows beyond what it must
//   orvane-ui-soak open FILE     opens, zooms, trims and saves a JPEG on the real clock; fails when
//                                the event loop stands still for more than half a second
//   orvane-ui-soak days          an archive of ten years: calendar, another day, its keogram and
//   its
//                                film on the real clock; fails when the event loop stands still for
//                                more than 50 ms, the film is late or the calendar slow

#include "platform/Conversions.h"
#include "platform/qt/QtClock.h"
#include "tests/support/TestPictures.h"
#include "tests/support/TestWindow.h"
#include "ui/Layout.h"
#include "ui/day/DayMenu.h"
#include "ui/day/DayView.h"
#include "ui/day/FilmWindow.h"
#include "ui/day/FrmCalendar.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <random>

namespace {

using namespace orvane;
using namespace orvane::test;

/// A value in kB of the process's status, 0 where the system does not tell.
long memory(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(name + ":")) return std::atol(line.c_str() + name.size() + 1);
    return 0;
}

bool runWeek(int days) {
    JumpingClock operatorClock(at(2006, 11, 15));
    FakeOperator op(operatorClock);
    Window w(op);
    const std::string picture = encoded(gradient(640, 480));
    int served = 0;
    w.http.answer = [&](const std::string&) {
        const std::string comment = segment(0xFE, std::to_string(++served));
        return HttpReply{true, 200, withSegments(picture, comment), ""};
    };
    w.views.shown = &w.pictures;
    w.setSchedule("0", "23", "1", "59");
    w.start(true);
    w.clock.run(1min);
    w.panel.chkLive.ticked = true;
    long resident = 0;
    std::size_t waiting = 0;
    for (int day = 1; day <= days; ++day) {
        const WallTime midnight = at(2006, 11, 15) + 24h * day;
        while (w.clock.now() < midnight) {
            w.clock.run(1min);
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
        const std::string name = dateDigits(midnight - 1h);
        const std::size_t filed = w.imagesOf(name).size();
        std::filesystem::remove_all(w.dataFolder() / name);
        std::filesystem::remove_all(w.dataFolder() / "Edit" / name);
        if (day == 1) resident = memory("VmRSS");
        if (day == 1) waiting = w.clock.pending();
        std::printf("day %d: %zu pictures filed, %d fetched, %d decoded, %ld kB, %zu waiting\n",
                    day, filed, served, w.pictures.loader().decodeCount(), memory("VmRSS"),
                    w.clock.pending());
        std::fflush(stdout);
    }
    // Each capture is decoded twice, small and large; each live picture once.
    const int most = served + static_cast<int>(w.module.RecCount) + days * 1440 + 10;
    const long growth = memory("VmRSS") - resident;
    std::printf("memory +%ld kB since the first day\n", growth);
    return growth < 2048 && w.clock.pending() <= waiting + 2 &&
           w.pictures.loader().decodeCount() <= most;
}

/// The longest time between two turns of the event loop.
class Gap {
  public:
    Gap() {
        QObject::connect(&timer_, &QTimer::timeout,
                         [this] { longest_ = std::max(longest_, sinceTurn_.restart()); });
        timer_.start(0);
        sinceTurn_.start();
    }
    template <class Condition>
    bool until(const char* what, Condition condition) {
        longest_ = 0;
        sinceTurn_.restart();
        QElapsedTimer took;
        took.start();
        QEventLoop loop; // QTest's own waiting would sleep between two turns
        const auto looking = QObject::connect(&timer_, &QTimer::timeout, [&] {
            if (condition() || took.elapsed() > 30000) loop.quit();
        });
        loop.exec();
        QObject::disconnect(looking);
        const bool reached = condition();
        longest_ = std::max(longest_, sinceTurn_.elapsed());
        std::printf("%-6s %5lld ms, longest gap %4lld ms, memory %ld kB, at most %ld kB\n", what,
                    static_cast<long long>(took.elapsed()), static_cast<long long>(longest_),
                    memory("VmRSS"), memory("VmHWM"));
        worst_ = std::max(worst_, longest_);
        return reached;
    }
    qint64 worst() const { return worst_; }

  private:
    QTimer timer_;
    QElapsedTimer sinceTurn_;
    qint64 longest_ = 0;
    qint64 worst_ = 0;
};

bool openPicture(const std::filesystem::path& file) {
    QtClock clock;
    FakeOperator op(clock);
    Module1 module;
    module.image = {.Quality = 2, .LrFlg = -1, .DateFlg = -1, .JpegTyp = 98};
    LibjpegImageControl control(clock);
    OperationPanel panel;
    DaySchedules schedules{module, panel, clock, [](auto) { return 9h; }};
    const DayWatch days(module, panel, schedules, clock);
    ErrorLog log("/nonexistent", clock);
    Faults faults(log, clock, op);
    QtImageViews views(clock, faults, op, module, days, control);
    PictureArea area;
    area.resize(1024, 768);
    area.show();
    views.attach(&area, nullptr);
    TempFolder folder;
    const auto saved = folder.path() / "saved.jpg";
    Gap gap;
    const auto newest = [&] {
        return qobject_cast<ImageWindow*>(area.subWindowList().last()->widget());
    };
    views.openImage(file);
    bool done = gap.until("open", [&] { return newest()->hasPicture(); });
    ImageWindow* whole = newest();
    whole->view().zoomActual();
    done = gap.until("zoom", [&] { return whole->view().holdsFull(); }) && done;
    QTest::mousePress(&whole->view(), Qt::LeftButton, Qt::ShiftModifier, {5, 5});
    QTest::mouseMove(&whole->view(), {400, 300});
    QTest::mouseRelease(&whole->view(), Qt::LeftButton, Qt::ShiftModifier, {400, 300});
    whole->trim();
    done = gap.until("trim", [&] { return newest() != whole && newest()->hasPicture(); }) && done;
    views.saveAs(whole->source(), saved);
    done = gap.until("save", [&] { return std::filesystem::exists(saved); }) && done;
    return done && op.told.empty() && gap.worst() < 500;
}

/// As a camera's pictures are: little in them is smooth.
std::string noisyPicture() {
    QImage picture = gradient(1280, 960);
    std::mt19937 random(1);
    std::uniform_int_distribution<int> noise(-8, 8);
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            const QColor colour = picture.pixelColor(x, y);
            const int grain = noise(random);
            const auto grained = [grain](int value) { return std::clamp(value + grain, 0, 255); };
            picture.setPixel(
                x, y, qRgb(grained(colour.red()), grained(colour.green()), grained(colour.blue())));
        }
    return encoded(picture, 85);
}

/// Ten years of dated folders up to yesterday, the last 40 with a picture every minute. Says how
/// many.
int makeTenYears(const std::filesystem::path& data, std::chrono::local_days today) {
    constexpr int kDays = 3652;
    const auto picture = data / "picture.jpg";
    writeFile(picture, noisyPicture());
    for (int back = 1; back <= kDays; ++back) {
        const std::chrono::local_days day = today - std::chrono::days(back);
        const auto folder = data / dateDigits(WallTime(day));
        std::filesystem::create_directory(folder);
        for (int minute = back <= 40 ? 0 : kDayMinutes - 1; minute < kDayMinutes; ++minute) {
            const auto name = ImageName::ofCapture(WallTime(day) + std::chrono::minutes(minute));
            std::filesystem::create_hard_link(picture, folder / name.text());
        }
    }
    return kDays;
}

/// The band with its menu and the picture windows, on the real clock.
struct Days {
    explicit Days(const std::filesystem::path& data) {
        const char* fields[] = {"0", "0", "23", "59", "", "1", "0"};
        for (std::size_t i = 0; i < std::size(fields); ++i)
            panel.Text1[i].text = std::string(fields[i]);
        panel.Dir1[0].path = data;
        window.resize(1024, 747);
        fill(window, column({{&area, 1}, &band}));
        views.attach(&area, nullptr);
        window.show();
    }
    void trigger(const char* action) { menu.findChild<QAction*>(action)->trigger(); }
    FilmPlayer& film() { return window.findChild<FilmWindow*>()->player(); }

    QtClock clock;
    FakeOperator op{clock};
    Module1 module;
    OperationPanel panel;
    Busy busy;
    ErrorLog log{"/nonexistent", clock};
    Faults faults{log, clock, op};
    DaySchedules schedules{module, panel, clock, [](auto) { return 9h; }};
    DayWatch days{module, panel, schedules, clock};
    LibjpegImageControl keogramControl{clock};
    LibjpegImageControl control{clock};
    Keograms keograms{{keogramControl, module, busy, clock}};
    ShownDay day{{days, panel, keograms, clock, faults}};
    DaySurvey survey{{days, panel, clock, faults}};
    QtImageViews views{clock, faults, op, module, days, control};
    QWidget window;
    PictureArea& area = *new PictureArea;
    DayView& band = *new DayView({day, module, clock, faults});
    QMenu menu;
    DayMenu dayMenu{menu, band, area, {day, survey, module, clock, faults, views}};
};

/// Plays ten seconds; answers the share of pictures that came before the next one was due.
double onTime(Days& d, Gap& gap) {
    constexpr int kFrames = 250;
    constexpr double kInterval = 40;
    int good = 0;
    double latest = 0;
    QElapsedTimer since;
    const auto counting = QObject::connect(
        &d.film(), &FilmPlayer::shown, [&](const LoadedPicture& picture, int index) {
            const double late = static_cast<double>(since.nsecsElapsed()) / 1e6 - index * kInterval;
            latest = std::max(latest, late);
            good += index > 0 && index <= kFrames && picture.fault.empty() && late < kInterval;
        });
    since.start();
    d.film().play();
    gap.until("film", [&] { return d.film().index() >= kFrames; });
    QObject::disconnect(counting);
    d.film().pause();
    std::printf("film: %d of %d pictures in time, the latest by %.1f ms\n", good, kFrames, latest);
    return 1.0 * good / kFrames;
}

bool lookAtDays() {
    const TempFolder folder;
    const auto today = std::chrono::floor<std::chrono::days>(QtClock().now());
    const int count = makeTenYears(folder.path(), today);
    Days d(folder.path());
    Gap gap;
    bool done =
        gap.until("start", [&] { return d.day.firstDay() == today - std::chrono::days(count); });
    QElapsedTimer opening;
    opening.start();
    d.trigger("mnuDayCalendar");
    done = gap.until("show", [&] { return d.survey.found > 0; }) && done;
    const qint64 shown = opening.elapsed(); // painted before the first day is looked at
    done = gap.until("colour", [&] { return d.survey.results().size() >= 28; }) && done;
    d.window.findChild<FrmCalendar*>()->close();
    d.day.turnTo(today - std::chrono::days(1));
    emit d.band.turned();
    done = gap.until("turn", [&] { return !d.day.isReading(); }) && done;
    d.trigger("mnuDayKeogramBand");
    done = gap.until("keo", [&] { return d.keograms.isComplete(d.day.pictures()); }) && done;
    d.trigger("mnuDayFilm");
    done = gap.until("open", [&] { return d.film().index() == 0; }) && done;
    const double share = onTime(d, gap);
    std::printf("calendar of %d days shown after %lld ms; longest gap %lld ms\n", count,
                static_cast<long long>(shown), static_cast<long long>(gap.worst()));
    return done && share >= 0.99 && shown <= 100 && gap.worst() <= 50;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const std::string mode = argc > 1 ? argv[1] : "";
    const QApplication application(argc, argv);
    if (mode == "week") return runWeek(argc > 2 ? std::atoi(argv[2]) : 7) ? 0 : 1;
    if (mode == "open" && argc > 2) return openPicture(argv[2]) ? 0 : 1;
    if (mode == "days") return lookAtDays() ? 0 : 1;
    std::fprintf(stderr, "usage: orvane-ui-soak week [days] | open FILE | days\n");
    return 2;
}

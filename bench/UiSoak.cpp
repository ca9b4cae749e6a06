// The windows over a long time and with a large picture, on the offscreen platform:
//
//   orvane-ui-soak week [days]   a capture every minute and a live picture every five seconds, with
//                                the latest-image window and the thumbnails open; fails when memory
//                                or the number of decoded pictures grows beyond what it must
//   orvane-ui-soak open FILE     opens, zooms, trims and saves a JPEG on the real clock; fails when
//                                the event loop stands still for more than half a second

#include "platform/Conversions.h"
#include "platform/qt/QtClock.h"
#include "tests/support/TestPictures.h"
#include "tests/support/TestWindow.h"

#include <QElapsedTimer>
#include <QTimer>

#include <cstdio>
#include <fstream>

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
        const bool reached = QTest::qWaitFor(condition, 20000);
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
    const OperationPanel panel;
    const DayWatch days(module, panel, clock);
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

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const std::string mode = argc > 1 ? argv[1] : "";
    const QApplication application(argc, argv);
    if (mode == "week") return runWeek(argc > 2 ? std::atoi(argv[2]) : 7) ? 0 : 1;
    if (mode == "open" && argc > 2) return openPicture(argv[2]) ? 0 : 1;
    std::fprintf(stderr, "usage: orvane-ui-soak week [days] | open FILE\n");
    return 2;
}

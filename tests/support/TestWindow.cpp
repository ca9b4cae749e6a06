#include "tests/support/TestWindow.h"

namespace orvane::test {

Window::Window(Operator& asked)
    : TestStation(at(2006, 11, 15, 8, 0)), pictures(clock, faults, asked, module, days, control),
      shutdown({settings, store, busy, wishes, asked, log, [this] { ++ended; }}),
      main({operation, module, busy, shutdown, wishes, pictures, shownDay, survey, tracker, copies,
            report, film, alerts, clock, faults, asked, systemInfo, condition, steps}) {
    settings.initOperation();
    recording.ready();
    show(main);
    main.resize(1024, 747); // the offscreen desktop is smaller
}

Window::~Window() {
    tasks.clear();
}

} // namespace orvane::test

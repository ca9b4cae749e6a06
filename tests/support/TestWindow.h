#pragma once

#include "archive/CopiesAnew.h"
#include "archive/DayReport.h"
#include "archive/DaySurvey.h"
#include "archive/FilmFile.h"
#include "archive/ShownDay.h"
#include "tests/support/FakeProcess.h"
#include "tests/support/TestStation.h"
#include "ui/frmMain.h"

#include <QApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <gtest/gtest.h>

namespace orvane::test {

/// The control of that name; a missing one ends the test.
template <class Widget>
Widget& find(const QWidget& form, const char* name) {
    auto* found = form.findChild<Widget*>(name);
    if (found == nullptr) throw std::runtime_error(std::string("no control ") + name);
    return *found;
}
inline void click(QWidget& widget) {
    QTest::mouseClick(&widget, Qt::LeftButton);
}
inline void click(const QWidget& form, const char* name) {
    click(find<QWidget>(form, name));
}
inline void type(QLineEdit& field, const QString& text) {
    field.setFocus();
    field.selectAll();
    QTest::keyClicks(&field, text);
}
inline QMessageBox* openBox() {
    for (QWidget* window : QApplication::topLevelWidgets())
        if (auto* box = qobject_cast<QMessageBox*>(window); box != nullptr && box->isVisible())
            return box;
    return nullptr;
}
inline void show(QWidget& window) {
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
}

/// The main window over a station whose main loop does not run.
struct Window : TestStation {
    explicit Window(Operator& asked);
    ~Window();

    int ended = 0;
    LibjpegImageControl control{clock};
    QtImageViews pictures;
    FakeSystemInfo systemInfo;
    Shutdown shutdown;
    LibjpegImageControl keogramControl{clock};
    Keograms keograms{{keogramControl, module, busy, clock}};
    ShownDay shownDay{{days, panel, keograms, clock, faults}};
    DaySurvey survey{{days, panel, clock, faults}};
    CopiesAnew copies{{panel, busy, log, faults, clock}, imageControl};
    DayReport report{{panel, busy, log, faults, clock}, module, schedules};
    FakeProcess process{clock};
    FilmFile film{{panel, busy, log, faults, clock}, imageControl, process, store};
    const frmOperation::Parts operation{panel,      recording,  settings, camera,
                                        imageStore, folderScan, tasks};
    const frmMain::Tracker tracker{portSelection, timeForm, timeSetting, optionForm, options};
    frmMain main;
};

} // namespace orvane::test

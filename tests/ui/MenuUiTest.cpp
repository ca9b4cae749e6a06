#include "tests/ui/WindowTest.h"
#include "ui/dialogs/QtOperator.h"

#include <QMenuBar>

namespace orvane::test {
namespace {

/// The main window's menus, keys and end.
class MenuUi : public WindowTest {
  protected:
    /// The entries that can be chosen.
    std::set<std::string> usable() const {
        std::set<std::string> all;
        for (const QAction* entry : w.main.findChildren<QAction*>())
            if (entry->isEnabled()) all.insert(entry->objectName().toStdString());
        return all;
    }
    /// Presses Tab or Shift+Tab until the focus is back where it began.
    std::vector<const QWidget*> round(Qt::KeyboardModifiers keys) {
        std::vector<const QWidget*> visited;
        QWidget* const begin = w.main.focusWidget();
        do {
            visited.push_back(w.main.focusWidget());
            QTest::keyClick(w.main.focusWidget(), Qt::Key_Tab, keys);
        } while (w.main.focusWidget() != begin && visited.size() < 200);
        return visited;
    }
    void reopen() {
        w.main.hide();
        show(w.main);
        QEvent active(QEvent::WindowActivate); // the offscreen system sends none again
        QApplication::sendEvent(&w.main, &active);
    }
};

TEST_F(MenuUi, EachKeyOpensTheWindowOfItsEntry) {
    const std::tuple<const char*, QKeyCombination, const char*> cases[] = {
        {"mnuFileOpen", Qt::CTRL | Qt::Key_O, "Open"},
        {"mnuFileLatest", Qt::CTRL | Qt::Key_L, "Latest Image"},
        {"mnuFileSaveOptions", Qt::CTRL | Qt::Key_T, "Save Options"},
        {"mnuFileReport", Qt::CTRL | Qt::Key_E, "Save Report"},
        {"mnuCOMSelect", Qt::CTRL | Qt::Key_M, "COM Port"},
        {"mnuTKRTimeSetAuto", Qt::CTRL | Qt::Key_K, "Time Setting"},
        {"mnuTKROption", Qt::CTRL | Qt::Key_R, "Tracker Options"},
        {"mnuCopiesAnew", Qt::CTRL | Qt::Key_P, "Processed Copies Anew"},
        {"mnuStatusPage", Qt::CTRL | Qt::Key_U, "Status Page"},
        {"mnuAlerts", Qt::CTRL | Qt::SHIFT | Qt::Key_A, "Alerts"},
        {"mnuDayCalendar", Qt::CTRL | Qt::Key_D, "Calendar"},
        {"mnuDayFilm", Qt::CTRL | Qt::Key_F, "Film of 15 Nov 2006"},
        {"mnuDaySaveFilm", Qt::CTRL | Qt::SHIFT | Qt::Key_F, "Save Film"},
        {"mnuDayKeogram", Qt::CTRL | Qt::Key_G, "Keogram of 15 Nov 2006"},
        {"mnuHelpAbout", Qt::Key_unknown, "About Orvane"}};
    for (const auto& [entry, key, title] : cases) {
        Window own(op);
        auto& entered = find<QAction>(own.main, entry);
        if (key.key() == Qt::Key_unknown) {
            entered.trigger();
        } else {
            QTest::keyClick(&own.main, key.key(), key.keyboardModifiers());
        }
        QString shown; // dialogs and windows in the area
        for (const auto* frame : own.main.findChildren<QMdiSubWindow*>())
            shown += frame->windowTitle();
        for (const auto* dialog : own.main.findChildren<QDialog*>())
            if (dialog->isVisible()) shown += dialog->windowTitle();
        EXPECT_EQ(shown, title) << entry;
        EXPECT_FALSE(entered.toolTip().isEmpty()) << entry;
    }
}

TEST_F(MenuUi, EntriesFollowWhatTheStationDoes) {
    EXPECT_EQ(w.main.menuBar()->actions()[1], part<QMenu>("mnuTools").menuAction()) << "after File";
    const QWidget& trial = find<QWidget>(open("mnuCOMSelect", "FrmComPort"), "Command1");
    const std::set<std::string> idle = usable();
    {
        const Busy::Hold hold(w.busy);
        std::set<std::string> all = usable();
        for (const char* locked :
             {"mnuFileOpen", "mnuCOMSelect", "mnuTKRTimeSetAuto", "mnuTKROption"})
            EXPECT_TRUE(all.insert(locked).second) << locked;
        EXPECT_EQ(all, idle) << "and no other";
        EXPECT_FALSE(trial.isEnabled()) << "it would close the port under a running exchange";
        EXPECT_FALSE(isOn("Command8"));
    }
    EXPECT_EQ(usable(), idle);
    EXPECT_TRUE(trial.isEnabled());
    for (const bool on : {false, true, false}) {
        EXPECT_EQ(w.module.RecordFlg, on);
        EXPECT_EQ(action("mnuRecordingStart").isEnabled(), !on);
        EXPECT_EQ(action("mnuRecordingStop").isEnabled(), on);
        trigger(on ? "mnuRecordingStop" : "mnuRecordingStart");
    }
}

TEST_F(MenuUi, AWishIsShownAndCanBeDropped) {
    const auto& bar = part("wishBar");
    EXPECT_FALSE(bar.isVisible());
    click(w.main, "Command1");
    const Scope capturing(w.module.capturing);
    const Busy::Hold busy(w.busy);
    trigger("mnuRecordingStop");
    EXPECT_TRUE(bar.isVisible());
    EXPECT_EQ(text("lbl_wish"), "Recording stops after this picture.");
    EXPECT_NEAR(bar.geometry().center().x(), bar.parentWidget()->width() / 2.0, 1);
    w.main.close();
    EXPECT_EQ(text("lbl_wish"), "Orvane closes after this picture.");
    EXPECT_EQ(op.beeps, 1);
    click(bar, "cmd_wish_cancel");
    EXPECT_FALSE(bar.isVisible());
    EXPECT_TRUE(w.main.isVisible() && op.asked.empty());
}

TEST_F(MenuUi, ClosingAsksAndExitDoesNot) {
    const Busy::Hold hold(w.busy);
    w.main.showMinimized();
    trigger("mnuFileExit");
    EXPECT_EQ(w.ended, 1);
    EXPECT_TRUE(op.asked.empty());
    EXPECT_FALSE(w.store.values.contains("Settings/MainLeft")) << "of a minimised window";

    QtOperator asked(clock);
    Window other(asked);
    asked.setParentWindow(&other.main);
    for (const auto button : {QMessageBox::Cancel, QMessageBox::Ok}) {
        EXPECT_EQ(other.ended, 0);
        other.main.close();
        QMessageBox* box = openBox();
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->text(), "Program End ? ");
        EXPECT_EQ(box->windowTitle(), "Orvane");
        EXPECT_EQ(box->icon(), QMessageBox::Warning);
        click(*box->button(button));
        clock.run(1ms);
        EXPECT_EQ(other.main.isVisible(), button == QMessageBox::Cancel);
        EXPECT_EQ(other.store.values["Operation/StartHour"], "9") << "saved although cancelled";
    }
    EXPECT_EQ(other.ended, 1);
    const QRect frame = other.main.frameGeometry();
    EXPECT_EQ(other.store.values["Settings/MainWidth"], std::to_string(frame.width() * 15));
    EXPECT_EQ(other.store.values["Settings/MainTop"], std::to_string(frame.top() * 15));
}

/// The offscreen desktop is smaller than the prescribed window.
TEST_F(MenuUi, TheWindowFitsTheDesktopAndComesBackMaximised) {
    const QRect desktop = w.main.screen()->availableGeometry();
    reopen();
    EXPECT_EQ(w.main.frameGeometry(), QRect({0, 0}, QSize(1024, 747).boundedTo(desktop.size())));
    EXPECT_FALSE(w.main.isMaximized());
    w.shutdown.MDIForm_Unload(WindowPlace{0, 0, 800, 600, true});
    EXPECT_EQ(w.store.values["Station/MainMaximised"], "1");
    reopen();
    EXPECT_TRUE(w.main.isMaximized());
}

TEST_F(MenuUi, TabGoesOnceThroughEverythingAndBack) {
    const auto file = write("20061115/20061115_070000_00.jpg");
    w.pictures.refreshThumbnails({file});
    w.pictures.openImage(file);
    run("mnuDayFilm");
    w.main.operation().focusStart();
    const std::vector<const QWidget*> forward = round({});
    // whatever can be clicked into and takes the keyboard must be in it
    for (const QWidget* control : w.main.findChildren<QWidget*>()) {
        const bool isStop =
            control->isVisible() && control->isEnabled() && control->focusProxy() == nullptr &&
            (control->focusPolicy() & Qt::TabFocus) != 0 && !control->inherits("QMdiSubWindow");
        EXPECT_EQ(std::ranges::count(forward, control), isStop ? 1 : 0)
            << control->objectName().toStdString() << ", " << control->metaObject()->className();
    }
    std::vector<const QWidget*> backward = round(Qt::ShiftModifier);
    std::reverse(backward.begin() + 1, backward.end());
    EXPECT_EQ(backward, forward);
    auto reached = forward.begin();
    for (const char* name :
         {"Command1", "pages_bar", "Text1_0", "Text1_1", "Text1_6", "chk_auto", "chk_sun", "Dir1_0",
          "Command3", "txt_lat", "txt_long", "txt_tz", "thumbnail_0", "cmd_day", "dayView"}) {
        reached = std::find(reached, forward.end(), &part(name));
        ASSERT_NE(reached, forward.end()) << name;
    }
    const std::pair<int, const char*> pages[] = {{2, "Dir1_1"}, {1, "txtIp"}, {0, "Text1_0"}};
    for (const auto& [index, first] : pages) {
        QTest::keyClick(&w.main, Qt::Key(Qt::Key_1 + index), Qt::ControlModifier);
        EXPECT_EQ(page(), index);
        EXPECT_EQ(focusOf(w.main), first);
    }
}

TEST_F(MenuUi, ARefusedStartLeadsToTheFaultyField) {
    for (const std::size_t index : {1U, 5U}) {
        w.panel.Text1[index].text = "60";
        showPage(2);
        trigger("mnuRecordingStart");
        EXPECT_FALSE(isOn("Command1")) << "the box is open";
        w.clock.run(1s);
        clock.run(1s);
        EXPECT_FALSE(w.module.RecordFlg);
        EXPECT_EQ(focusOf(w.main), "Text1_" + std::to_string(index));
        w.panel.Text1[index].text = "30";
    }
}

/// "Open..." begins in the data folder, then where a picture was chosen.
TEST_F(MenuUi, WhatIsChosenToBeOpenedIsOpened) {
    const auto first = write("20061114/a.jpg");
    const auto second = write("20061114/b.jpg");
    const std::tuple<const char*, std::vector<std::filesystem::path>, const char*> cases[] = {
        {"data", {}, ""},
        {"data", {first}, "a.jpg"},
        {"20061114", {}, "a.jpg"},
        {"20061114", {first, second}, "a.jpg, b.jpg"}};
    for (const auto& [folder, chosen, opened] : cases) {
        trigger("mnuFileOpen");
        ASSERT_NE(fileDialog(), nullptr);
        EXPECT_EQ(fileDialog()->fileMode(), QFileDialog::ExistingFiles);
        const FileQuestion asked = answer(chosen);
        EXPECT_EQ(asked.title, "Open");
        EXPECT_EQ(asked.folder, folder);
        EXPECT_EQ(titles(), opened);
    }
}

TEST_F(MenuUi, TheWindowMenuListsThePictures) {
    QMenu& menu = part<QMenu>("mnuWindow");
    const auto listed = [&] {
        emit menu.aboutToShow();
        return menu.actions().mid(menu.actions().size() - 2);
    };
    openPicture(write("a&b.jpg"));
    openPicture(write("c.jpg"));
    EXPECT_EQ(listed()[0]->text(), "&1 a&&b.jpg");
    EXPECT_EQ(listed()[1]->text(), "&2 c.jpg");
    for (const int front : {0, 1}) {
        listed()[front]->trigger();
        EXPECT_EQ(area().activeSubWindow(), area().subWindowList()[front]);
        EXPECT_TRUE(listed()[front]->isChecked());
        EXPECT_FALSE(listed()[1 - front]->isChecked());
    }
}

TEST_F(MenuUi, HelpOpensTheGuideAndTheLogOrSaysWhereTheyBelong) {
    std::optional<FakeDesktop> desktop(std::in_place);
    const auto& opened = desktop->opened;
    std::filesystem::remove(w.module.programFolder / "ERROR.LOG");
    const std::pair<const char*, const char*> entries[] = {{"mnuHelpGuide", "operators-guide.html"},
                                                           {"mnuHelpErrorLog", "ERROR.LOG"}};
    for (const auto& [entry, file] : entries) {
        trigger(entry);
        ASSERT_FALSE(op.told.empty());
        EXPECT_TRUE(has(op.told.back(), file));
    }
    EXPECT_TRUE(opened.isEmpty());
    writeFile(w.module.programFolder / "guide" / "operators-guide.html", "<!DOCTYPE html>");
    w.log.write("a line");
    for (const auto& [entry, file] : entries) {
        trigger(entry);
        EXPECT_EQ(opened.last(), file);
    }
    QTest::keyClick(&w.main, Qt::Key_F1);
    QDialog& dialog = open("mnuFileSaveOptions", "FrmSave");
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    QTest::keyClick(&dialog, Qt::Key_F1);
    EXPECT_EQ(opened.size(), 4) << "once each, also from a dialog";
    EXPECT_EQ(op.told.size(), 2U);
    desktop.reset();
    if (QGuiApplication::platformName() != "offscreen") return; // another one starts a browser
    trigger("mnuHelpGuide");
    EXPECT_TRUE(op.told.back().starts_with("No browser could be started.")) << op.told.back();
    EXPECT_TRUE(has(op.told.back(), "operators-guide.html"));
}

} // namespace
} // namespace orvane::test

#include "tests/support/TestWindow.h"
#include "ui/dialogs/FrmComPort.h"
#include "ui/dialogs/FrmTKRTimeAuto.h"

#include <QLabel>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>

namespace orvane::test {
namespace {

class TrackerUi : public testing::Test {
  protected:
    ~TrackerUi() override { QApplication::setPalette(QPalette()); }

    void trigger(const char* name) { w.main.findChild<QAction*>(name)->trigger(); }
    QDialog& dialog(const char* name) { return find<QDialog>(w.main, name); }
    /// A radio button reacts on its circle and text only.
    void choose(const char* name) {
        QTest::mouseClick(&find<QRadioButton>(w.main, name), Qt::LeftButton, {}, QPoint(8, 8));
    }
    QColor colour(const char* label) {
        return find<QLabel>(w.main, label).palette().color(QPalette::WindowText);
    }
    static std::string focusOf(const QDialog& form) {
        return form.focusWidget() == nullptr ? "" : form.focusWidget()->objectName().toStdString();
    }
    /// The ways in which an operator can dismiss a dialog without its buttons.
    static void dismiss(QDialog& form) {
        QTest::keyClick(&form, Qt::Key_Escape);
        form.close();
    }

    JumpingClock clock{at(2006, 11, 15)};
    FakeOperator op{clock};
    Window w{op};
};

TEST_F(TrackerUi, ToolsNeedAnIdleStation) {
    QStringList menus;
    for (const QAction* menu : w.main.menuBar()->actions())
        menus << menu->text().remove('&');
    EXPECT_EQ(menus.indexOf("Tools"), menus.indexOf("File") + 1);
    trigger("mnuCOMSelect");
    for (const bool busy : {true, false}) {
        std::optional<Busy::Hold> hold;
        if (busy) hold.emplace(w.busy);
        for (const char* name : {"mnuCOMSelect", "mnuTKRTimeSetAuto", "mnuTKROption"})
            EXPECT_EQ(w.main.findChild<QAction*>(name)->isEnabled(), !busy) << name;
        EXPECT_EQ(find<QWidget>(dialog("FrmComPort"), "Command1").isEnabled(), !busy)
            << "a trial would close the port under a running exchange";
    }
}

TEST_F(TrackerUi, PortsThatAreNotThereAreMarkedEachTime) {
    for (const int missing : {3, 0}) {
        w.port.missing = missing;
        trigger("mnuCOMSelect");
        QDialog& form = dialog("FrmComPort");
        EXPECT_EQ(find<QRadioButton>(form, "Option1_2").text().remove('&'),
                  missing == 3 ? "COM3 (not there)" : "COM3");
        EXPECT_TRUE(find<QRadioButton>(form, "Option1_2").isEnabled());
        EXPECT_EQ(find<QRadioButton>(form, "Option1_3").text().remove('&'), "COM4");
        dismiss(form);
    }
}

TEST_F(TrackerUi, StoredPortIsSelected) {
    const std::tuple<const char*, int, const char*> cases[] = {
        {"3", 2, "Option1_2"}, {"1", 0, "Option1_0"}, {"7", -1, "Command1"}, {"4", 3, "Option1_3"}};
    for (const auto& [stored, index, focused] : cases) {
        w.store.values["Communication/Port"] = stored;
        trigger("mnuCOMSelect");
        QDialog& form = dialog("FrmComPort");
        EXPECT_EQ(form.windowModality(), Qt::WindowModal);
        EXPECT_EQ(focusOf(form), focused);
        for (int i = 0; i < 4; ++i) {
            const auto name = "Option1_" + std::to_string(i);
            EXPECT_EQ(find<QRadioButton>(form, name.c_str()).isChecked(), i == index) << stored;
        }
        dismiss(form);
        EXPECT_FALSE(form.isVisible());
    }
    EXPECT_EQ(w.port.opened, 0);
}

TEST_F(TrackerUi, PortThatCannotBeOpenedKeepsTheDialog) {
    w.port.openable = false;
    trigger("mnuCOMSelect");
    QDialog& form = dialog("FrmComPort");
    choose("Option1_2");
    click(form, "Command1");
    w.clock.run(2s);
    EXPECT_TRUE(form.isVisible());
    EXPECT_TRUE(find<QRadioButton>(form, "Option1_2").isChecked());
    EXPECT_FALSE(w.store.values.contains("Communication/Port"));
    w.port.openable = true;
    click(form, "Command1");
    EXPECT_FALSE(form.isVisible());
    EXPECT_EQ(w.store.values["Communication/Port"], "3");
    trigger("mnuCOMSelect");
    choose("Option1_0");
    click(form, "Command2");
    EXPECT_FALSE(form.isVisible());
    EXPECT_EQ(w.store.values["Communication/Port"], "3");
}

TEST_F(TrackerUi, TrialMayOutliveTheDialog) {
    w.port.openable = false;
    auto form = std::make_unique<FrmComPort>(w.portSelection, w.tasks);
    show(*form);
    click(*form, "Command1");
    EXPECT_EQ(w.tasks.running(), 1u);
    form.reset();
    w.clock.run(2s);
    EXPECT_EQ(w.tasks.running(), 0u);
}

TEST_F(TrackerUi, OptionsAreLockedWhileRead) {
    trigger("mnuTKROption");
    QDialog& form = dialog("frmOption");
    const char* const controls[] = {"txt_sn",  "txt_tz",   "txt_lon", "txt_lat",
                                    "txt_org", "Command1", "Command2"};
    for (const char* name : controls)
        EXPECT_FALSE(find<QWidget>(form, name).isEnabled()) << name;
    EXPECT_TRUE(find<QProgressBar>(form, "busy").isVisible());
    dismiss(form);
    ASSERT_TRUE(form.isVisible());

    w.clock.run(2s);
    for (const char* name : controls)
        EXPECT_TRUE(find<QWidget>(form, name).isEnabled()) << name;
    EXPECT_FALSE(find<QProgressBar>(form, "busy").isVisible());
    EXPECT_EQ(find<QLabel>(form, "status").text(),
              "Read from the tracker. Latitude changed: 35.738 to 35.5. Longitude changed: 139.315 "
              "to 139.75.");
    EXPECT_EQ(find<QLabel>(form, "lbl_hours").text(), "= 9 h");
    const std::pair<const char*, const char*> values[] = {{"txt_sn", "ST-042"},
                                                          {"txt_tz", "540"},
                                                          {"txt_lon", "139.75"},
                                                          {"txt_lat", "35.50"},
                                                          {"txt_org", "359.99"}};
    for (const auto& [name, text] : values)
        EXPECT_EQ(find<QLineEdit>(form, name).text(), text) << name;
    dismiss(form);
    EXPECT_FALSE(form.isVisible());
}

TEST_F(TrackerUi, OptionsAreSentAsTyped) {
    trigger("mnuTKROption");
    QDialog& form = dialog("frmOption");
    w.clock.run(2s);
    EXPECT_EQ(focusOf(form), "txt_sn");
    type(find<QLineEdit>(form, "txt_sn"), QString(40, 'x'));
    EXPECT_EQ(w.optionForm.txt_sn.text.get(), std::string(32, 'x'));
    type(find<QLineEdit>(form, "txt_tz"), "-60");
    EXPECT_EQ(find<QLabel>(form, "lbl_hours").text(), "= -1 h");
    type(find<QLineEdit>(form, "txt_lon"), "-0.5");
    type(find<QLineEdit>(form, "txt_lat"), "51.5");
    w.port.written.clear();
    QTest::keyClick(&find<QLineEdit>(form, "txt_lat"), Qt::Key_Return);
    EXPECT_FALSE(find<QWidget>(form, "Command2").isEnabled());
    w.clock.run(2s);
    EXPECT_EQ(w.module.site.Tz, -60);
    EXPECT_EQ(w.module.site.longitude, -0.5);
    EXPECT_EQ(w.module.site.latitude, 51.5);
    EXPECT_FALSE(w.port.written.empty());
    EXPECT_EQ(focusOf(form), "txt_lat") << "where the operator was";
    EXPECT_TRUE(form.isVisible());
}

TEST_F(TrackerUi, ClockDialogFollowsItsProcedures) {
    trigger("mnuTKRTimeSetAuto");
    QDialog& form = dialog("FrmTKRTimeAuto");
    EXPECT_FALSE(form.isModal());
    const auto& query = find<QLineEdit>(form, "txtSystemQuery");
    EXPECT_TRUE(query.isReadOnly());
    w.clock.run(2s);
    EXPECT_EQ(query.text(), "?i_year=2006&i_mon=11&i_day=15&i_hour=8&i_min=0&i_sec=0");
    EXPECT_EQ(colour("Label2_0"), QApplication::palette().color(QPalette::WindowText));
    dismiss(form);
    EXPECT_TRUE(form.isVisible());
    w.clock.run(7s);
    EXPECT_EQ(find<QLabel>(form, "Label2_0").text(), "カメラ時刻校正:2006/11/15 08:00:00");
    EXPECT_EQ(colour("Label2_0"), QColor(0, 0, 255));
    EXPECT_NE(colour("Label2_1"), QColor(0, 0, 255));
    EXPECT_FALSE(find<QWidget>(form, "Command1").isEnabled());
    EXPECT_TRUE(find<QProgressBar>(form, "busy").isVisible());
    w.clock.run(3s);
    EXPECT_FALSE(find<QProgressBar>(form, "busy").isVisible());
    EXPECT_EQ(focusOf(form), "Command3");

    click(form, "Command1");
    EXPECT_FALSE(find<QWidget>(form, "Command3").isEnabled());
    w.clock.run(2s);
    EXPECT_EQ(colour("Label2_1"), QColor(0, 0, 255));
    EXPECT_EQ(w.wbSystemTm.urls.size(), 2u) << "the camera is set once, by opening";
    click(form, "Command3");
    EXPECT_FALSE(form.isVisible());
}

TEST_F(TrackerUi, OutcomesAreReadableOnDark) {
    FrmTKRTimeAuto& form = *w.main.timeDialog();
    show(form);
    w.clock.run(12s);
    QApplication::setPalette(QPalette(QColor(50, 50, 50), QColor(40, 40, 40)));
    QCoreApplication::sendPostedEvents();
    EXPECT_GT(colour("Label2_0").lightness(), 160);
    EXPECT_GT(colour("Label2_0").blue(), colour("Label2_0").red());
    EXPECT_EQ(colour("Label2_1"), QApplication::palette().color(QPalette::WindowText));
    QApplication::setPalette(QPalette());
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(colour("Label2_0"), QColor(0, 0, 255));
}

TEST_F(TrackerUi, DailyRunTakesNoFocusAndStartsNothing) {
    FrmTKRTimeAuto& form = *w.main.timeDialog();
    form.openAutomatic();
    EXPECT_TRUE(form.isVisible());
    EXPECT_FALSE(form.isModal());
    EXPECT_TRUE(form.testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_EQ(w.tasks.running(), 0u);
    form.unload();
    EXPECT_FALSE(form.isVisible());

    trigger("mnuTKRTimeSetAuto");
    EXPECT_EQ(&dialog("FrmTKRTimeAuto"), &form) << "one dialog for both";
    ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
    EXPECT_EQ(w.tasks.running(), 1u);
    form.openAutomatic();
    EXPECT_EQ(w.tasks.running(), 1u) << "already open";
    form.unload();
    EXPECT_FALSE(form.isVisible()) << "unloading does not wait for a procedure";
}

} // namespace
} // namespace orvane::test

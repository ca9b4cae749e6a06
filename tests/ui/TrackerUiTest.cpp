#include "tests/ui/WindowTest.h"
#include "ui/dialogs/FrmComPort.h"
#include "ui/dialogs/FrmTKRTimeAuto.h"

#include <QProgressBar>
#include <QRadioButton>

namespace orvane::test {
namespace {

class TrackerUi : public WindowTest {
  protected:
    QColor colour(const char* label) const {
        return part<QLabel>(label).palette().color(QPalette::WindowText);
    }
    /// The ways in which an operator can dismiss a dialog without its buttons.
    static void dismiss(QDialog& form) {
        QTest::keyClick(&form, Qt::Key_Escape);
        form.close();
    }
};

TEST_F(TrackerUi, TheStoredPortIsSelectedAndWhatIsMissingIsMarked) {
    const std::tuple<const char*, int, const char*> cases[] = {
        {"3", 2, "Option1_2"}, {"1", 0, "Option1_0"}, {"7", -1, "Command1"}, {"4", 3, "Option1_3"}};
    for (const auto& [stored, selected, focused] : cases) {
        SCOPED_TRACE(stored);
        w.store.values["Communication/Port"] = stored;
        w.port.missing = selected + 1;
        QDialog& form = open("mnuCOMSelect", "FrmComPort");
        EXPECT_EQ(form.windowModality(), Qt::WindowModal);
        EXPECT_EQ(focusOf(form), focused);
        for (int i = 0; i < 4; ++i) {
            auto& option = find<QRadioButton>(form, ("Option1_" + std::to_string(i)).c_str());
            EXPECT_EQ(option.isChecked(), i == selected);
            EXPECT_EQ(option.text().remove('&'),
                      QString("COM%1%2").arg(i + 1).arg(i == selected ? " (not there)" : ""));
            EXPECT_TRUE(option.isEnabled());
        }
        dismiss(form);
        EXPECT_FALSE(form.isVisible());
    }
    EXPECT_EQ(w.port.opened, 0);
}

TEST_F(TrackerUi, APortThatCannotBeOpenedKeepsTheDialog) {
    w.port.openable = false;
    QDialog& form = open("mnuCOMSelect", "FrmComPort");
    tick(form, "Option1_2");
    click(form, "Command1");
    w.clock.run(2s);
    EXPECT_TRUE(form.isVisible());
    EXPECT_TRUE(find<QRadioButton>(form, "Option1_2").isChecked());
    EXPECT_FALSE(w.store.values.contains("Communication/Port"));
    w.port.openable = true;
    click(form, "Command1");
    EXPECT_FALSE(form.isVisible());
    trigger("mnuCOMSelect");
    tick(form, "Option1_0");
    click(form, "Command2");
    EXPECT_FALSE(form.isVisible());
    EXPECT_EQ(w.store.values["Communication/Port"], "3");

    w.port.openable = false;
    auto brief = std::make_unique<FrmComPort>(w.portSelection, w.tasks);
    show(*brief);
    click(*brief, "Command1");
    EXPECT_EQ(w.tasks.running(), 1u);
    brief.reset();
    w.clock.run(2s);
    EXPECT_EQ(w.tasks.running(), 0u) << "a trial may outlive its dialog";
}

TEST_F(TrackerUi, OptionsAreReadShownAndSentAsTyped) {
    QDialog& form = open("mnuTKROption", "frmOption");
    const std::tuple<const char*, const char*, const char*, Value<std::string>*> fields[] = {
        {"txt_sn", "ST-042", "", &w.optionForm.txt_sn.text},
        {"txt_tz", "540", "-60", &w.optionForm.txt_tz.text},
        {"txt_lon", "139.75", "-0.5", &w.optionForm.txt_lon.text},
        {"txt_org", "359.99", "12", &w.optionForm.txt_org.text},
        {"txt_lat", "35.50", "51.5", &w.optionForm.txt_lat.text}};
    const auto expectLocked = [&](bool locked) {
        for (const auto& field : fields)
            EXPECT_EQ(find<QWidget>(form, std::get<0>(field)).isEnabled(), !locked);
        for (const char* button : {"Command1", "Command2"})
            EXPECT_EQ(find<QWidget>(form, button).isEnabled(), !locked) << button;
        EXPECT_EQ(find<QWidget>(form, "busy").isVisible(), locked);
        if (locked) dismiss(form);
        EXPECT_TRUE(form.isVisible());
    };
    expectLocked(true);
    w.clock.run(2s);
    expectLocked(false);
    EXPECT_EQ(focusOf(form), "txt_sn");
    EXPECT_EQ(textOf(form, "status"),
              "Read from the tracker. Latitude changed: 35.738 to 35.5. Longitude changed: 139.315 "
              "to 139.75.");
    EXPECT_EQ(textOf(form, "lbl_hours"), "= 9 h");
    for (const auto& [name, read, typed, value] : fields) {
        EXPECT_EQ(find<QLineEdit>(form, name).text(), read) << name;
        type(find<QLineEdit>(form, name), typed);
        EXPECT_EQ(value->get(), *typed == '\0' ? read : typed) << name;
    }
    EXPECT_EQ(textOf(form, "lbl_hours"), "= -1 h");
    w.port.written.clear();
    QTest::keyClick(&find<QLineEdit>(form, "txt_lat"), Qt::Key_Return);
    expectLocked(true);
    w.clock.run(2s);
    EXPECT_EQ(w.module.site, (SiteValues{51.5, -0.5, -60}));
    EXPECT_FALSE(w.port.written.empty());
    EXPECT_EQ(focusOf(form), "txt_lat") << "where the operator was";
    type(find<QLineEdit>(form, "txt_sn"), QString(40, 'x'));
    EXPECT_EQ(w.optionForm.txt_sn.text.get(), std::string(32, 'x'));
    dismiss(form);
    EXPECT_FALSE(form.isVisible());
}

TEST_F(TrackerUi, TheClockDialogFollowsItsProcedures) {
    const QColor blue(0, 0, 255);
    QDialog& form = open("mnuTKRTimeSetAuto", "FrmTKRTimeAuto");
    EXPECT_FALSE(form.isModal());
    const auto& query = find<QLineEdit>(form, "txtSystemQuery");
    EXPECT_TRUE(query.isReadOnly());
    w.clock.run(2s);
    EXPECT_EQ(query.text(), "?i_year=2006&i_mon=11&i_day=15&i_hour=8&i_min=0&i_sec=0");
    EXPECT_EQ(colour("Label2_0"), QApplication::palette().color(QPalette::WindowText));
    dismiss(form);
    EXPECT_TRUE(form.isVisible());
    w.clock.run(7s);
    EXPECT_EQ(textOf(form, "Label2_0"), "カメラ時刻校正:2006/11/15 08:00:00");
    EXPECT_EQ(colour("Label2_0"), blue);
    EXPECT_NE(colour("Label2_1"), blue);
    EXPECT_FALSE(find<QWidget>(form, "Command1").isEnabled());
    EXPECT_TRUE(find<QProgressBar>(form, "busy").isVisible());
    w.clock.run(3s);
    EXPECT_FALSE(find<QProgressBar>(form, "busy").isVisible());
    EXPECT_EQ(focusOf(form), "Command3");
    {
        const DarkDesktop desktop;
        EXPECT_GT(colour("Label2_0").lightness(), 160);
        EXPECT_GT(colour("Label2_0").blue(), colour("Label2_0").red());
        EXPECT_EQ(colour("Label2_1"), QApplication::palette().color(QPalette::WindowText));
    }
    EXPECT_EQ(colour("Label2_0"), blue);

    click(form, "Command1");
    EXPECT_FALSE(find<QWidget>(form, "Command3").isEnabled());
    w.clock.run(2s);
    EXPECT_EQ(colour("Label2_1"), blue);
    EXPECT_EQ(w.wbSystemTm.urls.size(), 2u) << "the camera is set once, by opening";
    click(form, "Command3");
    EXPECT_FALSE(form.isVisible());
}

TEST_F(TrackerUi, TheDailyRunTakesNoFocusAndStartsNothing) {
    FrmTKRTimeAuto& form = *w.main.timeDialog();
    form.openAutomatic();
    EXPECT_TRUE(form.isVisible());
    EXPECT_FALSE(form.isModal());
    EXPECT_TRUE(form.testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_EQ(w.tasks.running(), 0u);
    form.unload();
    EXPECT_FALSE(form.isVisible());

    EXPECT_EQ(&open("mnuTKRTimeSetAuto", "FrmTKRTimeAuto"), &form) << "one dialog for both";
    ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
    EXPECT_EQ(w.tasks.running(), 1u);
    form.openAutomatic();
    EXPECT_EQ(w.tasks.running(), 1u) << "already open";
    form.unload();
    EXPECT_FALSE(form.isVisible()) << "unloading does not wait for a procedure";
}

} // namespace
} // namespace orvane::test

#include "tests/ui/WindowTest.h"
#include "ui/dialogs/FrmSave.h"
#include "ui/dialogs/FrmTKRTimeAuto.h"
#include "ui/dialogs/Frm_AutoStart.h"
#include "ui/dialogs/QtOperator.h"

#include <QProgressBar>
#include <QRadioButton>

namespace orvane::test {
namespace {

/// Boxes and dialogs that need no main window.
class DialogsUi : public testing::Test {
  protected:
    JumpingClock clock{at(2006, 11, 15)};
    QtOperator asked{clock};
    ImageOptions options;
};

TEST_F(DialogsUi, AQuestionIsAnsweredByItsButtonsAndKeys) {
    using Button = QMessageBox::StandardButton;
    const std::tuple<Task<bool> (QtOperator::*)(std::string), Qt::Key, Button, Button> cases[] = {
        {&QtOperator::confirm, Qt::Key_Escape, QMessageBox::No, QMessageBox::Yes},
        {&QtOperator::confirm, Qt::Key_Return, QMessageBox::No, QMessageBox::Yes}, // in doubt
        {&QtOperator::ask, Qt::Key_Escape, QMessageBox::Cancel, QMessageBox::Ok}};
    for (const auto& [ask, key, no, yes] : cases) {
        for (const Button button : {QMessageBox::NoButton, no, yes}) {
            Task<bool> question = (asked.*ask)("<b>Sure?</b>");
            question.start();
            QMessageBox* box = openBox();
            ASSERT_NE(box, nullptr);
            EXPECT_EQ(box->textFormat(), Qt::PlainText) << "what others wrote is no markup";
            ASSERT_TRUE(QTest::qWaitForWindowActive(box));
            if (button == QMessageBox::NoButton) {
                QTest::keyClick(box, key);
            } else {
                click(*box->button(button));
            }
            clock.run(1s);
            ASSERT_TRUE(question.done());
            EXPECT_EQ(question.result(), button == yes);
        }
    }
}

TEST_F(DialogsUi, AMessageBoxGoesWithItsTaskAndItsWindow) {
    std::optional<QWidget> window(std::in_place);
    asked.setParentWindow(&*window);
    Task<bool> task = asked.ask("?");
    task.start();
    task.reset();
    EXPECT_EQ(openBox(), nullptr);
    Task<bool> second = asked.ask("?");
    second.start();
    window.reset();
    clock.run(1ms);
    ASSERT_TRUE(second.done());
    EXPECT_FALSE(second.result());
    asked.setParentWindow(nullptr);
    Task<> alone = asked.tell("standing alone");
    alone.start();
    ASSERT_NE(openBox(), nullptr);
    EXPECT_EQ(openBox()->icon(), QMessageBox::NoIcon);
    openBox()->close();
    clock.run(1ms);
    EXPECT_TRUE(alone.done());
}

TEST_F(DialogsUi, SaveOptionsSelectQualityAndFormat) {
    constexpr std::int16_t kExif = ImageControl::kFormatExif, k444 = ImageControl::kFormat444;
    const struct {
        std::int16_t quality, format;
        const char *shown, *shownFormat, *chosen; ///< "": none
        std::int16_t qualityThen, formatThen;
    } cases[] = {{2, kExif, "Option1", "opt_type_0", "", 2, kExif}, // OK changes nothing
                 {9, kExif, "Option1", "opt_type_0", "Option2", 24, kExif},
                 {10, k444, "Option2", "opt_type_1", "Option1", 2, k444},
                 {49, k444, "Option2", "opt_type_1", "Option3", 56, k444},
                 {50, 20, "Option3", "", "", 50, 20}, // unknown, and stays
                 {50, 20, "Option3", "", "opt_type_0", 50, kExif},
                 {50, kExif, "Option3", "opt_type_0", "opt_type_1", 50, k444}};
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        options.Quality = c.quality;
        options.JpegTyp = c.format;
        FrmSave form(options);
        show(form);
        for (const std::string name : {"Option1", "Option2", "Option3", "opt_type_0", "opt_type_1"})
            EXPECT_EQ(find<QRadioButton>(form, name.c_str()).isChecked(),
                      name == c.shown || name == c.shownFormat)
                << name;
        if (*c.chosen != '\0') tick(form, c.chosen);
        EXPECT_EQ(options.Quality, c.qualityThen) << "at once: Cancel does not undo it";
        EXPECT_EQ(options.JpegTyp, c.format);
        click(form, "Command1");
        EXPECT_EQ(options.Quality, c.qualityThen);
        EXPECT_EQ(options.JpegTyp, c.formatThen);
    }
}

TEST_F(DialogsUi, DateStampNeedsMirroring) {
    options.DateFlg = -1;
    FrmSave form(options);
    show(form);
    auto& date = find<QCheckBox>(form, "chk_date");
    EXPECT_EQ(options.DateFlg, 0) << "cleared as soon as the dialog opens";
    EXPECT_FALSE(date.isEnabled());
    for (const bool mirrored : {true, false, true}) {
        tick(form, "chk_lr");
        if (mirrored) tick(form, "chk_date");
        EXPECT_EQ(date.isChecked(), mirrored);
    }
    EXPECT_EQ(options.LrFlg, 0);
    click(form, "Command1");
    EXPECT_EQ(options.LrFlg, -1);
    EXPECT_EQ(options.DateFlg, -1);
    EXPECT_TRUE(find<QCheckBox>(FrmSave(options), "chk_date").isChecked());
}

TEST_F(DialogsUi, DelayIsA16BitNumber) {
    const std::tuple<const char*, bool, int> cases[] = {
        {"20", true, 20},       {"2.5", true, 2},     {"-1", true, -1}, {"３０", true, 30},
        {"32767", true, 32767}, {"32768", false, 15}, {"", false, 15},  {"five", false, 15}};
    for (const auto& [text, taken, delay] : cases) {
        SCOPED_TRACE(text);
        ImageOptions own;
        FrmSave form(own);
        show(form);
        EXPECT_EQ(find<QLineEdit>(form, "txt_delay").text(), "15");
        tick(form, "chk_save");
        find<QLineEdit>(form, "txt_delay").setText(text);
        click(form, "Command1");
        EXPECT_EQ(own.Delay, delay);
        EXPECT_EQ(own.RawFlg, taken ? -1 : 0);
        EXPECT_EQ(form.isVisible(), !taken);
        EXPECT_EQ(openBox() != nullptr, !taken);
        if (taken) continue;
        openBox()->close();
        EXPECT_EQ(focusOf(form), "txt_delay");
    }
}

TEST_F(DialogsUi, CountdownExits) {
    const std::pair<std::function<void(Frm_AutoStart&)>, const char*> cases[] = {
        {[](auto& form) { click(form, "Command1"); }, "main loop"},
        {[](auto& form) { click(form, "Command2"); }, "end"},
        {[](auto& form) { form.close(); }, "main loop"},
        {[](auto& form) { QTest::keyClick(&form, Qt::Key_Escape); }, "main loop"},
        {[this](auto&) { clock.run(99 * 105ms); }, "main loop"}};
    for (const auto& [act, expected] : cases) {
        Module1 module;
        FakeStore store;
        std::string exit;
        Frm_AutoStart* form = nullptr;
        AutoStart autoStart(
            module, store, clock,
            {[&] { form->closeDialog(); }, [&] { exit = "main loop"; }, [&] { exit = "end"; }},
            noFault);
        Frm_AutoStart dialog(autoStart);
        form = &dialog;
        show(dialog);
        clock.run(10 * 105ms);
        EXPECT_EQ(find<QProgressBar>(dialog, "PBar1").value(), 90);
        act(dialog);
        EXPECT_EQ(exit, expected);
        EXPECT_FALSE(dialog.isVisible());
    }
}

class TrackerUi : public WindowTest {
  protected:
    QColor colour(const char* label) const {
        return part<QLabel>(label).palette().color(QPalette::WindowText);
    }
    /// Without its buttons.
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
            EXPECT_TRUE(option.isEnabled() && option.isChecked() == (i == selected));
            EXPECT_EQ(option.text().remove('&'),
                      QString("COM%1%2").arg(i + 1).arg(i == selected ? " (not there)" : ""));
        }
        dismiss(form);
        EXPECT_FALSE(form.isVisible());
    }
    EXPECT_EQ(w.port.opened, 0);
}

TEST_F(TrackerUi, APortThatCannotBeOpenedKeepsTheDialog) {
    QDialog& form = open("mnuCOMSelect", "FrmComPort");
    tick(form, "Option1_2");
    for (const bool openable : {false, true}) {
        w.port.openable = openable;
        click(form, "Command1");
        w.clock.run(2s);
        EXPECT_EQ(form.isVisible(), !openable);
        EXPECT_TRUE(find<QRadioButton>(form, "Option1_2").isChecked());
        EXPECT_EQ(w.store.values["Communication/Port"], openable ? "3" : "");
    }
    trigger("mnuCOMSelect");
    tick(form, "Option1_0");
    click(form, "Command2");
    EXPECT_FALSE(form.isVisible());
    EXPECT_EQ(w.store.values["Communication/Port"], "3");
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
    EXPECT_TRUE(has(textOf(form, "status"), "Read from the tracker. Latitude changed: "));
    for (const auto& [name, read, typed, value] : fields) {
        EXPECT_EQ(find<QLineEdit>(form, name).text(), read) << name;
        type(find<QLineEdit>(form, name), typed);
        EXPECT_EQ(value->get(), *typed == '\0' ? read : typed) << name;
    }
    EXPECT_EQ(textOf(form, "lbl_hours"), "= -1 h");
    QTest::keyClick(&find<QLineEdit>(form, "txt_lat"), Qt::Key_Return);
    expectLocked(true);
    w.clock.run(2s);
    EXPECT_EQ(w.module.site, (SiteValues{51.5, -0.5, -60}));
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
    const QWidget& set = find<QWidget>(form, "Command1");
    const QWidget& bar = find<QWidget>(form, "busy");
    EXPECT_TRUE(!set.isEnabled() && bar.isVisible());
    w.clock.run(3s);
    EXPECT_TRUE(set.isEnabled() && !bar.isVisible());
    EXPECT_EQ(focusOf(form), "Command3");
    {
        const DarkDesktop desktop;
        EXPECT_GT(colour("Label2_0").lightness(), 160);
        EXPECT_GT(colour("Label2_0").blue(), colour("Label2_0").red());
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
    EXPECT_TRUE(form.testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_EQ(w.tasks.running(), 0u);
    form.unload();
    EXPECT_EQ(&open("mnuTKRTimeSetAuto", "FrmTKRTimeAuto"), &form) << "one dialog for both";
    ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
    form.openAutomatic();
    EXPECT_EQ(w.tasks.running(), 1u) << "already open";
    form.unload();
    EXPECT_FALSE(form.isVisible()) << "unloading does not wait for a procedure";
}

} // namespace
} // namespace orvane::test

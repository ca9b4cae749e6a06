#include "tests/ui/WindowTest.h"
#include "ui/dialogs/FrmSave.h"
#include "ui/dialogs/Frm_AutoStart.h"
#include "ui/dialogs/Frm_massege.h"
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
    auto window = std::make_unique<QWidget>();
    asked.setParentWindow(window.get());
    Task<bool> task = asked.ask("?");
    task.start();
    ASSERT_NE(openBox(), nullptr);
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
    struct Case {
        std::int16_t quality, format;
        const char *shown, *shownFormat, *chosen; ///< "": none
        std::int16_t qualityThen, formatThen;
    };
    constexpr std::int16_t kExif = ImageControl::kFormatExif, k444 = ImageControl::kFormat444;
    const Case cases[] = {{2, kExif, "Option1", "opt_type_0", "", 2, kExif}, // OK changes nothing
                          {9, kExif, "Option1", "opt_type_0", "Option2", 24, kExif},
                          {10, k444, "Option2", "opt_type_1", "", 10, k444},
                          {49, k444, "Option2", "opt_type_1", "Option3", 56, k444},
                          {50, 20, "Option3", "", "", 50, 20}, // unknown, and stays
                          {50, 20, "Option3", "", "Option1", 2, 20},
                          {50, 20, "Option3", "", "opt_type_0", 50, kExif},
                          {50, kExif, "Option3", "opt_type_0", "opt_type_1", 50, k444}};
    for (const Case& c : cases) {
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
    tick(form, "chk_lr");
    tick(form, "chk_date");
    EXPECT_TRUE(date.isChecked());
    tick(form, "chk_lr");
    EXPECT_FALSE(date.isChecked());
    tick(form, "chk_lr");
    tick(form, "chk_date");
    EXPECT_EQ(options.LrFlg, 0);
    click(form, "Command1");
    EXPECT_EQ(options.LrFlg, -1);
    EXPECT_EQ(options.DateFlg, -1);
    EXPECT_EQ(options.RawFlg, 0);
    EXPECT_FALSE(form.isVisible());
    FrmSave again(options);
    EXPECT_TRUE(find<QCheckBox>(again, "chk_date").isChecked());
    EXPECT_EQ(options.DateFlg, -1);
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

TEST_F(DialogsUi, WarningOpensAndClosesByItself) {
    Warnings warnings{clock};
    Frm_massege form(warnings);
    EXPECT_FALSE(form.isVisible());
    warnings.set(Warnings::Cause::NoImage, "No image at 09:30 and 10:00.");
    EXPECT_TRUE(form.isVisible());
    EXPECT_FALSE(form.isModal());
    click(form, "Command1");
    EXPECT_FALSE(form.isVisible());
    warnings.set(Warnings::Cause::DiskSpace, "Little space.");
    EXPECT_TRUE(form.isVisible()) << "a new text opens it again";
    const std::string text = textOf(form, "Label1");
    EXPECT_TRUE(has(text, "No image at 09:30 and 10:00.\nCheck the camera's power"));
    EXPECT_TRUE(has(text, "\nLittle space.\nMove old days elsewhere"));
    warnings.clear(Warnings::Cause::NoImage);
    EXPECT_TRUE(form.isVisible());
    warnings.clear(Warnings::Cause::DiskSpace);
    EXPECT_FALSE(form.isVisible());
}

TEST_F(DialogsUi, CountdownExits) {
    enum class Exit { None, MainLoop, End };
    const std::pair<std::function<void(Frm_AutoStart&)>, Exit> cases[] = {
        {[](auto& form) { click(form, "Command1"); }, Exit::MainLoop},
        {[](auto& form) { click(form, "Command2"); }, Exit::End},
        {[](auto& form) { form.close(); }, Exit::MainLoop},
        {[](auto& form) { QTest::keyClick(&form, Qt::Key_Escape); }, Exit::MainLoop},
        {[this](auto&) { clock.run(99 * 105ms); }, Exit::MainLoop}};
    for (const auto& [act, expected] : cases) {
        Module1 module;
        FakeStore store;
        Exit exit = Exit::None;
        Frm_AutoStart* form = nullptr;
        AutoStart autoStart(module, store, clock,
                            {[&] { form->closeDialog(); }, [&] { exit = Exit::MainLoop; },
                             [&] { exit = Exit::End; }},
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

} // namespace
} // namespace orvane::test

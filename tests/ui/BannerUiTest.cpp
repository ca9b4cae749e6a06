#include "tests/ui/WindowTest.h"
#include "ui/dialogs/Frm_massege.h"

#include <QListWidget>

namespace orvane::test {
namespace {

using Cause = Warnings::Cause;

class BannerUi : public WindowTest {
  protected:
    BannerUi() { w.condition.begin(); }

    void warn(Cause cause, const std::string& text = "Something is wrong.") {
        w.warnings.set(cause, text);
        w.clock.run(1s);
        QCoreApplication::processEvents();
    }
    std::string told() const { return label.accessibleName().toStdString(); }
    std::string title() const { return w.main.windowTitle().toStdString(); }

    QWidget& banner = part("banner");
    QLabel& label = part<QLabel>("lbl_banner_0");
    QPushButton& button = part<QPushButton>("cmd_banner_0");
    QPushButton& more = part<QPushButton>("cmd_banner_more");
};

TEST_F(BannerUi, TellsTheGravestUntilItsEndIsKnown) {
    const QSize small(910, 480);
    w.main.resize(small);
    const Frm_massege window(w.warnings, &w.main);
    w.clock.run(1s);
    EXPECT_FALSE(banner.isVisible());
    EXPECT_EQ(title(), "Orvane - ready");
    warn(Cause::SunTimes, "The sun times of the site cannot be computed: polar day.");
    EXPECT_FALSE(more.isVisible());
    click(window, "Command1");
    EXPECT_FALSE(window.isVisible());
    warn(Cause::DataFolder, "The data folder cannot be written: <b>full</b>.");
    warn(Cause::Mail, "No mail can be sent: " + std::string(200, 'x') + '.');
    EXPECT_TRUE(window.isVisible()) << "a new text opens it again";
    EXPECT_FALSE(window.isModal());
    EXPECT_TRUE(has(textOf(window, "Label1"), "<b>full</b>.\nSee whether the disk is full"));
    click(window, "Command1");
    EXPECT_TRUE(banner.isVisible()) << "the window's closing does not close it";
    EXPECT_EQ(title(), "Orvane - data folder cannot be written");
    const std::string sign = part("sgn_status").accessibleName().toStdString();
    EXPECT_TRUE(has(sign, ": data folder cannot be written"));
    EXPECT_EQ(told(),
              "Since 08:00: The data folder cannot be written: <b>full</b>. See whether the "
              "disk is full or write-protected, or choose another data folder.");
    EXPECT_FALSE(label.text().contains("<b>full")) << "what others wrote is no markup";
    const auto contrast = [this] {
        return label.palette().color(QPalette::Window).lightness() -
               label.palette().color(QPalette::WindowText).lightness();
    };
    EXPECT_GT(contrast(), 128);
    {
        const DarkDesktop dark;
        EXPECT_LT(contrast(), -128);
    }
    for (const bool all : {false, true, false}) {
        const auto* last = w.main.findChild<QLabel*>("lbl_banner_2");
        EXPECT_EQ(last != nullptr && last->isVisible(), all);
        EXPECT_EQ(more.text().remove('&'), all ? "hide 2" : "and 2 more");
        click(more);
        QCoreApplication::processEvents();
        EXPECT_EQ(w.main.size(), small) << "nothing widens the window";
    }
    w.warnings.set(Cause::Mail, "No mail can be sent: y.");
    for (const Cause cause : {Cause::SunTimes, Cause::DataFolder, Cause::Mail}) {
        EXPECT_TRUE(window.isVisible());
        w.warnings.clear(cause);
    }
    EXPECT_FALSE(window.isVisible());
    w.clock.run(1s);
    EXPECT_EQ(told(), "Over since 08:00: data folder cannot be written.");
    button.click();
    EXPECT_FALSE(banner.isVisible()) << "the news was closed";
}

TEST_F(BannerUi, ItsButtonsLeadToWhatHelps) {
    const FakeDesktop desktop;
    w.module.RecordFlg = true;
    w.panel.Command3.enabled = false;
    const auto shown = [this](const char* name) {
        const auto* dialog = w.main.findChild<QDialog*>(name);
        return dialog != nullptr && dialog->isVisible();
    };
    const std::tuple<Cause, const char*, std::function<bool()>> cases[] = {
        {Cause::SunTimes, "Site values",
         [&] { return focusOf(w.main) == "txt_lat" && page() == 0; }},
        {Cause::DiskSpace, "Show in the file manager",
         [&] { return desktop.opened.contains("data"); }},
        {Cause::ErrorLog, "Show in the file manager",
         [&] { return desktop.opened.contains("program"); }},
        {Cause::Mail, "Alerts...", [&] { return shown("frmAlerts"); }},
        {Cause::ClockSetting, "Time Setting...", [&] { return shown("FrmTKRTimeAuto"); }},
        {Cause::DataFolder, "Select Data Save Folder",
         [&] { return answer({}).title == "Select Data Save Folder"; }}};
    for (const auto& [cause, caption, isDone] : cases) {
        showPage(2);
        warn(cause);
        ASSERT_EQ(button.text().remove('&').toStdString(), caption);
        if (cause == Cause::DataFolder) {
            EXPECT_FALSE(button.isEnabled()) << "while recording it is locked, as on the panel";
            EXPECT_TRUE(button.toolTip().startsWith("Stop recording first"));
            w.panel.Command3.enabled = true;
            w.clock.run(1s);
        }
        EXPECT_FALSE(button.toolTip().isEmpty());
        button.click();
        w.clock.run(100ms);
        EXPECT_TRUE(isDone()) << caption;
        w.warnings.clear(cause);
        w.clock.run(1s);
        w.condition.closeOver();
    }
    std::filesystem::create_directory(w.dataFolder() / "20061114");
    w.panel.Dir1[0].enabled = false;
    w.panel.Dir1[0].enabled = true;
    part<QListWidget>("Dir1_0").setCurrentRow(1);
    trigger("Dir1_0_show");
    EXPECT_EQ(desktop.opened.last(), "20061114");
    w.panel.Dir1[0].path = w.folder.path() / "gone";
    trigger("mnuFileShowFolder");
    ASSERT_FALSE(op.told.empty());
    EXPECT_TRUE(has(op.told.back(), "gone is not there"));
}

TEST_F(BannerUi, TestFetchBringsItsPage) {
    part("dayView").hide(); // its looks take time
    w.http.answer = [](const std::string&) { return FakeHttp::failed("HTTP status 503"); };
    w.start(true);
    w.clock.runUntil(at(2006, 11, 15, 9, 31, 5));
    EXPECT_EQ(title(), "Orvane - no image since 09:00");
    const auto asked = w.http.requests;
    button.click();
    w.clock.run(1s);
    EXPECT_EQ(page(), 1);
    EXPECT_EQ(w.http.requests, asked + 1);
    w.loopTask.reset();
}

} // namespace
} // namespace orvane::test

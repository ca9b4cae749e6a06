#include "tests/support/TestWindow.h"
#include "ui/Text.h"
#include "ui/dialogs/Frm_massege.h"
#include "ui/panel/GradeSign.h"

#include <QDesktopServices>
#include <QFileDialog>
#include <QLabel>
#include <QListWidget>
#include <QMdiArea>
#include <QPushButton>
#include <QTabWidget>
#include <QUrl>

namespace orvane::test {
namespace {

using Cause = Warnings::Cause;

/// Stands in for the desktop's file manager.
class FileManager : public QObject {
    Q_OBJECT

  public:
    FileManager() { QDesktopServices::setUrlHandler("file", this, "open"); }
    ~FileManager() override { QDesktopServices::unsetUrlHandler("file"); }

    QStringList opened; ///< the names of the folders

  public slots:
    void open(const QUrl& url) { opened << url.fileName(); }
};

class BannerUi : public testing::Test {
  protected:
    BannerUi() { w.condition.begin(); }
    ~BannerUi() override { QApplication::setPalette(QPalette()); }

    void warn(Cause cause, const char* text) {
        w.warnings.set(cause, text);
        w.clock.run(1s);
        QCoreApplication::processEvents();
    }
    QString textOf(const char* label) { return find<QLabel>(w.main, label).accessibleName(); }
    QPushButton& button(const char* name = "cmd_banner_0") {
        return find<QPushButton>(w.main, name);
    }
    QColor background() {
        return find<QLabel>(w.main, "lbl_banner_0").palette().color(QPalette::Window);
    }

    JumpingClock clock{at(2006, 11, 15)};
    FakeOperator op{clock};
    Window w{op};
    QWidget& banner = find<QWidget>(w.main, "banner");
};

TEST_F(BannerUi, StaysWhenTheWarningWindowIsClosed) {
    Frm_massege window(w.warnings, &w.main);
    w.clock.run(1s);
    EXPECT_FALSE(banner.isVisible());
    EXPECT_EQ(w.main.windowTitle(), "Orvane - ready");
    warn(Cause::DataFolder, "The data folder cannot be written: <b>full</b>.");
    EXPECT_TRUE(banner.isVisible());
    EXPECT_EQ(w.main.windowTitle(), "Orvane - data folder cannot be written");
    EXPECT_EQ(
        textOf("lbl_banner_0"),
        "Since 08:00: The data folder cannot be written: <b>full</b>. See whether the disk is "
        "full or write-protected, or choose another data folder.");
    const QString html = find<QLabel>(w.main, "lbl_banner_0").text();
    EXPECT_FALSE(html.contains("<b>full")) << "what others wrote is no markup";
    click(window, "Command1");
    EXPECT_FALSE(window.isVisible());
    EXPECT_TRUE(banner.isVisible());
    w.warnings.clear(Cause::DataFolder);
    w.clock.run(1s);
    EXPECT_EQ(textOf("lbl_banner_0"), "Over since 08:00: data folder cannot be written.");
}

TEST_F(BannerUi, ShowsTheGravestAndAllOnDemand) {
    warn(Cause::SunTimes, "The sun times of the site cannot be computed: polar day.");
    EXPECT_FALSE(button("cmd_banner_more").isVisible());
    warn(Cause::DataFolder, "The data folder cannot be written: full.");
    warn(Cause::Mail, "No mail can be sent: x.");
    EXPECT_TRUE(textOf("lbl_banner_0").contains("data folder"));
    auto& more = button("cmd_banner_more");
    EXPECT_EQ(more.text().remove('&'), "and 2 more");
    click(more);
    EXPECT_TRUE(find<QWidget>(w.main, "lbl_banner_2").isVisible());
    EXPECT_EQ(more.text().remove('&'), "hide 2");
    click(more);
    EXPECT_FALSE(find<QWidget>(w.main, "lbl_banner_2").isVisible());
}

TEST_F(BannerUi, ItsButtonsLeadToWhatHelps) {
    FileManager files;
    auto& pages = find<QTabWidget>(w.main, "pages");
    w.module.RecordFlg = true;
    w.panel.Command3.enabled = false;
    const auto shown = [this](const char* name) {
        const auto* dialog = w.main.findChild<QDialog*>(name);
        return dialog != nullptr && dialog->isVisible();
    };
    const std::tuple<Cause, const char*, std::function<bool()>> cases[] = {
        {Cause::SunTimes, "Site values",
         [&] { return find<QWidget>(w.main, "txt_lat").hasFocus() && pages.currentIndex() == 0; }},
        {Cause::DiskSpace, "Show in the file manager",
         [&] { return files.opened.contains("data"); }},
        {Cause::ErrorLog, "Show in the file manager",
         [&] { return files.opened.contains("program"); }},
        {Cause::Mail, "Alerts...", [&] { return shown("frmAlerts"); }},
        {Cause::ClockSetting, "Time Setting...", [&] { return shown("FrmTKRTimeAuto"); }},
        {Cause::DataFolder, "Select Data Save Folder",
         [&] { return w.main.findChild<QFileDialog*>() != nullptr; }}};
    for (const auto& [cause, caption, isDone] : cases) {
        pages.setCurrentIndex(2);
        warn(cause, "Something is wrong.");
        ASSERT_EQ(button().text().remove('&'), caption);
        if (cause == Cause::DataFolder) {
            EXPECT_FALSE(button().isEnabled()) << "while recording it is locked, as on the panel";
            EXPECT_TRUE(button().toolTip().startsWith("Stop recording first"));
            w.panel.Command3.enabled = true;
            w.clock.run(1s);
        }
        button().click();
        EXPECT_TRUE(isDone()) << caption;
        w.warnings.clear(cause);
        w.condition.closeOver();
        w.clock.run(1s);
        w.condition.closeOver();
    }
}

TEST_F(BannerUi, TestFetchBringsItsPage) {
    w.browser1.answer = [](const std::string&) { return "NO_DATA"; };
    w.start(true);
    w.http.answer = [](const std::string&) { return FakeHttp::failed("HTTP status 503"); };
    w.clock.runUntil(at(2006, 11, 15, 9, 31, 5));
    EXPECT_EQ(w.main.windowTitle(), "Orvane - no image since 09:00");
    EXPECT_EQ(find<QLabel>(w.main, "lbl_fault").text(), "09:30: HTTP status 503");
    EXPECT_TRUE(find<QWidget>(w.main, "lbl_fault").isVisible());
    const auto asked = w.http.requests;
    button().click();
    w.clock.run(1s);
    EXPECT_EQ(find<QTabWidget>(w.main, "pages").currentIndex(), 1);
    EXPECT_EQ(w.http.requests, asked + 1);
    clock.run(5s); // the operator's box
    w.http.answer = [](const std::string&) { return FakeHttp::picture("new"); };
    w.clock.runUntil(at(2006, 11, 15, 10, 0, 5));
    EXPECT_EQ(textOf("lbl_banner_0"),
              "Pictures arrive again since 10:00. 2 were missed from 09:00.");
    EXPECT_FALSE(find<QWidget>(w.main, "lbl_fault").isVisible()) << "it takes no room now";
    button().click();
    EXPECT_FALSE(banner.isVisible()) << "the news was closed";
    w.loopTask.reset();
}

TEST_F(BannerUi, NeverWidensTheWindow) {
    w.main.resize(910, 480); // a small screen
    QCoreApplication::processEvents();
    const int narrowest = w.main.minimumSizeHint().width();
    const std::string path = "/media/" + std::string(300, 'x') + "/" + std::string(300, 'y');
    warn(Cause::ChosenFolder, ("The data folder " + path + " is not there.").c_str());
    EXPECT_EQ(w.main.minimumSizeHint().width(), narrowest);
    EXPECT_EQ(w.main.size(), QSize(910, 480));
    warn(Cause::ChosenFolder, "The data folder /media/usb/sky is not there. Pictures go to "
                              "/home/sky/Pictures/Orvane meanwhile.");
    QCoreApplication::processEvents();
    EXPECT_LE(banner.height(), 3 * banner.fontMetrics().lineSpacing() + 12);
    warn(Cause::ClockSetting, "The daily clock setting failed: Communication is unusual.");
    warn(Cause::StatusFile, "The status page cannot be kept up to date: status.js: in use.");
    click(button("cmd_banner_more"));
    QCoreApplication::processEvents();
    EXPECT_EQ(w.main.size(), QSize(910, 480)) << "all of them fit as well";
}

TEST_F(BannerUi, FollowsALightAndADarkDesktop) {
    warn(Cause::DataFolder, "The data folder cannot be written: full.");
    EXPECT_GT(background().lightness(), 200);
    QPalette dark;
    dark.setColor(QPalette::Window, "#202428");
    dark.setColor(QPalette::WindowText, Qt::white);
    QApplication::setPalette(dark);
    QCoreApplication::processEvents();
    EXPECT_LT(background().lightness(), 80);
}

TEST_F(BannerUi, TheSignTellsItsGradeInWords) {
    auto& sign = find<GradeSign>(w.main, "sgn_status");
    EXPECT_EQ(sign.accessibleName(), "Recording is off");
    warn(Cause::DiskSpace, "Little space.");
    EXPECT_EQ(sign.accessibleName(), "Attention: disk is nearly full");
    EXPECT_EQ(sign.toolTip(), sign.accessibleName());
    std::vector<QImage> looks;
    for (const Grade grade : {Grade::Off, Grade::Well, Grade::Attention, Grade::Trouble}) {
        w.panel.sgn_status.grade = grade;
        looks.push_back(sign.grab().toImage().convertToFormat(QImage::Format_Grayscale8));
        for (std::size_t other = 0; other + 1 < looks.size(); ++other)
            EXPECT_NE(looks[other], looks.back()) << "told apart without colours";
    }
}

/// A maximised picture puts its name behind the window's.
TEST_F(BannerUi, TheTitleStaysBesideAMaximisedPicture) {
    const auto file = w.dataFolder() / "a.jpg";
    QImage(64, 48, QImage::Format_RGB32).save(toQString(file), "JPEG");
    w.pictures.openImage(file);
    w.main.findChild<QMdiArea*>()->subWindowList().front()->showMaximized();
    w.clock.run(1s);
    EXPECT_EQ(w.main.windowTitle(), "Orvane - ready - [a.jpg]");
    warn(Cause::DiskSpace, "Little space.");
    EXPECT_EQ(w.main.windowTitle(), "Orvane - disk is nearly full - [a.jpg]");
}

/// The data folder's list and the file manager.
TEST_F(BannerUi, TheFolderIsShownInTheFileManager) {
    FileManager files;
    w.main.findChild<QAction*>("mnuFileShowFolder")->trigger();
    EXPECT_EQ(files.opened, QStringList("data"));
    std::filesystem::create_directory(w.dataFolder() / "20061114");
    auto& list = find<QListWidget>(w.main, "Dir1_0");
    w.panel.Dir1[0].enabled = false;
    w.panel.Dir1[0].enabled = true;
    list.setCurrentRow(1);
    w.main.findChild<QAction*>("Dir1_0_show")->trigger();
    EXPECT_EQ(files.opened.back(), "20061114");
    w.panel.Dir1[0].path = w.folder.path() / "gone";
    w.main.findChild<QAction*>("mnuFileShowFolder")->trigger();
    ASSERT_FALSE(op.told.empty());
    EXPECT_NE(op.told.back().find("gone is not there"), std::string::npos) << op.told.back();
}

} // namespace
} // namespace orvane::test

#include "BannerUiTest.moc"

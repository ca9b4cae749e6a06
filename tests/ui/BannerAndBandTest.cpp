#include "tests/ui/WindowTest.h"
#include "ui/day/DayView.h"
#include "ui/dialogs/Frm_massege.h"

#include <QHelpEvent>
#include <QListWidget>
#include <QPainter>
#include <QPicture>
#include <QToolTip>

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

/// A picture holds its texts as a data stream has them.
bool writes(const QPicture& picture, const QString& text) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << text;
    return QByteArray(picture.data(), static_cast<int>(picture.size())).contains(bytes);
}

/// The band in its window at 10:10 on a day that records every half hour from 9 to 12: taken,
/// fetched, missed, then to come; and one picture beside the schedule.
class Band : public WindowTest {
  protected:
    Band() {
        const auto today = w.dataFolder() / "20061115";
        for (const char* name : {"20061115_090000_00.jpg", "20061115_093017_00.jpg",
                                 "20061115_094500_00.jpg", "20061115_094500_00.tmp"})
            writeFile(today / name, jpegLike(name));
        w.module.schedule = {9h, 12h, 30min, {}};
        w.module.RecordFlg = true;
        band.hide(); // its looks take time
        w.clock.run(2h + 10min);
        band.show();
        w.clock.run(2s);
    }
    /// The tool tip at a place of the band; empty when there is none.
    QString tipAt(const QPointF& place) {
        QHelpEvent event(QEvent::ToolTip, place.toPoint(), band.mapToGlobal(place.toPoint()));
        QApplication::sendEvent(&band, &event);
        return event.isAccepted() ? QToolTip::text() : QString(); // a tip fades slowly
    }

    DayView& band = part<DayView>("dayView");
};

TEST_F(Band, TellsTheDayAndEachMarkToTheMouseAndTheKeys) {
    const QString text = "taken 1 of 6, next at 10:30, 1 fetched later, 1 missed";
    EXPECT_EQ(band.accessibleName(), "Today: " + text);
    EXPECT_EQ(band.width(), w.main.centralWidget()->width());
    const char* texts[] = {"09:00 - taken: 20061115_090000_00.jpg",
                           "09:30 - fetched from the camera's store: 20061115_093017_00.jpg",
                           "09:45 - taken, not on the schedule: 20061115_094500_00.jpg",
                           "10:00 - missed",
                           "10:30 - to come",
                           "11:00 - to come",
                           "11:30 - to come"};
    ASSERT_EQ(band.marks().size(), std::size(texts));
    for (std::size_t i = 0; i < std::size(texts); ++i)
        EXPECT_EQ(tipAt(band.markRect(i).center()), texts[i]);
    // the middle between 9:00 and 10:00 is 9:30, and noon is in the middle of the band
    const QPointF nine = band.markRect(0).center();
    const QPointF ten = band.markRect(3).center();
    EXPECT_EQ(tipAt((nine + ten) / 2), texts[1]);
    EXPECT_NEAR(ten.x() + 2 * (ten.x() - nine.x()), band.width() / 2.0, 2);
    EXPECT_EQ(tipAt(nine - QPointF(20, 0)), "");

    band.setFocus();
    const std::pair<Qt::Key, int> keys[] = {{Qt::Key_Right, 4}, // the first after 10:10
                                            {Qt::Key_Left, 3},  {Qt::Key_End, 6},
                                            {Qt::Key_Right, 6}, {Qt::Key_Home, 0},
                                            {Qt::Key_Left, 0},  {Qt::Key_Right, 1}};
    for (const auto& [key, mark] : keys) {
        QTest::keyClick(&band, key);
        EXPECT_EQ(QToolTip::text(), texts[mark]);
        EXPECT_TRUE(band.accessibleDescription().endsWith(texts[mark]));
    }
    QTest::keyClick(&band, Qt::Key_Tab);
    EXPECT_EQ(band.accessibleDescription(), text) << "the mark goes with the focus";
    band.hide();
    w.module.RecordFlg = false;
    w.clock.run(5s);
    EXPECT_EQ(band.accessibleDescription(), text) << "unseen, it does not look";
    band.show();
    EXPECT_EQ(band.accessibleDescription(), "recording is off");
    w.module.RecordFlg = true;
    w.module.schedule = {0h, 23h + 59min, 1min, {}};
    w.clock.run(1s);
    const std::size_t before = band.marks().size();
    w.main.resize(2000, 747);
    EXPECT_GT(band.marks().size(), before) << "a wider band tells more minutes apart";
}

/// Each on the night's side of its line; on the other where there is no room.
TEST(DayDrawing, SunriseAndSunsetStandAtTheirTimes) {
    const struct {
        int minute;
        bool rises;
        const char* text;
        bool isLeft;
    } cases[] = {{381, true, "sunrise 06:21", true},
                 {993, false, "sunset 16:33", false},
                 {20, true, "sunrise 00:20", false},
                 {1420, false, "sunset 23:40", true}};
    const DayLayout layout({0, 0, 1000, 100}, QFont());
    const auto draw = [&](QPaintDevice& device, const SunDay& sun) {
        QPainter painter(&device);
        DayDrawing(painter, layout, {}).draw({{}, sun, {}, {}, {}, -1, -1});
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        SunDay sun;
        for (std::size_t minute = 0; minute < sun.elevation.size(); ++minute)
            sun.elevation[minute] = (static_cast<int>(minute) < c.minute) == c.rises ? -30 : 30;
        QImage image(1000, 100, QImage::Format_RGB32);
        image.fill(Qt::white);
        QImage without = image;
        draw(without, sun);
        (c.rises ? sun.sunrise : sun.sunset) = c.minute;
        draw(image, sun);
        QPicture picture;
        draw(picture, sun);
        EXPECT_TRUE(writes(picture, c.text));
        const int line = static_cast<int>(layout.x(c.minute));
        for (const bool left : {true, false}) {
            const QRect beside(line + (left ? -26 : 6), static_cast<int>(layout.sun.top()), 20, 20);
            EXPECT_EQ(image.copy(beside) != without.copy(beside), left == c.isLeft);
        }
        for (const double y : {layout.sun.bottom() - 8, layout.lane.center().y()}) {
            const auto blueness = [&](int x) {
                const QColor colour = image.pixelColor(x, static_cast<int>(y));
                return colour.blue() - colour.red();
            };
            EXPECT_EQ(blueness(line - 6) > blueness(line + 6), c.rises) << "night, then day";
        }
    }
}

} // namespace
} // namespace orvane::test

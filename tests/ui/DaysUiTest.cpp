#include "tests/support/TestPictures.h"
#include "tests/support/TestWindow.h"
#include "ui/Dates.h"
#include "ui/day/DayView.h"
#include "ui/day/FilmWindow.h"
#include "ui/day/FrmCalendar.h"
#include "ui/day/KeogramWindow.h"

#include <QCalendarWidget>
#include <QClipboard>
#include <QComboBox>
#include <QFileDialog>
#include <QGuiApplication>
#include <QLabel>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QTextCharFormat>
#include <QToolTip>

namespace orvane::test {
namespace {

/// The main window at 8:00 of the 15th, with a schedule of a picture every minute from 9 to 10 and
/// the pictures of three days: the 11th without one, the 13th with a half, the 14th with all.
class DaysUi : public testing::Test {
  protected:
    DaysUi() {
        const char* fields[] = {"9", "0", "10", "0", "", "1", "0"};
        for (std::size_t i = 0; i < std::size(fields); ++i)
            w.panel.Text1[i].text = std::string(fields[i]);
        w.module.image.Delay = 0;
        w.panel.Dir1[0].path = w.dataFolder();
        std::filesystem::create_directory(w.dataFolder() / "20061111");
        record("20061113", 30);
        record("20061114", 60);
        w.clock.run(2s);
    }
    void record(const std::string& day, int count) {
        std::filesystem::create_directory(w.dataFolder() / day);
        for (int minute = 0; minute < count; ++minute) {
            QImage picture(64, 48, QImage::Format_RGB32);
            picture.fill(QColor(4 * minute, 128, 128));
            const std::string name = day + "_09" + twoDigits(minute) + "00_00.jpg";
            writeFile(w.dataFolder() / day / name, encoded(picture));
        }
    }
    void trigger(const char* action) { w.main.findChild<QAction*>(action)->trigger(); }
    void turn(const char* action) {
        trigger(action);
        w.clock.run(1s);
    }
    QString text() const { return band.accessibleName(); }
    FilmWindow& openFilm() {
        trigger("mnuDayFilm");
        w.clock.run(10ms);
        return *w.main.findChild<FilmWindow*>();
    }
    template <class Shown>
    Shown* windowOf() const {
        return w.main.findChild<Shown*>();
    }
    /// The titles of the picture windows that are open.
    QStringList titles() const {
        QStringList all;
        for (const QMdiSubWindow* frame : w.main.findChildren<QMdiSubWindow*>())
            all << frame->windowTitle();
        return all;
    }

    JumpingClock clock{at(2006, 11, 15)};
    FakeOperator op{clock};
    Window w{op};
    DayView& band = *w.main.findChild<DayView*>();
};

TEST_F(DaysUi, KeysAndButtonsTurnTheDays) {
    EXPECT_TRUE(text().startsWith("Today: "));
    EXPECT_FALSE(find<QWidget>(w.main, "cmd_day_next").isEnabled());
    turn("mnuDayPrevious");
    EXPECT_EQ(text(), "2006/11/14: taken 60 of 60");
    click(band, "cmd_day_previous");
    w.clock.run(1s);
    EXPECT_EQ(text(), "2006/11/13: taken 30 of 60, 30 missed");
    turn("mnuDayPrevious");
    turn("mnuDayPrevious");
    EXPECT_EQ(text(), "2006/11/11: taken 0 of 60, 60 missed");
    EXPECT_FALSE(find<QWidget>(w.main, "cmd_day_previous").isEnabled()) << "the archive's first";
    EXPECT_FALSE(w.main.findChild<QAction*>("mnuDayPrevious")->isEnabled());
    turn("mnuDayNext");
    EXPECT_EQ(text(), "2006/11/12: taken 0 of 60, 60 missed");
    click(band, "cmd_day_today");
    w.clock.run(1s);
    EXPECT_TRUE(text().startsWith("Today: "));
}

TEST_F(DaysUi, AMarkOpensItsPicture) {
    turn("mnuDayPrevious");
    QTest::mouseClick(&band, Qt::LeftButton, {}, band.markRect(5).center().toPoint());
    ASSERT_EQ(titles().size(), 1);
    EXPECT_TRUE(titles()[0].startsWith("14 Nov 2006 09:"));
    band.setFocus();
    QTest::keyClick(&band, Qt::Key_Home);
    QTest::keyClick(&band, Qt::Key_Return);
    EXPECT_TRUE(titles().contains("14 Nov 2006 09:00"));

    turn("mnuDayPrevious");
    QTest::mouseClick(&band, Qt::LeftButton, {},
                      band.markRect(band.marks().size() - 1).center().toPoint());
    EXPECT_EQ(titles().size(), 2) << "there is none";
    EXPECT_TRUE(QToolTip::text().contains("missed")) << "but the reason is told";
}

TEST_F(DaysUi, TheFilmKeepsItsTimeAndTheBandIsItsSlider) {
    turn("mnuDayPrevious");
    FilmWindow& film = openFilm();
    const auto& where = find<QLabel>(film, "lbl_film");
    EXPECT_EQ(where.text(), "09:00   1 of 60");
    click(film, "cmd_film_play");
    w.clock.run(1s);
    EXPECT_EQ(film.player().index(), 25) << "25 pictures a second";
    find<QComboBox>(film, "cbo_film_rate").setCurrentText("5 a second");
    w.clock.run(1s);
    EXPECT_EQ(film.player().index(), 30);
    QTest::keyClick(&film, Qt::Key_Space);
    w.clock.run(1s);
    EXPECT_EQ(where.text(), "09:30   31 of 60") << "paused";

    click(film, "cmd_film_forward");
    QTest::keyClick(&find<QWidget>(film, "picture"), Qt::Key_PageDown);
    QTest::keyClick(&find<QWidget>(film, "picture"), Qt::Key_Right);
    click(film, "cmd_film_back");
    w.clock.run(100ms);
    EXPECT_EQ(where.text(), "09:32   33 of 60");

    const QPointF quarter = band.markRect(0).center();
    QTest::mousePress(&band, Qt::LeftButton, {}, quarter.toPoint());
    for (int x = 1; x <= 20; ++x) // faster than any picture comes
        QTest::mouseMove(&band, quarter.toPoint() + QPoint(x, 0));
    w.clock.run(100ms);
    EXPECT_EQ(titles().size(), 1) << "no picture opens";
    const int there = film.player().index();
    EXPECT_GT(there, 10);
    QTest::mouseMove(&band, quarter.toPoint() + QPoint(400, 0));
    QTest::mouseRelease(&band, Qt::LeftButton, {}, quarter.toPoint() + QPoint(400, 0));
    w.clock.run(100ms);
    EXPECT_EQ(where.text(), "09:59   60 of 60") << "behind the last one";

    click(film, "cmd_film_play");
    w.clock.run(20s);
    EXPECT_EQ(film.player().index(), 59) << "from the beginning to the end";
    EXPECT_FALSE(film.player().isPlaying());
}

TEST_F(DaysUi, TheFilmGoesWithTheDay) {
    turn("mnuDayPrevious");
    FilmWindow& film = openFilm();
    film.player().play();
    w.clock.run(500ms);
    turn("mnuDayPrevious");
    EXPECT_EQ(film.player().count(), 30);
    EXPECT_EQ(film.windowTitle(), "Film of 13 Nov 2006");
    EXPECT_FALSE(film.player().isPlaying());
    turn("mnuDayPrevious");
    EXPECT_EQ(film.player().count(), 0);
    EXPECT_FALSE(find<QWidget>(film, "cmd_film_play").isEnabled());
    turn("mnuDayNext");
    w.clock.run(1s);
    EXPECT_EQ(film.player().index(), 0);
    writeFile(w.dataFolder() / "20061113" / "20061113_090200_00.jpg", "damaged");
    film.player().seek(2);
    w.clock.run(1s);
    EXPECT_TRUE(film.findChild<PictureView*>()->text().startsWith("This is not a JPEG picture"));
    film.player().play();
    w.clock.run(1200ms);
    EXPECT_EQ(film.player().index(), 29) << "a damaged picture does not end it";
    film.player().play();
    w.clock.run(50ms);
    film.parentWidget()->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    w.clock.run(1s);
    EXPECT_EQ(windowOf<FilmWindow>(), nullptr);
    QTest::mouseClick(&band, Qt::LeftButton, {}, band.markRect(0).center().toPoint());
    EXPECT_EQ(titles().size(), 1) << "marks open their pictures again";
}

TEST_F(DaysUi, TheKeogramIsShownCopiedAndOpensPictures) {
    turn("mnuDayPrevious");
    trigger("mnuDayKeogram");
    w.clock.run(3s);
    auto& window = *windowOf<KeogramWindow>();
    auto& view = *window.findChild<KeogramView*>();
    EXPECT_EQ(window.windowTitle(), "Keogram of 14 Nov 2006");
    ASSERT_EQ(view.image().size(), QSize(1440, 240));
    for (const int minute : {0, 20, 59}) // the pictures grow redder by the minute
        EXPECT_NEAR(qRed(view.image().pixel(540 + minute, 120)), 4 * minute, 8);
    EXPECT_EQ(view.image().pixel(600, 120), Keograms::kGap);

    click(window, "cmd_keogram_copy");
    EXPECT_EQ(QGuiApplication::clipboard()->image().size(), view.image().size());

    int x = 0;
    while (view.minuteAt(QPointF(x, 60)).value_or(0) < 9 * 60 + 30)
        ++x;
    QTest::mouseClick(&view, Qt::LeftButton, {}, {x, 60});
    EXPECT_TRUE(titles().filter("14 Nov 2006 09:3").size() == 1)
        << titles().join(' ').toStdString();
    view.setFocus();
    QTest::keyClick(&view, Qt::Key_Right);
    QTest::keyClick(&view, Qt::Key_Return);
    EXPECT_TRUE(titles().contains("14 Nov 2006 09:00"));

    click(window, "cmd_keogram_save");
    auto* dialog = window.findChild<QFileDialog*>();
    ASSERT_NE(dialog, nullptr);
    const auto saved = w.folder.path() / "saved.png";
    emit dialog->fileSelected(QString::fromStdString(saved.string()));
    EXPECT_EQ(QImage(QString::fromStdString(saved.string())).size(), view.image().size());
    dialog->close();
}

TEST_F(DaysUi, TheBandShowsTheKeogramWhenItIsSwitchedOn) {
    turn("mnuDayPrevious");
    const QPointF mark = band.markRect(band.marks().size() / 2).center();
    const auto colour = [&] { // beside the marks, in the sun's place
        return band.grab().toImage().pixelColor(QPoint(static_cast<int>(mark.x()), 45));
    };
    const QColor before = colour();
    trigger("mnuDayKeogramBand");
    w.clock.run(3s);
    EXPECT_NEAR(colour().green(), 128, 12);
    EXPECT_NE(colour(), before);
    trigger("mnuDayKeogramBand");
    EXPECT_EQ(colour(), before);
    const std::int64_t read = w.keograms.revision();
    turn("mnuDayPrevious");
    w.clock.run(5s);
    EXPECT_EQ(w.keograms.revision(), read) << "what nobody looks at is not read";
}

TEST_F(DaysUi, TheCalendarColoursDaysAndTurnsToThem) {
    click(band, "cmd_day");
    auto& form = *windowOf<FrmCalendar>();
    auto& calendar = *form.findChild<QCalendarWidget*>();
    ASSERT_TRUE(form.isVisible());
    w.clock.run(1s);
    const auto tip = [&](int day) { return calendar.dateTextFormat({2006, 11, day}).toolTip(); };
    const auto ground = [&](int day) {
        return calendar.dateTextFormat({2006, 11, day}).background().color();
    };
    EXPECT_EQ(tip(14), "2006/11/14: taken 60 of 60");
    EXPECT_EQ(tip(13), "2006/11/13: taken 30 of 60, 30 missed");
    EXPECT_EQ(tip(12), "2006/11/12: taken 0 of 60, 60 missed");
    EXPECT_EQ(tip(10), "") << "before the archive";
    EXPECT_EQ(tip(16), "") << "not yet";
    EXPECT_NE(ground(14), ground(13));
    EXPECT_NE(ground(13), ground(12));
    for (const auto& [a, b] : {std::pair{14, 13}, std::pair{13, 12}, std::pair{14, 12}})
        EXPECT_GT(std::abs(qGray(ground(a).rgb()) - qGray(ground(b).rgb())), 25)
            << "told apart without colours";

    emit calendar.clicked({2006, 11, 13});
    w.clock.run(1s);
    EXPECT_EQ(text(), "2006/11/13: taken 30 of 60, 30 missed");
    EXPECT_TRUE(form.isVisible()) << "one day after the other can be looked at";
    EXPECT_EQ(calendar.selectedDate(), QDate(2006, 11, 13));
    turn("mnuDayNext");
    EXPECT_EQ(calendar.selectedDate(), QDate(2006, 11, 14)) << "it follows the band";
    click(form, "cmd_calendar_today");
    EXPECT_TRUE(text().startsWith("Today: "));
    EXPECT_EQ(calendar.minimumDate(), QDate(2006, 11, 11));
    form.close();
}

} // namespace
} // namespace orvane::test

#include "tests/ui/WindowTest.h"
#include "ui/day/DayView.h"
#include "ui/day/FilmWindow.h"
#include "ui/day/KeogramWindow.h"

#include <QCalendarWidget>
#include <QClipboard>
#include <QComboBox>
#include <QTextCharFormat>
#include <QToolTip>

namespace orvane::test {
namespace {

/// The main window at 8:00 of the 15th, with a schedule of a picture every minute from 9 to 10 and
/// the pictures of three days: the 11th without one, the 13th with a half, the 14th with all.
class DaysUi : public WindowTest {
  protected:
    DaysUi() {
        const char* fields[] = {"9", "0", "10", "0", "", "1", "0"};
        for (std::size_t i = 0; i < std::size(fields); ++i)
            w.panel.Text1[i].text = std::string(fields[i]);
        w.module.image.Delay = 0;
        w.panel.Dir1[0].path = w.dataFolder();
        record("20061111", 0);
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
    /// What the band says of its day.
    std::string day() const { return band.accessibleName().toStdString(); }
    FilmWindow& openFilm() {
        run("mnuDayPrevious");
        run("mnuDayFilm");
        return part<FilmWindow>("frmFilm");
    }
    void clickMark(std::size_t index) {
        QTest::mouseClick(&band, Qt::LeftButton, {}, band.markRect(index).center().toPoint());
    }

    DayView& band = part<DayView>("dayView");
};

TEST_F(DaysUi, KeysAndButtonsTurnTheDays) {
    const std::string first = "2006/11/11: taken 0 of 60, 60 missed", today = "Today: ";
    /// With Alt; or a button.
    const std::tuple<Qt::Key, const char*, std::string> turns[] = {
        {Qt::Key_PageUp, "", "2006/11/14: taken 60 of 60"},
        {{}, "cmd_day_previous", "2006/11/13: taken 30 of 60, 30 missed"},
        {Qt::Key_PageUp, "", "2006/11/12: taken 0 of 60, 60 missed"},
        {Qt::Key_PageUp, "", first},
        {{}, "cmd_day_next", "2006/11/12: taken 0 of 60, 60 missed"},
        {Qt::Key_PageDown, "", "2006/11/13: taken 30 of 60, 30 missed"},
        {{}, "cmd_day_today", today},
        {Qt::Key_PageUp, "", "2006/11/14: taken 60 of 60"},
        {Qt::Key_Home, "", today}};
    for (const auto& [key, button, expected] : turns) {
        if (*button != '\0') {
            click(w.main, button);
        } else {
            QTest::keyClick(&w.main, key, Qt::AltModifier);
        }
        w.clock.run(1s);
        EXPECT_TRUE(day().starts_with(expected)) << day();
        for (const std::string turn : {"Previous", "Next", "Today"}) {
            const bool on = expected != (turn == "Previous" ? first : today);
            EXPECT_EQ(action(("mnuDay" + turn).c_str()).isEnabled(), on) << turn << expected;
            const QString control = "cmd_day_" + toQString(turn).toLower();
            EXPECT_EQ(isOn(control.toUtf8()), on) << turn << expected;
        }
    }
}

TEST_F(DaysUi, TheFilmKeepsItsTimeAndTheBandIsItsSlider) {
    FilmWindow& film = openFilm();
    auto& picture = find<QWidget>(film, "picture");
    const auto where = [&] {
        w.clock.run(100ms);
        return textOf(film, "lbl_film");
    };
    EXPECT_EQ(where(), "09:00   1 of 60");
    click(film, "cmd_film_play");
    w.clock.run(1s);
    EXPECT_EQ(film.player().index(), 25) << "25 pictures a second";
    find<QComboBox>(film, "cbo_film_rate").setCurrentText("5 a second");
    w.clock.run(1s);
    EXPECT_EQ(film.player().index(), 30);
    QTest::keyClick(&film, Qt::Key_Space);
    w.clock.run(1s);
    EXPECT_EQ(where(), "09:30   31 of 60") << "paused";
    click(film, "cmd_film_forward");
    QTest::keyClick(&picture, Qt::Key_PageDown);
    QTest::keyClick(&picture, Qt::Key_Right);
    click(film, "cmd_film_back");
    EXPECT_EQ(where(), "09:32   33 of 60");
    for (const auto& [key, place] :
         {std::pair(Qt::Key_Left, "09:31   32 of 60"), std::pair(Qt::Key_End, "09:59   60 of 60"),
          std::pair(Qt::Key_Home, "09:00   1 of 60")}) {
        QTest::keyClick(&film, key);
        EXPECT_EQ(where(), place);
    }
    const QPoint begin = band.markRect(0).center().toPoint();
    QTest::mousePress(&band, Qt::LeftButton, {}, begin);
    for (int x = 1; x <= 20; ++x) // faster than any picture comes
        QTest::mouseMove(&band, begin + QPoint(x, 0));
    w.clock.run(100ms);
    EXPECT_EQ(titles(), "Film of 14 Nov 2006") << "no picture opens";
    EXPECT_GT(film.player().index(), 10);
    QTest::mouseMove(&band, begin + QPoint(400, 0));
    QTest::mouseRelease(&band, Qt::LeftButton, {}, begin + QPoint(400, 0));
    EXPECT_EQ(where(), "09:59   60 of 60") << "behind the last one";
    click(film, "cmd_film_play");
    w.clock.run(20s);
    EXPECT_EQ(film.player().index(), 59) << "from the beginning to the end";
    EXPECT_FALSE(film.player().isPlaying());
    click(film, "cmd_film_save");
    EXPECT_TRUE(part("frmFilmFile").isVisible());
}

TEST_F(DaysUi, TheFilmGoesWithTheDay) {
    FilmWindow& film = openFilm();
    film.player().play();
    run("mnuDayPrevious");
    EXPECT_EQ(film.player().count(), 30);
    EXPECT_EQ(titles(), "Film of 13 Nov 2006");
    EXPECT_FALSE(film.player().isPlaying());
    run("mnuDayPrevious");
    EXPECT_EQ(film.player().count(), 0);
    for (const char* button :
         {"cmd_film_back", "cmd_film_play", "cmd_film_forward", "cmd_film_save"})
        EXPECT_FALSE(isOn(button)) << button;
    EXPECT_EQ(textOf(film, "lbl_film"), "");
    run("mnuDayNext");
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
    clearAway();
    w.clock.run(1s);
    EXPECT_EQ(titles(), "");
    clickMark(5);
    EXPECT_TRUE(titles().starts_with("13 Nov 2006 09:")) << "marks open their pictures again";
    band.setFocus();
    QTest::keyClick(&band, Qt::Key_Home);
    QTest::keyClick(&band, Qt::Key_Return);
    EXPECT_TRUE(titles().ends_with(", 13 Nov 2006 09:00"));
    clickMark(band.marks().size() - 1);
    EXPECT_TRUE(titles().ends_with(", 13 Nov 2006 09:00")) << "there is none";
    EXPECT_TRUE(QToolTip::text().contains("missed")) << "but the reason is told";
}

TEST_F(DaysUi, TheKeogramIsShownCopiedSavedAndOpensPictures) {
    run("mnuDayPrevious");
    run("mnuDayKeogram");
    w.clock.run(2s);
    auto& view = part<KeogramView>("keogram");
    EXPECT_EQ(titles(), "Keogram of 14 Nov 2006");
    ASSERT_EQ(view.image().size(), QSize(1440, 240));
    for (const int minute : {0, 20, 59}) // the pictures grow redder by the minute
        EXPECT_NEAR(qRed(view.image().pixel(540 + minute, 120)), 4 * minute, 8);
    EXPECT_EQ(view.image().pixel(600, 120), Keograms::kGap);
    click(w.main, "cmd_keogram_copy");
    EXPECT_EQ(QGuiApplication::clipboard()->image().size(), view.image().size());
    for (const char* name : {"saved.png", "saved.jpg"}) {
        click(w.main, "cmd_keogram_save");
        const FileQuestion asked = answer({w.folder.path() / name});
        EXPECT_EQ(asked.title, "Save Keogram");
        EXPECT_EQ(asked.name, "keogram-20061114.png");
        EXPECT_EQ(QImage(toQString(w.folder.path() / name)).size(), view.image().size());
    }
    click(w.main, "cmd_keogram_save");
    emit fileDialog()->fileSelected(toQString(w.folder.path() / "gone" / "saved.png"));
    ASSERT_NE(openBox(), nullptr);
    EXPECT_TRUE(openBox()->text().startsWith("The keogram was not saved."));
    openBox()->close();
    answer({});
    int x = 0;
    while (view.minuteAt(QPointF(x, 60)).value_or(0) < 9 * 60 + 30)
        ++x;
    QTest::mouseClick(&view, Qt::LeftButton, {}, {x, 60});
    EXPECT_TRUE(has(titles(), ", 14 Nov 2006 09:3"));
    view.setFocus();
    for (int i = 0; i < 2; ++i)
        QTest::keyClick(&view, Qt::Key_Right);
    EXPECT_TRUE(QToolTip::text().contains("0901"));
    QTest::keyClick(&view, Qt::Key_Left);
    QTest::keyClick(&view, Qt::Key_Return);
    EXPECT_TRUE(has(titles(), ", 14 Nov 2006 09:00"));
}

TEST_F(DaysUi, TheBandShowsTheKeogramWhenItIsSwitchedOn) {
    run("mnuDayPrevious");
    const QPointF mark = band.markRect(band.marks().size() / 2).center();
    const auto colour = [&] { // beside the marks, in the sun's place
        return band.grab().toImage().pixelColor(QPoint(static_cast<int>(mark.x()), 45));
    };
    const QColor before = colour();
    QTest::keyClick(&w.main, Qt::Key_G, Qt::ControlModifier | Qt::ShiftModifier);
    w.clock.run(3s);
    EXPECT_NEAR(colour().green(), 128, 12);
    EXPECT_NE(colour(), before);
    trigger("mnuDayKeogramBand");
    EXPECT_EQ(colour(), before);
    const std::int64_t read = w.keograms.revision();
    run("mnuDayPrevious");
    w.clock.run(5s);
    EXPECT_EQ(w.keograms.revision(), read) << "what nobody looks at is not read";
}

TEST_F(DaysUi, TheCalendarColoursDaysAndTurnsToThem) {
    click(band, "cmd_day");
    auto& form = part<QDialog>("frmCalendar");
    auto& calendar = *form.findChild<QCalendarWidget*>();
    w.clock.run(1s);
    const std::pair<int, const char*> tips[] = {{10, ""}, // before the archive
                                                {12, "2006/11/12: taken 0 of 60, 60 missed"},
                                                {13, "2006/11/13: taken 30 of 60, 30 missed"},
                                                {14, "2006/11/14: taken 60 of 60"},
                                                {16, ""}}; // not yet
    const auto format = [&](int day) { return calendar.dateTextFormat({2006, 11, day}); };
    for (const auto& [day, tip] : tips)
        EXPECT_EQ(format(day).toolTip(), tip) << day;
    const auto grey = [&](int day) { return qGray(format(day).background().color().rgb()); };
    for (const auto& [a, b] : {std::pair{14, 13}, std::pair{13, 12}, std::pair{14, 12}})
        EXPECT_GT(std::abs(grey(a) - grey(b)), 25) << "told apart without colours";
    emit calendar.clicked({2006, 11, 13});
    w.clock.run(1s);
    EXPECT_EQ(day(), "2006/11/13: taken 30 of 60, 30 missed");
    EXPECT_EQ(text("lbl_calendar"), day());
    EXPECT_TRUE(form.isVisible()) << "one day after the other can be looked at";
    EXPECT_EQ(calendar.selectedDate(), QDate(2006, 11, 13));
    run("mnuDayNext");
    EXPECT_EQ(calendar.selectedDate(), QDate(2006, 11, 14)) << "it follows the band";
    click(form, "cmd_calendar_today");
    EXPECT_TRUE(day().starts_with("Today: "));
    EXPECT_EQ(calendar.minimumDate(), QDate(2006, 11, 11));
    click(form, "cmdClose");
    EXPECT_FALSE(form.isVisible());
}

} // namespace
} // namespace orvane::test

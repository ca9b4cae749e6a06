#include "ui/day/DayMenu.h"

#include "ui/day/DayView.h"
#include "ui/day/FilmWindow.h"
#include "ui/day/FrmCalendar.h"
#include "ui/day/KeogramWindow.h"
#include "ui/panel/PanelControls.h"
#include "ui/pictures/PictureArea.h"
#include "ui/pictures/QtImageViews.h"

namespace orvane {

DayMenu::DayMenu(QMenu& menu, DayView& band, PictureArea& area, Parts parts)
    : QObject(&area), parts_(parts), band_(band), area_(area) {
    addDays(menu);
    menu.addSeparator();
    addWindows(menu);
    connect(&band_, &DayView::calendarWanted, this, &DayMenu::openCalendar);
    connect(&band_, &DayView::dayChanged, this, &DayMenu::follow);
    connect(&band_, &DayView::pictureWanted, this,
            [this](const std::filesystem::path& file) { parts_.views.openFiled(file); });
    connect(&band_, &DayView::minuteSought, this, [this](int minute) {
        if (film_ != nullptr) film_->seekMinute(minute);
    });
    follow();
}

void DayMenu::addDays(QMenu& menu) {
    previous_ = addEntry(menu, {"mnuDayPrevious", "&Previous Day", "Shows the day before."},
                         {Qt::ALT | Qt::Key_PageUp}, this,
                         [this] { turnTo(parts_.day.day() - std::chrono::days(1)); });
    next_ = addEntry(menu, {"mnuDayNext", "&Next Day", "Shows the day after."},
                     {Qt::ALT | Qt::Key_PageDown}, this,
                     [this] { turnTo(parts_.day.day() + std::chrono::days(1)); });
    today_ =
        addEntry(menu, {"mnuDayToday", "&Today", "Goes back to today."}, {Qt::ALT | Qt::Key_Home},
                 this, [this] { turnTo(std::chrono::local_days::max()); });
    addEntry(menu,
             {"mnuDayCalendar", "&Calendar...", "Shows how complete the days are, to choose one."},
             {Qt::CTRL | Qt::Key_D}, this, &DayMenu::openCalendar);
}

void DayMenu::addWindows(QMenu& menu) {
    addEntry(menu, {"mnuDayFilm", "&Film", "Plays the pictures of the day in view."},
             {Qt::CTRL | Qt::Key_F}, this, &DayMenu::openFilm);
    addEntry(menu,
             {"mnuDaySaveFilm", "&Save Film...",
              "Saves the pictures of the day in view as a film that other programs play."},
             {Qt::CTRL | Qt::SHIFT | Qt::Key_F}, this,
             [this] { emit saveFilmWanted(parts_.day.day()); });
    menu.addSeparator();
    addEntry(menu,
             {"mnuDayKeogram", "&Keogram",
              "Shows the middle columns of the day's pictures side by side."},
             {Qt::CTRL | Qt::Key_G}, this, &DayMenu::openKeogram);
    inBand_ = addEntry(menu,
                       {"mnuDayKeogramBand", "Keogram in the &Band",
                        "Draws the keogram behind the marks of the day."},
                       {Qt::CTRL | Qt::SHIFT | Qt::Key_G}, this, [this] {
                           band_.showKeogram(inBand_->isChecked());
                           wantKeogram();
                       });
    inBand_->setCheckable(true);
}

void DayMenu::turnTo(std::chrono::local_days day) {
    parts_.day.turnTo(day);
    // As if the band's own buttons had been pressed: it refreshes at once, and all follow.
    emit band_.turned();
}

/// Something about the day in view is new.
void DayMenu::follow() {
    previous_->setEnabled(parts_.day.day() > parts_.day.firstDay());
    next_->setEnabled(!parts_.day.isToday());
    today_->setEnabled(!parts_.day.isToday());
    if (calendar_ != nullptr) calendar_->follow();
    if (film_ != nullptr) film_->follow();
    if (keogram_ != nullptr) keogram_->follow();
}

void DayMenu::openCalendar() {
    if (calendar_ == nullptr) {
        calendar_ = new FrmCalendar(parts_.day, parts_.survey, band_.window());
        connect(calendar_, &FrmCalendar::dayWanted, this, &DayMenu::turnTo);
    }
    calendar_->bring();
}

void DayMenu::openFilm() {
    if (film_ == nullptr) {
        film_ = new FilmWindow({parts_.day, parts_.module, parts_.clock, parts_.faults});
        connect(film_, &FilmWindow::minuteShown, &band_, &DayView::setFilm);
        connect(film_, &FilmWindow::saveWanted, this,
                [this] { emit saveFilmWanted(parts_.day.day()); });
        area_.add(*film_, area_.viewport()->size() * 3 / 4);
    }
    area_.bring(*film_);
    film_->setFocus();
}

void DayMenu::openKeogram() {
    if (keogram_ == nullptr) {
        keogram_ = new KeogramWindow(parts_.day);
        connect(keogram_, &KeogramWindow::pictureWanted, this,
                [this](const std::filesystem::path& file) { parts_.views.openFiled(file); });
        connect(keogram_, &KeogramWindow::shownChanged, this, &DayMenu::wantKeogram);
        area_.add(*keogram_, keogram_->sizeHint().boundedTo(area_.viewport()->size()));
    }
    area_.bring(*keogram_);
    keogram_->setFocus();
}

void DayMenu::wantKeogram() {
    // Columns are decoded only while somebody sees them.
    const bool inWindow = keogram_ != nullptr && keogram_->isVisible();
    parts_.day.wantKeogram(inBand_->isChecked() || inWindow);
    band_.refresh();
}

} // namespace orvane

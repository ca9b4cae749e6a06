#pragma once

#include <QObject>
#include <QPointer>

#include <chrono>

class QAction;
class QMenu;

namespace orvane {

class DaySurvey;
class DayView;
class FilmWindow;
class FrmCalendar;
class KeogramWindow;
class PictureArea;
class QtImageViews;
class ShownDay;
class Clock;
class Faults;
struct Module1;

/// The menu "Day": which day is in view, and the windows that show it otherwise than the band does.
/// The picture area owns it. Film and keogram are windows of the area and go when they are closed;
/// the calendar belongs to the main window and is kept. All of them follow the band's signal that
/// something is new, so none of them needs a timer.
class DayMenu : public QObject {
    Q_OBJECT

  public:
    /// What it drives; all of it outlives this.
    struct Parts {
        ShownDay& day;
        DaySurvey& survey;
        const Module1& module;
        Clock& clock;
        Faults& faults;
        QtImageViews& views;
    };

    /// `menu` is filled; `band` shows the day, and `area` holds the film and the keogram.
    DayMenu(QMenu& menu, DayView& band, PictureArea& area, Parts parts);

    /// Shows that day in the band.
    void turnTo(std::chrono::local_days day);

  signals:
    void saveFilmWanted(std::chrono::local_days day);

  private:
    void addDays(QMenu& menu);
    void addWindows(QMenu& menu);
    void follow();
    void openCalendar();
    void openFilm();
    void openKeogram();
    void wantKeogram();

    Parts parts_;
    DayView& band_;
    PictureArea& area_;
    QAction* previous_ = nullptr;
    QAction* next_ = nullptr;
    QAction* today_ = nullptr;
    QAction* inBand_ = nullptr;
    QPointer<FrmCalendar> calendar_;
    QPointer<FilmWindow> film_;
    QPointer<KeogramWindow> keogram_;
};

} // namespace orvane

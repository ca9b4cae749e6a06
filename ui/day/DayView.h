#pragma once

#include "archive/ShownDay.h"
#include "imaging/SunTimes.h"
#include "station/RepeatingTimer.h"
#include "ui/day/DayDrawing.h"

#include <QImage>
#include <QWidget>

namespace orvane {

class DayBar;

/// A copy of pixels as imaging has them, 32 bits each, for the screen.
QImage imageOf(const Pixels& pixels);

/// The band with a day at a glance: hours, sun, recording window and what became of every due
/// minute. While it is visible it looks once a second whether there is something new to show, by
/// the injected clock. The arrow keys go from mark to mark and tell what the tool tip tells; a
/// click or Enter opens the mark's picture. While a film is open the band is its slider: a click
/// goes to that minute of it instead. The main window owns it. It decides nothing: which day, its
/// plan and its pictures are `ShownDay`'s.
class DayView : public QWidget {
    Q_OBJECT

  public:
    /// What the band shows; all of it outlives the window.
    struct Parts {
        ShownDay& day;
        const Module1& module; ///< for the site
        Clock& clock;
        Faults& faults;
    };

    explicit DayView(Parts parts, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    ShownDay& day() { return parts_.day; }
    /// The buttons that turn to other days, in the band's first line.
    QWidget& bar();
    /// Takes note of what has changed, another day in view included.
    void refresh();
    /// Whether the day's keogram is drawn behind the marks.
    void showKeogram(bool shown);
    /// Where the film is, a minute of the day; -1: there is no film.
    void setFilm(int minute);

    /// The marks as drawn, and where; for the tool tips and for tests.
    const std::vector<DayMark>& marks() const { return marks_; }
    QRectF markRect(std::size_t index) const { return dayLayout().markRect(marks_, index); }

  signals:
    void turned();         ///< another day is in view
    void dayChanged();     ///< something about the day in view is new
    void calendarWanted(); ///< the operator wants to choose a day
    void pictureWanted(const std::filesystem::path& file);
    void minuteSought(int minute); ///< of the film

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    DayLayout dayLayout() const;
    void openMark(std::size_t index);
    void seek(const QPointF& position);
    int selectionAfter(int key) const;
    bool computeSun();
    void placeBar();
    void mergeMarks();
    void describe();
    QString textOf(std::size_t index) const;
    void select(int index);
    int selected() const;
    int marksBeforeNow() const;

    Parts parts_;
    DayBar* bar_;
    RepeatingTimer timer_;
    std::int64_t shown_ = -1; ///< the revision of what is shown
    std::optional<SunDay> sun_;
    std::chrono::local_days sunDay_{};
    std::optional<SiteValues> site_; ///< of which `sun_` is
    std::vector<DayMark> marks_;
    bool keogramShown_ = false;
    QImage keogram_; ///< behind the marks; null: none
    int film_ = -1;
    int selectedMinute_ = -1; ///< of the keyboard's mark, which may be merged anew; -1 for none
};

} // namespace orvane

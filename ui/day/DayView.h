#pragma once

#include "archive/DayWatch.h"
#include "imaging/SunTimes.h"
#include "station/RepeatingTimer.h"
#include "ui/day/DayDrawing.h"

#include <QWidget>

namespace orvane {

/// The band with the day at a glance: hours, sun, recording window and what became of every due
/// minute. While it is visible it looks once a second whether there is something new to show, by
/// the injected clock. The arrow keys go from mark to mark and tell what the tool tip tells.
class DayView : public QWidget {
  public:
    /// What the band shows; all of it outlives the window.
    struct Parts {
        DayWatch& days;
        const Module1& module; ///< for the site
        Clock& clock;
        Faults& faults;
    };

    explicit DayView(Parts parts, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    /// The marks as drawn, and where; for the tool tips and for tests.
    const std::vector<DayMark>& marks() const { return marks_; }
    QRectF markRect(std::size_t index) const { return dayLayout().markRect(marks_, index); }

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    DayLayout dayLayout() const { return {rect(), font()}; }
    void refresh();
    bool computeSun();
    void mergeMarks();
    void describe();
    QString textOf(std::size_t index) const;
    void select(int index);
    int selected() const;
    int marksBeforeNow() const;

    Parts parts_;
    RepeatingTimer timer_;
    std::int64_t shown_ = -1; ///< the revision of what is shown
    std::optional<SunDay> sun_;
    std::chrono::local_days sunDay_{};
    std::optional<SiteValues> site_; ///< of which `sun_` is
    std::vector<DayMark> marks_;
    int selectedMinute_ = -1; ///< of the keyboard's mark, which may be merged anew; -1 for none
};

} // namespace orvane

#pragma once

#include "core/DayPlan.h"
#include "core/SunDay.h"

#include <QFont>
#include <QPainter>
#include <QPalette>

#include <vector>

namespace orvane {

/// Where everything of the day's drawing stands: a line of text with the legend, the sun's curve,
/// the row of marks, the hours. All sizes follow the font.
class DayLayout {
  public:
    static constexpr int kDayMinutes = 24 * 60;

    DayLayout(const QRect& area, const QFont& font);

    /// The height that the drawing needs.
    static int heightFor(const QFont& font);

    double x(double minute) const { return plot.left() + minute * pixelsPerMinute(); }
    double pixelsPerMinute() const { return plot.width() / kDayMinutes; }
    /// Minutes that share a mark, so that marks stay apart.
    int columnMinutes() const;
    /// The mark at `position`, which may be a little beside it; -1 for none.
    int markAt(const std::vector<DayMark>& marks, const QPointF& position) const;
    /// Where a mark stands, whatever its shape.
    QRectF markRect(const std::vector<DayMark>& marks, std::size_t index) const;

    QRectF text;
    QRectF plot; ///< sun and marks
    QRectF sun;
    QRectF lane; ///< of the marks
    QRectF hours;
    double unit = 0; ///< the font's height

  private:
    double markWidth(const std::vector<DayMark>& marks) const;
};

/// Draws one day. States differ in colour, height and place: a taken mark is a bar of full height,
/// a fetched one of half, one to come a low outline, a missed one a wedge above an empty place.
class DayDrawing {
  public:
    struct Content {
        const DayPlan& plan;
        const std::optional<SunDay>& sun;
        const std::vector<DayMark>& marks;
        int now;      ///< minute of the day
        int selected; ///< mark with the keyboard's frame; -1 for none
    };

    DayDrawing(QPainter& painter, const DayLayout& layout, const QPalette& palette);
    void draw(const Content& content);

  private:
    struct Colours {
        QColor ground, night, day, ink, faint, sun, now, taken, fetched, missed, toCome;
    };
    static Colours coloursFor(const QPalette& palette);

    double drawLegend();
    void drawLegendEntry(const QRectF& symbol, DayState state, bool isDue);
    void drawText(const QString& text, double right);
    void drawNight(const SunDay& sun);
    void drawCurve(const SunDay& sun);
    void drawSunTime(int minute, bool rising);
    void drawWindow(int begin, int end);
    void drawMark(const QRectF& place, DayState state, bool isDue);
    void drawHours();
    void drawNow(int minute);

    QPainter& painter_;
    const DayLayout& layout_;
    Colours colours_;
};

} // namespace orvane

#pragma once

#include "ui/day/DayMarks.h"

#include <QFont>
#include <QPointF>
#include <QRect>

#include <vector>

namespace orvane {

/// Where everything of the day's drawing stands: a line of text with the legend, the sun's curve,
/// the row of marks, the hours. All sizes follow the font. A value for one size and font, made anew
/// wherever it is needed; all places are logical pixels of the band.
class DayLayout {
  public:
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

} // namespace orvane

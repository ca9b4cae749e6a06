#include "ui/day/DayLayout.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace orvane {
namespace {

// Logical pixels, but for the heights.
constexpr double kMargin = 8;
constexpr double kColumnWidth = 3; ///< narrower marks cannot be told apart
constexpr double kWidestMark = 7;
constexpr double kReach = 3;       ///< how far beside a mark the mouse still means it
constexpr double kSunHeight = 2.5; ///< these in units of the font's height
constexpr double kLaneHeight = 1.7;
constexpr double kTextHeight = 1.4;
constexpr double kHoursHeight = 1.25;

} // namespace

DayLayout::DayLayout(const QRect& area, const QFont& font) : unit(QFontMetricsF(font).height()) {
    const QRectF inner = QRectF(area).adjusted(kMargin, 0, -kMargin, 0);
    text = QRectF(inner.left(), inner.top() + 2, inner.width(), unit * kTextHeight);
    // the first and last hour's texts stand on both sides of the plot's ends
    plot = QRectF(inner.left() + unit, text.bottom(), inner.width() - 2 * unit,
                  unit * (kSunHeight + kLaneHeight));
    sun = QRectF(plot.left(), plot.top(), plot.width(), unit * kSunHeight);
    lane = QRectF(plot.left(), sun.bottom(), plot.width(), unit * kLaneHeight);
    hours = QRectF(plot.left(), plot.bottom(), plot.width(), unit * kHoursHeight);
}

int DayLayout::heightFor(const QFont& font) {
    const double unit = QFontMetricsF(font).height();
    return static_cast<int>(
        std::ceil(unit * (kTextHeight + kSunHeight + kLaneHeight + kHoursHeight) + 4));
}

int DayLayout::columnMinutes() const {
    return orvane::columnMinutes(pixelsPerMinute(), kColumnWidth);
}

double DayLayout::markWidth(const std::vector<DayMark>& marks) const {
    // As wide as the closest two allow, with a pixel between them.
    int gap = kDayMinutes;
    for (std::size_t i = 1; i < marks.size(); ++i)
        gap = std::min(gap, marks[i].first - marks[i - 1].first);
    return std::clamp(gap * pixelsPerMinute() - 1, 2.0, kWidestMark);
}

QRectF DayLayout::markRect(const std::vector<DayMark>& marks, std::size_t index) const {
    const DayMark& mark = marks[index];
    const double width = markWidth(marks);
    const double middle = x((mark.first + mark.last + 1) / 2.0);
    return {middle - width / 2, lane.top() + 2, width, lane.height() - 3};
}

int DayLayout::markAt(const std::vector<DayMark>& marks, const QPointF& position) const {
    if (!plot.adjusted(-kReach, 0, kReach, 0).contains(position)) return -1;
    int nearest = -1;
    double distance = markWidth(marks) / 2 + kReach;
    for (std::size_t i = 0; i < marks.size(); ++i) {
        const double away = std::abs(x((marks[i].first + marks[i].last + 1) / 2.0) - position.x());
        if (away > distance) continue;
        distance = away;
        nearest = static_cast<int>(i);
    }
    return nearest;
}

} // namespace orvane

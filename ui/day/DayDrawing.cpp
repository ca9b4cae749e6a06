#include "ui/day/DayDrawing.h"

#include "ui/Text.h"
#include "ui/panel/PanelControls.h"

#include <QFontMetricsF>
#include <QPainterPath>

#include <algorithm>

namespace orvane {
namespace {

constexpr double kLowestSun = -6;   ///< degrees at the lower edge: the end of civil twilight
constexpr double kFlattestDay = 10; ///< degrees at the upper edge at least

QColor mixed(const QColor& a, const QColor& b, double share) {
    const auto mix = [share](float x, float y) { return static_cast<float>(x + (y - x) * share); };
    return QColor::fromRgbF(mix(a.redF(), b.redF()), mix(a.greenF(), b.greenF()),
                            mix(a.blueF(), b.blueF()));
}

struct LegendEntry {
    const char* text;
    DayState state;
};
constexpr LegendEntry kLegend[] = {{"taken", DayState::Taken},
                                   {"missed", DayState::Missed},
                                   {"fetched later", DayState::Fetched},
                                   {"not recording", DayState::NotRunning},
                                   {"to come", DayState::ToCome}};

} // namespace

DayDrawing::DayDrawing(QPainter& painter, const DayLayout& layout, const QPalette& palette)
    : painter_(painter), layout_(layout), colours_(coloursFor(palette)) {}

/// Blue, violet and vermilion keep their difference for those who do not see red or green; on a
/// dark ground they are lighter. What nobody recorded has no colour at all.
DayDrawing::Colours DayDrawing::coloursFor(const QPalette& palette) {
    const QColor ground = palette.color(QPalette::Base);
    const QColor ink = palette.color(QPalette::WindowText);
    const bool dark = isDark(palette);
    Colours colours;
    colours.ground = ground;
    colours.ink = ink;
    colours.faint = mixed(palette.color(QPalette::Window), ink, 0.35);
    colours.night = mixed(ground, dark ? QColor(0, 0, 0) : QColor(70, 85, 120), dark ? 0.55 : 0.22);
    colours.day = mixed(ground, QColor(240, 200, 60), dark ? 0.22 : 0.35);
    colours.sun = dark ? QColor(245, 205, 90) : QColor(190, 130, 0);
    colours.now = palette.color(QPalette::WindowText);
    colours.taken = dark ? QColor(105, 180, 240) : QColor(0, 100, 180);
    colours.fetched = dark ? QColor(205, 165, 250) : QColor(125, 70, 175);
    colours.missed = dark ? QColor(255, 130, 80) : QColor(205, 70, 0);
    colours.notRecording = mixed(ground, ink, 0.5);
    colours.film = palette.color(QPalette::Highlight);
    colours.toCome = mixed(ground, ink, 0.55);
    return colours;
}

void DayDrawing::draw(const Content& content) {
    painter_.setRenderHint(QPainter::Antialiasing);
    painter_.fillRect(layout_.plot, colours_.ground);
    onPicture_ = !content.keogram.isNull();
    // From the back to the front: the keogram covers the night, the marks cover the keogram.
    if (content.sun) drawNight(*content.sun);
    if (onPicture_) drawKeogram(content.keogram);
    if (content.sun) drawCurve(*content.sun);
    if (content.plan.begin && *content.plan.end > *content.plan.begin)
        drawWindow(*content.plan.begin, *content.plan.end);
    for (std::size_t i = 0; i < content.marks.size(); ++i)
        drawMark(layout_.markRect(content.marks, i), content.marks[i].state,
                 content.marks[i].isDue);
    drawHours();
    if (content.now) drawNow(*content.now);
    if (content.film >= 0) drawFilm(content.film);
    // above the line of the present time, which would strike them through
    if (content.sun && content.sun->sunrise) drawSunTime(*content.sun->sunrise, true);
    if (content.sun && content.sun->sunset) drawSunTime(*content.sun->sunset, false);
    if (content.selected >= 0) {
        painter_.setPen(QPen(colours_.ink, 1, Qt::DotLine));
        painter_.setBrush(Qt::NoBrush);
        painter_.drawRect(
            layout_.markRect(content.marks, static_cast<std::size_t>(content.selected))
                .adjusted(-3, -1, 3, 1));
    }
    const QString text = toQString(content.plan.text);
    drawText(text, drawLegend(QFontMetricsF(painter_.font()).horizontalAdvance(text)));
}

/// From the right; answers where it begins. The text has precedence in a narrow window.
double DayDrawing::drawLegend(double textWidth) {
    const QFontMetricsF metrics(painter_.font());
    const double symbol = layout_.unit * 0.5;
    double width = 0;
    for (const LegendEntry& entry : kLegend)
        width += metrics.horizontalAdvance(entry.text) + symbol + layout_.unit * 1.2;
    if (width + textWidth > layout_.text.width()) return layout_.text.right();
    double left = layout_.text.right() - width;
    const double begin = left;
    for (const LegendEntry& entry : kLegend) {
        left += layout_.unit * 0.8;
        drawMark(
            {left, layout_.text.center().y() - layout_.unit * 0.45, symbol, layout_.unit * 0.9},
            entry.state, true);
        left += symbol + layout_.unit * 0.4;
        const double advance = metrics.horizontalAdvance(entry.text);
        painter_.setPen(colours_.ink);
        painter_.drawText(QRectF(left, layout_.text.top(), advance + 1, layout_.text.height()),
                          Qt::AlignVCenter | Qt::AlignLeft, entry.text);
        left += advance;
    }
    return begin;
}

void DayDrawing::drawText(const QString& text, double right) {
    QRectF place = layout_.text;
    place.setRight(right);
    painter_.setPen(colours_.ink);
    const QString shown =
        QFontMetricsF(painter_.font()).elidedText(text, Qt::ElideRight, place.width());
    painter_.drawText(place, Qt::AlignVCenter | Qt::AlignLeft, shown);
}

void DayDrawing::drawNight(const SunDay& sun) {
    const auto isDark = [&](int minute) {
        return !isSunUp(sun.elevation[static_cast<std::size_t>(minute)]);
    };
    for (int begin = 0; begin < kDayMinutes;) {
        int end = begin + 1;
        while (end < kDayMinutes && isDark(end) == isDark(begin))
            ++end;
        if (isDark(begin))
            painter_.fillRect(QRectF(QPointF(layout_.x(begin), layout_.plot.top()),
                                     QPointF(layout_.x(end), layout_.plot.bottom())),
                              colours_.night);
        begin = end;
    }
}

/// The sun's height above the horizon, filled, scaled to the day's highest.
void DayDrawing::drawCurve(const SunDay& sun) {
    const double highest = std::max(kFlattestDay, *std::ranges::max_element(sun.elevation));
    const auto y = [&](double degrees) {
        // A little room is left above noon, so that the curve does not touch the edge.
        const double share = (degrees - kLowestSun) / (highest * 1.08 - kLowestSun);
        return layout_.sun.bottom() - share * layout_.sun.height();
    };
    QPainterPath curve;
    for (int minute = 0; minute < kDayMinutes; ++minute) {
        const QPointF point(layout_.x(minute), y(sun.elevation[static_cast<std::size_t>(minute)]));
        if (minute == 0) {
            curve.moveTo(point);
        } else {
            curve.lineTo(point);
        }
    }
    QPainterPath sky;
    sky.addRect(QRectF(layout_.sun.topLeft(), QPointF(layout_.sun.right(), y(0))));
    QPainterPath below = curve;
    // Far below everything: only the part above the horizon is filled.
    below.lineTo(layout_.plot.right(), layout_.plot.bottom() * 4);
    below.lineTo(layout_.plot.left(), layout_.plot.bottom() * 4);
    if (!onPicture_) painter_.fillPath(below.intersected(sky), colours_.day);
    painter_.save();
    painter_.setClipRect(layout_.sun);
    painter_.strokePath(curve, QPen(colours_.sun, 1.5));
    painter_.restore();
    painter_.setPen(QPen(colours_.faint, 1, Qt::DotLine));
    painter_.drawLine(QPointF(layout_.sun.left(), y(0)), QPointF(layout_.sun.right(), y(0)));
}

/// On the night's side of the crossing, where the curve does not run; on the other side when there
/// is no room.
void DayDrawing::drawSunTime(int minute, bool rising) {
    const double x = layout_.x(minute);
    painter_.setPen(QPen(colours_.sun, 1.5));
    painter_.drawLine(QPointF(x, layout_.sun.top() + 2), QPointF(x, layout_.sun.bottom()));
    const QString text = (rising ? "sunrise " : "sunset ") + toQString(minuteText(minute));
    const double width = QFontMetricsF(painter_.font()).horizontalAdvance(text) + 2;
    const double gap = 4;
    bool left = rising;
    if (left && x - gap - width < layout_.plot.left()) left = false;
    if (!left && x + gap + width > layout_.plot.right()) left = true;
    const QRectF place(left ? x - gap - width : x + gap, layout_.sun.top() + 1, width,
                       layout_.unit);
    // Letters on a picture of the sky could not be read.
    if (onPicture_) painter_.fillRect(place, colours_.ground);
    painter_.setPen(colours_.ink);
    const Qt::AlignmentFlag side = left ? Qt::AlignRight : Qt::AlignLeft;
    painter_.drawText(place, static_cast<int>(Qt::AlignVCenter | side), text);
}

void DayDrawing::drawWindow(int begin, int end) {
    const QRectF window(QPointF(layout_.x(begin), layout_.lane.top()),
                        QPointF(layout_.x(end), layout_.lane.bottom()));
    QColor shade = colours_.taken;
    shade.setAlpha(40);
    painter_.fillRect(window, shade);
    painter_.setPen(QPen(colours_.taken, 1));
    painter_.setBrush(Qt::NoBrush);
    painter_.drawRect(window.adjusted(0, 0.5, 0, -0.5));
}

void DayDrawing::drawMark(const QRectF& place, DayState state, bool isDue) {
    painter_.setPen(Qt::NoPen);
    const auto barOf = [&](double height, const QColor& colour) {
        painter_.setBrush(colour);
        painter_.drawRect(place.adjusted(0, place.height() * (1 - height), 0, 0));
    };
    switch (state) {
    case DayState::Taken:
        // One beside the schedule is paler: there is a picture, but nobody asked for it.
        barOf(0.6, isDue ? colours_.taken : mixed(colours_.ground, colours_.taken, 0.6));
        break;
    case DayState::Fetched:
        barOf(0.4, colours_.fetched);
        break;
    case DayState::Missed:
        barOf(1, colours_.missed);
        break;
    case DayState::Off:
    case DayState::NotRunning:
        barOf(0.2, colours_.notRecording);
        break;
    case DayState::ToCome:
        painter_.setBrush(Qt::NoBrush);
        painter_.setPen(QPen(colours_.toCome, 1));
        painter_.drawRect(place.adjusted(0.5, place.height() * 0.72, -0.5, -0.5));
        break;
    case DayState::NotDue:
        break;
    }
}

void DayDrawing::drawHours() {
    const QFontMetricsF metrics(painter_.font());
    const double label = metrics.horizontalAdvance("00:00");
    int step = 12;
    for (const int hours : {6, 4, 3, 2, 1})
        // The smallest step whose labels stay apart; all of them divide a day.
        if (hours * 60 * layout_.pixelsPerMinute() > label * 1.5) step = hours;
    for (int hour = 0; hour <= 24; ++hour) {
        const double x = layout_.x(hour * 60);
        const bool labelled = hour % step == 0;
        painter_.setPen(QPen(labelled ? colours_.ink : colours_.faint, 1));
        painter_.drawLine(QPointF(x, layout_.hours.top()),
                          QPointF(x, layout_.hours.top() + (labelled ? 4 : 2)));
        if (!labelled) continue;
        painter_.drawText(
            QRectF(x - label, layout_.hours.top() + 3, 2 * label, layout_.hours.height() - 3),
            Qt::AlignHCenter | Qt::AlignTop, toQString(minuteText(hour * 60)));
    }
    painter_.setPen(QPen(colours_.faint, 1));
    painter_.drawLine(layout_.plot.bottomLeft(), layout_.plot.bottomRight());
}

/// In the sun's place, and faint behind the marks, which must be seen before all else.
void DayDrawing::drawKeogram(const QImage& keogram) {
    painter_.save();
    painter_.setRenderHint(QPainter::SmoothPixmapTransform);
    painter_.drawImage(layout_.plot, keogram, QRectF(keogram.rect()));
    painter_.restore();
    QColor veil = colours_.ground;
    veil.setAlpha(190);
    painter_.fillRect(layout_.lane, veil);
}

/// A frame around where the film is, unlike the line of the present time.
void DayDrawing::drawFilm(int minute) {
    const double x = layout_.x(minute + 0.5);
    const double width = std::max(layout_.pixelsPerMinute(), layout_.unit * 0.35);
    painter_.setPen(QPen(colours_.film, 2));
    painter_.setBrush(Qt::NoBrush);
    painter_.drawRoundedRect(
        QRectF(x - width / 2, layout_.plot.top() + 1, width, layout_.plot.height() - 2), 2, 2);
}

void DayDrawing::drawNow(int minute) {
    const double x = layout_.x(minute);
    painter_.setPen(QPen(colours_.now, 1.5));
    painter_.drawLine(QPointF(x, layout_.plot.top()), QPointF(x, layout_.plot.bottom()));
    const double size = layout_.unit * 0.25;
    painter_.setPen(Qt::NoPen);
    painter_.setBrush(colours_.now);
    painter_.drawPolygon(
        QPolygonF({QPointF(x - size, layout_.plot.top()), QPointF(x + size, layout_.plot.top()),
                   QPointF(x, layout_.plot.top() + size * 1.4)}));
}

} // namespace orvane

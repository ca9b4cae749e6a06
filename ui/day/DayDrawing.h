#pragma once

#include "imaging/SunTimes.h"
#include "ui/day/DayLayout.h"

#include <QPainter>
#include <QPalette>

namespace orvane {

/// Draws one day. States differ in colour and height: a missed mark, which is to be seen first, is
/// a bar of full height, then come taken, fetched, not recorded, and the low outline of one to
/// come. Made for one painting and gone after it; it holds nothing but references.
class DayDrawing {
  public:
    struct Content {
        const DayPlan& plan;
        const std::optional<SunDay>& sun;
        const std::vector<DayMark>& marks;
        const QImage& keogram;  ///< behind the marks; null: none
        std::optional<int> now; ///< minute of the day; nothing on a day that is over
        int film;               ///< the minute that a film is at; -1 for none
        int selected;           ///< mark with the keyboard's frame; -1 for none
    };

    DayDrawing(QPainter& painter, const DayLayout& layout, const QPalette& palette);
    void draw(const Content& content);

  private:
    struct Colours {
        QColor ground, night, day, ink, faint, sun, now, taken, fetched, missed, notRecording,
            toCome, film;
    };
    static Colours coloursFor(const QPalette& palette);

    double drawLegend(double textWidth);
    void drawText(const QString& text, double right);
    void drawNight(const SunDay& sun);
    void drawCurve(const SunDay& sun);
    void drawSunTime(int minute, bool rising);
    void drawWindow(int begin, int end);
    void drawMark(const QRectF& place, DayState state, bool isDue);
    void drawHours();
    void drawKeogram(const QImage& keogram);
    void drawNow(int minute);
    void drawFilm(int minute);

    QPainter& painter_;
    const DayLayout& layout_;
    Colours colours_;
    bool onPicture_ = false; ///< a keogram lies behind
};

} // namespace orvane

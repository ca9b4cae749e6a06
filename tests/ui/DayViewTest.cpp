#include "ui/day/DayView.h"
#include "tests/ui/WindowTest.h"

#include <QHelpEvent>
#include <QPaintEngine>
#include <QToolTip>

#include <cmath>

namespace orvane::test {
namespace {

/// About the WCAG's contrast of two colours, 1 to 21.
double contrast(const QColor& a, const QColor& b) {
    const auto luminance = [](const QColor& colour) {
        return 0.2126 * std::pow(colour.redF(), 2.2) + 0.7152 * std::pow(colour.greenF(), 2.2) +
               0.0722 * std::pow(colour.blueF(), 2.2);
    };
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

/// Takes down where texts are drawn.
class DrawnTexts : public QPaintDevice, public QPaintEngine {
  public:
    DrawnTexts() : QPaintEngine(AllFeatures) {}
    QPaintEngine* paintEngine() const override { return const_cast<DrawnTexts*>(this); }
    int metric(PaintDeviceMetric asked) const override {
        return asked == PdmWidth || asked == PdmHeight ? 1000 : asked < PdmDpiX ? 1 : 96;
    }
    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState&) override {}
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
    void drawPath(const QPainterPath&) override {}
    void drawPolygon(const QPointF*, int, PolygonDrawMode) override {}
    void drawTextItem(const QPointF& at, const QTextItem& item) override {
        left[item.text().toStdString()] = at.x();
    }
    Type type() const override { return User; }

    std::map<std::string, double> left;
};

/// The band in its window at 10:10 on a day that records every half hour from 9 to 12: taken,
/// fetched, missed, then to come; and one picture beside the schedule.
class Band : public WindowTest {
  protected:
    Band() {
        const auto today = w.dataFolder() / "20061115";
        std::filesystem::create_directory(today);
        for (const char* name : {"20061115_090000_00.jpg", "20061115_093017_00.jpg",
                                 "20061115_094500_00.jpg", "20061115_094500_00.tmp"})
            writeFile(today / name, jpegLike(name));
        w.module.schedule = {9h, 12h, 30min, {}};
        w.module.RecordFlg = true;
        band.hide(); // its looks take time
        w.clock.run(2h + 10min);
        band.show();
        w.clock.run(2s);
    }
    /// The tool tip at a place of the band; empty when there is none.
    QString tipAt(const QPointF& place) {
        QHelpEvent event(QEvent::ToolTip, place.toPoint(), band.mapToGlobal(place.toPoint()));
        QApplication::sendEvent(&band, &event);
        return event.isAccepted() ? QToolTip::text() : QString(); // a tip fades slowly
    }

    DayView& band = part<DayView>("dayView");
};

TEST_F(Band, TellsTheDayAndEachMarkToTheMouseAndTheKeys) {
    const QString text = "taken 1 of 6, next at 10:30, 1 fetched later, 1 missed";
    EXPECT_EQ(band.accessibleName(), "Today: " + text);
    EXPECT_EQ(band.width(), w.main.centralWidget()->width());
    const char* texts[] = {"09:00 - taken: 20061115_090000_00.jpg",
                           "09:30 - fetched from the camera's store: 20061115_093017_00.jpg",
                           "09:45 - taken, not on the schedule: 20061115_094500_00.jpg",
                           "10:00 - missed",
                           "10:30 - to come",
                           "11:00 - to come",
                           "11:30 - to come"};
    ASSERT_EQ(band.marks().size(), std::size(texts));
    for (std::size_t i = 0; i < std::size(texts); ++i)
        EXPECT_EQ(tipAt(band.markRect(i).center()), texts[i]);
    // the middle between 9:00 and 10:00 is 9:30, and noon is in the middle of the band
    const QPointF nine = band.markRect(0).center();
    const QPointF ten = band.markRect(3).center();
    EXPECT_EQ(tipAt((nine + ten) / 2), texts[1]);
    EXPECT_NEAR(ten.x() + 2 * (ten.x() - nine.x()), band.width() / 2.0, 2);
    EXPECT_EQ(tipAt(nine - QPointF(20, 0)), "");

    band.setFocus();
    const std::pair<Qt::Key, int> keys[] = {{Qt::Key_Right, 4}, // the first after 10:10
                                            {Qt::Key_Left, 3},  {Qt::Key_End, 6},
                                            {Qt::Key_Right, 6}, {Qt::Key_Home, 0},
                                            {Qt::Key_Left, 0},  {Qt::Key_Right, 1}};
    for (const auto& [key, mark] : keys) {
        QTest::keyClick(&band, key);
        EXPECT_EQ(QToolTip::text(), texts[mark]);
        EXPECT_TRUE(band.accessibleDescription().endsWith(texts[mark]));
    }
    QTest::keyClick(&band, Qt::Key_Tab);
    EXPECT_EQ(band.accessibleDescription(), text) << "the mark goes with the focus";
    band.hide();
    w.module.RecordFlg = false;
    w.clock.run(5s);
    EXPECT_EQ(band.accessibleDescription(), text) << "unseen, it does not look";
    band.show();
    EXPECT_EQ(band.accessibleDescription(), "recording is off");
}

TEST_F(Band, EveryMinuteIsMergedToColumns) {
    w.module.schedule = {0h, 23h + 59min, 1min, {}};
    w.clock.run(1s);
    const std::size_t before = band.marks().size();
    ASSERT_GT(before, 100u);
    for (std::size_t i = 1; i < before; ++i)
        ASSERT_GE(band.markRect(i).left() - band.markRect(i - 1).right(), 0.5) << i;
    w.main.resize(2000, 747);
    EXPECT_GT(band.marks().size(), before) << "a wider band tells more minutes apart";
}

TEST_F(Band, MarksAreSeenOnLightAndDarkGround) {
    QPalette dark(QColor(45, 45, 48));
    dark.setColor(QPalette::Base, QColor(30, 30, 32));
    for (const QPalette& palette : {QPalette(QColor(239, 239, 239)), dark}) {
        band.setPalette(palette);
        const QImage image = band.grab().toImage();
        /// Between two places: that height of a mark, and so much beside it.
        const auto contrastTo = [&](std::size_t mark, double height, const QPointF& beside) {
            const QRectF rect = band.markRect(mark);
            const QPointF place(rect.center().x(), rect.top() + rect.height() * height);
            return contrast(image.pixelColor(place.toPoint()),
                            image.pixelColor((place + beside).toPoint()));
        };
        EXPECT_GE(contrastTo(0, 0.6, {12, 0}), 3) << "taken";
        EXPECT_GE(contrastTo(3, 0.3, {12, 0}), 3) << "missed, which stands out";
        EXPECT_LT(contrastTo(2, 0.3, {-12, 0}), 1.1) << "only what is missed reaches so high";
        const double half = band.markRect(1).height() / 2;
        EXPECT_GE(contrastTo(1, 0.75, {0, -half}), 3) << "fetched: the lower half only";
    }
}

/// Each on the night's side of its line; on the other where there is no room.
TEST(DayDrawing, SunriseAndSunsetStandAtTheirTimes) {
    struct Case {
        int sunrise, sunset;
        const char *rising, *setting;
        bool risingIsLeft, settingIsLeft;
    };
    const Case cases[] = {{381, 993, "sunrise 06:21", "sunset 16:33", true, false},
                          {20, 1420, "sunrise 00:20", "sunset 23:40", false, true}};
    for (const Case& c : cases) {
        std::optional<SunDay> sun(std::in_place);
        sun->sunrise = c.sunrise;
        sun->sunset = c.sunset;
        for (int minute = 0; minute < kDayMinutes; ++minute)
            sun->elevation[static_cast<std::size_t>(minute)] =
                c.sunrise <= minute && minute < c.sunset ? 30 : -30;
        const QRect area(0, 0, 1000, 100);
        const DayLayout layout(area, QFont());
        const auto draw = [&](QPaintDevice& device) {
            QPainter painter(&device);
            DayDrawing(painter, layout, {}).draw({{}, sun, {}, {}, {}, -1, -1});
        };
        DrawnTexts texts;
        draw(texts);
        ASSERT_TRUE(texts.left.contains(c.rising) && texts.left.contains(c.setting));
        EXPECT_EQ(texts.left[c.rising] < layout.x(c.sunrise), c.risingIsLeft);
        EXPECT_EQ(texts.left[c.setting] < layout.x(c.sunset), c.settingIsLeft);
        QImage image(area.size(), QImage::Format_RGB32);
        draw(image);
        for (const double y : {layout.sun.bottom() - 8, layout.lane.center().y()}) {
            const auto blueness = [&](int minute) {
                const QColor colour = image.pixelColor(QPointF(layout.x(minute), y).toPoint());
                return colour.blue() - colour.red();
            };
            EXPECT_GT(blueness(c.sunrise - 8), blueness(c.sunrise + 8)) << "night, then day";
            EXPECT_GT(blueness(c.sunset + 8), blueness(c.sunset - 8)) << "day, then night";
        }
    }
}

} // namespace
} // namespace orvane::test

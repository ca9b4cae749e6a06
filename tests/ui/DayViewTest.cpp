#include "ui/day/DayView.h"
#include "platform/Files.h"
#include "tests/support/TestWindow.h"

#include <QHelpEvent>
#include <QToolTip>

#include <cmath>

namespace orvane::test {
namespace {

/// WCAG contrast of two colours, 1 to 21.
double contrast(QColor a, QColor b) {
    const auto luminance = [](const QColor& colour) {
        const auto linear = [](double c) {
            return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
               0.0722 * linear(colour.blueF());
    };
    const double x = luminance(a) + 0.05;
    const double y = luminance(b) + 0.05;
    return std::max(x, y) / std::min(x, y);
}

/// The band in its window at 10:10 on a day that records every half hour from 9 to 12: taken,
/// fetched, missed, then to come; and one picture beside the schedule.
class Band : public testing::Test {
  protected:
    Band() {
        const auto today = w.dataFolder() / "20061115";
        std::filesystem::create_directory(today);
        for (const char* name : {"20061115_090000_00.jpg", "20061115_093017_00.jpg",
                                 "20061115_094500_00.jpg", "20061115_094500_00.tmp"})
            EXPECT_FALSE(writeToFinalName(jpegLike(name), today / name));
        w.module.schedule = {9h, 12h, 30min, {}};
        w.module.RecordFlg = true;
        w.clock.run(2h + 10min + 2s);
    }
    /// The tool tip at a place of the band; empty when there is none.
    QString tipAt(const QPointF& place) {
        QHelpEvent event(QEvent::ToolTip, place.toPoint(), band.mapToGlobal(place.toPoint()));
        QApplication::sendEvent(&band, &event);
        return event.isAccepted() ? QToolTip::text() : QString(); // a tip fades slowly
    }
    QColor colourAt(const QPointF& place) {
        const QImage image = band.grab().toImage();
        return image.pixelColor((place * image.devicePixelRatio()).toPoint());
    }

    JumpingClock clock{at(2006, 11, 15)};
    FakeOperator op{clock};
    Window w{op};
    DayView& band = dynamic_cast<DayView&>(find<QWidget>(w.main, "dayView"));
};

TEST_F(Band, TellsTheDayInOneLine) {
    const QString text = "taken 1 of 6, next at 10:30, 1 fetched later, 1 missed";
    EXPECT_EQ(band.accessibleName(), "Today: " + text);
    EXPECT_EQ(band.accessibleDescription(), text);
    EXPECT_EQ(band.width(), w.main.centralWidget()->width());
    w.module.RecordFlg = false;
    w.clock.run(1s);
    EXPECT_EQ(band.accessibleDescription(), "recording is off");
    band.hide();
    w.module.RecordFlg = true;
    w.clock.run(5s);
    EXPECT_EQ(band.accessibleDescription(), "recording is off") << "unseen, it does not look";
    band.show();
    EXPECT_EQ(band.accessibleDescription(), text);
}

TEST_F(Band, EveryMarkHasItsToolTip) {
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
}

TEST_F(Band, ArrowKeysGoFromMarkToMark) {
    band.setFocus();
    QTest::keyClick(&band, Qt::Key_Right);
    EXPECT_EQ(QToolTip::text(), "10:30 - to come") << "the first after the present time, 10:10";
    QTest::keyClick(&band, Qt::Key_Left);
    EXPECT_EQ(QToolTip::text(), "10:00 - missed");
    EXPECT_TRUE(band.accessibleDescription().endsWith(QToolTip::text()));
    QTest::keyClick(&band, Qt::Key_End);
    QTest::keyClick(&band, Qt::Key_Right);
    EXPECT_EQ(QToolTip::text(), "11:30 - to come") << "there is none beyond the last";
    QTest::keyClick(&band, Qt::Key_Home);
    QTest::keyClick(&band, Qt::Key_Left);
    EXPECT_EQ(QToolTip::text(), "09:00 - taken: 20061115_090000_00.jpg");
    QTest::keyClick(&band, Qt::Key_Tab);
    EXPECT_FALSE(band.accessibleDescription().contains("09:00")) << "the mark goes with the focus";
}

TEST_F(Band, EveryMinuteIsMergedToColumns) {
    w.module.schedule = {0h, 23h + 59min, 1min, {}};
    w.clock.run(1s);
    ASSERT_GT(band.marks().size(), 100u);
    for (std::size_t i = 1; i < band.marks().size(); ++i)
        ASSERT_GE(band.markRect(i).left() - band.markRect(i - 1).right(), 0.5) << i;
    const DayMark& first = band.marks().front();
    const int minutes = first.last - first.first + 1;
    EXPECT_EQ(tipAt(band.markRect(0).center()).toStdString(),
              "00:00 to 00:0" + std::to_string(first.last) + " - " + std::to_string(minutes) +
                  " missed");
    const std::size_t before = band.marks().size();
    w.main.resize(2000, 747);
    EXPECT_GT(band.marks().size(), before) << "a wider band tells more minutes apart";
}

TEST_F(Band, MarksAreSeenOnLightAndDarkGround) {
    QPalette dark(QColor(45, 45, 48));
    dark.setColor(QPalette::Base, QColor(30, 30, 32));
    for (const QPalette& palette : {QPalette(QColor(239, 239, 239)), dark}) {
        band.setPalette(palette);
        // taken, then missed, which stands out
        for (const auto& [mark, height] : {std::pair{0u, 0.6}, std::pair{3u, 0.3}}) {
            const QRectF rect = band.markRect(mark);
            const QPointF place(rect.center().x(), rect.top() + rect.height() * height);
            const QPointF beside = place + QPointF(12, 0);
            EXPECT_GE(contrast(colourAt(place), colourAt(beside)), 3) << mark;
        }
        const QRectF taken = band.markRect(2); // the first stands on the window's edge
        const QPointF above(taken.center().x(), taken.top() + taken.height() * 0.3);
        EXPECT_LT(contrast(colourAt(above), colourAt(above - QPointF(12, 0))), 1.1)
            << "only what is missed reaches so high";
        const QRectF fetched = band.markRect(1);
        EXPECT_GE(contrast(colourAt(fetched.center() + QPointF(0, fetched.height() / 4)),
                           colourAt(fetched.center() - QPointF(0, fetched.height() / 4))),
                  3)
            << "lower half only";
    }
}

} // namespace
} // namespace orvane::test

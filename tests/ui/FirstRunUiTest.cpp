#include "tests/ui/WindowTest.h"
#include "ui/pictures/FirstRun.h"

#include <QCommandLinkButton>

namespace orvane::test {
namespace {

class FirstRunUi : public WindowTest {
  protected:
    FirstRunUi() { QApplication::processEvents(); }

    FirstRun& card = part<FirstRun>("firstRun");
};

TEST_F(FirstRunUi, TheStepsAreLiveAndLeadToTheirControls) {
    const auto& schedule = part<QCommandLinkButton>("cmd_first_3");
    EXPECT_TRUE(card.isVisible());
    EXPECT_EQ(text("lbl_first"), "Before pictures can be recorded");
    EXPECT_EQ(schedule.description(), "09:00 to 17:00 every 30 min");
    type(part<QLineEdit>("Text1_2"), "8");
    const qint64 sign = schedule.icon().cacheKey();
    w.clock.run(1s);
    EXPECT_EQ(schedule.description(), "You must be Start Time < End Time.");
    EXPECT_NE(schedule.icon().cacheKey(), sign);
    part("cmd_first_1").setFocus();
    QTest::keyClick(&part("cmd_first_1"), Qt::Key_Space);
    EXPECT_EQ(page(), 1);
    EXPECT_EQ(focusOf(w.main), "txtIp");
    click(w.main, "cmd_first_3");
    EXPECT_EQ(page(), 0);
    EXPECT_EQ(focusOf(w.main), "Text1_2");
    QTest::keyClick(&w.main, Qt::Key_2, Qt::AltModifier);
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return part("Command3").hasFocus(); }, 2000)); // it is seen pressed
    type(part<QLineEdit>("Text1_2"), "17");
    click(w.main, "Command1");
    w.clock.run(1s);
    EXPECT_FALSE(isOn("cmd_first_2")) << "locked while recording";
    EXPECT_TRUE(isOn("cmd_first_1"));
}

TEST_F(FirstRunUi, GivesWayToPictures) {
    const auto expectPictures = [this](bool any) {
        EXPECT_EQ(card.isVisible(), !any);
        for (const char* entry : {"mnuWindowCascade", "mnuWindowTile", "mnuWindowCloseAll"})
            EXPECT_EQ(action(entry).isEnabled(), any) << entry;
    };
    expectPictures(false);
    const auto file = write("one.jpg");
    w.pictures.openImage(file);
    w.pictures.showLatest(file);
    expectPictures(true);
    delete area().subWindowList().first();
    expectPictures(true);
    area().subWindowList().first()->close();
    clearAway();
    expectPictures(false);
}

TEST_F(FirstRunUi, FitsASmallScreen) {
    w.main.resize(910, 512);
    QApplication::processEvents();
    for (const char* name : {"lbl_first", "cmd_first_1", "cmd_first_2", "cmd_first_3"}) {
        const QRect place(part(name).mapTo(&card, QPoint()), part(name).size());
        EXPECT_TRUE(card.rect().contains(place)) << name;
        EXPECT_GE(place.height(), part(name).heightForWidth(place.width())) << name;
    }
}

} // namespace
} // namespace orvane::test

#include "tests/support/TestWindow.h"

#include <QAction>
#include <QLabel>
#include <QPushButton>

namespace orvane::test {
namespace {

class WishUi : public testing::Test {
  protected:
    JumpingClock clock{at(2006, 11, 15)};
    FakeOperator op{clock};
};

TEST_F(WishUi, TheMenuStartsAndStopsAndFollowsThePanel) {
    Window w(op);
    auto* start = w.main.findChild<QAction*>("mnuRecordingStart");
    auto* stop = w.main.findChild<QAction*>("mnuRecordingStop");
    EXPECT_TRUE(start->isEnabled());
    EXPECT_FALSE(stop->isEnabled());
    start->trigger();
    EXPECT_TRUE(w.module.RecordFlg);
    EXPECT_FALSE(start->isEnabled());
    EXPECT_TRUE(stop->isEnabled());
    stop->trigger();
    EXPECT_FALSE(w.module.RecordFlg);
    EXPECT_TRUE(start->isEnabled());
    EXPECT_FALSE(stop->isEnabled());
}

TEST_F(WishUi, AWishIsShownAndCanBeDropped) {
    Window w(op);
    auto& bar = find<QWidget>(w.main, "wishBar");
    EXPECT_FALSE(bar.isVisible());
    w.recording.Command1_Click().start();
    {
        const Scope capturing(w.module.capturing);
        const Busy::Hold busy(w.busy);
        w.main.findChild<QAction*>("mnuRecordingStop")->trigger();
        EXPECT_TRUE(bar.isVisible());
        EXPECT_EQ(find<QLabel>(bar, "lbl_wish").text(), "Recording stops after this picture.");
        w.main.close();
        EXPECT_EQ(find<QLabel>(bar, "lbl_wish").text(), "Orvane closes after this picture.");
        click(bar, "cmd_wish_cancel");
        EXPECT_FALSE(bar.isVisible());
        w.clock.run(1s);
    }
    w.clock.run(10s);
    EXPECT_TRUE(w.module.RecordFlg);
    EXPECT_TRUE(op.asked.empty());
    EXPECT_TRUE(w.main.isVisible());
}

} // namespace
} // namespace orvane::test

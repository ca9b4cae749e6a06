#include "tests/support/TestWindow.h"

#include <QCheckBox>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

namespace orvane::test {
namespace {

TEST(StatusPageUi, SaysWhereThePageLiesAndSwitchesTheCopy) {
    JumpingClock clock{at(2006, 11, 15)};
    FakeOperator op{clock};
    Window w(op);
    w.module.latestCopy = true;
    w.main.findChild<QAction*>("mnuStatusPage")->trigger();
    auto& form = find<QDialog>(w.main, "FrmStatusPage");
    EXPECT_TRUE(find<QLabel>(form, "Label2").text().endsWith("status.html"));
    EXPECT_TRUE(find<QCheckBox>(form, "chk_latest").isChecked());
    click(form, "chk_latest");
    EXPECT_FALSE(w.module.latestCopy);
    EXPECT_EQ(w.store.values["Station/LatestCopy"], "0") << "at once, also if the PC loses power";
    EXPECT_EQ(form.findChild<QMessageBox*>(), nullptr);
    w.store.readOnly = true;
    click(form, "chk_latest");
    EXPECT_TRUE(w.module.latestCopy);
    EXPECT_NE(form.findChild<QMessageBox*>(), nullptr);
}

} // namespace
} // namespace orvane::test

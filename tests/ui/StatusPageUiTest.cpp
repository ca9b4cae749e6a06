#include "tests/ui/WindowTest.h"

namespace orvane::test {
namespace {

class StatusPageUi : public WindowTest {};

TEST_F(StatusPageUi, SaysWhereThePageLiesOpensItAndSwitchesTheCopy) {
    const FakeDesktop desktop;
    w.module.latestCopy = true;
    QDialog& form = open("mnuStatusPage", "FrmStatusPage");
    EXPECT_TRUE(textOf(form, "Label2").ends_with("status.html"));
    click(form, "Command1");
    EXPECT_EQ(desktop.opened, QStringList("status.html"));
    EXPECT_TRUE(find<QCheckBox>(form, "chk_latest").isChecked());
    click(form, "chk_latest");
    EXPECT_FALSE(w.module.latestCopy);
    EXPECT_EQ(w.store.values["Station/LatestCopy"], "0") << "at once, also if the PC loses power";
    EXPECT_EQ(openBox(), nullptr);
    w.store.readOnly = true;
    click(form, "chk_latest");
    EXPECT_TRUE(w.module.latestCopy);
    EXPECT_NE(openBox(), nullptr);
}

} // namespace
} // namespace orvane::test

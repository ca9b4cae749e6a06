#include "tests/support/TestPictures.h"
#include "tests/support/TestWindow.h"

#include <QDesktopServices>
#include <QDialog>
#include <QTextBrowser>
#include <QUrl>

namespace orvane::test {
namespace {

/// Stands in for the desktop's programs: its signal is called for what is to be opened.
struct Desktop {
    Desktop() {
        QObject::connect(&receiver, &QTextBrowser::anchorClicked, &receiver,
                         [this](const QUrl& url) { opened << url.fileName(); });
        QDesktopServices::setUrlHandler("file", &receiver, "anchorClicked");
    }
    ~Desktop() { QDesktopServices::unsetUrlHandler("file"); }

    QTextBrowser receiver;
    QStringList opened;
};

class HelpUi : public testing::Test {
  protected:
    void trigger(const char* name) { w.main.findChild<QAction*>(name)->trigger(); }
    void giveGuide() {
        const auto folder = w.module.programFolder / "guide";
        std::filesystem::create_directories(folder);
        writeFile(folder / "operators-guide.html", "<!DOCTYPE html>");
    }

    JumpingClock operatorClock{at(2006, 11, 15)};
    FakeOperator op{operatorClock};
    Window w{op};
    Desktop desktop;
};

TEST_F(HelpUi, OpensTheGuideAndTheLogOrSaysWhereTheyBelong) {
    std::filesystem::remove(w.module.programFolder / "ERROR.LOG");
    trigger("mnuHelpGuide");
    trigger("mnuHelpErrorLog");
    EXPECT_TRUE(desktop.opened.isEmpty());
    ASSERT_EQ(op.told.size(), 2U);
    EXPECT_NE(op.told[0].find("operators-guide.html"), std::string::npos) << op.told[0];
    EXPECT_NE(op.told[1].find("ERROR.LOG"), std::string::npos) << op.told[1];
    giveGuide();
    w.log.write("a line");
    trigger("mnuHelpGuide");
    trigger("mnuHelpErrorLog");
    EXPECT_EQ(desktop.opened, (QStringList{"operators-guide.html", "ERROR.LOG"}));
    EXPECT_EQ(op.told.size(), 2U);
}

TEST_F(HelpUi, F1OpensTheGuideOnceAlsoFromADialog) {
    giveGuide();
    QTest::keyClick(&w.main, Qt::Key_F1);
    EXPECT_EQ(desktop.opened.size(), 1);
    trigger("mnuFileSaveOptions");
    auto& dialog = find<QDialog>(w.main, "FrmSave");
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    QTest::keyClick(&dialog, Qt::Key_F1);
    EXPECT_EQ(desktop.opened.size(), 2);
    QTest::keyClick(&dialog, Qt::Key_F1, Qt::ShiftModifier);
    EXPECT_EQ(desktop.opened.size(), 2);
}

/// Only the platform without a desktop starts no program here.
TEST_F(HelpUi, SaysWhereTheGuideLiesWhenNothingShowsIt) {
    if (QGuiApplication::platformName() != "offscreen") GTEST_SKIP();
    QDesktopServices::unsetUrlHandler("file");
    giveGuide();
    trigger("mnuHelpGuide");
    ASSERT_EQ(op.told.size(), 1U);
    EXPECT_EQ(op.told[0].rfind("No browser could be started.", 0), 0U);
    EXPECT_NE(op.told[0].find("operators-guide.html"), std::string::npos);
}

} // namespace
} // namespace orvane::test

#include "core/SystemInformation.h"
#include "tests/support/TestWindow.h"
#include "ui/dialogs/QtOperator.h"
#include "ui/dialogs/frmAbout.h"

#include <QLabel>
#include <QPushButton>

namespace orvane::test {
namespace {

constexpr char kTool[] = "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO PATH";
constexpr char kFolder[] = "SOFTWARE\\Microsoft\\Shared Tools Location MSINFO";
constexpr char kUnusable[] = "At present, system information cannot be used.";

TEST(AboutTest, TheToolIsFoundThroughTheRegistry) {
    const std::string own = "C:\\info\\a.exe";
    const std::string below = "C:\\other\\MSINFO32.EXE";
    const std::pair<const std::string, std::string> ownEntry{kTool, own};
    const std::pair<const std::string, std::string> folderEntry{kFolder, "C:\\other"};
    using Texts = std::vector<std::string>;
    const struct {
        const char* what;
        std::map<std::string, std::string> registry;
        std::set<std::string> files;
        Texts asked, started;
        bool told;
    } cases[] = {
        {"its own entry", {ownEntry, folderEntry}, {own, below}, {kTool}, {own}, false},
        {"its own entry names no file", {ownEntry, folderEntry}, {below}, {kTool}, {own}, true},
        {"the folder's entry", {folderEntry}, {below}, {kTool, kFolder}, {below}, false},
        {"a folder without the tool", {folderEntry}, {}, {kTool, kFolder}, {}, true},
        {"no entry", {}, {"\\MSINFO32.EXE"}, {kTool, kFolder}, {}, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        JumpingClock clock(at(2006, 11, 15));
        FakeOperator op(clock);
        FakeSystemInfo info;
        info.registry = c.registry;
        info.files = c.files;
        TaskGroup tasks(noFault);
        tasks.spawn(startSystemInformation(info, op));
        clock.run(2s);
        EXPECT_EQ(tasks.running(), 0u);
        EXPECT_EQ(info.asked, c.asked);
        EXPECT_EQ(info.started, c.started);
        EXPECT_EQ(op.told, c.told ? Texts{kUnusable} : Texts{});
    }
}

/// A window manager gives the keys back to the window that a closed box stood before; the main
/// window is blocked and must not get them.
TEST(AboutTest, ItsMessageStandsBeforeItAndKeysCloseBoth) {
    QCoreApplication::setApplicationVersion("4.11");
    JumpingClock clock(at(2006, 11, 15));
    QtOperator op(clock);
    Window w(op);
    op.setParentWindow(&w.main);
    const auto open = [&] {
        find<QAction>(w.main, "mnuHelpAbout").trigger();
        return &find<frmAbout>(w.main, "frmAbout");
    };
    frmAbout* about = open();
    EXPECT_TRUE(about->isModal());
    QString labels;
    for (const char* name : {"lblTitle", "lblVersion", "lblDescription", "lblDisclaimer"})
        labels += find<QLabel>(*about, name).text() + ";";
    EXPECT_EQ(labels, "Orvane;Version 4.11.0;;;");
    EXPECT_EQ(find<QPushButton>(*about, "cmdOK").text(), "OK");
    EXPECT_EQ(find<QPushButton>(*about, "cmdSysInfo").text(), "System(&S)");
    about->activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == about; }));
    click(*about, "cmdSysInfo");
    ASSERT_NE(openBox(), nullptr);
    EXPECT_EQ(openBox()->text(), kUnusable);
    EXPECT_EQ(openBox()->parentWidget(), about);
    QTest::keyClick(openBox(), Qt::Key_Escape);
    clock.run(1s);
    EXPECT_EQ(openBox(), nullptr);
    EXPECT_TRUE(about->isVisible());
    for (const auto key : {Qt::Key_Escape, Qt::Key_Return}) {
        QTest::keyClick(about, key);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_EQ(w.main.findChild<QWidget*>("frmAbout"), nullptr);
        about = open();
    }
}

} // namespace
} // namespace orvane::test

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

class About : public testing::Test {
  protected:
    frmAbout& open() {
        QCoreApplication::setApplicationVersion("4.11");
        w.main.findChild<QAction*>("mnuHelpAbout")->trigger();
        auto* about = w.main.findChild<frmAbout*>("frmAbout");
        if (about == nullptr) throw std::runtime_error("no about box");
        return *about;
    }
    bool closed() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return w.main.findChild<QWidget*>("frmAbout") == nullptr;
    }

    JumpingClock clock{at(2006, 11, 15)};
    FakeOperator op{clock};
    Window w{op};
};

TEST_F(About, ShowsTitleAndVersion) {
    const frmAbout& about = open();
    EXPECT_TRUE(about.isModal());
    const std::pair<const char*, const char*> texts[] = {{"lblTitle", "Orvane"},
                                                         {"lblVersion", "Version 4.11.0"},
                                                         {"lblDescription", ""},
                                                         {"lblDisclaimer", ""}};
    for (const auto& [name, text] : texts)
        EXPECT_EQ(find<QLabel>(about, name).text(), text) << name;
    EXPECT_EQ(find<QLabel>(about, "lblTitle").font().family(), "Arial");
    EXPECT_EQ(find<QPushButton>(about, "cmdOK").text(), "OK");
    EXPECT_EQ(find<QPushButton>(about, "cmdSysInfo").text(), "System(&S)");
    EXPECT_TRUE(find<QWidget>(about, "Line1_0").isVisible());
    EXPECT_TRUE(find<QWidget>(about, "Line1_1").isVisible());
}

TEST_F(About, EnterEscapeAndTheButtonCloseIt) {
    QTest::keyClick(&open(), Qt::Key_Escape);
    EXPECT_TRUE(closed());
    QTest::keyClick(&open(), Qt::Key_Return);
    EXPECT_TRUE(closed());
    click(open(), "cmdOK");
    EXPECT_TRUE(closed());
}

TEST_F(About, TheSystemButtonTellsThatThereIsNoTool) {
    click(open(), "cmdSysInfo");
    EXPECT_EQ(op.told, std::vector<std::string>{kUnusable});
    QTest::keyClick(w.main.findChild<QWidget*>("frmAbout"), Qt::Key_Escape);
    clock.run(2s); // the message is closed after the about box
    EXPECT_TRUE(closed());
}

/// A window manager gives the keys back to the window that a closed box stood before; the main
/// window is blocked and must not get them.
TEST(AboutTest, AMessageStandsBeforeTheDialogInUse) {
    JumpingClock clock(at(2006, 11, 15));
    QtOperator op(clock);
    Window w(op);
    op.setParentWindow(&w.main);
    w.main.findChild<QAction*>("mnuHelpAbout")->trigger();
    auto* about = w.main.findChild<frmAbout*>("frmAbout");
    ASSERT_NE(about, nullptr);
    about->activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == about; }));
    click(*about, "cmdSysInfo");
    ASSERT_NE(openBox(), nullptr);
    EXPECT_EQ(openBox()->parentWidget(), about);
    QTest::keyClick(openBox(), Qt::Key_Escape);
    clock.run(1s);
    EXPECT_EQ(openBox(), nullptr);
    EXPECT_TRUE(about->isVisible());
}

} // namespace
} // namespace orvane::test

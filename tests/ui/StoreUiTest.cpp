#include "tests/support/FakeCameraStore.h"
#include "tests/support/TestWindow.h"

#include <QLabel>
#include <QListWidget>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QProgressBar>
#include <QTabWidget>

#include <fstream>

namespace orvane::test {
namespace {

class StoreUi : public testing::Test {
  protected:
    JumpingClock clock{at(2006, 11, 15)};
    FakeOperator op{clock};
};

TEST_F(StoreUi, ADownloadShowsItsProgressAndCanBeStopped) {
    Window w(op);
    find<QTabWidget>(w.main, "pages").setCurrentIndex(1);
    FakeCameraStore camera;
    camera.record("20061115", 7, 8);
    camera.perPage = 60;
    w.browser1.answer = [&](const std::string& url) { return camera.search(url); };
    w.http.answer = [&](const std::string& url) { return camera.picture(url); };
    auto& bar = find<QProgressBar>(w.main, "pgb_run");
    EXPECT_FALSE(bar.isVisible());
    EXPECT_FALSE(find<QWidget>(w.main, "Command6").isEnabled());

    click(w.main, "Command4");
    EXPECT_TRUE(bar.isVisible());
    EXPECT_EQ(bar.maximum(), 0); // nobody knows how much there is
    EXPECT_TRUE(find<QWidget>(w.main, "Command6").hasFocus());
    EXPECT_FALSE(find<QWidget>(w.main, "cmd_Download").isEnabled());
    EXPECT_FALSE(find<QAction>(w.main, "mnuFileOpen").isEnabled());
    w.clock.run(600ms);
    EXPECT_EQ(bar.maximum(), 30); // half an hour's
    EXPECT_GT(bar.value(), 5);
    EXPECT_EQ(find<QLabel>(w.main, "lbl_dlcnt").text().toInt(), bar.value());

    click(w.main, "Command6");
    w.clock.run(200ms);
    EXPECT_FALSE(bar.isVisible());
    EXPECT_EQ(find<QLabel>(w.main, "Label7").text(), "ダウンロードを中断しました");
    EXPECT_TRUE(find<QWidget>(w.main, "Command4").isEnabled());
    EXPECT_TRUE(find<QAction>(w.main, "mnuFileOpen").isEnabled());
}

TEST_F(StoreUi, FindsFilesAndOpensThem) {
    Window w(op);
    find<QTabWidget>(w.main, "pages").setCurrentIndex(2);
    for (int i = 0; i < 30; ++i)
        std::ofstream(w.dataFolder() / ("sky" + std::to_string(i) + ".jpg")) << i;
    std::filesystem::create_directory(w.dataFolder() / "sky folder");
    std::ofstream(w.dataFolder() / "Sky.jpg") << "another case";
    auto& text = find<QLineEdit>(w.main, "txt_find");
    auto& list = find<QListWidget>(w.main, "lst_found");
    auto& result = find<QLabel>(w.main, "lbl_found");
    type(text, "sky1");
    QTest::keyClick(&text, Qt::Key_Return);
    EXPECT_EQ(list.count(), 11); // 1 and 10 to 19
    EXPECT_EQ(result.text(), "11 files.");
    EXPECT_EQ(w.module.foundCount, 12);
    type(text, "sky");
    click(w.main, "cmd_find");
    EXPECT_EQ(list.count(), 24);
    EXPECT_EQ(result.text(), "The first 24 files.");
    EXPECT_EQ(w.module.foundCount, 25);
    EXPECT_TRUE(w.module.foundImages[0].empty());

    list.setFocus();
    list.setCurrentRow(3);
    QTest::keyClick(&list, Qt::Key_Return);
    auto& area = *w.main.findChild<QMdiArea*>();
    ASSERT_EQ(area.subWindowList().size(), 1);
    EXPECT_TRUE(area.subWindowList()[0]->windowTitle().contains(list.item(3)->text()));

    type(text, "nothing of this name");
    click(w.main, "cmd_find");
    EXPECT_EQ(list.count(), 0);
    EXPECT_EQ(w.module.foundCount, 1);
    w.panel.Dir1[1].path = w.dataFolder() / "gone";
    click(w.main, "cmd_find");
    EXPECT_EQ(result.text(), "This folder cannot be opened. Choose another one.");
    EXPECT_EQ(w.module.foundCount, 0);
}

} // namespace
} // namespace orvane::test

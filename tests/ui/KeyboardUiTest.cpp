#include "tests/support/TestPictures.h"
#include "tests/support/TestWindow.h"
#include "ui/FocusRing.h"

#include <QMdiArea>
#include <QMenuBar>
#include <QTabWidget>

namespace orvane::test {
namespace {

class Keyboard : public testing::Test {
  protected:
    /// Presses Tab or Shift+Tab until the focus is back where it began.
    std::vector<const QWidget*> round(Qt::KeyboardModifiers keys) {
        std::vector<const QWidget*> visited;
        QWidget* const begin = w.main.focusWidget();
        do {
            visited.push_back(w.main.focusWidget());
            QTest::keyClick(w.main.focusWidget(), Qt::Key_Tab, keys);
        } while (w.main.focusWidget() != begin && visited.size() < 200);
        return visited;
    }
    void reopen() {
        w.main.hide();
        show(w.main);
        QEvent active(QEvent::WindowActivate); // the offscreen system sends none again
        QApplication::sendEvent(&w.main, &active);
    }
    static std::string nameOf(const QWidget& control) {
        return control.objectName().isEmpty() ? control.metaObject()->className()
                                              : control.objectName().toStdString();
    }

    JumpingClock operatorClock{at(2006, 11, 15)};
    FakeOperator op{operatorClock};
    Window w{op};
};

TEST_F(Keyboard, TabGoesOnceThroughEverythingAndBack) {
    const auto file = w.dataFolder() / "20061115" / "20061115_070000_00.jpg";
    std::filesystem::create_directories(file.parent_path());
    writeFile(file, encoded(gradient(64, 48)));
    w.pictures.refreshThumbnails({file});
    w.pictures.openImage(file);
    w.main.findChild<QAction*>("mnuDayFilm")->trigger();
    w.clock.run(2s);
    w.main.operation().focusStart();
    const std::vector<const QWidget*> forward = round({});
    ASSERT_LT(forward.size(), 200U) << "the ring is not closed";

    // whatever can be clicked into and takes the keyboard must be in it
    for (const QWidget* control : w.main.findChildren<QWidget*>()) {
        const bool isFrame = control->inherits("QMdiSubWindow");
        if (!control->isVisible() || !control->isEnabled() || isFrame ||
            control->focusProxy() != nullptr || (control->focusPolicy() & Qt::TabFocus) == 0)
            continue;
        EXPECT_EQ(std::ranges::count(forward, control), 1) << nameOf(*control);
    }
    std::vector<std::string> names;
    for (const QWidget* control : forward)
        names.push_back(nameOf(*control));
    const auto placeOf = [&](const char* name) { return std::ranges::find(names, name); };
    const char* const order[] = {"Command1", "pages_bar",   "Text1_0", "Dir1_0",
                                 "txt_tz",   "thumbnail_0", "cmd_day", "dayView"};
    for (std::size_t i = 1; i < std::size(order); ++i) {
        ASSERT_NE(placeOf(order[i]), names.end()) << order[i];
        EXPECT_LT(placeOf(order[i - 1]), placeOf(order[i])) << order[i];
    }

    std::vector<const QWidget*> backward = round(Qt::ShiftModifier);
    std::reverse(backward.begin() + 1, backward.end());
    EXPECT_EQ(backward, forward);
}

TEST_F(Keyboard, KeysLeadToThePages) {
    auto& pages = find<QTabWidget>(w.main, "pages");
    const std::pair<Qt::Key, const char*> cases[] = {
        {Qt::Key_3, "Dir1_1"}, {Qt::Key_2, "txtIp"}, {Qt::Key_1, "Text1_0"}};
    for (const auto& [key, first] : cases) {
        QTest::keyClick(&w.main, key, Qt::ControlModifier);
        EXPECT_EQ(pages.currentIndex(), key - Qt::Key_1);
        EXPECT_EQ(nameOf(*w.main.focusWidget()), first);
    }
    w.panel.chk_auto.ticked = true;
    w.recording.chk_auto_Click();
    QTest::keyClick(&w.main, Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(nameOf(*w.main.focusWidget()), "Text1_4") << "the first one that is not locked";
}

TEST_F(Keyboard, ARefusedStartLeadsToTheFaultyField) {
    const std::tuple<int, const char*, const char*> cases[] = {
        {1, "60", "Text1_1"}, {5, "0", "Text1_5"}, {0, "18", "Text1_2"}, {0, "", "Text1_0"}};
    for (const auto& [index, text, field] : cases) {
        Value<std::string>& value = w.panel.Text1[static_cast<std::size_t>(index)].text;
        const std::string before = value;
        value = std::string(text);
        find<QTabWidget>(w.main, "pages").setCurrentIndex(2);
        w.main.findChild<QAction*>("mnuRecordingStart")->trigger();
        w.clock.run(1s);
        operatorClock.run(1s);
        EXPECT_FALSE(w.module.RecordFlg);
        EXPECT_EQ(nameOf(*w.main.focusWidget()), field);
        value = before;
    }
}

/// The offscreen desktop is smaller than the prescribed window.
TEST_F(Keyboard, TheWindowFitsTheDesktopAndComesBackMaximised) {
    const QRect desktop = w.main.screen()->availableGeometry();
    reopen();
    EXPECT_EQ(w.main.frameGeometry(), QRect({0, 0}, QSize(1024, 747).boundedTo(desktop.size())));
    EXPECT_FALSE(w.main.isMaximized());
    w.shutdown.MDIForm_Unload(WindowPlace{0, 0, 800, 600, true});
    EXPECT_EQ(w.store.values["Station/MainMaximised"], "1");
    reopen();
    EXPECT_TRUE(w.main.isMaximized());
}

} // namespace
} // namespace orvane::test

#include "tests/support/TestWindow.h"
#include "ui/dialogs/QtOperator.h"

#include <QAction>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

namespace orvane::test {
namespace {

/// What the operator is asked and told: starting, closing, exiting.
class Flow : public testing::Test {
  protected:
    JumpingClock clock{at(2006, 11, 15)};
    FakeOperator op{clock};
};

/// The message of a start that fails, as the operator meets it.
TEST_F(Flow, AFailedStartTellsWhyAndCanBeRepaired) {
    struct Case {
        const char *field, *value, *repaired, *message;
    };
    const Case cases[] = {
        {"Text1_0", "18", "9", "You must be Start Time < End Time."},
        {"Text1_2", "", "17", "Please set up 'hour' of a EndTime correctly."},
        {"Text1_5", "0", "30", "'00:00' cannot be set as a Recording Interval."},
    };
    QtOperator asked(clock);
    for (const auto& [field, value, repaired, message] : cases) {
        Window w(asked);
        asked.setParentWindow(&w.main);
        QtOperator real(w.clock);
        real.setParentWindow(&w.main);
        Recording recording(w.module, w.panel, w.schedules, w.settings, w.status, w.log, real,
                            w.wishes, w.clock);
        auto& edit = find<QLineEdit>(w.main, field);
        type(edit, value);
        if (*value == '\0') QTest::keyClick(&edit, Qt::Key_Delete);
        w.tasks.spawn(recording.Command1_Click());
        QMessageBox* box = openBox();
        ASSERT_NE(box, nullptr) << message;
        EXPECT_EQ(box->text(), message);
        EXPECT_EQ(box->icon(), QMessageBox::NoIcon);
        EXPECT_FALSE(find<QWidget>(w.main, "Command1").isEnabled());
        QTest::keyClick(box, Qt::Key_Return);
        w.clock.run(1ms);
        EXPECT_EQ(find<QLabel>(w.main, "Label7").text(), "Ready");
        EXPECT_TRUE(edit.isEnabled());
        EXPECT_FALSE(find<QWidget>(w.main, "UpDown1_6").isEnabled());
        type(edit, repaired);
        click(w.main, "Command1");
        EXPECT_EQ(find<QLabel>(w.main, "Label7").text(), "Recording Standby") << message;
        EXPECT_TRUE(w.module.RecordFlg);
    }
}

TEST_F(Flow, ClosingAsksFirst) {
    QtOperator asked(clock);
    Window w(asked);
    asked.setParentWindow(&w.main);
    w.main.close();
    QMessageBox* box = openBox();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->text(), "Program End ? ");
    EXPECT_EQ(box->windowTitle(), "Orvane");
    EXPECT_EQ(box->icon(), QMessageBox::Warning);
    click(*box->button(QMessageBox::Cancel));
    clock.run(1ms);
    EXPECT_TRUE(w.main.isVisible());
    EXPECT_EQ(w.ended, 0);
    EXPECT_EQ(w.store.values["Operation/StartHour"], "9") << "saved although cancelled";

    w.main.close();
    ASSERT_NE(openBox(), nullptr);
    click(*openBox()->button(QMessageBox::Ok));
    clock.run(1ms);
    EXPECT_FALSE(w.main.isVisible());
    EXPECT_EQ(w.ended, 1);
    const QRect frame = w.main.frameGeometry();
    EXPECT_EQ(w.store.values["Settings/MainWidth"], std::to_string(frame.width() * 15));
    EXPECT_EQ(w.store.values["Settings/MainTop"], std::to_string(frame.top() * 15));
}

TEST_F(Flow, BusyRefusesTheCloseBoxButNotExit) {
    Window w(op);
    const Busy::Hold hold(w.busy);
    QAction* open = w.main.findChild<QAction*>("mnuFileOpen");
    EXPECT_FALSE(open->isEnabled());
    w.main.close();
    EXPECT_EQ(op.beeps, 1);
    EXPECT_TRUE(w.main.isVisible());
    w.main.findChild<QAction*>("mnuFileExit")->trigger();
    EXPECT_EQ(w.ended, 1);
    EXPECT_TRUE(op.asked.empty());
}

TEST_F(Flow, MinimisedWindowStoresNoPlace) {
    Window w(op);
    w.main.showMinimized();
    w.main.close();
    clock.run(2s);
    EXPECT_EQ(w.ended, 1);
    EXPECT_FALSE(w.store.values.contains("Settings/MainLeft"));
}

TEST_F(Flow, MessageBoxGoesWithItsTaskAndItsWindow) {
    QtOperator asked(clock);
    auto window = std::make_unique<QWidget>();
    asked.setParentWindow(window.get());
    Task<bool> task = asked.ask("?");
    task.start();
    ASSERT_NE(openBox(), nullptr);
    task.reset();
    EXPECT_EQ(openBox(), nullptr);

    Task<bool> second = asked.ask("?");
    second.start();
    window.reset();
    clock.run(1ms);
    ASSERT_TRUE(second.done());
    EXPECT_FALSE(second.result());

    Task<> alone = asked.tell("standing alone");
    alone.start();
    ASSERT_NE(openBox(), nullptr);
    EXPECT_EQ(openBox()->icon(), QMessageBox::NoIcon);
    openBox()->close();
    clock.run(1ms);
    EXPECT_TRUE(alone.done());
}

} // namespace
} // namespace orvane::test

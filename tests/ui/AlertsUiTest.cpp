#include "tests/support/TestWindow.h"
#include "ui/dialogs/FrmAlerts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>

namespace orvane::test {
namespace {

/// The dialog, opened by its menu entry.
class AlertsUi : public testing::Test {
  protected:
    AlertsUi() { open(); }
    void open() {
        w.main.findChild<QAction*>("mnuAlerts")->trigger();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
    }
    QString told() const { return find<QLabel>(form, "lblOutcome").text(); }
    void typeIn(const char* name, const QString& text) { type(find<QLineEdit>(form, name), text); }
    void tick(const char* name) {
        QTest::mouseClick(&find<QCheckBox>(form, name), Qt::LeftButton, {}, QPoint(8, 8));
    }
    void fillIn() {
        tick("chkWarnings");
        typeIn("txtHost", "mail.example.org");
        typeIn("txtFrom", "Station South <sky@example.org>");
        typeIn("txtTo", "one@example.org, two@example.org");
    }

    JumpingClock clock{at(2006, 11, 15)};
    FakeOperator op{clock};
    Window w{op};
    QDialog& form = find<QDialog>(w.main, "frmAlerts");
};

TEST_F(AlertsUi, IsOffAtFirstAndStoresWhatIsEntered) {
    EXPECT_FALSE(form.isModal());
    EXPECT_FALSE(find<QCheckBox>(form, "chkWarnings").isChecked());
    EXPECT_FALSE(find<QCheckBox>(form, "chkDaily").isChecked());
    EXPECT_EQ(find<QLineEdit>(form, "txtPassword").echoMode(), QLineEdit::Password);
    fillIn();
    typeIn("txtUser", "sky");
    typeIn("txtPassword", " secret ");
    click(form, "cmdOk");
    EXPECT_FALSE(form.isVisible());
    EXPECT_TRUE(w.alerts.settings().warnings);
    EXPECT_EQ(w.alerts.settings().server.password, " secret ");
    EXPECT_EQ(w.store.values["Station/MailTo"], "one@example.org, two@example.org");
    open();
    typeIn("txtHost", "elsewhere.example.org");
    click(form, "cmdCancel");
    EXPECT_EQ(w.alerts.settings().server.host, "mail.example.org");
    open();
    EXPECT_EQ(find<QLineEdit>(form, "txtHost").text(), "mail.example.org") << "what is in force";
    w.store.readOnly = true;
    click(form, "cmdOk");
    EXPECT_EQ(told(),
              "The settings cannot be stored: see whether their disk is full. They hold until the "
              "program ends.");
}

TEST_F(AlertsUi, ThePortFollowsTheSecurity) {
    auto& security = find<QComboBox>(form, "cmbSecurity");
    auto& port = find<QSpinBox>(form, "spnPort");
    EXPECT_EQ(security.currentText(), "STARTTLS");
    EXPECT_EQ(port.value(), 587);
    const auto choose = [&](Qt::Key key) { QTest::keyClick(&security, key); };
    choose(Qt::Key_Down);
    EXPECT_EQ(port.value(), 465);
    choose(Qt::Key_Up);
    choose(Qt::Key_Up);
    EXPECT_EQ(port.value(), 25);
    port.setValue(2525);
    choose(Qt::Key_Down);
    EXPECT_EQ(port.value(), 2525) << "the operator's own";
}

TEST_F(AlertsUi, AMistakeIsToldAtItsField) {
    fillIn();
    typeIn("txtTo", "one@example.org, nobody");
    click(form, "cmdOk");
    EXPECT_TRUE(form.isVisible());
    EXPECT_EQ(form.focusWidget(), &find<QLineEdit>(form, "txtTo"));
    EXPECT_TRUE(told().startsWith("Please enter the recipients' mail addresses"));
    click(form, "cmdTest");
    EXPECT_EQ(w.mail.tries, 0);
    tick("chkWarnings");
    click(form, "cmdOk");
    EXPECT_FALSE(form.isVisible()) << "what is switched off needs not be right";
}

TEST_F(AlertsUi, ATestShowsItsProgressAndItsOutcome) {
    fillIn();
    w.mail.answer = [](const Mail&) {
        return MailOutcome{"the mail server refused the log-in: 535 5.7.8 <no> & never", {}};
    };
    click(form, "cmdTest");
    EXPECT_EQ(told(), "Sending a test mail...");
    EXPECT_FALSE(find<QPushButton>(form, "cmdTest").isEnabled());
    w.clock.run(5s);
    EXPECT_EQ(told(),
              "No mail was sent: the mail server refused the log-in: 535 5.7.8 <no> & never. "
              "Please correct that and test again.");
    EXPECT_TRUE(find<QPushButton>(form, "cmdTest").isEnabled());
    EXPECT_FALSE(w.alerts.settings().wanted()) << "a test stores nothing";
    w.mail.answer = nullptr;
    click(form, "cmdTest");
    w.clock.run(1s);
    click(form, "cmdCancel");
    w.clock.run(1min);
    EXPECT_TRUE(w.mail.sent.empty()) << "it ends with its window";
    open();
    fillIn();
    click(form, "cmdTest");
    w.clock.run(5s);
    EXPECT_EQ(told(), "The mail server has taken the mail.");
}

} // namespace
} // namespace orvane::test

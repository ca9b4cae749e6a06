#include "tests/ui/WindowTest.h"

#include <QComboBox>
#include <QSpinBox>

namespace orvane::test {
namespace {

/// The dialog of the mails, opened by its menu entry.
class AlertsUi : public WindowTest {
  protected:
    AlertsUi() { open(); }
    void open() {
        trigger("mnuAlerts");
        ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
    }
    std::string told() const { return textOf(form, "lblOutcome"); }
    void typeIn(const char* name, const QString& text) { type(find<QLineEdit>(form, name), text); }
    void fillIn() {
        tick(form, "chkWarnings");
        typeIn("txtHost", "mail.example.org");
        typeIn("txtFrom", "Station South <sky@example.org>");
        typeIn("txtTo", "one@example.org, two@example.org");
    }

    QDialog& form = part<QDialog>("frmAlerts");
};

TEST_F(AlertsUi, IsOffAtFirstAndStoresWhatIsEntered) {
    EXPECT_FALSE(form.isModal());
    for (const char* box : {"chkWarnings", "chkDaily"})
        EXPECT_FALSE(find<QCheckBox>(form, box).isChecked()) << box;
    EXPECT_EQ(find<QLineEdit>(form, "txtPassword").echoMode(), QLineEdit::Password);
    fillIn();
    tick(form, "chkDaily");
    typeIn("txtUser", "sky");
    typeIn("txtPassword", " secret ");
    for (const auto& files : {std::vector{write("own.pem")}, {}}) {
        click(form, "cmdCaFile");
        EXPECT_EQ(answer(files).title, "CA File");
    }
    click(form, "cmdOk");
    EXPECT_FALSE(form.isVisible());
    const MailSettings& stored = w.alerts.settings();
    EXPECT_TRUE(stored.warnings && stored.daily);
    EXPECT_EQ(stored.server.caFile.filename(), "own.pem");
    EXPECT_EQ(w.store.values["Station/MailTo"], "one@example.org, two@example.org");
    open();
    typeIn("txtHost", "elsewhere.example.org");
    click(form, "cmdCancel");
    open();
    const std::tuple<const char*, const std::string&, const char*> fields[] = {
        {"txtHost", stored.server.host, "mail.example.org"},
        {"txtUser", stored.server.user, "sky"},
        {"txtPassword", stored.server.password, " secret "},
        {"txtFrom", stored.from, "Station South <sky@example.org>"},
        {"txtTo", stored.to, "one@example.org, two@example.org"}};
    for (const auto& [name, value, text] : fields) {
        EXPECT_EQ(value, text);
        EXPECT_EQ(find<QLineEdit>(form, name).text(), text) << "what is in force";
    }
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
    for (const auto& [key, expected] :
         {std::pair(Qt::Key_Down, 465), std::pair(Qt::Key_Up, 587), std::pair(Qt::Key_Up, 25)}) {
        QTest::keyClick(&security, key);
        EXPECT_EQ(port.value(), expected);
    }
    port.setValue(2525);
    QTest::keyClick(&security, Qt::Key_Down);
    EXPECT_EQ(port.value(), 2525) << "the operator's own";
}

TEST_F(AlertsUi, AMistakeIsToldAtItsField) {
    fillIn();
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"txtTo", "one@example.org, nobody", "Please enter the recipients' mail addresses"},
        {"txtFrom", "nobody", "sender"},
        {"txtHost", "", "server"}};
    for (const auto& [field, wrong, text] : cases) {
        auto& entered = find<QLineEdit>(form, field);
        const QString right = entered.text();
        entered.setText(wrong);
        for (const char* button : {"cmdTest", "cmdOk"}) {
            click(form, button);
            EXPECT_TRUE(form.isVisible());
            EXPECT_EQ(focusOf(form), field);
            EXPECT_TRUE(has(told(), text));
        }
        entered.setText(right);
    }
    EXPECT_EQ(w.mail.tries, 0);
    typeIn("txtTo", "nobody");
    tick(form, "chkWarnings");
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

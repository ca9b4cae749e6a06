#include "tests/ui/WindowTest.h"

#include <QComboBox>
#include <QDateEdit>
#include <QProgressBar>
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
    void fillIn() {
        tick(form, "chkWarnings");
        for (const auto& [field, text] : entries)
            type(find<QLineEdit>(form, field), text);
    }

    const std::vector<std::pair<const char*, const char*>> entries{
        {"txtHost", "mail.example.org"},
        {"txtUser", "sky"},
        {"txtPassword", " secret "},
        {"txtFrom", "Station South <sky@example.org>"},
        {"txtTo", "one@example.org, two@example.org"}};
    QDialog& form = part<QDialog>("frmAlerts");
};

TEST_F(AlertsUi, IsOffAtFirstAndStoresWhatIsEntered) {
    EXPECT_FALSE(form.isModal());
    for (const char* box : {"chkWarnings", "chkDaily"})
        EXPECT_FALSE(find<QCheckBox>(form, box).isChecked()) << box;
    EXPECT_EQ(find<QLineEdit>(form, "txtPassword").echoMode(), QLineEdit::Password);
    fillIn();
    tick(form, "chkDaily");
    for (const auto& files : {std::vector{write("own.pem")}, {}}) {
        click(form, "cmdCaFile");
        EXPECT_EQ(answer(files).title, "CA File");
    }
    click(form, "cmdOk");
    EXPECT_FALSE(form.isVisible());
    const MailSettings& stored = w.alerts.settings();
    const MailServer& server = stored.server;
    EXPECT_TRUE(stored.warnings && stored.daily);
    EXPECT_EQ(server.caFile.filename(), "own.pem");
    open();
    find<QLineEdit>(form, "txtHost").setText("elsewhere.example.org");
    click(form, "cmdCancel");
    open();
    const std::string values[] = {server.host, server.user, server.password, stored.from,
                                  stored.to};
    for (std::size_t i = 0; i < entries.size(); ++i) {
        EXPECT_EQ(values[i], entries[i].second);
        EXPECT_EQ(find<QLineEdit>(form, entries[i].first).text(), entries[i].second) << "in force";
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
    find<QLineEdit>(form, "txtTo").setText("nobody");
    tick(form, "chkWarnings");
    click(form, "cmdOk");
    EXPECT_FALSE(form.isVisible()) << "what is switched off needs not be right";
}

TEST_F(AlertsUi, ATestShowsItsProgressAndItsOutcome) {
    fillIn();
    w.mail.answer = [](const Mail&) { return MailOutcome{"the log-in: 535 <no> & never", {}}; };
    const QWidget& test = find<QWidget>(form, "cmdTest");
    click(form, "cmdTest");
    EXPECT_EQ(told(), "Sending a test mail...");
    EXPECT_FALSE(test.isEnabled());
    w.clock.run(5s);
    EXPECT_EQ(told(), "No mail was sent: the log-in: 535 <no> & never. Please correct that and "
                      "test again.");
    EXPECT_TRUE(test.isEnabled());
    EXPECT_FALSE(w.alerts.settings().wanted()) << "a test stores nothing";
    w.mail.answer = nullptr;
    click(form, "cmdTest");
    w.clock.run(1s);
    click(form, "cmdCancel");
    w.clock.run(1min);
    EXPECT_TRUE(w.mail.sent.empty()) << "it ends with its window";
    EXPECT_TRUE(test.isEnabled());
}

using StatusPageUi = WindowTest;

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

/// The operator's work on a span of days, with ten pictures of each of the two days before today.
class SpanUi : public WindowTest {
  protected:
    SpanUi() {
        w.panel.Dir1[0].path = w.dataFolder();
        for (const std::string day : {"20061113", "20061114"})
            for (int minute = 10; minute < 20; ++minute)
                write(day + '/' + day + "_09" + std::to_string(minute) + "00_00.jpg");
    }
    static void choose(const QDialog& form, QDate from, QDate to) {
        find<QDateEdit>(form, "dtpFrom").setDate(from);
        find<QDateEdit>(form, "dtpTo").setDate(to);
    }
    static QDate dateIn(const QDialog& form, const char* name) {
        return find<QDateEdit>(form, name).date();
    }
    static std::string told(const QDialog& form) { return textOf(form, "lblOutcome"); }
    static std::string purpose(const QDialog& form) { return textOf(form, "lblPurpose"); }
    /// What can be used while the work goes on, and while it does not.
    static void expectRunning(const QDialog& form, bool running) {
        for (const char* name : {"dtpFrom", "dtpTo", "cmdStart"})
            EXPECT_EQ(find<QWidget>(form, name).isEnabled(), !running) << name;
        EXPECT_EQ(find<QWidget>(form, "cmdCancel").isEnabled(), running);
        EXPECT_EQ(focusOf(form), running ? "cmdCancel" : "cmdClose");
    }

    const QDate today{2006, 11, 15};
};

TEST_F(SpanUi, CopiesAreMadeAnewBesideTheRest) {
    QDialog& form = open("mnuCopiesAnew", "frmCopiesAnew");
    EXPECT_FALSE(form.isModal());
    EXPECT_TRUE(has(purpose(form), " not mirrored, "));
    for (const char* name : {"dtpFrom", "dtpTo"})
        EXPECT_EQ(dateIn(form, name), today);
    choose(form, today.addDays(-1), today.addDays(-2)); // either way round
    QTest::keyClick(&find<QDateEdit>(form, "dtpTo"), Qt::Key_Return);
    w.clock.run(30ms);
    const auto& bar = find<QProgressBar>(form, "prgDays");
    EXPECT_GT(bar.value(), 0);
    EXPECT_LT(bar.value(), bar.maximum() / 2);
    EXPECT_TRUE(told(form).starts_with("2006/11/13, day 1 of 2: picture ")) << told(form);
    expectRunning(form, true);
    EXPECT_FALSE(w.busy.active()) << "the program may be closed at any moment";
    click(form, "cmdClose");
    EXPECT_FALSE(form.isVisible());
    w.clock.run(1s);
    EXPECT_EQ(listDay(w.dataFolder() / "Edit" / "20061114").pictures.size(), 10U);
    w.module.image.LrFlg = asFlag(true);
    trigger("mnuCopiesAnew");
    EXPECT_TRUE(has(purpose(form), ": mirrored, "));
    EXPECT_EQ(told(form), "20 copies made.");
    EXPECT_EQ(bar.value(), bar.maximum());
    EXPECT_EQ(dateIn(form, "dtpFrom"), today.addDays(-1)) << "used last";
    click(form, "cmdStart");
    w.clock.run(30ms);
    click(form, "cmdCancel");
    EXPECT_TRUE(has(told(form), "Cancelled. ")) << "and keeps what is made";
    expectRunning(form, false);
}

TEST_F(SpanUi, TheReportGoesIntoTheFileThatIsChosen) {
    QDialog& form = open("mnuFileReport", "frmDayReport");
    choose(form, today.addDays(-1), today);
    const auto file = w.folder.path() / "days.csv";
    for (const bool chosen : {false, true}) {
        click(form, "cmdStart");
        EXPECT_FALSE(w.report.running) << "nothing is done before there is a file";
        const FileQuestion asked = chosen ? answer({file}) : answer({});
        EXPECT_EQ(asked.title, "Save Report");
        EXPECT_EQ(asked.name, "orvane-20061114-20061115.csv");
        w.clock.run(1s);
        EXPECT_EQ(told(form), chosen ? "days.csv is written." : "");
    }
    EXPECT_TRUE(has(contentsOf(file), "09:10:00,09:19:00,"));
}

TEST_F(SpanUi, AFilmIsOfTheDayInViewAndAsTheOptionsSay) {
    w.module.image.LrFlg = asFlag(true);
    QDialog& form = open("mnuDaySaveFilm", "frmFilmFile");
    EXPECT_TRUE(has(purpose(form), ", mirrored, "));
    EXPECT_EQ(dateIn(form, "dtpFrom"), today);
    choose(form, today.addDays(-1), today.addDays(-1));
    find<QComboBox>(form, "cboSize").setCurrentIndex(2);
    find<QSpinBox>(form, "spnRate").setValue(5);
    click(form, "chkStamp");
    click(form, "cmdStart");
    const FileQuestion asked = answer({w.folder.path() / "day.mp4"});
    EXPECT_EQ(asked.title, "Save Film");
    EXPECT_EQ(asked.name, "orvane-20061114.mp4");
    EXPECT_FALSE(find<QWidget>(form, "spnRate").isEnabled());
    w.clock.run(10s);
    EXPECT_EQ(told(form), "day.mp4 is written: 10 pictures, 2.0 s.");
    EXPECT_TRUE(find<QWidget>(form, "spnRate").isEnabled());
    std::string arguments;
    for (const std::string& argument : w.process.arguments)
        arguments += argument + ' ';
    for (const char* expected : {" 5 ", "scale=", ":720:"})
        EXPECT_TRUE(has(arguments, expected));
    EXPECT_TRUE(has(contentsOf(w.folder.path() / "day.mp4"), std::string(1, '\0')));
    form.close();
    trigger("mnuDaySaveFilm");
    EXPECT_EQ(dateIn(form, "dtpTo"), today) << "the day in view again";
}

TEST_F(SpanUi, WithoutFfmpegTheOperatorIsToldAndMayChooseOne) {
    w.process.installed = false;
    QDialog& form = open("mnuDaySaveFilm", "frmFilmFile");
    EXPECT_TRUE(has(purpose(form), "apt-get install ffmpeg"));
    const auto program = w.folder.path() / "ffmpeg of mine";
    writeFile(program, "a program");
    click(form, "cmdFfmpeg");
    EXPECT_EQ(answer({program}).title, "Choose ffmpeg");
    EXPECT_TRUE(has(purpose(form), "ffmpeg of mine"));
    EXPECT_TRUE(has(w.store.values["Station/Ffmpeg"], "ffmpeg of mine"));
}

} // namespace
} // namespace orvane::test

#include "ui/dialogs/FrmAlerts.h"

#include "ui/Layout.h"
#include "ui/Text.h"
#include "ui/panel/PanelControls.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QShowEvent>
#include <QSpinBox>
#include <QToolTip>

namespace orvane {
namespace {

// Pixels, and room for a server's longer replies: else the dialog would grow under the pointer.
constexpr int kTextWidth = 460;
constexpr int kTextLines = 3;

QLineEdit* field(const char* name, const QString& tip) {
    return control<QLineEdit>(name, {}, tip);
}

/// Captions and what they belong to, in rows.
QGridLayout* grid(std::initializer_list<std::pair<QLabel*, Item>> rows) {
    auto* layout = new QGridLayout;
    int at = 0;
    for (const auto& [caption, item] : rows) {
        layout->addWidget(caption, at, 0);
        if (item.widget != nullptr) {
            layout->addWidget(item.widget, at, 1);
        } else {
            layout->addLayout(item.layout, at, 1);
        }
        ++at;
    }
    return layout;
}

} // namespace

FrmAlerts::FrmAlerts(Alerts& alerts, Faults& faults, QWidget* parent)
    : QDialog(parent), alerts_(alerts), tasks_(faults.teller("Alerts")) {
    outcome_ = control<QLabel>("lblOutcome", {});
    // A server's reply may stand in it.
    outcome_->setTextFormat(Qt::PlainText);
    outcome_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    outcome_->setWordWrap(true);
    outcome_->setFixedWidth(kTextWidth);
    outcome_->setMinimumHeight(kTextLines * outcome_->fontMetrics().lineSpacing());
    outcome_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    setUp(*this, "frmAlerts", "Alerts",
          {newsGroup(), serverGroup(), addressGroup(), outcome_, buttons()});
}

QGroupBox* FrmAlerts::newsGroup() {
    warnings_ =
        control<QCheckBox>("chkWarnings", "&Warnings",
                           "Mails a warning that has stood for ten minutes, and that it has gone.");
    daily_ = control<QCheckBox>("chkDaily", "&Daily report",
                                "Mails how the day was, ten minutes after the recording time's "
                                "end.");
    return dialogGroup("Send by e-mail", row({warnings_, daily_, Item()}, 16));
}

QGroupBox* FrmAlerts::serverGroup() {
    host_ = field("txtHost", "The name of the mail server that takes mails to be sent.");
    user_ = field("txtUser", "The user's name for the log-in; empty: there is no log-in.");
    password_ = field("txtPassword", "The user's password. The system keeps it for you alone.");
    password_->setEchoMode(QLineEdit::Password);
    QLayout* login = row({{user_, 1}, captionOf(password_, "&Password"), {password_, 1}}, 8);
    QLayout* security = portRow();
    QLayout* caFile = caFileRow();
    return dialogGroup("Mail server", grid({{captionOf(host_, "Ser&ver"), host_},
                                            {captionOf(security_, "Se&curity"), security},
                                            {captionOf(user_, "&User"), login},
                                            {captionOf(caFile_, "C&A file"), caFile}}));
}

QLayout* FrmAlerts::portRow() {
    security_ = new QComboBox;
    security_->setObjectName("cmbSecurity");
    security_->setToolTip("How the connection is kept from being read. What is chosen holds, or "
                          "no mail is sent.");
    security_->addItems({"None", "STARTTLS", "TLS (SMTPS)"}); // as MailSecurity counts
    port_ = new QSpinBox;
    port_->setObjectName("spnPort");
    port_->setToolTip("The server's port; usually 25, 587 or 465.");
    port_->setRange(1, 65535);
    // Chosen by the operator only: what `Form_Activate` shows has its own port.
    connect(security_, &QComboBox::activated, this, &FrmAlerts::cmbSecurity_Click);
    return row({security_, captionOf(port_, "P&ort"), port_, Item()}, 8);
}

QLayout* FrmAlerts::caFileRow() {
    caFile_ = field("txtCaFile", "A file of certificates (PEM) that are trusted besides the "
                                 "system's, for a private server; else empty.");
    auto* choose = control<QPushButton>("cmdCaFile", "&Browse...", "Chooses the file.");
    choose->setAutoDefault(false);
    connect(choose, &QPushButton::clicked, this, &FrmAlerts::cmdCaFile_Click);
    return row({{caFile_, 1}, choose});
}

QGroupBox* FrmAlerts::addressGroup() {
    from_ = field("txtFrom", "The sender's address, also with the station's name: Station South "
                             "<sky@example.org>.");
    to_ = field("txtTo", "The recipients' addresses, with commas between them.");
    return dialogGroup("Addresses", grid({{captionOf(from_, "S&ender"), from_},
                                          {captionOf(to_, "&Recipients"), to_}}));
}

QLayout* FrmAlerts::buttons() {
    test_ = control<QPushButton>("cmdTest", "Send &Test",
                                 "Sends a mail with what is entered, and tells what became of it.");
    test_->setAutoDefault(false);
    auto* ok = control<QPushButton>("cmdOk", "OK", "Takes over what is entered.");
    ok->setDefault(true);
    auto* cancel = control<QPushButton>("cmdCancel", "Cancel", "Leaves everything as it was.");
    cancel->setAutoDefault(false);
    connect(test_, &QPushButton::clicked, this, &FrmAlerts::cmdTest_Click);
    connect(ok, &QPushButton::clicked, this, &FrmAlerts::cmdOk_Click);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    return buttonRow({test_, ok, cancel});
}

void FrmAlerts::bring() {
    show();
    raise();
    activateWindow();
}

void FrmAlerts::done(int result) {
    tasks_.clear(); // a test that is under way
    test_->setEnabled(true);
    QDialog::done(result);
}

void FrmAlerts::showEvent(QShowEvent* event) {
    // Not when a minimised window comes back: what is being entered stays.
    if (!event->spontaneous()) Form_Activate();
    QDialog::showEvent(event);
}

void FrmAlerts::Form_Activate() {
    const MailSettings& settings = alerts_.settings();
    const MailServer& server = settings.server;
    warnings_->setChecked(settings.warnings);
    daily_->setChecked(settings.daily);
    host_->setText(toQString(server.host));
    shownSecurity_ = server.security;
    security_->setCurrentIndex(static_cast<int>(server.security));
    port_->setValue(server.port);
    user_->setText(toQString(server.user));
    password_->setText(toQString(server.password));
    caFile_->setText(toQString(server.caFile));
    from_->setText(toQString(settings.from));
    to_->setText(toQString(settings.to));
    tell({});
    warnings_->setFocus();
}

/// The port goes along, unless the operator has entered another one.
void FrmAlerts::cmbSecurity_Click() {
    const MailSecurity chosen = entered().server.security;
    if (port_->value() == usualPort(shownSecurity_)) port_->setValue(usualPort(chosen));
    shownSecurity_ = chosen;
}

void FrmAlerts::cmdCaFile_Click() {
    auto* dialog = new QFileDialog(this, "CA File", caFile_->text(),
                                   "Certificates (*.pem *.crt *.cer);;All (*)");
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, caFile_, &QLineEdit::setText);
    openOnce(dialog);
}

MailSettings FrmAlerts::entered() const {
    const auto text = [](const QLineEdit* from) { return from->text().trimmed().toStdString(); };
    MailSettings settings;
    settings.warnings = warnings_->isChecked();
    settings.daily = daily_->isChecked();
    settings.from = text(from_);
    settings.to = text(to_);
    settings.server.host = text(host_);
    settings.server.port = port_->value();
    settings.server.security = static_cast<MailSecurity>(security_->currentIndex());
    settings.server.user = text(user_);
    // Not trimmed: a blank may belong to it.
    settings.server.password = password_->text().toStdString();
    settings.server.caFile = toPath(caFile_->text().trimmed());
    return settings;
}

QLineEdit* FrmAlerts::fieldOf(MailField field) const {
    switch (field) {
    case MailField::Host:
        return host_;
    case MailField::Password:
        return password_;
    case MailField::CaFile:
        return caFile_;
    case MailField::From:
        return from_;
    case MailField::To:
        break;
    }
    return to_;
}

/// A mistake is told where it is.
bool FrmAlerts::isUsable(const MailSettings& settings) {
    const auto mistake = mistakeIn(settings);
    if (!mistake) return true;
    const QString text = toQString(mistake->text);
    QLineEdit* field = fieldOf(mistake->field);
    tell(text);
    field->setFocus();
    field->selectAll();
    // Beside the field as well, where the operator looks; it goes by itself.
    QToolTip::showText(field->mapToGlobal(QPoint(0, field->height())), text, field);
    return false;
}

void FrmAlerts::tell(const QString& text) {
    outcome_->setText(text);
}

void FrmAlerts::cmdTest_Click() {
    port_->interpretText(); // it may just be typed
    const MailSettings settings = entered();
    if (isUsable(settings)) tasks_.spawn(test(this, settings));
}

Task<> FrmAlerts::test(QPointer<FrmAlerts> form, MailSettings settings) {
    form->test_->setEnabled(false);
    form->tell("Sending a test mail...");
    Task<std::string> testing = form->alerts_.test(std::move(settings));
    const std::string told = co_await testing;
    if (form == nullptr) co_return;
    form->tell(toQString(told));
    form->test_->setEnabled(true);
}

/// Where no mails are wanted, nothing needs to be right.
void FrmAlerts::cmdOk_Click() {
    port_->interpretText();
    const MailSettings settings = entered();
    if (settings.wanted() && !isUsable(settings)) return;
    // In force even when they cannot be stored; the dialog then stays, and says so.
    if (const Fault fault = alerts_.use(settings))
        return tell(toQString(*fault + " They hold until the program ends."));
    accept();
}

} // namespace orvane

#pragma once

#include "core/Alerts.h"
#include "station/TaskGroup.h"

#include <QDialog>
#include <QPointer>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

namespace orvane {

/// What the station mails, to whom and by which server. It does not hold up the rest of the
/// program. The fields show what is in force whenever it opens, and take effect with OK; a test
/// uses them as they stand, and ends with the dialog. The main window owns it, and it is only
/// hidden when it closes. What went wrong is told in the dialog, not in a box: nothing that is
/// entered is lost.
class FrmAlerts : public QDialog {
  public:
    /// `alerts` and `faults` outlive the dialog.
    FrmAlerts(Alerts& alerts, Faults& faults, QWidget* parent = nullptr);

    /// Brings the dialog before the operator.
    void bring();
    void done(int result) override;

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    QGroupBox* newsGroup();
    QGroupBox* serverGroup();
    QGroupBox* addressGroup();
    QLayout* buttons();
    QLayout* portRow();
    QLayout* caFileRow();
    void Form_Activate();
    void cmbSecurity_Click();
    void cmdCaFile_Click();
    void cmdTest_Click();
    void cmdOk_Click();
    MailSettings entered() const;
    bool isUsable(const MailSettings& settings);
    QLineEdit* fieldOf(MailField field) const;
    void tell(const QString& text);
    static Task<> test(QPointer<FrmAlerts> form, MailSettings settings);

    Alerts& alerts_;
    QCheckBox* warnings_ = nullptr;
    QCheckBox* daily_ = nullptr;
    QLineEdit* host_ = nullptr;
    QComboBox* security_ = nullptr;
    QSpinBox* port_ = nullptr;
    QLineEdit* user_ = nullptr;
    QLineEdit* password_ = nullptr;
    QLineEdit* caFile_ = nullptr;
    QLineEdit* from_ = nullptr;
    QLineEdit* to_ = nullptr;
    QLabel* outcome_ = nullptr;
    QPushButton* test_ = nullptr;
    MailSecurity shownSecurity_ = MailSecurity::StartTls; ///< that the port belongs to
    TaskGroup tasks_;
};

} // namespace orvane

#pragma once

#include "station/TaskGroup.h"
#include "tracker/TrackerOptions.h"
#include "ui/panel/PanelControls.h"

#include <QDialog>
#include <QPointer>

class QFormLayout;
class QLabel;
class QProgressBar;

namespace orvane {

/// The tracker's options: read when the dialog opens, written back by "Send". Locked, and not to be
/// closed, while an exchange runs: each ends by itself, within 15 s. The main window
/// owns it, and hides it when it closes.
class frmOption : public QDialog {
  public:
    /// All three outlive the dialog.
    frmOption(OptionForm& form, TrackerOptions& options, TaskGroup& tasks,
              QWidget* parent = nullptr);

    void reject() override;

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    QWidget* fields();
    QLabel* status();
    QWidget* buttons();
    QLineEdit* addField(QFormLayout& layout, const Face& face, TextBox& model,
                        PanelControls::Handler change = {}, QWidget* beside = nullptr);
    void followWorking(bool working);

    OptionForm& form_;
    TrackerOptions& options_;
    TaskGroup& tasks_;
    QWidget* fields_ = nullptr;
    QWidget* buttons_ = nullptr;
    QProgressBar* bar_ = nullptr;
    QPointer<QWidget> focus_; ///< had the focus before the controls were locked
    PanelControls controls_;
};

} // namespace orvane

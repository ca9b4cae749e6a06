#pragma once

#include "station/TaskGroup.h"
#include "tracker/PortSelection.h"

#include <QDialog>
#include <QPointer>

#include <array>

class QPushButton;
class QRadioButton;

namespace orvane {

/// Chooses the tracker's port. Those that are not there when it opens are marked, but can be
/// chosen: their adapter may be plugged in yet. OK tries the port first: the dialog stays open,
/// with the old port stored, when it cannot be opened. The main window owns it, and it is only
/// hidden when it closes.
class FrmComPort : public QDialog {
  public:
    /// Both outlive the dialog.
    FrmComPort(PortSelection& ports, TaskGroup& tasks, QWidget* parent = nullptr);

    /// Whether a port may be tried; not while an exchange uses it.
    void setPortFree(bool free);

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void Form_Activate();
    void Command1_Click();
    static Task<> confirm(QPointer<FrmComPort> form, std::optional<int> index);
    std::optional<int> selected() const;

    PortSelection& ports_;
    TaskGroup& tasks_;
    std::array<QRadioButton*, 4> Option1_{};
    QPushButton* Command1_ = nullptr;
};

} // namespace orvane

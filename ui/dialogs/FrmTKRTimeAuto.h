#pragma once

#include "station/TaskGroup.h"
#include "tracker/TimeSetting.h"
#include "ui/panel/PanelControls.h"

#include <QDialog>

class QGridLayout;
class QLabel;

namespace orvane {

/// Shows how the clocks of camera and tracker are set. Opening it sets the camera's clock;
/// `openAutomatic` leaves that to the daily run. It stays open while a procedure runs: Esc and the
/// close box do nothing then, only the daily run takes it away. The main window owns it, and hides
/// it when it closes, so that its form has one window for good. Not modal: captures and the panel
/// go on.
class FrmTKRTimeAuto : public QDialog {
  public:
    /// All three outlive the dialog.
    FrmTKRTimeAuto(TimeSettingForm& form, TimeSetting& timeSetting, TaskGroup& tasks,
                   QWidget* parent = nullptr);

    /// Brings the dialog before the operator and, if it was not open yet, sets the camera's clock.
    void openManual();
    /// Shows the dialog without taking the focus from what the operator is doing.
    void openAutomatic();
    /// Closes the dialog, whatever is running.
    void unload() { done(Rejected); }

    void reject() override;

  protected:
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    QGridLayout* outcomes();
    QLayout* buttons();
    void addOutcome(QGridLayout& grid, int row, const QString& caption, std::size_t index,
                    const Face& face);
    void applyColours();

    TimeSettingForm& form_;
    TimeSetting& timeSetting_;
    TaskGroup& tasks_;
    std::array<QLabel*, 2> Label2_{};
    PanelControls controls_;
};

} // namespace orvane

#pragma once

#include "core/AutoStart.h"
#include "ui/panel/Bindings.h"

#include <QDialog>

namespace orvane {

/// The countdown dialog, the program's first window. Its close box and Esc are "Cancel": ending the
/// program takes the button that says so. All its exits are `AutoStart`'s, which also counts; what
/// comes of them has the dialog closed by `closeDialog`.
class Frm_AutoStart : public QDialog {
  public:
    /// Starts the countdown.
    explicit Frm_AutoStart(AutoStart& autoStart, QWidget* parent = nullptr);

    /// Takes the dialog off the screen without an exit of its own.
    void closeDialog() { done(QDialog::Accepted); }
    void reject() override { autoStart_.Command1_Click(); }

  protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    QLayout* message();
    QLayout* buttons();

    AutoStart& autoStart_;
    Bindings bindings_;
};

} // namespace orvane

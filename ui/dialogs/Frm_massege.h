#pragma once

#include "station/Warnings.h"
#include "ui/panel/Bindings.h"

#include <QDialog>

class QLabel;

namespace orvane {

/// The warning window. It opens by itself, without taking the focus, whenever there is a new
/// warning, and closes by itself when the last one's cause has gone. Never modal. Closed by the
/// operator it is only hidden, and comes with the next warning. It shows all that stand, not the
/// last one only.
class Frm_massege : public QDialog {
  public:
    explicit Frm_massege(Warnings& warnings, QWidget* parent = nullptr);

  private:
    void follow(const std::string& text);

    const Warnings& warnings_;
    QLabel* text_;
    Bindings bindings_;
};

} // namespace orvane

#pragma once

#include <QWidget>

class QLineEdit;

namespace orvane {

/// The two arrow buttons beside a numeric field. The field's Up and Down keys and, while it has the
/// focus, its wheel step too. It stops at its limits; it does not write into the field: the
/// station's handler does, so that stepping and typing take the same way.
class UpDown : public QWidget {
    Q_OBJECT

  public:
    UpDown(QLineEdit& field, int maximum, QWidget* parent = nullptr);

    int value() const { return value_; }
    /// Clamps to 0..maximum. Tells nobody.
    void setValue(int value);

  signals:
    /// The operator stepped to `value`.
    void stepped(int value);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void addArrow(Qt::ArrowType arrow, int by);
    void step(int by);

    QLineEdit& field_;
    int maximum_;
    int value_ = 0;
    int wheel_ = 0; ///< rest of a wheel turn that was less than a step
};

} // namespace orvane

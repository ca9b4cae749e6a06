#include "ui/panel/UpDown.h"

#include "ui/Layout.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QToolButton>
#include <QWheelEvent>

#include <algorithm>

namespace orvane {

UpDown::UpDown(QLineEdit& field, int maximum, QWidget* parent)
    : QWidget(parent), field_(field), maximum_(maximum) {
    fill(*this, column({}, 0));
    addArrow(Qt::UpArrow, +1);
    addArrow(Qt::DownArrow, -1);
    const int height = field.sizeHint().height();
    setFixedSize(height * 3 / 4, height);
    // Keys and wheel arrive at the field, which has the focus.
    field.installEventFilter(this);
}

void UpDown::addArrow(Qt::ArrowType arrow, int by) {
    auto* button = new QToolButton(this);
    button->setObjectName(by > 0 ? "up" : "down");
    button->setAccessibleName(by > 0 ? "Increase" : "Decrease");
    button->setArrowType(arrow);
    button->setAutoRepeat(true);
    button->setFocusPolicy(Qt::NoFocus); // the keyboard steps in the field itself
    // Two of them share the field's height, which is less than a tool button wants.
    button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    connect(button, &QToolButton::clicked, this, [this, by] { step(by); });
    layout()->addWidget(button);
}

void UpDown::setValue(int value) {
    value_ = std::clamp(value, 0, maximum_);
}

void UpDown::step(int by) {
    const int next = std::clamp(value_ + by, 0, maximum_);
    if (!isEnabled() || next == value_) return;
    value_ = next;
    emit stepped(value_);
}

bool UpDown::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Up || key == Qt::Key_Down) {
            step(key == Qt::Key_Up ? +1 : -1);
            return true;
        }
    }
    // Without the focus the wheel scrolls the panel: passing over a field must not change it.
    if (event->type() == QEvent::Wheel && field_.hasFocus()) {
        // Touch pads and fine wheels send parts of a step.
        wheel_ += static_cast<QWheelEvent*>(event)->angleDelta().y();
        step(wheel_ / QWheelEvent::DefaultDeltasPerStep);
        wheel_ %= QWheelEvent::DefaultDeltasPerStep;
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace orvane

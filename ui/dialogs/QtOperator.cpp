#include "ui/dialogs/QtOperator.h"

#include "ui/Text.h"

#include <QApplication>
#include <QMessageBox>

namespace orvane {
namespace {

/// An open box and the end of its showing. Lives in the frame of the task that waits for it.
class OpenBox {
  public:
    OpenBox(Clock& clock, QWidget* window, QMessageBox::Icon icon, const std::string& text,
            QMessageBox::StandardButtons buttons,
            QMessageBox::StandardButton standing = QMessageBox::Ok)
        : closed(clock), box_(new QMessageBox(icon, "Orvane", toQString(text), buttons, window)) {
        // What a camera answers or a file is called may look like markup.
        box_->setTextFormat(Qt::PlainText);
        box_->setDefaultButton(standing);
        QObject::connect(box_, &QMessageBox::finished, box_, [this](int result) {
            result_ = result;
            closed.fire();
        });
        // With its window, without an answer: the task must not wait for ever.
        QObject::connect(box_, &QObject::destroyed, box_, [this] { closed.fire(); });
        box_->open();
    }
    OpenBox(const OpenBox&) = delete;
    OpenBox& operator=(const OpenBox&) = delete;
    ~OpenBox() {
        if (box_ == nullptr) return;
        // The task is being destroyed: nothing may call back, and the box cannot outlive it.
        box_->disconnect();
        delete box_.data();
    }

    bool accepted() const { return result_ == QMessageBox::Ok || result_ == QMessageBox::Yes; }

    Signal closed;

  private:
    QPointer<QMessageBox> box_;
    int result_ = QMessageBox::Cancel;
};

/// The dialog in use, which the box then stands before and gives the keys back to; else `window`.
/// Not another box: it may go with its task while this one is still to be answered.
QWidget* dialogInUse(QWidget* window) {
    QWidget* active = QApplication::activeWindow();
    const bool isDialog = active != nullptr && active->isModal();
    return isDialog && qobject_cast<QMessageBox*>(active) == nullptr ? active : window;
}

} // namespace

Task<> QtOperator::tell(std::string text) {
    OpenBox box(clock_, dialogInUse(window_), QMessageBox::NoIcon, text, QMessageBox::Ok);
    co_await box.closed;
}

Task<bool> QtOperator::ask(std::string text) {
    OpenBox box(clock_, dialogInUse(window_), QMessageBox::Warning, text,
                QMessageBox::Ok | QMessageBox::Cancel);
    co_await box.closed;
    co_return box.accepted();
}

Task<bool> QtOperator::confirm(std::string text) {
    OpenBox box(clock_, dialogInUse(window_), QMessageBox::Warning, text,
                QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
    co_await box.closed;
    co_return box.accepted();
}

void QtOperator::beep() {
    QApplication::beep();
}

} // namespace orvane

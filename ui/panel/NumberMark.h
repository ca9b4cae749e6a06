#pragma once

#include <QObject>
#include <QString>

class QLineEdit;

namespace orvane {

/// Marks a field whose text is not the number it should be, and says so in its tool tip.
class NumberMark : public QObject {
  public:
    /// `tip` is the field's tool tip while its text is fine.
    NumberMark(QString tip, QObject* parent) : QObject(parent), tip_(std::move(tip)) {}

    void watch(QLineEdit& field) { field_ = &field; }
    void setValid(bool valid);

  private:
    QString tip_;
    QLineEdit* field_ = nullptr;
};

} // namespace orvane

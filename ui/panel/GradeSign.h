#pragma once

#include "station/OperationPanel.h"

#include <QWidget>

namespace orvane {

/// A small sign for a grade, told apart by its shape as well as by its colour: a ring while
/// recording is off, a disc when all is well, a triangle for attention, a cross in a square for
/// trouble. As high as a line of its font. What it means in words is its owner's to say, in the
/// tool tip and the accessible name.
class GradeSign : public QWidget {
  public:
    explicit GradeSign(QWidget* parent = nullptr);

    void show(Grade grade);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void paint(QPainter& painter, const QColor& colour) const;

    Grade grade_ = Grade::Off;
};

/// The colour that stands for a grade, to be seen on a light or a dark window.
QColor colourOf(Grade grade, bool dark);

} // namespace orvane

#include "ui/pictures/PictureArea.h"

#include <QStyle>

namespace orvane {
namespace {

/// A sub-window that Tab goes through instead of going round in it.
class PictureFrame : public QMdiSubWindow {
  public:
    explicit PictureFrame(PictureArea& area) : area_(area) {}

  protected:
    bool focusNextPrevChild(bool next) override { return area_.focusNextPrevChild(next); }

  private:
    PictureArea& area_;
};

} // namespace

PictureArea::PictureArea(QWidget* parent) : QMdiArea(parent) {
    setAccessibleName("Pictures");
    setBackground(palette().color(QPalette::Window).darker(125));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
}

QMdiSubWindow& PictureArea::add(QWidget& window, QSize size) {
    constexpr int kStep = 26;
    constexpr int kSteps = 7;
    const int offset = static_cast<int>(subWindowList().size()) % kSteps * kStep;
    auto* frame = new PictureFrame(*this);
    frame->setWidget(&window);
    addSubWindow(frame);
    frame->setAttribute(Qt::WA_DeleteOnClose);
    // The default pictogram of a sub-window says nothing about a picture.
    frame->setWindowIcon(style()->standardIcon(QStyle::SP_FileDialogContentsView));
    frame->setGeometry(QRect({offset, offset}, size));
    frame->show();
    return *frame;
}

void PictureArea::bring(const QWidget& window) {
    setActiveSubWindow(qobject_cast<QMdiSubWindow*>(window.parentWidget()));
}

void PictureArea::resizeEvent(QResizeEvent* event) {
    const QRect before = filled_;
    QMdiArea::resizeEvent(event);
    filled_ = viewport()->rect();
    for (QMdiSubWindow* frame : subWindowList())
        if (!frame->isMaximized() && !frame->isMinimized() && frame->geometry() == before)
            fill(*frame);
}

} // namespace orvane

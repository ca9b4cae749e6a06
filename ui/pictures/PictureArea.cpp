#include "ui/pictures/PictureArea.h"

#include "ui/pictures/PictureView.h"
#include "ui/pictures/Tiles.h"

#include <QEvent>
#include <QScrollBar>
#include <QStyle>

#include <algorithm>
#include <utility>

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

/// What shows no picture, or none yet, is taken for one of the usual shape.
Tile tileOf(const QMdiSubWindow& frame) {
    constexpr QSize kUsual(4, 3);
    const auto* view = frame.findChild<PictureView*>();
    const bool shows = view != nullptr && view->hasPicture();
    const QSize inner = view != nullptr ? view->size() : frame.widget()->size();
    return {shows ? view->pictureSize() : kUsual, frame.size() - inner,
            frame.minimumSizeHint().expandedTo(frame.minimumSize())};
}

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
    // Title bars stay in sight; after seven the steps begin anew.
    const int offset = static_cast<int>(subWindowList().size()) % kSteps * kStep;
    auto* frame = new PictureFrame(*this);
    frame->setWidget(&window);
    addSubWindow(frame);
    frame->setAttribute(Qt::WA_DeleteOnClose);
    // The default pictogram of a sub-window says nothing about a picture.
    frame->setWindowIcon(style()->standardIcon(QStyle::SP_FileDialogContentsView));
    frame->setGeometry(QRect({offset, offset}, size));
    frame->show();
    followWindows();
    return *frame;
}

void PictureArea::bring(const QWidget& window) {
    setActiveSubWindow(qobject_cast<QMdiSubWindow*>(window.parentWidget()));
}

/// Hidden windows are about to be deleted.
QList<QMdiSubWindow*> PictureArea::framesToTile() const {
    QList<QMdiSubWindow*> frames;
    for (QMdiSubWindow* frame : subWindowList())
        if (frame->isVisible() && !frame->isMinimized()) frames << frame;
    return frames;
}

void PictureArea::tile() {
    const QList<QMdiSubWindow*> frames = framesToTile();
    QMdiSubWindow* front = currentSubWindow();
    for (QMdiSubWindow* frame : frames)
        if (frame->isMaximized()) frame->showNormal();
    // `showNormal` brings each window forward.
    if (front != nullptr) setActiveSubWindow(front);
    lay(frames);
}

void PictureArea::lay(const QList<QMdiSubWindow*>& frames) {
    std::vector<Tile> tiles;
    for (const QMdiSubWindow* frame : frames)
        tiles.push_back(tileOf(*frame));
    // Places count from the corner that is in sight.
    for (QScrollBar* bar : {horizontalScrollBar(), verticalScrollBar()})
        bar->setValue(0);
    const QSize room = maximumViewportSize();
    std::vector<QRect> places = tilesIn(room, tiles);
    // Those that go on below need a scroll bar, which takes its width from them.
    if (!places.empty() && places.back().bottom() >= room.height())
        places = tilesIn(room - QSize(verticalScrollBar()->sizeHint().width(), 0), tiles);
    tiles_.clear();
    for (qsizetype i = 0; i < frames.size(); ++i) {
        frames[i]->setGeometry(places[static_cast<std::size_t>(i)]);
        // As it was placed, which need not be as it was told: a window has a least size.
        tiles_.append({frames[i], frames[i]->geometry()});
    }
}

bool PictureArea::isTiled() const {
    const QList<QMdiSubWindow*> frames = framesToTile();
    return !tiles_.isEmpty() && std::ranges::equal(frames, tiles_, [](auto* frame, auto& tile) {
        return frame == tile.first && !frame->isMaximized() && frame->geometry() == tile.second;
    });
}

bool PictureArea::viewportEvent(QEvent* event) {
    const bool done = QMdiArea::viewportEvent(event);
    // A window has gone for good only when it is no child any more: no signal of the area tells
    // that.
    if (event->type() == QEvent::ChildRemoved) followWindows();
    return done;
}

void PictureArea::followWindows() {
    if (std::exchange(wasEmpty_, isEmpty()) != wasEmpty_) emit emptied(wasEmpty_);
}

void PictureArea::resizeEvent(QResizeEvent* event) {
    const QRect before = filled_;
    // Asked before the base class has a say in the windows' places.
    const bool tiled = isTiled();
    QMdiArea::resizeEvent(event);
    filled_ = viewport()->rect();
    if (tiled) return lay(framesToTile());
    for (QMdiSubWindow* frame : subWindowList())
        if (!frame->isMaximized() && !frame->isMinimized() && frame->geometry() == before)
            fill(*frame);
}

} // namespace orvane

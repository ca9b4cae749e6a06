#include "ui/pictures/PictureView.h"

#include "ui/pictures/TrimRectangle.h"

#include <QKeyEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace orvane {
namespace {

constexpr double kPanKey = 0.1; ///< of the view, for one arrow key
constexpr int kLargeStep = 20;  ///< pixels of the picture, for one arrow key with Ctrl

/// The way of an arrow key, one pixel long; null for another key.
QPoint arrowOf(int key) {
    if (key == Qt::Key_Left) return {-1, 0};
    if (key == Qt::Key_Right) return {1, 0};
    if (key == Qt::Key_Up) return {0, -1};
    return {0, key == Qt::Key_Down ? 1 : 0};
}

} // namespace

PictureView::PictureView(QWidget* parent) : QWidget(parent) {
    setObjectName("picture");
    // Each paint covers everything, so nothing needs to be cleared before.
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void PictureView::setPicture(const QImage& reduced, QSize full) {
    // Another size is another camera or setting: a rectangle means nothing in it.
    if (full != size_) rectangle_ = lastRectangle_ = {};
    reduced_ = reduced;
    full_ = {};
    size_ = full;
    text_.clear();
    geometry_.setPicture(size_);
    moved();
}

void PictureView::showText(const QString& text) {
    setPicture({}, {});
    text_ = text;
    trimming_ = false;
    moved();
}

void PictureView::setFull(const QImage& full) {
    if (full.size() != size_ || !needsFull()) return;
    full_ = full;
    update();
}

void PictureView::zoomBy(double factor) {
    geometry_.zoomBy(factor, geometry_.centreOfView());
    moved();
}
void PictureView::zoomIn() {
    zoomBy(ViewGeometry::kStep);
}
void PictureView::zoomOut() {
    zoomBy(1 / ViewGeometry::kStep);
}
void PictureView::zoomFit() {
    geometry_.fit();
    moved();
}
void PictureView::zoomActual() {
    geometry_.zoomTo(1, geometry_.centreOfView());
    moved();
}

void PictureView::markRectangle() {
    if (!hasPicture()) return;
    trimming_ = true;
    rectangle_ =
        lastRectangle_.isNull() ? middleOf(geometry_.visiblePart(), size_) : lastRectangle_;
    geometry_.bringIntoView(rectangle_);
    moved();
}

void PictureView::clearRectangle() {
    if (!rectangle_.isNull()) lastRectangle_ = rectangle_;
    rectangle_ = {};
    trimming_ = false;
    if (drag_ == Drag::Rectangle) drag_ = Drag::None;
    moved();
}

/// What follows every change of zoom, place or rectangle.
void PictureView::moved() {
    update();
    updateCursor();
    emit changed();
    if (!needsFull()) {
        full_ = {};
    } else if (full_.isNull()) {
        emit fullWanted();
    }
}

bool PictureView::needsFull() const {
    if (!hasPicture() || reduced_.size() == size_) return false;
    constexpr double kSlack = 1.01; // rounding of the reduced size
    return geometry_.zoom() * size_.width() > reduced_.width() * kSlack;
}

void PictureView::updateCursor() {
    if (trimming_ && hasPicture()) {
        setCursor(Qt::CrossCursor);
    } else if (hasPicture() && geometry_.canPan()) {
        setCursor(drag_ == Drag::Pan ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
    } else {
        unsetCursor();
    }
}

void PictureView::resizeEvent(QResizeEvent*) {
    geometry_.setView(size(), devicePixelRatioF());
    moved();
}

/// The wheel zooms; with Shift it moves the picture sideways, with Ctrl up and down, as a sideways
/// wheel or a touch pad's sideways stroke does without a key.
void PictureView::wheelEvent(QWheelEvent* event) {
    const QPoint angle = event->angleDelta();
    // Eighths of a degree, as Qt counts a wheel; finer wheels send less at a time.
    constexpr double kNotch = 120;
    constexpr double kPixels = 60; // of one notch
    const bool keys = event->modifiers().testAnyFlags(Qt::ShiftModifier | Qt::ControlModifier);
    if (keys || std::abs(angle.x()) > std::abs(angle.y())) {
        QPointF by = QPointF(angle) * kPixels / kNotch;
        if (event->modifiers().testFlag(Qt::ShiftModifier)) by = {by.x() + by.y(), 0};
        geometry_.pan(by);
    } else {
        geometry_.zoomBy(std::pow(ViewGeometry::kStep, angle.y() / kNotch), event->position());
    }
    event->accept();
    moved();
}

void PictureView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !hasPicture()) return QWidget::mousePressEvent(event);
    if (trimming_ || event->modifiers().testFlag(Qt::ShiftModifier)) {
        drag_ = Drag::Rectangle;
        dragFrom_ = geometry_.toPicture(event->position());
        rectangle_ = {};
        trimming_ = true;
    } else {
        drag_ = Drag::Pan;
        dragFrom_ = event->position();
    }
    moved();
}

void PictureView::mouseMoveEvent(QMouseEvent* event) {
    if (drag_ == Drag::None) return;
    if (drag_ == Drag::Rectangle) return dragRectangle(event->position());
    geometry_.pan(event->position() - dragFrom_);
    dragFrom_ = event->position();
    moved();
}

void PictureView::dragRectangle(QPointF to) {
    // The pointer may be outside of the view: `pixelsOf` keeps to the picture.
    const QPointF corner = geometry_.toPicture(to);
    rectangle_ = pixelsOf(QRectF(dragFrom_, corner).normalized(), size_);
    moved();
}

void PictureView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    drag_ = Drag::None;
    if (rectangle_.width() < kLeastSide || rectangle_.height() < kLeastSide) rectangle_ = {};
    moved();
}

void PictureView::keyPressEvent(QKeyEvent* event) {
    const bool plain =
        !event->modifiers().testAnyFlags(Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    const int key = event->key();
    if (rectangleKey(*event)) return;
    if (!plain || !(zoomKey(key) || panKey(key) || commandKey(key))) QWidget::keyPressEvent(event);
}

bool PictureView::zoomKey(int key) {
    if (!hasPicture()) return false;
    if (key == Qt::Key_Plus || key == Qt::Key_Equal) return zoomIn(), true;
    if (key == Qt::Key_Minus) return zoomOut(), true;
    if (key == Qt::Key_0) return zoomFit(), true;
    if (key == Qt::Key_1) return zoomActual(), true;
    return false;
}

bool PictureView::panKey(int key) {
    const QPoint way = arrowOf(key);
    if (way.isNull() || !geometry_.canPan()) return false;
    geometry_.pan({-way.x() * width() * kPanKey, -way.y() * height() * kPanKey});
    moved();
    return true;
}

/// The arrow keys move the rectangle, with Shift its right and lower edge. The edge that went
/// ahead stays in sight.
bool PictureView::rectangleKey(const QKeyEvent& event) {
    const Qt::KeyboardModifiers keys = event.modifiers();
    const QPoint way = arrowOf(event.key());
    if (rectangle_.isNull() || way.isNull() || drag_ == Drag::Rectangle ||
        keys.testAnyFlags(Qt::AltModifier | Qt::MetaModifier))
        return false;
    const QPoint by = way * (keys.testFlag(Qt::ControlModifier) ? kLargeStep : 1);
    const bool sizes = keys.testFlag(Qt::ShiftModifier);
    rectangle_ = sizes ? sizedBy(rectangle_, by, size_) : movedBy(rectangle_, by, size_);
    const QRectF frame(rectangle_);
    QPointF edge = geometry_.visiblePart().center();
    if (way.x() != 0) edge.setX(sizes || way.x() > 0 ? frame.right() : frame.left());
    if (way.y() != 0) edge.setY(sizes || way.y() > 0 ? frame.bottom() : frame.top());
    const double room = std::min(width(), height()) * kPanKey * devicePixelRatioF();
    const QPointF around = QPointF(room, room) / geometry_.zoom();
    geometry_.bringIntoView({edge - around, edge + around});
    moved();
    return true;
}

bool PictureView::commandKey(int key) {
    if (key == Qt::Key_PageDown || key == Qt::Key_PageUp) {
        emit stepWanted(key == Qt::Key_PageDown);
        return true;
    }
    if (!trimming_) return false;
    if (key == Qt::Key_Escape) return clearRectangle(), true;
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        emit trimWanted();
        return true;
    }
    return false;
}

/// The whole picture may have been taken away for another window meanwhile.
void PictureView::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    moved();
}

void PictureView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    // Black in light and in dark windows: beside a bright frame a night sky shows nothing.
    painter.fillRect(rect(), Qt::black);
    if (hasPicture()) {
        paintPicture(painter);
        if (!rectangle_.isNull()) paintRectangle(painter);
        return;
    }
    painter.setPen(Qt::lightGray);
    painter.drawText(rect().adjusted(12, 12, -12, -12), Qt::AlignCenter | Qt::TextWrapAnywhere,
                     text_);
}

void PictureView::paintPicture(QPainter& painter) const {
    const QImage& pixels = full_.isNull() ? reduced_ : full_;
    const QRectF part = geometry_.visiblePart();
    const double share = double(pixels.width()) / size_.width();
    const double down = double(pixels.height()) / size_.height();
    const QRectF from(part.x() * share, part.y() * down, part.width() * share,
                      part.height() * down);
    // Who enlarges that far wants to see the pixels.
    constexpr double kPixelsSeen = 3;
    painter.setRenderHint(QPainter::SmoothPixmapTransform, geometry_.zoom() < kPixelsSeen);
    painter.drawImage(geometry_.toView(part), pixels, from);
}

void PictureView::paintRectangle(QPainter& painter) const {
    const QRectF frame = geometry_.toView(rectangle_);
    QRegion outside(rect());
    outside -= frame.toAlignedRect();
    // What would be cut away is darkened; black and white dashes are seen on any picture.
    painter.setClipRegion(outside);
    painter.fillRect(rect(), QColor(0, 0, 0, 130));
    painter.setClipping(false);
    painter.setPen(QPen(Qt::black, 1));
    painter.drawRect(frame);
    painter.setPen(QPen(Qt::white, 1, Qt::DashLine));
    painter.drawRect(frame);
}

} // namespace orvane

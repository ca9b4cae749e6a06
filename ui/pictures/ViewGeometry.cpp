#include "ui/pictures/ViewGeometry.h"

#include <algorithm>

namespace orvane {
namespace {

/// Keeps `centre` where a length of `shown` picture pixels around it stays inside `length`.
double settled(double centre, double shown, double length) {
    if (shown >= length) return length / 2;
    return std::clamp(centre, shown / 2, length - shown / 2);
}

} // namespace

void ViewGeometry::setView(QSize size, double ratio) {
    // Moved to a screen of another density the picture keeps its zoom, not its size.
    const double zoomBefore = zoom();
    view_ = size.expandedTo(QSize(1, 1));
    ratio_ = ratio;
    scale_ = zoomBefore / ratio_;
    settle();
}

void ViewGeometry::setPicture(QSize size) {
    if (size == picture_) return; // another picture of the same camera: the same part stays in view
    picture_ = size;
    fit();
}

void ViewGeometry::fit() {
    fitted_ = true;
    settle();
}

double ViewGeometry::fittingScale() const {
    if (picture_.isEmpty()) return 1;
    return std::min({double(view_.width()) / picture_.width(),
                     double(view_.height()) / picture_.height(), kMaxZoom / ratio_});
}

void ViewGeometry::zoomTo(double zoom, QPointF at) {
    const QPointF fixed = toPicture(at);
    // Below what fits nothing more could be seen; a picture smaller than the view may go down to 1.
    const double least = std::min(fittingScale() * ratio_, 1.0);
    scale_ = std::clamp(zoom, least, kMaxZoom) / ratio_;
    fitted_ = false;
    centre_ = fixed - (at - centreOfView()) / scale_;
    settle();
}

void ViewGeometry::pan(QPointF by) {
    centre_ -= by / scale_;
    settle();
}

void ViewGeometry::bringIntoView(QRectF part) {
    const QRectF at = toView(part);
    const auto by = [](double from, double to, double length) {
        // The upper left wins where both cannot be had.
        return std::max(std::min(0.0, length - to), -from);
    };
    pan({by(at.left(), at.right(), view_.width()), by(at.top(), at.bottom(), view_.height())});
}

void ViewGeometry::settle() {
    if (fitted_) scale_ = fittingScale();
    centre_ = {settled(centre_.x(), view_.width() / scale_, picture_.width()),
               settled(centre_.y(), view_.height() / scale_, picture_.height())};
}

bool ViewGeometry::canPan() const {
    // A fitted picture is as large as the view but for this.
    constexpr double kRounding = 0.5;
    return picture_.width() * scale_ > view_.width() + kRounding ||
           picture_.height() * scale_ > view_.height() + kRounding;
}

QPointF ViewGeometry::toPicture(QPointF at) const {
    return centre_ + (at - centreOfView()) / scale_;
}

QRectF ViewGeometry::toView(QRectF part) const {
    return {(part.topLeft() - centre_) * scale_ + centreOfView(), part.size() * scale_};
}

QRectF ViewGeometry::visiblePart() const {
    const QRectF all({0, 0}, QSizeF(picture_));
    return all & QRectF(toPicture({0, 0}), QSizeF(view_) / scale_);
}

} // namespace orvane

#pragma once

#include <QPointF>
#include <QRectF>
#include <QSize>

namespace orvane {

/// Which part of a picture a view shows, and how large. View positions are logical pixels from the
/// view's upper left corner, picture positions are pixels of the whole picture. A picture smaller
/// than the view is centred; a larger one cannot be moved out of it. While it is fitted the zoom
/// follows the view's size; each zoom of the operator ends that, and `fit` or another size of
/// picture begins it.
class ViewGeometry {
  public:
    static constexpr double kMaxZoom = 16;
    static constexpr double kStep = 1.25; ///< of one notch of the wheel or one key

    /// `ratio`: device pixels of one logical pixel.
    void setView(QSize size, double ratio);
    void setPicture(QSize size);

    bool isFitted() const { return fitted_; }
    void fit();
    /// Sets the zoom, device pixels of one picture pixel, and leaves the picture's point under
    /// `at` where it is. Limited to what fits, or 1 where that is less, and `kMaxZoom`.
    void zoomTo(double zoom, QPointF at);
    void zoomBy(double factor, QPointF at) { zoomTo(zoom() * factor, at); }
    /// Moves the picture in the view.
    void pan(QPointF by);
    /// Moves it no further than `part` of the picture needs to be in sight; what is too large is
    /// shown from its upper left.
    void bringIntoView(QRectF part);

    double zoom() const { return scale_ * ratio_; }
    bool canPan() const;
    QPointF centreOfView() const { return {view_.width() / 2.0, view_.height() / 2.0}; }
    QPointF toPicture(QPointF at) const;
    QRectF toView(QRectF part) const;
    /// The part of the picture that is inside the view.
    QRectF visiblePart() const;

  private:
    double fittingScale() const;
    void settle();

    QSize view_{1, 1};
    double ratio_ = 1;
    QSize picture_;
    bool fitted_ = true;
    double scale_ = 1; ///< logical pixels of one picture pixel
    QPointF centre_;   ///< the picture's point in the middle of the view
};

} // namespace orvane

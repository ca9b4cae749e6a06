#pragma once

#include "ui/pictures/ViewGeometry.h"

#include <QImage>
#include <QWidget>

namespace orvane {

/// Shows a picture fitted, enlarged or moved, and lets a rectangle be dragged on it; a text where
/// there is no picture.
///
/// It keeps the picture in no more pixels than the screen has. The whole picture comes only while
/// the zoom needs it (`fullWanted`, answered by `setFull`) and goes when it does not. The arrow
/// keys move the rectangle while there is one, else the picture; keys that it has no use for go on
/// to its window.
class PictureView : public QWidget {
    Q_OBJECT

  public:
    explicit PictureView(QWidget* parent = nullptr);

    /// `reduced` stands for a picture of size `full`. Zoom, part in view and rectangle stay when
    /// the size does.
    void setPicture(const QImage& reduced, QSize full);
    void showText(const QString& text);
    /// The pixels behind the picture that is shown; ignored when the size differs.
    void setFull(const QImage& full);
    void dropFull() { full_ = {}; }
    bool holdsFull() const { return !full_.isNull(); }

    bool hasPicture() const { return !reduced_.isNull(); }
    const QImage& picture() const { return reduced_; }
    QSize pictureSize() const { return size_; }
    const QString& text() const { return text_; }
    const ViewGeometry& geometryOfView() const { return geometry_; }

    void zoomIn();
    void zoomOut();
    void zoomFit();
    void zoomActual();

    /// While on, dragging draws a rectangle instead of moving the picture.
    bool isTrimming() const { return trimming_; }
    /// Switches that on with a rectangle: the last one, or else one in the middle of what is in
    /// view.
    void markRectangle();
    /// The rectangle in pixels of the picture; null: none.
    QRect rectangle() const { return rectangle_; }
    void clearRectangle();

  signals:
    void changed(); ///< zoom, rectangle or trimming
    void fullWanted();
    void stepWanted(bool forward);
    void trimWanted();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

  private:
    enum class Drag { None, Pan, Rectangle };

    void moved();
    void zoomBy(double factor);
    bool needsFull() const;
    bool zoomKey(int key);
    bool panKey(int key);
    bool rectangleKey(const QKeyEvent& event);
    bool commandKey(int key);
    void dragRectangle(QPointF to);
    void updateCursor();
    void paintPicture(QPainter& painter) const;
    void paintRectangle(QPainter& painter) const;

    QImage reduced_;
    QImage full_;
    QSize size_;
    QString text_;
    ViewGeometry geometry_;
    Drag drag_ = Drag::None;
    QPointF dragFrom_; ///< the last view position, or the rectangle's fixed corner in the picture
    bool trimming_ = false;
    QRect rectangle_;
    QRect lastRectangle_; ///< of a picture of this size
};

} // namespace orvane

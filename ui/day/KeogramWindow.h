#pragma once

// First: moc 6.4 cannot parse <coroutine> unless a Qt header came before.
#include <QImage>
#include <QWidget>

#include "archive/ShownDay.h"

namespace orvane {

/// The keogram itself above its hours, as wide as the window: a day's columns, stretched. The arrow
/// keys go from picture to picture, Enter and a click open one.
class KeogramView : public QWidget {
    Q_OBJECT

  public:
    explicit KeogramView(ShownDay& day);

    void setImage(const QImage& image);
    const QImage& image() const { return image_; }
    /// The minute of the day at `position`; nothing beside the picture.
    std::optional<int> minuteAt(const QPointF& position) const;

  signals:
    void pictureWanted(const std::filesystem::path& file);

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    QRectF place() const;
    std::filesystem::path pictureAround(int minute) const;
    void select(int by);

    ShownDay& day_;
    QImage image_;
    int selected_ = -1; ///< the keyboard's minute; -1: none
};

/// The keogram of the day in view in a window of its own: to look at, to copy, to save; a click
/// opens the picture of that minute. A window of the picture area, which goes when it is closed. It
/// fills as columns are decoded, and wants none while it is hidden.
class KeogramWindow : public QWidget {
    Q_OBJECT

  public:
    explicit KeogramWindow(ShownDay& day, QWidget* parent = nullptr);

    /// Shows what is known by now.
    void follow();

    QSize sizeHint() const override { return {640, 330}; }
    QSize minimumSizeHint() const override { return {240, 160}; }

  signals:
    void pictureWanted(const std::filesystem::path& file);
    void shownChanged(); ///< whether anybody sees it

  protected:
    void hideEvent(QHideEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    void copy();
    void save();

    ShownDay& day_;
    KeogramView* view_;
    std::int64_t shown_ = -1; ///< the revision of what is shown
    QString folder_;          ///< where one was saved last
};

} // namespace orvane

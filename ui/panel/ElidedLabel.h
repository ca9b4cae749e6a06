#pragma once

#include <QLabel>

#include <optional>

namespace orvane {

/// A one-line label that never widens its window: text that is too long is cut with an ellipsis and
/// shown whole in the tool tip. `text()` is always the whole text. It draws by itself, as plain
/// text: what a camera or a file name says is never taken for markup, and no "&" for a key.
class ElidedLabel : public QLabel {
  public:
    explicit ElidedLabel(QWidget* parent = nullptr, Qt::TextElideMode mode = Qt::ElideRight);

    /// Draws a text that does not fit in `font`, before it is cut.
    void setNarrowFont(const QFont& font) { narrowFont_ = font; }
    /// Always leaves room for `text`.
    void setShortest(const QString& text) { shortest_ = text; }
    /// Has room for `text`, no more and no less: nothing is laid out anew or cut when its own text
    /// changes, as a clock's does each second.
    void setFixed(const QString& text);

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override { return minimumSizeHint(); }

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    bool fits() const;
    QFont drawnFont() const;

    Qt::TextElideMode mode_;
    std::optional<QFont> narrowFont_;
    QString shortest_ = "00000000";
    bool isFixed_ = false;
};

} // namespace orvane

#pragma once

#include "core/Module1.h"

#include <QFrame>
#include <QPixmap>

class QLabel;

namespace orvane {

/// One small picture of the strip with its time below. A double click or Enter opens it.
class Thumbnail : public QFrame {
    Q_OBJECT

  public:
    explicit Thumbnail(QWidget* parent = nullptr);

    /// Shows `file` with its picture; an empty path empties the frame.
    void set(const std::filesystem::path& file, const QPixmap& picture);
    void setNewest(bool newest);

    const std::filesystem::path& file() const { return file_; }
    QPixmap picture() const;

  signals:
    void opened(const std::filesystem::path& file);

  protected:
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    std::filesystem::path file_;
    QLabel* picture_;
    QLabel* time_;
    bool newest_ = false;
};

/// The newest pictures, newest first, each decoded once at the size it is shown in.
class ThumbnailStrip : public QWidget {
    Q_OBJECT

  public:
    using History = std::array<ThumbnailEntry, Module1::kThumbnailCount>;

    explicit ThumbnailStrip(QWidget* parent = nullptr);

    void showHistory(const History& history);

    /// A window that is too narrow for all of them shows the newest.
    QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

  signals:
    /// The operator wants to see `file`.
    void opened(const std::filesystem::path& file);

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    QPixmap pictureOf(const std::filesystem::path& file) const;

    std::array<Thumbnail*, Module1::kThumbnailCount> frames_{};
};

} // namespace orvane

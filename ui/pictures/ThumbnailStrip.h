#pragma once

#include "station/Module1.h"
#include "station/TaskGroup.h"
#include "ui/pictures/PictureLoader.h"

#include <QFrame>
#include <QLabel>
#include <QPixmap>

namespace orvane {

/// One small picture of the strip with its time below. A double click or Enter opens it.
class Thumbnail : public QFrame {
    Q_OBJECT

  public:
    explicit Thumbnail(QWidget* parent = nullptr);

    enum class State { Waiting, Shown, Unreadable }; ///< of a file's picture

    /// Stands for `file` from now on, its picture still to come; an empty path empties the frame.
    void setFile(const std::filesystem::path& file);
    /// Shows what was decoded of the file; null: it cannot be read.
    void setPicture(const QPixmap& picture);
    void setNewest(bool newest);

    const std::filesystem::path& file() const { return file_; }
    State state() const { return state_; }
    QPixmap picture() const { return picture_->pixmap(); }

  signals:
    void opened(const std::filesystem::path& file);
    void moveWanted(int by); ///< to the neighbour: +1 to the right

  protected:
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    std::filesystem::path file_;
    State state_ = State::Waiting;
    QLabel* picture_;
    QLabel* time_;
    bool newest_ = false;
};

/// The newest pictures, newest first, each decoded once, at the size it is shown in. A picture that
/// was decoded moves on with its file, so a capture costs one decoding. The arrow keys go from one
/// to the next. Without height while there is no picture: on a small desktop its room is dear. One
/// task at most decodes, for all frames, and goes with the strip.
class ThumbnailStrip : public QWidget {
    Q_OBJECT

  public:
    ThumbnailStrip(PictureLoader& loader, FaultHandler onFault, QWidget* parent = nullptr);

    void showHistory(const ThumbnailHistory& history);

    /// A window that is too narrow for all of them shows the newest.
    QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

  signals:
    /// The operator wants to see `file`.
    void opened(const std::filesystem::path& file);

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    Task<> decodeWaiting();
    void moveFocus(std::size_t from, int by);
    Thumbnail* firstWaiting() const;

    PictureLoader& loader_;
    std::array<Thumbnail*, std::tuple_size_v<ThumbnailHistory>> frames_{};
    TaskGroup tasks_; ///< last: its task uses everything above
};

} // namespace orvane

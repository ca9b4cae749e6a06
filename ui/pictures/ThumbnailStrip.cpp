#include "ui/pictures/ThumbnailStrip.h"

#include "archive/ImageName.h"
#include "platform/Conversions.h"
#include "ui/Layout.h"
#include "ui/Text.h"

#include <QDir>
#include <QKeyEvent>
#include <QPainter>

#include <optional>

namespace orvane {
namespace {

// Logical pixels, in the proportions of most cameras.
constexpr QSize kPictureSize(60, 45);

} // namespace

Thumbnail::Thumbnail(QWidget* parent)
    : QFrame(parent), picture_(new QLabel(this)), time_(new QLabel(this)) {
    fill(*this, column({{picture_, 0, Qt::AlignHCenter}, {time_, 0, Qt::AlignHCenter}}, 0),
         {2, 2, 2, 1});
    picture_->setFixedSize(kPictureSize);
    picture_->setAlignment(Qt::AlignCenter);
    time_->setMinimumHeight(time_->fontMetrics().height());
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFile({});
}

void Thumbnail::setFile(const std::filesystem::path& file) {
    file_ = file;
    state_ = State::Waiting;
    picture_->clear();
    const auto name = ImageName::ofFile(file);
    const QString path = QDir::toNativeSeparators(toQString(file));
    const QString date = name ? toQString(dateText(name->time())) + "\n" : QString();
    time_->setText(name ? toQString(hourMinute(name->time())) : QString());
    setToolTip(file.empty() ? QString() : date + path + "\nDouble-click to open.");
    setAccessibleName(file.empty() ? "No picture" : path);
    setFocusPolicy(file.empty() ? Qt::NoFocus : Qt::StrongFocus);
    update();
}

void Thumbnail::setPicture(const QPixmap& picture) {
    state_ = picture.isNull() ? State::Unreadable : State::Shown;
    if (picture.isNull()) {
        picture_->setText("?");
    } else {
        picture_->setPixmap(picture);
    }
}

void Thumbnail::setNewest(bool newest) {
    newest_ = newest;
    QFont font = time_->font();
    font.setBold(newest);
    time_->setFont(font);
    update();
}

void Thumbnail::mouseDoubleClickEvent(QMouseEvent*) {
    // A copy: whoever opens it may move the history on, and this frame gets another file.
    const std::filesystem::path file = file_;
    if (!file.empty()) emit opened(file);
}

void Thumbnail::keyPressEvent(QKeyEvent* event) {
    const std::filesystem::path file = file_;
    const int key = event->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter)
        emit opened(file);
    else if (key == Qt::Key_Left || key == Qt::Key_Right)
        emit moveWanted(key == Qt::Key_Left ? -1 : +1);
    else
        QFrame::keyPressEvent(event);
}

void Thumbnail::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRect frame = rect().adjusted(0, 0, -1, -1);
    const bool marked = newest_ || hasFocus();
    QColor line = palette().color(QPalette::WindowText);
    line.setAlpha(60);
    painter.setPen(marked ? palette().color(QPalette::Highlight) : line);
    painter.setBrush(palette().base());
    painter.drawRect(frame);
    if (marked) painter.drawRect(frame.adjusted(1, 1, -1, -1));
}

ThumbnailStrip::ThumbnailStrip(PictureLoader& loader, FaultHandler onFault, QWidget* parent)
    : QWidget(parent), loader_(loader), tasks_(std::move(onFault)) {
    setObjectName("thumbnails");
    setAccessibleName("Newest pictures");
    QHBoxLayout* layout = row({}, 2);
    for (std::size_t i = 0; i < frames_.size(); ++i) {
        frames_[i] = new Thumbnail(this);
        frames_[i]->setObjectName(QString("thumbnail_%1").arg(i));
        connect(frames_[i], &Thumbnail::opened, this, &ThumbnailStrip::opened);
        connect(frames_[i], &Thumbnail::moveWanted, this, [this, i](int by) { moveFocus(i, by); });
        layout->addWidget(frames_[i]);
    }
    layout->addStretch();
    // Else the frames would hold the window at their width together.
    layout->setSizeConstraint(QLayout::SetNoConstraint);
    fill(*this, layout, {4, 4, 4, 4});
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setMaximumHeight(0);
}

void ThumbnailStrip::resizeEvent(QResizeEvent*) {
    // A frame is shown whole or not at all.
    int right = layout()->contentsMargins().left();
    for (Thumbnail* frame : frames_) {
        right += frame->sizeHint().width();
        frame->setVisible(right <= width());
        right += layout()->spacing();
    }
}

/// A capture moves every file on by one frame; what is known of each goes along.
void ThumbnailStrip::showHistory(const ThumbnailHistory& history) {
    std::array<std::optional<QPixmap>, std::tuple_size_v<ThumbnailHistory>> known;
    for (std::size_t i = 0; i < history.size(); ++i)
        for (const Thumbnail* frame : frames_)
            if (frame->file() == history[i] && frame->state() != Thumbnail::State::Waiting)
                known[i] = frame->picture();
    for (std::size_t i = 0; i < history.size(); ++i) {
        frames_[i]->setFile(history[i]);
        if (known[i]) frames_[i]->setPicture(*known[i]);
        frames_[i]->setNewest(i == 0 && !history[i].empty());
    }
    setMaximumHeight(history[0].empty() ? 0 : QWIDGETSIZE_MAX);
    // One that runs finds the new files by itself.
    if (tasks_.running() == 0) tasks_.spawn(decodeWaiting());
}

Thumbnail* ThumbnailStrip::firstWaiting() const {
    for (Thumbnail* frame : frames_)
        if (!frame->file().empty() && frame->state() == Thumbnail::State::Waiting) return frame;
    return nullptr;
}

/// The frames may move on while a picture is decoded: it belongs to whatever frame has its file.
Task<> ThumbnailStrip::decodeWaiting() {
    while (const Thumbnail* waiting = firstWaiting()) {
        const qreal ratio = devicePixelRatioF();
        const PictureSource source{.file = waiting->file()};
        Task<LoadedPicture> loading = loader_.load(source, kPictureSize * ratio);
        const LoadedPicture loaded = co_await loading;
        QPixmap picture = QPixmap::fromImage(loaded.pixels);
        picture.setDevicePixelRatio(ratio);
        for (Thumbnail* frame : frames_)
            if (frame->file() == source.file) frame->setPicture(picture);
    }
}

void ThumbnailStrip::moveFocus(std::size_t from, int by) {
    const std::size_t to = by < 0 ? from - 1 : from + 1; // below 0 wraps beyond the last
    if (to < frames_.size() && frames_[to]->focusPolicy() != Qt::NoFocus &&
        frames_[to]->isVisible())
        frames_[to]->setFocus(Qt::TabFocusReason);
}

} // namespace orvane

#include "ui/ThumbnailStrip.h"

#include "ui/PictureReader.h"
#include "ui/Text.h"

#include <QDir>
#include <QFile>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QRegularExpression>

namespace orvane {
namespace {

constexpr QSize kPictureSize(60, 45);

/// "hh:mm" from a recorded picture's name, "yyyymmdd_hhmm...".
QString timeOf(const std::filesystem::path& file) {
    static const QRegularExpression pattern(R"(^\d{8}_(\d\d)(\d\d))");
    const QRegularExpressionMatch match = pattern.match(toQString(file.filename()));
    return match.hasMatch() ? match.captured(1) + ':' + match.captured(2) : QString();
}

} // namespace

Thumbnail::Thumbnail(QWidget* parent)
    : QFrame(parent), picture_(new QLabel(this)), time_(new QLabel(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 1);
    layout->setSpacing(0);
    layout->addWidget(picture_, 0, Qt::AlignHCenter);
    layout->addWidget(time_, 0, Qt::AlignHCenter);
    picture_->setFixedSize(kPictureSize);
    picture_->setAlignment(Qt::AlignCenter);
    time_->setMinimumHeight(time_->fontMetrics().height());
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    set({}, {});
}

void Thumbnail::set(const std::filesystem::path& file, const QPixmap& picture) {
    file_ = file;
    const QString path = QDir::toNativeSeparators(toQString(file));
    picture_->setPixmap(picture);
    if (picture.isNull() && !file.empty()) picture_->setText("?");
    time_->setText(timeOf(file));
    setToolTip(file.empty() ? QString() : path + "\nDouble-click to open.");
    setAccessibleName(file.empty() ? "No picture" : path);
    setFocusPolicy(file.empty() ? Qt::NoFocus : Qt::StrongFocus);
    update();
}

QPixmap Thumbnail::picture() const {
    return picture_->pixmap();
}

void Thumbnail::setNewest(bool newest) {
    newest_ = newest;
    QFont font = time_->font();
    font.setBold(newest);
    time_->setFont(font);
    update();
}

void Thumbnail::mouseDoubleClickEvent(QMouseEvent*) {
    const std::filesystem::path file = file_;
    if (!file.empty()) emit opened(file);
}

void Thumbnail::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        return QFrame::keyPressEvent(event);
    const std::filesystem::path file = file_;
    emit opened(file);
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

ThumbnailStrip::ThumbnailStrip(QWidget* parent) : QWidget(parent) {
    setObjectName("thumbnails");
    setAccessibleName("Newest pictures");
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->setSpacing(2);
    for (std::size_t i = 0; i < frames_.size(); ++i) {
        frames_[i] = new Thumbnail(this);
        frames_[i]->setObjectName(QString("thumbnail_%1").arg(i));
        connect(frames_[i], &Thumbnail::opened, this, &ThumbnailStrip::opened);
        layout->addWidget(frames_[i]);
    }
    layout->addStretch();
    layout->setSizeConstraint(QLayout::SetNoConstraint);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void ThumbnailStrip::resizeEvent(QResizeEvent*) {
    int right = layout()->contentsMargins().left();
    for (Thumbnail* frame : frames_) {
        right += frame->sizeHint().width();
        frame->setVisible(right <= width());
        right += layout()->spacing();
    }
}

void ThumbnailStrip::showHistory(const History& history) {
    std::array<QPixmap, Module1::kThumbnailCount> pictures;
    for (std::size_t i = 0; i < history.size(); ++i)
        pictures[i] = pictureOf(history[i].path);
    for (std::size_t i = 0; i < history.size(); ++i) {
        frames_[i]->set(history[i].path, pictures[i]);
        frames_[i]->setNewest(i == 0 && !history[i].path.empty());
    }
}

QPixmap ThumbnailStrip::pictureOf(const std::filesystem::path& file) const {
    if (file.empty()) return {};
    for (const Thumbnail* frame : frames_)
        if (frame->file() == file && !frame->picture().isNull()) return frame->picture();
    QFile source(toQString(file));
    if (!source.open(QIODevice::ReadOnly)) return {};
    const qreal ratio = devicePixelRatioF();
    QPixmap picture = QPixmap::fromImage(readPicture(source, kPictureSize * ratio));
    picture.setDevicePixelRatio(ratio);
    return picture;
}

} // namespace orvane

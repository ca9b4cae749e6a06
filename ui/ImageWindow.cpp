#include "ui/ImageWindow.h"

#include "ui/PictureReader.h"
#include "ui/Text.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QPainter>
#include <QScreen>

namespace orvane {

ImageWindow::ImageWindow(QWidget* parent) : QWidget(parent) {
    setObjectName("frmImage");
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void ImageWindow::showFile(const std::filesystem::path& file) {
    file_ = file;
    const QString path = QDir::toNativeSeparators(toQString(file));
    setWindowTitle(toQString(file.filename()));
    setToolTip(path);
    setAccessibleName(path);
    QFile source(toQString(file));
    const bool open = source.open(QIODevice::ReadOnly);
    load(source, (open ? "This file is not a JPEG picture that can be shown:\n"
                       : "This file cannot be opened:\n") +
                     path);
}

void ImageWindow::showJpeg(const std::string& jpeg, const QString& caption) {
    file_.clear();
    setWindowTitle(caption);
    setToolTip({});
    setAccessibleName(caption);
    QByteArray bytes = QByteArray::fromRawData(jpeg.data(), static_cast<qsizetype>(jpeg.size()));
    QBuffer source(&bytes);
    source.open(QIODevice::ReadOnly);
    load(source, "The picture received from the camera cannot be shown.");
}

void ImageWindow::showText(const QString& text) {
    file_.clear();
    picture_ = {};
    text_ = text;
    update();
}

void ImageWindow::load(QIODevice& source, const QString& fault) {
    picture_ = {};
    if (source.isOpen()) picture_ = QPixmap::fromImage(readPicture(source, screenPixels()));
    text_ = picture_.isNull() ? fault : QString();
    update();
}

QSize ImageWindow::screenPixels() const {
    return screen()->size() * devicePixelRatioF();
}

void ImageWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    if (picture_.isNull()) {
        painter.setPen(Qt::lightGray);
        painter.drawText(rect().adjusted(12, 12, -12, -12), Qt::AlignCenter | Qt::TextWrapAnywhere,
                         text_);
        return;
    }
    QRect place({}, picture_.size().scaled(size(), Qt::KeepAspectRatio));
    place.moveCenter(rect().center());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(place, picture_);
}

} // namespace orvane

#include "ui/pictures/ImageWindow.h"

#include "archive/DataFolder.h"
#include "ui/Layout.h"
#include "ui/Text.h"
#include "ui/panel/ElidedLabel.h"

#include <QClipboard>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLocale>
#include <QScreen>

#include <utility>

namespace orvane {
namespace {

QString sizeText(QSize size) {
    return QString::fromUtf8("%1 × %2 pixels").arg(size.width()).arg(size.height());
}

QString bytesText(qint64 bytes) {
    return QLocale::c().formattedDataSize(bytes, 1, QLocale::DataSizeTraditionalFormat);
}

} // namespace

QString titleOf(const std::filesystem::path& file) {
    const auto name = ImageName::ofFile(file);
    return toQString(name ? name->title() : utf8FromPath(file.filename()));
}

ImageWindow::ImageWindow(ImageServices& services, QWidget* parent)
    : QWidget(parent), services_(services), view_(new PictureView), details_(new ElidedLabel),
      status_(row({{details_, 1}}, 12)), copying_(services.faults.teller("Orvane")),
      tasks_([this](const std::exception_ptr& fault) {
          // An unforeseen fault of a loading: told in the window, which would say "Loading..." for
          // ever.
          services_.faults.report("ImageWindow", fault);
          showText(toQString("The picture cannot be shown: " + textOf(fault) + "."));
      }) {
    setObjectName("frmImage");
    setFocusProxy(view_);
    details_->setObjectName("imageStatus");
    status_->setContentsMargins(6, 2, 6, 2);
    fill(*this, column({{view_, 1}, status_}, 0));
    connect(view_, &PictureView::changed, this, [this] {
        notice_.clear();
        updateStatus();
        emit changed();
    });
    connect(view_, &PictureView::fullWanted, this, &ImageWindow::loadFull);
    connect(view_, &PictureView::stepWanted, this, &ImageWindow::step);
    connect(view_, &PictureView::trimWanted, this, &ImageWindow::trim);
}

void ImageWindow::showPicture(PictureSource source, const QString& title) {
    tasks_.clear();
    fullLoading_ = fullFailed_ = false;
    source_ = std::move(source);
    title_ = title;
    const QString path = QDir::toNativeSeparators(toQString(source_.file));
    setWindowTitle(title_);
    setToolTip(path);
    view_->setAccessibleName(path.isEmpty() ? title_ : path);
    describeFile();
    // A picture that is shown stays until the next one is there: stepping does not flicker.
    if (!hasPicture()) view_->showText("Loading...");
    tasks_.spawn(load(Purpose::Show, source_, {}));
}

void ImageWindow::showText(const QString& text) {
    fileDetails_.clear();
    view_->showText(text);
}

/// One task for every purpose: only what happens with the pixels differs. `part` is what is copied.
Task<> ImageWindow::load(Purpose purpose, PictureSource source, QRect part) {
    const QSize bound = purpose == Purpose::Show ? screenPixels() : QSize();
    Task<LoadedPicture> loading = services_.loader.load(std::move(source), bound);
    LoadedPicture loaded = co_await loading;
    if (purpose == Purpose::Show) co_return take(loaded);
    if (purpose == Purpose::Full) {
        fullLoading_ = false;
        // The file was replaced or has gone since: not tried again with each move of the zoom.
        fullFailed_ = loaded.size != view_->pictureSize();
        // Another window may have been zoomed in meanwhile: then these pixels go at once.
        if (services_.fullHolder == this) view_->setFull(loaded.pixels);
        co_return;
    }
    if (!loaded.fault.empty()) {
        notice_ = "Nothing was copied. " + toQString(loaded.fault);
    } else {
        QGuiApplication::clipboard()->setImage(part.isNull() ? loaded.pixels
                                                             : loaded.pixels.copy(part));
        notice_ = "Copied: " + sizeText(part.isNull() ? loaded.size : part.size()) + ".";
    }
    updateStatus();
}

void ImageWindow::take(const LoadedPicture& loaded) {
    if (!loaded.fault.empty()) {
        const QString path = QDir::toNativeSeparators(toQString(source_.file));
        const QString others = "\nPage Up and Page Down show the other pictures of its folder.";
        return showText(toQString(loaded.fault) + (path.isEmpty() ? path : '\n' + path + others));
    }
    // A part must not change when its file does, nor go with it.
    if (keepsJpeg_ || !source_.part.isNull()) source_.jpeg = loaded.jpeg;
    if (fileDetails_.isEmpty() && !loaded.jpeg.isEmpty() && source_.part.isNull())
        fileDetails_ = bytesText(loaded.jpeg.size());
    view_->setPicture(loaded.pixels, loaded.size);
}

void ImageWindow::loadFull() {
    if (services_.fullHolder != this && services_.fullHolder != nullptr)
        // It asks again when its zoom changes or it gets the focus.
        services_.fullHolder->view_->dropFull();
    services_.fullHolder = this;
    if (std::exchange(fullLoading_, true) || fullFailed_) return;
    tasks_.spawn(load(Purpose::Full, source_, {}));
}

bool ImageWindow::canStep() const {
    return !source_.file.empty() && source_.part.isNull();
}

void ImageWindow::step(bool forward) {
    if (!canStep()) return;
    PictureSource next;
    next.file = neighbourOf(source_.file, forward);
    next.processing = source_.processing;
    if (!next.file.empty()) return showPicture(next, titleOf(next.file));
    notice_ =
        forward ? "This is the folder's last picture." : "This is the folder's first picture.";
    updateStatus();
}

void ImageWindow::copy() {
    if (hasPicture()) copying_.spawn(load(Purpose::Copy, source_, view_->rectangle()));
}

void ImageWindow::trim() {
    if (!hasPicture()) return;
    const QRect rectangle = view_->rectangle();
    if (rectangle.isNull()) return view_->markRectangle();
    PictureSource part = partOf(rectangle);
    const QString name = source_.file.empty() ? title_ : titleOf(source_.file);
    view_->clearRectangle();
    emit trimmed(part, name + " (trimmed)");
}

PictureSource ImageWindow::partOf(QRect rectangle) const {
    PictureSource part = source_;
    // Of a part: its own corner counts in the whole picture.
    part.part = rectangle.translated(source_.part.topLeft());
    return part;
}

/// Only a file shown whole has a size and a date of its own.
void ImageWindow::describeFile() {
    fileDetails_.clear();
    const QFileInfo file(toQString(source_.file));
    if (source_.file.empty() || !source_.part.isNull() || !file.exists()) return;
    fileDetails_ =
        bytesText(file.size()) + "   " + file.lastModified().toString("yyyy/MM/dd hh:mm:ss");
}

void ImageWindow::updateStatus() {
    QStringList parts;
    if (hasPicture()) {
        parts << sizeText(view_->pictureSize());
        parts << QString("%1 %").arg(qRound(view_->geometryOfView().zoom() * 100));
        if (!fileDetails_.isEmpty()) parts << fileDetails_;
    }
    QString text = parts.join("   ");
    const QRect rectangle = view_->rectangle();
    if (!rectangle.isNull())
        text = sizeText(rectangle.size()) +
               QString(" at %1, %2").arg(rectangle.left()).arg(rectangle.top()) +
               " marked: Enter trims, Escape clears. Arrow keys move it, with Shift they size it.";
    else if (view_->isTrimming())
        text = "Drag a rectangle. Escape ends trimming.";
    details_->setText(notice_.isEmpty() ? text : notice_);
}

QSize ImageWindow::screenPixels() const {
    // The screen's and not the window's: enlarging the window needs no new decoding.
    return screen()->size() * devicePixelRatioF();
}

} // namespace orvane

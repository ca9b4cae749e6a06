#include "ui/QtImageViews.h"

#include <QMdiSubWindow>
#include <QStyle>

namespace orvane {

void QtImageViews::attach(QMdiArea* area, ThumbnailStrip* strip) {
    area_ = area;
    strip_ = strip;
}

void QtImageViews::refreshThumbnails(
    const std::array<ThumbnailEntry, Module1::kThumbnailCount>& history) {
    if (strip_ != nullptr) strip_->showHistory(history);
}

void QtImageViews::showLatest(const std::filesystem::path& file) {
    latestFile_ = file;
    if (area_ != nullptr && (latest_ != nullptr || latestWanted_)) latestWindow()->showFile(file);
}

void QtImageViews::showLive(const std::string& jpeg) {
    if (area_ != nullptr && (latest_ != nullptr || latestWanted_))
        latestWindow()->showJpeg(jpeg, "Live picture");
}

void QtImageViews::openLatest(const std::filesystem::path& file) {
    if (area_ == nullptr) return;
    if (latestFile_.empty()) latestFile_ = file;
    const bool wasOpen = latest_ != nullptr;
    ImageWindow* window = latestWindow();
    area_->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(window->parentWidget()));
    if (wasOpen) return;
    if (latestFile_.empty()) {
        window->setWindowTitle("Latest image");
        window->showText("No picture has been recorded yet.");
    } else {
        window->showFile(latestFile_);
    }
}

void QtImageViews::openImage(const std::filesystem::path& file) {
    if (area_ == nullptr) return;
    for (QMdiSubWindow* frame : area_->subWindowList()) {
        const auto* window = qobject_cast<ImageWindow*>(frame->widget());
        if (window == nullptr || window == latest_ || window->file() != file) continue;
        return area_->setActiveSubWindow(frame);
    }
    addWindow()->showFile(file);
}

ImageWindow* QtImageViews::latestWindow() {
    if (latest_ != nullptr) return latest_;
    latest_ = addWindow();
    latest_->setObjectName("frmLatest");
    latestWanted_ = false;
    return latest_;
}

ImageWindow* QtImageViews::addWindow() {
    constexpr int kStep = 26;
    constexpr int kSteps = 7;
    const int offset = static_cast<int>(area_->subWindowList().size()) % kSteps * kStep;
    auto* window = new ImageWindow;
    QMdiSubWindow* frame = area_->addSubWindow(window);
    frame->setAttribute(Qt::WA_DeleteOnClose);
    // The default pictogram of a sub-window says nothing about a picture.
    frame->setWindowIcon(area_->style()->standardIcon(QStyle::SP_FileDialogContentsView));
    frame->setGeometry(QRect({offset, offset}, area_->viewport()->size() * 3 / 4));
    frame->show();
    return window;
}

} // namespace orvane

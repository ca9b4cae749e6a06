#include "ui/pictures/QtImageViews.h"

#include "archive/DataFolder.h"
#include "platform/Paths.h"
#include "ui/Text.h"

#include <QApplication>

#include <algorithm>

namespace orvane {
namespace {

/// The first of many names, and how many more there are.
std::string namesOf(const std::vector<std::string>& names) {
    constexpr std::size_t kTold = 5;
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), kTold); ++i)
        text += (i == 0 ? "" : ", ") + names[i];
    if (names.size() > kTold) text += " and " + std::to_string(names.size() - kTold) + " more";
    return text;
}

} // namespace

QtImageViews::QtImageViews(Clock& clock, Faults& faults, Operator& op, const Module1& module,
                           const DayWatch& days, LibjpegImageControl& control)
    : op_(op), clock_(clock), module_(module), days_(days), loader_(clock, control),
      services_{loader_, faults, {}}, tasks_(faults.teller("Orvane")) {}

void QtImageViews::attach(PictureArea* area, ThumbnailStrip* strip) {
    area_ = area;
    strip_ = strip;
}

void QtImageViews::refreshThumbnails(const ThumbnailHistory& history) {
    if (strip_ != nullptr) strip_->showHistory(history);
}

void QtImageViews::showLatest(const std::filesystem::path& file) {
    latestFile_ = file;
    if (area_ != nullptr && (latest_ != nullptr || latestWanted_)) latestWindow()->showFile(file);
}

void QtImageViews::showLive(const std::string& jpeg) {
    if (area_ != nullptr && (latest_ != nullptr || latestWanted_)) latestWindow()->showLive(jpeg);
}

void QtImageViews::tellLive(const std::string& text) {
    if (latest_ != nullptr) latest_->tellLive(text);
}

void QtImageViews::openLatest(const std::filesystem::path& file) {
    if (area_ == nullptr) return;
    if (latestFile_.empty()) latestFile_ = file.empty() ? module_.thumbnails[0] : file;
    const bool wasOpen = latest_ != nullptr;
    LatestWindow* window = latestWindow();
    area_->bring(*window);
    window->setFocus();
    if (wasOpen) return;
    if (latestFile_.empty()) {
        window->showNone();
    } else {
        window->showFile(latestFile_);
    }
}

void QtImageViews::openImages(const std::vector<std::filesystem::path>& files) {
    for (const std::filesystem::path& file : files) {
        PictureSource source{.file = file};
        // Shown as its processed copy will be, without waiting for that.
        if (module_.imageProcessing) source.processing = module_.image;
        // No room for one more: the operator has been told, once for all of them.
        if (!open(source, titleOf(file))) return;
        if (isInDatedFolder(file)) tasks_.spawn(writeCopy(file));
    }
}

void QtImageViews::openDropped(const std::vector<std::filesystem::path>& files) {
    std::vector<std::filesystem::path> pictures;
    std::vector<std::string> others;
    for (const std::filesystem::path& file : files) {
        std::error_code error;
        if (isJpegName(file) && !std::filesystem::is_directory(file, error)) {
            pictures.push_back(file);
        } else {
            others.push_back(utf8FromPath(file.filename()));
        }
    }
    if (!others.empty())
        tasks_.spawn(op_.tell("Only JPEG pictures (.jpg, .jpeg) can be dropped here.\n"
                              "Not opened: " +
                              namesOf(others) + "."));
    openImages(pictures);
}

void QtImageViews::openFiled(const std::filesystem::path& file) {
    open({.file = file}, titleOf(file));
}

bool QtImageViews::open(const PictureSource& source, const QString& title) {
    if (area_ == nullptr) return false;
    if (const ImageWindow* shown = find(source)) {
        area_->bring(*shown);
        return true;
    }
    if (windows().size() >= kMaxWindows) {
        tasks_.spawn(op_.tell("No more than " + std::to_string(kMaxWindows) +
                              " pictures can be open at a time.\nPlease close some of them, "
                              "or all with Window > Close All."));
        return false;
    }
    auto* window = new ImageWindow(services_);
    add(*window);
    window->showPicture(source, title);
    return true;
}

/// Those that the operator opened.
QList<ImageWindow*> QtImageViews::windows() const {
    QList<ImageWindow*> all;
    for (const QMdiSubWindow* frame : area_->subWindowList())
        if (auto* window = qobject_cast<ImageWindow*>(frame->widget());
            window != nullptr && window != latest_)
            all << window;
    return all;
}

/// The window that shows the same file in the same way; a part is always a new picture.
ImageWindow* QtImageViews::find(const PictureSource& source) const {
    if (!source.part.isNull()) return nullptr;
    for (ImageWindow* window : windows()) {
        const PictureSource& shown = window->source();
        if (shown.file == source.file && shown.part.isNull() &&
            shown.processing.LrFlg == source.processing.LrFlg &&
            shown.processing.DateFlg == source.processing.DateFlg)
            return window;
    }
    return nullptr;
}

LatestWindow* QtImageViews::latestWindow() {
    if (latest_ != nullptr) return latest_;
    latest_ = new LatestWindow(services_, clock_, days_);
    // Closed by the operator from now on, it stays closed.
    latestWanted_ = false;
    // A capture may open it: what somebody types must not end up in it.
    const QPointer<QWidget> typedInto = QApplication::focusWidget();
    add(*latest_);
    if (typedInto != nullptr) typedInto->setFocus();
    area_->fill(*qobject_cast<QMdiSubWindow*>(latest_->parentWidget()));
    return latest_;
}

void QtImageViews::add(ImageWindow& window) {
    QObject::connect(&window, &ImageWindow::trimmed, area_,
                     [this](const PictureSource& part, const QString& name) { open(part, name); });
    area_->add(window, area_->viewport()->size() * 3 / 4);
}

void QtImageViews::saveAs(const PictureSource& source, const std::filesystem::path& target) {
    tasks_.spawn(save(source, target));
}

Task<> QtImageViews::save(PictureSource source, std::filesystem::path target) {
    const std::string name = utf8FromPath(target.filename());
    Task<std::string> saving = loader_.save(std::move(source), std::move(target), module_.image);
    const std::string fault = co_await saving;
    if (fault.empty()) co_return;
    Task<> telling = op_.tell(name + " was not saved.\n" + fault +
                              "\nSee whether the disk is full or write-protected, or choose "
                              "another folder.");
    co_await telling;
}

/// Whether the picture can be read at all is told in its window.
Task<> QtImageViews::writeCopy(std::filesystem::path file) {
    Task<std::string> writing =
        loader_.writeProcessedCopy(file, module_.image, module_.imageProcessing);
    const std::string fault = co_await writing;
    if (fault.empty() || area_ == nullptr) co_return;
    for (const ImageWindow* window : windows())
        if (window->source().file == file && !window->hasPicture()) co_return;
    Task<> telling =
        op_.tell("No processed copy of " + utf8FromPath(file.filename()) + ".\n" + fault +
                 "\nThe picture itself is safe. See whether the folder Edit can be written.");
    co_await telling;
}

} // namespace orvane

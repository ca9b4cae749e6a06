#include "camera/PictureDownload.h"

#include "imaging/ProcessImageFile.h"
#include "platform/Paths.h"

namespace orvane {

namespace {

constexpr int kFailedPictures = 20;
constexpr int kRequests = 20'000;
constexpr int kAttempts = 3; // for a picture that captures cut off

} // namespace

void PictureDownload::begin(const std::filesystem::path& folder) {
    folder_ = folder;
    stopped_ = false;
    downloaded_ = 0;
    failedInARow_ = requested_ = 0;
    parts_.module.filesFetched = 0;
    parts_.panel.lbl_dlcnt.caption = "0";
}

void PictureDownload::expect(std::string_view path) {
    parts_.inetFileGet.expect(path.empty() ? std::string()
                                           : cameraBaseUrl(parts_.panel) + "/" + std::string(path));
}

void PictureDownload::stop() {
    stopped_ = true;
    if (transferring_) parts_.inetFileGet.cancel();
}

bool PictureDownload::hopeless() const {
    return failedInARow_ >= kFailedPictures || requested_ >= kRequests;
}

/// One record's picture: downloaded, shown, processed.
Task<bool> PictureDownload::fetch(std::string path, std::string name) {
    ++requested_;
    Task<bool> downloading = download(std::move(path), name);
    if (!co_await downloading) {
        if (stopped_) co_return false;
        ++failedInARow_;
        parts_.log.write("DownloadFile:" + name + ": " + parts_.camera.fault());
        co_return false;
    }
    failedInARow_ = 0;
    const std::filesystem::path image = folder_ / pathFromUtf8(name);
    keep(image);
    Task<Fault> processing = ProcessImageFile(parts_.imageControl, image, parts_.module.image,
                                              parts_.module.imageProcessing);
    const Fault fault = co_await processing;
    if (fault) parts_.log.write("ProcessImageFile:" + *fault);
    co_return true;
}

Task<bool> PictureDownload::download(std::string path, std::string name) {
    const std::string url = cameraBaseUrl(parts_.panel) + "/" + path;
    const std::filesystem::path image = folder_ / pathFromUtf8(name);
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        while (parts_.module.capturing && !stopped_)
            co_await parts_.clock.sleep(100ms);
        if (stopped_) co_return false;
        std::error_code error;
        const bool wasThere = std::filesystem::exists(image, error);
        transferring_ = true;
        Task<bool> transfer =
            parts_.camera.DownloadFile(url, folder_, name, CameraPanel::Accept::Picture);
        const bool arrived = co_await transfer;
        transferring_ = false;
        if (arrived) {
            // an older, longer file of that name would show through behind the picture
            std::filesystem::resize_file(image, parts_.camera.received(), error);
            co_return true;
        }
        discardPart(image, wasThere);
        if (!parts_.module.capturing) co_return false;
    }
    co_return false;
}

/// A disk that fills up leaves a part of a new file behind.
void PictureDownload::discardPart(const std::filesystem::path& image, bool wasThere) {
    std::error_code ignored;
    if (!wasThere) std::filesystem::remove(image, ignored);
}

void PictureDownload::keep(const std::filesystem::path& image) {
    Module1& module = parts_.module;
    module.imagesArrived = true;
    module.addThumbnail(image);
    ++module.filesFetched;
    ++downloaded_;
    parts_.views.refreshThumbnails(module.thumbnails);
    parts_.panel.lbl_dlcnt.caption = std::to_string(downloaded_);
}

} // namespace orvane

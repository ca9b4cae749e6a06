#include "camera/PictureDownload.h"

#include "platform/Paths.h"
#include "station/Scope.h"

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

Task<bool> PictureDownload::fetch(std::string path, std::string name) {
    ++requested_;
    Task<HttpReply> downloading = download(cameraBaseUrl(parts_.panel) + "/" + path);
    HttpReply reply = co_await downloading;
    if (!reply.ok) co_return failed(name, reply.fault);
    Task<Filing> filing =
        parts_.archive.take(std::move(reply.body), folder_ / pathFromUtf8(name), Arrival::Run);
    const Filing filed = co_await filing;
    if (!filed.inArchive()) co_return failed(name, filed.fault);
    failedInARow_ = 0;
    parts_.panel.lbl_dlcnt.caption = std::to_string(++downloaded_);
    co_return true;
}

Task<HttpReply> PictureDownload::download(std::string url) {
    HttpReply reply;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        while (parts_.module.capturing && !stopped_)
            co_await parts_.clock.sleep(100ms);
        if (stopped_) break;
        const Scope transferring(transferring_);
        parts_.inetFileGet.cancel();
        Task<HttpReply> transfer = parts_.inetFileGet.get(url);
        reply = co_await transfer;
        if (reply.ok || !parts_.module.capturing) break;
    }
    co_return reply;
}

bool PictureDownload::failed(const std::string& name, const std::string& reason) {
    if (stopped_) return false;
    ++failedInARow_;
    parts_.log.write("DownloadFile:" + name + ": " + reason);
    return false;
}

} // namespace orvane

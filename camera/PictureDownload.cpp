#include "camera/PictureDownload.h"

#include "platform/Paths.h"
#include "station/Scope.h"

namespace orvane {

namespace {

constexpr int kFailedPictures = 20;
constexpr int kRequests = 20'000;
constexpr Ticks kTurn = 10ms; ///< between two looks whether a transfer has ended

} // namespace

void PictureDownload::begin(const std::filesystem::path& folder) {
    folder_ = folder;
    stopped_ = false;
    downloaded_ = 0;
    failedInARow_ = requested_ = 0;
    parts_.module.filesFetched = 0;
    parts_.panel.lbl_dlcnt.caption = std::to_string(downloaded_);
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
    // a test fetch or the live view may still have its picture on the way
    while ((parts_.module.capturing || parts_.inetFileGet.running()) && !stopped_)
        co_await parts_.clock.sleep(kTurn);
    if (stopped_) co_return reply;
    const Scope transferring(transferring_);
    Task<HttpReply> transfer = parts_.inetFileGet.get(std::move(url));
    reply = co_await transfer;
    co_return reply;
}

bool PictureDownload::failed(const std::string& name, const std::string& reason) {
    if (stopped_) return false;
    ++failedInARow_;
    parts_.log.write("DownloadFile:" + name + ": " + reason);
    return false;
}

} // namespace orvane

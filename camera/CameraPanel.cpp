#include "camera/CameraPanel.h"

#include "imaging/JpegMarkers.h"
#include "platform/Paths.h"

#include <cerrno>
#include <fstream>
#include <system_error>

namespace orvane {

namespace {

constexpr const char* kRecordingSwitch = "/cgi/live_s_hide2.cgi";

/// Overwrites `file` from its start without shortening it. Answers why not, or nothing.
std::string overwriteInPlace(const std::filesystem::path& file, const std::string& bytes) {
    errno = 0;
    std::fstream stream(file, std::ios::binary | std::ios::in | std::ios::out);
    if (!stream.is_open()) stream.open(file, std::ios::binary | std::ios::out);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (stream.good()) return {};
    return "cannot write " + file.filename().string() + ": " +
           std::generic_category().message(errno);
}

} // namespace

std::string cameraBaseUrl(const OperationPanel& panel) {
    return "http://" + panel.txtIp.text.get() + ":" + panel.txtPort.text.get();
}

Task<bool> CameraPanel::DownloadFile(std::string url, std::filesystem::path folder,
                                     std::string fileName, Accept accept) {
    inetFileGet_.cancel();
    Task<HttpReply> get = inetFileGet_.get(std::move(url));
    const HttpReply reply = co_await get;
    fault_ = reply.fault;
    if (!reply.ok) co_return false;
    if (accept == Accept::Picture && !isWholeJpeg(reply.body)) {
        fault_ = "not a whole picture";
        co_return false;
    }
    folder += pathFromUtf8(fileName);
    fault_ = overwriteInPlace(folder, reply.body);
    received_ = reply.body.size();
    co_return fault_.empty();
}

void CameraPanel::Command5_Click() {
    webBrowserTst_.navigate(cameraBaseUrl(panel_) + kRecordingSwitch + "?rec=1");
}

void CameraPanel::Command7_Click() {
    webBrowserTst_.navigate(cameraBaseUrl(panel_) + kRecordingSwitch + "?rec=0");
}

Task<> CameraPanel::Command8_Click() {
    if (busy_.active()) co_return;
    std::string url = cameraBaseUrl(panel_) + kLatestImagePath;
    std::filesystem::path folder = module_.programFolder / "";
    std::string fileName = kWorkingPicture;
    Task<bool> download = DownloadFile(std::move(url), std::move(folder), std::move(fileName));
    const bool arrived = co_await download;
    if (busy_.active()) co_return; // a capture took the transfer over
    if (arrived) {
        views_.showLatest(module_.programFolder / kWorkingPicture);
        co_return;
    }
    std::string message = "The camera sent no picture: " + fault_;
    co_await op_.tell(std::move(message));
}

} // namespace orvane

#include "camera/CameraPanel.h"

#include "platform/Fault.h"
#include "platform/Paths.h"

#include <cerrno>
#include <fstream>
#include <system_error>

namespace orvane {

namespace {

constexpr const char* kRecordingSwitch = "/cgi/live_s_hide2.cgi";
constexpr std::size_t kSlice = std::size_t{1} << 24; ///< bytes that are written at once
constexpr Ticks kTurn = 10ms; ///< between two looks whether a transfer has ended

/// Overwrites `file` from its start without shortening it. `bytes` outlives the task, which lets
/// the window live in the midst of a very large picture.
Task<Fault> overwriteInPlace(Clock& clock, std::filesystem::path file, std::string_view bytes) {
    errno = 0;
    std::fstream stream(file, std::ios::binary | std::ios::in | std::ios::out);
    if (!stream.is_open()) stream.open(file, std::ios::binary | std::ios::out);
    while (stream.good() && !bytes.empty()) {
        const std::string_view slice = bytes.substr(0, kSlice);
        stream.write(slice.data(), static_cast<std::streamsize>(slice.size()));
        bytes.remove_prefix(slice.size());
        if (!bytes.empty()) co_await clock.yield();
    }
    stream.close();
    if (stream.good()) co_return std::nullopt;
    co_return "cannot write " + file.filename().string() + ": " +
        std::generic_category().message(errno);
}

} // namespace

std::string cameraBaseUrl(const OperationPanel& panel) {
    return "http://" + panel.txtIp.text.get() + ":" + panel.txtPort.text.get();
}

Task<HttpReply> CameraPanel::DownloadFile(std::string url, std::filesystem::path folder,
                                          std::string fileName) {
    inetFileGet_.cancel();
    Task<HttpReply> get = inetFileGet_.get(std::move(url));
    HttpReply reply = co_await get;
    if (!reply.ok) co_return reply;
    folder += pathFromUtf8(fileName);
    Task<Fault> writing = overwriteInPlace(clock_, folder, reply.body);
    if (const Fault fault = co_await writing) {
        reply.ok = false;
        reply.fault = *fault;
    }
    co_return reply;
}

void CameraPanel::Command5_Click() {
    switchRecording("?rec=1");
}

void CameraPanel::Command7_Click() {
    switchRecording("?rec=0");
}

void CameraPanel::switchRecording(const char* query) {
    switches_.push_back(cameraBaseUrl(panel_) + kRecordingSwitch + query);
    if (!sending_.done()) return;
    sending_ = sendSwitches();
    sending_.start();
}

Task<> CameraPanel::sendSwitches() {
    while (!switches_.empty()) {
        std::string url = std::move(switches_.front());
        switches_.pop_front();
        Task<HttpReply> asking = WebBrowserTst_.get(std::move(url), Wanted::Nothing);
        co_await asking;
    }
}

Task<> CameraPanel::Command8_Click() {
    while (inetFileGet_.running() && !busy_.active())
        co_await clock_.sleep(kTurn);
    if (busy_.active()) co_return;
    std::string url = cameraBaseUrl(panel_) + kLatestImagePath;
    std::filesystem::path folder = module_.programFolder / "";
    std::string fileName = kWorkingPicture;
    Task<HttpReply> download = DownloadFile(std::move(url), std::move(folder), std::move(fileName));
    const HttpReply reply = co_await download;
    if (busy_.active()) co_return; // a capture took the transfer over
    if (reply.ok) {
        views_.showLatest(module_.programFolder / kWorkingPicture);
        co_return;
    }
    std::string message = "The camera sent no picture: " + reply.fault +
                          ".\nCheck its power and network, and its address and port on the page "
                          "Camera.";
    co_await op_.tell(std::move(message));
}

} // namespace orvane

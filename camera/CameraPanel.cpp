#include "camera/CameraPanel.h"

#include "camera/CameraAddress.h"
#include "platform/Conversions.h"
#include "platform/Paths.h"
#include "station/Scope.h"

#include <cerrno>
#include <fstream>
#include <system_error>

namespace orvane {

namespace {

constexpr const char* kRecordingSwitch = "/cgi/live_s_hide2.cgi";
constexpr std::size_t kSlice = std::size_t{1} << 24; ///< bytes that are written at once
constexpr Ticks kTurn = 10ms; ///< between two looks whether a transfer has ended
constexpr const char* kTesting = "testing...";
constexpr const char* kNotTested = "not tested: the station is busy";

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
    switchRecording("?rec=1", "recording switched on");
}

void CameraPanel::Command7_Click() {
    switchRecording("?rec=0", "recording switched off");
}

void CameraPanel::switchRecording(const char* query, std::string done) {
    switches_.push_back({cameraBaseUrl(panel_) + kRecordingSwitch + query, std::move(done)});
    panel_.lbl_camera.caption = "switching...";
    if (!sending_.done()) return;
    sending_ = sendSwitches();
    sending_.start();
}

Task<> CameraPanel::sendSwitches() {
    while (!switches_.empty()) {
        Switch next = std::move(switches_.front());
        switches_.pop_front();
        Task<HttpReply> asking = WebBrowserTst_.get(std::move(next.url), Wanted::Nothing);
        const HttpReply reply = co_await asking;
        panel_.lbl_camera.caption = reply.ok ? next.done : shortReason(reply.fault);
    }
}

Task<> CameraPanel::Command8_Click() {
    if (busy_.active()) co_return;
    Value<std::string>& line = panel_.lbl_camera.caption;
    const Scope testing([&line](bool on) {
        if (on) {
            line = kTesting;
        } else if (line.get() == kTesting) {
            line = kNotTested;
        }
    });
    while (inetFileGet_.running() && !busy_.active())
        co_await clock_.sleep(kTurn);
    if (busy_.active()) co_return;
    CameraRequest asked = request();
    std::string url = asked.camera + kLatestImagePath;
    std::filesystem::path folder = module_.programFolder / "";
    std::string fileName = kWorkingPicture;
    Task<HttpReply> download = DownloadFile(std::move(url), std::move(folder), std::move(fileName));
    const HttpReply reply = co_await download;
    if (busy_.active()) co_return; // a capture took the transfer over
    if (reply.ok) views_.showLatest(module_.programFolder / kWorkingPicture);
    Task<CameraAnswer> judging = judge(reply, std::move(asked));
    const CameraAnswer answer = co_await judging;
    line = answer.text();
    if (reply.ok) co_return;
    std::string message = "The camera sent no picture: " + reply.fault +
                          ".\nCheck its power and network, and its address and port on the page "
                          "Camera.";
    co_await op_.tell(std::move(message));
}

void CameraPanel::txtIp_Change() {
    panel_.lbl_camera.caption = std::string(); // it spoke of another address
    const std::string before = std::exchange(address_, panel_.txtIp.text);
    if (isPasted(before, address_)) address_LostFocus();
}

void CameraPanel::txtPort_Change() {
    panel_.lbl_camera.caption = std::string();
}

void CameraPanel::address_LostFocus() {
    const CameraAddress address = splitAddress(panel_.txtIp.text.get(), panel_.txtPort.text.get());
    panel_.txtIp.text = address_ = address.host;
    panel_.txtPort.text = address.port;
    if (address.wasHttps)
        panel_.lbl_camera.caption = "not https: the camera is asked over plain HTTP";
}

Task<CameraAnswer> CameraPanel::judge(const HttpReply& reply, CameraRequest request) {
    Task<CameraAnswer> judging = judgeAnswer(imageControl_, reply, clock_.ticks() - request.began);
    CameraAnswer answer = co_await judging;
    if (answer.fault != kCancelled) noteAnswer(request.camera, answer);
    co_return answer;
}

void CameraPanel::noteAnswer(const std::string& camera, CameraAnswer answer) {
    seen_ = Seen{clock_.now(), camera, std::move(answer)};
}

void CameraPanel::tellLive(const CameraAnswer& answer) {
    if (answer.fault == kCancelled) return;
    if (answer.isPicture()) return endLive();
    if (!liveSince_) liveSince_ = clock_.now();
    setLiveText("live view: " + answer.fault + " since " + timeText(*liveSince_));
}

void CameraPanel::endLive() {
    if (!liveSince_) return; // asked at every pass of the main loop
    liveSince_.reset();
    setLiveText({});
}

/// Told once: what another button brings stays until the live view has something new to tell.
void CameraPanel::setLiveText(const std::string& text) {
    if (text == liveText_) return;
    Value<std::string>& line = panel_.lbl_camera.caption;
    if (!text.empty() || line.get() == liveText_) line = text;
    liveText_ = text;
    views_.tellLive(text);
}

} // namespace orvane

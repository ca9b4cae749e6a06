#pragma once

#include "camera/CameraAnswer.h"
#include "platform/Operator.h"
#include "station/Busy.h"
#include "station/ImageViews.h"
#include "station/OperationPanel.h"

#include <deque>
#include <optional>

namespace orvane {

/// "http://" + address + ":" + port, as the fields stand; no trailing slash, no check.
std::string cameraBaseUrl(const OperationPanel& panel);

inline constexpr const char* kLatestImagePath = "/Images/full.jpg";
inline constexpr const char* kWorkingPicture = "full.jpg"; ///< in the program's folder

/// A request for the camera's picture.
struct CameraRequest {
    std::string camera; ///< the base address
    Ticks began{0};
};

/// The panel's camera operations: the one download operation and the buttons that use it.
class CameraPanel {
  public:
    CameraPanel(Module1& module, OperationPanel& panel, HttpTransfer& inetFileGet,
                HttpTransfer& WebBrowserTst, ImageViews& views, Busy& busy, Operator& op,
                Clock& clock, ImageControl& imageControl)
        : module_(module), panel_(panel), inetFileGet_(inetFileGet), WebBrowserTst_(WebBrowserTst),
          views_(views), busy_(busy), op_(op), clock_(clock), imageControl_(imageControl) {
        busy_.lock(panel_.Command8.enabled);
    }

    /// Fetches `url` and writes the body over the file folder + fileName, in place from the start
    /// and without shortening it. Not `ok` when the fetch or the write failed, with the reason as
    /// its fault; after a failed fetch the file is untouched. `folder` ends in a separator. What
    /// `inetFileGet` has running is cancelled: only a capture may find something there.
    Task<HttpReply> DownloadFile(std::string url, std::filesystem::path folder,
                                 std::string fileName);

    void Command5_Click(); ///< the camera's own recording on; requests go one after the other
    void Command7_Click(); ///< the camera's own recording off
    /// Test fetch: shows the camera's current picture, or tells why there is none. Waits for the
    /// transfer that is under way; does nothing while a capture or run is in progress.
    Task<> Command8_Click();

    /// After an edit of the address: what was pasted is taken apart into both fields. Requests use
    /// the fields as they stand.
    void txtIp_Change();
    void txtPort_Change();
    /// Takes the address apart, and the blanks around both fields away.
    void address_LostFocus();

    /// What the camera answered last when it was asked for its picture.
    struct Seen {
        WallTime at;
        std::string camera; ///< the base address
        CameraAnswer answer;
    };
    const std::optional<Seen>& lastSeen() const { return seen_; }
    /// A request of the present camera's picture begins.
    CameraRequest request() const { return {cameraBaseUrl(panel_), clock_.ticks()}; }
    /// Judges what a request brought, and takes note of it. `reply` outlives the task.
    Task<CameraAnswer> judge(const HttpReply& reply, CameraRequest request);
    /// Takes note of an answer that a capture has judged.
    void noteAnswer(const std::string& camera, CameraAnswer answer);

    /// Tells in `lbl_camera`, and where the live view is shown, since when it brings no picture.
    void tellLive(const CameraAnswer& answer);
    /// The live view is off.
    void endLive();

  private:
    struct Switch {
        std::string url;
        std::string done; ///< what is told when the camera has taken it
    };

    void switchRecording(const char* query, std::string done);
    Task<> sendSwitches();
    void setLiveText(const std::string& text);

    Module1& module_;
    OperationPanel& panel_;
    HttpTransfer& inetFileGet_;
    HttpTransfer& WebBrowserTst_;
    ImageViews& views_;
    Busy& busy_;
    Operator& op_;
    Clock& clock_;
    ImageControl& imageControl_;
    std::string address_; ///< as it was last seen
    std::optional<Seen> seen_;
    std::optional<WallTime> liveSince_; ///< the live view's first failure in a row
    std::string liveText_;
    std::deque<Switch> switches_; ///< to be asked for
    Task<> sending_;
};

} // namespace orvane

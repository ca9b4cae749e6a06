#pragma once

#include "platform/Clock.h"
#include "platform/HttpTransfer.h"
#include "platform/Operator.h"
#include "station/Busy.h"
#include "station/ImageViews.h"
#include "station/OperationPanel.h"

#include <deque>

namespace orvane {

/// "http://" + address + ":" + port, as the fields stand; no trailing slash, no check.
std::string cameraBaseUrl(const OperationPanel& panel);

inline constexpr const char* kLatestImagePath = "/Images/full.jpg";
inline constexpr const char* kWorkingPicture = "full.jpg"; ///< in the program's folder

/// The panel's camera operations: the one download operation and the buttons that use it.
class CameraPanel {
  public:
    CameraPanel(Module1& module, OperationPanel& panel, HttpTransfer& inetFileGet,
                HttpTransfer& WebBrowserTst, ImageViews& views, Busy& busy, Operator& op,
                Clock& clock)
        : module_(module), panel_(panel), inetFileGet_(inetFileGet), WebBrowserTst_(WebBrowserTst),
          views_(views), busy_(busy), op_(op), clock_(clock) {}

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

  private:
    void switchRecording(const char* query);
    Task<> sendSwitches();

    Module1& module_;
    OperationPanel& panel_;
    HttpTransfer& inetFileGet_;
    HttpTransfer& WebBrowserTst_;
    ImageViews& views_;
    Busy& busy_;
    Operator& op_;
    Clock& clock_;
    std::deque<std::string> switches_; ///< addresses to be asked for
    Task<> sending_;
};

} // namespace orvane

#pragma once

#include "platform/HttpTransfer.h"
#include "platform/Operator.h"
#include "platform/WebBrowser.h"
#include "station/Busy.h"
#include "station/ImageViews.h"
#include "station/OperationPanel.h"

namespace orvane {

/// "http://" + address + ":" + port, as the fields stand; no trailing slash, no check.
std::string cameraBaseUrl(const OperationPanel& panel);

inline constexpr const char* kLatestImagePath = "/Images/full.jpg";
inline constexpr const char* kWorkingPicture = "full.jpg"; ///< in the program's folder

/// The panel's camera operations: the one download operation and the buttons that use it.
class CameraPanel {
  public:
    CameraPanel(Module1& module, OperationPanel& panel, HttpTransfer& inetFileGet,
                WebBrowser& webBrowserTst, ImageViews& views, Busy& busy, Operator& op)
        : module_(module), panel_(panel), inetFileGet_(inetFileGet), webBrowserTst_(webBrowserTst),
          views_(views), busy_(busy), op_(op) {}

    /// Fetches `url` and writes the body over the file folder + fileName, in place from the start
    /// and without shortening it. Not `ok` when the fetch or the write failed, with the reason as
    /// its fault; after a failed fetch the file is untouched. `folder` ends in a separator.
    Task<HttpReply> DownloadFile(std::string url, std::filesystem::path folder,
                                 std::string fileName);

    void Command5_Click(); ///< the camera's own recording on
    void Command7_Click(); ///< the camera's own recording off
    /// Test fetch: shows the camera's current picture, or tells why there is none. Does nothing
    /// while a capture or run is in progress.
    Task<> Command8_Click();

  private:
    Module1& module_;
    OperationPanel& panel_;
    HttpTransfer& inetFileGet_;
    WebBrowser& webBrowserTst_;
    ImageViews& views_;
    Busy& busy_;
    Operator& op_;
};

} // namespace orvane

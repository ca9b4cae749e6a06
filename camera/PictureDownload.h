#pragma once

#include "archive/PictureArchive.h"
#include "camera/CameraPanel.h"
#include "station/Faults.h"

namespace orvane {

/// What the runs against the camera's store work with; all of it outlives them.
struct StoreParts {
    Module1& module;
    OperationPanel& panel;
    PictureArchive& archive;
    HttpTransfer& inetFileGet;
    HttpTransfer& WbBrowser1; ///< for the pages of searches
    HttpTransfer& WbBrowser2; ///< for the pages of synchronisations
    ErrorLog& log;
    Faults& faults;
    Operator& op;
    Clock& clock;
    Busy& busy;
};

/// Downloads the listed pictures of one run into its dated folder, one by one. Captures go first:
/// while one is in progress nothing new is fetched.
class PictureDownload {
  public:
    explicit PictureDownload(const StoreParts& parts) : parts_(parts) {}

    /// A run begins; `folder` ends in a separator.
    void begin(const std::filesystem::path& folder);
    /// Fetches the picture at `path` on the camera under `name`, a plain name. True: the archive
    /// holds it; else the reason is logged.
    Task<bool> fetch(std::string path, std::string name);
    /// Ends the run's transfer; nothing more is fetched.
    void stop();

    bool stopped() const { return stopped_; }
    /// Whether a picture is on its way, which a capture waits for.
    bool transferring() const { return transferring_; }
    /// So many pictures failed in a row, or were asked for in all, that the run had better end.
    bool hopeless() const;

  private:
    Task<HttpReply> download(std::string url);
    bool failed(const std::string& name, const std::string& reason);

    const StoreParts& parts_;
    std::filesystem::path folder_;
    bool stopped_ = false;
    bool transferring_ = false; ///< the transfer that runs is this run's
    std::int32_t downloaded_ = 0;
    int failedInARow_ = 0;
    int requested_ = 0;
};

} // namespace orvane

#pragma once

#include "camera/PictureDownload.h"
#include "camera/StoreSearch.h"

namespace orvane {

/// The runs against the camera's own store of pictures: search and download (`Test_DL`,
/// `Download_proc`, through `WbBrowser1`) and synchronisation (`cmd_Download`, through
/// `WbBrowser2`). One run at a time; a second start does nothing.
///
/// A run asks for one small page after another and downloads each picture of a page into the dated
/// folder of the day on which the run began. It ends with the first page that brought a picture,
/// without a match, at a picture later than its beginning, when it is stopped, and after ten pages
/// or twenty pictures in a row that brought nothing.
class ImageStore {
  public:
    using Parts = StoreParts;

    explicit ImageStore(Parts parts) : parts_(parts), download_(parts_) {}

    /// Search and download, from the panel's button.
    Task<> Test_DL();
    /// The same from the main loop; tells when the camera does not answer within ten seconds.
    Task<> Download_proc();
    /// Synchronisation over the span of `lbl_sync`.
    Task<> cmd_Download();
    /// Stops the run wherever it is.
    void Command6_Click();
    bool running() const { return running_; }
    /// Whether a picture of the run is on its way, which a capture waits for.
    bool transferring() const { return download_.transferring(); }

    /// Moves the from-date back by the search span (half an hour more when a synchronisation is
    /// pending) and puts the query into `Label7`. False: the start time is invalid, as it says
    /// then.
    bool BuildSearchQuery();
    /// The same over the synchronisation span.
    bool BuildSyncQuery();
    /// Looks whether the dated folder holds `name`; always answers false, so that a run fetches
    /// every listed picture again. A listing that fails is told in `Label7`.
    Task<bool> Sync_file(std::string name);

  private:
    enum class Chain { Search, Synchronise };
    enum class PageEnd { NextPage, Completed, Failed };
    struct Start {
        bool lockStop = false;    ///< disable Command2 until the first reply has been read
        bool editFolders = false; ///< make the folders of the processed copies too
        bool tellSilence = false; ///< tell when no reply comes within ten seconds
    };

    void setRunning(bool running);
    Task<> run(Chain chain, Start start);
    Task<> runPages(Chain chain, Start start);
    void begin(const Start& start);
    void makeFolders(const Start& start);
    bool navigate(Chain chain);
    Task<> waitForReply();
    Task<PageEnd> readPage(Chain chain, HttpReply reply);
    Task<PageEnd> readRecords(std::string reply);
    bool buildQuery(WallTime from);
    void skip(std::string_view name);
    void complete();
    PageEnd end(PageEnd end, const char* message, const std::string& reason = {});

    Parts parts_;
    PictureDownload download_;
    Task<HttpReply> page_; ///< the page that was asked for last
    bool running_ = false;
    std::filesystem::path datedFolder_; ///< ends in a separator
    WallTime fromDate_{};
    ImageStamp endStamp_; ///< the moment the run began
    ImageStamp stamp_;    ///< of the last record
    int skipped_ = 0;     ///< names that cannot be used
    std::string fault_;   ///< why the run was given up
};

} // namespace orvane

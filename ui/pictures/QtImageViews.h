#pragma once

#include "platform/Operator.h"
#include "station/ImageViews.h"
#include "ui/pictures/LatestWindow.h"
#include "ui/pictures/PictureArea.h"
#include "ui/pictures/ThumbnailStrip.h"

#include <vector>

namespace orvane {

/// The picture windows inside the main window: one for the latest picture, one for each picture
/// that the operator opened, up to `kMaxWindows`. Exists before the main window does; until
/// `attach` nothing is shown. `control` is theirs alone. The windows belong to the area, this only
/// finds them; it outlives the area, whose going is noticed by the weak pointers.
class QtImageViews final : public ImageViews {
  public:
    static constexpr int kMaxWindows = 24; ///< bounds the memory: each keeps a screenful of pixels

    QtImageViews(Clock& clock, Faults& faults, Operator& op, const Module1& module,
                 const DayWatch& days, LibjpegImageControl& control);

    void attach(PictureArea* area, ThumbnailStrip* strip);
    /// Decodes for every view.
    PictureLoader& loader() { return loader_; }

    void refreshThumbnails(const ThumbnailHistory& history) override;
    void showLatest(const std::filesystem::path& file) override;
    void showLive(const std::string& jpeg) override;
    void tellLive(const std::string& text) override;

    /// The latest-image window opens with the first picture. Once the operator has closed it, new
    /// pictures leave it closed until one is asked for: by `wantLatest` or `openLatest`.
    void wantLatest() { latestWanted_ = true; }

    /// Brings the latest-image window to the front, with `file` when nothing was shown in it yet;
    /// without a `file`, with the newest picture of an earlier run.
    void openLatest(const std::filesystem::path& file);
    /// Opens a window for each of `files`, processed as the options say, or brings the one that
    /// shows it to the front; a dated folder's file gets its processed copy anew. Beyond the
    /// windows' number the rest is told to the operator.
    void openImages(const std::vector<std::filesystem::path>& files);
    /// The same for what was dropped onto the window; what is no JPEG file is told, once.
    void openDropped(const std::vector<std::filesystem::path>& files);
    void openImage(const std::filesystem::path& file) { openImages({file}); }
    /// Opens a window for `file` as it is filed, or brings the one that shows it to the front.
    void openFiled(const std::filesystem::path& file);
    /// Writes what `source` shows to `target`, replacing it; a failure is told.
    void saveAs(const PictureSource& source, const std::filesystem::path& target);

  private:
    bool open(const PictureSource& source, const QString& title);
    ImageWindow* find(const PictureSource& source) const;
    QList<ImageWindow*> windows() const;
    void add(ImageWindow& window);
    LatestWindow* latestWindow();
    Task<> writeCopy(std::filesystem::path file);
    Task<> save(PictureSource source, std::filesystem::path target);

    Operator& op_;
    Clock& clock_;
    const Module1& module_;
    const DayWatch& days_;
    PictureLoader loader_;
    ImageServices services_;
    QPointer<PictureArea> area_;
    QPointer<ThumbnailStrip> strip_;
    QPointer<LatestWindow> latest_;
    bool latestWanted_ = true;         ///< the next picture may open the latest-image window
    std::filesystem::path latestFile_; ///< what it shows again when it is opened again
    TaskGroup tasks_;
};

} // namespace orvane

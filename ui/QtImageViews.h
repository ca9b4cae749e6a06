#pragma once

#include "core/ImageViews.h"
#include "ui/ImageWindow.h"
#include "ui/ThumbnailStrip.h"

#include <QMdiArea>
#include <QPointer>

namespace orvane {

/// The picture windows inside the main window: one for the latest picture, one for each picture
/// that the operator opened. Exists before the main window does; until `attach` nothing is shown.
class QtImageViews final : public ImageViews {
  public:
    void attach(QMdiArea* area, ThumbnailStrip* strip);

    void
    refreshThumbnails(const std::array<ThumbnailEntry, Module1::kThumbnailCount>& history) override;
    void showLatest(const std::filesystem::path& file) override;
    void showLive(const std::string& jpeg) override;

    /// The latest-image window opens with the first picture. Once the operator has closed it, new
    /// pictures leave it closed until one is asked for: by `wantLatest` or `openLatest`.
    void wantLatest() { latestWanted_ = true; }

    /// Brings the latest-image window to the front, with `file` when nothing was shown in it yet.
    void openLatest(const std::filesystem::path& file);
    /// Opens a window for `file`, or brings the one that shows it to the front.
    void openImage(const std::filesystem::path& file);

  private:
    ImageWindow* addWindow();
    ImageWindow* latestWindow();

    QPointer<QMdiArea> area_;
    QPointer<ThumbnailStrip> strip_;
    QPointer<ImageWindow> latest_;
    bool latestWanted_ = true;         ///< the next picture may open the latest-image window
    std::filesystem::path latestFile_; ///< what it shows again when it is opened again
};

} // namespace orvane

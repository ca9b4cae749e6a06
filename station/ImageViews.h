#pragma once

#include "station/Module1.h"

#include <filesystem>
#include <string>

namespace orvane {

/// The windows that show pictures: the thumbnail strip and the latest-image window.
class ImageViews {
  public:
    virtual ~ImageViews() = default;
    /// Shows the history again after it changed.
    virtual void refreshThumbnails(const ThumbnailHistory& history) = 0;
    /// Shows a picture file in the latest-image window.
    virtual void showLatest(const std::filesystem::path& file) = 0;
    /// Shows a JPEG that was not filed in the latest-image window.
    virtual void showLive(const std::string& jpeg) = 0;
    /// Why no newer picture of the live view comes, told where its last one is shown; empty: it
    /// has been switched off, or a picture has come.
    virtual void tellLive(const std::string& text) = 0;
};

} // namespace orvane

#pragma once

#include "imaging/ImageOptions.h"
#include "platform/ImageControl.h"
#include "platform/Task.h"

#include <filesystem>
#include <string>

namespace orvane {

/// Applies the image options to one picture of a dated folder: mirrors and stamps it and saves it
/// below "Edit" (see `editPathOf`), whose folders are created. `image` itself is only read. With
/// `processingOn` false nothing is done at all. A fault leaves no part of a file. `control` must
/// outlive the task.
Task<Fault> ProcessImageFile(ImageControl& control, std::filesystem::path image,
                             ImageOptions options, bool processingOn);

/// What it does to the picture in `control`, loaded from `image`: mirrors and stamps it.
void applyOptions(ImageControl& control, const ImageOptions& options,
                  const std::filesystem::path& image);

/// D/yyyymmdd/name becomes D/Edit/yyyymmdd/name.
std::filesystem::path editPathOf(const std::filesystem::path& image);
/// Where the untouched copy goes: D/Edit/yyyymmdd/name_raw.jpg.
std::filesystem::path rawPathOf(const std::filesystem::path& image);

/// "yyyy/mm/dd hh:mm" cut by position out of the path's last 22 characters, UTF-8. A shorter path
/// gives whatever characters are there.
std::string stampTextOf(const std::filesystem::path& image);
/// "yyyy:mm:dd hh:mm:ss" from the same characters, as EXIF writes it; empty unless all are digits.
std::string exifStampOf(const std::filesystem::path& image);

} // namespace orvane

#pragma once

#include "imaging/ImageOptions.h"
#include "platform/ImageControl.h"
#include "platform/Task.h"

#include <filesystem>
#include <string>

namespace orvane {

/// Applies the image options to one picture of a dated folder: mirrors and stamps it and saves it
/// below "Edit" (see `editPathOf`), whose folders are created. `image` itself is only read. With
/// `processingOn` false nothing is done at all. False: `fault` tells why, and no part of a file
/// is left. `control` and `fault` must outlive the task.
Task<bool> ProcessImageFile(ImageControl& control, std::filesystem::path image,
                            ImageOptions options, bool processingOn, std::string& fault);

/// The same without saving: leaves the processed picture in `control`.
Task<bool> LoadProcessedImage(ImageControl& control, std::filesystem::path image,
                              ImageOptions options, std::string& fault);

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

#pragma once

#include "platform/Fault.h"

#include <cstdio>
#include <filesystem>

namespace orvane {

/// Waits until what was written to `file` is on the disk. False: `errno` tells why not.
bool forceToDisk(std::FILE* file);
/// The same for the names in a folder. A file system that knows no such request is no failure.
Fault forceFolderToDisk(const std::filesystem::path& folder);

} // namespace orvane

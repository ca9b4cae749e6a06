#pragma once

#include <filesystem>

namespace orvane::test {

/// Sets a folder's time of change, which the standard library can do for files only where Windows
/// is concerned.
void setFolderTime(const std::filesystem::path& folder, std::filesystem::file_time_type time);

} // namespace orvane::test

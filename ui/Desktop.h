#pragma once

#include <filesystem>

namespace orvane {

/// Has the desktop's own program show a file, a page or a folder. Answers at once; false: there is
/// no such program.
bool openOnDesktop(const std::filesystem::path& path);

} // namespace orvane

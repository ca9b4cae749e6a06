#pragma once

#include <filesystem>

namespace orvane {

/// The JPEG file that comes after (`forward`) or before `file` in its folder, in the order of their
/// names; empty where there is none. `file` itself need not exist any more.
std::filesystem::path neighbourOf(const std::filesystem::path& file, bool forward);

/// Whether `file` lies in a dated folder, one named by eight digits, outside the tree of processed
/// copies ("Edit").
bool isInDatedFolder(const std::filesystem::path& file);

} // namespace orvane

#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

// Whole files at once. Each function returns the system's reason for a failure ("No space left on
// device"), or nothing.

/// Writes `bytes` to a temporary beside `to` and renames it, so that the final name never holds a
/// part of a file. The temporary, "." + name + ".part", is removed on failure.
std::optional<std::string> writeToFinalName(std::string_view bytes,
                                            const std::filesystem::path& to);
std::optional<std::string> copyToFinalName(const std::filesystem::path& from,
                                           const std::filesystem::path& to);
/// Files beyond 512 MB are refused.
std::optional<std::string> readWholeFile(const std::filesystem::path& from, std::string& bytes);

} // namespace orvane

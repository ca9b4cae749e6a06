#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// Names that fit one buffer of `SchFile`.
inline constexpr std::size_t kNameBufferSize = 1000;

/// Whether a name fits a pattern with "*" (any text) and "?" (any character); "*.*" fits every
/// name.
bool matchesPattern(std::string_view name, std::string_view pattern);

/// Lists the files, not the folders, that `path` names, in the order of their names: a folder and,
/// behind its last separator, a name or pattern; `pattern` (empty: "*.*") where the path ends in a
/// separator. False when the buffer is full before the listing ends, or the folder cannot be read.
bool SchFile(const std::filesystem::path& path, std::string pattern,
             std::vector<std::filesystem::path>& buffer);

} // namespace orvane

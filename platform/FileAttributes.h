#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace orvane {

// Bits of a directory entry's attribute word, as Windows' FILE_ATTRIBUTE_ constants have them.
inline constexpr std::uint32_t kAttributeReadOnly = 1;
inline constexpr std::uint32_t kAttributeHidden = 2;
inline constexpr std::uint32_t kAttributeFolder = 16;
inline constexpr std::uint32_t kAttributeArchive = 32;

/// The attribute word of a file or folder; nothing when there is none of that name. Systems
/// without such words make one: a folder 16, a file 32, with 1 when its owner may not write to it
/// and 2 when its name begins with a dot.
std::optional<std::uint32_t> attributeWord(const std::filesystem::path& entry);

} // namespace orvane

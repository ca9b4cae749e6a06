#pragma once

#include "platform/Fault.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>

namespace orvane {

// What each operating system is asked in a way of its own.

// Bits of a directory entry's attribute word, as Windows' FILE_ATTRIBUTE_ constants have them.
inline constexpr std::uint32_t kAttributeReadOnly = 1;
inline constexpr std::uint32_t kAttributeHidden = 2;
inline constexpr std::uint32_t kAttributeFolder = 16;
inline constexpr std::uint32_t kAttributeArchive = 32;

/// The attribute word of a file or folder; nothing when there is none of that name. Systems
/// without such words make one: a folder 16, a file 32, with 1 when its owner may not write to it
/// and 2 when its name begins with a dot.
std::optional<std::uint32_t> attributeWord(const std::filesystem::path& entry);

/// Waits until what was written to `file` is on the disk. False: `errno` tells why not.
bool forceToDisk(std::FILE* file);
/// The same for the names in a folder. A file system that knows no such request is no failure.
Fault forceFolderToDisk(const std::filesystem::path& folder);

/// Asks the operating system not to put the PC to sleep (the screen may go dark) while `awake` is
/// true. Ends with the program. Does nothing where the system has no such request.
void keepAwake(bool awake);

} // namespace orvane

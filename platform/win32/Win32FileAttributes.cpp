#include "platform/FileAttributes.h"

#include <windows.h>

namespace orvane {

std::optional<std::uint32_t> attributeWord(const std::filesystem::path& entry) {
    const DWORD word = GetFileAttributesW(entry.c_str());
    if (word == INVALID_FILE_ATTRIBUTES) return std::nullopt;
    return word;
}

} // namespace orvane

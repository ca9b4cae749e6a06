#include "platform/FileAttributes.h"

namespace orvane {

std::optional<std::uint32_t> attributeWord(const std::filesystem::path& entry) {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(entry, error);
    if (!std::filesystem::exists(status)) return std::nullopt;
    std::uint32_t word =
        std::filesystem::is_directory(status) ? kAttributeFolder : kAttributeArchive;
    if ((status.permissions() & std::filesystem::perms::owner_write) ==
        std::filesystem::perms::none)
        word |= kAttributeReadOnly;
    if (entry.filename().native().starts_with('.')) word |= kAttributeHidden;
    return word;
}

} // namespace orvane

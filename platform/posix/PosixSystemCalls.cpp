#include "platform/SystemCalls.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

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

bool forceToDisk(std::FILE* file) {
    return ::fsync(::fileno(file)) == 0;
}

Fault forceFolderToDisk(const std::filesystem::path& folder) {
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    // a folder that may be written but not read cannot be opened for this
    if (descriptor < 0 && errno == EACCES) return std::nullopt;
    if (descriptor < 0) return std::generic_category().message(errno);
    const int result = ::fsync(descriptor);
    const int reason = errno;
    ::close(descriptor);
    if (result == 0 || reason == EINVAL || reason == ENOSYS || reason == ENOTSUP)
        return std::nullopt;
    return std::generic_category().message(reason);
}

/// Nothing to ask for: a recording machine's sleep is switched off in its system settings, and the
/// desktops that have such a request each have one of their own.
void keepAwake(bool) {}

} // namespace orvane

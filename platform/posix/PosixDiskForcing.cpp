#include "platform/DiskForcing.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace orvane {

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

} // namespace orvane

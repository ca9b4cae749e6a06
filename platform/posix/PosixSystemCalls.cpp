#include "platform/SystemCalls.h"

#include <cerrno>
#include <csignal>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
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

/// Open for reading only, which is enough: another user's file can be locked too.
FileLock::Outcome FileLock::take(const std::filesystem::path& file) {
    handle_ = ::open(file.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC, 0644);
    if (handle_ >= 0 && ::flock(static_cast<int>(handle_), LOCK_EX | LOCK_NB) == 0) return {};
    const int reason = errno;
    if (handle_ >= 0 && reason == EWOULDBLOCK) return {true, std::nullopt};
    return {false, std::generic_category().message(reason)};
}

FileLock::~FileLock() {
    if (handle_ >= 0) ::close(static_cast<int>(handle_));
}

namespace {

int requests[2]{-1, -1}; ///< a pipe, to be read and written

void note(int number) {
    const int reason = errno;
    const char request = static_cast<char>(number);
    static_cast<void>(::write(requests[1], &request, 1) + 1); // a full pipe holds requests enough
    errno = reason;
}

} // namespace

std::optional<int> keepEndRequests() {
    if (::pipe2(requests, O_CLOEXEC | O_NONBLOCK) != 0) return std::nullopt;
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        // what the program was started to ignore (nohup) stays ignored
        if (std::signal(number, note) == SIG_IGN) std::signal(number, SIG_IGN);
    }
    return requests[0];
}

std::string endRequest() {
    char request = 0;
    if (::read(requests[0], &request, 1) != 1) return {};
    return request == SIGTERM ? "SIGTERM" : request == SIGINT ? "SIGINT" : "SIGHUP";
}

/// Nothing to ask for: a recording machine's sleep is switched off in its system settings, and the
/// desktops that have such a request each have one of their own.
void keepAwake(bool) {}

std::optional<std::string> protectSecret(const std::string& secret) {
    return secret;
}

std::optional<std::string> unprotectSecret(const std::string& stored) {
    return stored;
}

} // namespace orvane

#include "tests/support/FolderTime.h"

#include <windows.h>

#include <chrono>
#include <cstdint>
#include <stdexcept>
#include <system_error>

namespace orvane::test {

namespace {

using Units = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>; // of 100 ns

/// Opened for its attributes; folders need the backup flag.
HANDLE openFolder(const std::filesystem::path& folder) {
    const HANDLE handle =
        ::CreateFileW(folder.c_str(), FILE_READ_ATTRIBUTES | FILE_WRITE_ATTRIBUTES,
                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        throw std::system_error(static_cast<int>(::GetLastError()), std::system_category());
    return handle;
}

} // namespace

/// Moves the stored time by the difference to the present one, so that the clocks' epochs do not
/// matter.
void setFolderTime(const std::filesystem::path& folder, std::filesystem::file_time_type time) {
    const auto present = std::filesystem::last_write_time(folder);
    const HANDLE handle = openFolder(folder);
    FILETIME stored{};
    ::GetFileTime(handle, nullptr, nullptr, &stored);
    auto units = static_cast<std::int64_t>(stored.dwHighDateTime) << 32 | stored.dwLowDateTime;
    units += std::chrono::round<Units>(time - present).count();
    stored.dwHighDateTime = static_cast<DWORD>(units >> 32);
    stored.dwLowDateTime = static_cast<DWORD>(units & 0xFFFFFFFF);
    const bool done = ::SetFileTime(handle, nullptr, nullptr, &stored) != FALSE;
    ::CloseHandle(handle);
    if (!done) throw std::runtime_error("the folder's time cannot be set");
}

} // namespace orvane::test

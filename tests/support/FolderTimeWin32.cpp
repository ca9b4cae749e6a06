#include "tests/support/FolderTime.h"

#include <windows.h>

#include <chrono>
#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace orvane::test {

/// Moves the stored time by the difference to the present one, so that the clocks' epochs do not
/// matter. Folders are opened with the backup flag; one that cannot be opened is told at the end.
void setFolderTime(const std::filesystem::path& folder, std::filesystem::file_time_type time) {
    using Units = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>; // of 100 ns
    const auto present = std::filesystem::last_write_time(folder);
    const HANDLE handle =
        ::CreateFileW(folder.c_str(), FILE_READ_ATTRIBUTES | FILE_WRITE_ATTRIBUTES,
                      FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                      FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    FILETIME stored{};
    ::GetFileTime(handle, nullptr, nullptr, &stored);
    std::int64_t units = 0;
    std::memcpy(&units, &stored, sizeof units);
    units += std::chrono::round<Units>(time - present).count();
    std::memcpy(&stored, &units, sizeof units);
    const bool done = ::SetFileTime(handle, nullptr, nullptr, &stored) != FALSE;
    ::CloseHandle(handle);
    if (!done) throw std::runtime_error("the folder's time cannot be set");
}

} // namespace orvane::test

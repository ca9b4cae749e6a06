#include "platform/DiskForcing.h"

#include <io.h>
#include <windows.h>

namespace orvane {

bool forceToDisk(std::FILE* file) {
    return ::_commit(::_fileno(file)) == 0; // FlushFileBuffers
}

/// NTFS keeps a journal of its names, and network drives refuse the request: what the system
/// answers changes nothing.
Fault forceFolderToDisk(const std::filesystem::path& folder) {
    const HANDLE handle = ::CreateFileW(
        folder.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return std::nullopt;
    ::FlushFileBuffers(handle);
    ::CloseHandle(handle);
    return std::nullopt;
}

} // namespace orvane

#include "platform/SystemCalls.h"

#include <io.h>
#include <windows.h>

namespace orvane {

std::optional<std::uint32_t> attributeWord(const std::filesystem::path& entry) {
    const DWORD word = GetFileAttributesW(entry.c_str());
    if (word == INVALID_FILE_ATTRIBUTES) return std::nullopt;
    return word;
}

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

/// The request belongs to the calling thread, so every call must come from the same one.
void keepAwake(bool awake) {
    ::SetThreadExecutionState(awake ? ES_CONTINUOUS | ES_SYSTEM_REQUIRED : ES_CONTINUOUS);
}

} // namespace orvane

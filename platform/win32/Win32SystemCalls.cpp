#include "platform/SystemCalls.h"

#include <system_error>

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

/// Opened without sharing, which is a lock; it goes with the program, and the file with it.
FileLock::Outcome FileLock::take(const std::filesystem::path& file) {
    const HANDLE handle =
        ::CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                      FILE_ATTRIBUTE_NORMAL | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    handle_ = reinterpret_cast<std::intptr_t>(handle);
    if (handle != INVALID_HANDLE_VALUE) return {};
    const DWORD reason = ::GetLastError();
    if (reason == ERROR_SHARING_VIOLATION) return {true, std::nullopt};
    return {false, std::system_category().message(static_cast<int>(reason))};
}

FileLock::~FileLock() {
    if (handle_ != -1) ::CloseHandle(reinterpret_cast<HANDLE>(handle_));
}

/// A program without a console is told of the session's end by its windows only.
std::optional<int> keepEndRequests() {
    return std::nullopt;
}

std::string endRequest() {
    return {};
}

/// The request belongs to the calling thread, so every call must come from the same one.
void keepAwake(bool awake) {
    ::SetThreadExecutionState(awake ? ES_CONTINUOUS | ES_SYSTEM_REQUIRED : ES_CONTINUOUS);
}

} // namespace orvane

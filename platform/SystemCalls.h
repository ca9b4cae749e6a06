#pragma once

#include "platform/Fault.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>

namespace orvane {

// What each operating system is asked in a way of its own.

// Bits of a directory entry's attribute word, as Windows' FILE_ATTRIBUTE_ constants have them.
inline constexpr std::uint32_t kAttributeReadOnly = 1;
inline constexpr std::uint32_t kAttributeHidden = 2;
inline constexpr std::uint32_t kAttributeFolder = 16;
inline constexpr std::uint32_t kAttributeArchive = 32;

/// The attribute word of a file or folder; nothing when there is none of that name. Systems
/// without such words make one: a folder 16, a file 32, with 1 when its owner may not write to it
/// and 2 when its name begins with a dot.
std::optional<std::uint32_t> attributeWord(const std::filesystem::path& entry);

/// Waits until what was written to `file` is on the disk. False: `errno` tells why not.
bool forceToDisk(std::FILE* file);
/// The same for the names in a folder. A file system that knows no such request is no failure.
Fault forceFolderToDisk(const std::filesystem::path& folder);

/// A lock of the operating system on a file, which is made where it is not there. Held while this
/// lives; a program that is killed leaves no lock behind.
class FileLock {
  public:
    /// What came of it: held, held by another program, or not to be had at all, with the reason.
    struct Outcome {
        bool isOthers = false;
        Fault fault;
    };

    FileLock() = default;
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    ~FileLock();

    /// May be called once.
    Outcome take(const std::filesystem::path& file);

  private:
    std::intptr_t handle_ = -1; ///< the system's own, -1 for none
};

/// From now on the system's requests to end the program (SIGTERM, SIGINT, SIGHUP, where there are
/// such) do not end it but are kept for `endRequest`. Answers the descriptor that can be read when
/// one has come; nothing where there are none. For one call in a program.
std::optional<int> keepEndRequests();
/// Takes the request that came first, such as "SIGTERM"; empty: none came.
std::string endRequest();

/// Asks the operating system not to put the PC to sleep (the screen may go dark) while `awake` is
/// true. Ends with the program. Does nothing where the system has no such request.
void keepAwake(bool awake);

/// A secret in the form in which it may be stored: on Windows encrypted for this user of this PC by
/// the system's data protection, elsewhere as it stands, for a file that nobody else may read.
/// Nothing: the system refused.
std::optional<std::string> protectSecret(const std::string& secret);
/// What `protectSecret` was given; nothing for what is not of this user and PC.
std::optional<std::string> unprotectSecret(const std::string& stored);

} // namespace orvane

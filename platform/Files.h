#pragma once

#include "platform/Fault.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

namespace orvane {

// Whole files at once. Each function answers the system's reason for a failure ("No space left on
// device"), or nothing.

/// Writes files whole: to a temporary beside the final name, which is then renamed, so that the
/// final name never holds a part of a file. Every step is a function of its own, so that it can be
/// seen what becomes of the rest when one fails. One file at a time.
class FileWriter {
  public:
    /// Whether the bytes are on the disk itself before the rename; else a power cut may leave an
    /// empty file under the final name.
    enum class Force { No, Yes };

    explicit FileWriter(Force force) : force_(force) {}
    FileWriter(const FileWriter&) = delete;
    FileWriter& operator=(const FileWriter&) = delete;
    virtual ~FileWriter() = default;

    /// `to` is replaced at once or stays as it was. The temporary is removed on failure.
    Fault put(std::string_view bytes, const std::filesystem::path& to);
    /// Forces a folder's names to the disk, where forcing is on and the system can.
    Fault flush(const std::filesystem::path& folder);

  protected:
    virtual Fault open(const std::filesystem::path& file);
    virtual Fault write(std::string_view bytes);
    virtual Fault flushFile();
    virtual Fault close(); ///< the file is closed also when this fails
    virtual Fault rename(const std::filesystem::path& from, const std::filesystem::path& to);
    virtual Fault flushFolder(const std::filesystem::path& folder);

  private:
    Fault fill(std::string_view bytes);

    Force force_;
    std::FILE* file_ = nullptr;
};

/// What `FileWriter` calls the temporary beside `file`: "." + name + ".part".
std::filesystem::path temporaryOf(const std::filesystem::path& file);
/// Whether a name is that of a temporary of `FileWriter`, as a killed program leaves it behind.
bool isTemporary(const std::filesystem::path& file);

/// Makes a folder and those above it, where they are not there.
Fault makeFolder(const std::filesystem::path& folder);
/// Writes without forcing to the disk: for what can be made again.
Fault writeToFinalName(std::string_view bytes, const std::filesystem::path& to);
Fault copyToFinalName(const std::filesystem::path& from, const std::filesystem::path& to);
/// Appends without forcing to the disk; the file is made when it is not there, and open within this
/// call only. After a failure a part may have been written.
Fault appendToFile(std::string_view bytes, const std::filesystem::path& to);
/// Files beyond 512 MB are refused.
Fault readWholeFile(const std::filesystem::path& from, std::string& bytes);

} // namespace orvane

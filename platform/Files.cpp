#include "platform/Files.h"

#include "platform/SystemCalls.h"

#include <cerrno>
#include <memory>
#include <system_error>

namespace orvane {

namespace {

constexpr std::size_t kSizeLimit = 512u << 20;

enum class Access { Read, Write, Append };

// C streams: unlike file streams they promise the system's error number. Without their own buffer,
// since files are read and written at one go.
std::FILE* openFile(const std::filesystem::path& path, Access access) {
    errno = 0;
#ifdef _WIN32
    constexpr const wchar_t* kModes[] = {L"rb", L"wb", L"ab"};
    std::FILE* file = ::_wfopen(path.c_str(), kModes[static_cast<int>(access)]);
#else
    constexpr const char* kModes[] = {"rb", "wb", "ab"};
    std::FILE* file = std::fopen(path.c_str(), kModes[static_cast<int>(access)]);
#endif
    if (file != nullptr) std::setvbuf(file, nullptr, _IONBF, 0);
    return file;
}

std::string reason() {
    return errno == 0 ? "Input/output error" : std::generic_category().message(errno);
}

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

} // namespace

Fault FileWriter::put(std::string_view bytes, const std::filesystem::path& to) {
    const std::filesystem::path temporary = temporaryOf(to);
    Fault fault = open(temporary);
    if (!fault) {
        fault = fill(bytes);
        // A network drive may report a full disk only when the file is closed.
        const Fault closing = close();
        if (!fault) fault = closing;
    }
    if (!fault) fault = rename(temporary, to);
    std::error_code ignored;
    if (fault) std::filesystem::remove(temporary, ignored);
    return fault;
}

Fault FileWriter::fill(std::string_view bytes) {
    if (Fault fault = write(bytes)) return fault;
    return force_ == Force::Yes ? flushFile() : std::nullopt;
}

Fault FileWriter::flush(const std::filesystem::path& folder) {
    return force_ == Force::Yes ? flushFolder(folder) : std::nullopt;
}

Fault FileWriter::open(const std::filesystem::path& file) {
    file_ = openFile(file, Access::Write);
    if (file_ == nullptr) return reason();
    return std::nullopt;
}

Fault FileWriter::write(std::string_view bytes) {
    if (bytes.empty() || std::fwrite(bytes.data(), 1, bytes.size(), file_) == bytes.size())
        return std::nullopt;
    return reason();
}

Fault FileWriter::flushFile() {
    errno = 0;
    if (forceToDisk(file_)) return std::nullopt;
    return reason();
}

Fault FileWriter::close() {
    errno = 0;
    if (std::fclose(file_) == 0) return std::nullopt;
    return reason();
}

Fault FileWriter::rename(const std::filesystem::path& from, const std::filesystem::path& to) {
    std::error_code error;
    std::filesystem::rename(from, to, error);
    if (error) return error.message();
    return std::nullopt;
}

Fault FileWriter::flushFolder(const std::filesystem::path& folder) {
    return forceFolderToDisk(folder);
}

std::filesystem::path temporaryOf(const std::filesystem::path& file) {
    std::filesystem::path temporary = file.parent_path() / ".";
    temporary += file.filename();
    temporary += ".part";
    return temporary;
}

bool isTemporary(const std::filesystem::path& file) {
    return file.extension() == ".part" && file.filename().native().front() == '.';
}

Fault makeFolder(const std::filesystem::path& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) return error.message();
    return std::nullopt;
}

Fault writeToFinalName(std::string_view bytes, const std::filesystem::path& to) {
    return FileWriter(FileWriter::Force::No).put(bytes, to);
}

Fault copyToFinalName(const std::filesystem::path& from, const std::filesystem::path& to) {
    std::string bytes;
    if (auto fault = readWholeFile(from, bytes)) return fault;
    return writeToFinalName(bytes, to);
}

Fault appendToFile(std::string_view bytes, const std::filesystem::path& to) {
    std::FILE* file = openFile(to, Access::Append);
    if (file == nullptr) return reason();
    Fault fault;
    if (std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size()) fault = reason();
    errno = 0;
    if (std::fclose(file) != 0 && !fault) fault = reason();
    return fault;
}

Fault readWholeFile(const std::filesystem::path& from, std::string& bytes) {
    bytes.clear();
    const std::unique_ptr<std::FILE, CloseFile> file(openFile(from, Access::Read));
    if (!file) return reason();
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(from, error);
    if (error) return error.message();
    if (size > kSizeLimit) return "File too large";
    bytes.resize(static_cast<std::size_t>(size));
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));
    if (std::ferror(file.get()) != 0) return reason();
    return std::nullopt;
}

} // namespace orvane

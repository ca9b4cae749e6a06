#include "platform/FileCopy.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

namespace orvane {

namespace {

constexpr std::size_t kSizeLimit = 512u << 20;

enum class Access { Read, Write };

// C streams: unlike file streams they promise the system's error number. Without their own buffer,
// since files are read and written at one go.
std::FILE* openFile(const std::filesystem::path& path, Access access) {
    errno = 0;
#ifdef _WIN32
    std::FILE* file = ::_wfopen(path.c_str(), access == Access::Read ? L"rb" : L"wb");
#else
    std::FILE* file = std::fopen(path.c_str(), access == Access::Read ? "rb" : "wb");
#endif
    if (file != nullptr) std::setvbuf(file, nullptr, _IONBF, 0);
    return file;
}

std::string reason() {
    return errno == 0 ? "Input/output error" : std::generic_category().message(errno);
}

std::optional<std::string> writeFile(std::string_view bytes, const std::filesystem::path& path) {
    std::FILE* file = openFile(path, Access::Write);
    if (file == nullptr) return reason();
    std::optional<std::string> fault;
    const std::size_t written =
        bytes.empty() ? 0 : std::fwrite(bytes.data(), 1, bytes.size(), file);
    if (written != bytes.size()) fault = reason();
    // A network drive may report a full disk only when the file is closed.
    if (std::fclose(file) != 0 && !fault) fault = reason();
    return fault;
}

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

} // namespace

std::optional<std::string> writeToFinalName(std::string_view bytes,
                                            const std::filesystem::path& to) {
    std::filesystem::path temporary = to.parent_path() / ".";
    temporary += to.filename();
    temporary += ".part";
    std::optional<std::string> fault = writeFile(bytes, temporary);
    std::error_code error;
    if (!fault) {
        std::filesystem::rename(temporary, to, error);
        if (error) fault = error.message();
    }
    if (fault) std::filesystem::remove(temporary, error);
    return fault;
}

std::optional<std::string> copyToFinalName(const std::filesystem::path& from,
                                           const std::filesystem::path& to) {
    std::string bytes;
    if (auto fault = readWholeFile(from, bytes)) return fault;
    return writeToFinalName(bytes, to);
}

std::optional<std::string> readWholeFile(const std::filesystem::path& from, std::string& bytes) {
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

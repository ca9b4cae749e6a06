#include "platform/FileCopy.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

namespace orvane {

namespace {

constexpr std::size_t kSizeLimit = 512u << 20;

enum class Access { Read, Write };

// C streams: unlike file streams they promise the system's error number.
std::FILE* openFile(const std::filesystem::path& path, Access access) {
    errno = 0;
#ifdef _WIN32
    return ::_wfopen(path.c_str(), access == Access::Read ? L"rb" : L"wb");
#else
    return std::fopen(path.c_str(), access == Access::Read ? "rb" : "wb");
#endif
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
    if (written != bytes.size() || std::fflush(file) != 0) fault = reason();
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
    std::error_code ignored;
    const std::uintmax_t size = std::filesystem::file_size(from, ignored);
    if (!ignored && size <= kSizeLimit) bytes.reserve(static_cast<std::size_t>(size));
    std::array<char, 64 * 1024> block;
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), file.get())) {
        if (bytes.size() + count > kSizeLimit) return "File too large";
        bytes.append(block.data(), count);
    }
    if (std::ferror(file.get()) != 0) return reason();
    return std::nullopt;
}

} // namespace orvane

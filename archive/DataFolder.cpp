#include "archive/DataFolder.h"

#include <algorithm>
#include <system_error>

namespace orvane {
namespace {

bool isJpegName(const std::filesystem::path& file) {
    std::u8string extension = file.extension().u8string();
    std::ranges::transform(extension, extension.begin(), [](char8_t c) {
        return c >= u8'A' && c <= u8'Z' ? static_cast<char8_t>(c + (u8'a' - u8'A')) : c;
    });
    return extension == u8".jpg" || extension == u8".jpeg";
}

} // namespace

std::filesystem::path neighbourOf(const std::filesystem::path& file, bool forward) {
    const std::filesystem::path own = file.filename();
    std::filesystem::path nearest;
    std::error_code error;
    std::filesystem::directory_iterator entry(file.parent_path(), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::filesystem::path name = entry->path().filename();
        if (!isJpegName(name) || (forward ? name <= own : name >= own)) continue;
        if (nearest.empty() || (forward ? name < nearest : name > nearest)) nearest = name;
    }
    return nearest.empty() ? nearest : file.parent_path() / nearest;
}

bool isInDatedFolder(const std::filesystem::path& file) {
    const std::filesystem::path folder = file.parent_path();
    const std::u8string name = folder.filename().u8string();
    const bool dated = name.size() == 8 && std::ranges::all_of(name, [](char8_t c) {
                           return c >= u8'0' && c <= u8'9';
                       });
    return dated && folder.parent_path().filename() != "Edit";
}

} // namespace orvane

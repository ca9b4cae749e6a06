#include "archive/SchFile.h"

#include "archive/DataFolder.h"
#include "platform/Paths.h"
#include "platform/SystemCalls.h"

namespace orvane {

namespace {

/// Normal, read-only, hidden and system files; what carries another bit of these is a folder.
bool isFile(const std::filesystem::path& entry) {
    const auto word = attributeWord(entry);
    return word && (*word & kAttributeFolder) == 0;
}

bool store(const std::filesystem::path& file, std::vector<std::filesystem::path>& buffer) {
    if (buffer.size() == kNameBufferSize) return false;
    buffer.push_back(file);
    return true;
}

} // namespace

bool matchesPattern(std::string_view name, std::string_view pattern) {
    if (pattern == "*.*") return true;
    std::size_t n = 0;
    std::size_t p = 0;
    std::size_t star = std::string_view::npos; // the last one passed, and where its text began
    std::size_t starText = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            starText = n;
        } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == name[n])) {
            ++p;
            ++n;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            n = ++starText;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

bool SchFile(const std::filesystem::path& path, std::string pattern,
             std::vector<std::filesystem::path>& buffer) {
    if (path.has_filename()) pattern = utf8FromPath(path.filename());
    if (pattern.empty()) pattern = "*.*";
    const std::filesystem::path folder = path.parent_path();
    if (pattern.find_first_of("*?") == std::string::npos) // no need to look at the whole folder
        return !isFile(folder / pathFromUtf8(pattern)) ||
               store(folder / pathFromUtf8(pattern), buffer);
    const FolderListing listing = listFolder(folder);
    for (const std::filesystem::path& entry : listing.entries) {
        if (!matchesPattern(utf8FromPath(entry.filename()), pattern)) continue;
        if (isFile(entry) && !store(entry, buffer)) return false;
    }
    return !listing.fault;
}

} // namespace orvane

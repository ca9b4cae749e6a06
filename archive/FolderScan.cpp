#include "archive/FolderScan.h"

#include "platform/Paths.h"
#include "platform/SystemCalls.h"

#include <algorithm>

namespace orvane {

std::string ExtensionOf(const std::string& name) {
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos ? std::string() : name.substr(dot);
}

std::string BaseNameOf(const std::string& name) {
    return name.substr(0, name.rfind('.'));
}

void FolderScan::file_check(const std::string& text) {
    const std::filesystem::path& folder = panel_.Dir1[1].path;
    auto& list = module_.foundImages;
    auto& count = module_.foundCount;
    count = 0;
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    if (error) return;
    count = 1;
    // a for loop over the folder would throw on a failing increment
    for (const std::filesystem::directory_iterator end; !error && entry != end;
         entry.increment(error)) {
        const std::filesystem::path& path = entry->path();
        if (attributeWord(path) == kAttributeFolder) continue;
        if (utf8FromPath(path.filename()).find(text) == std::string::npos) continue;
        list[static_cast<std::size_t>(count++)] = path;
        if (static_cast<std::size_t>(count) == list.size()) return;
    }
}

void FolderScan::cmd_find_Click() {
    file_check(panel_.txt_find.text);
    const auto first = module_.foundImages.begin() + 1;
    const auto found = std::max<std::ptrdiff_t>(module_.foundCount - 1, 0);
    std::vector<std::filesystem::path> shown(first, first + found);
    std::ranges::sort(shown); // the shared list keeps the system's order
    panel_.lst_found = std::move(shown);
    if (module_.foundCount == 0) {
        panel_.lbl_found.caption = "This folder cannot be opened. Choose another one.";
    } else if (found == 0) {
        panel_.lbl_found.caption = "No file has this in its name. Try less of it.";
    } else {
        const bool full =
            static_cast<std::size_t>(module_.foundCount) == module_.foundImages.size();
        panel_.lbl_found.caption =
            full ? "The first " + std::to_string(found) + " files."
                 : std::to_string(found) + (found == 1 ? " file." : " files.");
    }
}

} // namespace orvane

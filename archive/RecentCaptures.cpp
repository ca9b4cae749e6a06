#include "archive/RecentCaptures.h"

#include "archive/DataFolder.h"
#include "platform/Files.h"

#include <algorithm>
#include <functional>

namespace orvane {

Task<> RecentCaptures::recall(std::filesystem::path dataFolder) {
    if (recalled_) co_return;
    recalled_ = true;
    for (const std::filesystem::path& file : newestCaptures(dataFolder, kCount)) {
        std::string bytes;
        if (!readWholeFile(file, bytes)) newest_.push_back(digestOf(bytes));
        co_await clock_.yield();
    }
}

void RecentCaptures::add(std::string_view bytes) {
    newest_.push_front(digestOf(bytes));
    if (newest_.size() > kCount) newest_.pop_back();
}

bool RecentCaptures::holds(std::string_view bytes) const {
    return std::ranges::find(newest_, digestOf(bytes)) != newest_.end();
}

RecentCaptures::Digest RecentCaptures::digestOf(std::string_view bytes) {
    return {bytes.size(), std::hash<std::string_view>()(bytes)};
}

} // namespace orvane

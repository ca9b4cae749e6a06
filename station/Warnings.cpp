#include "station/Warnings.h"

namespace orvane {

void Warnings::set(Cause cause, const std::string& message) {
    if (message.empty()) {
        if (messages_.erase(cause) == 0) return;
    } else {
        messages_[cause] = message;
    }
    std::string all;
    for (const auto& [held, line] : messages_)
        all += (all.empty() ? "" : "\n") + line;
    text = std::move(all);
}

} // namespace orvane

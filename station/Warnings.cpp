#include "station/Warnings.h"

namespace orvane {

void Warnings::set(Cause cause, const std::string& message) {
    if (message.empty()) {
        if (standing_.erase(cause) == 0) return;
    } else {
        standing_.try_emplace(cause, Standing{{}, clock_.now()}).first->second.text = message;
    }
    std::string all;
    for (const auto& [held, standing] : standing_)
        all += (all.empty() ? "" : "\n") + standing.text;
    text = std::move(all);
}

} // namespace orvane

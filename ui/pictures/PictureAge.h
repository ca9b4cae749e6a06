#pragma once

#include <chrono>
#include <string>

namespace orvane {

/// "12 s ago", "3 min ago", "2 h 05 min ago", "4 days ago"; a negative age counts as none.
std::string ageText(std::chrono::milliseconds age);

} // namespace orvane

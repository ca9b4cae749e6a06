#pragma once

#include "station/Schedule.h"

#include <filesystem>
#include <optional>
#include <string>

namespace orvane {

/// The minute in a recorded picture's name, "yyyymmdd_hhmm..."; nothing for another name.
std::optional<WallTime> recordedMinute(const std::filesystem::path& file);

/// "12 s ago", "3 min ago", "2 h 05 min ago", "4 days ago"; a negative age counts as none.
std::string ageText(std::chrono::milliseconds age);

/// Whether two due minutes or more are over since the newest picture was `taken`.
bool isOverdue(const Schedule& schedule, WallTime taken, WallTime now);

} // namespace orvane

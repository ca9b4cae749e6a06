#include "archive/DiskWatch.h"

#include <cstdio>

namespace orvane {

namespace {

constexpr double kGigabyte = 1e9;
constexpr double kLowDays = 7;

std::string gigabytes(std::uint64_t bytes) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f GB", static_cast<double>(bytes) / kGigabyte);
    return text;
}

} // namespace

std::optional<std::uint64_t> freeBytesOf(const std::filesystem::path& folder) {
    std::error_code error;
    auto space = std::filesystem::space(folder, error);
    std::filesystem::path above = folder;
    while (error && above.has_relative_path()) {
        above = above.parent_path();
        space = std::filesystem::space(above, error);
    }
    if (error) return std::nullopt;
    return space.available;
}

void DiskWatch::addCapture(std::uint64_t bytes, std::chrono::year_month_day day) {
    if (day != day_) {
        day_ = day;
        bytes_ = captures_ = 0;
    }
    bytes_ += bytes;
    ++captures_;
}

std::optional<double> DiskWatch::daysLeft(std::uint64_t freeBytes, const Schedule& schedule) {
    if (bytes_ == 0) return std::nullopt;
    if (schedule != schedule_) {
        schedule_ = schedule;
        perDay_ = dueMinutesPerDay(schedule);
    }
    if (perDay_ == 0) return std::nullopt;
    const double rate = static_cast<double>(bytes_) / static_cast<double>(captures_) * perDay_;
    return static_cast<double>(freeBytes) / rate;
}

DiskWatch::Report DiskWatch::report(std::uint64_t freeBytes, const Schedule& schedule) {
    const auto days = daysLeft(freeBytes, schedule);
    Report report{gigabytes(freeBytes) + " free", {}, days};
    if (days) {
        char about[48];
        std::snprintf(about, sizeof about, ", about %.0f days", *days);
        report.caption += about;
    }
    if (static_cast<double>(freeBytes) < kGigabyte || (days && *days < kLowDays))
        report.warning = "The disk of the data folder is nearly full: less than 1 GB or 7 days are "
                         "left. Please free space or choose another data folder.";
    return report;
}

} // namespace orvane

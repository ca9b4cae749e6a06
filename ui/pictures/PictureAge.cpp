#include "ui/pictures/PictureAge.h"

#include "platform/Conversions.h"
#include "platform/Paths.h"

#include <algorithm>
#include <cctype>
#include <string>

namespace orvane {
namespace {

constexpr const char* kPattern = "dddddddd_dddd";

bool matches(const std::string& name) {
    const std::string pattern = kPattern;
    if (name.size() < pattern.size()) return false;
    return std::ranges::equal(pattern, name.substr(0, pattern.size()), [](char want, char is) {
        return want == 'd' ? std::isdigit(static_cast<unsigned char>(is)) != 0 : is == want;
    });
}

} // namespace

std::optional<WallTime> recordedMinute(const std::filesystem::path& file) {
    const std::string name = utf8FromPath(file.filename());
    if (!matches(name)) return std::nullopt;
    const auto number = [&](std::size_t at, std::size_t count) {
        return std::stoi(name.substr(at, count));
    };
    const std::chrono::year_month_day day{std::chrono::year(number(0, 4)),
                                          std::chrono::month(static_cast<unsigned>(number(4, 2))),
                                          std::chrono::day(static_cast<unsigned>(number(6, 2)))};
    const int hour = number(9, 2);
    const int minute = number(11, 2);
    if (!day.ok() || hour > 23 || minute > 59) return std::nullopt;
    return WallTime(std::chrono::local_days(day)) + std::chrono::hours(hour) +
           std::chrono::minutes(minute);
}

std::string ageText(std::chrono::milliseconds age) {
    const long long seconds = std::max<long long>(0, age / 1s);
    const long long minutes = seconds / 60;
    if (minutes == 0) return std::to_string(seconds) + " s ago";
    if (minutes < 60) return std::to_string(minutes) + " min ago";
    if (minutes >= 2 * kDayMinutes) return std::to_string(minutes / kDayMinutes) + " days ago";
    const std::string rest = std::to_string(100 + minutes % 60).substr(1);
    return std::to_string(minutes / 60) + " h " + rest + " min ago";
}

bool isOverdue(const Schedule& schedule, WallTime taken, WallTime now) {
    const std::int64_t end = minuteIndex(now);
    const std::int64_t begin = std::max(minuteIndex(taken) + 1, end - kDayMinutes);
    int missing = 0;
    for (std::int64_t minute = begin; minute < end && missing < 2; ++minute)
        missing += isDueMinute(schedule, static_cast<int>(minute % kDayMinutes)) ? 1 : 0;
    return missing >= 2;
}

} // namespace orvane

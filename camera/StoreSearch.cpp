#include "camera/StoreSearch.h"

#include "platform/Conversions.h"

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

constexpr int kFirstYear = 2000;
constexpr std::ptrdiff_t kFieldsPerRecord = 3;
constexpr double kLongestSpan = 100.0 * 365.25 * kDayMinutes;

} // namespace

std::string searchQuery(const ImageStamp& from) {
    std::string query = "srch_type=0&s_mode=0&dl=1&ar0=on";
    const auto add = [&query](const char* name, int value) {
        query += std::string("&from_") + name + "=" + std::to_string(value);
    };
    add("year", from.year - kFirstYear);
    add("mon", from.month - 1);
    add("day", from.day - 1);
    add("hour", from.hour);
    add("min", from.minute);
    add("sec", from.second);
    add("frame", from.frame);
    return query + "&maxnum=2";
}

WallTime movedBack(WallTime time, const std::string& span, double extraMinutes) {
    using Minutes = std::chrono::duration<double, std::ratio<60>>;
    const double minutes = leadingNumber("-" + span) - extraMinutes;
    return time + std::chrono::round<std::chrono::milliseconds>(
                      Minutes(std::clamp(minutes, -kLongestSpan, kLongestSpan)));
}

bool isNoData(std::string_view reply) {
    return reply.find("NO_DATA") != std::string_view::npos;
}

std::optional<std::string_view> nextPicturePath(std::string_view& reply) {
    NextField(reply, ',');
    NextField(reply, ',');
    return NextField(reply, ',');
}

std::size_t recordCount(std::string_view reply) {
    return static_cast<std::size_t>(std::ranges::count(reply, ',') / kFieldsPerRecord);
}

} // namespace orvane

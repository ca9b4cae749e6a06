#include "ui/pictures/PictureAge.h"

#include "platform/Conversions.h"

#include <algorithm>

namespace orvane {

std::string ageText(std::chrono::milliseconds age) {
    const long long seconds = std::max<long long>(0, age / 1s);
    const long long minutes = seconds / 60;
    if (minutes == 0) return std::to_string(seconds) + " s ago";
    if (minutes < 60) return std::to_string(minutes) + " min ago";
    if (minutes >= 2 * kDayMinutes) return std::to_string(minutes / kDayMinutes) + " days ago";
    return std::to_string(minutes / 60) + " h " + twoDigits(static_cast<int>(minutes % 60)) +
           " min ago";
}

} // namespace orvane

#include "camera/StoreSearch.h"

#include "archive/ImageName.h"

#include <algorithm>
#include <charconv>

namespace orvane {

namespace {

constexpr int kFirstYear = 2000;
constexpr std::ptrdiff_t kFieldsPerRecord = 3;
constexpr double kLongestSpan = 100.0 * 365.25 * kDayMinutes;
constexpr std::size_t kLongestName = 255;

/// Characters are counted from 1, as the name's layout is written down.
void readNumber(std::string_view name, std::size_t first, std::size_t count, std::int16_t& number) {
    const std::string_view digits = name.substr(first - 1, count);
    if (std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; }))
        std::from_chars(digits.data(), digits.data() + digits.size(), number);
}

bool isDevice(std::string_view name) {
    std::string base(name.substr(0, name.find('.')));
    for (char& c : base)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    const bool numbered = base.size() == 4 && base[3] >= '0' && base[3] <= '9';
    return base == "CON" || base == "PRN" || base == "AUX" || base == "NUL" ||
           (numbered && (base.starts_with("COM") || base.starts_with("LPT")));
}

} // namespace

ImageStamp stampOf(WallTime time) {
    const auto midnight = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(midnight);
    const std::chrono::hh_mm_ss clock(std::chrono::floor<std::chrono::seconds>(time - midnight));
    return {static_cast<std::int16_t>(int(date.year())),
            static_cast<std::int16_t>(unsigned(date.month())),
            static_cast<std::int16_t>(unsigned(date.day())),
            static_cast<std::int16_t>(clock.hours().count()),
            static_cast<std::int16_t>(clock.minutes().count()),
            static_cast<std::int16_t>(clock.seconds().count()),
            0};
}

void ParseImageName(std::string_view name, ImageStamp& stamp) {
    if (name.size() != ImageName::kForm.size()) return;
    readNumber(name, 1, 4, stamp.year);
    readNumber(name, 5, 2, stamp.month);
    readNumber(name, 7, 2, stamp.day);
    readNumber(name, 10, 2, stamp.hour);
    readNumber(name, 12, 2, stamp.minute);
    readNumber(name, 14, 2, stamp.second);
    readNumber(name, 17, 2, stamp.frame);
}

int CompareStamp(const ImageStamp& a, const ImageStamp& b) {
    return a > b ? 1 : a < b ? -1 : 0;
}

bool CheckStartTime(int hour, int minute, int second) {
    return hour < 24 && minute < 60 && second < 60;
}

std::optional<std::string_view> NextField(std::string_view& text, char separator) {
    const std::size_t end = text.find(separator);
    if (end == std::string_view::npos) return std::nullopt;
    const std::string_view field = text.substr(0, end);
    text.remove_prefix(end + 1);
    return field;
}

std::string_view FileNameOfPath(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
}

bool isPlainName(std::string_view name) {
    if (name.empty() || name.size() > kLongestName) return false;
    if (name.find("..") != std::string_view::npos) return false;
    if (name.back() == '.' || name.back() == ' ' || isDevice(name)) return false;
    return std::ranges::none_of(name, [](char c) {
        return static_cast<unsigned char>(c) < ' ' || c == '\x7F' ||
               std::string_view("/\\:*?\"<>|").find(c) != std::string_view::npos;
    });
}

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

bool isPictureList(std::string_view reply) {
    const auto path = nextPicturePath(reply);
    if (!path) return false;
    const std::string_view name = FileNameOfPath(*path);
    return isPlainName(name) && (name.ends_with(".jpg") || name.ends_with(".JPG"));
}

std::size_t recordCount(std::string_view reply) {
    return static_cast<std::size_t>(std::ranges::count(reply, ',') / kFieldsPerRecord);
}

} // namespace orvane

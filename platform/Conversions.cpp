#include "platform/Conversions.h"

#include <array>
#include <charconv>
#include <cmath>
#include <ctime>

namespace orvane {

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t";
    const auto first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// Reads a number from the start of `text`, with an optional leading sign; answers how many
/// characters it took, 0 for none.
std::size_t readNumber(std::string_view text, double& value) {
    const std::size_t plus = !text.empty() && text.front() == '+' ? 1 : 0;
    const std::string_view digits = text.substr(plus);
    const std::size_t sign = plus == 0 && !digits.empty() && digits.front() == '-' ? 1 : 0;
    // from_chars would also take "inf" and "nan"
    if (digits.size() <= sign) return 0;
    const char first = digits[sign];
    if (first != '.' && (first < '0' || first > '9')) return 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc{}) return 0;
    return plus + static_cast<std::size_t>(end - digits.data());
}

/// `format` is that of strftime.
std::string textOf(WallTime time, const char* format) {
    const auto date = dayOf(time);
    const auto seconds = static_cast<int>(timeOfDay(time) / 1s);
    std::tm parts{};
    parts.tm_year = static_cast<int>(date.year()) - 1900;
    parts.tm_mon = static_cast<int>(static_cast<unsigned>(date.month())) - 1;
    parts.tm_mday = static_cast<int>(static_cast<unsigned>(date.day()));
    parts.tm_hour = seconds / 3600;
    parts.tm_min = seconds / 60 % 60;
    parts.tm_sec = seconds % 60;
    std::array<char, 32> text{};
    return {text.data(), std::strftime(text.data(), text.size(), format, &parts)};
}

} // namespace

std::optional<double> toDouble(std::string_view text) {
    const std::string_view number = trimmed(text);
    double value = 0;
    if (number.empty() || readNumber(number, value) != number.size()) return std::nullopt;
    return value;
}

std::optional<std::int16_t> toInt16(std::string_view text) {
    const auto value = toDouble(text);
    if (!value) return std::nullopt;
    const double rounded = std::nearbyint(*value);
    if (rounded < INT16_MIN || rounded > INT16_MAX) return std::nullopt;
    return static_cast<std::int16_t>(rounded);
}

double leadingNumber(std::string_view text) {
    double value = 0;
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos || readNumber(text.substr(first), value) == 0) return 0;
    return value;
}

std::string toText(double value) {
    std::array<char, 400> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    return {buffer.data(), end};
}

std::string dateText(WallTime time) {
    return textOf(time, "%Y/%m/%d");
}

std::string timeText(WallTime time) {
    return textOf(time, "%H:%M:%S");
}

std::string dateDigits(WallTime time) {
    return textOf(time, "%Y%m%d");
}

std::string minuteStamp(WallTime time) {
    return textOf(time, "%Y%m%d_%H%M");
}

std::string hourMinute(WallTime time) {
    return textOf(time, "%H:%M");
}

std::string twoDigits(int value) {
    return (value < 10 ? "0" : "") + std::to_string(value);
}

std::chrono::year_month_day dayOf(WallTime time) {
    return std::chrono::year_month_day{std::chrono::floor<std::chrono::days>(time)};
}

WallTime momentOf(std::int64_t minute) {
    return WallTime(std::chrono::minutes(minute));
}

} // namespace orvane

#include "platform/Conversions.h"

#include <array>
#include <charconv>
#include <cmath>

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

/// Writes a number with leading zeros. Clock labels change every second for months, so this does
/// without the formatted-output machinery.
template <std::size_t Width>
void put(char* digits, int value) {
    for (auto i = Width; i-- > 0; value /= 10)
        digits[i] = static_cast<char>('0' + value % 10);
}

template <std::size_t Width>
void put(std::string& text, int value) {
    std::array<char, Width> digits{};
    put<Width>(digits.data(), value);
    text.append(digits.data(), Width);
}

void putDate(std::string& text, WallTime time, std::string_view separator) {
    const auto date = dayOf(time);
    put<4>(text, static_cast<int>(date.year()));
    text += separator;
    put<2>(text, static_cast<int>(static_cast<unsigned>(date.month())));
    text += separator;
    put<2>(text, static_cast<int>(static_cast<unsigned>(date.day())));
}

void putHourMinute(std::string& text, WallTime time, std::string_view separator) {
    const int minutes = minuteOfDay(time);
    put<2>(text, minutes / 60);
    text += separator;
    put<2>(text, minutes % 60);
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
    std::string text;
    putDate(text, time, "/");
    return text;
}

const char* monthName(std::chrono::month month) {
    constexpr std::array kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                 "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    return kMonths.at(static_cast<unsigned>(month) - 1);
}

std::string plainDate(WallTime time) {
    const std::chrono::year_month_day date = dayOf(time);
    return std::to_string(static_cast<unsigned>(date.day())) + ' ' + monthName(date.month()) + ' ' +
           std::to_string(static_cast<int>(date.year()));
}

std::string timeText(WallTime time) {
    const int seconds = static_cast<int>(timeOfDay(time) / 1s);
    std::string text(8, ':');
    put<2>(&text[0], seconds / 3600);
    put<2>(&text[3], seconds / 60 % 60);
    put<2>(&text[6], seconds % 60);
    return text;
}

std::string dateDigits(WallTime time) {
    std::string text;
    putDate(text, time, "");
    return text;
}

std::string minuteStamp(WallTime time) {
    std::string text = dateDigits(time) + "_";
    putHourMinute(text, time, "");
    return text;
}

std::string hourMinute(WallTime time) {
    std::string text;
    putHourMinute(text, time, ":");
    return text;
}

std::string offsetText(std::chrono::minutes offset) {
    const auto size = static_cast<int>(std::chrono::abs(offset).count());
    return (offset < 0min ? "-" : "+") + twoDigits(size / 60) + ":" + twoDigits(size % 60);
}

std::string isoTime(WallTime time, std::chrono::minutes offset) {
    std::string text;
    putDate(text, time, "-");
    return text + "T" + timeText(time) + offsetText(offset);
}

std::int64_t universalSeconds(WallTime time, std::chrono::minutes offset) {
    return std::chrono::floor<std::chrono::seconds>(time.time_since_epoch() - offset).count();
}

std::string twoDigits(int value) {
    std::string text;
    put<2>(text, value);
    return text;
}

std::chrono::year_month_day dayOf(WallTime time) {
    return std::chrono::year_month_day{std::chrono::floor<std::chrono::days>(time)};
}

WallTime momentOf(std::int64_t minute) {
    return WallTime(std::chrono::minutes(minute));
}

} // namespace orvane

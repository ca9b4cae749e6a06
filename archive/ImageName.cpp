#include "archive/ImageName.h"

#include "platform/Paths.h"

#include <cctype>

namespace orvane {

namespace {

/// Letters of the form stand for digits, any other character for itself.
bool fits(std::string_view text) {
    if (text.size() != ImageName::kForm.size()) return false;
    const std::size_t extension = ImageName::kForm.rfind('.');
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto is = static_cast<unsigned char>(text[i]);
        const auto want = static_cast<unsigned char>(ImageName::kForm[i]);
        const bool digit = i < extension && std::isalpha(want) != 0;
        if (digit ? std::isdigit(is) == 0 : std::tolower(is) != want) return false;
    }
    return true;
}

int number(std::string_view text, std::size_t first, std::size_t count) {
    int value = 0;
    for (const char c : text.substr(first, count))
        value = value * 10 + (c - '0');
    return value;
}

} // namespace

std::optional<ImageName> ImageName::parse(std::string_view text) {
    if (!fits(text)) return std::nullopt;
    const std::chrono::year_month_day date{
        std::chrono::year(number(text, 0, 4)),
        std::chrono::month(static_cast<unsigned>(number(text, 4, 2))),
        std::chrono::day(static_cast<unsigned>(number(text, 6, 2)))};
    const std::chrono::hours hour(number(text, 9, 2));
    const std::chrono::minutes minute(number(text, 11, 2));
    const std::chrono::seconds second(number(text, 13, 2));
    if (!date.ok() || hour >= 24h || minute >= 60min || second >= 60s) return std::nullopt;
    return ImageName(std::chrono::local_days(date) + hour + minute + second, number(text, 16, 2));
}

std::optional<ImageName> ImageName::ofFile(const std::filesystem::path& file) {
    return parse(utf8FromPath(file.filename()));
}

ImageName ImageName::ofCapture(WallTime time) {
    return {std::chrono::floor<std::chrono::minutes>(time), 0};
}

std::string ImageName::text() const {
    const auto seconds = static_cast<int>(timeOfDay(time()) / 1s % 60);
    return minuteStamp(time()) + twoDigits(seconds) + "_" + twoDigits(frame_) + ".jpg";
}

std::string ImageName::title() const {
    const std::string clock = isCapture() ? hourMinute(time()) : timeText(time());
    const std::string frame = frame_ == 0 ? "" : ", frame " + std::to_string(frame_);
    return plainDate(time()) + ' ' + clock + frame;
}

} // namespace orvane

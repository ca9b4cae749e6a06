#pragma once

#include "platform/Clock.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// The moment in a picture's name. Month and day count from 1.
struct ImageStamp {
    std::int16_t year = 0;
    std::int16_t month = 0;
    std::int16_t day = 0;
    std::int16_t hour = 0;
    std::int16_t minute = 0;
    std::int16_t second = 0;
    std::int16_t frame = 0; ///< counts the pictures of one second

    bool operator==(const ImageStamp&) const = default;
};

/// The stamp of a moment, to the second, with frame 0.
ImageStamp stampOf(WallTime time);

/// Reads "yyyymmdd_hhmmss_ff.jpg" by position; separators and extension are not looked at. A name
/// of another length leaves the stamp untouched, a part that is no number leaves that part.
void ParseImageName(std::string_view name, ImageStamp& stamp);

/// 1 when `a` is later, -1 when earlier, 0 when equal.
int CompareStamp(const ImageStamp& a, const ImageStamp& b);

/// Whether the numbers stay below 24, 60 and 60. Nothing else is checked.
bool CheckStartTime(int hour, int minute, int second);

/// Takes the text before the first `separator` off `text`, and the separator with it. Without one
/// `text` stays as it is.
std::optional<std::string_view> NextField(std::string_view& text, char separator);

/// The part after the last "/"; empty when there is none.
std::string_view FileNameOfPath(std::string_view path);

/// The trailing part from the last "." on, dot included; empty without one.
std::string ExtensionOf(const std::string& name);
/// The part before the last "."; the whole name without one.
std::string BaseNameOf(const std::string& name);

/// Whether a name that a device sent may name a file in a folder: no separator, drive or "..",
/// nothing that a file system of an operator's PC refuses or gives a meaning of its own, 1 to 255
/// bytes.
bool isPlainName(std::string_view name);

} // namespace orvane

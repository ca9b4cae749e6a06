#pragma once

#include "platform/Clock.h"

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// The moment in a listed picture's name, read without a check. Month and day count from 1.
struct ImageStamp {
    std::int16_t year = 0;
    std::int16_t month = 0;
    std::int16_t day = 0;
    std::int16_t hour = 0;
    std::int16_t minute = 0;
    std::int16_t second = 0;
    std::int16_t frame = 0; ///< counts the pictures of one second

    auto operator<=>(const ImageStamp&) const = default;
};

/// The stamp of a moment, to the second, with frame 0.
ImageStamp stampOf(WallTime time);

/// Reads the name of a listed picture by position, as long as it has the length of an `ImageName`:
/// separators, extension and ranges are not looked at. A name of another length leaves the stamp
/// untouched, a part that is no number leaves that part.
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

/// Whether a name that a device sent may name a file in a folder: no separator, drive or "..",
/// nothing that a file system of an operator's PC refuses or gives a meaning of its own, 1 to 255
/// bytes.
bool isPlainName(std::string_view name);

inline constexpr const char* kSearchPath = "/cgi/srch.cgi";

/// The query for at most two pictures recorded from that moment on, without a leading "?". The
/// camera counts its from-fields in its own way: years from 2000, months and days from 0.
std::string searchQuery(const ImageStamp& from);

/// `time` moved back by the span that a field holds, in minutes: "-" and the text read as one
/// number. More than a hundred years count as a hundred.
WallTime movedBack(WallTime time, const std::string& span, double extraMinutes = 0);

/// Whether a reply says that nothing was found.
bool isNoData(std::string_view reply);

/// Takes the next record off a search reply and answers the picture's path on the camera, the last
/// of its three comma-terminated fields. Nothing when no complete record is left.
std::optional<std::string_view> nextPicturePath(std::string_view& reply);

/// Whether a reply lists pictures: its first record is complete and names a JPEG file. Anything
/// else that is not "nothing found", such as the page of a busy camera, is no answer to a search.
bool isPictureList(std::string_view reply);

/// How many complete records a reply holds.
std::size_t recordCount(std::string_view reply);

} // namespace orvane

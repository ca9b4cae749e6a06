#pragma once

#include "archive/ImageName.h"

#include <optional>
#include <string>
#include <string_view>

namespace orvane {

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

/// How many complete records a reply holds.
std::size_t recordCount(std::string_view reply);

} // namespace orvane

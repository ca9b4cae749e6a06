#pragma once

#include "platform/Conversions.h"

#include <array>
#include <cstdint>
#include <filesystem>

namespace orvane {

/// How the picture of a minute came into the data folder.
enum class PictureOrigin : std::uint8_t {
    None,   ///< there is none
    Taken,  ///< captured in its minute
    Fetched ///< fetched from the camera's store
};

/// Index: minute of the day, 0 to 1439.
using DayPictures = std::array<PictureOrigin, kDayMinutes>;

/// What a dated folder holds of `day`, by the names of its files: "yyyymmdd_hhmm00_ff.jpg" is a
/// capture, other seconds come from the camera's store. A minute with both counts as taken. A
/// folder that is not there or cannot be read holds nothing.
DayPictures picturesOfDay(const std::filesystem::path& datedFolder, std::chrono::local_days day);

} // namespace orvane

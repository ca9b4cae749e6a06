#pragma once

#include "imaging/ImageOptions.h"
#include "imaging/SunTimes.h"
#include "platform/Clock.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>

namespace orvane {

using TimeOfDay = std::chrono::seconds; ///< since midnight

struct Schedule {
    TimeOfDay StartTime{};
    TimeOfDay EndTime{};
    TimeOfDay IntervalTime{};
    TimeOfDay NextRecTime{};

    bool operator==(const Schedule&) const = default;
};

struct ThumbnailEntry {
    std::filesystem::path path; ///< empty: no image
    std::int32_t number = 0;
};

/// The process-wide state. `main` owns the only one and hands it down.
struct Module1 {
    static constexpr std::size_t kThumbnailCount = 10;

    std::filesystem::path programFolder; ///< holds ERROR.LOG and the working picture full.jpg

    Schedule schedule;
    bool RecordFlg = false;  ///< recording is switched on
    bool RecDoneFlg = false; ///< a capture was attempted in this window

    std::int32_t RecCount = 0;
    std::int32_t filesFetched = 0;
    std::int32_t plannedRecords = 0;
    WallTime statusResetTime{};
    WallTime startTime{};

    SiteValues site;
    SunTimes sun;
    double origin = 0; ///< the tracker's, degrees
    ImageOptions image;
    std::int16_t AdjTime = 1;
    bool imageProcessing = true; ///< off: files are kept as they come

    std::filesystem::path lastImage; ///< newest image written; empty at start
    std::array<ThumbnailEntry, kThumbnailCount> thumbnails;

    std::int16_t linkState = 0;   ///< 4 while the tracker's clock is being set; nothing reads it
    std::int16_t replyTicks = 0;  ///< seconds, bounds the serial waits
    std::int16_t searchTicks = 0; ///< seconds, bounds the search waits
    std::int16_t syncTicks = 0;   ///< ten-second steps
    bool syncElapsed = false;
};

} // namespace orvane

#pragma once

#include "imaging/SunTimes.h"
#include "platform/Clock.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>

namespace orvane {

using TimeOfDay = std::chrono::seconds; ///< since midnight

/// How captured images are processed. The flags hold -1 for set and 0 for clear.
struct ImageOptions {
    std::int16_t Quality = 24; ///< compression factor, lower is better: 2, 24 or 56
    std::int16_t LrFlg = 0;    ///< mirror left to right
    std::int16_t DateFlg = 0;  ///< stamp date and time; honoured only together with LrFlg
    std::int16_t RawFlg = 0;   ///< keep the untouched file as well
    std::int16_t Delay = 15;   ///< seconds before a picture is fetched
    std::int16_t JpegTyp = 10; ///< save format code: 10 EXIF, 98 4:4:4
};

struct Schedule {
    TimeOfDay StartTime{};
    TimeOfDay EndTime{};
    TimeOfDay IntervalTime{};
    TimeOfDay NextRecTime{};
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
    bool liveView = false;
    bool automaticMode = false; ///< the countdown ran out

    std::int32_t RecCount = 0;
    std::int32_t filesFetched = 0;
    std::int32_t plannedRecords = 0;
    WallTime statusResetTime{};
    WallTime startTime{};

    SiteValues site;
    SunTimes sun;
    ImageOptions image;
    std::int16_t AdjTime = 1;
    bool imageProcessing = true; ///< off: files are kept as they come

    std::filesystem::path lastImage; ///< newest image written; empty at start
    std::array<ThumbnailEntry, kThumbnailCount> thumbnails;

    std::int16_t replyTicks = 0;  ///< seconds, bounds the serial waits
    std::int16_t searchTicks = 0; ///< seconds, bounds the search waits
    std::int16_t syncTicks = 0;   ///< ten-second steps
    bool syncElapsed = false;
};

} // namespace orvane

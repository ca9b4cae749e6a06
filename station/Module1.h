#pragma once

#include "imaging/ImageOptions.h"
#include "imaging/SunTimes.h"
#include "platform/Clock.h"
#include "station/Schedule.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>

namespace orvane {

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

    SiteValues site;
    SunTimes sun;
    double origin = 0; ///< the tracker's, degrees
    ImageOptions image;
    std::int16_t AdjTime = 1;
    bool imageProcessing = true; ///< off: files are kept as they come

    std::filesystem::path lastImage; ///< newest image written; empty at start
    std::array<ThumbnailEntry, kThumbnailCount> thumbnails; ///< newest first

    /// Indices from 1 hold the paths that `file_check` found; `foundCount` is one more than their
    /// number, 0 when the folder could not be opened.
    std::array<std::filesystem::path, 25> foundImages;
    std::int16_t foundCount = 0;

    bool capturing = false;          ///< from "Recording Now..." to the end of the processing
    bool imagesArrived = false;      ///< a run has downloaded pictures; cleared by who looked
    bool syncPending = false;        ///< the next search reaches back half an hour more
    std::optional<Ticks> lastRunEnd; ///< of the last run that came to its end by itself

    /// Puts an image into the first place of the history; one that is in it already moves there.
    void addThumbnail(const std::filesystem::path& file) {
        auto last = std::ranges::find(thumbnails, file, &ThumbnailEntry::path);
        if (last == thumbnails.end()) --last;
        std::rotate(thumbnails.begin(), last, last + 1);
        thumbnails.front() = {file, filesFetched + 1};
    }

    std::int16_t replyTicks = 0;  ///< seconds, bounds the serial waits
    std::int16_t searchTicks = 0; ///< seconds, bounds the search waits
    std::int16_t syncTicks = 0;   ///< ten-second steps
    bool syncElapsed = false;
};

} // namespace orvane

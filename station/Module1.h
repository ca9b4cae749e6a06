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
#include <string>

namespace orvane {

/// The newest images, newest first; an empty path: no image.
using ThumbnailHistory = std::array<std::filesystem::path, 10>;

/// An attempt to take a picture, cut short ones excepted.
struct CaptureAttempt {
    WallTime at;       ///< when it ended
    std::string fault; ///< why there is no picture; empty when there is one
    WallTime due{};    ///< the minute that it was for
};

/// Why a run against the camera's store was given up.
struct RunFault {
    WallTime at; ///< when it ended
    std::string reason;
};

/// The process-wide state. `main` owns the only one and hands it down.
struct Module1 {
    std::filesystem::path programFolder; ///< holds ERROR.LOG and the working picture full.jpg
    /// The one data folder that the station makes itself. Any other may be the place of a disk that
    /// is not connected.
    std::filesystem::path defaultDataFolder;

    Schedule schedule;
    bool RecordFlg = false;  ///< recording is switched on
    bool RecDoneFlg = false; ///< a capture was attempted in this window

    std::int32_t RecCount = 0;
    std::int32_t filesFetched = 0;
    std::int32_t plannedRecords = 0;

    SiteValues site;
    bool siteInEdit = false; ///< a site field is being typed in: it may hold half a number
    SunTimes sun;
    double origin = 0; ///< the tracker's, degrees
    ImageOptions image;
    std::int16_t AdjTime = 1;
    bool imageProcessing = true; ///< off: files are kept as they come
    bool latestCopy = false;     ///< a copy of the latest picture is kept beside the status page

    std::filesystem::path lastImage; ///< newest image written; empty at start
    ThumbnailHistory thumbnails;
    std::optional<CaptureAttempt> lastAttempt; ///< since the program's start
    std::optional<RunFault> lastRunFault;      ///< of the last run; nothing: it ended well

    /// Indices from 1 hold the paths that `file_check` found; `foundCount` is one more than their
    /// number, 0 when the folder could not be opened.
    std::array<std::filesystem::path, 25> foundImages;
    std::int16_t foundCount = 0;

    bool capturing = false;          ///< from "Recording Now..." to the end of the processing
    bool syncPending = false;        ///< the next search reaches back half an hour more
    std::optional<Ticks> lastRunEnd; ///< of the last run that came to its end by itself

    /// Puts an image into the history: a capture (`isNewest`) into the first place, another one
    /// into the place of its time, that is of its name. One that is in it already moves there.
    void addThumbnail(const std::filesystem::path& file, bool isNewest) {
        const auto known = std::ranges::find(thumbnails, file);
        const auto last = known == thumbnails.end() ? std::prev(known) : known;
        const auto place = isNewest ? thumbnails.begin()
                                    : std::ranges::find_if(thumbnails, [&](const auto& entry) {
                                          return entry.filename() <= file.filename();
                                      });
        if (place > last) return; // older than all of them
        std::rotate(place, last, last + 1);
        *place = file;
    }

    std::int16_t replyTicks = 0;  ///< seconds, bounds the serial waits
    std::int16_t searchTicks = 0; ///< seconds, bounds the search waits
    std::int16_t syncTicks = 0;   ///< ten-second steps
    bool syncElapsed = false;
};

} // namespace orvane

#pragma once

#include "core/Station.h"

#include <string>

namespace orvane {

/// What one capture came to.
struct Captured {
    bool filed = false;
    bool cutShort = false; ///< by a wish of the operator: as if it had not been tried
    WallTime copyTime{};   ///< when the image was copied to its folder; its name says this minute
    std::string fault;     ///< why the camera brought no picture that can be filed; else empty
};

/// Fetches the camera's picture once and hands it to the archive, from "Recording Now..." to the
/// end of the processing. What went wrong has been logged; to be cut short is nothing wrong.
/// `station` outlives the task.
Task<Captured> captureImage(Station& station);

} // namespace orvane

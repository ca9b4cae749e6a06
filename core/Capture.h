#pragma once

#include "core/Station.h"

#include <string>

namespace orvane {

/// What one capture came to.
struct Captured {
    bool filed = false;
    bool cutShort = false; ///< by a wish of the operator: as if it had not been tried
    WallTime copyTime{};   ///< when the image was copied to its folder; its name says this minute
    std::string notFiled;  ///< why there is no picture, whatever the cause; else empty
    std::string fault;     ///< why the camera brought no picture that can be filed; else empty
};

/// Fetches the camera's picture once and hands it to the archive, from "Recording Now..." to the
/// end of the processing. What went wrong has been logged, the reason of a "DownLoad Error" in
/// `reasons`; to be cut short is nothing wrong. Both outlive the task.
Task<Captured> captureImage(Station& station, RepeatedLine& reasons);

} // namespace orvane

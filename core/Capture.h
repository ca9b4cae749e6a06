#pragma once

#include "archive/DiskWatch.h"
#include "core/Station.h"

#include <optional>
#include <string>

namespace orvane {

/// Fetches the camera's picture once and files it. What is filed is a whole picture that differs
/// from the newest one on disk, under its final name or not at all.
///
/// The name is yyyymmdd_hhmm00_ff.jpg with frame ff 00. Only where that file exists already (the
/// clock was set back, recording was restarted within the minute) the next free frame is taken, so
/// that no image is ever replaced.
class Capture {
  public:
    explicit Capture(Station& station) : station_(station) {}

    /// From "Recording Now..." to the end of the processing. False: nothing was filed; the failure
    /// has been logged.
    Task<bool> run();
    /// When the last image was copied to its folder; its name says this minute.
    WallTime copyTime() const { return copyTime_; }
    /// Why the last fetch brought no picture that can be filed; empty when it did.
    const std::string& fetchFault() const { return fault_; }
    DiskWatch& disk() { return disk_; }

  private:
    using Fault = std::optional<std::string>;

    Task<bool> fetch();
    Fault inspect();
    Fault file();
    Task<bool> process();
    void remember();

    Station& station_;
    WallTime copyTime_{};
    std::string fault_;
    std::string picture_; ///< the bytes that were fetched
    std::string newest_;  ///< the bytes of the newest image on disk, to know it when it comes again
    DiskWatch disk_;
};

} // namespace orvane

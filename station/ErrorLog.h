#pragma once

#include "platform/Clock.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

namespace orvane {

/// The append-only log ERROR.LOG in the program's folder: "yyyy/mm/dd hh:mm:ss message" and CR LF,
/// one line per call, on disk when the call returns. No handle is kept. Lines that could not be
/// written are lost; how many is the first line that can be written again.
class ErrorLog {
  public:
    /// Reads and sets the status label, on which a message can be flashed.
    struct StatusLabel {
        std::function<std::string()> caption;
        std::function<void(const std::string&)> setCaption;
    };

    ErrorLog(const std::filesystem::path& programFolder, Clock& clock, StatusLabel label = {});

    /// Appends `message` (UTF-8). With `show` it also stands on the status label for 10 ms. False:
    /// the line could not be written; callers go on with their work.
    bool write(const std::string& message, bool show = false);
    /// Whether lines can be written, for the operator's warning; when the last one could not be,
    /// this tries again.
    bool probe();

  private:
    bool append(const std::string& message);
    Task<> flash(std::string message);
    void endFlash();

    std::filesystem::path file_;
    Clock& clock_;
    StatusLabel label_;
    std::int64_t lost_ = 0; ///< lines since the last one that was written
    std::string flashed_;   ///< message now on the label
    std::string covered_;   ///< caption to put back
    Task<> flashing_;
};

} // namespace orvane

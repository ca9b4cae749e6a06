#pragma once

#include "platform/Clock.h"

#include <filesystem>
#include <functional>
#include <string>

namespace orvane {

/// The append-only log ERROR.LOG in the program's folder: "yyyy/mm/dd hh:mm:ss message" and CR LF,
/// one line per call, on disk when the call returns. No handle is kept.
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
    /// Whether the last line was written; tells the operator's warning.
    bool writable() const { return writable_; }

  private:
    Task<> flash(std::string message);
    void endFlash();

    std::filesystem::path file_;
    Clock& clock_;
    StatusLabel label_;
    bool writable_ = true;
    std::string flashed_; ///< message now on the label
    std::string covered_; ///< caption to put back
    Task<> flashing_;
};

} // namespace orvane

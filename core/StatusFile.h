#pragma once

#include "core/StatusText.h"
#include "platform/Files.h"
#include "station/RepeatingTimer.h"

namespace orvane {

/// Tells the station's state to whoever looks from elsewhere, by files in the program's folder:
/// status.json, the same as a script (status.js) for the page status.html, and latest.jpg when that
/// is switched on. Each is replaced whole, within a second of a change (an attempt to take a
/// picture, recording, warnings, a day's count) and once a minute, whatever else goes on.
///
/// A file that cannot be replaced, as on Windows while somebody reads it, is tried again each
/// second. After a minute that is warned of, and tried again with each minute or change. The chosen
/// data folder is never written to: it may lie on a network drive that has gone, and would hold the
/// program's one thread.
class StatusFile {
  public:
    /// What it works with; all of it outlives this.
    struct Parts {
        StatusText::Parts told;
        Warnings& warnings;
        FileWriter& files;
        ErrorLog& log;
        Clock& clock;
        std::string page; ///< what status.html is to hold
    };

    StatusFile(Parts parts, Faults& faults);

    /// From the end of the start-up on. Before it and after `end` nothing is written.
    void begin();
    /// The program ends: the last thing that the files tell.
    void end();

    static constexpr const char* kPage = "status.html";
    static constexpr const char* kLatest = "latest.jpg";

  private:
    /// What is looked at for a change, beside the minute.
    struct Seen {
        std::int64_t minute = -1;
        std::int64_t revision = -1; ///< of the day's watch
        bool recording = false;
        bool latestCopy = false;
        WallTime attempt{};
        std::string warnings;
        std::filesystem::path picture;

        bool operator==(const Seen&) const = default;
    };

    void follow();
    Seen see() const;
    Fault write(StatusText::State state);
    Fault followPage();
    Fault followCopy();
    Fault removeCopy();
    Fault put(const std::string& bytes, const char* name);
    void settle(const Fault& fault);
    bool isTriedAgain() const;
    std::filesystem::path inFolder(const char* name) const;

    Parts parts_;
    std::optional<StatusText> text_; ///< while the station works
    RepeatingTimer timer_;
    Seen seen_;
    std::filesystem::path copied_; ///< the picture that latest.jpg is a copy of
    std::filesystem::path unread_; ///< one that could not be read
    bool hasPage_ = false;
    std::optional<Ticks> failingSince_;
};

} // namespace orvane

#pragma once

#include "platform/Clock.h"
#include "station/Value.h"

#include <map>
#include <string>

namespace orvane {

/// What stands in the warning window `Frm_massege`. Each cause has one text; the window is open
/// while any cause holds, and the operator may close it until a text changes.
class Warnings {
  public:
    enum class Cause {
        NoImage,
        ChosenFolder, ///< not there: pictures go elsewhere meanwhile
        DataFolder,
        Unreadable,
        Settings,
        ErrorLog,
        DiskSpace,
        ClockSetting,
        SunTimes,
        StatusFile,
        Mail ///< one that cannot be sent
    };
    struct Standing {
        std::string text;
        WallTime since; ///< when the cause came up; a changed text leaves it
    };

    /// `clock` outlives this.
    explicit Warnings(const Clock& clock) : clock_(clock) {}

    /// All texts, one per line; empty: nothing to warn of.
    Value<std::string> text;

    /// Sets the text of a cause; an empty one says that the cause has gone.
    void set(Cause cause, const std::string& message);
    void clear(Cause cause) { set(cause, {}); }
    bool stands(Cause cause) const { return standing_.contains(cause); }
    /// Every cause that stands, in the order of `text`.
    const std::map<Cause, Standing>& standing() const { return standing_; }

  private:
    const Clock& clock_;
    std::map<Cause, Standing> standing_;
};

} // namespace orvane

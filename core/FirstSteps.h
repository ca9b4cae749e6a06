#pragma once

#include "archive/DayWatch.h"
#include "camera/CameraPanel.h"
#include "core/Recording.h"
#include "station/DaySchedules.h"

#include <array>

namespace orvane {

/// What must be right before pictures can be recorded, for an operator who sees none yet: the
/// camera answers, the data folder can be written, the schedule can be used. Worked out at each
/// look; only the trial of the folder is remembered, since it writes.
class FirstSteps {
  public:
    /// What it looks at; all of it outlives this.
    struct Parts {
        const Module1& module;
        const OperationPanel& panel;
        const CameraPanel& camera;
        const Recording& recording;
        const DaySchedules& schedules;
        DayWatch& days;
        const Clock& clock;
    };
    enum class State { Open, Done, Wrong };
    struct Step {
        State state = State::Open;
        std::string text;
        std::string control; ///< where the operator sets it right, by its name; empty: locked

        bool operator==(const Step&) const = default;
    };
    static constexpr std::size_t kSteps = 3;
    struct Look {
        std::string summary; ///< empty while the settings are not loaded, and so are the steps
        std::array<Step, kSteps> steps; ///< camera, data folder, schedule
        bool isReady = false;           ///< nothing is left to be done

        bool operator==(const Look&) const = default;
    };

    explicit FirstSteps(Parts parts) : parts_(parts) {}

    /// How it stands; to be called about once a second while somebody looks. The folder is tried
    /// when that begins, when another one is in use, as recording is started, and every half minute
    /// while it cannot be written.
    Look look();

  private:
    Step camera() const;
    Step folder();
    Step schedule() const;
    std::string fieldName(std::size_t index) const;
    std::string summary(bool isReady) const;
    std::string nextText() const;
    bool isTrialDue() const;

    Parts parts_;
    std::filesystem::path tried_; ///< the folder of the last trial; empty: none
    Fault fault_;                 ///< why it cannot be written
    int starts_ = 0;              ///< of the recording, at the trial
    Ticks triedAt_{0};
    Ticks lookedAt_{0};
};

} // namespace orvane

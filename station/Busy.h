#pragma once

#include "station/Scope.h"
#include "station/Value.h"

#include <vector>

namespace orvane {

/// Counts the work during which the window must not be closed from its close box: a capture up to
/// the end of its processing, a run against the camera's store, a clock setting, a tracker
/// exchange. `mnuFileOpen` is disabled meanwhile.
class Busy {
  public:
    /// Holds the busy state while it lives.
    class Hold : public Scope {
      public:
        explicit Hold(Busy& busy) : Scope([&busy](bool on) { busy.change(on ? +1 : -1); }) {}
    };

    Value<bool> mnuFileOpen{true}; ///< the menu entry's enabled state
    bool active() const { return count_ > 0; }
    /// Has the enabled state of a control that does nothing meanwhile follow from here on.
    void lock(Value<bool>& enabled) {
        locked_.push_back(&enabled);
        enabled = !active();
    }

  private:
    void change(int by) {
        count_ += by;
        mnuFileOpen = count_ == 0;
        for (Value<bool>* enabled : locked_)
            *enabled = count_ == 0;
    }
    int count_ = 0;
    std::vector<Value<bool>*> locked_;
};

} // namespace orvane

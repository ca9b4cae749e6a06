#pragma once

#include "camera/ImageStore.h"

namespace orvane {

/// What the operator wants and the station cannot do yet: to stop recording during a capture, to
/// close the program while it is busy. A wish stands until that is possible or it is dropped, and
/// makes it possible soon: it cuts short the waits of a capture, its fetch and, for closing, a run
/// against the camera's store, and nothing new is begun meanwhile.
class Wishes {
  public:
    /// What they wait for and cut short; all of it outlives the wishes.
    struct Parts {
        Module1& module;
        Busy& busy;
        HttpTransfer& http;
        ImageStore& store;
        Clock& clock;
    };

    explicit Wishes(Parts parts) : parts_(parts) {}

    /// Waits until no capture is in progress. False: the wish was dropped, or stands already.
    Task<bool> toStop();
    /// Waits until nothing is busy. False as above.
    Task<bool> toClose();
    /// Sleeps until `end` (as `Clock::ticks`) or until a wish is made. For one sleeper at a time.
    Task<> sleepUntil(Ticks end);
    /// Drops every wish.
    void drop();
    bool standing() const { return stop_ || close_; }

    Value<std::string> text; ///< what the operator is told of them; empty: none stands

  private:
    Task<bool> wait(bool& wish, std::function<bool()> possible);
    void cutShort();
    Task<> wakeAt(Signal& sleeper, Ticks end);
    std::string describe() const;

    Parts parts_;
    Signal* sleeper_ = nullptr; ///< in the frame of the running sleepUntil()
    bool stop_ = false;
    bool close_ = false;
};

} // namespace orvane

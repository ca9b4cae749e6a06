#pragma once

#include "camera/ImageStore.h"
#include "core/Capture.h"
#include "core/Recording.h"

namespace orvane {

/// Asks for the camera's picture once as recording is switched on, so that a wrong address is told
/// then and not at the first due minute. The picture is judged as a capture's and forgotten: it is
/// neither written nor shown. What came of it stands in `lbl_start` until the first capture tells
/// more, or recording is switched off.
///
/// It stands back for everything: a capture, a run against the camera's store and the switching off
/// end it, and no busy state is held.
class StartTest {
  public:
    /// What it works with; all of it outlives this.
    struct Parts {
        const Module1& module;
        OperationPanel& panel;
        const Recording& recording;
        CameraPanel& camera;
        const ImageStore& store;
        HttpTransfer& inetFileGet;
        Faults& faults;
        Clock& clock;
    };

    explicit StartTest(Parts parts) : parts_(parts) {}

    /// To be called at each pass of the main loop. `isDue`: a capture comes in this very pass, and
    /// tells.
    void follow(bool isDue);
    /// A capture begins.
    void standBack();
    /// A capture has ended, and was not cut short.
    void note(const Captured& captured);

  private:
    Task<> test();
    void tell(std::string text) { parts_.panel.lbl_start.caption = std::move(text); }

    Parts parts_;
    int seen_ = 0;         ///< starts of the recording
    bool isTaken_ = false; ///< the first picture since then
    Task<bool> testing_;
};

} // namespace orvane

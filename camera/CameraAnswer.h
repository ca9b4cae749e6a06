#pragma once

#include "platform/Clock.h"
#include "platform/HttpTransfer.h"
#include "platform/ImageControl.h"

#include <string>

namespace orvane {

/// What came of asking the camera for its picture: the one judgement behind the test fetch, the
/// live view and the test when recording is started. A capture takes what passes it.
struct CameraAnswer {
    bool answered = false; ///< with anything at all
    std::string fault;     ///< why there is no picture: "no answer"; empty: it is whole and sound
    std::size_t bytes = 0; ///< the next three of a picture only
    int width = 0;         ///< 0: the file does not tell
    int height = 0;
    Ticks took{0};

    bool isPicture() const { return fault.empty(); }
    /// "1280 x 960, 49 kB"; empty without a picture.
    std::string picture() const;
    /// The picture and the time, "1280 x 960, 49 kB, 0.2 s", or the fault.
    std::string text() const;
};

/// The reason of a failed request for a line that speaks of the camera anyway: "no answer" instead
/// of "no answer from the camera".
std::string shortReason(const std::string& fault);

/// Judges what came after `took`. `control` and `reply` outlive the task.
Task<CameraAnswer> judgeAnswer(ImageControl& control, const HttpReply& reply, Ticks took);

} // namespace orvane

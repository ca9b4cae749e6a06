#pragma once

#include "platform/ImageControl.h"

#include <string>

namespace orvane {

/// Why `bytes`, as a camera answered them, are no picture to be filed: not a whole JPEG, or one
/// whose data are damaged. Both `control` and `bytes` outlive the task.
Task<Fault> pictureFault(ImageControl& control, const std::string& bytes);

} // namespace orvane

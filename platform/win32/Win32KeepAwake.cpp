#include "platform/KeepAwake.h"

#include <windows.h>

namespace orvane {

/// The request belongs to the calling thread, so every call must come from the same one.
void keepAwake(bool awake) {
    ::SetThreadExecutionState(awake ? ES_CONTINUOUS | ES_SYSTEM_REQUIRED : ES_CONTINUOUS);
}

} // namespace orvane

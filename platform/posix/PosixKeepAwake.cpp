#include "platform/KeepAwake.h"

namespace orvane {

/// Nothing to ask for: a recording machine's sleep is switched off in its system settings, and the
/// desktops that have such a request each have one of their own.
void keepAwake(bool) {}

} // namespace orvane

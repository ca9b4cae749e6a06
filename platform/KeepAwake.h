#pragma once

namespace orvane {

/// Asks the operating system not to put the PC to sleep (the screen may go dark) while `awake` is
/// true. Ends with the program. Does nothing where the system has no such request.
void keepAwake(bool awake);

} // namespace orvane

#include "simulators/sky-camera/SocketLinger.h"

#include <sys/socket.h>

namespace skycamera {

void resetOnClose(qintptr socketDescriptor) {
    const linger option{1, 0};
    ::setsockopt(static_cast<int>(socketDescriptor), SOL_SOCKET, SO_LINGER, &option,
                 sizeof(option));
}

} // namespace skycamera

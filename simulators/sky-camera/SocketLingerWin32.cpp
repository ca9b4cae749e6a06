#include "simulators/sky-camera/SocketLinger.h"

#include <winsock2.h>

namespace skycamera {

void resetOnClose(qintptr socketDescriptor) {
    const linger option{1, 0};
    ::setsockopt(static_cast<SOCKET>(socketDescriptor), SOL_SOCKET, SO_LINGER,
                 reinterpret_cast<const char*>(&option), sizeof(option));
}

} // namespace skycamera

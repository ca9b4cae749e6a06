#pragma once

#include "platform/curl/CurlTransfer.h"
#include "platform/qt/QtClock.h"
#include "tests/support/Finish.h"
#include "tests/support/RawServer.h"

#include <algorithm>

namespace orvane::test {

/// How long a test over real connections waits for what does not come: 20 times as long as the
/// slowest of ten sound answers took just now, since machines differ and may be busy. 100 ms or
/// more.
inline Ticks measuredPatience() {
    RawServer server;
    server.answer = [](const std::string&) {
        return std::string("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok");
    };
    QtClock clock;
    CurlLoop loop;
    CurlTransfer transfer(loop, clock);
    Ticks slowest = 5ms;
    for (int i = 0; i < 10; ++i) {
        const Ticks before = clock.ticks();
        EXPECT_TRUE(finish(transfer.get(server.url(), Wanted::Picture)).ok);
        slowest = std::max(slowest, clock.ticks() - before);
    }
    return 20 * slowest;
}

/// Without a byte, and in all.
inline HttpLimits measuredLimits() {
    const Ticks patience = measuredPatience();
    return {patience, 3 * patience};
}

} // namespace orvane::test

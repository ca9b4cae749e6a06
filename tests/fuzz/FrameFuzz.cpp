// Feeds arbitrary bytes, arbitrarily split in time, to the receivers of the tracker link.

#include "station/RepeatingTimer.h"
#include "tests/fuzz/Require.h"
#include "tests/support/FakeTracker.h"
#include "tests/support/Fakes.h"
#include "tests/support/JumpingClock.h"
#include "tracker/TrackerCommands.h"

namespace {

using namespace orvane;
using namespace orvane::test;

/// What the frame format says of these bytes, worked out apart from the receiver.
bool isFrame(const Bytes& bytes) {
    if (bytes.size() < 6 || bytes[0] != 0x02 || bytes[1] == 0) return false;
    const std::size_t end = 4U + bytes[1];
    if (bytes.size() <= end || bytes[end] != 0x03) return false;
    const auto first = bytes.begin() + 2;
    return bytes[end - 1] == std::accumulate(first, first + bytes[1] + 1, 0U) % 256;
}

struct Link {
    JumpingClock clock{at(2006, 11, 15)};
    FakeStore store;
    Module1 module;
    ErrorLog log{"/nonexistent", clock};
    FakeTracker port{clock};
    FrameLink link{port, store, log, clock, module};
    TrackerCommands commands{link};
    RepeatingTimer timer{clock, 1000ms, [this] { ++module.replyTicks; }, noFault};

    Link() {
        timer.enable();
        require(link.initCommunication());
    }
    /// 513 bytes, each up to the third tick, and some for the answer.
    template <class T>
    T finish(Task<T> task) {
        return test::finish(clock, std::move(task), 520 * 3s);
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const Ticks gap(data[0] * 7); // below the shortest time-out, two seconds
    const std::size_t split = data[1];
    const Bytes bytes(data + 2, data + size);
    const auto middle = bytes.begin() + static_cast<std::ptrdiff_t>(std::min(split, bytes.size()));
    {
        Link link;
        link.port.send(Bytes(bytes.begin(), middle), 1ms, gap);
        link.port.send(Bytes(middle, bytes.end()), 1s, 0ms);
        Reply reply;
        const bool received = link.finish(link.link.recMessage(reply));
        require(received == isFrame(bytes));
        require(reply.data.size() <= 514);
        if (received) {
            require(reply.cmd == bytes[2] && reply.lastIndex + 1 == bytes[1]);
            require(std::equal(reply.data.begin(), reply.data.end() - 1, bytes.begin() + 3));
        }
    }
    Link link;
    link.port.answer = [&](const Bytes&) { link.port.send(bytes, 1ms, gap); };
    link.finish(link.commands.exchange(TrackerCommand::ClockSet, 12));
    Reply reply;
    link.finish(link.commands.request(TrackerCommand::ReadSite, reply));
    return 0;
}

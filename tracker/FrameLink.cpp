#include "tracker/FrameLink.h"

#include "platform/Conversions.h"
#include "tracker/PortSelection.h"

#include <cstdio>
#include <numeric>

namespace orvane {

namespace {

constexpr const char* kLineSettings = "38400,N,8,1";
constexpr std::size_t kMaxData = 252;
constexpr int kReceiveBuffer = 513;
constexpr std::int16_t kReplyTicks = 2;
constexpr Ticks kPollInterval = 2ms;
/// A frame without data. It takes 1.3 ms at 38400 baud, but an adapter delivers it in portions.
constexpr std::size_t kEchoSize = 5;
constexpr Ticks kEchoSilence = 20ms;

std::string hex(std::uint8_t byte) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%X", static_cast<unsigned>(byte));
    return digits;
}

} // namespace

std::vector<std::uint8_t> MakeFrame(std::uint8_t cmd, const std::string& data) {
    const std::string_view kept = std::string_view(data).substr(0, kMaxData);
    std::vector<std::uint8_t> frame;
    frame.reserve(kept.size() + 5);
    frame.push_back(kStx);
    frame.push_back(static_cast<std::uint8_t>(kept.size()));
    frame.push_back(cmd);
    for (const char character : kept)
        frame.push_back(static_cast<std::uint8_t>(character));
    const unsigned sum = std::accumulate(frame.begin() + 2, frame.end(), 0U);
    frame.push_back(static_cast<std::uint8_t>(sum));
    frame.push_back(kEtx);
    return frame;
}

bool FrameLink::initCommunication() {
    module_.replyTicks = 0;
    exchangeEnd_ = Ticks::max();
    const std::int16_t port = toInt16(storedPort(store_)).value_or(0);
    inUse_ = MSComm1_.open(port, kLineSettings);
    return inUse_ || fail("initCommunication:COM Port EEROR");
}

void FrameLink::closeCommunication() noexcept {
    inUse_ = false;
    try {
        MSComm1_.close();
    } catch (...) {
        fail("closeCommunication:COM Port ERROR");
    }
}

bool FrameLink::tryPort(std::int16_t portNumber) {
    if (inUse_ || !MSComm1_.open(portNumber, kLineSettings)) return false;
    MSComm1_.close();
    return true;
}

bool FrameLink::isOver() const {
    return module_.replyTicks > kReplyTicks || clock_.ticks() >= exchangeEnd_;
}

Task<> FrameLink::SendFrame(std::uint8_t cmd, const std::string& data) {
    MSComm1_.write(MakeFrame(cmd, data));
    return waitForOutput();
}

Task<> FrameLink::SendByte(std::uint8_t byte) {
    MSComm1_.write({&byte, 1});
    return waitForOutput();
}

/// A line that takes nothing off is given up like one that answers nothing.
Task<> FrameLink::waitForOutput() {
    module_.replyTicks = 0;
    while (MSComm1_.outputCount().value_or(0) > 0 && !isOver())
        co_await clock_.sleep(kPollInterval);
}

/// True: a byte can be read, or the port has failed.
Task<bool> FrameLink::waitForInput() {
    module_.replyTicks = 0;
    while (MSComm1_.inputCount() == std::size_t{0}) {
        if (isOver()) co_return false;
        co_await clock_.sleep(kPollInterval);
    }
    co_return true;
}

Task<bool> FrameLink::Get1Char(std::uint8_t& byte) {
    Task<bool> waiting = waitForInput();
    if (!co_await waiting) co_return false;
    const auto received = MSComm1_.readByte();
    if (!received) co_return fail("get1charERROR:" + MSComm1_.fault());
    byte = *received;
    co_return true;
}

Task<bool> FrameLink::recMessage(Reply& reply) {
    reply = {};
    std::uint8_t byte = 0;
    Task<bool> stx = Get1Char(byte);
    if (!co_await stx) co_return fail("recMessage:STX/Receive ERROR");
    if (byte != kStx) {
        reply.cmd = byte;
        co_return fail("recMessage:Except[STX] " + hex(byte));
    }
    std::uint8_t length = 0;
    Task<bool> len = Get1Char(length);
    if (!co_await len) co_return fail("recMessage:LEN/Receive ERROR");
    Task<bool> cmd = Get1Char(reply.cmd);
    if (!co_await cmd) co_return fail("recMessage:CMD/Receive ERROR");

    unsigned sum = reply.cmd;
    int count = 0;
    // the length is compared after a byte was read: a frame without data is never complete
    do {
        Task<bool> data = Get1Char(byte);
        if (count == kReceiveBuffer || !co_await data)
            co_return fail("recMessage:DATA/Receive ERROR " + std::to_string(count));
        reply.data.push_back(byte);
        sum += byte;
        ++count;
    } while (count != length);
    reply.data.push_back(0);
    reply.lastIndex = static_cast<std::int16_t>(count - 1);

    std::uint8_t announcedSum = 0;
    Task<bool> check = Get1Char(announcedSum);
    if (!co_await check) co_return fail("recMessage:SUM/Receive ERROR");
    Task<bool> etx = Get1Char(byte);
    if (!co_await etx) co_return fail("recMessage:ETX/Receive ERROR");
    if (byte != kEtx) co_return fail("recMessage:Except[ETX] " + hex(byte));
    if (sum % 256 == announcedSum) co_return true;
    Task<> refusal = SendByte(kNak);
    co_await refusal;
    co_return fail("recMessage:SUM ERROR");
}

/// Ends also when the port has failed. Once there is a first byte this is bounded by the silences.
Task<> FrameLink::waitForEcho() {
    Task<bool> waiting = waitForInput();
    if (!co_await waiting) co_return;
    std::size_t known = 0;
    Ticks silentSince{};
    while (true) {
        const std::size_t count = MSComm1_.inputCount().value_or(kEchoSize);
        if (count >= kEchoSize) co_return;
        const Ticks now = clock_.ticks();
        if (count != known) silentSince = now;
        known = count;
        if (now - silentSince >= kEchoSilence) co_return;
        co_await clock_.sleep(kPollInterval);
    }
}

Task<bool> FrameLink::GetCmd(std::uint8_t& cmd) {
    Task<> waiting = waitForEcho();
    co_await waiting;
    const std::size_t count = MSComm1_.inputCount().value_or(0);
    for (std::size_t position = 1; position <= count; ++position) {
        const auto byte = MSComm1_.readByte();
        if (!byte) break;
        if (position == 3) cmd = *byte;
    }
    if (!MSComm1_.isOpen()) co_return fail("Get CMD ERROR:" + MSComm1_.fault());
    co_return true;
}

void FrameLink::FlushInput() {
    if (MSComm1_.inputCount().value_or(0) > 0) MSComm1_.discardInput();
}

bool FrameLink::fail(const std::string& message) {
    log_.write(message);
    return false;
}

} // namespace orvane

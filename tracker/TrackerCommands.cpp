#include "tracker/TrackerCommands.h"

#include "platform/Conversions.h"

#include <bit>

namespace orvane {

namespace {

/// Big-endian, whatever the machine's own order is.
template <class Unsigned>
void putBytes(std::span<std::uint8_t> to, Unsigned value) {
    for (std::size_t i = to.size(); i-- > 0; value = static_cast<Unsigned>(value >> 8))
        to[i] = static_cast<std::uint8_t>(value & 0xFF);
}

std::uint64_t bytesFrom(std::span<const std::uint8_t> from) {
    std::uint64_t value = 0;
    for (const std::uint8_t byte : from)
        value = value << 8 | byte;
    return value;
}

} // namespace

void putInt16(std::span<std::uint8_t, 2> to, std::int16_t value) {
    putBytes(to, static_cast<std::uint16_t>(value));
}

std::int16_t int16From(std::span<const std::uint8_t, 2> from) {
    return static_cast<std::int16_t>(bytesFrom(from));
}

void putDouble(std::span<std::uint8_t, 8> to, double value) {
    putBytes(to, std::bit_cast<std::uint64_t>(value));
}

double doubleFrom(std::span<const std::uint8_t, 8> from) {
    return std::bit_cast<double>(bytesFrom(from));
}

void putClock(std::span<std::uint8_t, 12> to, WallTime time) {
    const std::string stamp = dateDigits(time) + timeText(time);
    auto digit = to.begin();
    for (const char character : stamp.substr(2))
        if (character != ':') *digit++ = static_cast<std::uint8_t>(character - '0');
}

void putSerial(std::span<std::uint8_t, 16> to, const std::string& text) {
    for (std::size_t i = 0; i < to.size(); ++i)
        to[i] = i + 1 < text.size() ? static_cast<std::uint8_t>(text[i]) : 0;
}

Task<Exchange> TrackerCommands::sendCommand(TrackerCommand command, int count) {
    link_.beginExchange();
    link_.FlushInput();
    const std::string data = std::to_string(count);
    Task<> sending = link_.SendFrame(static_cast<std::uint8_t>(command), data);
    co_await sending;
    std::uint8_t answer = 0;
    Task<bool> receiving = link_.Get1Char(answer);
    if (!co_await receiving) co_return Exchange::NoReply;
    co_return answer == kAck ? Exchange::Done : Exchange::NotAcknowledged;
}

Task<Exchange> TrackerCommands::exchange(TrackerCommand command, int count) {
    Task<Exchange> sending = sendCommand(command, count);
    const Exchange sent = co_await sending;
    if (sent != Exchange::Done) co_return sent;
    std::uint8_t echo = 0;
    Task<bool> receiving = link_.GetCmd(echo);
    co_await receiving;
    if (echo != static_cast<std::uint8_t>(command)) co_return Exchange::WrongEcho;
    Task<> acknowledging = link_.SendByte(kAck);
    co_await acknowledging;
    co_return Exchange::Done;
}

Task<Exchange> TrackerCommands::request(TrackerCommand command, Reply& reply) {
    Task<Exchange> sending = sendCommand(command, 0);
    const Exchange sent = co_await sending;
    if (sent != Exchange::Done) co_return sent;
    Task<bool> receiving = link_.recMessage(reply);
    if (!co_await receiving) co_return Exchange::NoReply;
    if (reply.cmd != static_cast<std::uint8_t>(command)) co_return Exchange::WrongEcho;
    Task<> acknowledging = link_.SendByte(kAck);
    co_await acknowledging;
    co_return Exchange::Done;
}

} // namespace orvane

#pragma once

#include "tracker/FrameLink.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>

namespace orvane {

/// Command codes of the sun tracker.
enum class TrackerCommand : std::uint8_t {
    WriteSerial = 0x46,
    ReadSerial = 0x47,
    ClockSet = 0x48,
    WriteSite = 0x80, ///< time zone, longitude, latitude
    ReadSite = 0x81,
    WriteOrigin = 0x84,
    ReadOrigin = 0x85,
    SunRunning = 0xA8,
};

/// How an exchange ended.
enum class Exchange { Done, NoReply, NotAcknowledged, WrongEcho };

/// The shared command buffer, indices 0 to 24; parameters stand from index 1 upward. What goes over
/// the wire is only their count, as decimal text.
using CommandBuffer = std::array<std::uint8_t, 25>;

/// Two bytes, high byte first, two's complement.
void putInt16(std::span<std::uint8_t, 2> to, std::int16_t value);
std::int16_t int16From(std::span<const std::uint8_t, 2> from);
/// An IEEE-754 double, most significant byte first.
void putDouble(std::span<std::uint8_t, 8> to, double value);
double doubleFrom(std::span<const std::uint8_t, 8> from);
/// yymmddhhmmss, one digit (0 to 9) a byte; the century is not sent.
void putClock(std::span<std::uint8_t, 12> to, WallTime time);
/// The text's characters, zero-padded; the last character is never placed unless 16 stand before
/// it.
void putSerial(std::span<std::uint8_t, 16> to, const std::string& text);

/// The commands of the sun tracker over an open link.
class TrackerCommands {
  public:
    explicit TrackerCommands(FrameLink& link) : link_(link) {}

    /// Null also while another procedure uses the port.
    OpenPort open() {
        return OpenPort(!link_.inUse() && link_.initCommunication() ? &link_ : nullptr);
    }

    CommandBuffer buffer{};

    /// Sends a command with its parameter count, and takes the acknowledgement and the echo. As
    /// `request`, at most 15 s.
    Task<Exchange> exchange(TrackerCommand command, int count);
    /// Sends a read request and takes the reply frame; acknowledges it when its command is right.
    /// `NoReply` also for a frame that is not valid.
    Task<Exchange> request(TrackerCommand command, Reply& reply);

  private:
    Task<Exchange> sendCommand(TrackerCommand command, int count);

    FrameLink& link_;
};

} // namespace orvane

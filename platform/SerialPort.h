#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace orvane {

/// One serial port, polled; no call ever blocks. Binary: every byte value passes, 0 included. A
/// device that vanishes is a failure of the call that notices it and leaves the port closed.
class SerialPort {
  public:
    virtual ~SerialPort() = default;

    /// Opens port 1 to 4 (any other number fails) with line settings such as "38400,N,8,1" (baud,
    /// parity N, E or O, data bits, stop bits), without handshaking. A port that is open is closed
    /// first. False: `fault()` tells why.
    virtual bool open(int portNumber, const std::string& settings) = 0;
    virtual bool isOpen() const = 0;
    /// Whether the system has port 1 to 4, also while another program uses it. Asks its name only.
    virtual bool isThere(int portNumber) const = 0;
    /// What is not sent yet is dropped: wait for an output count of 0 first.
    virtual void close() = 0;

    /// Bytes that can be read now; nothing when the port is closed or has failed.
    virtual std::optional<std::size_t> inputCount() = 0;
    /// Bytes written but not sent yet; nothing when the port is closed or has failed. Asking also
    /// moves the sending on when the system did not take everything at once.
    virtual std::optional<std::size_t> outputCount() = 0;
    /// The oldest received byte; nothing when there is none or the port has failed.
    virtual std::optional<std::uint8_t> readByte() = 0;
    /// Queues `bytes` for sending. False: the port is closed or has failed.
    virtual bool write(std::span<const std::uint8_t> bytes) = 0;
    virtual void discardInput() = 0;

    /// The system's reason for the last failure.
    virtual const std::string& fault() const = 0;
};

/// This system's serial port, still closed. `devicePath` gives the device that stands for port 1
/// to 4 and is asked at every open; where ports have names of their own (COM1) it is not used.
std::unique_ptr<SerialPort> makeSerialPort(std::function<std::string(int)> devicePath);

} // namespace orvane

#pragma once

#include "platform/SerialPort.h"
#include "platform/SettingsStore.h"
#include "station/ErrorLog.h"
#include "station/Module1.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace orvane {

/// Frame and control bytes of the sun tracker's protocol.
inline constexpr std::uint8_t kStx = 0x02;
inline constexpr std::uint8_t kEtx = 0x03;
inline constexpr std::uint8_t kAck = 0x06;
inline constexpr std::uint8_t kNak = 0x15;

/// A received frame.
struct Reply {
    std::uint8_t cmd = 0;
    std::vector<std::uint8_t> data; ///< one spare element at the end
    std::int16_t lastIndex = -1;    ///< of the last real data byte
};

/// STX LEN CMD DATA SUM ETX. DATA is the text's bytes, at most 252 (more are left out); SUM is
/// CMD + DATA modulo 256.
std::vector<std::uint8_t> MakeFrame(std::uint8_t cmd, const std::string& data = {});

/// Frames and single bytes over the serial port. Every wait for a byte ends with the third tick of
/// the panel's clock timer, which counts `Module1::replyTicks`, and with the exchange's time.
class FrameLink {
  public:
    FrameLink(SerialPort& MSComm1, SettingsStore& store, ErrorLog& log, Clock& clock,
              Module1& module)
        : MSComm1_(MSComm1), store_(store), log_(log), clock_(clock), module_(module) {}

    /// Opens the stored port; false after logging.
    bool initCommunication();
    void closeCommunication() noexcept;
    /// Between the two; also while a port that has failed is not given up yet.
    bool inUse() const { return inUse_; }
    /// Whether `portNumber` can be opened; it is closed again at once. False also while in use.
    bool tryPort(std::int16_t portNumber);

    /// Whether the system has that port.
    bool isThere(int portNumber) const { return MSComm1_.isThere(portNumber); }

    /// From now on all waits together end within 15 s, as the time-out of the byte waited for does.
    void beginExchange() { exchangeEnd_ = clock_.ticks() + kExchangeTime; }

    Task<> SendFrame(std::uint8_t cmd, const std::string& data);
    Task<> SendByte(std::uint8_t byte);
    /// Receives one byte; false: none came in time, or the port failed (logged).
    Task<bool> Get1Char(std::uint8_t& byte);
    /// Receives and checks one frame; false after logging what was wrong. A frame without data is
    /// not received.
    Task<bool> recMessage(Reply& reply);
    /// Waits for the echo, five bytes or 20 ms of silence, and takes its third byte; a shorter echo
    /// leaves `cmd` as it was.
    Task<bool> GetCmd(std::uint8_t& cmd);
    void FlushInput();

  private:
    static constexpr Ticks kExchangeTime = 15s;

    Task<bool> waitForInput();
    Task<> waitForEcho();
    Task<> waitForOutput();
    bool isOver() const;
    bool fail(const std::string& message);

    SerialPort& MSComm1_;
    SettingsStore& store_;
    ErrorLog& log_;
    Clock& clock_;
    Module1& module_;
    bool inUse_ = false;
    Ticks exchangeEnd_ = Ticks::max();
};

struct ClosePort {
    void operator()(FrameLink* link) const noexcept { link->closeCommunication(); }
};
/// The port, opened for one procedure; closed when this goes, in whatever way the procedure or the
/// task that runs it ends. Null: it could not be opened.
using OpenPort = std::unique_ptr<FrameLink, ClosePort>;

} // namespace orvane

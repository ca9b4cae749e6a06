#pragma once

#include "platform/LineSettings.h"
#include "platform/SerialPort.h"

#include <deque>
#include <vector>

#include <termios.h>

namespace orvane {

/// A terminal device in raw mode. Both directions have a queue here: what the kernel does not take
/// yet is pushed on by the polls for the output count, and received bytes are fetched when they
/// are counted, because the kernel throws them away when the device vanishes.
class PosixSerialPort : public SerialPort {
  public:
    explicit PosixSerialPort(std::function<std::string(int)> devicePath)
        : devicePath_(std::move(devicePath)) {}
    PosixSerialPort(const PosixSerialPort&) = delete;
    PosixSerialPort& operator=(const PosixSerialPort&) = delete;
    ~PosixSerialPort() override { close(); }

    bool open(int portNumber, const std::string& settings) override;
    bool isThere(int portNumber) const override;
    bool isOpen() const override { return fd_ >= 0; }
    void close() override;

    std::optional<std::size_t> inputCount() override;
    std::optional<std::size_t> outputCount() override;
    std::optional<std::uint8_t> readByte() override;
    bool write(std::span<const std::uint8_t> bytes) override;
    void discardInput() override;

    const std::string& fault() const override { return fault_; }

  private:
    bool reserve();
    bool configure(const LineSettings& line);
    bool fetchInput();
    bool pushOutput();
    bool fail(const std::string& reason);
    bool failWithErrno();

    std::function<std::string(int)> devicePath_;
    int fd_ = -1;
    std::string path_;
    std::optional<termios> previous_; ///< set once the device is ours
    std::deque<std::uint8_t> input_;
    std::vector<std::uint8_t> output_;
    std::string fault_ = "The port is closed";
};

} // namespace orvane

#pragma once

#include "platform/LineSettings.h"
#include "platform/SerialPort.h"

#include <vector>

namespace orvane {

/// A COM port through a handle without overlapped input and output: reads return at once by their
/// time-outs, writes after a moment with what the driver took. The rest waits in a queue here and
/// is pushed on by the polls for the output count.
class Win32SerialPort : public SerialPort {
  public:
    Win32SerialPort() = default;
    Win32SerialPort(const Win32SerialPort&) = delete;
    Win32SerialPort& operator=(const Win32SerialPort&) = delete;
    ~Win32SerialPort() override { close(); }

    bool open(int portNumber, const std::string& settings) override;
    bool isThere(int portNumber) const override;
    bool isOpen() const override { return handle_ != nullptr; }
    void close() override;

    std::optional<std::size_t> inputCount() override;
    std::optional<std::size_t> outputCount() override;
    std::optional<std::uint8_t> readByte() override;
    bool write(std::span<const std::uint8_t> bytes) override;
    void discardInput() override;

    const std::string& fault() const override { return fault_; }

  private:
    bool configure(const LineSettings& line);
    bool pushOutput();
    bool fail(const std::string& reason);
    bool failWithSystemReason();

    void* handle_ = nullptr; ///< a HANDLE
    std::string name_;
    std::vector<std::uint8_t> output_;
    std::string fault_ = "The port is closed";
};

} // namespace orvane

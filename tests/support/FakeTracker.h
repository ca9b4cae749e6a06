#pragma once

#include "platform/Clock.h"
#include "platform/SerialPort.h"

#include <algorithm>
#include <deque>
#include <numeric>
#include <stdexcept>

namespace orvane::test {

using Bytes = std::vector<std::uint8_t>;

/// A serial port with a tracker behind it that answers on the test's clock. What it answers is
/// written down here byte by byte, not built with the station's own code.
class FakeTracker final : public SerialPort {
  public:
    explicit FakeTracker(Clock& clock) : clock_(clock) {}

    bool open(int portNumber, const std::string& lineSettings) override {
        ++opened;
        lastPort = portNumber;
        settings = lineSettings;
        input_.clear();
        isOpen_ = openable && portNumber >= 1 && portNumber <= 4;
        if (!isOpen_) fault_ = "No such file or directory";
        return isOpen_;
    }
    bool isOpen() const override { return isOpen_; }
    bool isThere(int portNumber) const override { return portNumber != missing; }
    void close() override {
        isOpen_ = false;
        if (closingFails) throw std::runtime_error("closing failed");
    }
    std::optional<std::size_t> inputCount() override {
        if (!isOpen_) return std::nullopt;
        std::size_t count = 0;
        while (count < input_.size() && input_[count].first <= clock_.ticks())
            ++count;
        if (count == 0 && unplugAfterInput) unplug();
        return isOpen_ ? std::optional(count) : std::nullopt;
    }
    std::optional<std::size_t> outputCount() override {
        return isOpen_ ? std::optional<std::size_t>(stuckOutput) : std::nullopt;
    }
    std::optional<std::uint8_t> readByte() override {
        if (inputCount().value_or(0) == 0) return std::nullopt;
        const std::uint8_t value = input_.front().second;
        input_.pop_front();
        return value;
    }
    bool write(std::span<const std::uint8_t> bytes) override {
        if (!isOpen_) return false;
        written.emplace_back(bytes.begin(), bytes.end());
        if (bytes.size() > 1 && answer) answer(written.back());
        return true;
    }
    void discardInput() override { input_.clear(); }
    const std::string& fault() const override { return fault_; }

    void unplug() {
        isOpen_ = false;
        fault_ = "Input/output error";
    }
    /// Sends `bytes`, the first after `delay`, each next one `gap` later.
    void send(const Bytes& bytes, Ticks delay = 1ms, Ticks gap = 0ms) {
        Ticks time = clock_.ticks() + delay;
        for (const std::uint8_t value : bytes) {
            input_.emplace_back(time, value);
            time += gap;
        }
    }

    /// Called with every frame that the station writes.
    std::function<void(const Bytes&)> answer = [this](const Bytes& frame) {
        send(goodAnswer(frame[2]));
    };
    /// Acknowledgement and echo, or the reply of a reading, as a tracker in order gives them.
    Bytes goodAnswer(std::uint8_t cmd) const {
        Bytes data;
        if (cmd == 0x47) data = serial;
        if (cmd == 0x81) data = site;
        if (cmd == 0x85) data = origin;
        const unsigned sum = std::accumulate(data.begin(), data.end(), unsigned{cmd});
        Bytes bytes{0x06, 0x02, static_cast<std::uint8_t>(data.size()), cmd};
        std::ranges::copy(data, std::back_inserter(bytes));
        bytes.push_back(static_cast<std::uint8_t>(sum));
        bytes.push_back(0x03);
        return bytes;
    }

    Bytes serial{'S', 'T', '-', '0', '4', '2', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    /// 540 min, 139.75 degrees, 35.5 degrees
    Bytes site{0x02, 0x1C, 0x40, 0x61, 0x78, 0, 0, 0, 0, 0, 0x40, 0x41, 0xC0, 0, 0, 0, 0, 0};
    Bytes origin{0x40, 0x76, 0x7F, 0xD7, 0x0A, 0x3D, 0x70, 0xA4}; ///< 359.99 degrees
    int missing = 0;                                              ///< the port that is not there
    bool openable = true;
    bool unplugAfterInput = false; ///< vanishes when the last byte has been read
    bool closingFails = false;
    std::size_t stuckOutput = 0;
    int opened = 0;
    int lastPort = 0;
    std::string settings;
    std::vector<Bytes> written;

  private:
    Clock& clock_;
    bool isOpen_ = false;
    std::string fault_;
    std::deque<std::pair<Ticks, std::uint8_t>> input_; ///< and when it has come
};

} // namespace orvane::test

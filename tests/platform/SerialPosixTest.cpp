#include "platform/SerialPort.h"

#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <numeric>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace orvane::test {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Milliseconds = std::chrono::milliseconds;

const std::string kLine = "38400,N,8,1";

Bytes bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

Bytes everyValue() {
    Bytes bytes(256);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
    return bytes;
}

/// The far end of a serial line: the master of a pseudo-terminal. Its other side starts like any
/// terminal (echo, line editing, signals), which a port must get rid of.
class Device {
  public:
    Device() : fd_(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
        if (::grantpt(fd_) == 0 && ::unlockpt(fd_) == 0) path_ = ::ptsname(fd_);
    }
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;
    ~Device() { hangUp(); }

    const std::string& path() const { return path_; }
    void send(const Bytes& bytes) const {
        ASSERT_EQ(::write(fd_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
    /// What has arrived; waits a moment for the first byte.
    Bytes received(int waitMilliseconds) const {
        pollfd poller{fd_, POLLIN, 0};
        if (::poll(&poller, 1, waitMilliseconds) <= 0) return {};
        Bytes bytes(64 * 1024);
        const ssize_t count = ::read(fd_, bytes.data(), bytes.size());
        bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        return bytes;
    }
    Bytes received(std::size_t count, int waitMilliseconds) const {
        Bytes all;
        while (all.size() < count) {
            const Bytes more = received(waitMilliseconds);
            if (more.empty()) break;
            all.insert(all.end(), more.begin(), more.end());
        }
        return all;
    }
    /// The mode of the port's side.
    termios mode() const {
        termios mode{};
        EXPECT_EQ(::tcgetattr(fd_, &mode), 0);
        return mode;
    }
    void hangUp() {
        if (fd_ >= 0) ::close(fd_);
        fd_ = -1;
    }

  private:
    int fd_;
    std::string path_;
};

std::unique_ptr<SerialPort> portAt(const std::string& path) {
    return makeSerialPort([path](int) { return path; });
}

/// An open port and its device.
class SerialPosix : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(port_->open(1, kLine)) << port_->fault(); }

    // The kernel hands bytes over in the background; a failure here costs a second, a success none.
    std::optional<std::size_t> countOnceItIs(std::size_t expected) {
        const auto end = std::chrono::steady_clock::now() + Milliseconds(1000);
        while (port_->inputCount() != expected && std::chrono::steady_clock::now() < end) {
        }
        return port_->inputCount();
    }
    Bytes readAll() {
        Bytes bytes;
        while (const auto byte = port_->readByte())
            bytes.push_back(*byte);
        return bytes;
    }

    Device device_;
    std::unique_ptr<SerialPort> port_ = portAt(device_.path());
};

TEST_F(SerialPosix, CountsExactlyAndReadsOneByteAtATime) {
    EXPECT_EQ(port_->inputCount(), 0u);
    EXPECT_EQ(port_->readByte(), std::nullopt);
    EXPECT_TRUE(port_->isOpen());
    device_.send({0x02, 0x00, 0x48});
    EXPECT_EQ(countOnceItIs(3), 3u);
    EXPECT_EQ(port_->readByte(), 0x02);
    EXPECT_EQ(port_->inputCount(), 2u);
    device_.send({0x03});
    EXPECT_EQ(countOnceItIs(3), 3u);
    EXPECT_EQ(readAll(), (Bytes{0x00, 0x48, 0x03}));
    EXPECT_EQ(port_->inputCount(), 0u);
    EXPECT_EQ(port_->readByte(), std::nullopt);
}

TEST_F(SerialPosix, ReceivesEveryByteValueAndEchoesNone) {
    device_.send(everyValue());
    EXPECT_EQ(countOnceItIs(256), 256u);
    EXPECT_EQ(readAll(), everyValue());
    EXPECT_EQ(device_.received(5), Bytes{});
}

TEST_F(SerialPosix, SendsEveryByteValue) {
    ASSERT_TRUE(port_->write(everyValue()));
    EXPECT_EQ(device_.received(256, 1000), everyValue());
    EXPECT_EQ(port_->outputCount(), 0u);
    EXPECT_EQ(device_.received(5), Bytes{}); // nothing after them either
}

TEST_F(SerialPosix, StopAndStartCharactersFromTheDeviceDoNotHoldTheOutput) {
    device_.send({0x13}); // XOFF
    EXPECT_EQ(countOnceItIs(1), 1u);
    ASSERT_TRUE(port_->write(bytesOf("go")));
    EXPECT_EQ(device_.received(2, 1000), bytesOf("go"));
}

TEST_F(SerialPosix, ReceivesMoreThanATerminalLineHolds) {
    Bytes sent(10'000);
    for (std::size_t i = 0; i < sent.size(); ++i)
        sent[i] = static_cast<std::uint8_t>(i % 251);
    device_.send(sent);
    EXPECT_EQ(countOnceItIs(sent.size()), sent.size());
    EXPECT_EQ(readAll(), sent);
}

TEST_F(SerialPosix, DiscardsOnlyWhatHasArrived) {
    device_.send(bytesOf("old"));
    ASSERT_EQ(countOnceItIs(3), 3u);  // counted and kept
    device_.send(Bytes(10'000, 'o')); // not counted yet, and more than a terminal line holds
    port_->discardInput();
    EXPECT_EQ(port_->inputCount(), 0u);
    device_.send(bytesOf("new"));
    EXPECT_EQ(countOnceItIs(3), 3u);
    EXPECT_EQ(readAll(), bytesOf("new"));
    EXPECT_EQ(device_.received(5), Bytes{});
}

TEST_F(SerialPosix, DropsAtOpenWhatCameBefore) {
    port_->close();
    device_.send(bytesOf("stale\n"));
    ASSERT_TRUE(port_->open(1, kLine));
    EXPECT_EQ(port_->inputCount(), 0u);
    device_.send(bytesOf("x"));
    EXPECT_EQ(countOnceItIs(1), 1u);
    EXPECT_EQ(readAll(), bytesOf("x"));
}

TEST_F(SerialPosix, CountedBytesOutliveTheDevice) {
    device_.send(bytesOf("abc"));
    ASSERT_EQ(countOnceItIs(3), 3u);
    device_.hangUp();
    EXPECT_EQ(port_->inputCount(), 3u);
    EXPECT_EQ(readAll(), bytesOf("abc"));
    EXPECT_FALSE(port_->isOpen());
    EXPECT_EQ(port_->inputCount(), std::nullopt);
    EXPECT_NE(port_->fault().find("Input/output error"), std::string::npos) << port_->fault();
}

TEST(SerialPosixHangUp, IsNoticedByEveryCallAndClosesThePort) {
    const struct {
        const char* name;
        std::function<bool(SerialPort&)> works;
    } calls[] = {
        {"inputCount", [](SerialPort& port) { return port.inputCount().has_value(); }},
        {"outputCount", [](SerialPort& port) { return port.outputCount().has_value(); }},
        {"readByte", [](SerialPort& port) { return port.readByte().has_value(); }},
        {"write", [](SerialPort& port) { return port.write(bytesOf("x")); }},
    };
    for (const auto& noticing : calls) {
        SCOPED_TRACE(noticing.name);
        Device device;
        const auto port = portAt(device.path());
        ASSERT_TRUE(port->open(1, kLine));
        device.hangUp();
        const auto start = std::chrono::steady_clock::now();
        EXPECT_FALSE(noticing.works(*port));
        EXPECT_FALSE(port->isOpen());
        const std::string reason = port->fault();
        EXPECT_EQ(reason, device.path() + ": Input/output error");
        for (const auto& later : calls)
            EXPECT_FALSE(later.works(*port)) << later.name;
        port->discardInput();
        EXPECT_EQ(port->fault(), reason);
        EXPECT_LT(std::chrono::steady_clock::now() - start, Milliseconds(200));
    }
}

TEST_F(SerialPosix, AFullDeviceNeverBlocksAndGetsEverythingInOrder) {
    Bytes sent(100'000);
    for (std::size_t i = 0; i < sent.size(); ++i)
        sent[i] = static_cast<std::uint8_t>(i % 251);
    const auto start = std::chrono::steady_clock::now();
    ASSERT_TRUE(port_->write(sent));
    const auto left = port_->outputCount();
    EXPECT_LT(std::chrono::steady_clock::now() - start, Milliseconds(500));
    ASSERT_TRUE(left);
    EXPECT_GT(*left, 0u);
    EXPECT_LT(*left, sent.size());
    ASSERT_TRUE(port_->write(bytesOf("last"))); // keeps its place behind the rest
    const Bytes last = bytesOf("last");
    sent.insert(sent.end(), last.begin(), last.end());

    Bytes arrived;
    while (arrived.size() < sent.size()) {
        const Bytes more = device_.received(1000);
        ASSERT_FALSE(more.empty()) << arrived.size() << " bytes arrived";
        arrived.insert(arrived.end(), more.begin(), more.end());
        ASSERT_TRUE(port_->outputCount());
    }
    EXPECT_TRUE(arrived == sent);
    EXPECT_EQ(port_->outputCount(), 0u);
}

TEST_F(SerialPosix, CloseDropsWhatAFullDeviceDidNotTake) {
    ASSERT_TRUE(port_->write(Bytes(100'000, 0x55)));
    const auto start = std::chrono::steady_clock::now();
    port_->close();
    EXPECT_LT(std::chrono::steady_clock::now() - start, Milliseconds(500));
    while (!device_.received(5).empty()) {
    }
    ASSERT_TRUE(port_->open(1, kLine));
    EXPECT_EQ(port_->outputCount(), 0u);
    EXPECT_EQ(device_.received(5), Bytes{});
}

TEST_F(SerialPosix, BytesThatCountAsSentOutliveCloseAndReopen) {
    for (int round = 0; round < 50; ++round) { // they are lost only when the kernel is slow
        ASSERT_TRUE(port_->write({{0x06}}));
        port_->close();
        ASSERT_TRUE(port_->open(1, kLine));
        ASSERT_EQ(device_.received(1000), Bytes{0x06}) << round;
    }
}

TEST_F(SerialPosix, IsClosedAfterCloseAndNothingWorks) {
    device_.send(bytesOf("abc"));
    ASSERT_EQ(countOnceItIs(3), 3u);
    port_->close();
    EXPECT_FALSE(port_->isOpen());
    EXPECT_EQ(port_->inputCount(), std::nullopt);
    EXPECT_EQ(port_->outputCount(), std::nullopt);
    EXPECT_EQ(port_->readByte(), std::nullopt);
    EXPECT_FALSE(port_->write(bytesOf("x")));
    EXPECT_NE(port_->fault(), "");
    port_->close();
    ASSERT_TRUE(port_->open(1, kLine));
    EXPECT_EQ(port_->inputCount(), 0u);
}

TEST(SerialPosixMode, IsSetFromTheTextAndPutBackAtClose) {
    // A pseudo-terminal has neither parity nor short bytes, so only the rest can be seen here.
    const struct {
        const char* settings;
        speed_t speed;
        bool twoStopBits;
    } cases[] = {
        {"38400,N,8,1", B38400, false}, {"300,N,8,2", B300, true},
        {"600,N,8,1", B600, false},     {"1200,N,8,1", B1200, false},
        {"2400,E,7,2", B2400, true},    {"4800,N,8,1", B4800, false},
        {"9600,O,8,1", B9600, false},   {"19200,N,8,1", B19200, false},
        {"57600,N,8,1", B57600, false}, {"115200,N,8,2", B115200, true},
    };
    for (const auto& [settings, speed, twoStopBits] : cases) {
        SCOPED_TRACE(settings);
        const Device device;
        const termios before = device.mode();
        const auto port = portAt(device.path());
        ASSERT_TRUE(port->open(1, settings)) << port->fault();
        const termios open = device.mode();
        EXPECT_EQ(::cfgetospeed(&open), speed);
        EXPECT_EQ(::cfgetispeed(&open), speed);
        EXPECT_EQ((open.c_cflag & CSTOPB) != 0, twoStopBits);
        EXPECT_EQ(open.c_cflag & (CLOCAL | CREAD), tcflag_t{CLOCAL | CREAD});
        EXPECT_EQ(open.c_cflag & CRTSCTS, 0u);
        EXPECT_EQ(open.c_iflag & (IXON | IXOFF | IXANY | ISTRIP | INLCR | ICRNL | IGNCR), 0u);
        EXPECT_EQ(open.c_lflag & (ECHO | ICANON | ISIG), 0u);
        EXPECT_EQ(open.c_oflag & OPOST, 0u);
        port->close();
        const termios after = device.mode();
        EXPECT_EQ(after.c_iflag, before.c_iflag);
        EXPECT_EQ(after.c_oflag, before.c_oflag);
        EXPECT_EQ(after.c_cflag, before.c_cflag);
        EXPECT_EQ(after.c_lflag, before.c_lflag);
        EXPECT_EQ(::cfgetospeed(&after), ::cfgetospeed(&before));
        EXPECT_TRUE(std::equal(std::begin(after.c_cc), std::end(after.c_cc), before.c_cc));
    }
}

TEST(SerialPosixOpen, AsksForTheDeviceOfThePort) {
    const std::vector<Device> devices(4);
    const auto port =
        makeSerialPort([&](int number) { return devices.at(std::size_t(number) - 1).path(); });
    for (const int number : {1, 4, 2, 3, 1}) { // each open gives up the port before
        ASSERT_TRUE(port->open(number, kLine)) << port->fault();
        ASSERT_TRUE(port->write(bytesOf("x")));
        for (int other = 1; other <= 4; ++other)
            EXPECT_EQ(devices[std::size_t(other) - 1].received(other == number ? 1000 : 0),
                      other == number ? bytesOf("x") : Bytes{});
    }
}

TEST(SerialPosixOpen, RefusesWhatIsNoPortAndTellsWhy) {
    const TempFolder folder;
    const std::string file = (folder.path() / "file").string();
    std::ofstream(file) << "content";
    const Device device;
    const struct {
        std::string path;
        int number;
        std::string settings;
        std::string reason;
    } cases[] = {
        {folder.path() / "missing", 1, kLine, "No such file or directory"},
        {"", 1, kLine, "No such file or directory"},
        {folder.path(), 1, kLine, "Is a directory"},
        {"/dev/null", 1, kLine, "/dev/null: not a serial device"},
        {file, 1, kLine, "not a serial device"},
        {device.path(), 0, kLine, "COM0: no such port"},
        {device.path(), 5, kLine, "COM5: no such port"},
        {device.path(), 7, kLine, "COM7: no such port"},
        {device.path(), -1, kLine, "COM-1: no such port"},
        {device.path(), 1, "38400,N,8", "38400,N,8"},
        {device.path(), 1, "", "line settings"},
        {device.path(), 1, "38400,n,8,1", "38400,n,8,1"},
    };
    for (const auto& [path, number, settings, reason] : cases) {
        SCOPED_TRACE(path + " " + std::to_string(number) + " " + settings);
        const auto port = portAt(path);
        EXPECT_FALSE(port->open(number, settings));
        EXPECT_FALSE(port->isOpen());
        EXPECT_NE(port->fault().find(reason), std::string::npos) << port->fault();
        EXPECT_EQ(port->inputCount(), std::nullopt);
    }
    EXPECT_EQ(std::filesystem::file_size(file), 7u);
}

TEST_F(SerialPosix, AFailedOpenClosesTheOpenPort) {
    EXPECT_FALSE(port_->open(7, kLine));
    EXPECT_FALSE(port_->isOpen());
    EXPECT_TRUE(port_->open(1, kLine)) << port_->fault();
}

// Whether plain opens by others are refused; they are not to somebody running as root.
bool isExclusive(int fd) {
    int exclusive = 0;
    EXPECT_EQ(::ioctl(fd, TIOCGEXCL, &exclusive), 0);
    return exclusive != 0;
}

TEST(SerialPosixOpen, APortBelongsToOneHolder) {
    const Device device;
    const int watching = ::open(device.path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    const auto holder = portAt(device.path());
    const auto second = portAt(device.path());
    ASSERT_TRUE(holder->open(1, kLine));
    EXPECT_FALSE(second->open(1, kLine));
    EXPECT_EQ(second->fault(), device.path() + ": Device or resource busy");
    EXPECT_TRUE(isExclusive(watching));
    ASSERT_TRUE(holder->write(bytesOf("x"))) << "the attempt has harmed the holder";
    EXPECT_EQ(device.received(1000), bytesOf("x"));
    EXPECT_EQ(device.mode().c_lflag & ECHO, 0u);

    holder->close();
    EXPECT_FALSE(isExclusive(watching));
    EXPECT_TRUE(second->open(1, kLine)) << second->fault();
    ::close(watching);
}

} // namespace
} // namespace orvane::test

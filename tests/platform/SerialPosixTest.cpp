#include "platform/SerialPort.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <functional>
#include <numeric>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace orvane::test {
namespace {

using Bytes = std::vector<std::uint8_t>;
using namespace std::chrono_literals;

const std::string kLine = "38400,N,8,1";

Bytes bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

/// Every value of a byte, again and again.
Bytes everyValue(std::size_t count) {
    Bytes bytes(count);
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
    ~Device() { hangUp(); }

    const std::string& path() const { return path_; }
    std::unique_ptr<SerialPort> makePort() const {
        return makeSerialPort([path = path_](int) { return path; });
    }
    void send(const Bytes& bytes) const {
        ASSERT_EQ(::write(fd_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
    /// `count` bytes or more; fewer when none came for `waitMilliseconds`.
    Bytes received(std::size_t count, int waitMilliseconds = 1000) const {
        Bytes all;
        Bytes block(64 * 1024);
        pollfd poller{fd_, POLLIN, 0};
        while (all.size() < count && ::poll(&poller, 1, waitMilliseconds) > 0) {
            const ssize_t read = ::read(fd_, block.data(), block.size());
            if (read <= 0) break;
            all.insert(all.end(), block.begin(), block.begin() + read);
        }
        return all;
    }
    bool isSilent() const { return received(1, 5).empty(); }
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

const std::pair<const char*, std::function<bool(SerialPort&)>> kCalls[] = {
    {"inputCount", [](SerialPort& port) { return port.inputCount().has_value(); }},
    {"outputCount", [](SerialPort& port) { return port.outputCount().has_value(); }},
    {"readByte", [](SerialPort& port) { return port.readByte().has_value(); }},
    {"write", [](SerialPort& port) { return port.write(bytesOf("x")); }}};

void expectNothingWorks(SerialPort& port) {
    EXPECT_FALSE(port.isOpen());
    for (const auto& [name, works] : kCalls)
        EXPECT_FALSE(works(port)) << name;
    port.discardInput();
    EXPECT_NE(port.fault(), "");
}

/// An open port and its device.
class SerialPosix : public testing::Test {
  protected:
    SerialPosix() { EXPECT_TRUE(port_->open(1, kLine)) << port_->fault(); }

    /// The kernel hands bytes over in the background; a failure here costs a second, a success
    /// none.
    void expectCount(std::size_t expected) {
        const auto end = std::chrono::steady_clock::now() + 1s;
        while (port_->inputCount() != expected && std::chrono::steady_clock::now() < end) {
        }
        EXPECT_EQ(port_->inputCount(), expected);
    }
    void expectInput(const Bytes& expected) {
        expectCount(expected.size());
        Bytes bytes;
        while (const auto byte = port_->readByte())
            bytes.push_back(*byte);
        EXPECT_TRUE(bytes == expected) << testing::PrintToString(bytes);
    }

    Device device_;
    std::unique_ptr<SerialPort> port_ = device_.makePort();
};

TEST_F(SerialPosix, CountsExactlyAndReadsOneByteAtATime) {
    EXPECT_EQ(port_->inputCount(), 0u);
    EXPECT_EQ(port_->readByte(), std::nullopt);
    EXPECT_TRUE(port_->isOpen());
    device_.send({0x02, 0x00, 0x48});
    expectCount(3);
    EXPECT_EQ(port_->readByte(), 0x02);
    EXPECT_EQ(port_->inputCount(), 2u);
    device_.send({0x03});
    expectCount(3);
    device_.hangUp(); // what was counted outlives it
    EXPECT_EQ(port_->inputCount(), 3u);
    for (const int byte : {0x00, 0x48, 0x03})
        EXPECT_EQ(port_->readByte(), byte);
    EXPECT_EQ(port_->readByte(), std::nullopt);
    EXPECT_EQ(port_->fault(), device_.path() + ": Input/output error");
    expectNothingWorks(*port_);
}

TEST_F(SerialPosix, CarriesEveryByteValueBothWaysAndEchoesNone) {
    device_.send(everyValue(10'000)); // more than a terminal's line holds
    expectInput(everyValue(10'000));
    EXPECT_TRUE(device_.isSilent());
    device_.send({0x13}); // XOFF
    expectCount(1);
    ASSERT_TRUE(port_->write(everyValue(256)));
    EXPECT_EQ(device_.received(256), everyValue(256));
    EXPECT_EQ(port_->outputCount(), 0u);
    EXPECT_TRUE(device_.isSilent());
}

TEST_F(SerialPosix, DiscardsWhatHasArrivedOnRequestAndAtOpen) {
    device_.send(bytesOf("old"));
    expectCount(3);                   // counted and kept
    device_.send(Bytes(10'000, 'o')); // not counted yet, and more than a terminal line holds
    port_->discardInput();
    EXPECT_EQ(port_->inputCount(), 0u);
    device_.send(bytesOf("new"));
    expectInput(bytesOf("new"));
    EXPECT_TRUE(device_.isSilent());

    device_.send(bytesOf("kept"));
    expectCount(4);
    port_->close();
    expectNothingWorks(*port_);
    port_->close();
    device_.send(bytesOf("stale\n"));
    ASSERT_TRUE(port_->open(1, kLine));
    EXPECT_EQ(port_->inputCount(), 0u);
    device_.send(bytesOf("x"));
    expectInput(bytesOf("x"));
}

TEST(SerialPosixHangUp, IsNoticedByEveryCallAndClosesThePort) {
    for (const auto& [name, works] : kCalls) {
        SCOPED_TRACE(name);
        Device device;
        const auto port = device.makePort();
        ASSERT_TRUE(port->open(1, kLine));
        device.hangUp();
        EXPECT_FALSE(works(*port));
        expectNothingWorks(*port);
        EXPECT_EQ(port->fault(), device.path() + ": Input/output error");
    }
}

TEST_F(SerialPosix, AFullDeviceNeverBlocksAndGetsEverythingInOrder) {
    Bytes sent = everyValue(100'000);
    auto start = std::chrono::steady_clock::now();
    ASSERT_TRUE(port_->write(sent));
    const auto left = port_->outputCount();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 500ms);
    EXPECT_GT(left, 0u);
    EXPECT_LT(left, sent.size());
    ASSERT_TRUE(port_->write({{0x55}})); // keeps its place behind the rest
    sent.push_back(0x55);
    Bytes arrived;
    while (arrived.size() < sent.size()) {
        const Bytes more = device_.received(1);
        ASSERT_FALSE(more.empty()) << arrived.size() << " bytes arrived";
        arrived.insert(arrived.end(), more.begin(), more.end());
        ASSERT_TRUE(port_->outputCount());
    }
    EXPECT_TRUE(arrived == sent);
    EXPECT_EQ(port_->outputCount(), 0u);

    ASSERT_TRUE(port_->write(sent));
    start = std::chrono::steady_clock::now();
    port_->close(); // drops what the device did not take and nothing else
    EXPECT_LT(std::chrono::steady_clock::now() - start, 500ms);
    while (!device_.isSilent()) {
    }
    ASSERT_TRUE(port_->open(1, kLine));
    EXPECT_EQ(port_->outputCount(), 0u);
    EXPECT_TRUE(device_.isSilent());
    for (int round = 0; round < 50; ++round) { // what counts as sent is lost only by a slow kernel
        ASSERT_TRUE(port_->write({{0x06}}));
        port_->close();
        ASSERT_TRUE(port_->open(1, kLine));
        ASSERT_EQ(device_.received(1), Bytes{0x06}) << round;
    }
}

/// A pseudo-terminal has neither parity nor short bytes, so only the rest can be seen here.
TEST(SerialPosixMode, IsSetFromTheTextAndPutBackAtClose) {
    const struct {
        const char* settings;
        speed_t speed;
        bool twoStopBits;
    } cases[] = {{"38400,N,8,1", B38400, false}, {"300,N,8,2", B300, true},
                 {"600,N,8,1", B600, false},     {"1200,N,8,1", B1200, false},
                 {"2400,E,7,2", B2400, true},    {"4800,N,8,1", B4800, false},
                 {"9600,O,8,1", B9600, false},   {"19200,N,8,1", B19200, false},
                 {"57600,N,8,1", B57600, false}, {"115200,N,8,2", B115200, true}};
    const auto allOf = [](const termios& mode) {
        return std::tuple(mode.c_iflag, mode.c_oflag, mode.c_cflag, mode.c_lflag,
                          ::cfgetospeed(&mode),
                          std::vector(std::begin(mode.c_cc), std::end(mode.c_cc)));
    };
    for (const auto& [settings, speed, twoStopBits] : cases) {
        SCOPED_TRACE(settings);
        const Device device;
        const termios before = device.mode();
        const auto port = device.makePort();
        ASSERT_TRUE(port->open(1, settings));
        const termios open = device.mode();
        EXPECT_EQ(::cfgetospeed(&open), speed);
        EXPECT_EQ(::cfgetispeed(&open), speed);
        EXPECT_EQ((open.c_cflag & CSTOPB) != 0, twoStopBits);
        EXPECT_EQ(open.c_cflag & (CLOCAL | CREAD | CRTSCTS), tcflag_t{CLOCAL | CREAD});
        EXPECT_EQ(open.c_iflag & (IXON | IXOFF | IXANY | ISTRIP | INLCR | ICRNL | IGNCR), 0u);
        EXPECT_EQ(open.c_lflag & (ECHO | ICANON | ISIG), 0u);
        EXPECT_EQ(open.c_oflag & OPOST, 0u);
        port->close();
        EXPECT_EQ(allOf(device.mode()), allOf(before));
    }
}

TEST(SerialPosixOpen, AsksForTheDeviceOfThePort) {
    const std::vector<Device> devices(4);
    const auto port =
        makeSerialPort([&](int number) { return devices.at(std::size_t(number) - 1).path(); });
    for (const int number : {1, 4, 2, 3, 1}) { // each open gives up the port before
        EXPECT_TRUE(port->isThere(number));
        ASSERT_TRUE(port->open(number, kLine)) << port->fault();
        ASSERT_TRUE(port->write(bytesOf("x")));
        for (int other = 1; other <= 4; ++other)
            EXPECT_EQ(devices[std::size_t(other) - 1].received(1, other == number ? 1000 : 0),
                      other == number ? bytesOf("x") : Bytes{});
    }
    EXPECT_FALSE(port->isThere(0));
    EXPECT_FALSE(port->isThere(5));
    EXPECT_FALSE(makeSerialPort([](int) { return "/dev/none"; })->isThere(1));
}

/// And closes what was open before.
TEST(SerialPosixOpen, RefusesWhatIsNoPortAndTellsWhy) {
    const Device device;
    const TempFolder folder;
    const std::string file = (folder.path() / "file").string();
    writeFile(file, "content");
    const struct {
        std::string path;
        int number;
        std::string settings, reason;
    } cases[] = {{folder.path() / "missing", 1, kLine, "No such file or directory"},
                 {folder.path(), 1, kLine, "Is a directory"},
                 {"/dev/null", 1, kLine, "/dev/null: not a serial device"},
                 {file, 1, kLine, "not a serial device"},
                 {device.path(), 0, kLine, "COM0: no such port"},
                 {device.path(), 5, kLine, "COM5: no such port"},
                 {device.path(), 1, "38400,N,8", "Unusable line settings: 38400,N,8"},
                 {device.path(), 1, "", "Unusable line settings: "}};
    for (const auto& [path, number, settings, reason] : cases) {
        SCOPED_TRACE(testing::Message() << path << ' ' << number << ' ' << settings);
        std::string name = device.path();
        const auto port = makeSerialPort([&name](int) { return name; });
        ASSERT_TRUE(port->open(1, kLine));
        name = path;
        EXPECT_FALSE(port->open(number, settings));
        EXPECT_NE(port->fault().find(reason), std::string::npos) << port->fault();
        expectNothingWorks(*port);
    }
    EXPECT_EQ(contentsOf(file), "content");
}

TEST(SerialPosixOpen, APortBelongsToOneHolder) {
    const Device device;
    const int watching = ::open(device.path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    // whether plain opens by others are refused, which they are not to somebody running as root
    int exclusive = 0;
    const auto holder = device.makePort();
    const auto second = device.makePort();
    ASSERT_TRUE(holder->open(1, kLine));
    EXPECT_FALSE(second->open(1, kLine));
    EXPECT_EQ(second->fault(), device.path() + ": Device or resource busy");
    EXPECT_EQ(::ioctl(watching, TIOCGEXCL, &exclusive), 0);
    EXPECT_NE(exclusive, 0);
    ASSERT_TRUE(holder->write(bytesOf("x"))) << "the attempt has harmed the holder";
    EXPECT_EQ(device.received(1), bytesOf("x"));
    EXPECT_EQ(device.mode().c_lflag & ECHO, 0u);
    holder->close();
    EXPECT_EQ(::ioctl(watching, TIOCGEXCL, &exclusive), 0);
    EXPECT_EQ(exclusive, 0);
    EXPECT_TRUE(second->open(1, kLine)) << second->fault();
    ::close(watching);
}

} // namespace
} // namespace orvane::test

#include "platform/posix/PosixSerialPort.h"

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace orvane {

namespace {

// Keeps one poll short, and the memory bounded, when a device never stops sending.
constexpr std::size_t kInputLimit = 64 * 1024;

constexpr std::array<std::pair<int, speed_t>, 10> kSpeeds{{{300, B300},
                                                           {600, B600},
                                                           {1200, B1200},
                                                           {2400, B2400},
                                                           {4800, B4800},
                                                           {9600, B9600},
                                                           {19200, B19200},
                                                           {38400, B38400},
                                                           {57600, B57600},
                                                           {115200, B115200}}};

constexpr std::array<tcflag_t, 4> kSizes{CS5, CS6, CS7, CS8};

speed_t speedOf(int baud) {
    for (const auto& [rate, speed] : kSpeeds)
        if (rate == baud) return speed;
    return B0;
}

// The kernel did nothing now, but nothing is wrong either.
bool onlyLater() {
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

} // namespace

bool PosixSerialPort::isThere(int portNumber) const {
    return portNumber >= 1 && portNumber <= 4 &&
           ::access(devicePath_(portNumber).c_str(), F_OK) == 0;
}

bool PosixSerialPort::open(int portNumber, const std::string& settings) {
    close();
    if (portNumber < 1 || portNumber > 4)
        return fail("COM" + std::to_string(portNumber) + ": no such port");
    const std::optional<LineSettings> line = parseLineSettings(settings);
    if (!line) return fail("Unusable line settings: " + settings);
    path_ = devicePath_(portNumber);
    fd_ = ::open(path_.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd_ < 0) return failWithErrno();
    if (::isatty(fd_) == 0) return fail(path_ + ": not a serial device");
    if (!reserve() || !configure(*line)) return failWithErrno();
    discardInput();
    return true;
}

// The exclusive mode does not keep out programs that run as root; the lock does, if they ask.
bool PosixSerialPort::reserve() {
    if (::flock(fd_, LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK) errno = EBUSY;
        return false;
    }
    return ::ioctl(fd_, TIOCEXCL) == 0;
}

bool PosixSerialPort::configure(const LineSettings& line) {
    termios mode{};
    if (::tcgetattr(fd_, &mode) != 0) return false;
    previous_ = mode;
    ::cfmakeraw(&mode);
    mode.c_iflag &= ~static_cast<tcflag_t>(IXOFF | IXANY | INPCK | IGNPAR);
    mode.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB | PARODD | CSTOPB | CRTSCTS);
    mode.c_cflag |= CLOCAL | CREAD | kSizes[static_cast<std::size_t>(line.dataBits - 5)];
    if (line.parity != Parity::None) mode.c_cflag |= PARENB;
    if (line.parity == Parity::Odd) mode.c_cflag |= PARODD;
    if (line.stopBits == 2) mode.c_cflag |= CSTOPB;
    // With 0 a read could not tell "nothing yet" from a device that is gone.
    mode.c_cc[VMIN] = 1;
    mode.c_cc[VTIME] = 0;
    const speed_t speed = speedOf(line.baud);
    if (::cfsetispeed(&mode, speed) != 0 || ::cfsetospeed(&mode, speed) != 0) return false;
    if (::tcsetattr(fd_, TCSANOW, &mode) != 0) return false;
    // A success only says that something was set; a rate the hardware lacks is passed over.
    if (::tcgetattr(fd_, &mode) != 0) return false;
    if (::cfgetospeed(&mode) != speed) {
        errno = EINVAL;
        return false;
    }
    return true;
}

void PosixSerialPort::close() {
    if (fd_ < 0) return;
    if (previous_) {
        // Unsent bytes would hold up the close for half a minute on a stuck device. Only when
        // there are any: a pseudo-terminal would lose bytes that count as sent.
        int unsent = 0;
        if (::ioctl(fd_, TIOCOUTQ, &unsent) == 0 && unsent > 0) ::tcflush(fd_, TCOFLUSH);
        ::tcsetattr(fd_, TCSADRAIN, &*previous_);
        ::ioctl(fd_, TIOCNXCL);
        previous_.reset();
    }
    ::close(fd_);
    fd_ = -1;
    input_.clear();
    output_.clear();
    fault_ = "The port is closed";
}

std::optional<std::size_t> PosixSerialPort::inputCount() {
    if (fd_ < 0) return std::nullopt;
    // A device that is gone counts as failed only after its last byte has been read.
    if (!fetchInput() && input_.empty()) {
        failWithErrno();
        return std::nullopt;
    }
    return input_.size();
}

std::optional<std::size_t> PosixSerialPort::outputCount() {
    if (fd_ < 0) return std::nullopt;
    int unsent = 0;
    if (!pushOutput() || ::ioctl(fd_, TIOCOUTQ, &unsent) != 0) {
        failWithErrno();
        return std::nullopt;
    }
    return output_.size() + static_cast<std::size_t>(unsent);
}

std::optional<std::uint8_t> PosixSerialPort::readByte() {
    if (inputCount().value_or(0) == 0) return std::nullopt;
    const std::uint8_t byte = input_.front();
    input_.pop_front();
    return byte;
}

bool PosixSerialPort::write(std::span<const std::uint8_t> bytes) {
    if (fd_ < 0) return false;
    output_.insert(output_.end(), bytes.begin(), bytes.end());
    return pushOutput() || failWithErrno();
}

void PosixSerialPort::discardInput() {
    if (fd_ < 0) return;
    ::tcflush(fd_, TCIFLUSH);
    input_.clear();
}

bool PosixSerialPort::fetchInput() {
    std::array<std::uint8_t, 4096> block;
    while (input_.size() < kInputLimit) {
        const ssize_t count = ::read(fd_, block.data(), block.size());
        if (count < 0) return onlyLater();
        if (count == 0) { // hung up
            errno = EIO;
            return false;
        }
        input_.insert(input_.end(), block.begin(), block.begin() + count);
    }
    return true;
}

bool PosixSerialPort::pushOutput() {
    while (!output_.empty()) {
        const ssize_t count = ::write(fd_, output_.data(), output_.size());
        if (count <= 0) return count == 0 || onlyLater();
        output_.erase(output_.begin(), output_.begin() + count);
    }
    return true;
}

bool PosixSerialPort::fail(const std::string& reason) {
    close();
    fault_ = reason;
    return false;
}

bool PosixSerialPort::failWithErrno() {
    const int error = errno;
    return fail(path_ + ": " + std::generic_category().message(error));
}

std::unique_ptr<SerialPort> makeSerialPort(std::function<std::string(int)> devicePath) {
    return std::make_unique<PosixSerialPort>(std::move(devicePath));
}

} // namespace orvane

#include "simulators/sun-tracker/PseudoTerminal.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

namespace suntracker {

namespace {

bool makeRaw(int descriptor) {
    termios settings{};
    if (tcgetattr(descriptor, &settings) != 0) return false;
    cfmakeraw(&settings);
    cfsetispeed(&settings, B38400);
    cfsetospeed(&settings, B38400);
    return tcsetattr(descriptor, TCSANOW, &settings) == 0;
}

void closeDescriptor(int& descriptor) {
    if (descriptor >= 0) ::close(descriptor);
    descriptor = -1;
}

} // namespace

bool PseudoTerminal::open() {
    close();
    if (!openBothEnds()) {
        error_ = QString::fromLocal8Bit(std::strerror(errno));
        close();
        return false;
    }
    notifier_ = new QSocketNotifier(master_, QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, &PseudoTerminal::read);
    return true;
}

bool PseudoTerminal::openBothEnds() {
    master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0) return false;
    if (fcntl(master_, F_SETFL, O_NONBLOCK) != 0) return false;
    const char* name = ptsname(master_);
    if (name == nullptr) return false;
    path_ = QString::fromLocal8Bit(name);
    slave_ = ::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    return slave_ >= 0 && makeRaw(slave_);
}

void PseudoTerminal::close() {
    if (notifier_ != nullptr) {
        // May be the one whose signal is just being handled.
        notifier_->setEnabled(false);
        notifier_->deleteLater();
        notifier_ = nullptr;
    }
    closeDescriptor(slave_);
    closeDescriptor(master_);
    path_.clear();
}

bool PseudoTerminal::write(const QByteArray& bytes) {
    if (!isOpen()) return false;
    ssize_t count = 0;
    do
        count = ::write(master_, bytes.constData(), static_cast<std::size_t>(bytes.size()));
    while (count < 0 && errno == EINTR);
    return count == bytes.size();
}

void PseudoTerminal::read() {
    std::array<char, 1024> buffer{};
    const ssize_t count = ::read(master_, buffer.data(), buffer.size());
    if (count > 0) {
        emit received(QByteArray(buffer.data(), count));
    } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
        close();
        emit lost();
    }
}

} // namespace suntracker

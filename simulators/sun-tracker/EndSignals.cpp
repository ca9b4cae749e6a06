#include "simulators/sun-tracker/EndSignals.h"

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace suntracker {

namespace {

int openSignals() {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&ending, number);
    pthread_sigmask(SIG_BLOCK, &ending, nullptr);
    return signalfd(-1, &ending, SFD_CLOEXEC);
}

} // namespace

EndSignals::EndSignals(QObject* parent)
    : QObject(parent), descriptor_(openSignals()), notifier_(descriptor_, QSocketNotifier::Read) {
    connect(&notifier_, &QSocketNotifier::activated, this, [this] {
        notifier_.setEnabled(false);
        emit arrived();
    });
}

EndSignals::~EndSignals() {
    ::close(descriptor_);
}

} // namespace suntracker

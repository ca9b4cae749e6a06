#include "simulators/sun-tracker/Console.h"

#include "simulators/sun-tracker/SunTracker.h"

#include <array>
#include <cerrno>
#include <unistd.h>

namespace suntracker {

QString consoleHelp() {
    return "  fault NAME[:ARG][,...] [COUNT]   faults for the next COUNT commands (0: for all)\n"
           "  fault none                       proper answers again\n"
           "  set NAME VALUE                   serial, timezone, longitude, latitude, origin,\n"
           "                                   running\n"
           "  status                           values and counts\n"
           "  hangup                           unplugs the adapter for a second\n"
           "  quit                             ends the program\n";
}

Console::Console(SunTracker& tracker, int descriptor, QObject* parent)
    : QObject(parent), tracker_(tracker), notifier_(descriptor, QSocketNotifier::Read) {
    connect(&notifier_, &QSocketNotifier::activated, this, &Console::read);
}

void Console::read() {
    std::array<char, 1024> buffer{};
    const ssize_t count =
        ::read(static_cast<int>(notifier_.socket()), buffer.data(), buffer.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
    if (count <= 0) {
        notifier_.setEnabled(false);
        return;
    }
    input_.append(buffer.data(), count);
    for (qsizetype end = input_.indexOf('\n'); end >= 0; end = input_.indexOf('\n')) {
        const QString line = QString::fromLocal8Bit(input_.left(end)).trimmed();
        input_.remove(0, end + 1);
        if (!line.isEmpty()) emit answered(execute(line));
    }
}

QString Console::execute(const QString& line) {
    const QString name = line.section(' ', 0, 0);
    const QString arguments = line.section(' ', 1).trimmed();
    if (name == "fault") return setFault(arguments);
    if (name == "set") return setValue(arguments);
    if (name == "status") return tracker_.statusText();
    if (name == "hangup") {
        tracker_.hangUp();
        return "unplugged";
    }
    if (name == "quit") {
        emit quitAsked();
        return "bye";
    }
    return "unknown command; these are known:\n" + consoleHelp().chopped(1);
}

QString Console::setFault(const QString& arguments) {
    const QString list = arguments.section(' ', 0, 0);
    const QString countText = arguments.section(' ', 1).trimmed();
    const FaultListResult result = parseFaults(list);
    if (!result.error.isEmpty()) return result.error;
    bool ok = true;
    const int count = countText.isEmpty() ? 0 : countText.toInt(&ok);
    if (!ok || count < 0) return "COUNT must be a number from 0 on";
    const FaultRule rule{result.faults, count};
    tracker_.setFault(rule);
    return "fault: " + rule.text();
}

QString Console::setValue(const QString& arguments) {
    TrackerValues values = tracker_.values();
    const QString name = arguments.section(' ', 0, 0);
    const QString error = values.set(name, arguments.section(' ', 1).trimmed());
    if (!error.isEmpty()) return QString("set %1: %2").arg(name, error);
    tracker_.setValues(values);
    return values.text();
}

} // namespace suntracker

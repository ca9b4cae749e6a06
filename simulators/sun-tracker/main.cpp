#include "simulators/sun-tracker/CommandLine.h"
#include "simulators/sun-tracker/Console.h"
#include "simulators/sun-tracker/EndSignals.h"

#include <QCoreApplication>
#include <csignal>
#include <cstdio>
#include <unistd.h>

namespace {

using namespace suntracker;

constexpr int kBadOptions = 2;

void print(std::FILE* stream, const QString& text) {
    std::fputs(qPrintable(text), stream);
    std::fflush(stream);
}

void printLine(const QString& text) {
    print(stdout, text + '\n');
}

} // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    const CommandLine line = parseCommandLine(QCoreApplication::arguments());
    if (!line.help.isEmpty()) {
        print(stdout, line.help);
        return 0;
    }
    if (!line.error.isEmpty()) {
        print(stderr, "sun-tracker: " + line.error + "\nTry sun-tracker --help.\n");
        return kBadOptions;
    }

    // Started in the background of a terminal, it must not be stopped by what is typed there: the
    // console then sees the end of its input.
    std::signal(SIGTTIN, SIG_IGN);
    const EndSignals endSignals;
    QObject::connect(&endSignals, &EndSignals::arrived, &application, &QCoreApplication::quit);
    SunTracker tracker(line.options);
    if (!line.quiet) QObject::connect(&tracker, &SunTracker::logged, printLine);
    QObject::connect(&tracker, &SunTracker::portOpened,
                     [](const QString& path) { printLine("sun-tracker: serial port " + path); });
    if (!tracker.start()) {
        print(stderr, "sun-tracker: " + tracker.errorString() + '\n');
        return 1;
    }
    const Console console(tracker, STDIN_FILENO);
    QObject::connect(&console, &Console::answered, printLine);
    QObject::connect(&console, &Console::quitAsked, &application, &QCoreApplication::quit);
    return QCoreApplication::exec();
}

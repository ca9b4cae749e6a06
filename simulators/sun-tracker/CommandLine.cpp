#include "simulators/sun-tracker/CommandLine.h"

#include "simulators/sun-tracker/Console.h"

#include <QCommandLineParser>

namespace suntracker {

namespace {

constexpr int kMaxBaud = 1'000'000;

const char* const kIntroduction =
    "Simulates a sun-tracking controller on a serial line, and on demand the ways in which such a\n"
    "line fails. The serial port is a pseudo-terminal whose name is printed at the start and each\n"
    "time the adapter comes back. Commands carry the number of their parameters only: the clock\n"
    "counts as set but shows no time, and SunRunning switches tracking off and on in turn.\n"
    "\n"
    "Faults (several, with commas between, take turns, one for each command):\n";

const char* const kConsole = "\nCommands on standard input while it runs:\n";

const char* const kExamples =
    "\n"
    "Examples: a port under a fixed name; an echo that is wrong every third time; bytes shown\n"
    "  sun-tracker --link /tmp/tracker\n"
    "  sun-tracker --link /tmp/tracker --fault none,none,wrong-echo --baud 38400\n"
    "  sun-tracker --timezone -210 --longitude -52.71 --latitude 47.56 --trace\n";

QList<QCommandLineOption> optionList() {
    return {
        {"link", "Makes a symbolic link to the serial port, in place of an older one.", "PATH"},
        {"baud", "Line speed of the answers, up to 1000000; default 0, at once.", "N", "0"},
        {"serial", "Serial number, at most 16 characters; default ST0001.", "TEXT"},
        {"timezone", "Minutes east of universal time; default 540.", "MIN"},
        {"longitude", "Degrees, east positive; default 139.75.", "DEG"},
        {"latitude", "Degrees, north positive; default 35.68.", "DEG"},
        {"origin", "Degrees; default 0.", "DEG"},
        {"running", "Whether it tracks the sun at the start; default on.", "on|off"},
        {"fault", "Faults from the start on.", "NAME[:ARG][,...]"},
        {"fault-count", "For how many commands; default 0, all.", "N", "0"},
        {"trace", "Shows the bytes both ways."},
        {"quiet", "No line for each command and event."},
        {{"h", "help"}, "Shows this text."},
    };
}

/// The number of an option, or a complaint in `error`.
int readNumber(const QCommandLineParser& parser, const QString& name, int max, QString& error) {
    bool ok = false;
    const int number = parser.value(name).toInt(&ok);
    if (!ok || number < 0 || number > max)
        error = QString("--%1 %2: a whole number from 0 to %3 expected")
                    .arg(name, parser.value(name))
                    .arg(max);
    return number;
}

QString readValues(const QCommandLineParser& parser, TrackerValues& values) {
    for (const char* name : {"serial", "timezone", "longitude", "latitude", "origin", "running"}) {
        if (!parser.isSet(name)) continue;
        const QString error = values.set(name, parser.value(name));
        if (!error.isEmpty()) return QString("--%1 %2: %3").arg(name, parser.value(name), error);
    }
    return {};
}

QString readFault(const QCommandLineParser& parser, FaultRule& rule) {
    QString error;
    rule.count = readNumber(parser, "fault-count", 1'000'000'000, error);
    if (!error.isEmpty() || !parser.isSet("fault")) return error;
    const FaultListResult list = parseFaults(parser.value("fault"));
    rule.faults = list.faults;
    return list.error.isEmpty() ? QString() : "--fault: " + list.error;
}

QString readOptions(const QCommandLineParser& parser, SunTrackerOptions& options) {
    QString error;
    options.link = parser.value("link");
    if (parser.isSet("link") && options.link.isEmpty()) return "--link: a path expected";
    options.baud = readNumber(parser, "baud", kMaxBaud, error);
    options.trace = parser.isSet("trace");
    if (error.isEmpty()) error = readValues(parser, options.values);
    if (error.isEmpty()) error = readFault(parser, options.fault);
    return error;
}

} // namespace

CommandLine parseCommandLine(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QString(kIntroduction) + faultHelp() + kConsole +
                                     consoleHelp() + kExamples);
    parser.addOptions(optionList());

    CommandLine line;
    if (!parser.parse(arguments)) {
        line.error = parser.errorText();
        return line;
    }
    if (parser.isSet("help")) {
        line.help = parser.helpText();
        return line;
    }
    if (!parser.positionalArguments().isEmpty()) {
        line.error = "unexpected argument \"" + parser.positionalArguments().constFirst() + '"';
        return line;
    }
    line.quiet = parser.isSet("quiet");
    line.error = readOptions(parser, line.options);
    return line;
}

} // namespace suntracker

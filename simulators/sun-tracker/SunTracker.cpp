#include "simulators/sun-tracker/SunTracker.h"

#include <QDateTime>
#include <algorithm>
#include <array>

namespace suntracker {

namespace {

constexpr qsizetype kMaxReceived = 1000;
constexpr int kReopenRetryMs = 1000;

constexpr quint8 kSunRunning = 0xA8;
constexpr quint8 kClockSet = 0x48;
constexpr quint8 kReadSerial = 0x47;
constexpr quint8 kReadSite = 0x81;
constexpr quint8 kReadOrigin = 0x85;

/// `parameters` is what the PC announces as the command's DATA, in decimal digits.
struct CommandType {
    quint8 code;
    const char* name;
    const char* parameters;
    bool read;
};

constexpr std::array kCommands{
    CommandType{kSunRunning, "SunRunning", "1", false},
    CommandType{kClockSet, "CLOCK SET", "12", false},
    CommandType{0x46, "OptionSetup Serial", "16", false},
    CommandType{0x80, "OptionSetup Timezone", "18", false},
    CommandType{0x84, "OptionSetup origin", "8", false},
    CommandType{kReadSerial, "read serial number", "0", true},
    CommandType{kReadSite, "read time zone and site", "0", true},
    CommandType{kReadOrigin, "read origin", "0", true},
};

QByteArray replyData(quint8 command, const TrackerValues& values) {
    switch (command) {
    case kReadSerial:
        return values.serialData();
    case kReadSite:
        return values.siteData();
    case kReadOrigin:
        return values.originData();
    default:
        return {};
    }
}

QString codeText(quint8 code) {
    return QString("0x%1").arg(code, 2, 16, QChar('0'));
}

QString describe(const CommandType& type, const QByteArray& data) {
    QString text = codeText(type.code) + ' ' + type.name;
    if (data != type.parameters)
        text += QString(", DATA [%1] where \"%2\" is usual").arg(hexText(data), type.parameters);
    else if (!type.read)
        text += QString(", %1 parameters announced").arg(type.parameters);
    return text;
}

} // namespace

SunTracker::SunTracker(const SunTrackerOptions& options, QObject* parent)
    : QObject(parent), options_(options), values_(options.values), link_(options.link),
      output_(options.baud) {
    faults_.setRule(options.fault);
    connect(&terminal_, &PseudoTerminal::received, this, &SunTracker::take);
    connect(&terminal_, &PseudoTerminal::lost, this, [this] { hangUp(); });
    connect(&output_, &LineOutput::due, this, &SunTracker::write);
    connect(&output_, &LineOutput::hangUpDue, this, &SunTracker::hangUp);
    for (QTimer* timer : {&frameTimer_, &reopenTimer_})
        timer->setSingleShot(true);
    connect(&frameTimer_, &QTimer::timeout, this, &SunTracker::giveUpFrame);
    connect(&reopenTimer_, &QTimer::timeout, this, &SunTracker::reopen);
}

bool SunTracker::start() {
    if (!openPort()) return false;
    emit portOpened(portPath());
    return true;
}

bool SunTracker::openPort() {
    if (!terminal_.open()) {
        error_ = "no pseudo-terminal: " + terminal_.errorString();
        return false;
    }
    error_ = link_.pointTo(portPath());
    if (!error_.isEmpty()) terminal_.close();
    return error_.isEmpty();
}

void SunTracker::hangUp(int awayMs) {
    log("the adapter is unplugged");
    output_.clear();
    reader_.clear();
    frameTimer_.stop();
    unacknowledged_.clear();
    // First the link: its target's name may soon belong to somebody else's terminal.
    link_.remove();
    terminal_.close();
    reopenTimer_.start(awayMs);
}

void SunTracker::reopen() {
    if (!openPort()) {
        log(error_);
        reopenTimer_.start(kReopenRetryMs);
        return;
    }
    log("the adapter is back");
    emit portOpened(portPath());
}

bool SunTracker::setFault(const QString& faults, int count) {
    const FaultListResult list = parseFaults(faults);
    if (!list.error.isEmpty() || count < 0) return false;
    setFault(FaultRule{list.faults, count});
    return true;
}

void SunTracker::setFault(const FaultRule& rule) {
    faults_.setRule(rule);
    log("fault: " + rule.text());
}

void SunTracker::setValues(const TrackerValues& values) {
    values_ = values;
    log("reports from now on: " + values_.text());
}

QString SunTracker::statusText() const {
    return QString("port %1\n%2\nclock set %3 times\n"
                   "%4 commands, %5 bad frames, %6 faults; from the PC %7 ACK, %8 NAK\nfault: %9")
        .arg(portPath().isEmpty() ? "unplugged" : portPath(), values_.text())
        .arg(counts_.clockSettings)
        .arg(counts_.commands)
        .arg(counts_.badFrames)
        .arg(counts_.faults)
        .arg(counts_.acks)
        .arg(counts_.naks)
        .arg(faults_.rule().text());
}

void SunTracker::take(const QByteArray& bytes) {
    if (options_.trace) log("<- " + hexText(bytes));
    reader_.add(bytes);
    while (const std::optional<Arrival> arrival = reader_.next())
        handle(*arrival);
    if (reader_.incomplete().isEmpty())
        frameTimer_.stop();
    else
        frameTimer_.start(options_.frameTimeoutMs);
}

void SunTracker::handle(const Arrival& arrival) {
    switch (arrival.kind) {
    case Arrival::Kind::Command:
        handleCommand(arrival);
        break;
    case Arrival::Kind::BadFrame:
        ++counts_.badFrames;
        log(QString("bad frame (%1) %2 -> NAK").arg(arrival.fault, hexText(arrival.raw)));
        refuse();
        break;
    case Arrival::Kind::Ack:
        acknowledged();
        break;
    case Arrival::Kind::Nak:
        ++counts_.naks;
        log("the PC answers NAK");
        unacknowledged_.clear();
        break;
    case Arrival::Kind::Stray:
        log("not a frame: " + hexText(arrival.raw));
        break;
    }
}

void SunTracker::handleCommand(const Arrival& arrival) {
    ++counts_.commands;
    received_ << arrival.raw;
    if (received_.size() > kMaxReceived) received_.removeFirst();
    if (!unacknowledged_.isEmpty()) log(unacknowledged_ + " was not acknowledged");
    unacknowledged_.clear();

    const quint8 code = arrival.command();
    const auto type = std::find_if(kCommands.begin(), kCommands.end(),
                                   [&](const CommandType& t) { return t.code == code; });
    if (type == kCommands.end()) {
        log("unknown command " + codeText(code) + " -> NAK");
        refuse();
        return;
    }
    const Fault fault = faults_.next(type->read);
    const Answer answer =
        makeAnswer(code, replyData(code, values_), fault, [this] { return faults_.randomByte(); });
    QString line = describe(*type, arrival.data());
    if (!answer.writes.isEmpty() && answer.writes.front().back() == kAck) {
        line += carryOut(code);
        unacknowledged_ = type->name;
    }
    if (fault.kind != FaultKind::None) {
        ++counts_.faults;
        line += " -> fault " + textOf(fault);
    }
    log(line);
    output_.send(answer);
}

QString SunTracker::carryOut(quint8 command) {
    if (command == kClockSet) return QString("; clock set, number %1").arg(++counts_.clockSettings);
    if (command != kSunRunning) return {};
    values_.running = !values_.running;
    return QString("; sun tracking switched %1").arg(values_.running ? "on" : "off");
}

void SunTracker::acknowledged() {
    ++counts_.acks;
    log(unacknowledged_.isEmpty() ? QString("the PC answers ACK to nothing")
                                  : unacknowledged_ + " acknowledged by the PC");
    unacknowledged_.clear();
}

void SunTracker::refuse() {
    output_.send({.writes = {QByteArray(1, kNak)}});
}

void SunTracker::giveUpFrame() {
    log("incomplete frame " + hexText(reader_.incomplete()) + " given up");
    reader_.clear();
}

void SunTracker::write(const QByteArray& bytes) {
    if (options_.trace) log("-> " + hexText(bytes));
    if (!terminal_.write(bytes)) log("nobody reads the serial port; bytes are lost");
}

void SunTracker::log(const QString& text) {
    emit logged(QDateTime::currentDateTime().toString("yyyy-MM-dd HH:mm:ss.zzz ") + text);
}

} // namespace suntracker

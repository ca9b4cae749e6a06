#include "simulators/sun-tracker/Fault.h"

#include <QRandomGenerator>
#include <QStringList>
#include <algorithm>
#include <array>

namespace suntracker {

namespace {

struct FaultType {
    FaultKind kind;
    const char* name;
    /// What ARG is called; null when the fault takes none.
    const char* argName;
    int defaultArg;
    int minArg;
    int maxArg;
    const char* help;
};

constexpr int kMillion = 1'000'000;

constexpr std::array kTypes{
    FaultType{FaultKind::None, "none", nullptr, 0, 0, 0, "a proper answer"},
    FaultType{FaultKind::Silence, "silence", nullptr, 0, 0, 0, "no answer at all"},
    FaultType{FaultKind::SilenceAfter, "silence-after", "N", 3, 1, kMillion,
              "N bytes of the answer, its ACK counted, then nothing"},
    FaultType{FaultKind::Nak, "nak", nullptr, 0, 0, 0, "NAK instead of ACK, and no more"},
    FaultType{FaultKind::WrongEcho, "wrong-echo", nullptr, 0, 0, 0,
              "the echo of another command code (waits for a write command)"},
    FaultType{FaultKind::WrongReply, "wrong-reply", nullptr, 0, 0, 0,
              "a reply with another command code and a valid SUM (waits for a read command)"},
    FaultType{FaultKind::WrongSum, "wrong-sum", nullptr, 0, 0, 0, "echo or reply with a wrong SUM"},
    FaultType{FaultKind::WrongEnd, "wrong-end", nullptr, 0, 0, 0,
              "echo or reply with another byte in place of ETX"},
    FaultType{FaultKind::Garbage, "garbage", "N", 5, 1, 4000,
              "N random bytes before the ACK; none of them is ACK or STX"},
    FaultType{FaultKind::GarbageFrame, "garbage-frame", "N", 5, 1, 4000,
              "the same between the ACK and the echo or reply"},
    FaultType{FaultKind::Slow, "slow", "MS", 900, 1, kMillion, "one byte every MS milliseconds"},
    FaultType{FaultKind::Twice, "twice", nullptr, 0, 0, 0, "echo or reply twice, at once"},
    FaultType{FaultKind::Long, "long", nullptr, 0, 0, 0,
              "echo or reply with four DATA bytes more than its LEN says"},
    FaultType{FaultKind::HangUp, "hangup", "MS", 1000, 1, kMillion,
              "the adapter is unplugged in the middle of the answer, and back after MS"},
    FaultType{FaultKind::Random, "random", "SEED", 0, 0, 1000 * kMillion,
              "at each command one of the above, half of the time none"},
};

const FaultType& typeOf(FaultKind kind) {
    return kTypes[static_cast<std::size_t>(kind)];
}

static_assert(kTypes.back().kind == FaultKind::Random &&
              kTypes.size() == static_cast<std::size_t>(FaultKind::Random) + 1);

bool fits(FaultKind kind, bool readCommand) {
    if (kind == FaultKind::WrongEcho) return !readCommand;
    if (kind == FaultKind::WrongReply) return readCommand;
    return true;
}

QString parseOne(const QString& text, Fault& fault) {
    const QString name = text.section(':', 0, 0).trimmed();
    const auto type = std::find_if(kTypes.begin(), kTypes.end(),
                                   [&](const FaultType& t) { return name == t.name; });
    if (type == kTypes.end()) return QString("unknown fault \"%1\"").arg(name);
    fault = {type->kind, type->defaultArg, text.contains(':')};
    if (!fault.argGiven) return {};
    if (type->argName == nullptr) return QString("fault \"%1\" takes no argument").arg(name);
    bool number = false;
    fault.arg = text.section(':', 1).toInt(&number);
    if (number && fault.arg >= type->minArg && fault.arg <= type->maxArg) return {};
    return QString("fault \"%1\": %2 must be a number from %3 to %4")
        .arg(name, type->argName)
        .arg(type->minArg)
        .arg(type->maxArg);
}

} // namespace

QString Fault::text() const {
    const FaultType& type = typeOf(kind);
    const bool showArg = type.argName != nullptr && (kind != FaultKind::Random || argGiven);
    return showArg ? QString("%1:%2").arg(type.name).arg(arg) : QString(type.name);
}

QString FaultRule::text() const {
    if (faults.isEmpty()) return "none";
    QStringList names;
    for (const Fault& fault : faults)
        names << fault.text();
    return count > 0 ? QString("%1, %2 more").arg(names.join(',')).arg(count) : names.join(',');
}

FaultListResult parseFaults(const QString& list) {
    FaultListResult result;
    for (const QString& text : list.split(',')) {
        Fault fault;
        result.error = parseOne(text, fault);
        if (!result.error.isEmpty()) return {{}, result.error};
        result.faults << fault;
    }
    if (result.faults.size() == 1 && result.faults.front().kind == FaultKind::None)
        result.faults.clear();
    return result;
}

QString faultHelp() {
    QString help;
    for (const FaultType& type : kTypes) {
        QString name = type.name;
        if (type.argName != nullptr) name += QString("[:%1]").arg(type.argName);
        QString line = QString("  %1 %2").arg(name, -19).arg(type.help);
        if (type.argName != nullptr && type.kind != FaultKind::Random)
            line += QString(" (default %1)").arg(type.defaultArg);
        help += line + '\n';
    }
    return help;
}

void FaultSource::setRule(const FaultRule& rule) {
    rule_ = rule;
    turn_ = 0;
    for (const Fault& fault : rule.faults) {
        if (fault.kind != FaultKind::Random) continue;
        random_.seed(fault.argGiven ? static_cast<quint32>(fault.arg)
                                    : QRandomGenerator::global()->generate());
    }
}

Fault FaultSource::next(bool readCommand) {
    if (rule_.faults.isEmpty()) return {};
    Fault fault = rule_.faults.at(turn_ % rule_.faults.size());
    if (!fits(fault.kind, readCommand)) return {};
    ++turn_;
    if (fault.kind == FaultKind::Random) fault = randomFault();
    if (rule_.count > 0 && --rule_.count == 0) rule_ = {};
    return fits(fault.kind, readCommand) ? fault : Fault{};
}

Fault FaultSource::randomFault() {
    // Plain remainders instead of a distribution: a seed gives the same faults with every
    // standard library.
    if (random_() % 2 == 0) return {};
    const auto kinds = static_cast<quint32>(FaultKind::Random) - 1;
    const auto kind = static_cast<FaultKind>(1 + random_() % kinds);
    int arg = typeOf(kind).defaultArg;
    if (kind == FaultKind::SilenceAfter || kind == FaultKind::Garbage ||
        kind == FaultKind::GarbageFrame)
        arg = static_cast<int>(1 + random_() % 8);
    return {kind, arg, false};
}

} // namespace suntracker

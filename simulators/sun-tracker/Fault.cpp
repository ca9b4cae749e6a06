#include "simulators/sun-tracker/Fault.h"

#include <array>

namespace suntracker {

namespace {

using FaultType = simulation::FaultType<FaultKind>;

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

static_assert(kTypes.back().kind == FaultKind::Random &&
              kTypes.size() == static_cast<std::size_t>(FaultKind::Random) + 1);

bool fits(FaultKind kind, bool readCommand) {
    if (kind == FaultKind::WrongEcho) return !readCommand;
    if (kind == FaultKind::WrongReply) return readCommand;
    return true;
}

} // namespace

QString textOf(const Fault& fault) {
    return simulation::faultText(kTypes, fault);
}

QString FaultRule::text() const {
    if (faults.isEmpty()) return "none";
    const QString names = simulation::faultTexts(kTypes, faults);
    return count > 0 ? QString("%1, %2 more").arg(names).arg(count) : names;
}

FaultListResult parseFaults(const QString& list) {
    return simulation::parseFaultList(kTypes, list);
}

QString faultHelp() {
    return simulation::faultTableHelp(kTypes, 19);
}

void FaultSource::setRule(const FaultRule& rule) {
    rule_ = rule;
    turn_ = 0;
    simulation::seedFrom(rule.faults, random_);
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
    const auto kind = simulation::randomKind<FaultKind>(random_);
    if (kind == FaultKind::None) return {};
    int arg = simulation::typeOf(kTypes, kind).defaultArg;
    if (kind == FaultKind::SilenceAfter || kind == FaultKind::Garbage ||
        kind == FaultKind::GarbageFrame)
        arg = static_cast<int>(1 + random_() % 8);
    return {kind, arg, false};
}

} // namespace suntracker

#pragma once

#include "simulators/common/FaultTable.h"

#include <QList>
#include <QString>
#include <random>

namespace suntracker {

/// What can go wrong with the answer to one command. `Random` stands for a new choice at each
/// command and is never the fault of an answer itself.
enum class FaultKind {
    None,
    Silence,
    SilenceAfter,
    Nak,
    WrongEcho,
    WrongReply,
    WrongSum,
    WrongEnd,
    Garbage,
    GarbageFrame,
    Slow,
    Twice,
    Long,
    HangUp,
    Random,
};

/// One fault with its number: bytes (SilenceAfter, Garbage, GarbageFrame), milliseconds (Slow,
/// HangUp) or seed (Random); unused by the others. `argGiven` tells a written number from the
/// default.
using Fault = simulation::Fault<FaultKind>;

/// "NAME" or "NAME:ARG", as the option takes it.
QString textOf(const Fault& fault);

/// The faults take turns, one for each known command. `count` is the number of turns left; 0 has
/// no end.
struct FaultRule {
    QList<Fault> faults;
    int count = 0;

    QString text() const;
};

using FaultListResult = simulation::FaultListResult<FaultKind>;

/// Reads "NAME[:ARG][,NAME[:ARG]...]". A lone "none" gives an empty list; within a list "none" is a
/// turn without a fault.
FaultListResult parseFaults(const QString& list);

/// Lines "name  what it does", for the help text.
QString faultHelp();

/// Hands out the fault of each command while a rule is in force.
class FaultSource {
  public:
    void setRule(const FaultRule& rule);
    const FaultRule& rule() const { return rule_; }
    /// A fault of echoes waits for a write command and one of replies for a read command: until
    /// then its turn is not used up.
    Fault next(bool readCommand);
    /// For garbage; follows the seed of "random".
    quint8 randomByte() { return static_cast<quint8>(random_() >> 8); }

  private:
    Fault randomFault();

    FaultRule rule_;
    qsizetype turn_ = 0;
    std::mt19937 random_;
};

} // namespace suntracker

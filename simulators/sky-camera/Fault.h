#pragma once

#include "simulators/common/FaultTable.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <random>

namespace skycamera {

/// The search page, and where the stored pictures are.
inline constexpr auto kSearchPath = "/cgi/srch.cgi";
inline constexpr auto kRecordPrefix = "/record/";

/// What can go wrong with one answer of the camera. `Random` stands for a new choice at each
/// request and is never the fault of an answer itself.
enum class FaultKind {
    None,
    Refuse,
    Silent,
    Reset,
    Stall,
    Drip,
    Short,
    NoLengthCut,
    Status,
    Html,
    Empty,
    Cut,
    Huge,
    Stale,
    Delay,
    ListHtml,
    ListNoComma,
    ListNames,
    ListPaths,
    ListFuture,
    ListMissing,
    ListBig,
    ListOneField,
    Random,
};

/// One fault with its number: seconds (Refuse), bytes per second (Drip), HTTP status (Status),
/// milliseconds (Delay), megabytes (ListBig, ListOneField) or seed (Random); unused by the others.
/// `argGiven` tells a written number from the default.
using Fault = simulation::Fault<FaultKind>;

/// "NAME" or "NAME:ARG", as the option takes it.
QString textOf(const Fault& fault);

/// Which requests go wrong, and how. The faults take turns, one for each matching request.
/// `count` is the number of matching requests still to spoil; 0 has no end.
struct FaultRule {
    QList<Fault> faults;
    int count = 0;
    QByteArray pathPrefix = "/Images/";

    bool active() const { return !faults.isEmpty(); }
    bool refusesOutright() const;
    /// For the status page: "drip:200, next 3 requests below /Images/".
    QString text() const;
};

/// Where these faults belong when nobody says: the search page as soon as one of them is a fault of
/// search pages, else "/Images/".
QByteArray defaultPathPrefix(const QList<Fault>& faults);

using FaultListResult = simulation::FaultListResult<FaultKind>;

/// Reads "NAME[:ARG][,NAME[:ARG]...]". A lone "none" gives an empty list; within a list "none" is a
/// turn without a fault.
FaultListResult parseFaults(const QString& list);

/// Lines "name  what it does", for the help text.
QString faultHelp();

/// Hands out the fault of each request while a rule is in force.
class FaultSource {
  public:
    void setRule(const FaultRule& rule);
    const FaultRule& rule() const { return rule_; }
    /// The fault for a request to `path`; uses up one of the rule's count when the path matches. A
    /// fault that only pictures or only search pages can have is none for anything else.
    Fault next(const QByteArray& path);

  private:
    Fault randomFault(const QByteArray& path);

    FaultRule rule_;
    qsizetype turn_ = 0;
    std::mt19937 random_;
};

} // namespace skycamera

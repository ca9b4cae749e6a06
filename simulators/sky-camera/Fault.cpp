#include "simulators/sky-camera/Fault.h"

#include <algorithm>
#include <array>
#include <vector>

namespace skycamera {

namespace {

using FaultType = simulation::FaultType<FaultKind>;

constexpr int kMillion = 1'000'000;

constexpr std::array kTypes{
    FaultType{FaultKind::None, "none", nullptr, 0, 0, 0, "a proper answer"},
    FaultType{FaultKind::Refuse, "refuse", "SECONDS", 10, 1, kMillion,
              "connections are refused: the listening socket is closed for so long"},
    FaultType{FaultKind::Silent, "silent", nullptr, 0, 0, 0,
              "the request is taken and never answered"},
    FaultType{FaultKind::Reset, "reset", nullptr, 0, 0, 0,
              "connection reset in the middle of the body"},
    FaultType{FaultKind::Stall, "stall", nullptr, 0, 0, 0,
              "stops in the middle of the body, the connection stays open"},
    FaultType{FaultKind::Drip, "drip", "BYTES_PER_SECOND", 200, 1, 1000 * kMillion,
              "the body trickles in"},
    FaultType{FaultKind::Short, "short", nullptr, 0, 0, 0,
              "less is sent than Content-Length says, then a clean close"},
    FaultType{FaultKind::NoLengthCut, "nolength-cut", nullptr, 0, 0, 0,
              "no Content-Length, body cut in the middle, then a clean close"},
    FaultType{FaultKind::Status, "status", "CODE", 500, 400, 599,
              "an HTTP error: 401, 404, 500, 503, ..."},
    FaultType{FaultKind::Html, "html", nullptr, 0, 0, 0, "an HTML page with status 200"},
    FaultType{FaultKind::Empty, "empty", nullptr, 0, 0, 0, "status 200 with an empty body"},
    FaultType{FaultKind::Cut, "cut", nullptr, 0, 0, 0,
              "the file ends before its end marker; Content-Length agrees with what is sent"},
    FaultType{FaultKind::Huge, "huge", nullptr, 0, 0, 0, "a 20-megapixel picture (5472x3648)"},
    FaultType{FaultKind::Stale, "stale", nullptr, 0, 0, 0, "the same bytes as the picture before"},
    FaultType{FaultKind::Delay, "delay", "MS", 5000, 1, 1000 * kMillion,
              "a proper answer, but late"},
    FaultType{FaultKind::ListHtml, "list-html", nullptr, 0, 0, 0,
              "search: an HTML page with the records as its text"},
    FaultType{FaultKind::ListNoComma, "list-nocomma", nullptr, 0, 0, 0,
              "search: the last record without its last comma"},
    FaultType{FaultKind::ListNames, "list-names", nullptr, 0, 0, 0,
              "search: names longer and shorter than 22 characters"},
    FaultType{FaultKind::ListPaths, "list-paths", nullptr, 0, 0, 0,
              "search: names with \"..\", backslashes or a drive"},
    FaultType{FaultKind::ListFuture, "list-future", nullptr, 0, 0, 0,
              "search: stamps of the year 2099"},
    FaultType{FaultKind::ListMissing, "list-missing", nullptr, 0, 0, 0,
              "search: pages without end, of pictures that are not there (404)"},
    FaultType{FaultKind::ListBig, "list-big", "MB", 50, 1, 500,
              "search: so many megabytes of nonsense that looks like records"},
    FaultType{FaultKind::ListOneField, "list-onefield", "MB", 50, 1, 500,
              "search: so many megabytes without a comma"},
    FaultType{FaultKind::Random, "random", "SEED", 0, 0, 1000 * kMillion,
              "at each request one of the above that suits it, half of the time none"},
};

static_assert(kTypes.back().kind == FaultKind::Random &&
              kTypes.size() == static_cast<std::size_t>(FaultKind::Random) + 1);

bool concernsSearch(FaultKind kind) {
    return kind >= FaultKind::ListHtml && kind <= FaultKind::ListOneField;
}

bool concernsPictures(FaultKind kind) {
    return kind == FaultKind::Huge || kind == FaultKind::Stale;
}

/// Whether an answer to `path` can have this fault.
bool suits(FaultKind kind, const QByteArray& path) {
    if (concernsSearch(kind)) return path == kSearchPath;
    if (concernsPictures(kind))
        return path.startsWith("/Images/") || path.startsWith(kRecordPrefix);
    return true;
}

} // namespace

QString textOf(const Fault& fault) {
    return simulation::faultText(kTypes, fault);
}

bool FaultRule::refusesOutright() const {
    return faults.size() == 1 && faults.front().kind == FaultKind::Refuse;
}

QString FaultRule::text() const {
    if (!active()) return "none";
    QString text = simulation::faultTexts(kTypes, faults);
    if (refusesOutright()) return faults.front().argGiven ? text : "refuse";
    if (count > 0) text += QString(", next %1 requests").arg(count);
    return text + " below " + QString::fromUtf8(pathPrefix);
}

QByteArray defaultPathPrefix(const QList<Fault>& faults) {
    const bool search = std::any_of(faults.begin(), faults.end(),
                                    [](const Fault& fault) { return concernsSearch(fault.kind); });
    return search ? kSearchPath : "/Images/";
}

FaultListResult parseFaults(const QString& list) {
    return simulation::parseFaultList(kTypes, list);
}

QString faultHelp() {
    return simulation::faultTableHelp(kTypes, 22);
}

void FaultSource::setRule(const FaultRule& rule) {
    rule_ = rule;
    turn_ = 0;
    simulation::seedFrom(rule.faults, random_);
}

Fault FaultSource::next(const QByteArray& path) {
    if (!rule_.active() || !path.startsWith(rule_.pathPrefix)) return {};
    Fault fault = rule_.faults.at(turn_++ % rule_.faults.size());
    if (fault.kind == FaultKind::Random) fault = randomFault(path);
    if (!suits(fault.kind, path)) fault = {};
    if (rule_.count > 0 && --rule_.count == 0) rule_ = {};
    return fault;
}

Fault FaultSource::randomFault(const QByteArray& path) {
    // Plain remainders: a seed gives the same faults with every standard library.
    if (random_() % 2 == 0) return {};
    std::vector<FaultKind> kinds;
    for (const FaultType& type : kTypes)
        if (type.kind != FaultKind::None && type.kind != FaultKind::Random &&
            suits(type.kind, path))
            kinds.push_back(type.kind);
    const FaultKind kind = kinds.at(random_() % kinds.size());
    // Ten seconds of refusal at each draw would leave little time for the other faults.
    const int arg = kind == FaultKind::Refuse ? 2 : simulation::typeOf(kTypes, kind).defaultArg;
    return {kind, arg, false};
}

} // namespace skycamera

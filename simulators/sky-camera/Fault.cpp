#include "simulators/sky-camera/Fault.h"

#include <QRandomGenerator>
#include <algorithm>
#include <array>
#include <iterator>

namespace skycamera {

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
    FaultType{FaultKind::Random, "random", "SEED", 0, 0, 1000 * kMillion,
              "at each request one of the above, half of the time none"},
};

const FaultType& typeOf(FaultKind kind) {
    return kTypes[static_cast<std::size_t>(kind)];
}

static_assert(kTypes.back().kind == FaultKind::Random &&
              kTypes.size() == static_cast<std::size_t>(FaultKind::Random) + 1);

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
    return type.argName == nullptr ? QString(type.name) : QString("%1:%2").arg(type.name).arg(arg);
}

bool FaultRule::refusesOutright() const {
    return faults.size() == 1 && faults.front().kind == FaultKind::Refuse;
}

QString FaultRule::text() const {
    if (!active()) return "none";
    QStringList names;
    for (const Fault& fault : faults)
        names << fault.text();
    QString text = names.join(',');
    if (refusesOutright()) return faults.front().argGiven ? text : "refuse";
    if (count > 0) text += QString(", next %1 requests").arg(count);
    return text + " below " + QString::fromUtf8(pathPrefix);
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
        if (type.argName != nullptr) name += QString(":%1").arg(type.argName);
        QString line = QString("  %1 %2").arg(name, -22).arg(type.help);
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

Fault FaultSource::next(const QByteArray& path) {
    if (!rule_.active() || !path.startsWith(rule_.pathPrefix)) return {};
    Fault fault = rule_.faults.at(turn_++ % rule_.faults.size());
    if (fault.kind == FaultKind::Random) fault = randomFault();
    if (rule_.count > 0 && --rule_.count == 0) rule_ = {};
    return fault;
}

Fault FaultSource::randomFault() {
    // Plain remainders instead of a distribution: a seed gives the same faults with every
    // standard library.
    if (random_() % 2 == 0) return {};
    const auto kinds = static_cast<quint32>(FaultKind::Random) - 1;
    const auto kind = static_cast<FaultKind>(1 + random_() % kinds);
    // Ten seconds of refusal at each draw would leave little time for the other faults.
    const int arg = kind == FaultKind::Refuse ? 2 : typeOf(kind).defaultArg;
    return {kind, arg, false};
}

} // namespace skycamera

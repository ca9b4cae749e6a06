#pragma once

#include <QList>
#include <QRandomGenerator>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <array>
#include <random>

namespace simulation {

/// A fault that a simulated device knows, by `Kind`. The tables start with "none" and end with
/// "random", in the order of their enumeration.
template <class Kind>
struct FaultType {
    Kind kind;
    const char* name;
    /// What ARG is called; null when the fault takes none.
    const char* argName;
    int defaultArg;
    int minArg;
    int maxArg;
    const char* help;
};

/// One fault with its number. `argGiven` tells a written number from the default.
template <class Kind>
struct Fault {
    Kind kind{};
    int arg = 0;
    bool argGiven = false;
};

template <class Kind>
struct FaultListResult {
    QList<Fault<Kind>> faults;
    /// Empty when the list was understood.
    QString error;
};

template <class Kind, std::size_t Size>
const FaultType<Kind>& typeOf(const std::array<FaultType<Kind>, Size>& types, Kind kind) {
    return types[static_cast<std::size_t>(kind)];
}

/// "NAME" or "NAME:ARG".
template <class Kind, std::size_t Size>
QString faultText(const std::array<FaultType<Kind>, Size>& types, const Fault<Kind>& fault) {
    const FaultType<Kind>& type = typeOf(types, fault.kind);
    return type.argName == nullptr ? QString(type.name)
                                   : QString("%1:%2").arg(type.name).arg(fault.arg);
}

template <class Kind, std::size_t Size>
QString faultTexts(const std::array<FaultType<Kind>, Size>& types,
                   const QList<Fault<Kind>>& faults) {
    QStringList names;
    for (const Fault<Kind>& fault : faults)
        names << faultText(types, fault);
    return names.join(',');
}

/// Reads one "NAME[:ARG]"; returns what is wrong with it, or an empty text.
template <class Kind, std::size_t Size>
QString parseFault(const std::array<FaultType<Kind>, Size>& types, const QString& text,
                   Fault<Kind>& fault) {
    const QString name = text.section(':', 0, 0).trimmed();
    const auto type = std::find_if(types.begin(), types.end(),
                                   [&](const auto& known) { return name == known.name; });
    if (type == types.end()) return QString("unknown fault \"%1\"").arg(name);
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

/// Reads "NAME[:ARG][,NAME[:ARG]...]". A lone "none" gives an empty list; within a list "none" is a
/// turn without a fault.
template <class Kind, std::size_t Size>
FaultListResult<Kind> parseFaultList(const std::array<FaultType<Kind>, Size>& types,
                                     const QString& list) {
    FaultListResult<Kind> result;
    for (const QString& text : list.split(',')) {
        Fault<Kind> fault;
        result.error = parseFault(types, text, fault);
        if (!result.error.isEmpty()) return {{}, result.error};
        result.faults << fault;
    }
    if (result.faults.size() == 1 && result.faults.front().kind == Kind::None)
        result.faults.clear();
    return result;
}

/// Lines "name  what it does", for a help text whose names take `width` characters.
template <class Kind, std::size_t Size>
QString faultTableHelp(const std::array<FaultType<Kind>, Size>& types, int width) {
    QString help;
    for (const FaultType<Kind>& type : types) {
        QString name = type.name;
        if (type.argName != nullptr) name += QString("[:%1]").arg(type.argName);
        QString line = QString("  %1 %2").arg(name, -width).arg(type.help);
        if (type.argName != nullptr && type.kind != Kind::Random)
            line += QString(" (default %1)").arg(type.defaultArg);
        help += line + '\n';
    }
    return help;
}

/// Seeds the choices of a "random" among `faults` with its number, or with chance.
template <class Kind>
void seedFrom(const QList<Fault<Kind>>& faults, std::mt19937& random) {
    for (const Fault<Kind>& fault : faults) {
        if (fault.kind != Kind::Random) continue;
        random.seed(fault.argGiven ? static_cast<quint32>(fault.arg)
                                   : QRandomGenerator::global()->generate());
    }
}

/// Half of the time none, else one of the kinds between "none" and "random". Plain remainders
/// instead of a distribution: a seed gives the same faults with every standard library.
template <class Kind>
Kind randomKind(std::mt19937& random) {
    if (random() % 2 == 0) return Kind::None;
    const auto kinds = static_cast<quint32>(Kind::Random) - 1;
    return static_cast<Kind>(1 + random() % kinds);
}

} // namespace simulation

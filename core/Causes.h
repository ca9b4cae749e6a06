#pragma once

#include "station/OperationPanel.h"
#include "station/Warnings.h"

#include <span>

namespace orvane {

// What there is to say about each cause of a warning, beside its own text.

/// What the operator can do about a warning at once, from the window.
enum class Remedy : std::uint8_t {
    None,
    TestFetch,
    SelectFolder, ///< only while recording is off
    ShowDataFolder,
    ShowProgramFolder,
    SetClocks,
    CorrectSite,
    SeeAlerts
};

struct CauseWords {
    Warnings::Cause cause;
    Grade grade;         ///< trouble: pictures are lost, or soon may be
    const char* inShort; ///< without a capital or a full stop; empty: the warning's own first words
    const char* advice;  ///< what to do, in sentences
    Remedy remedy;
};

/// Every cause, gravest first.
std::span<const CauseWords> allCauses();
const CauseWords& wordsOn(Warnings::Cause cause);

/// A warning in a few words, "data folder cannot be written".
std::string inShort(Warnings::Cause cause, const Warnings::Standing& warning);
/// A warning with what to do, unless it asks for that itself.
std::string withAdvice(Warnings::Cause cause, const Warnings::Standing& warning);
/// A warning in one line, without what it asks for: `CauseWords::advice` says more.
std::string inOneLine(const Warnings::Standing& warning);

} // namespace orvane

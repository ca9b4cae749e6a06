#include "core/AlertTexts.h"

#include "core/Causes.h"

namespace orvane {

namespace {

constexpr std::size_t kLongestSubject = 100; ///< bytes of a warning

std::string moment(WallTime time) {
    return dateText(time) + " " + timeText(time);
}

std::string firstLine(const std::string& text) {
    std::string line = text.substr(0, text.find('\n'));
    if (line.size() <= kLongestSubject) return line;
    std::size_t end = kLongestSubject;
    while (end > 0 && (static_cast<unsigned char>(line[end]) & 0xC0) == 0x80)
        --end; // no part of a character
    return line.substr(0, end) + " ...";
}

std::string line(const std::string& what, const std::string& value) {
    return value.empty() ? "" : what + ": " + value + "\n";
}

std::string warningLines(const std::vector<Warnings::Standing>& warnings) {
    std::string lines;
    for (const Warnings::Standing& warning : warnings)
        lines += "- since " + moment(warning.since) + ": " + warning.text + "\n";
    return lines;
}

std::string figureLines(const StationFigures& figures) {
    std::string lines = line("Today", figures.day);
    lines += line("Recording", figures.recording ? "on" : "off");
    lines += line("Disk of the pictures", figures.disk);
    lines += line("Last picture", figures.picture);
    return lines;
}

std::string pictures(int count) {
    return std::to_string(count) + (count == 1 ? " picture" : " pictures");
}

/// Why a day was not well; empty when it was.
std::string troubles(const DayPlan& plan, const StationFigures& figures) {
    std::string lines;
    if (!figures.recording) lines += "- Recording is off.\n";
    if (plan.missed > 0) lines += "- " + pictures(plan.missed) + " missed.\n";
    if (plan.notRecorded > 0)
        lines += "- " + pictures(plan.notRecorded) +
                 " not recorded: recording was off, or the program was not running.\n";
    return lines + warningLines(figures.warnings);
}

} // namespace

AlertText warningText(Warnings::Cause cause, const Warnings::Standing& warning,
                      const StationFigures& figures) {
    AlertText alert{"Orvane warns: " + firstLine(warning.text), {}};
    alert.text = "Since " + moment(warning.since) + " the station warns:\n\n" + warning.text +
                 "\n\nWhat to do: " + wordsOn(cause).advice + "\n\n" + figureLines(figures);
    if (figures.warnings.size() > 1)
        alert.text += "\nAll warnings that stand:\n" + warningLines(figures.warnings);
    return alert;
}

AlertText overText(const Warnings::Standing& warning, WallTime gone,
                   const StationFigures& figures) {
    AlertText alert{"Orvane, over: " + firstLine(warning.text), {}};
    alert.text = "This warning stood from " + moment(warning.since) + " and went at " +
                 moment(gone) + ":\n\n" + warning.text + "\n\n" + figureLines(figures);
    if (!figures.warnings.empty())
        alert.text += "\nStill standing:\n" + warningLines(figures.warnings);
    return alert;
}

AlertText dayText(std::chrono::local_days day, const DayPlan& plan, const StationFigures& figures) {
    const std::string why = troubles(plan, figures);
    const std::string date = dateText(WallTime(day));
    const std::string verdict = why.empty() ? "all is well" : "not all is well";
    AlertText alert{"Orvane, " + date + ": " + verdict + ", " + std::to_string(plan.taken) +
                        " of " + pictures(plan.due) + " taken",
                    {}};
    alert.text = date + ": " + verdict + ".\n" + why + "\n";
    for (const auto& [what, count] :
         {std::pair{"Due", plan.due}, std::pair{"Taken", plan.taken},
          std::pair{"Fetched later", plan.fetched}, std::pair{"Missed", plan.missed},
          std::pair{"Not recorded", plan.notRecorded}})
        alert.text += line(what, std::to_string(count));
    alert.text +=
        line("Disk of the pictures", figures.disk) + line("Last picture", figures.picture);
    return alert;
}

AlertText testText(const StationFigures& figures) {
    return {"Orvane: test of the alerts",
            "This mail shows that the station's alerts arrive.\n\n" + figureLines(figures)};
}

} // namespace orvane

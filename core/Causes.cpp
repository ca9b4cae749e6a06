#include "core/Causes.h"

#include <algorithm>

namespace orvane {

namespace {

using Cause = Warnings::Cause;

constexpr CauseWords kCauses[] = {
    {Cause::NoImage, Grade::Trouble, "no image",
     "Check the camera's power and network, then press Test fetch on the page Camera. "
     "The station goes on trying.",
     Remedy::TestFetch},
    {Cause::DataFolder, Grade::Trouble, "",
     "See whether the disk is full or write-protected, or choose another data folder.",
     Remedy::SelectFolder},
    {Cause::Settings, Grade::Trouble, "settings cannot be read",
     "Recording runs with the default settings. End the program, see to the settings "
     "file and start again.",
     Remedy::None},
    {Cause::ErrorLog, Grade::Trouble, "ERROR.LOG cannot be written",
     "See whether the disk of the program's folder is full or write-protected. "
     "Recording needs to write there.",
     Remedy::ShowProgramFolder},
    {Cause::ChosenFolder, Grade::Attention, "chosen data folder is not there",
     "Connect the disk or network drive again. It is used again within a minute.",
     Remedy::SelectFolder},
    {Cause::DiskSpace, Grade::Attention, "disk is nearly full",
     "Move old days elsewhere, or choose another data folder.", Remedy::ShowDataFolder},
    {Cause::Unreadable, Grade::Attention, "today's folder cannot be read",
     "See to the access rights of the day's folder. Pictures are recorded on if they "
     "can be written.",
     Remedy::ShowDataFolder},
    {Cause::ClockSetting, Grade::Attention, "clock setting failed",
     "Check the tracker's power, cable and port, then set its clock with Tools > Time "
     "Setting.",
     Remedy::SetClocks},
    {Cause::Mail, Grade::Attention, "alerts are not mailed", "See Tools > Alerts.",
     Remedy::SeeAlerts},
    {Cause::StatusFile, Grade::Attention, "status page is not up to date",
     "See whether the program's folder can be written and whether somebody holds the "
     "named file open. Recording goes on.",
     Remedy::ShowProgramFolder},
    {Cause::SunTimes, Grade::Attention, "no sun times",
     "Correct the site's latitude, longitude and time zone. Recording goes on.",
     Remedy::CorrectSite}};

/// Up to the first colon or full stop, without its article.
std::string firstWords(const std::string& text) {
    std::string words = text.substr(0, std::min(text.find(": "), text.find_last_of('.')));
    for (const std::string_view article : {"The ", "A "})
        if (words.starts_with(article)) return words.substr(article.size());
    if (!words.empty() && words[0] >= 'A' && words[0] <= 'Z')
        words[0] = static_cast<char>(words[0] - 'A' + 'a');
    return words;
}

} // namespace

std::span<const CauseWords> allCauses() {
    return kCauses;
}

const CauseWords& wordsOn(Cause cause) {
    return *std::ranges::find(kCauses, cause, &CauseWords::cause);
}

std::string inShort(Cause cause, const Warnings::Standing& warning) {
    const std::string words = wordsOn(cause).inShort;
    return words.empty() ? firstWords(warning.text) : words;
}

std::string withAdvice(Cause cause, const Warnings::Standing& warning) {
    const bool asks = warning.text.find("Please ") != std::string::npos;
    return asks ? warning.text : warning.text + "\n" + wordsOn(cause).advice;
}

std::string inOneLine(const Warnings::Standing& warning) {
    std::string line = warning.text;
    std::ranges::replace(line, '\n', ' ');
    const std::size_t asked = line.find(" Please ");
    return asked == std::string::npos ? line : line.substr(0, asked);
}

} // namespace orvane

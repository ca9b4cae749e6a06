#include "core/Alerts.h"

#include "archive/DataFolder.h"
#include "platform/Paths.h"

#include <cstdio>
#include <random>

namespace orvane {

namespace {

constexpr Ticks kLook = 20s;
constexpr const char* kSection = "Station";
constexpr const char* kReported = "MailDailyDone";

/// Unlike any other, also on another station: the time and 64 random bits.
std::string newId(WallTime now) {
    std::random_device random;
    char bits[24];
    std::snprintf(bits, sizeof bits, "%08x%08x", static_cast<unsigned>(random()),
                  static_cast<unsigned>(random()));
    return dateDigits(now) + std::to_string(timeOfDay(now).count()) + bits;
}

} // namespace

Alerts::Alerts(Parts parts)
    : parts_(std::move(parts)),
      queue_({parts_.module, parts_.panel, parts_.warnings, parts_.log, parts_.faults, parts_.clock,
              parts_.pictures, parts_.keograms, parts_.mail,
              [this](const Letter& letter) {
                  if (letter.day) keepReported(*letter.day);
              }}),
      timer_(
          parts_.clock, kLook, [this] { follow(); }, parts_.faults.reporter("Alerts")) {}

void Alerts::start() {
    LoadedMailSettings loaded = loadMailSettings(parts_.store);
    settings_ = loaded.settings;
    reported_ = parts_.store.GetSetting(kSection, kReported, "");
    queue_.use(settings_);
    if (loaded.fault && settings_.wanted())
        parts_.warnings.set(Warnings::Cause::Mail, *loaded.fault);
    timer_.enable();
}

/// What was before is not reported on when reports are switched on.
Fault Alerts::use(const MailSettings& settings) {
    if (settings.daily && !settings_.daily) keepReported(lastDayOver());
    settings_ = settings;
    if (!settings_.warnings) causes_.clear();
    queue_.use(settings_);
    return saveMailSettings(parts_.store, settings_);
}

Task<std::string> Alerts::test(MailSettings settings) {
    Letter letter = letterOf(testText(figures()));
    Task<std::string> testing = queue_.test(std::move(settings), std::move(letter));
    std::string told = co_await testing;
    co_return told;
}

void Alerts::follow() {
    if (settings_.warnings) followWarnings();
    if (settings_.daily) followDay();
}

void Alerts::followWarnings() {
    for (const auto& [which, warning] : parts_.warnings.standing())
        if (which != Warnings::Cause::Mail) note(which, warning);
    for (auto& [which, cause] : causes_) {
        if (cause.stands && !parts_.warnings.stands(which)) {
            cause.stands = false;
            cause.gone = parts_.clock.now();
        }
        if (isNews(cause)) tell(which, cause);
    }
}

/// A warning that went and came again between two looks has come up anew. One that was told keeps
/// its beginning until its end is told.
void Alerts::note(Warnings::Cause which, const Warnings::Standing& warning) {
    Cause& cause = causes_[which];
    const bool isNew = !cause.stands || cause.warning.since != warning.since;
    cause.stands = true;
    if (!isNew) return;
    cause.seen = parts_.clock.ticks();
    if (!cause.told) cause.warning = warning;
}

bool Alerts::isNews(const Cause& cause) const {
    const Ticks now = parts_.clock.ticks();
    if (cause.mailed && now < *cause.mailed + kBetween) return false;
    return cause.stands ? !cause.told && now >= cause.seen + kStood : cause.told;
}

/// One mail of a day is left to the day's report.
void Alerts::tell(Warnings::Cause which, Cause& cause) {
    if (!mayMail(settings_.daily ? kMostADay - 1 : kMostADay)) return;
    if (cause.stands) cause.warning = parts_.warnings.standing().at(which);
    AlertText alert = cause.stands ? warningText(which, cause.warning, figures())
                                   : overText(cause.warning, cause.gone, figures());
    cause.told = cause.stands;
    cause.mailed = parts_.clock.ticks();
    post(letterOf(std::move(alert)));
}

bool Alerts::mayMail(std::size_t most) {
    while (!posted_.empty() && posted_.front() + 24h <= parts_.clock.ticks())
        posted_.pop_front();
    return posted_.size() < most;
}

/// The last day whose recording window has been over for a while: today, yesterday, or the day
/// before while yesterday's window reached to midnight.
std::chrono::local_days Alerts::lastDayOver() const {
    const WallTime now = parts_.clock.now();
    auto day = std::chrono::floor<std::chrono::days>(now);
    while (now < day + parts_.days.scheduleOn(day).EndTime + kAfterWindow)
        day -= std::chrono::days(1);
    return day;
}

/// What was before the first report is not reported on. A report that lies ahead by more than a day
/// was made while the clock was wrong.
void Alerts::followDay() {
    const auto day = lastDayOver();
    if (reported_.empty()) return keepReported(day);
    const std::string digits = dateDigits(WallTime(day));
    const bool isNew =
        digits > reported_ || dateDigits(WallTime(day + std::chrono::days(1))) < reported_;
    if (isNew && mayMail(kMostADay)) reportOn(day);
}

void Alerts::reportOn(std::chrono::local_days day) {
    reported_ = dateDigits(WallTime(day));
    parts_.days.refresh();
    const auto today = parts_.days.folder().day();
    if (day != today && day + std::chrono::days(1) != today) return; // nobody knows any more
    const DayPlan plan = day == today ? parts_.days.plan() : parts_.days.yesterdaysPlan();
    Letter letter = letterOf(dayText(day, plan, figures()));
    letter.day = day;
    letter.isDue = plan.isDue;
    post(std::move(letter));
}

void Alerts::keepReported(std::chrono::local_days day) {
    reported_ = dateDigits(WallTime(day));
    parts_.store.SaveSetting(kSection, kReported, reported_);
}

StationFigures Alerts::figures() {
    StationFigures figures{.day = parts_.days.plan().text,
                           .disk = parts_.panel.lbl_free.caption,
                           .recording = parts_.module.RecordFlg};
    figures.picture = utf8FromPath(newestPicture().filename());
    for (const auto& [cause, warning] : parts_.warnings.standing())
        figures.warnings.push_back(warning);
    return figures;
}

/// Before today's first picture an earlier day's.
std::filesystem::path Alerts::newestPicture() const {
    const std::filesystem::path& known = parts_.module.thumbnails.front();
    if (!known.empty()) return known;
    const auto newest = newestCaptures(parts_.panel.Dir1[0].path, 1);
    return newest.empty() ? std::filesystem::path() : newest.front();
}

Letter Alerts::letterOf(AlertText alert) const {
    Letter letter{.subject = std::move(alert.subject), .text = std::move(alert.text)};
    letter.picture = newestPicture();
    letter.date = parts_.clock.now();
    letter.offset = parts_.utcOffset();
    letter.made = parts_.clock.ticks();
    letter.id = newId(letter.date);
    return letter;
}

void Alerts::post(Letter letter) {
    posted_.push_back(parts_.clock.ticks());
    queue_.add(std::move(letter));
}

} // namespace orvane

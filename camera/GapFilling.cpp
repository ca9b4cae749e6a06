#include "camera/GapFilling.h"

#include "camera/CameraPanel.h"
#include "camera/StoreSearch.h"
#include "platform/Page.h"
#include "platform/Paths.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr Ticks kBetweenAskings = 1min;
constexpr Ticks kSecondAsking = 10min; ///< after an answer without the picture
constexpr int kMostAnswers = 2;
constexpr std::size_t kMostRecords = 100; // of a reply; two are asked for
constexpr Ticks kNever = Ticks::max();

} // namespace

bool GapFilling::wanted() const {
    return parts_.module.RecordFlg && parts_.panel.chk_fill.ticked && !parts_.busy.active();
}

void GapFilling::step() {
    if (!round_.done()) return;
    const Ticks now = parts_.clock.ticks();
    if (now < nextRound_ || (seen_ == parts_.days.revision() && now < nextLook_) || !wanted())
        return;
    std::vector<Minute> minutes = gaps();
    seen_ = parts_.days.revision();
    if (minutes.empty()) return;
    stoodBack_ = false;
    nextLook_ = now; // whatever ends the round, the rest of the gaps is looked at
    round_ = parts_.faults.run("GapFilling", round(std::move(minutes)));
    round_.start();
}

void GapFilling::standBack() {
    if (round_.done()) return;
    stoodBack_ = true;
    parts_.pages.cancel();
    parts_.transfer.cancel();
}

/// The minutes to ask for now. The folder is read only when something is missing as far as is
/// known.
std::vector<GapFilling::Minute> GapFilling::gaps() {
    nextLook_ = kNever;
    if (parts_.days.plan().gaps == 0) return {};
    parts_.days.refresh();
    if (parts_.days.folder().fault()) return {};
    const auto folder = datedFolderOf(parts_.panel.Dir1[0].path, parts_.clock.now());
    if (folder != folder_) asked_.clear();
    folder_ = folder;

    std::vector<Minute> minutes;
    Minute minute = minuteIndex(WallTime(parts_.days.folder().day())) - 1;
    for (const DayState state : parts_.days.plan().states) {
        ++minute;
        if (!isGap(state)) continue;
        const auto found = asked_.find(minute);
        const Asked asked = found == asked_.end() ? Asked{} : found->second;
        if (asked.answers >= kMostAnswers) continue;
        if (asked.next <= parts_.clock.ticks()) {
            minutes.push_back(minute);
        } else {
            nextLook_ = std::min(nextLook_, asked.next);
        }
    }
    return minutes;
}

Task<> GapFilling::round(std::vector<Minute> minutes) {
    for (const Minute minute : minutes) {
        if (!wanted()) co_return;
        asked_[minute].next = parts_.clock.ticks() + kBetweenAskings;
        Task<Outcome> filling = fill(minute);
        const Outcome outcome = co_await filling;
        note(minute, outcome);
        if (outcome != Outcome::Filed && outcome != Outcome::NotHeld) co_return;
    }
}

void GapFilling::note(Minute minute, Outcome outcome) {
    if (outcome == Outcome::StoodBack) return;
    const Ticks now = parts_.clock.ticks();
    if (outcome == Outcome::NoAnswer || outcome == Outcome::CannotFile)
        nextRound_ = now + kBetweenAskings;
    if (outcome == Outcome::NoAnswer) return;
    Asked& asked = asked_[minute];
    ++asked.answers;
    if (outcome == Outcome::NotHeld) asked.next = now + kSecondAsking;
    if (outcome == Outcome::Filed) giveUp(minute);
}

/// What was filed counts in the day's plan; if it does not, asking again would bring the same.
void GapFilling::giveUp(Minute minute) {
    const Minute first = minuteIndex(WallTime(parts_.days.folder().day()));
    if (minute < first) return; // midnight has passed
    if (!isGap(parts_.days.plan().states[static_cast<std::size_t>(minute - first)])) return;
    asked_[minute].answers = kMostAnswers;
    parts_.log.write("GapFilling:What was filed for " + hourMinute(momentOf(minute)) +
                     " does not count as its picture");
}

/// The path of the first picture stamped within the minute; empty when there is none.
std::string GapFilling::pathOf(std::string_view reply, Minute minute) {
    for (std::size_t record = 0; record < kMostRecords; ++record) {
        const auto path = nextPicturePath(reply);
        if (!path) break;
        const auto name = ImageName::parse(FileNameOfPath(*path));
        if (name && name->minute() == minute) return std::string(*path);
    }
    return {};
}

Task<GapFilling::Outcome> GapFilling::fill(Minute minute) {
    Task<HttpReply> loading =
        getPage(parts_.pages, cameraBaseUrl(parts_.panel) + kSearchPath + "?" +
                                  searchQuery(stampOf(momentOf(minute))));
    const HttpReply answer = co_await loading;
    if (stoodBack_) co_return Outcome::StoodBack;
    const std::string_view reply = answer.ok ? std::string_view(answer.body) : std::string_view();
    if (isNoData(reply)) co_return Outcome::NotHeld;
    if (!isPictureList(reply)) co_return Outcome::NoAnswer;
    std::string path = pathOf(reply, minute);
    if (path.empty()) co_return Outcome::NotHeld;
    Task<Outcome> fetching = fetch(std::move(path));
    const Outcome outcome = co_await fetching;
    co_return outcome;
}

Task<GapFilling::Outcome> GapFilling::fetch(std::string path) {
    Task<HttpReply> get = parts_.transfer.get(cameraBaseUrl(parts_.panel) + "/" + path);
    HttpReply picture = co_await get;
    if (stoodBack_) co_return Outcome::StoodBack;
    const std::string name = ImageName::parse(FileNameOfPath(path))->text();
    if (!picture.ok) {
        parts_.log.write("GapFilling:" + name + ": " + picture.fault);
        co_return Outcome::NotHeld;
    }
    const Busy::Hold busy(parts_.busy);
    Task<Filing> filing =
        parts_.archive.take(std::move(picture.body), folder_ / pathFromUtf8(name), Arrival::Gap);
    const Filing filed = co_await filing;
    if (filed.outcome == Filing::Outcome::Failed) co_return Outcome::CannotFile;
    parts_.log.write(filed.inArchive() ? "Gap filled:" + name
                                       : "GapFilling:" + name + ": " + filed.fault);
    co_return filed.inArchive() ? Outcome::Filed : Outcome::NotHeld;
}

} // namespace orvane

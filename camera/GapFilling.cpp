#include "camera/GapFilling.h"

#include "archive/DayPlan.h"
#include "camera/StoreSearch.h"
#include "imaging/JpegMarkers.h"
#include "imaging/ProcessImageFile.h"
#include "platform/Conversions.h"
#include "platform/FileCopy.h"
#include "platform/Paths.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr Ticks kRetry = 1min;         ///< after a request without an answer
constexpr Ticks kSecondAsking = 10min; ///< after an answer without the picture
constexpr int kMostAskings = 2;
constexpr std::size_t kImageNameLength = 22;
constexpr std::size_t kMostRecords = 100; // of a reply; two are asked for

bool isOfMinute(std::string_view name, std::int64_t minute) {
    if (name.size() != kImageNameLength || !isPlainName(name)) return false;
    ImageStamp stamp;
    ParseImageName(name, stamp);
    ImageStamp wanted = stampOf(momentOf(minute));
    wanted.second = stamp.second;
    wanted.frame = stamp.frame;
    return stamp == wanted;
}

} // namespace

GapFilling::GapFilling(Station& station)
    : station_(station), pages_(station.gapBrowser, station.clock) {}

bool GapFilling::wanted() const {
    return station_.module.RecordFlg && station_.panel.chk_fill.ticked && !station_.busy.active();
}

void GapFilling::step(WallTime now) {
    if (!round_.done() || !wanted()) return;
    const auto today = std::chrono::floor<std::chrono::days>(now);
    const Module1& module = station_.module;
    const std::filesystem::path& folder = station_.panel.Dir1[0].path;
    if (day_ != today) asked_.clear();
    if (day_ != today || schedule_ != module.schedule || folder_.native() != folder.native() ||
        std::exchange(station_.module.imagesArrived, false))
        look_ = true;
    if (!look_ || station_.clock.ticks() < nextRound_) return;
    day_ = today;
    schedule_ = module.schedule;
    folder_ = folder;
    look_ = false;
    std::vector<std::int64_t> minutes = gaps(now);
    if (minutes.empty()) return;
    round_ = round(std::move(minutes));
    round_.start();
}

void GapFilling::standBack() {
    if (round_.done()) return;
    stoodBack_ = true;
    pages_.cancel();
    station_.gapTransfer.cancel();
}

/// The minutes to ask for now. When there are only such that are to be asked for later, it has them
/// looked at again.
std::vector<std::int64_t> GapFilling::gaps(WallTime now) {
    const DayPlan plan = planDay(schedule_, true, picturesOfDay(folder_ / dateDigits(now), day_),
                                 now, std::chrono::seconds(station_.module.image.Delay));
    std::vector<std::int64_t> minutes;
    bool later = false;
    std::int64_t minute = minuteIndex(WallTime(day_)) - 1;
    for (const DayState state : plan.states) {
        ++minute;
        if (state != DayState::Missed) continue;
        const auto found = asked_.find(minute);
        const Asked asked = found == asked_.end() ? Asked{} : found->second;
        if (asked.times >= kMostAskings) continue;
        if (asked.times == 0 || station_.clock.ticks() >= asked.last + kSecondAsking) {
            minutes.push_back(minute);
        } else {
            later = true;
        }
    }
    if (minutes.empty() && later) {
        look_ = true;
        nextRound_ = station_.clock.ticks() + kRetry;
    }
    return minutes;
}

/// What nobody foresaw ends the round, not the filling.
Task<> GapFilling::round(std::vector<std::int64_t> minutes) {
    stoodBack_ = false;
    look_ = true; // whatever ends the round, the rest of the gaps is looked at again
    try {
        Task<> filling = fillAll(std::move(minutes));
        co_await filling;
    } catch (const std::exception& fault) {
        station_.log.write(std::string("GapFilling:") + fault.what());
        nextRound_ = station_.clock.ticks() + kRetry;
    }
}

Task<> GapFilling::fillAll(std::vector<std::int64_t> minutes) {
    for (const std::int64_t minute : minutes) {
        if (!wanted()) co_return;
        Task<Outcome> filling = fill(minute);
        const Outcome outcome = co_await filling;
        note(minute, outcome);
        if (outcome != Outcome::NotHeld && outcome != Outcome::Filled) co_return;
    }
}

void GapFilling::note(std::int64_t minute, Outcome outcome) {
    const Ticks now = station_.clock.ticks();
    if (outcome == Outcome::NotHeld || outcome == Outcome::NotWhole)
        asked_[minute] = {asked_[minute].times + 1, now};
    if (outcome == Outcome::NotWhole || outcome == Outcome::NoAnswer ||
        outcome == Outcome::CannotFile)
        nextRound_ = now + kRetry;
}

/// The path of the first picture stamped within the minute; empty when there is none.
std::string GapFilling::pathOf(std::string_view reply, std::int64_t minute) {
    if (isNoData(reply)) return {};
    for (std::size_t record = 0; record < kMostRecords; ++record) {
        const auto path = nextPicturePath(reply);
        if (!path) break;
        if (isOfMinute(FileNameOfPath(*path), minute)) return std::string(*path);
    }
    return {};
}

Task<GapFilling::Outcome> GapFilling::fill(std::int64_t minute) {
    const std::string base = cameraBaseUrl(station_.panel);
    pages_.navigate(base + kSearchPath + "?" + searchQuery(stampOf(momentOf(minute))));
    Task<std::string> loading = pages_.document();
    const std::string reply = co_await loading;
    if (stoodBack_) co_return Outcome::StoodBack;
    if (reply.empty()) co_return Outcome::NoAnswer;
    const std::string path = pathOf(reply, minute);
    if (path.empty()) co_return Outcome::NotHeld;

    Task<HttpReply> get = station_.gapTransfer.get(base + "/" + path);
    HttpReply picture = co_await get;
    if (stoodBack_) co_return Outcome::StoodBack;
    if (!picture.ok || !isWholeJpeg(picture.body)) co_return Outcome::NotWhole;
    Task<Outcome> filing = file(std::string(FileNameOfPath(path)), std::move(picture.body));
    const Outcome outcome = co_await filing;
    co_return outcome;
}

Task<GapFilling::Outcome> GapFilling::file(std::string name, std::string picture) {
    const Busy::Hold busy(station_.busy);
    const std::filesystem::path folder = folder_ / name.substr(0, 8);
    const std::filesystem::path image = folder / name;
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (const auto reason = writeToFinalName(picture, image)) {
        station_.log.write("GapFilling:" + *reason);
        station_.warnings.set(Warnings::Cause::DataFolder,
                              "The data folder cannot be written: " + *reason + ".");
        co_return Outcome::CannotFile;
    }
    Task<Fault> processing = ProcessImageFile(station_.imageControl, image, station_.module.image,
                                              station_.module.imageProcessing);
    const Fault fault = co_await processing;
    if (fault) {
        station_.log.write("ProcessImageFile:" + *fault);
    } else {
        station_.warnings.clear(Warnings::Cause::DataFolder);
    }
    station_.log.write("Gap filled:" + name);
    show(image);
    co_return Outcome::Filled;
}

/// Among the newest pictures it takes the place of its own time.
void GapFilling::show(const std::filesystem::path& image) {
    auto& history = station_.module.thumbnails;
    const auto place = std::ranges::find_if(history, [&](const ThumbnailEntry& entry) {
        return entry.path.filename() < image.filename();
    });
    if (place != history.end()) {
        std::shift_right(place, history.end(), 1);
        *place = {image, 0};
    }
    station_.views.refreshThumbnails(history);
}

} // namespace orvane

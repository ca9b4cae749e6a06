#include "archive/DayOverview.h"

#include "platform/Conversions.h"

namespace orvane {

namespace {

/// The coarsest time stamps of a file system that pictures may be kept on are two seconds apart.
constexpr std::chrono::seconds kCoarseStamp{3};

/// The same value for every folder that is not there.
std::filesystem::file_time_type changeTime(const std::filesystem::path& folder) {
    std::error_code error;
    const auto time = std::filesystem::last_write_time(folder, error);
    return error ? std::filesystem::file_time_type::min() : time;
}

bool isRecent(std::filesystem::file_time_type time) {
    if (time == std::filesystem::file_time_type::min()) return false;
    const auto age = std::filesystem::file_time_type::clock::now() - time;
    return age >= age.zero() && age < kCoarseStamp;
}

bool same(const SiteValues& a, const SiteValues& b) {
    return a.latitude == b.latitude && a.longitude == b.longitude && a.Tz == b.Tz;
}

} // namespace

bool DayOverview::refresh() {
    const WallTime now = clock_.now();
    const auto day = std::chrono::floor<std::chrono::days>(now);
    const Seen seen{minuteIndex(now), module_.RecordFlg, module_.schedule, module_.image.Delay};
    const bool newPictures = readPictures(day);
    const bool newSun = computeSun(day);
    if (seen == seen_ && !newPictures) return newSun;
    seen_ = seen;
    plan_ =
        planDay(seen.schedule, seen.recording, pictures_, now, std::chrono::seconds(seen.delay));
    return true;
}

bool DayOverview::readPictures(std::chrono::local_days day) {
    const std::filesystem::path folder = panel_.Dir1[0].path.get() / dateDigits(WallTime(day));
    const auto changed = changeTime(folder);
    // compared as text: comparing paths part by part is slow
    const bool sameFolder = folder.native() == folder_.native();
    if (sameFolder && changed == changed_ && !readAgain_) return false;
    folder_ = folder;
    changed_ = changed;
    readAgain_ = isRecent(changed);
    DayPictures pictures = reader_(folder, day);
    if (pictures == pictures_) return false;
    pictures_ = pictures;
    return true;
}

bool DayOverview::computeSun(std::chrono::local_days day) {
    if (day == sunDay_ && site_ && same(*site_, module_.site)) return false;
    sunDay_ = day;
    site_ = module_.site;
    sun_ = sunOfDay(module_.site, dayOf(WallTime(day)));
    return true;
}

} // namespace orvane

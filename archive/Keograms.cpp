#include "archive/Keograms.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr std::size_t kDays = 8; ///< of 1.4 MB at most
constexpr Ticks kLook = 50ms;    ///< between two looks whether it is its turn
constexpr int kLongestStep = 60;

std::filesystem::path folderOf(const FiledPicture& picture) {
    return picture.file.parent_path();
}

/// The minute that ends what minute `minute` shows when no other picture comes: the next due one,
/// or, behind the last of the day, as much later as that is later than the one before.
int endOf(const DueMinutes& isDue, int minute) {
    const auto at = [&](int place) { return isDue[static_cast<std::size_t>(place)]; };
    int last = minute; // due minute
    while (last >= 0 && !at(last) && minute - last < kLongestStep)
        --last;
    if (last < 0 || !at(last)) return minute + 1;
    for (int next = minute + 1; next < kDayMinutes && next <= last + kLongestStep; ++next)
        if (at(next)) return next;
    for (int before = last - 1; before >= 0 && before >= last - kLongestStep; --before)
        if (at(before)) return std::max(last + (last - before), minute + 1);
    return minute + 1;
}

/// The mean of the colours of `count` pixels that lie `step` apart.
std::uint32_t mean(const std::uint32_t* pixel, int count, std::size_t step) {
    std::uint32_t red = 0;
    std::uint32_t green = 0;
    std::uint32_t blue = 0;
    for (int i = 0; i < count; ++i, pixel += step) {
        red += *pixel >> 16 & 0xff;
        green += *pixel >> 8 & 0xff;
        blue += *pixel & 0xff;
    }
    const auto n = static_cast<std::uint32_t>(count);
    return 0xff000000 | red / n << 16 | green / n << 8 | blue / n;
}

} // namespace

std::vector<FiledPicture> onePerMinute(const std::vector<FiledPicture>& pictures) {
    std::vector<FiledPicture> chosen;
    for (const FiledPicture& picture : pictures) {
        if (chosen.empty() || chosen.back().name.minute() != picture.name.minute())
            chosen.push_back(picture);
        else if (picture.name.isCapture() && !chosen.back().name.isCapture())
            chosen.back() = picture;
    }
    return chosen;
}

namespace {

/// By their texts: comparing paths part by part is slow.
auto placeOf(auto& days, const std::filesystem::path& folder) {
    return std::ranges::find_if(
        days, [&](const auto& day) { return day.folder.native() == folder.native(); });
}

} // namespace

Keograms::Day& Keograms::dayOf(const std::filesystem::path& folder) {
    const auto known = placeOf(days_, folder);
    if (known == days_.end()) {
        days_.push_front({folder, mirrored()});
    } else {
        days_.splice(days_.begin(), days_, known);
    }
    if (days_.size() > kDays) days_.pop_back();
    Day& day = days_.front();
    if (day.mirrored != mirrored()) day = {folder, mirrored()};
    return day;
}

const Keograms::Day* Keograms::find(const std::filesystem::path& folder) const {
    const auto day = placeOf(days_, folder);
    return day == days_.end() || day->mirrored != mirrored() ? nullptr : &*day;
}

Task<> Keograms::read(std::vector<FiledPicture> pictures) {
    const std::vector<FiledPicture> chosen = onePerMinute(pictures);
    for (const FiledPicture& picture : chosen) {
        if (dayOf(folderOf(picture)).columns.contains(picture.name)) continue;
        while (taken_ || parts_.busy.active())
            co_await parts_.clock.sleep(kLook);
        Task<> reading = read(picture);
        co_await reading;
    }
}

Task<> Keograms::read(FiledPicture picture) {
    const Scope turn(taken_);
    Task<Fault> loading = parts_.control.loadReduced(picture.file, kRows);
    const Fault fault = co_await loading;
    dayOf(folderOf(picture)).columns[picture.name] = fault ? Column() : middleColumn();
    parts_.control.clear();
    ++revision_;
}

Keograms::Column Keograms::middleColumn() const {
    const Pixels pixels = parts_.control.pixels();
    if (pixels.width == 0 || pixels.height == 0) return {};
    const auto width = static_cast<std::size_t>(pixels.width);
    const std::size_t x = mirrored() ? width - 1 - width / 2 : width / 2;
    Column column;
    for (int row = 0; row < kRows; ++row) {
        const int first = row * pixels.height / kRows;
        const int end = std::max((row + 1) * pixels.height / kRows, first + 1);
        column.push_back(
            mean(&pixels.data[static_cast<std::size_t>(first) * width + x], end - first, width));
    }
    return column;
}

bool Keograms::isComplete(const std::vector<FiledPicture>& pictures) const {
    if (pictures.empty()) return true;
    const Day* day = find(folderOf(pictures.front()));
    return day != nullptr &&
           std::ranges::all_of(onePerMinute(pictures), [day](const FiledPicture& picture) {
               return day->columns.contains(picture.name);
           });
}

Pixels Keograms::draw(std::chrono::local_days day, const std::vector<FiledPicture>& pictures,
                      const DueMinutes& isDue) const {
    Pixels image{kDayMinutes, kRows};
    image.data.assign(std::size_t{kDayMinutes} * kRows, kGap);
    const Day* known = pictures.empty() ? nullptr : find(folderOf(pictures.front()));
    if (known == nullptr) return image;
    const std::int64_t begin = minuteIndex(WallTime(day));
    const std::vector<FiledPicture> chosen = onePerMinute(pictures);
    for (auto picture = chosen.begin(); picture != chosen.end(); ++picture) {
        const auto column = known->columns.find(picture->name);
        const std::int64_t minute = picture->name.minute() - begin;
        if (column == known->columns.end() || column->second.empty()) continue;
        if (minute < 0 || minute >= kDayMinutes) continue;
        std::int64_t end = std::min(endOf(isDue, static_cast<int>(minute)), kDayMinutes);
        if (picture + 1 != chosen.end()) end = std::min(end, (picture + 1)->name.minute() - begin);
        for (std::size_t row = 0; row < kRows; ++row)
            std::fill_n(&image.data[row * kDayMinutes + static_cast<std::size_t>(minute)],
                        end - minute, column->second[row]);
    }
    return image;
}

} // namespace orvane

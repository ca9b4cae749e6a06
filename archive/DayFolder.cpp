#include "archive/DayFolder.h"

#include <algorithm>
#include <utility>

namespace orvane {

namespace {

/// Some milliseconds' work.
constexpr std::size_t kFilesOfASlice = 50;

bool isFilled(const std::filesystem::path& file) {
    std::error_code error;
    const auto size = std::filesystem::file_size(file, error);
    return !error && size > 0;
}

} // namespace

void DayFolder::turnTo(const std::filesystem::path& folder, std::chrono::local_days day) {
    if (day == day_ && folder.native() == folder_.native()) return;
    day_ = day;
    folder_ = folder;
    readAgain_ = true;
    pictures_.clear();
    origins_ = {};
    fault_.reset();
}

bool DayFolder::refresh() {
    const auto changed = changeTime(folder_);
    // a folder that could not be read may have been given back without a change in it
    if (changed == changed_ && !readAgain_ && !fault_) return false;
    const bool wasUnreadable = fault_.has_value();
    DayListing listing = list();
    if (fault_) return !wasUnreadable;
    std::erase_if(listing.pictures, [this](const FiledPicture& picture) {
        return !isKnown(picture.name) && !isWholePicture(picture.file);
    });
    pictures_ = std::move(listing.pictures);
    const DayPictures before = std::exchange(origins_, {});
    for (const FiledPicture& picture : pictures_)
        count(picture.name);
    return wasUnreadable || origins_ != before;
}

Task<> DayFolder::read(Look look, Turn turn) {
    const DayListing listing = list();
    std::size_t looked = 0;
    for (const FiledPicture& picture : listing.pictures) {
        const bool good =
            look == Look::Whole ? isWholePicture(picture.file) : isFilled(picture.file);
        if (good) add(picture.file);
        if (++looked % kFilesOfASlice != 0) continue;
        Task<> waiting = turn(looked, listing.pictures.size());
        co_await waiting;
    }
}

/// A fault of it leaves the listing empty.
DayListing DayFolder::list() {
    changed_ = changeTime(folder_);
    readAgain_ = mayHideChange(changed_);
    DayListing listing = reader_(folder_);
    fault_ = std::exchange(listing.fault, {});
    if (fault_) listing.pictures.clear();
    return listing;
}

void DayFolder::add(const std::filesystem::path& file) {
    const auto name = ImageName::ofFile(file);
    if (!name || file.parent_path() != folder_) return;
    const auto place = std::ranges::lower_bound(pictures_, *name, {}, &FiledPicture::name);
    if (place == pictures_.end() || place->name != *name) pictures_.insert(place, {*name, file});
    count(*name);
}

bool DayFolder::isKnown(const ImageName& name) const {
    return std::ranges::binary_search(pictures_, name, {}, &FiledPicture::name);
}

void DayFolder::count(const ImageName& name) {
    if (name.day() != day_) return;
    PictureOrigin& origin = origins_[static_cast<std::size_t>(minuteOfDay(name.time()))];
    if (name.isCapture()) {
        origin = PictureOrigin::Taken;
    } else if (origin == PictureOrigin::None) {
        origin = PictureOrigin::Fetched;
    }
}

} // namespace orvane

#include "archive/DayPictures.h"

#include "archive/ImageName.h"
#include "platform/Paths.h"

namespace orvane {

namespace {

constexpr std::size_t kImageNameLength = 22;

void addPicture(const std::string& name, const ImageStamp& midnight, DayPictures& pictures) {
    if (name.size() != kImageNameLength || !name.ends_with(".jpg")) return;
    ImageStamp stamp{.hour = -1, .minute = -1, .second = -1};
    ParseImageName(name, stamp);
    const bool ofDay =
        stamp.year == midnight.year && stamp.month == midnight.month && stamp.day == midnight.day;
    const bool timed = stamp.hour >= 0 && stamp.minute >= 0 && stamp.second >= 0 &&
                       CheckStartTime(stamp.hour, stamp.minute, stamp.second);
    if (!ofDay || !timed) return;
    PictureOrigin& origin = pictures[static_cast<std::size_t>(stamp.hour * 60 + stamp.minute)];
    if (stamp.second == 0) {
        origin = PictureOrigin::Taken;
    } else if (origin == PictureOrigin::None) {
        origin = PictureOrigin::Fetched;
    }
}

} // namespace

DayPictures picturesOfDay(const std::filesystem::path& datedFolder, std::chrono::local_days day) {
    DayPictures pictures{};
    const ImageStamp midnight = stampOf(WallTime(day));
    std::error_code error;
    // a for loop over the folder would throw on a failing increment
    for (std::filesystem::directory_iterator entry(datedFolder, error), end; !error && entry != end;
         entry.increment(error))
        addPicture(utf8FromPath(entry->path().filename()), midnight, pictures);
    return pictures;
}

} // namespace orvane

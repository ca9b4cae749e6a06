#include "core/StartUp.h"

#include "platform/Conversions.h"

#include <algorithm>
#include <vector>

namespace orvane {

namespace {

constexpr std::size_t kImageNameLength = 22; // yyyymmdd_hhmmss_ff.jpg

bool isImage(const std::filesystem::directory_entry& entry) {
    return entry.path().filename().native().size() == kImageNameLength &&
           entry.path().extension() == ".jpg";
}

} // namespace

std::optional<std::string> StartUp(Station& station) {
    Module1& module = station.module;
    station.showMainWindow();
    module.thumbnails = {};
    module.lastImage.clear();
    if (auto fault = station.settings.initOperation()) return fault;
    station.status.initStatus();
    station.recording.ready();
    station.log.write("Orvane Starting");
    for (WebBrowser* browser : station.browsers)
        browser->navigate("about:blank");

    module.imageProcessing = true;
    module.imagesArrived = false;
    module.syncPending = false;
    if (auto fault = computeSunTimes(station)) return fault;
    module.image.DateFlg = 0;
    module.image.LrFlg = 0;
    module.image.JpegTyp = ImageControl::kFormat444;

    station.status.runSync(false);
    return std::nullopt;
}

std::optional<std::string> computeSunTimes(Station& station) {
    Module1& module = station.module;
    auto fault = ComputeSunriseSunset(module.site, dayOf(station.clock.now()), module.sun);
    station.panel.lbl_sunrise.caption = module.sun.SunriseText;
    station.panel.lbl_sunset.caption = module.sun.SunsetText;
    if (fault) *fault = "The sun times of the site cannot be computed: " + *fault;
    return fault;
}

void loadTodaysThumbnails(Station& station) {
    const std::filesystem::path folder =
        station.panel.Dir1[0].path.get() / dateDigits(station.clock.now());
    std::vector<std::filesystem::path> images;
    std::error_code error;
    // a for loop over the folder would throw on a failing increment
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
        if (isImage(*entry)) images.push_back(entry->path());
    std::ranges::sort(images, std::greater{});

    auto& history = station.module.thumbnails;
    const std::size_t count = std::min(images.size(), history.size());
    for (std::size_t i = 0; i < count; ++i)
        history[i].path = images[i];
    station.views.refreshThumbnails(history);
}

} // namespace orvane

#include "core/StartUp.h"

#include "platform/Conversions.h"

namespace orvane {

std::optional<std::string> StartUp(Station& station) {
    Module1& module = station.module;
    station.showMainWindow();
    module.thumbnails = {};
    module.lastImage.clear();
    if (auto fault = station.settings.initOperation()) return fault;
    station.status.initStatus();
    station.recording.ready();
    station.log.write("Orvane Starting");

    module.imageProcessing = true;
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
    station.days.refresh();
    for (const FiledPicture& picture : station.days.folder().pictures())
        station.module.addThumbnail(picture.file, true);
    station.views.refreshThumbnails(station.module.thumbnails);
}

} // namespace orvane

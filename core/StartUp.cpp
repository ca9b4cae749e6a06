#include "core/StartUp.h"

#include "platform/Conversions.h"

namespace orvane {
namespace {

/// Files are mostly looked for among today's.
void beginFindingToday(Station& station) {
    std::error_code error;
    const auto today = datedFolderOf(station.panel.Dir1[0].path.get(), station.clock.now());
    if (std::filesystem::is_directory(today, error)) station.panel.Dir1[1].path = today;
}

} // namespace

Fault StartUp(Station& station) {
    Module1& module = station.module;
    station.showMainWindow();
    module.thumbnails = {};
    module.lastImage.clear();
    if (Fault fault = station.settings.initOperation()) return fault;
    beginFindingToday(station);
    station.status.initStatus();
    station.recording.ready();
    station.log.write("Orvane Starting");
    if (const Fault fault = station.settings.unreadable()) {
        const std::string text = "The settings cannot be read: " + *fault +
                                 ". Their defaults are in force, and nothing is stored.";
        station.log.write(text);
        station.warnings.set(Warnings::Cause::Settings, text);
    }
    if (const std::string text = station.settings.impossibleSite(); !text.empty())
        station.log.write(text);
    station.settings.siteEdited = [&station] { followSite(station); };

    module.imageProcessing = true;
    module.syncPending = false;
    computeSunTimes(station);
    module.image.DateFlg = 0;
    module.image.LrFlg = 0;
    module.image.JpegTyp = ImageControl::kFormat444;

    station.status.runSync(false);
    return std::nullopt;
}

namespace {

Fault showSunTimes(Station& station) {
    Module1& module = station.module;
    Fault fault = ComputeSunriseSunset(module.site, dayOf(station.clock.now()), module.sun);
    station.panel.lbl_sunrise.caption = fault ? std::string() : module.sun.SunriseText;
    station.panel.lbl_sunset.caption = fault ? std::string() : module.sun.SunsetText;
    return fault;
}

void warnOfSunTimes(Station& station, const Fault& fault) {
    const std::string warning =
        fault ? "The sun times of the site cannot be computed: " + *fault + "."
              : station.settings.impossibleSite();
    if (fault) station.log.write(warning);
    station.warnings.set(Warnings::Cause::SunTimes, warning);
}

} // namespace

void computeSunTimes(Station& station) {
    warnOfSunTimes(station, showSunTimes(station));
}

/// The times of another site mean nothing: where no crossing is found, none is shown.
void followSite(Station& station) {
    station.module.sun = {};
    const Fault fault = showSunTimes(station);
    if (station.module.siteInEdit && fault) return; // it may be half a number
    warnOfSunTimes(station, fault);
    station.days.follow();
}

void loadTodaysThumbnails(Station& station) {
    station.days.refresh();
    for (const FiledPicture& picture : station.days.folder().pictures())
        station.module.addThumbnail(picture.file, true);
    station.views.refreshThumbnails(station.module.thumbnails);
}

} // namespace orvane

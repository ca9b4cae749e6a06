#include "core/Capture.h"

#include "platform/Paths.h"

#include <algorithm>
#include <utility>

namespace orvane {

namespace {

/// The working picture is removed first, so that no old tail gets behind a shorter new one.
Task<HttpReply> fetch(Station& station) {
    HttpReply reply;
    std::error_code error;
    std::filesystem::remove(station.module.programFolder / kWorkingPicture, error);
    if (error) {
        reply.fault =
            "cannot remove the old " + std::string(kWorkingPicture) + ": " + error.message();
        co_return reply;
    }
    // a run's picture on its way, 60 s at most
    while (station.store.transferring() && !station.wishes.standing())
        co_await station.clock.sleep(10ms);
    if (station.wishes.standing()) co_return reply;
    Task<HttpReply> download =
        station.camera.DownloadFile(cameraBaseUrl(station.panel) + kLatestImagePath,
                                    station.module.programFolder / "", kWorkingPicture);
    reply = co_await download;
    co_return reply;
}

Task<Filing> fetchAndFile(Station& station, Captured& captured) {
    Task<HttpReply> fetching = fetch(station);
    HttpReply reply = co_await fetching;
    if (!reply.ok) co_return {Filing::Outcome::Refused, reply.fault};
    captured.copyTime = station.clock.now();
    const std::filesystem::path folder =
        datedFolderOf(station.panel.Dir1[0].path, captured.copyTime);
    Task<Filing> filing = station.archive.take(
        std::move(reply.body),
        folder / pathFromUtf8(ImageName::ofCapture(captured.copyTime).text()), Arrival::Capture);
    Filing filed = co_await filing;
    co_return filed;
}

} // namespace

Task<Captured> captureImage(Station& station, RepeatedLine& reasons) {
    const Busy::Hold busy(station.busy);
    station.panel.Label7.caption = "Recording Now...";
    station.panel.Command2.enabled = false;
    const std::chrono::seconds delay(std::max<int>(station.module.image.Delay, 0));
    Task<> waiting = station.wishes.sleepUntil(station.clock.ticks() + 1000ms + delay);
    co_await waiting;

    Captured captured;
    captured.cutShort = station.wishes.standing();
    if (captured.cutShort) co_return captured;
    Task<Filing> filing = fetchAndFile(station, captured);
    const Filing filed = co_await filing;
    captured.filed = filed.inArchive();
    captured.notFiled = filed.fault;
    captured.cutShort = !captured.filed && station.wishes.standing();
    if (captured.filed) reasons.settle();
    if (filed.outcome == Filing::Outcome::Refused && !captured.cutShort) {
        captured.fault = filed.fault;
        station.log.write("DownLoad Error");
        reasons.write("Capture:" + captured.fault);
        station.panel.Label7.caption = "DownLoad Error ?";
        co_await station.clock.yield(); // lets the label be painted
    }
    co_return captured;
}

} // namespace orvane

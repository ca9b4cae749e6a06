#include "core/Capture.h"

#include "imaging/JpegMarkers.h"
#include "imaging/ProcessImageFile.h"
#include "platform/Conversions.h"
#include "platform/FileCopy.h"
#include "platform/Paths.h"

#include <algorithm>
#include <utility>

namespace orvane {

namespace {

constexpr int kFrames = 100;

/// 0 for a file that is not there.
std::uint64_t sizeOf(const std::filesystem::path& file) {
    std::error_code error;
    const auto size = std::filesystem::file_size(file, error);
    return error ? 0 : size;
}

/// The first name of the minute that no file in `folder` has; empty when all are taken.
std::filesystem::path freeName(const std::filesystem::path& folder, WallTime time) {
    for (int frame = 0; frame < kFrames; ++frame) {
        const std::string digits = (frame < 10 ? "0" : "") + std::to_string(frame);
        std::filesystem::path name = folder / (minuteStamp(time) + "00_" + digits + ".jpg");
        std::error_code error;
        if (!std::filesystem::exists(name, error)) return name;
    }
    return {};
}

} // namespace

Task<bool> Capture::run() {
    const Busy::Hold busy(station_.busy);
    station_.panel.Label7.caption = "Recording Now...";
    station_.panel.Command2.enabled = false;
    co_await station_.clock.sleep(1000ms);
    const int delay = std::max<int>(station_.module.image.Delay, 0);
    co_await station_.clock.sleep(std::chrono::seconds(delay));

    Task<bool> fetching = fetch();
    if (!co_await fetching) {
        picture_ = {};
        station_.log.write("DownLoad Error");
        station_.panel.Label7.caption = "DownLoad Error ?";
        co_await station_.clock.yield(); // lets the label be painted
        co_return false;
    }
    if (const Fault unfiled = file()) {
        station_.log.write("MainLoop:" + *unfiled);
        station_.warnings.set(Warnings::Cause::DataFolder, *unfiled);
        co_return false;
    }
    co_await station_.clock.sleep(300ms);
    Task<bool> processing = process();
    if (co_await processing) station_.warnings.clear(Warnings::Cause::DataFolder);
    remember();
    co_return true;
}

Task<bool> Capture::fetch() {
    const std::filesystem::path picture = station_.module.programFolder / kWorkingPicture;
    std::error_code error;
    std::filesystem::remove(picture, error);
    if (error) {
        fault_ = "cannot remove the old " + std::string(kWorkingPicture) + ": " + error.message();
        co_return false;
    }
    std::string url = cameraBaseUrl(station_.panel) + kLatestImagePath;
    std::filesystem::path folder = station_.module.programFolder / "";
    std::string name = kWorkingPicture;
    Task<bool> download =
        station_.camera.DownloadFile(std::move(url), std::move(folder), std::move(name));
    if (!co_await download) {
        fault_ = station_.camera.fault();
        co_return false;
    }
    Fault fault = readWholeFile(picture, picture_);
    if (!fault) fault = inspect();
    fault_ = fault.value_or("");
    co_return !fault;
}

/// A camera that hangs keeps sending its last picture; noise and the burnt-in time make two real
/// pictures differ.
Capture::Fault Capture::inspect() {
    if (!isWholeJpeg(picture_)) return "the answer is not a whole JPEG picture";
    const std::filesystem::path& atStart = station_.module.thumbnails[0].path;
    if (newest_.empty() && !atStart.empty()) readWholeFile(atStart, newest_);
    if (picture_ == newest_) return "the camera sent the same picture again";
    return std::nullopt;
}

Capture::Fault Capture::file() {
    copyTime_ = station_.clock.now();
    const std::filesystem::path data = station_.panel.Dir1[0].path;
    const std::string day = dateDigits(copyTime_);
    for (const auto& folder : {data / "Edit", data / day, data / "Edit" / day}) {
        std::error_code error;
        std::filesystem::create_directories(folder, error);
        if (error)
            return "The data folder cannot be written: " + utf8FromPath(folder) + ": " +
                   error.message() + ".";
    }
    const std::filesystem::path image = freeName(data / day, copyTime_);
    if (image.empty()) return "The minute's names in the data folder are used up.";
    if (const auto reason = writeToFinalName(picture_, image))
        return "The data folder cannot be written: " + *reason + ".";
    station_.module.lastImage = image;
    newest_ = std::exchange(picture_, {});
    return std::nullopt;
}

Task<bool> Capture::process() {
    const Module1& module = station_.module;
    Task<Fault> processing = ProcessImageFile(station_.imageControl, module.lastImage, module.image,
                                              module.imageProcessing);
    const Fault fault = co_await processing;
    if (fault) {
        station_.log.write("ProcessImageFile:" + *fault);
        const std::string name = utf8FromPath(module.lastImage.filename());
        station_.warnings.set(Warnings::Cause::DataFolder,
                              "No processed copy of " + name + ": " + *fault + ".");
    }
    co_return !fault;
}

void Capture::remember() {
    Module1& module = station_.module;
    module.addThumbnail(module.lastImage);
    station_.views.refreshThumbnails(module.thumbnails);
    station_.views.showLatest(module.lastImage);
    const std::filesystem::path& image = module.lastImage;
    disk_.addCapture(sizeOf(image) + sizeOf(editPathOf(image)) + sizeOf(rawPathOf(image)),
                     dayOf(copyTime_));
}

} // namespace orvane

#include "archive/PictureArchive.h"

#include "imaging/JpegMarkers.h"
#include "imaging/ProcessImageFile.h"
#include "platform/Paths.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace orvane {

namespace {

/// 0 for a file that is not there.
std::uint64_t sizeOf(const std::filesystem::path& file) {
    std::error_code error;
    const auto size = std::filesystem::file_size(file, error);
    return error ? 0 : size;
}

bool holds(const std::filesystem::path& file, const std::string& bytes) {
    std::string held;
    return sizeOf(file) == bytes.size() && !readWholeFile(file, held) && held == bytes;
}

/// Where a picture goes: a file to be written, the one that holds it already, or neither when the
/// second's frames are used up.
struct Place {
    std::filesystem::path file;
    bool held = false;
};

/// For a name that a capture may have. All frames are looked at when something stands under the
/// wanted name or comes from a store, which may give frames of its own.
Place placeAmongFrames(const std::filesystem::path& folder, const ImageName& name,
                       const std::string& bytes, Arrival arrival) {
    Place place;
    for (int step = 0; step < ImageName::kFrames; ++step) {
        const int frame = (name.frame() + step) % ImageName::kFrames;
        const auto file = folder / name.withFrame(frame).text();
        std::error_code error;
        const bool exists = std::filesystem::exists(file, error);
        if (exists && holds(file, bytes)) return {file, true};
        if (!place.file.empty() || (exists && isWholePicture(file))) continue;
        place.file = file;
        if (arrival == Arrival::Capture) break;
    }
    return place;
}

Place placeFor(const std::filesystem::path& wanted, const std::string& bytes, Arrival arrival) {
    const auto name = ImageName::ofFile(wanted);
    if (!name || !name->isCapture()) return {wanted};
    return placeAmongFrames(wanted.parent_path(), *name, bytes, arrival);
}

std::string cannotWrite(const std::string& reason) {
    return "The data folder cannot be written: " + reason + ".";
}

} // namespace

Task<Filing> PictureArchive::take(std::string bytes, std::filesystem::path wanted,
                                  Arrival arrival) {
    const std::filesystem::path folder = wanted.parent_path();
    Task<Fault> checking = refusal(bytes, wanted, arrival);
    if (Fault fault = co_await checking) co_return {Filing::Outcome::Refused, *fault};
    if (Fault fault = makeFolders(folder)) co_return failed(wanted, cannotWrite(*fault));
    const Place place = placeFor(wanted, bytes, arrival);
    if (place.file.empty())
        co_return failed(wanted, "The minute's names in the data folder are used up.");
    if (!place.held) {
        if (Fault fault = write(bytes, place.file))
            co_return failed(place.file, cannotWrite(*fault));
        Fault trouble;
        if (arrival == Arrival::Run) {
            unforced_ = folder;
        } else {
            trouble = forceNames(folder);
        }
        if (arrival == Arrival::Capture) {
            recent_.add(bytes);
            parts_.module.lastImage = place.file;
            co_await parts_.clock.sleep(300ms);
        }
        std::string().swap(bytes); // the processing reads the file
        Task<Fault> processing = process(place.file);
        const Fault unprocessed = co_await processing;
        warn(trouble ? trouble : unprocessed);
        remember(place.file, arrival);
    }
    count(arrival);
    co_return {place.held ? Filing::Outcome::Held : Filing::Outcome::Filed, {}};
}

Task<Fault> PictureArchive::refusal(const std::string& bytes, const std::filesystem::path& wanted,
                                    Arrival arrival) {
    if (arrival == Arrival::Capture) {
        Task<> recalling = recent_.recall(wanted.parent_path().parent_path());
        co_await recalling;
        if (recent_.holds(bytes)) co_return "the camera sent the same picture again";
    }
    Task<Fault> checking = pictureFault(parts_.imageControl, bytes);
    Fault fault = co_await checking;
    co_return fault;
}

Fault PictureArchive::makeFolders(const std::filesystem::path& datedFolder) {
    const std::filesystem::path data = datedFolder.parent_path();
    const std::filesystem::path edit = data / "Edit";
    const std::filesystem::path datedEdit = edit / datedFolder.filename();
    std::error_code error;
    if (std::filesystem::is_directory(datedFolder, error) &&
        std::filesystem::is_directory(datedEdit, error))
        return std::nullopt;
    if (data != parts_.module.defaultDataFolder && !std::filesystem::is_directory(data, error))
        return utf8FromPath(data) + " is not there";
    std::vector<std::filesystem::path> grown;
    for (auto folder = datedFolder;
         !std::filesystem::exists(folder, error) && folder.has_filename();
         folder = folder.parent_path())
        grown.push_back(folder.parent_path());
    for (const auto& folder : {edit, datedFolder, datedEdit}) {
        if (const Fault fault = makeFolder(folder)) return utf8FromPath(folder) + ": " + *fault;
    }
    grown_.insert(grown_.end(), grown.begin(), grown.end());
    return std::nullopt;
}

Fault PictureArchive::write(const std::string& bytes, const std::filesystem::path& image) {
    const std::filesystem::path folder = image.parent_path();
    if (cleared_.native() != folder.native()) removeLeftOvers(folder);
    Fault fault = parts_.files.put(bytes, image);
    if (!fault) parts_.days.add(image);
    return fault;
}

void PictureArchive::flush() {
    if (unforced_.empty()) return;
    if (const Fault trouble = forceNames(std::exchange(unforced_, {}))) warn(trouble);
}

/// The pictures are filed, whatever comes of this. A dated folder's own name is among those of the
/// data folder, and would be lost with all that lies in it.
Fault PictureArchive::forceNames(const std::filesystem::path& datedFolder) {
    Fault fault = parts_.files.flush(datedFolder);
    for (const std::filesystem::path& folder : std::exchange(grown_, {}))
        if (!fault) fault = parts_.files.flush(folder);
    if (!fault) return std::nullopt;
    parts_.log.write("Folder " + utf8FromPath(datedFolder.filename()) + ": " + *fault);
    return "A power cut may lose today's newest pictures: " + *fault + ".";
}

/// Of a program that was killed while it wrote.
void PictureArchive::removeLeftOvers(const std::filesystem::path& datedFolder) {
    cleared_ = datedFolder;
    const auto edit = datedFolder.parent_path() / "Edit" / datedFolder.filename();
    for (const auto& folder : {datedFolder, edit}) {
        for (const std::filesystem::path& entry : listFolder(folder).entries) {
            std::error_code ignored;
            if (isTemporary(entry)) std::filesystem::remove(entry, ignored);
        }
    }
}

Task<Fault> PictureArchive::process(std::filesystem::path image) {
    const Module1& module = parts_.module;
    Task<Fault> processing =
        ProcessImageFile(parts_.imageControl, image, module.image, module.imageProcessing);
    const Fault fault = co_await processing;
    if (!fault) co_return std::nullopt;
    parts_.log.write("ProcessImageFile:" + *fault);
    co_return "No processed copy of " + utf8FromPath(image.filename()) + ": " + *fault + ".";
}

void PictureArchive::remember(const std::filesystem::path& image, Arrival arrival) {
    Module1& module = parts_.module;
    const bool captured = arrival == Arrival::Capture;
    module.addThumbnail(image, captured);
    parts_.views.refreshThumbnails(module.thumbnails);
    if (!captured) return;
    parts_.views.showLatest(image);
    const std::uint64_t size = sizeOf(image);
    const std::uint64_t raw = isSet(module.image.RawFlg) ? size : 0;
    parts_.disk.addCapture(size + sizeOf(editPathOf(image)) + raw, dayOf(parts_.clock.now()));
}

/// The panel's count knows captures and runs. It stays where it is when it would leave its 32 bits.
void PictureArchive::count(Arrival arrival) {
    std::int32_t& fetched = parts_.module.filesFetched;
    if (arrival != Arrival::Gap && fetched < std::numeric_limits<std::int32_t>::max()) ++fetched;
}

void PictureArchive::warn(const Fault& trouble) {
    parts_.warnings.set(Warnings::Cause::DataFolder, trouble.value_or(""));
}

Filing PictureArchive::failed(const std::filesystem::path& image, const std::string& text) {
    parts_.log.write(utf8FromPath(image.filename()) + ": " + text);
    warn(text);
    return {Filing::Outcome::Failed, text};
}

} // namespace orvane

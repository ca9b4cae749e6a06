#include "archive/CopiesAnew.h"

#include "archive/DataFolder.h"
#include "imaging/JpegMarkers.h"
#include "imaging/ProcessImageFile.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "station/Scope.h"

namespace orvane {

namespace {

constexpr int kLogged = 10;
constexpr int kFailedInARow = 5;

} // namespace

void CopiesAnew::start(DaySpan span, const ImageOptions& options) {
    if (running) return;
    options_ = options;
    made_ = failed_ = failedInARow_ = unread_ = 0;
    log(describe(options));
    begin(span);
}

Task<Fault> CopiesAnew::workOn(std::chrono::local_days day) {
    const std::filesystem::path folder = folderOf(day);
    const DayListing listing = listDay(folder);
    unread_ += listing.fault.has_value();
    if (listing.fault) note(folder, listing.fault);
    std::size_t done = 0;
    for (const FiledPicture& picture : listing.pictures) {
        show(done++, listing.pictures.size());
        Task<> turn = takeTurn();
        co_await turn;
        if (!isWholePicture(picture.file)) {
            ++failed_;
            note(picture.file, "it is no whole picture, or cannot be read");
            continue;
        }
        Task<Fault> making = make(picture.file);
        const Fault fault = co_await making;
        failedInARow_ = fault ? failedInARow_ + 1 : 0;
        fault ? ++failed_ : ++made_;
        if (fault) note(picture.file, fault);
        if (failedInARow_ == kFailedInARow) co_return fault;
    }
    co_return std::nullopt;
}

Task<Fault> CopiesAnew::make(std::filesystem::path image) {
    const Scope pixels([this](bool held) { // of a picture that a cancellation leaves behind
        if (!held) control_.clear();
    });
    Task<Fault> processing = ProcessImageFile(control_, image, options_, true);
    Fault fault = co_await processing;
    if (fault) co_return fault;
    std::string copy;
    fault = readWholeFile(editPathOf(image), copy);
    if (!fault && !isWholeJpeg(copy)) fault = "it is cut off";
    if (!fault) {
        Task<Fault> checking = control_.check(copy);
        fault = co_await checking;
    }
    if (fault) co_return "what was written is damaged: " + *fault;
    if (isSet(options_.RawFlg)) co_return checkRaw(image);
    co_return std::nullopt;
}

Fault CopiesAnew::checkRaw(const std::filesystem::path& image) const {
    std::string original;
    std::string copy;
    Fault fault = readWholeFile(image, original);
    if (!fault) fault = readWholeFile(rawPathOf(image), copy);
    if (!fault && copy != original) fault = "the untouched copy differs from the picture";
    return fault;
}

/// The folders and files that failed are of the operator's interest, but not a night of them.
void CopiesAnew::note(const std::filesystem::path& entry, const Fault& fault) {
    if (failed_ + unread_ <= kLogged) log(utf8FromPath(entry.filename()) + ": " + *fault);
}

std::string CopiesAnew::outcome() const {
    std::string told = counted(made_, "copy", "copies") + " made";
    if (failed_ > 0) told += ", " + std::to_string(failed_) + " failed";
    if (unread_ > 0) told += ", " + counted(unread_, "day", "days") + " that cannot be read";
    return told + (failed_ + unread_ > 0 ? "; see ERROR.LOG." : ".");
}

std::string describe(const ImageOptions& options) {
    const bool mirrored = isSet(options.LrFlg);
    std::string text = mirrored ? "mirrored, " : "not mirrored, ";
    text += mirrored && isSet(options.DateFlg) ? "with date stamp, " : "without date stamp, ";
    text += options.JpegTyp == ImageControl::kFormat444 ? "4:4:4, " : "EXIF, ";
    text += options.Quality < 10 ? "highest" : options.Quality < 50 ? "high" : "low";
    text += " quality";
    if (isSet(options.RawFlg)) text += ", untouched picture beside it";
    return text;
}

} // namespace orvane

#include "archive/FilmFile.h"

#include "archive/DataFolder.h"
#include "imaging/ProcessImageFile.h"
#include "platform/Files.h"
#include "platform/Paths.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr int kLogged = 10;
constexpr Ticks kAnswer = 20s; ///< to the question for the encoders
constexpr Ticks kStandsStill = 1min;
constexpr Ticks kFinishing = 10min; ///< the last pictures, and the file's parts put in order
constexpr Ticks kFarewell = 5s;     ///< of one that does not read any more
constexpr const char* kSection = "Station";
constexpr const char* kKey = "Ffmpeg";

/// The last line that says something.
std::string lastLine(const std::string& said) {
    const std::size_t end = said.find_last_not_of(" \r\n");
    if (end == std::string::npos) return {};
    const std::size_t before = said.find_last_of("\r\n", end);
    const std::size_t start = before == std::string::npos ? 0 : before + 1;
    return said.substr(start, end + 1 - start);
}

FilmSize sizeOf(const Pixels& pixels) {
    return {pixels.width, pixels.height};
}

std::string seconds(int frames, int rate) {
    const int tenths = (frames * 10 + rate / 2) / rate;
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " s";
}

} // namespace

FilmFile::~FilmFile() {
    cancel();
    if (clearing_.done()) return;
    process_.bury();
    std::error_code ignored;
    std::filesystem::remove(temporary(), ignored);
}

std::filesystem::path FilmFile::program() const {
    std::filesystem::path chosen = pathFromUtf8(store_.GetSetting(kSection, kKey, ""));
    std::error_code error;
    if (std::filesystem::is_regular_file(chosen, error)) return chosen;
    return process_.find("ffmpeg");
}

void FilmFile::choose(const std::filesystem::path& program) {
    if (running) return;
    const bool stored = store_.SaveSetting(kSection, kKey, utf8FromPath(program));
    text = stored ? ""
                  : "The settings cannot be stored, so that this ffmpeg cannot be used. See "
                    "whether their disk is full or write-protected.";
}

void FilmFile::start(DaySpan span, const FilmOptions& options,
                     const std::filesystem::path& target) {
    if (running) return;
    clearing_ = {};
    options_ = options;
    options_.rate = std::clamp(options.rate, 1, 60);
    target_ = std::filesystem::absolute(target);
    encoder_.clear();
    form_ = {{}, {}, options_.rate};
    begun_ = written_ = false;
    minute_ = 0;
    frames_ = passedOver_ = unread_ = 0;
    log("to " + utf8FromPath(target_));
    begin(span);
}

Task<Fault> FilmFile::workOn(std::chrono::local_days day) {
    Fault fault;
    if (encoder_.empty()) {
        Task<Fault> asking = askEncoder();
        fault = co_await asking;
    }
    const std::filesystem::path folder = folderOf(day);
    const DayListing listing = listDay(folder);
    unread_ += listing.fault.has_value();
    if (listing.fault) note(folder, *listing.fault);
    std::size_t done = 0;
    for (const FiledPicture& picture : listing.pictures) {
        if (fault) break;
        show(done++, listing.pictures.size());
        // a run that goes on past midnight puts pictures of another day into the folder
        if (picture.name.day() != day || picture.name.minute() == minute_) continue;
        Task<> turn = takeTurn();
        co_await turn;
        Task<Fault> adding = add(picture);
        fault = co_await adding;
    }
    co_return fault;
}

Task<Fault> FilmFile::askEncoder() {
    const std::filesystem::path ffmpeg = program();
    if (ffmpeg.empty()) co_return std::string("there is no ffmpeg. ") + kHowToInstall;
    process_.start(ffmpeg, encoderQuery());
    Task<ProcessEnd> ending = process_.end(kAnswer);
    const ProcessEnd end = co_await ending;
    const std::string name = utf8FromPath(ffmpeg);
    if (end.fault) co_return name + " failed: " + *end.fault;
    if (end.said.find("Encoders:") == std::string::npos)
        co_return name + " is no ffmpeg that can be used. " + kHowToInstall;
    encoder_ = h264EncoderIn(end.said);
    if (encoder_.empty())
        co_return name + " has no H.264 encoder (libx264, libopenh264 or h264_mf). Install one "
                         "that has, or choose where it is";
    log("with " + name + ", " + encoder_);
    co_return std::nullopt;
}

/// A fault is one of ffmpeg; a picture that cannot be used is none.
Task<Fault> FilmFile::add(FiledPicture picture) {
    Fault unusable;
    if (isWholePicture(picture.file)) {
        Task<Fault> loading = load(picture.file);
        unusable = co_await loading;
    } else {
        unusable = "it is no whole picture, or cannot be read";
    }
    if (unusable) {
        ++passedOver_;
        note(picture.file, *unusable);
        co_return std::nullopt;
    }
    Task<Fault> piping = pipe(picture.file);
    Fault fault = co_await piping;
    if (!fault) {
        minute_ = picture.name.minute();
        ++frames_;
    }
    co_return fault;
}

/// Decodes no more than the film has; the first picture twice, since it decides how much that is.
Task<Fault> FilmFile::load(std::filesystem::path file) {
    if (form_.film == FilmSize{}) {
        const int rows = options_.rows > 0 ? options_.rows : kLargestFilm.height;
        Task<Fault> sizing = control_.loadReduced(file, rows);
        Fault fault = co_await sizing;
        if (fault) co_return fault;
        form_.film = filmSizeOf(sizeOf(control_.pixels()), options_.rows);
    }
    Task<Fault> loading = control_.loadReduced(file, form_.film.height);
    Fault fault = co_await loading;
    co_return fault;
}

/// Slices of their own for the slow steps: the window stays alive between them.
Task<Fault> FilmFile::pipe(std::filesystem::path file) {
    Clock& clock = parts().clock;
    co_await clock.yield();
    if (begun_) control_.fitInto(form_.pictures.width, form_.pictures.height);
    co_await clock.yield();
    if (options_.mirror) control_.mirror();
    if (options_.stamp) control_.drawText(stampTextOf(file));
    co_await clock.yield();
    const Pixels frame = control_.pixels();
    control_.clear();
    if (!begun_) beginFilm(sizeOf(frame));
    const std::string_view bytes(reinterpret_cast<const char*>(frame.data.data()),
                                 frame.data.size() * sizeof(frame.data[0]));
    Task<Fault> writing = process_.write(bytes, kStandsStill);
    Fault fault = co_await writing;
    if (fault) {
        Task<Fault> ending = endFfmpeg(kFarewell); // it may have said more
        fault = co_await ending;
    }
    co_return fault;
}

void FilmFile::beginFilm(FilmSize pictures) {
    form_.pictures = pictures;
    begun_ = true;
    process_.start(program(), filmArguments(form_, encoder_, temporary()));
}

Task<Fault> FilmFile::finish() {
    if (!begun_) co_return "there are no pictures that can be used; choose other days";
    text = "finishing the film";
    Task<Fault> ending = endFfmpeg(kFinishing);
    Fault fault = co_await ending;
    if (fault) co_return fault;
    std::error_code error;
    if (std::filesystem::file_size(temporary(), error) == 0 || error)
        co_return "ffmpeg failed: it wrote nothing";
    std::filesystem::rename(temporary(), target_, error);
    if (error) co_return "the film cannot be renamed: " + error.message();
    written_ = true;
    co_return std::nullopt;
}

/// A fault comes with the last that ffmpeg said.
Task<Fault> FilmFile::endFfmpeg(Ticks patience) {
    Task<ProcessEnd> ending = process_.end(patience);
    const ProcessEnd end = co_await ending;
    if (!end.fault && end.code == 0) co_return std::nullopt;
    std::string why = "ffmpeg failed: ";
    why += end.fault ? *end.fault : "exit code " + std::to_string(end.code);
    const std::string said = lastLine(end.said);
    if (!said.empty()) why += " (" + said + ")";
    co_return why;
}

void FilmFile::close() {
    process_.kill();
    control_.clear();
    if (begun_ && !written_) {
        clearing_ = clear(parts().clock, temporary());
        clearing_.start();
    }
    begun_ = false;
}

/// Windows lets nobody remove the file before the killed program is gone.
Task<> FilmFile::clear(Clock& clock, std::filesystem::path temporary) {
    const Ticks end = clock.ticks() + kFarewell;
    std::error_code error;
    while (std::filesystem::remove(temporary, error), error && clock.ticks() < end)
        co_await clock.sleep(20ms);
}

/// The entries that failed are of the operator's interest, but not a night of them.
void FilmFile::note(const std::filesystem::path& entry, const std::string& fault) {
    if (passedOver_ + unread_ <= kLogged) log(utf8FromPath(entry.filename()) + ": " + fault);
}

std::string FilmFile::outcome() const {
    std::string told = "No film was written.";
    if (written_)
        told = utf8FromPath(target_.filename()) +
               " is written: " + counted(frames_, "picture", "pictures") + ", " +
               seconds(frames_, form_.rate) + ".";
    if (passedOver_ > 0)
        told += " Passed over: " + counted(passedOver_, "picture", "pictures") + "; see ERROR.LOG.";
    if (unread_ > 0)
        told += " Cannot be read: " + counted(unread_, "day", "days") +
                "; see to the access rights of the folders.";
    return told;
}

std::filesystem::path FilmFile::temporary() const {
    return temporaryOf(target_);
}

} // namespace orvane

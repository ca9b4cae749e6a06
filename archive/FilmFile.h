#pragma once

#include "archive/Ffmpeg.h"
#include "archive/SpanWork.h"
#include "platform/ImageControl.h"
#include "platform/Process.h"
#include "platform/SettingsStore.h"

namespace orvane {

struct FiledPicture;

struct FilmOptions {
    int rows = 0;        ///< of the film, see `filmSizeOf`
    int rate = 25;       ///< pictures per second, 1 to 60
    bool mirror = false; ///< left to right
    bool stamp = false;  ///< date and time in each picture
};

/// Makes a film of the pictures of some days by piping them through ffmpeg: H.264 in MP4, one
/// picture for each minute that has one, in the order of time, whether captured or fetched. The
/// pictures are only read. The first picture decides the film's proportions; others are fitted.
///
/// The film is made under a temporary name and renamed when it is whole. However else the work
/// ends, ffmpeg is killed and the temporary removed, also with the program. Only a killed program
/// leaves one, which the next film of that name replaces.
///
/// A picture that cannot be decoded is counted, logged (the first ten) and passed over, as is a day
/// whose folder cannot be read. An ffmpeg that stands still for a minute ends the work.
class FilmFile final : public SpanWork {
  public:
    /// `control` and `process` are for this alone; all of these outlive it.
    FilmFile(Parts parts, ImageControl& control, Process& process, SettingsStore& store)
        : SpanWork("FilmFile", parts), control_(control), process_(process), store_(store) {}
    ~FilmFile() override;

    /// Replaces `target` if it exists. Nothing happens while it is running.
    void start(DaySpan span, const FilmOptions& options, const std::filesystem::path& target);

    /// The ffmpeg that would be used: the one chosen while it is there, else the one on the
    /// system's search path or beside this program; empty: there is none.
    std::filesystem::path program() const;
    /// Chooses one, for this and all later starts of the program.
    void choose(const std::filesystem::path& program);

    /// What to do when there is no ffmpeg; a sentence without its full stop.
    static constexpr const char* kHowToInstall =
        "Install ffmpeg (Debian, Ubuntu: apt-get install ffmpeg; Windows: put ffmpeg.exe into "
        "the program's folder), or choose where it is";

  private:
    Task<Fault> workOn(std::chrono::local_days day) override;
    Task<Fault> finish() override;
    void close() override;
    static Task<> clear(Clock& clock, std::filesystem::path temporary);
    std::string outcome() const override;
    Task<Fault> askEncoder();
    Task<Fault> add(FiledPicture picture);
    Task<Fault> load(std::filesystem::path file);
    void beginFilm(FilmSize pictures);
    Task<Fault> pipe(std::filesystem::path file);
    Task<Fault> endFfmpeg(Ticks patience);
    void note(const std::filesystem::path& entry, const std::string& fault);
    std::filesystem::path temporary() const;

    ImageControl& control_;
    Process& process_;
    SettingsStore& store_;
    FilmOptions options_;
    std::filesystem::path target_;
    std::string encoder_; ///< empty: not asked yet
    FilmForm form_;       ///< its film has no size before the first picture
    bool begun_ = false;  ///< the temporary may be there
    bool written_ = false;
    std::int64_t minute_ = 0; ///< of the film's last picture
    int frames_ = 0;
    int passedOver_ = 0; ///< pictures
    int unread_ = 0;     ///< days
    Task<> clearing_;    ///< of what a film that was given up has left
};

} // namespace orvane

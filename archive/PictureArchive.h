#pragma once

#include "archive/DayWatch.h"
#include "archive/DiskWatch.h"
#include "archive/RecentCaptures.h"
#include "platform/Files.h"
#include "platform/ImageControl.h"
#include "station/ErrorLog.h"
#include "station/ImageViews.h"
#include "station/Warnings.h"

namespace orvane {

/// How a picture reached the station.
enum class Arrival {
    Capture, ///< the camera's latest picture, in its minute
    Run,     ///< from the camera's store, by a search or synchronisation
    Gap      ///< from the camera's store, for a missed minute
};

/// What became of a picture.
struct Filing {
    enum class Outcome {
        Filed,   ///< under its final name
        Held,    ///< the archive holds these bytes already
        Refused, ///< it is not a whole, sound and new picture
        Failed   ///< it could not be written; logged and warned of
    };
    Outcome outcome = Outcome::Failed;
    std::string fault; ///< why not; empty when it is in the archive

    bool inArchive() const { return outcome == Outcome::Filed || outcome == Outcome::Held; }
};

/// The one way for a picture to get into the data folder. What is filed is a whole, sound picture
/// under its final name, or nothing: its bytes are on the disk before it is given that name. Then
/// it is processed, put into the history, counted, and what went wrong is warned of.
///
/// A capture is never replaced, whatever comes under its name: bytes that a frame of its second
/// holds already are no work, others get the next free frame. The local copy of a stored picture is
/// replaced by each download. A file that holds no whole picture may always be replaced.
///
/// Of data folders only the default one is made; another that is not there is a failure.
class PictureArchive {
  public:
    /// What it works with; all of it outlives the archive.
    struct Parts {
        Module1& module;
        DayWatch& days;
        DiskWatch& disk;
        FileWriter& files;
        ImageControl& imageControl;
        ImageViews& views;
        Warnings& warnings;
        ErrorLog& log;
        Clock& clock;
    };

    explicit PictureArchive(Parts parts) : parts_(parts), recent_(parts.clock) {}

    /// Files `bytes` as `wanted`, D/yyyymmdd/name, in whose place another frame may be taken. The
    /// folders below D are made. Two may be on their way at a time.
    Task<Filing> take(std::string bytes, std::filesystem::path wanted, Arrival arrival);
    /// Forces the names of a run's pictures to the disk; the other arrivals' are at once.
    void flush();

  private:
    Task<Fault> refusal(const std::string& bytes, const std::filesystem::path& wanted,
                        Arrival arrival);
    Fault makeFolders(const std::filesystem::path& datedFolder);
    Fault write(const std::string& bytes, const std::filesystem::path& image);
    Fault forceNames(const std::filesystem::path& datedFolder);
    void removeLeftOvers(const std::filesystem::path& datedFolder);
    Task<Fault> process(std::filesystem::path image);
    void remember(const std::filesystem::path& image, Arrival arrival);
    void count(Arrival arrival);
    void warn(const Fault& trouble);
    Filing failed(const std::filesystem::path& image, const std::string& text);

    Parts parts_;
    RecentCaptures recent_;
    std::filesystem::path unforced_; ///< the run's dated folder while its names are not forced
    std::vector<std::filesystem::path> grown_; ///< folders in which one was made, not forced yet
    std::filesystem::path cleared_; ///< the dated folder whose left-overs were removed last
};

} // namespace orvane

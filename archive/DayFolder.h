#pragma once

#include "archive/DataFolder.h"
#include "archive/DayPlan.h"
#include "platform/Task.h"

#include <functional>

namespace orvane {

/// What one day's dated folder holds, kept up to date: the folder is read when its time of change
/// has moved, and each file is looked at once, when it is seen for the first time. A file that
/// holds no whole picture is none, and is looked at again, since it may be replaced.
class DayFolder {
  public:
    using Reader = std::function<DayListing(const std::filesystem::path&)>;

    explicit DayFolder(Reader reader) : reader_(std::move(reader)) {}

    /// Stands for that folder from now on; nothing of another one is read yet.
    void turnTo(const std::filesystem::path& folder, std::chrono::local_days day);
    /// Reads what has changed. Whether `origins` or `fault` have.
    bool refresh();
    /// How a file is judged: whether it holds a whole picture, or whether it holds anything.
    enum class Look : std::uint8_t { Whole, Size };
    /// Awaited between two slices, with how many files of how many have been looked at.
    using Turn = std::function<Task<>(std::size_t, std::size_t)>;
    /// The first reading of a folder, in slices. Not beside another call.
    Task<> read(Look look, Turn turn);
    /// A whole picture was filed; it counts at once when it lies in this folder.
    void add(const std::filesystem::path& file);

    std::chrono::local_days day() const { return day_; }
    /// By the names of the files: a minute with a capture and a picture of the camera's store
    /// counts as taken.
    const DayPictures& origins() const { return origins_; }
    /// Whole pictures in the order of their names.
    const std::vector<FiledPicture>& pictures() const { return pictures_; }
    /// Why the folder cannot be read. What was known before then still stands, and what is added.
    const Fault& fault() const { return fault_; }

  private:
    DayListing list();
    bool isKnown(const ImageName& name) const;
    void count(const ImageName& name);

    Reader reader_;
    std::chrono::local_days day_{};
    std::filesystem::path folder_;
    std::filesystem::file_time_type changed_; ///< when it was read last
    bool readAgain_ = true; ///< not read yet, or a change might hide behind the same time of change
    std::vector<FiledPicture> pictures_;
    DayPictures origins_{};
    Fault fault_;
};

} // namespace orvane

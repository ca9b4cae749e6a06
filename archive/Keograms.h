#pragma once

#include "archive/DataFolder.h"
#include "archive/DayPlan.h"
#include "platform/ImageControl.h"
#include "station/Busy.h"
#include "station/Module1.h"

#include <list>
#include <map>

namespace orvane {

/// One picture of each minute, in the order of time: a capture before others, then the first.
std::vector<FiledPicture> onePerMinute(const std::vector<FiledPicture>& pictures);

/// Keograms: the middle columns of a day's pictures side by side, in which clouds, twilight and the
/// moon of a whole day are seen at once. The columns of the days that were looked at last stay in
/// memory; on the disk there is nothing.
class Keograms {
  public:
    static constexpr int kRows = 240;
    static constexpr std::uint32_t kGap = 0xff181c20; ///< where there is no picture

    /// What it works with; all of it outlives this.
    struct Parts {
        ImageControl& control; ///< nobody else uses it
        const Module1& module; ///< for the mirroring
        const Busy& busy;
        Clock& clock;
    };

    explicit Keograms(Parts parts) : parts_(parts) {}

    /// Decodes what is not known yet of `pictures`, which lie in one folder. All else goes first:
    /// it waits while the station is busy. One that cannot be decoded is a gap.
    Task<> read(std::vector<FiledPicture> pictures);
    /// Whether `read` would find nothing to do.
    bool isComplete(const std::vector<FiledPicture>& pictures) const;
    /// Grows with every column.
    std::int64_t revision() const { return revision_; }

    /// What is known of `pictures`: a pixel for each minute of `day`, 1440 x `kRows`. A column goes
    /// on until the next due minute or picture.
    Pixels draw(std::chrono::local_days day, const std::vector<FiledPicture>& pictures,
                const DueMinutes& isDue) const;

  private:
    using Column = std::vector<std::uint32_t>; ///< `kRows` from the top; empty: not decodable
    struct Day {
        std::filesystem::path folder;
        bool mirrored;
        std::map<ImageName, Column> columns{};
    };

    bool mirrored() const { return isSet(parts_.module.image.LrFlg); }
    Day& dayOf(const std::filesystem::path& folder);
    const Day* find(const std::filesystem::path& folder) const;
    Task<> read(FiledPicture picture);
    Column middleColumn() const;

    Parts parts_;
    std::list<Day> days_; ///< the one looked at last in front
    bool taken_ = false;  ///< the control
    std::int64_t revision_ = 0;
};

} // namespace orvane

#pragma once

#include "station/Schedule.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace orvane {

/// Bytes free for this user on the disk that holds `folder`, which need not exist yet; nothing when
/// that cannot be told.
std::optional<std::uint64_t> freeBytesOf(const std::filesystem::path& folder);

/// How long the data folder's disk lasts at today's rate: the average size of today's captures
/// times the captures of a day.
class DiskWatch {
  public:
    /// Counts what one capture has written, at `day`.
    void addCapture(std::uint64_t bytes, std::chrono::year_month_day day);
    struct Report {
        /// "123.4 GB free, about 210 days"; without the days while no rate is known.
        std::string caption;
        std::string warning;        ///< below 1 GB or 7 days, else empty
        std::optional<double> days; ///< how long the disk lasts; nothing while no rate is known
    };
    Report report(std::uint64_t freeBytes, const Schedule& schedule);

  private:
    std::optional<double> daysLeft(std::uint64_t freeBytes, const Schedule& schedule);

    std::chrono::year_month_day day_{};
    std::uint64_t bytes_ = 0;
    std::uint64_t captures_ = 0;
    Schedule schedule_; ///< of which `perDay_` is the due minutes
    int perDay_ = 0;
};

} // namespace orvane

#include "station/ErrorLog.h"

#include <cstdio>
#include <fstream>

namespace orvane {

namespace {

std::string logStamp(const Clock& clock) {
    using namespace std::chrono;
    const year_month_day date{floor<days>(clock.now())};
    const WallTime now = clock.now(); // read after the date, as two readings
    const hh_mm_ss time{floor<seconds>(now - floor<days>(now))};
    char text[48];
    const int length = std::snprintf(
        text, sizeof text, "%04d/%02u/%02u %02d:%02d:%02d ", static_cast<int>(date.year()),
        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
        static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
        static_cast<int>(time.seconds().count()));
    return {text, static_cast<std::size_t>(length)};
}

} // namespace

ErrorLog::ErrorLog(const std::filesystem::path& programFolder, Clock& clock, StatusLabel label)
    : file_(programFolder / "ERROR.LOG"), clock_(clock), label_(std::move(label)) {}

bool ErrorLog::write(const std::string& message, bool show) {
    std::ofstream file(file_, std::ios::binary | std::ios::app);
    file << logStamp(clock_) + message + "\r\n";
    file.close();
    writable_ = file.good();
    if (show && label_.setCaption) {
        endFlash();
        flashing_ = flash(message);
        flashing_.start();
    }
    return writable_;
}

Task<> ErrorLog::flash(std::string message) {
    covered_ = label_.caption();
    flashed_ = std::move(message);
    label_.setCaption(flashed_);
    co_await clock_.sleep(10ms);
    endFlash();
}

/// Puts the covered caption back, unless somebody has set another one meanwhile.
void ErrorLog::endFlash() {
    if (flashed_.empty()) return;
    if (label_.caption() == flashed_) label_.setCaption(covered_);
    flashed_.clear();
}

} // namespace orvane

#include "station/ErrorLog.h"

#include "platform/Conversions.h"

#include <fstream>

namespace orvane {

namespace {

/// Date and time are two readings: at midnight the old date may go with the new day's time.
std::string logStamp(const Clock& clock) {
    std::string stamp = dateText(clock.now()) + " ";
    stamp += timeText(clock.now()) + " ";
    return stamp;
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

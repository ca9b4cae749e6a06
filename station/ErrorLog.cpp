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

bool ErrorLog::append(const std::string& message) {
    std::ofstream file(file_, std::ios::binary | std::ios::app);
    file << logStamp(clock_) + message + "\r\n";
    file.close();
    return file.good();
}

/// Only a line that was written shows that the disk takes one: an empty file can also be opened on
/// a full disk.
bool ErrorLog::probe() {
    if (lost_ == 0) return true;
    if (!append("ErrorLog:" + std::to_string(lost_) + " lines could not be written")) return false;
    lost_ = 0;
    return true;
}

bool ErrorLog::write(const std::string& message, bool show) {
    const bool written = probe() && append(message);
    if (!written) ++lost_;
    if (show && label_.setCaption) {
        endFlash();
        flashing_ = flash(message);
        flashing_.start();
    }
    return written;
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

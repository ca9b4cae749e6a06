#pragma once

#include "archive/SpanWork.h"
#include "tests/support/TestPictures.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {

inline std::chrono::local_days november(unsigned day) {
    return std::chrono::floor<std::chrono::days>(at(2006, 11, day));
}

/// A station whose main loop does not run; its data folder is in use.
struct ArchiveStation : TestStation {
    explicit ArchiveStation(WallTime now, FileWriter::Force force = FileWriter::Force::No)
        : TestStation(now, force) {
        panel.Dir1[0].path = dataFolder();
    }

    /// From one hour to another, every so many minutes, as an operator types it.
    void type(int startHour, int endHour, int interval) {
        const int numbers[] = {startHour, 0, endHour, 0, 0, interval, 0};
        for (std::size_t i = 0; i < std::size(numbers); ++i)
            panel.Text1[i].text = std::to_string(numbers[i]);
        module.schedule = {std::chrono::hours(startHour),
                           std::chrono::hours(endHour),
                           std::chrono::minutes(interval),
                           {}};
        module.image.Delay = 0;
    }
    /// Of the dated folder that its name tells.
    std::filesystem::path file(const std::string& name) const {
        return dataFolder() / name.substr(0, 8) / name;
    }
    void write(const std::string& name, const std::string& bytes) const {
        writeFile(file(name), bytes);
    }
    void write(const std::string& name) const { write(name, jpegLike(name)); }
    void finishWork(const SpanWork& work) {
        EXPECT_TRUE(clock.runUntil([&work] { return !work.running; }, 1h));
    }
    SpanWork::Parts forSpans() { return {panel, busy, log, faults, clock}; }
};

} // namespace orvane::test

// Runs the station's main loop for a virtual year: orvane-soak [days]
//
// It runs the default schedule (9:00 to 17:00, every 30 minutes) and then a
// one-minute interval around the clock. It fails when a due picture is missing or doubled, when
// wake-ups pile up or memory grows.

#include "platform/Conversions.h"
#include "tests/support/TestStation.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace {

using namespace orvane;
using namespace orvane::test;

struct Plan {
    std::string startHour, endHour, endMinute, interval;
    std::size_t perDay;
};

/// Resident memory in kB, 0 where the system does not tell.
long residentMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmRSS:")) return std::atol(line.c_str() + 6);
    return 0;
}

/// Checks one finished day and throws its pictures away.
bool dayIsRight(const TestStation& station, WallTime midnight, std::size_t expected) {
    const std::string day = dateDigits(midnight - 1h);
    const std::size_t filed = station.imagesOf(day).size();
    const std::size_t copies = station.imagesOf(day, "Edit").size();
    std::filesystem::remove_all(station.dataFolder() / day);
    std::filesystem::remove_all(station.dataFolder() / "Edit" / day);
    if (filed == expected && copies == expected) return true;
    std::printf("%s: %zu pictures and %zu copies instead of %zu\n", day.c_str(), filed, copies,
                expected);
    return false;
}

bool soak(const Plan& plan, int days) {
    TestStation station(at(2006, 1, 1));
    station.setSchedule(plan.startHour, plan.endHour, plan.interval, plan.endMinute);
    station.start(true);
    std::chrono::duration<double> took{0}; // without the soak's own checks and clearing
    bool right = true;
    long memory = 0;
    std::size_t waiting = 0;
    for (int day = 1; day <= days; ++day) {
        const WallTime midnight = at(2006, 1, 1) + 24h * day;
        const auto begin = std::chrono::steady_clock::now();
        station.clock.runUntil(midnight);
        took += std::chrono::steady_clock::now() - begin;
        right = dayIsRight(station, midnight, plan.perDay) && right;
        if (day == 2) {
            memory = residentMemory();
            waiting = station.clock.pending();
        }
    }
    const long growth = residentMemory() - memory;
    std::printf("%s:00 to %s:%s every %s min: %d days in %.1f s, %.3f s a day, memory +%ld kB\n",
                plan.startHour.c_str(), plan.endHour.c_str(), plan.endMinute.c_str(),
                plan.interval.c_str(), days, took.count(), took.count() / days, growth);
    if (station.countLogged("DownLoad Error") != 0 || station.clock.pending() != waiting ||
        growth > 1024) {
        std::printf("errors logged, wake-ups piled up or memory grew\n");
        right = false;
    }
    return right;
}

} // namespace

int main(int argc, char** argv) {
    const int days = argc > 1 ? std::atoi(argv[1]) : 365;
    if (days < 3) {
        std::fprintf(stderr, "usage: orvane-soak [days, at least 3]\n");
        return 2;
    }
    const Plan plans[] = {{"9", "17", "0", "30", 16}, {"0", "23", "59", "1", 1439}};
    bool right = true;
    for (const Plan& plan : plans)
        right = soak(plan, days) && right;
    return right ? EXIT_SUCCESS : EXIT_FAILURE;
}

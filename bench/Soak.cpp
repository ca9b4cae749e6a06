// Runs the station's main loop for a virtual year: orvane-soak [days]
//
// It runs the default schedule (9:00 to 17:00, every 30 minutes) and then a
// one-minute interval around the clock. It fails when a due picture is missing or doubled, when
// wake-ups pile up or when the heap in use or the resident memory has grown since the warm-up.

#include "platform/Conversions.h"
#include "tests/support/TestStation.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include <malloc.h>
#include <unistd.h>

namespace {

using namespace orvane;
using namespace orvane::test;

struct Plan {
    std::string startHour, endHour, endMinute, interval;
    std::size_t perDay;
};

/// In bytes, for what comes and goes: blocks of the queue of recent captures, the room of lists of
/// files, and the rest of a block that was too small to be divided. The first half of the run is
/// the warm-up, in which the fakes' traces fill up and the heap packs. A leak of the least block
/// each day of the other half of a year is 6 kB.
constexpr long kHeapBound = 4096;
/// Shorter runs do not reach the steady state in which the heap is judged.
constexpr int kHeapDays = 60;
/// In kB. Beyond the heap in use, it is what the allocator keeps in holes.
constexpr long kResidentBound = 512;

/// Bytes of the heap that are in use.
long heapInUse() {
    return static_cast<long>(mallinfo2().uordblks);
}

/// Starts the program anew without the allocator's cache for each thread, whose free blocks would
/// count as in use.
void withoutHeapCache(char** argv) {
    if (std::getenv("GLIBC_TUNABLES") != nullptr) return;
    ::setenv("GLIBC_TUNABLES", "glibc.malloc.tcache_count=0", 1);
    ::execv("/proc/self/exe", argv);
}

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
    const int warmUp = days / 2;
    long memory = 0;
    long heap = 0;
    std::size_t waiting = 0;
    for (int day = 1; day <= days; ++day) {
        const WallTime midnight = at(2006, 1, 1) + 24h * day;
        const auto begin = std::chrono::steady_clock::now();
        station.clock.runUntil(midnight + 30s); // the station has turned to the new day
        took += std::chrono::steady_clock::now() - begin;
        right = dayIsRight(station, midnight, plan.perDay) && right;
        if (day == warmUp) {
            memory = residentMemory();
            heap = heapInUse();
            waiting = station.clock.pending();
        }
    }
    heap = heapInUse() - heap;
    memory = residentMemory() - memory;
    std::printf(
        "%s:00 to %s:%s every %s min: %d days in %.1f s, %.3f s a day; since day %d the heap "
        "in use %+ld bytes, resident memory %+ld kB\n",
        plan.startHour.c_str(), plan.endHour.c_str(), plan.endMinute.c_str(), plan.interval.c_str(),
        days, took.count(), took.count() / days, warmUp, heap, memory);
    if (station.countLogged("DownLoad Error") != 0 || station.clock.pending() != waiting ||
        (days >= kHeapDays && heap > kHeapBound) || memory > kResidentBound) {
        std::printf("errors logged, wake-ups piled up or memory grew\n");
        right = false;
    }
    return right;
}

} // namespace

int main(int argc, char** argv) {
    withoutHeapCache(argv);
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

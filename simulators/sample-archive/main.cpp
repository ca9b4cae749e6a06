// orvane-sample-archive FOLDER [PICTURES]: writes an archive of sixty eventful days that ends now
// into FOLDER, which is made when it does not exist. PICTURES is a folder of JPEG files named by
// the time of day, 0600.jpg, 0610.jpg and so on: each minute gets the nearest one.

#include "simulators/sample-archive/SampleArchive.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <map>

namespace {

using namespace samplearchive;
namespace fs = std::filesystem;

/// By minute of the day.
std::map<int, fs::path> picturesIn(const fs::path& folder) {
    std::map<int, fs::path> pictures;
    for (const auto& entry : fs::directory_iterator(folder)) {
        int hour = 0, minute = 0;
        const std::string name = entry.path().filename().string();
        if (name.size() == 8 && std::sscanf(name.c_str(), "%2d%2d.jpg", &hour, &minute) == 2)
            pictures[hour * 60 + minute] = fs::absolute(entry.path());
    }
    return pictures;
}

/// Gives the nearest picture another name, where the file system can, else copies it.
SampleArchive::Paint paintOf(std::map<int, fs::path> pictures) {
    if (pictures.empty()) return SampleArchive::paintGrey;
    return [pictures = std::move(pictures)](const fs::path& file, int minute) {
        const auto distance = [=](const auto& picture) { return std::abs(picture.first - minute); };
        const fs::path& nearest = std::ranges::min_element(pictures, {}, distance)->second;
        std::error_code error;
        fs::create_hard_link(nearest, file, error);
        if (error) fs::copy_file(nearest, file);
    };
}

} // namespace

int main(int count, char** arguments) try {
    if (count < 2 || count > 3)
        throw std::runtime_error("usage: orvane-sample-archive FOLDER [PICTURES]");
    const fs::path folder = arguments[1];
    fs::create_directories(folder);
    if (!fs::is_empty(folder)) throw std::runtime_error(folder.string() + " is not empty.");
    const std::time_t now = std::time(nullptr);
    const std::tm local = *std::localtime(&now);
    const std::chrono::local_days today(std::chrono::year(local.tm_year + 1900) /
                                        (local.tm_mon + 1) / local.tm_mday);
    const auto pictures = count == 3 ? picturesIn(arguments[2]) : std::map<int, fs::path>();
    const SampleArchive archive(folder, today, paintOf(pictures),
                                local.tm_hour * 60 + local.tm_min);
    std::printf("%s: %d days, the last is %s.\n", arguments[1], kSampleDays,
                archive.days().back().digits.c_str());
    return 0;
} catch (const std::exception& fault) {
    std::fprintf(stderr, "%s\n", fault.what());
    return 1;
}

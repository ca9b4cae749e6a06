// orvane-sample-archive FOLDER [PICTURES]: writes an archive of sixty eventful days that ends now
// into FOLDER, which is made when it does not exist. PICTURES is a folder of JPEG files named by
// the time of day, 0600.jpg, 0610.jpg and so on: each minute gets the nearest one.

#include "tests/support/SampleArchive.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <map>

namespace {

using namespace orvane::test;
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

/// Another name for the same file, where the file system can.
void link(const fs::path& picture, const fs::path& file) {
    std::error_code error;
    fs::create_hard_link(picture, file, error);
    if (error) fs::copy_file(picture, file);
}

SampleArchive::Paint paintOf(std::map<int, fs::path> pictures) {
    if (pictures.empty()) return SampleArchive::paintGrey;
    return [pictures = std::move(pictures)](const fs::path& file, int minute) {
        auto nearest = pictures.begin();
        for (auto picture = pictures.begin(); picture != pictures.end(); ++picture)
            if (std::abs(picture->first - minute) < std::abs(nearest->first - minute))
                nearest = picture;
        link(nearest->second, file);
    };
}

std::chrono::local_days dateOf(const std::tm& time) {
    return std::chrono::local_days(
        std::chrono::year_month_day{std::chrono::year(time.tm_year + 1900),
                                    std::chrono::month(static_cast<unsigned>(time.tm_mon + 1)),
                                    std::chrono::day(static_cast<unsigned>(time.tm_mday))});
}

int write(const fs::path& folder, const fs::path& pictures) {
    fs::create_directories(folder);
    if (!fs::is_empty(folder)) {
        std::fprintf(stderr, "%s is not empty.\n", folder.string().c_str());
        return 1;
    }
    const std::time_t now = std::time(nullptr);
    const std::tm local = *std::localtime(&now);
    const SampleArchive archive(
        folder, dateOf(local),
        paintOf(pictures.empty() ? std::map<int, fs::path>() : picturesIn(pictures)),
        local.tm_hour * 60 + local.tm_min);
    std::printf("%s: %d days, the last is %s.\n", folder.string().c_str(), kSampleDays,
                archive.days().back().digits.c_str());
    return 0;
}

} // namespace

int main(int count, char** arguments) {
    if (count < 2 || count > 3) {
        std::fprintf(stderr, "usage: orvane-sample-archive FOLDER [PICTURES]\n");
        return 2;
    }
    try {
        return write(arguments[1], count == 3 ? arguments[2] : "");
    } catch (const std::exception& fault) {
        std::fprintf(stderr, "%s\n", fault.what());
        return 1;
    }
}

#include "archive/DataFolder.h"

#include "imaging/JpegMarkers.h"
#include "platform/Files.h"
#include "platform/Paths.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <system_error>

namespace orvane {

namespace {

/// The coarsest time stamps of a file system that pictures may be kept on are two seconds apart.
constexpr std::chrono::seconds kCoarseStamp{3};

bool isDatedName(const std::filesystem::path& folder) {
    const std::u8string name = folder.filename().u8string();
    return name.size() == 8 &&
           std::ranges::all_of(name, [](char8_t c) { return c >= u8'0' && c <= u8'9'; });
}

std::string archivePart(const std::filesystem::path& folder) {
    if (dayOfFolder(folder)) return "a day of the archive";
    if (folder.filename() == "Edit") return "the archive's folder of processed copies";
    if (folder.filename() == "Ledger") return "the archive's folder of ledgers";
    return {};
}

std::string placeText(const std::filesystem::path& folder, const std::filesystem::path& part,
                      const std::string& what) {
    const std::string name = utf8FromPath(part.filename());
    if (part == folder) return name + " is " + what;
    return utf8FromPath(folder.filename()) + " lies in " + name + ", " + what;
}

} // namespace

bool isJpegName(const std::filesystem::path& file) {
    std::u8string extension = file.extension().u8string();
    std::ranges::transform(extension, extension.begin(), [](char8_t c) {
        return c >= u8'A' && c <= u8'Z' ? static_cast<char8_t>(c + (u8'a' - u8'A')) : c;
    });
    return extension == u8".jpg" || extension == u8".jpeg";
}

std::filesystem::path datedFolderOf(const std::filesystem::path& dataFolder, WallTime time) {
    return dataFolder / dateDigits(time);
}

std::optional<std::chrono::local_days> firstDayOf(const std::filesystem::path& dataFolder) {
    for (const std::filesystem::path& entry : listFolder(dataFolder).entries)
        if (const auto day = dayOfFolder(entry)) return day;
    return std::nullopt;
}

std::optional<std::chrono::local_days> dayOfFolder(const std::filesystem::path& folder) {
    if (!isDatedName(folder)) return std::nullopt;
    // a day that no calendar knows is none
    const auto name = ImageName::parse(utf8FromPath(folder.filename()) + "_000000_00.jpg");
    if (!name) return std::nullopt;
    return name->day();
}

std::optional<std::string> archivePlace(const std::filesystem::path& folder) {
    const std::filesystem::path whole = folder.has_filename() ? folder : folder.parent_path();
    for (std::filesystem::path part = whole; part.has_relative_path(); part = part.parent_path()) {
        const std::string what = archivePart(part);
        if (!what.empty()) return placeText(whole, part, what);
    }
    return std::nullopt;
}

bool isInDatedFolder(const std::filesystem::path& file) {
    const std::filesystem::path folder = file.parent_path();
    return isDatedName(folder) && folder.parent_path().filename() != "Edit";
}

FolderListing listFolder(const std::filesystem::path& folder) {
    FolderListing listing;
    std::error_code error;
    // a for loop over the folder would throw on a failing increment
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
        listing.entries.push_back(entry->path());
    if (error && error != std::errc::no_such_file_or_directory) listing.fault = error.message();
    std::ranges::sort(listing.entries, {}, &std::filesystem::path::native);
    return listing;
}

std::filesystem::file_time_type changeTime(const std::filesystem::path& folder) {
    std::error_code error;
    const auto time = std::filesystem::last_write_time(folder, error);
    return error ? std::filesystem::file_time_type::min() : time;
}

bool mayHideChange(std::filesystem::file_time_type time) {
    if (time == std::filesystem::file_time_type::min()) return false;
    const auto age = std::filesystem::file_time_type::clock::now() - time;
    return age > -kCoarseStamp && age < kCoarseStamp; // another PC's clock may be ahead
}

DayListing listDay(const std::filesystem::path& datedFolder) {
    FolderListing folder = listFolder(datedFolder);
    DayListing day{{}, std::move(folder.fault)};
    for (std::filesystem::path& entry : folder.entries)
        if (const auto name = ImageName::ofFile(entry))
            day.pictures.push_back({*name, std::move(entry)});
    return day;
}

bool isWholePicture(const std::filesystem::path& file) {
    std::array<char, 2> start{};
    std::array<char, 2> end{};
    std::ifstream stream(file, std::ios::binary);
    stream.read(start.data(), start.size());
    if (!stream || std::string_view(start.data(), 2) != "\xFF\xD8") return false;
    stream.seekg(-2, std::ios::end);
    stream.read(end.data(), end.size());
    if (stream && std::string_view(end.data(), 2) == "\xFF\xD9") return true;
    std::string bytes; // there may be something behind the end
    return !readWholeFile(file, bytes) && isWholeJpeg(bytes);
}

std::vector<std::filesystem::path> newestCaptures(const std::filesystem::path& dataFolder,
                                                  std::size_t count) {
    std::vector<std::filesystem::path> newest;
    const FolderListing days = listFolder(dataFolder);
    for (auto day = days.entries.rbegin(); day != days.entries.rend(); ++day) {
        if (!isDatedName(*day)) continue;
        const DayListing listing = listDay(*day);
        for (auto picture = listing.pictures.rbegin(); picture != listing.pictures.rend();
             ++picture) {
            if (newest.size() == count) return newest;
            if (picture->name.isCapture()) newest.push_back(picture->file);
        }
    }
    return newest;
}

std::filesystem::path neighbourOf(const std::filesystem::path& file, bool forward) {
    std::filesystem::path nearest;
    for (std::filesystem::path& entry : listFolder(file.parent_path()).entries) {
        if (!isJpegName(entry) || entry.filename() == file.filename()) continue;
        const bool after = entry.filename() > file.filename();
        if (after && forward) return entry;
        if (!after) nearest = std::move(entry);
    }
    return forward ? std::filesystem::path() : nearest;
}

} // namespace orvane

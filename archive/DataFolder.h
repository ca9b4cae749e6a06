#pragma once

#include "archive/ImageName.h"
#include "platform/Fault.h"

#include <filesystem>
#include <vector>

namespace orvane {

/// D/yyyymmdd, the folder of a day's pictures below the data folder D.
std::filesystem::path datedFolderOf(const std::filesystem::path& dataFolder, WallTime time);
/// The earliest day that has a folder below a data folder; nothing when none has.
std::optional<std::chrono::local_days> firstDayOf(const std::filesystem::path& dataFolder);
/// The day that a folder is named after, "20061115"; nothing for another name.
std::optional<std::chrono::local_days> dayOfFolder(const std::filesystem::path& folder);
/// What a folder seems to be of an archive, in or below which nobody would have another begin, such
/// as "20061115 is a day of the archive"; nothing for any other. Told from the names alone.
std::optional<std::string> archivePlace(const std::filesystem::path& folder);
/// Whether `file` lies in a dated folder, one named by eight digits, outside the tree of processed
/// copies ("Edit").
bool isInDatedFolder(const std::filesystem::path& file);

/// The entries of a folder in the order of their names. There are three answers: these, none (also
/// when there is no such folder), or a fault, and then `entries` tell nothing.
struct FolderListing {
    std::vector<std::filesystem::path> entries;
    Fault fault;
};
FolderListing listFolder(const std::filesystem::path& folder);

/// When a folder changed; the same value for every one that is not there.
std::filesystem::file_time_type changeTime(const std::filesystem::path& folder);
/// Whether a folder may change once more without its time of change telling: file systems keep
/// coarse times, and this one has just been.
bool mayHideChange(std::filesystem::file_time_type time);

/// A picture of a dated folder.
struct FiledPicture {
    ImageName name;
    std::filesystem::path file;
};
/// The pictures of a dated folder in the order of their names; answers as `FolderListing` does.
struct DayListing {
    std::vector<FiledPicture> pictures;
    Fault fault;
};
DayListing listDay(const std::filesystem::path& datedFolder);

/// Whether a file is named as JPEG files are: ".jpg" or ".jpeg", in small letters or capitals.
bool isJpegName(const std::filesystem::path& file);
/// Whether a file holds a whole picture: it has a JPEG's start and end. A file that a power cut has
/// left empty, cut or full of zeros has not.
bool isWholePicture(const std::filesystem::path& file);

/// The newest captures below a data folder, newest first, whatever their days; `count` at most.
/// What cannot be read is passed over.
std::vector<std::filesystem::path> newestCaptures(const std::filesystem::path& dataFolder,
                                                  std::size_t count);

/// The JPEG file that comes after (`forward`) or before `file` in its folder, in the order of their
/// names; empty where there is none. `file` itself need not exist any more.
std::filesystem::path neighbourOf(const std::filesystem::path& file, bool forward);

} // namespace orvane

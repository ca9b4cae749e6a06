#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>

namespace orvane::test {

/// A new empty folder; removed at the end.
class TempFolder {
  public:
    explicit TempFolder(const std::filesystem::path& root = inMemory()) {
        path_ = root / ("orvane-test-" + std::to_string(std::random_device{}()));
        std::filesystem::create_directory(path_);
    }
    TempFolder(const TempFolder&) = delete;
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    const std::filesystem::path& path() const { return path_; }

    /// Where new folders are made: in memory, where the system has such a place.
    static std::filesystem::path inMemory() {
        const std::filesystem::path memory = "/dev/shm";
        return std::filesystem::exists(memory) ? memory : std::filesystem::temp_directory_path();
    }

  private:
    std::filesystem::path path_;
};

/// Empty for a file that is not there.
inline std::string contentsOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}
/// Makes the file's folder as well.
inline void writeFile(const std::filesystem::path& file, const std::string& bytes) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
}
/// Every file and folder below, relative, sorted; none where there is no such folder.
inline std::vector<std::string> listing(const std::filesystem::path& folder) {
    std::vector<std::string> found;
    std::error_code missing;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, missing))
        found.push_back(entry.path().lexically_relative(folder).generic_string());
    std::ranges::sort(found);
    return found;
}

} // namespace orvane::test

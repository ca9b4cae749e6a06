#pragma once

#include <cstdlib>
#include <filesystem>
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

} // namespace orvane::test

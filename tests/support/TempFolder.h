#pragma once

#include <cstdlib>
#include <filesystem>
#include <random>

namespace orvane::test {

/// A new empty folder, in memory where the system has such a place; removed at the end.
class TempFolder {
  public:
    TempFolder() {
        const std::filesystem::path inMemory = "/dev/shm";
        const auto root =
            std::filesystem::exists(inMemory) ? inMemory : std::filesystem::temp_directory_path();
        path_ = root / ("orvane-test-" + std::to_string(std::random_device{}()));
        std::filesystem::create_directory(path_);
    }
    TempFolder(const TempFolder&) = delete;
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

} // namespace orvane::test

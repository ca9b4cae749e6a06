#include "tests/support/FolderTime.h"

namespace orvane::test {

void setFolderTime(const std::filesystem::path& folder, std::filesystem::file_time_type time) {
    std::filesystem::last_write_time(folder, time);
}

} // namespace orvane::test

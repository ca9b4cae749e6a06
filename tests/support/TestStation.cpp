#include "tests/support/TestStation.h"

namespace orvane::test {

TestStation::TestStation(WallTime start, FileWriter::Force force, const std::filesystem::path& root)
    : folder(root), clock(start), files(force) {
    module.programFolder = folder.path() / "program";
    std::filesystem::create_directory(module.programFolder);
    store.values["DataPath/PathDataFile"] = utf8FromPath(dataFolder());
    store.values["Settings/Delay"] = "0";
    store.values["Settings/AdjTime"] = "0"; // no daily clock setting unless a test wants it
    std::filesystem::create_directory(dataFolder());
}

TestStation::~TestStation() = default;

std::vector<std::string> TestStation::logged() const {
    constexpr std::size_t kStampLength = 20;
    std::vector<std::string> messages;
    std::ifstream file(module.programFolder / "ERROR.LOG", std::ios::binary);
    for (std::string line; std::getline(file, line);)
        messages.push_back(line.substr(kStampLength, line.size() - kStampLength - 1)); // no CR
    return messages;
}

} // namespace orvane::test

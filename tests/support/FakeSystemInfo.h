#pragma once

#include "platform/SystemInfo.h"

#include <map>
#include <set>
#include <vector>

namespace orvane::test {

/// A registry and programs that are a test's to fill; `asked` traces the registry's questions.
class FakeSystemInfo final : public SystemInfo {
  public:
    std::string GetKeyValue(const std::string& key, const std::string& value) const override {
        asked.push_back(key + " " + value);
        const auto found = registry.find(asked.back());
        return found == registry.end() ? std::string() : found->second;
    }
    bool fileExists(const std::filesystem::path& file) const override {
        return files.contains(file.string());
    }
    bool start(const std::filesystem::path& program) override {
        started.push_back(program.string());
        return files.contains(started.back());
    }

    std::map<std::string, std::string> registry; ///< by key, blank, value
    std::set<std::string> files;
    mutable std::vector<std::string> asked;
    std::vector<std::string> started;
};

} // namespace orvane::test

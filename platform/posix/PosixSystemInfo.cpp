#include "platform/SystemInfo.h"

namespace orvane {

namespace {

/// There is neither a registry nor a system-information tool.
class PosixSystemInfo final : public SystemInfo {
  public:
    std::string GetKeyValue(const std::string&, const std::string&) const override { return {}; }
    bool fileExists(const std::filesystem::path& file) const override {
        std::error_code error;
        return std::filesystem::exists(file, error);
    }
    bool start(const std::filesystem::path&) override { return false; }
};

} // namespace

std::unique_ptr<SystemInfo> makeSystemInfo() {
    return std::make_unique<PosixSystemInfo>();
}

} // namespace orvane

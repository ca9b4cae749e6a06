#pragma once

#include "platform/SystemInfo.h"

namespace orvane {

/// The registry below HKEY_LOCAL_MACHINE, and the shell that starts programs.
class Win32SystemInfo : public SystemInfo {
  public:
    /// Opens the key with full access, which Windows grants to administrators only: for other
    /// users every value is empty.
    std::string GetKeyValue(const std::string& key, const std::string& value) const override;
    bool fileExists(const std::filesystem::path& file) const override;
    bool start(const std::filesystem::path& program) override;
};

} // namespace orvane

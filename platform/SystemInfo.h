#pragma once

#include <filesystem>
#include <memory>
#include <string>

namespace orvane {

/// The system's registry and its programs, as far as the about box needs them.
class SystemInfo {
  public:
    virtual ~SystemInfo() = default;
    /// One value below the local-machine root as text; empty when key or value cannot be read, or
    /// where there is no registry. A string is cut at its first NUL, a 32-bit number is its decimal
    /// text. `key` is separated by "\".
    virtual std::string GetKeyValue(const std::string& key, const std::string& value) const = 0;
    virtual bool fileExists(const std::filesystem::path& file) const = 0;
    /// Starts a program in a normal window with the focus and does not wait for it. False when it
    /// could not be started.
    virtual bool start(const std::filesystem::path& program) = 0;
};

std::unique_ptr<SystemInfo> makeSystemInfo();

} // namespace orvane

#pragma once

#include "platform/Fault.h"

#include <string>

namespace orvane {

/// Texts kept from one run to the next under the application "Orvane", by section and key.
class SettingsStore {
  public:
    virtual ~SettingsStore() = default;
    /// Why what is stored cannot be read, or nothing. Every setting then reads as its fallback, and
    /// none can be saved: that would lose what is there.
    virtual Fault unreadable() const { return std::nullopt; }
    /// The stored text, or `fallback` when section or key does not exist.
    virtual std::string GetSetting(const std::string& section, const std::string& key,
                                   const std::string& fallback) const = 0;
    /// Creates or replaces a value; it is on disk when the call returns. False: it could not be
    /// stored.
    virtual bool SaveSetting(const std::string& section, const std::string& key,
                             const std::string& value) = 0;
};

} // namespace orvane

#pragma once

#include "platform/SettingsStore.h"

#include <QSettings>

namespace orvane {

/// The per-user store: the registry key HKEY_CURRENT_USER\Software\Orvane where there is a
/// registry, else the file Orvane/Orvane.ini in the user's configuration folder.
class QtSettingsStore final : public SettingsStore {
  public:
    QtSettingsStore();
    /// A store in the INI file `file`, for tests.
    explicit QtSettingsStore(const QString& file);

    std::string GetSetting(const std::string& section, const std::string& key,
                           const std::string& fallback) const override;
    bool SaveSetting(const std::string& section, const std::string& key,
                     const std::string& value) override;

  private:
    QSettings settings_;
};

} // namespace orvane

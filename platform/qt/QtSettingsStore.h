#pragma once

#include "platform/SettingsStore.h"

#include <QSettings>

#include <functional>
#include <memory>

namespace orvane {

/// The per-user store: the registry key HKEY_CURRENT_USER\Software\Orvane where there is a
/// registry, else the file Orvane/Orvane.ini in the user's configuration folder, which nobody else
/// may read.
class QtSettingsStore final : public SettingsStore {
  public:
    QtSettingsStore();
    /// A store in the INI file `file`, for tests.
    explicit QtSettingsStore(const QString& file);

    Fault unreadable() const override { return unreadable_; }
    std::string GetSetting(const std::string& section, const std::string& key,
                           const std::string& fallback) const override;
    bool SaveSetting(const std::string& section, const std::string& key,
                     const std::string& value) override;

  private:
    using Maker = std::function<std::unique_ptr<QSettings>()>;

    explicit QtSettingsStore(Maker maker);
    void open();

    Maker maker_;
    std::unique_ptr<QSettings> settings_;
    Fault unreadable_;
    bool unsaved_ = false; ///< the last save failed: what is in memory is not on the disk
};

} // namespace orvane

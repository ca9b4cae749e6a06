#pragma once

#include "platform/SettingsStore.h"
#include "station/Module1.h"
#include "station/OperationPanel.h"

#include <optional>
#include <string>

namespace orvane {

/// Loads the stored settings into the panel and the shared state, and saves them back.
class PanelSettings {
  public:
    /// `defaultDataFolder` is shown while no data folder is stored or the stored one is gone.
    PanelSettings(Module1& module, OperationPanel& panel, SettingsStore& store,
                  std::filesystem::path defaultDataFolder)
        : module_(module), panel_(panel), store_(store),
          defaultDataFolder_(std::move(defaultDataFolder)) {}

    /// Loads every setting. Returns which key holds which text when a number cannot be read; the
    /// settings before it are loaded then, the rest is not.
    std::optional<std::string> initOperation();
    /// Saves every setting as it stands. False: at least one could not be stored. Nothing is
    /// saved while the stored settings could not be read: that would lose them.
    bool writeSetup();

    /// The data folder was chosen: shows and stores it.
    void selectDataFolder(const std::filesystem::path& folder);
    /// After the folder list's path changed: stores it.
    void Dir1_Change();
    void chk_time_Click();

    /// After an edit of a site field: a number takes effect at once. False: the text is not a
    /// usable number (latitude -90 to 90, longitude -180 to 180 degrees, zone -12 to 14 hours) and
    /// the value in force stays.
    bool txt_lat_Change();
    bool txt_long_Change();
    bool txt_tz_Change();
    /// Shows the values in force, after an edit that left something else in a site field.
    void showSite();

  private:
    Module1& module_;
    OperationPanel& panel_;
    SettingsStore& store_;
    std::filesystem::path defaultDataFolder_;
    bool loaded_ = false;
};

} // namespace orvane

#pragma once

#include "platform/SettingsStore.h"
#include "station/Module1.h"
#include "station/OperationPanel.h"

#include <filesystem>
#include <functional>

namespace orvane {

/// Loads the stored settings into the panel and the shared state, and saves them back.
class PanelSettings {
  public:
    /// `defaultDataFolder` is used while no data folder is chosen or the chosen one is gone.
    PanelSettings(Module1& module, OperationPanel& panel, SettingsStore& store,
                  std::filesystem::path defaultDataFolder)
        : module_(module), panel_(panel), store_(store) {
        module_.defaultDataFolder = std::move(defaultDataFolder);
    }

    /// Loads every setting. Returns which key holds which text when a number cannot be read; the
    /// settings before it are loaded then, the rest is not.
    Fault initOperation();
    /// Saves every setting as it stands. False: at least one could not be stored. Nothing is
    /// saved while the stored settings could not be read: that would lose them.
    bool writeSetup();
    /// Which stored values of the site were no place's on earth, so that their defaults are in
    /// force; empty: none, or another site has come since.
    std::string impossibleSite() const {
        return module_.site == mendedSite_ ? impossibleSite_ : std::string();
    }
    /// Why the stored settings cannot be read, or nothing.
    Fault unreadable() const { return store_.unreadable(); }

    /// The data folder was chosen: shows and stores it.
    void selectDataFolder(const std::filesystem::path& folder);
    /// After another data folder was chosen: stores it.
    void Dir1_Change();
    /// Has the chosen data folder used while it is there, and the default one meanwhile: a disk or
    /// a network may go and come at any time. To be called about once a minute. Answers what is to
    /// be told while the chosen one is not there.
    Fault followDataFolder();
    /// Switches the copy of the latest picture beside the status page, and stores that at once.
    /// False: it could not be stored; the switch holds all the same.
    bool keepLatestCopy(bool on);
    /// Stores at once whether the window follows the sun. False: it could not be stored.
    bool keepFollowSun();
    void chk_time_Click();

    /// After an edit of a site field: a number takes effect at once. False: the text is not a
    /// usable number (latitude -90 to 90, longitude -180 to 180 degrees, zone -12 to 14 hours) and
    /// the value in force stays. The site is in edit until `showSite`.
    bool txt_lat_Change();
    bool txt_long_Change();
    bool txt_tz_Change();
    /// Shows the values in force, after an edit that left something else in a site field, and
    /// whether the zone fits the longitude.
    void showSite();
    /// Called when a field has changed the site, and when a field that was edited has been left.
    std::function<void()> siteEdited;

  private:
    void mendSite();
    bool edited(bool taken);

    Module1& module_;
    OperationPanel& panel_;
    SettingsStore& store_;
    std::filesystem::path chosenFolder_; ///< empty: none was ever chosen
    bool folderStored_ = true;
    bool loaded_ = false;
    std::string impossibleSite_;
    SiteValues mendedSite_;
};

} // namespace orvane

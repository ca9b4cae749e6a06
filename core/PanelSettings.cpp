#include "core/PanelSettings.h"

#include "platform/Conversions.h"
#include "platform/Paths.h"

#include <algorithm>
#include <utility>
#include <variant>
#include <vector>

namespace orvane {

namespace {

constexpr const char* kFolderSection = "DataPath";
constexpr const char* kFolderKey = "PathDataFile";
constexpr const char* kStationSection = "Station";
constexpr const char* kLatestCopyKey = "LatestCopy";
constexpr const char* kFollowSunKey = "FollowSun";

/// Hours between the zone and the sun that summer time and wide zones explain.
constexpr double kMostBesideSun = 3;

/// Replaces `value` by what was read; false when nothing was.
template <class Number>
bool take(std::optional<Number> read, Number& value) {
    if (read) value = *read;
    return read.has_value();
}

/// A schedule field and the spinner beside it.
struct Field {
    TextBox* box;
    Spinner* spinner;
};
struct Flag {
    std::int16_t* value;
};
/// What a stored text stands for, in the order of loading: all that may be no number comes before
/// the flags and texts, which a fault leaves as they are.
using Target = std::variant<Field, double*, std::int16_t*, Flag, Value<bool>*, Value<std::string>*>;

struct Setting {
    const char* section;
    const char* key;
    const char* fallback; ///< its text while nothing is stored
    Target target;
};

/// Takes a setting's text; false: it is not usable.
struct Load {
    const std::string& text;

    bool operator()(Field field) const {
        field.box->text = text;
        const double value = leadingNumber(text);
        if (value >= 0 && value <= 59) field.spinner->value = static_cast<int>(value);
        return true;
    }
    bool operator()(double* value) const { return take(toDouble(text), *value); }
    bool operator()(std::int16_t* value) const { return take(toInt16(text), *value); }
    bool operator()(Flag flag) const {
        *flag.value = asFlag(text != "0");
        return true;
    }
    bool operator()(Value<bool>* ticked) const {
        *ticked = text != "0";
        return true;
    }
    bool operator()(Value<std::string>* value) const {
        *value = text;
        return true;
    }
};

/// A setting as it stands, as the text to store.
struct Save {
    std::string operator()(Field field) const { return field.box->text; }
    std::string operator()(const double* value) const { return toText(*value); }
    std::string operator()(const std::int16_t* value) const { return std::to_string(*value); }
    std::string operator()(Flag flag) const { return isSet(*flag.value) ? "1" : "0"; }
    std::string operator()(const Value<bool>* ticked) const { return *ticked ? "1" : "0"; }
    std::string operator()(const Value<std::string>* value) const { return *value; }
};

/// Every setting that `writeSetup` saves, in the order of saving.
std::vector<Setting> settingsOf(Module1& module, OperationPanel& panel) {
    SiteValues& site = module.site;
    ImageOptions& image = module.image;
    const auto field = [&](std::size_t index) {
        return Field{&panel.Text1[index], &panel.UpDown1[index]};
    };
    return {{"Operation", "StartHour", "9", field(0)},
            {"Operation", "StartMinute", "0", field(1)},
            {"Operation", "EndHour", "17", field(2)},
            {"Operation", "EndMinute", "0", field(3)},
            {"Operation", "IntervalMinute", "30", field(5)},
            {"Operation", "IntervalSecond", "00", field(6)},
            {"Operation", "Latitude", "35.738", &site.latitude},
            {"Operation", "Longitude", "139.315", &site.longitude},
            {"Operation", "Tz", "540", &site.Tz},
            {"Settings", "Quality", "24", &image.Quality},
            {"Settings", "LrFlg", "0", Flag{&image.LrFlg}},
            {"Settings", "DateFlg", "0", Flag{&image.DateFlg}},
            {"Settings", "Delay", "15", &image.Delay},
            {"Settings", "JpegTyp", "10", &image.JpegTyp},
            {"Settings", "RawFlg", "0", Flag{&image.RawFlg}},
            {"Settings", "AdjTime", "1", &module.AdjTime},
            {"Settings", "FillGaps", "1", &panel.chk_fill.ticked},
            {"Settings", "IP", "192.168.0.10", &panel.txtIp.text},
            {"Settings", "IP-Port", "80", &panel.txtPort.text}};
}

} // namespace

Fault PanelSettings::initOperation() {
    std::vector<Setting> settings = settingsOf(module_, panel_);
    std::ranges::stable_sort(settings, {}, [](const Setting& s) { return s.target.index(); });
    for (const auto& [section, key, fallback, target] : settings) {
        const std::string text = store_.GetSetting(section, key, fallback);
        if (!std::visit(Load{text}, target))
            return std::string("The stored setting ") + section + " / " + key + " holds \"" + text +
                   "\", which is not a usable number. Correct or remove that entry, then start "
                   "again.";
    }
    mendSite();
    showSite();
    panel_.chk_time.ticked = module_.AdjTime != 0;

    chosenFolder_ = pathFromUtf8(store_.GetSetting(kFolderSection, kFolderKey, ""));
    followDataFolder();
    panel_.Dir1[1].path = panel_.Dir1[0].path.get();
    module_.latestCopy = store_.GetSetting(kStationSection, kLatestCopyKey, "0") == "1";
    panel_.chk_sun.ticked = store_.GetSetting(kStationSection, kFollowSunKey, "0") == "1";
    loaded_ = true;
    return std::nullopt;
}

bool PanelSettings::writeSetup() {
    if (!loaded_) return true;
    bool stored = true;
    for (const auto& [section, key, fallback, target] : settingsOf(module_, panel_))
        stored = store_.SaveSetting(section, key, std::visit(Save{}, target)) && stored;
    if (!folderStored_) Dir1_Change();
    return stored && folderStored_;
}

void PanelSettings::selectDataFolder(const std::filesystem::path& folder) {
    chosenFolder_ = folder;
    panel_.Dir1[0].path = folder;
    Dir1_Change();
}

void PanelSettings::Dir1_Change() {
    folderStored_ = store_.SaveSetting(kFolderSection, kFolderKey, utf8FromPath(chosenFolder_));
}

Fault PanelSettings::followDataFolder() {
    const std::filesystem::path& standIn = module_.defaultDataFolder;
    const bool chosen = !chosenFolder_.empty() && chosenFolder_ != standIn;
    std::error_code error;
    const bool isThere = chosen && std::filesystem::is_directory(chosenFolder_, error);
    panel_.Dir1[0].path = isThere ? chosenFolder_ : standIn;
    if (isThere || !chosen) return std::nullopt;
    return "The data folder " + utf8FromPath(chosenFolder_) + " is not there. Pictures go to " +
           utf8FromPath(standIn) + " meanwhile.";
}

bool PanelSettings::keepLatestCopy(bool on) {
    module_.latestCopy = on;
    return store_.SaveSetting(kStationSection, kLatestCopyKey, on ? "1" : "0");
}

bool PanelSettings::keepFollowSun() {
    return store_.SaveSetting(kStationSection, kFollowSunKey, panel_.chk_sun.ticked ? "1" : "0");
}

void PanelSettings::chk_time_Click() {
    module_.AdjTime = panel_.chk_time.ticked ? 1 : 0;
}

bool PanelSettings::txt_lat_Change() {
    const auto degrees = toDouble(panel_.txt_lat.text.get());
    return edited(degrees && isLatitude(*degrees) && take(degrees, module_.site.latitude));
}

bool PanelSettings::txt_long_Change() {
    const auto degrees = toDouble(panel_.txt_long.text.get());
    return edited(degrees && isLongitude(*degrees) && take(degrees, module_.site.longitude));
}

bool PanelSettings::txt_tz_Change() {
    const auto hours = toInt16(panel_.txt_tz.text.get());
    const bool taken = hours && isZone(*hours * 60);
    if (taken) module_.site.Tz = static_cast<std::int16_t>(*hours * 60);
    return edited(taken);
}

bool PanelSettings::edited(bool taken) {
    module_.siteInEdit = true;
    if (taken && siteEdited) siteEdited();
    return taken;
}

void PanelSettings::showSite() {
    const SiteValues& site = module_.site;
    panel_.txt_lat.text = toText(site.latitude);
    panel_.txt_long.text = toText(site.longitude);
    panel_.txt_tz.text = toText(site.Tz / 60.0);
    panel_.lbl_zone.caption = hoursBesideSun(site) <= kMostBesideSun
                                  ? std::string()
                                  : "Zone " + toText(site.Tz / 60.0) + " does not fit longitude " +
                                        toText(site.longitude) +
                                        ": the sun times will be wrong by hours.";
    if (std::exchange(module_.siteInEdit, false) && siteEdited) siteEdited();
}

/// An impossible value must not keep the station from recording. The settings keep it until they
/// are stored the next time.
void PanelSettings::mendSite() {
    const SiteValues byDefault;
    SiteValues& site = module_.site;
    const auto mend = [this](bool possible, auto& value, auto instead, const char* name,
                             const std::string& text) {
        if (possible) return;
        value = instead;
        impossibleSite_ += (impossibleSite_.empty() ? "" : " ") + std::string("The stored ") +
                           name + " " + text + " is no place's on earth; " + toText(instead) +
                           " is in force instead.";
    };
    impossibleSite_.clear();
    mend(isLatitude(site.latitude), site.latitude, byDefault.latitude, "latitude",
         toText(site.latitude));
    mend(isLongitude(site.longitude), site.longitude, byDefault.longitude, "longitude",
         toText(site.longitude));
    mend(isZone(site.Tz), site.Tz, byDefault.Tz, "zone", std::to_string(site.Tz));
    mendedSite_ = site;
}

} // namespace orvane

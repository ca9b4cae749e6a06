#include "core/PanelSettings.h"

#include "platform/Conversions.h"
#include "platform/Paths.h"

#include <array>
#include <cmath>
#include <utility>

namespace orvane {

namespace {

/// The schedule fields that are stored, in the order of loading and saving.
struct StoredField {
    std::size_t index;
    const char* key;
    const char* fallback;
};
constexpr std::array<StoredField, 6> kStoredFields{{{0, "StartHour", "9"},
                                                    {1, "StartMinute", "0"},
                                                    {2, "EndHour", "17"},
                                                    {3, "EndMinute", "0"},
                                                    {5, "IntervalMinute", "30"},
                                                    {6, "IntervalSecond", "00"}}};

/// Reads typed values from the store; remembers the first text that could not be read.
class Reader {
  public:
    explicit Reader(const SettingsStore& store) : store_(store) {}

    std::string text(const char* section, const char* key, const char* fallback) const {
        return store_.GetSetting(section, key, fallback);
    }
    bool flag(const char* key) const { return text("Settings", key, "0") != "0"; }
    void number(const char* section, const char* key, const char* fallback, double& value) {
        convert(section, key, fallback, value, toDouble);
    }
    void number(const char* section, const char* key, const char* fallback, std::int16_t& value) {
        convert(section, key, fallback, value, toInt16);
    }
    const std::optional<std::string>& fault() const { return fault_; }

  private:
    template <class T>
    void convert(const char* section, const char* key, const char* fallback, T& value,
                 std::optional<T> (*read)(std::string_view)) {
        if (fault_) return;
        const std::string stored = text(section, key, fallback);
        if (const std::optional<T> converted = read(stored)) {
            value = *converted;
            return;
        }
        fault_ = std::string("The stored setting ") + section + " / " + key + " holds \"" + stored +
                 "\", which is not a usable number.";
    }

    const SettingsStore& store_;
    std::optional<std::string> fault_;
};

std::int16_t asFlag(bool set) {
    return set ? -1 : 0;
}
const char* flagText(std::int16_t flag) {
    return flag != 0 ? "1" : "0";
}

} // namespace

std::optional<std::string> PanelSettings::initOperation() {
    Reader reader(store_);
    for (const auto& [index, key, fallback] : kStoredFields) {
        panel_.Text1[index].text = reader.text("Operation", key, fallback);
        const double value = leadingNumber(panel_.Text1[index].text.get());
        if (value >= 0 && value <= 59) panel_.UpDown1[index].value = static_cast<int>(value);
    }
    reader.number("Operation", "Latitude", "35.738", module_.site.latitude);
    reader.number("Operation", "Longitude", "139.315", module_.site.longitude);
    reader.number("Operation", "Tz", "540", module_.site.Tz);
    reader.number("Settings", "Quality", "24", module_.image.Quality);
    reader.number("Settings", "Delay", "15", module_.image.Delay);
    reader.number("Settings", "JpegTyp", "10", module_.image.JpegTyp);
    reader.number("Settings", "AdjTime", "1", module_.AdjTime);
    if (reader.fault()) return reader.fault();

    showSite();
    module_.image.LrFlg = asFlag(reader.flag("LrFlg"));
    module_.image.DateFlg = asFlag(reader.flag("DateFlg"));
    module_.image.RawFlg = asFlag(reader.flag("RawFlg"));
    panel_.chk_time.ticked = module_.AdjTime != 0;
    panel_.chk_fill.ticked = reader.text("Settings", "FillGaps", "1") != "0";
    panel_.txtIp.text = reader.text("Settings", "IP", "192.168.0.10");
    panel_.txtPort.text = reader.text("Settings", "IP-Port", "80");

    const auto folder = pathFromUtf8(reader.text("DataPath", "PathDataFile", ""));
    std::error_code error;
    const bool usable = !folder.empty() && std::filesystem::is_directory(folder, error);
    panel_.Dir1[0].path = usable ? folder : defaultDataFolder_;
    panel_.Dir1[1].path = panel_.Dir1[0].path.get();
    loaded_ = true;
    return std::nullopt;
}

bool PanelSettings::writeSetup() {
    if (!loaded_) return true;
    bool stored = true;
    const auto save = [&](const char* section, const char* key, const std::string& value) {
        stored = store_.SaveSetting(section, key, value) && stored;
    };
    for (const auto& [index, key, fallback] : kStoredFields)
        save("Operation", key, panel_.Text1[index].text);
    save("Operation", "Latitude", toText(module_.site.latitude));
    save("Operation", "Longitude", toText(module_.site.longitude));
    save("Operation", "Tz", std::to_string(module_.site.Tz));
    save("Settings", "Quality", std::to_string(module_.image.Quality));
    save("Settings", "LrFlg", flagText(module_.image.LrFlg));
    save("Settings", "DateFlg", flagText(module_.image.DateFlg));
    save("Settings", "Delay", std::to_string(module_.image.Delay));
    save("Settings", "JpegTyp", std::to_string(module_.image.JpegTyp));
    save("Settings", "RawFlg", flagText(module_.image.RawFlg));
    save("Settings", "AdjTime", std::to_string(module_.AdjTime));
    save("Settings", "FillGaps", panel_.chk_fill.ticked ? "1" : "0");
    save("Settings", "IP", panel_.txtIp.text);
    save("Settings", "IP-Port", panel_.txtPort.text);
    return stored;
}

void PanelSettings::selectDataFolder(const std::filesystem::path& folder) {
    panel_.Dir1[0].path = folder;
    Dir1_Change();
}

void PanelSettings::Dir1_Change() {
    store_.SaveSetting("DataPath", "PathDataFile", utf8FromPath(panel_.Dir1[0].path));
}

void PanelSettings::chk_time_Click() {
    module_.AdjTime = panel_.chk_time.ticked ? 1 : 0;
}

bool PanelSettings::txt_lat_Change() {
    const auto value = toDouble(panel_.txt_lat.text.get());
    if (value) module_.site.latitude = *value;
    return value.has_value();
}

bool PanelSettings::txt_long_Change() {
    const auto value = toDouble(panel_.txt_long.text.get());
    if (value) module_.site.longitude = *value;
    return value.has_value();
}

bool PanelSettings::txt_tz_Change() {
    const auto hours = toInt16(panel_.txt_tz.text.get());
    // the product must fit 16 bits too
    if (!hours || *hours < INT16_MIN / 60 || *hours > INT16_MAX / 60) return false;
    module_.site.Tz = static_cast<std::int16_t>(*hours * 60);
    return true;
}

void PanelSettings::showSite() {
    panel_.txt_lat.text = toText(module_.site.latitude);
    panel_.txt_long.text = toText(module_.site.longitude);
    panel_.txt_tz.text = toText(module_.site.Tz / 60.0);
}

} // namespace orvane

#include "platform/Conversions.h"
#include "platform/qt/QtSettingsStore.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

#include <fstream>

namespace orvane::test {
namespace {

TEST(PanelSettings, FirstRunShowsTheDefaults) {
    TestStation s(at(2006, 11, 15));
    s.store.values.clear();
    s.start(false);
    const char* const texts[] = {"9", "0", "17", "0", "", "30", "00"};
    for (std::size_t i = 0; i < std::size(texts); ++i)
        EXPECT_EQ(s.panel.Text1[i].text.get(), texts[i]) << i;
    EXPECT_EQ(s.panel.txt_lat.text.get(), "35.738");
    EXPECT_EQ(s.panel.txt_long.text.get(), "139.315");
    EXPECT_EQ(s.panel.txt_tz.text.get(), "9");
    EXPECT_EQ(s.panel.txtIp.text.get(), "192.168.0.10");
    EXPECT_EQ(s.panel.txtPort.text.get(), "80");
    EXPECT_TRUE(s.panel.chk_time.ticked);
    EXPECT_EQ(s.panel.Dir1[0].path.get(), s.folder.path() / "pictures" / "Orvane");
    EXPECT_FALSE(s.store.values.contains("DataPath/PathDataFile"));
}

/// Whatever is stored, start-up clears the stamp and mirror options and chooses 4:4:4.
TEST(PanelSettings, SavesWhatIsInForceAfterTheStartUpOverrides) {
    TestStation s(at(2006, 11, 15));
    for (const auto& [key, text] : {std::pair{"Settings/LrFlg", "2"},
                                    {"Settings/DateFlg", "1"},
                                    {"Settings/RawFlg", "yes"},
                                    {"Settings/JpegTyp", "10"},
                                    {"Settings/Quality", "2.5"},
                                    {"Settings/AdjTime", "0"},
                                    {"Operation/Tz", "-210"},
                                    {"Operation/Latitude", " -33.5 "},
                                    {"Operation/StartHour", "any text"}})
        s.store.values[key] = text;
    s.start(false);
    EXPECT_EQ(s.panel.txt_tz.text.get(), "-3.5");
    EXPECT_FALSE(s.panel.chk_time.ticked);
    EXPECT_TRUE(s.settings.writeSetup());
    for (const auto& [key, text] : {std::pair{"Settings/LrFlg", "0"},
                                    {"Settings/DateFlg", "0"},
                                    {"Settings/RawFlg", "1"},
                                    {"Settings/JpegTyp", "98"},
                                    {"Settings/Quality", "2"}, // ties go to the even number
                                    {"Settings/AdjTime", "0"},
                                    {"Operation/Tz", "-210"},
                                    {"Operation/Latitude", "-33.5"},
                                    {"Operation/StartHour", "any text"}})
        EXPECT_EQ(s.store.values[key], text) << key;
}

TEST(PanelSettings, AnUnreadableNumberEndsTheProgramWithItsKeyAndText) {
    for (const char* key :
         {"Operation/Latitude", "Operation/Longitude", "Operation/Tz", "Settings/Quality",
          "Settings/Delay", "Settings/JpegTyp", "Settings/AdjTime"})
        for (const char* text : {"", "12x", "1,5", "inf"}) {
            TestStation s(at(2006, 11, 15));
            s.store.values[key] = text;
            s.start(true);
            s.clock.run(5s);
            ASSERT_EQ(s.op.told.size(), 1U) << key << text;
            const std::string name = std::string(key).substr(std::string(key).find('/') + 1);
            EXPECT_NE(s.op.told[0].find(name), std::string::npos) << s.op.told[0];
            EXPECT_NE(s.op.told[0].find('"' + std::string(text) + '"'), std::string::npos);
            EXPECT_EQ(s.logged().back(), "StartUp:" + s.op.told[0]);
            EXPECT_EQ(s.exitCode, 1);
            EXPECT_TRUE(s.loopTask.done());
            // the window is closed, the session ends: what is stored stays
            const auto stored = s.store.values;
            s.settings.writeSetup();
            EXPECT_EQ(s.store.values, stored);
        }
    TestStation s(at(2006, 11, 15));
    s.store.values["Settings/Delay"] = "32768"; // beyond 16 bits
    s.start(true);
    s.clock.run(5s);
    EXPECT_EQ(s.exitCode, 1);
}

/// An empty store that notes what it is asked and given, in its order.
class NotingStore final : public SettingsStore {
  public:
    std::string GetSetting(const std::string& section, const std::string& key,
                           const std::string& fallback) const override {
        asked.push_back(section + "/" + key);
        return fallback;
    }
    bool SaveSetting(const std::string& section, const std::string& key,
                     const std::string& value) override {
        saved.push_back(section + "/" + key + "=" + value);
        return true;
    }

    mutable std::vector<std::string> asked;
    std::vector<std::string> saved;
};

TEST(PanelSettings, LoadsAndSavesInTheirOrders) {
    NotingStore store;
    Module1 module;
    OperationPanel panel;
    PanelSettings settings(module, panel, store, "pictures");
    EXPECT_EQ(settings.initOperation(), std::nullopt);
    EXPECT_EQ(store.asked,
              (std::vector<std::string>{
                  "Operation/StartHour", "Operation/StartMinute",    "Operation/EndHour",
                  "Operation/EndMinute", "Operation/IntervalMinute", "Operation/IntervalSecond",
                  "Operation/Latitude",  "Operation/Longitude",      "Operation/Tz",
                  "Settings/Quality",    "Settings/Delay",           "Settings/JpegTyp",
                  "Settings/AdjTime",    "Settings/LrFlg",           "Settings/DateFlg",
                  "Settings/RawFlg",     "Settings/FillGaps",        "Settings/IP",
                  "Settings/IP-Port",    "DataPath/PathDataFile",    "Station/LatestCopy",
                  "Station/FollowSun"}));
    EXPECT_EQ(module.image.LrFlg, 0);
    module.image.LrFlg = -1;
    panel.chk_fill.ticked = false;
    EXPECT_TRUE(settings.writeSetup());
    EXPECT_EQ(
        store.saved,
        (std::vector<std::string>{
            "Operation/StartHour=9", "Operation/StartMinute=0", "Operation/EndHour=17",
            "Operation/EndMinute=0", "Operation/IntervalMinute=30", "Operation/IntervalSecond=00",
            "Operation/Latitude=35.738", "Operation/Longitude=139.315", "Operation/Tz=540",
            "Settings/Quality=24", "Settings/LrFlg=1", "Settings/DateFlg=0", "Settings/Delay=15",
            "Settings/JpegTyp=10", "Settings/RawFlg=0", "Settings/AdjTime=1", "Settings/FillGaps=0",
            "Settings/IP=192.168.0.10", "Settings/IP-Port=80"}));
}

TEST(PanelSettings, SiteFieldsTakeEffectAsTheyAreTyped) {
    TestStation s(at(2006, 11, 15));
    s.start(false);
    const auto type = [&](TextBox& field, const char* text, bool (PanelSettings::*change)()) {
        field.text = text;
        return (s.settings.*change)();
    };
    EXPECT_TRUE(type(s.panel.txt_tz, "5.5", &PanelSettings::txt_tz_Change));
    EXPECT_EQ(s.module.site.Tz, 360);
    EXPECT_TRUE(type(s.panel.txt_tz, "-4.5", &PanelSettings::txt_tz_Change));
    EXPECT_EQ(s.module.site.Tz, -240);
    for (const char* text : {"540", "15", "-13", ""})
        EXPECT_FALSE(type(s.panel.txt_tz, text, &PanelSettings::txt_tz_Change)) << text;
    for (const char* text : {"-", "90.1", "-91"})
        EXPECT_FALSE(type(s.panel.txt_lat, text, &PanelSettings::txt_lat_Change)) << text;
    for (const char* text : {"181", "-180.5"})
        EXPECT_FALSE(type(s.panel.txt_long, text, &PanelSettings::txt_long_Change)) << text;
    EXPECT_EQ(s.module.site.Tz, -240);
    EXPECT_DOUBLE_EQ(s.module.site.latitude, 35.738); // the value in force stays
    EXPECT_TRUE(type(s.panel.txt_lat, "-7.25", &PanelSettings::txt_lat_Change));
    EXPECT_TRUE(type(s.panel.txt_long, "1e1", &PanelSettings::txt_long_Change));
    EXPECT_DOUBLE_EQ(s.module.site.longitude, 10);
    s.settings.showSite();
    EXPECT_EQ(s.panel.txt_tz.text.get(), "-4");
    EXPECT_EQ(s.panel.txt_lat.text.get(), "-7.25");
}

/// A hand in the settings file must not keep the station from recording.
TEST(PanelSettings, AnImpossibleStoredSiteIsToldAndNotTaken) {
    struct Case {
        const char *key, *text, *told;
        SiteValues site;
    };
    const Case cases[] = {
        {"Latitude",
         "135.7",
         "The stored latitude 135.7 is no place's on earth; 35.738 is in force "
         "instead.",
         {35.738, 139.315, 540}},
        {"Longitude",
         "-180.5",
         "The stored longitude -180.5 is no place's on earth; 139.315 is in "
         "force instead.",
         {35.738, 139.315, 540}},
        {"Tz",
         "32400",
         "The stored zone 32400 is no place's on earth; 540 is in force instead.",
         {35.738, 139.315, 540}},
        {"Tz",
         "-750",
         "The stored zone -750 is no place's on earth; 540 is in force instead.",
         {35.738, 139.315, 540}},
        {"Tz", "840", "", {35.738, 139.315, 840}},
        {"Latitude", "-90", "", {-90, 139.315, 540}},
    };
    for (const Case& c : cases) {
        TestStation s(at(2006, 11, 15, 9, 29));
        s.store.values[std::string("Operation/") + c.key] = c.text;
        s.start(true);
        s.clock.run(2min);
        EXPECT_EQ(s.module.site, c.site) << c.text;
        EXPECT_EQ(s.imagesOf("20061115").size(), 1U) << "it records";
        const bool told = *c.told != 0;
        EXPECT_EQ(s.countLogged(c.told), told ? 1 : 0);
        EXPECT_EQ(s.warnings.text.get(), c.told);
        s.panel.txt_lat.text = "36";
        s.settings.txt_lat_Change();
        s.settings.showSite();
        EXPECT_EQ(s.warnings.text.get(), "") << "somebody saw to it";
    }
}

TEST(PanelSettings, AZoneFarFromTheLongitudeIsPointedOut) {
    TestStation s(at(2006, 11, 15));
    s.start(false);
    EXPECT_EQ(s.panel.lbl_zone.caption.get(), "");
    struct Case {
        double longitude;
        std::int16_t Tz;
        const char* told;
    };
    const Case cases[] = {
        {-70, 540, "Zone 9 does not fit longitude -70: the sun times will be wrong by hours."},
        {139.5, 300, "Zone 5 does not fit longitude 139.5: the sun times will be wrong by hours."},
        {0, 330, "Zone 5.5 does not fit longitude 0: the sun times will be wrong by hours."},
        {75, 480, ""},     // exactly three hours
        {178.4, 720, ""},  // on the circle
        {-171.8, 780, ""}, // beyond the date line
        {-179, 840, ""},
        {179, -660, ""},
    };
    for (const Case& c : cases) {
        s.module.site = {35, c.longitude, c.Tz};
        s.settings.showSite();
        EXPECT_EQ(s.panel.lbl_zone.caption.get(), c.told);
    }
}

/// Half a number that cannot be computed with is nobody's fault.
TEST(PanelSettings, SunTextsFollowTheSiteAsItIsTyped) {
    TestStation s(at(2006, 11, 15, 12, 10));
    s.start(false);
    const auto type = [&](TextBox& field, const char* text, bool (PanelSettings::*change)()) {
        field.text = text;
        (s.settings.*change)();
    };
    const std::string first = s.panel.lbl_sunset.caption;
    type(s.panel.txt_lat, "60", &PanelSettings::txt_lat_Change);
    const std::string north = s.panel.lbl_sunset.caption;
    EXPECT_NE(north, first);
    EXPECT_EQ(s.module.sun.SunsetText, north);
    type(s.panel.txt_lat, "80", &PanelSettings::txt_lat_Change);
    EXPECT_EQ(s.panel.lbl_sunset.caption.get(), "") << "polar night, not another site's sunset";
    type(s.panel.txt_lat, "35", &PanelSettings::txt_lat_Change);
    type(s.panel.txt_long, "-60", &PanelSettings::txt_long_Change);
    type(s.panel.txt_tz, "-12", &PanelSettings::txt_tz_Change);
    EXPECT_EQ(s.panel.lbl_sunrise.caption.get(), "");
    EXPECT_EQ(s.panel.lbl_sunset.caption.get(), "");
    s.clock.run(2min);
    EXPECT_FALSE(s.warnings.stands(Warnings::Cause::SunTimes));
    s.settings.showSite(); // the field is left: now it is in force
    EXPECT_TRUE(s.warnings.stands(Warnings::Cause::SunTimes));
    const std::string warning = s.warnings.text;
    EXPECT_EQ(s.countLogged(warning), 1);
    type(s.panel.txt_tz, "-1", &PanelSettings::txt_tz_Change);
    EXPECT_TRUE(s.panel.lbl_sunrise.caption.get().size() > 3);
    EXPECT_FALSE(s.warnings.stands(Warnings::Cause::SunTimes));
    type(s.panel.txt_tz, "-12", &PanelSettings::txt_tz_Change);
    s.clock.runUntil(at(2006, 11, 16, 0, 1));
    EXPECT_TRUE(s.warnings.stands(Warnings::Cause::SunTimes)) << "midnight waits for no field";
}

TEST(PanelSettings, AGoneDataFolderFallsBackWithoutBeingForgotten) {
    TestStation s(at(2006, 11, 15));
    std::filesystem::remove_all(s.dataFolder());
    s.start(false);
    EXPECT_EQ(s.panel.Dir1[0].path.get(), s.folder.path() / "pictures" / "Orvane");
    EXPECT_EQ(s.store.values["DataPath/PathDataFile"], s.dataFolder().string());
    s.settings.selectDataFolder(s.folder.path());
    EXPECT_EQ(s.store.values["DataPath/PathDataFile"], s.folder.path().string());
}

TEST(PanelSettings, AFolderThatCouldNotBeStoredIsStoredLater) {
    TestStation s(at(2006, 11, 15));
    s.start(false);
    s.store.readOnly = true;
    s.settings.selectDataFolder(s.folder.path());
    EXPECT_FALSE(s.settings.writeSetup());
    s.store.readOnly = false;
    EXPECT_TRUE(s.settings.writeSetup());
    EXPECT_EQ(s.store.values["DataPath/PathDataFile"], s.folder.path().string());
}

TEST(QtSettingsStore, KeepsTextsInAFileThatIsWrittenByHand) {
    TempFolder folder;
    const auto path = folder.path() / "Orvane.ini";
    std::ofstream(path) << "[Operation]\nStartHour=7\n[DataPath]\nPathDataFile=/a, b/c\n";
    QtSettingsStore store(QString::fromStdString(path.string()));
    EXPECT_EQ(store.GetSetting("Operation", "StartHour", "9"), "7");
    EXPECT_EQ(store.GetSetting("DataPath", "PathDataFile", ""), "/a, b/c");
    EXPECT_EQ(store.GetSetting("Operation", "EndHour", "17"), "17");
    for (const std::string text : {"", "a,b;c", "空の写真", "C:\\Bilder\\", " x "}) {
        EXPECT_TRUE(store.SaveSetting("DataPath", "PathDataFile", text));
        QtSettingsStore other(QString::fromStdString(path.string()));
        EXPECT_EQ(other.GetSetting("DataPath", "PathDataFile", "?"), text);
    }
    EXPECT_TRUE(store.SaveSetting("Operation", "Mode Auto", "True"));
    EXPECT_EQ(store.GetSetting("Operation", "Mode Auto", ""), "True");
}

/// Written by hand, a comma makes a list and a semicolon a comment; saving another setting must
/// not spoil the path either.
TEST(QtSettingsStore, AHandWrittenPathIsReadAsItStands) {
    TempFolder folder;
    const auto path = folder.path() / "Orvane.ini";
    for (const std::string text : {"/data/a,b;c", "/data/a, b", "/空;の=写真", "/data/a"}) {
        std::ofstream(path) << "[Other]\nPathDataFile=/x,y\n[DataPath]\nPathDataFile = " << text
                            << "\n[Operation]\nTz=540 ; nine hours\n";
        const QString file = QString::fromStdString(path.string());
        {
            QtSettingsStore store(file);
            EXPECT_EQ(store.GetSetting("DataPath", "PathDataFile", ""), text);
            EXPECT_EQ(store.GetSetting("Operation", "Tz", ""), "540");
            EXPECT_TRUE(store.SaveSetting("Operation", "Mode Auto", text));
        }
        EXPECT_EQ(QtSettingsStore(file).GetSetting("DataPath", "PathDataFile", ""), text);
        std::filesystem::remove(path);
    }
}

TEST(QtSettingsStore, ASaveThatFailedIsForgottenWithTheNextThatDoesNot) {
    TempFolder folder;
    const auto blocked = folder.path() / "config";
    std::ofstream(blocked) << "not a folder";
    const QString file = QString::fromStdString((blocked / "Orvane.ini").string());
    QtSettingsStore store(file);
    EXPECT_EQ(store.unreadable(), std::nullopt) << "not there";
    EXPECT_FALSE(store.SaveSetting("Settings", "IP", "10.0.0.7"));
    EXPECT_FALSE(store.SaveSetting("Settings", "IP", "10.0.0.7")) << "not on the disk yet";
    std::filesystem::remove(blocked);
    EXPECT_TRUE(store.SaveSetting("Settings", "IP", "10.0.0.7"));
    EXPECT_TRUE(store.SaveSetting("Settings", "IP-Port", "81"));
    EXPECT_EQ(QtSettingsStore(file).GetSetting("Settings", "IP", "?"), "10.0.0.7");
    std::ifstream text(blocked / "Orvane.ini");
    EXPECT_NE(std::string(std::istreambuf_iterator<char>(text), {}).find("10.0.0.7"),
              std::string::npos);
}

TEST(QtSettingsStore, WhatCannotBeReadIsToldAndNotReplaced) {
    TempFolder folder;
    const auto path = folder.path() / "Orvane.ini";
    std::filesystem::create_directory(path);
    QtSettingsStore store(QString::fromStdString(path.string()));
    ASSERT_TRUE(store.unreadable());
    EXPECT_NE(store.unreadable()->find(path.filename().string() + ": "), std::string::npos)
        << *store.unreadable();
    EXPECT_EQ(store.GetSetting("Settings", "IP", "none"), "none");
    EXPECT_FALSE(store.SaveSetting("Settings", "IP", "10.0.0.7"));
    EXPECT_TRUE(std::filesystem::is_directory(path));
}

TEST(Conversions, NumbersFromText) {
    EXPECT_EQ(toInt16("2.5"), 2);
    EXPECT_EQ(toInt16("3.5"), 4);
    EXPECT_EQ(toInt16("-32768"), -32768);
    EXPECT_EQ(toInt16("+15"), 15);
    for (const char* text : {"", "-", "+-1", "1 2", "nan", "1e999", "0x10", "."})
        EXPECT_FALSE(toDouble(text)) << text;
    for (const auto& [text, value] : {std::pair{"12abc", 12.0},
                                      {" 7", 7},
                                      {"abc", 0},
                                      {"", 0},
                                      {"-3", -3},
                                      {".5", 0.5},
                                      {"--1", 0}})
        EXPECT_DOUBLE_EQ(leadingNumber(text), value) << text;
    EXPECT_EQ(toText(139.315), "139.315");
}

} // namespace
} // namespace orvane::test

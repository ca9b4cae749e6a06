#include "platform/qt/QtSettingsStore.h"
#include "tests/support/StationDay.h"

namespace orvane::test {
namespace {

struct PanelSettingsTest : StationDay {
    PanelSettingsTest() { start(at(2006, 11, 15)); }

    bool typeLatitude(const std::string& text) {
        s->panel.txt_lat.text = text;
        return s->settings.txt_lat_Change();
    }
    bool typeLongitude(const std::string& text) {
        s->panel.txt_long.text = text;
        return s->settings.txt_long_Change();
    }
    bool typeZone(const std::string& text) {
        s->panel.txt_tz.text = text;
        return s->settings.txt_tz_Change();
    }
};

/// Whatever is stored, start-up clears the stamp and mirror options and chooses 4:4:4.
TEST_F(PanelSettingsTest, SavesWhatIsInForceAfterTheStartUpOverrides) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"Settings/LrFlg", "2", "0"},
        {"Settings/DateFlg", "1", "0"},
        {"Settings/RawFlg", "yes", "1"},
        {"Settings/JpegTyp", "10", "98"},
        {"Settings/Quality", "2.5", "2"}, // ties go to the even number
        {"Settings/AdjTime", "0", "0"},
        {"Operation/Tz", "-210", "-210"},
        {"Operation/Latitude", " -33.5 ", "-33.5"},
        {"Operation/StartHour", "any text", "any text"}};
    for (const auto& [key, stored, saved] : cases)
        s->store.values[key] = stored;
    s->start(false);
    EXPECT_EQ(s->panel.txt_tz.text.get(), "-3.5");
    EXPECT_FALSE(s->panel.chk_time.ticked);
    EXPECT_TRUE(s->settings.writeSetup());
    for (const auto& [key, stored, saved] : cases)
        EXPECT_EQ(s->store.values[key], saved) << key;
}

TEST_F(PanelSettingsTest, AnUnreadableNumberEndsTheProgramWithItsKeyAndText) {
    std::vector<std::pair<std::string, std::string>> cases{{"Settings/Delay", "32768"}};
    for (const char* key :
         {"Operation/Latitude", "Operation/Longitude", "Operation/Tz", "Settings/Quality",
          "Settings/Delay", "Settings/JpegTyp", "Settings/AdjTime"})
        for (const char* text : {"", "12x", "1,5", "inf"})
            cases.emplace_back(key, text);
    for (const auto& [key, text] : cases) {
        SCOPED_TRACE(key + "=" + text);
        TestStation station(at(2006, 11, 15));
        station.store.values[key] = text;
        station.start(true);
        station.clock.run(5s);
        ASSERT_EQ(station.op.told.size(), 1U);
        const std::string& told = station.op.told[0];
        EXPECT_TRUE(has(told, key.substr(key.find('/') + 1)));
        EXPECT_TRUE(has(told, '"' + text + '"'));
        EXPECT_EQ(station.logged().back(), "StartUp:" + told);
        EXPECT_EQ(station.exitCode, 1);
        const auto stored = station.store.values;
        station.settings.writeSetup();
        EXPECT_EQ(station.store.values, stored) << "the window is closed: what is stored stays";
    }
}

/// An empty store that notes what it is asked and given, in its order.
struct NotingStore final : SettingsStore {
    std::string GetSetting(const std::string& section, const std::string& key,
                           const std::string& fallback) const override {
        asked += section + "/" + key + " ";
        return fallback;
    }
    bool SaveSetting(const std::string& section, const std::string& key,
                     const std::string& value) override {
        saved += section + "/" + key + "=" + value + " ";
        return true;
    }

    mutable std::string asked;
    std::string saved;
};

TEST(PanelSettings, LoadsItsDefaultsAndSavesInTheirOrders) {
    NotingStore store;
    Module1 module;
    OperationPanel panel;
    PanelSettings settings(module, panel, store, "pictures");
    EXPECT_EQ(settings.initOperation(), std::nullopt);
    EXPECT_EQ(store.asked,
              "Operation/StartHour Operation/StartMinute Operation/EndHour Operation/EndMinute "
              "Operation/IntervalMinute Operation/IntervalSecond Operation/Latitude "
              "Operation/Longitude Operation/Tz Settings/Quality Settings/Delay Settings/JpegTyp "
              "Settings/AdjTime Settings/LrFlg Settings/DateFlg Settings/RawFlg Settings/FillGaps "
              "Settings/IP Settings/IP-Port DataPath/PathDataFile Station/LatestCopy "
              "Station/FollowSun ");
    EXPECT_EQ(panel.txt_lat.text.get() + " " + panel.txt_long.text.get() + " " +
                  panel.txt_tz.text.get() + panel.Text1[4].text.get(),
              "35.738 139.315 9");
    EXPECT_TRUE(panel.chk_time.ticked);
    EXPECT_EQ(panel.Dir1[0].path.get(), "pictures");
    EXPECT_EQ(module.image.LrFlg, 0);
    module.image.LrFlg = -1;
    panel.chk_fill.ticked = false;
    EXPECT_TRUE(settings.writeSetup());
    EXPECT_EQ(store.saved,
              "Operation/StartHour=9 Operation/StartMinute=0 Operation/EndHour=17 "
              "Operation/EndMinute=0 Operation/IntervalMinute=30 Operation/IntervalSecond=00 "
              "Operation/Latitude=35.738 Operation/Longitude=139.315 Operation/Tz=540 "
              "Settings/Quality=24 Settings/LrFlg=1 Settings/DateFlg=0 Settings/Delay=15 "
              "Settings/JpegTyp=10 Settings/RawFlg=0 Settings/AdjTime=1 Settings/FillGaps=0 "
              "Settings/IP=192.168.0.10 Settings/IP-Port=80 ");
}

TEST_F(PanelSettingsTest, SiteFieldsTakeEffectAsTheyAreTyped) {
    s->start(false);
    EXPECT_TRUE(typeZone("5.5"));
    EXPECT_EQ(s->module.site.Tz, 360);
    EXPECT_TRUE(typeZone("-4.5"));
    for (const char* text : {"540", "15", "-13", ""})
        EXPECT_FALSE(typeZone(text)) << text;
    for (const char* text : {"-", "90.1", "-91"})
        EXPECT_FALSE(typeLatitude(text)) << text;
    for (const char* text : {"181", "-180.5"})
        EXPECT_FALSE(typeLongitude(text)) << text;
    EXPECT_EQ(s->module.site, (SiteValues{35.738, 139.315, -240})) << "what was in force stays";
    EXPECT_TRUE(typeLatitude("-7.25"));
    EXPECT_TRUE(typeLongitude("1e1"));
    EXPECT_EQ(s->module.site, (SiteValues{-7.25, 10, -240}));
    s->settings.showSite();
    EXPECT_EQ(s->panel.txt_tz.text.get() + " " + s->panel.txt_lat.text.get(), "-4 -7.25");
}

/// A hand in the settings file must not keep the station from recording.
TEST_F(PanelSettingsTest, AnImpossibleStoredSiteIsToldAndNotTaken) {
    const SiteValues usual{35.738, 139.315, 540};
    const std::tuple<const char*, const char*, SiteValues, const char*> cases[] = {
        {"Latitude", "135.7", usual, "latitude 135.7 is no place's on earth; 35.738"},
        {"Longitude", "-180.5", usual, "longitude -180.5 is no place's on earth; 139.315"},
        {"Tz", "32400", usual, "zone 32400 is no place's on earth; 540"},
        {"Tz", "-750", usual, "zone -750 is no place's on earth; 540"},
        {"Tz", "840", {35.738, 139.315, 840}, ""},
        {"Latitude", "-90", {-90, 139.315, 540}, ""}};
    for (const auto& [key, text, site, fault] : cases) {
        SCOPED_TRACE(text);
        TestStation station(at(2006, 11, 15, 9, 29));
        station.store.values[std::string("Operation/") + key] = text;
        station.start(true);
        station.clock.run(2min);
        EXPECT_EQ(station.module.site, site);
        EXPECT_EQ(station.imagesOf("20061115").size(), 1U) << "it records";
        const bool isTold = *fault != '\0';
        const std::string told = std::string("The stored ") + fault + " is in force instead.";
        EXPECT_EQ(station.countLogged(told), isTold ? 1 : 0);
        EXPECT_EQ(station.warnings.text.get(), isTold ? told : "");
        station.panel.txt_lat.text = "36";
        station.settings.txt_lat_Change();
        station.settings.showSite();
        EXPECT_EQ(station.warnings.text.get(), "") << "somebody saw to it";
    }
}

TEST_F(PanelSettingsTest, AZoneFarFromTheLongitudeIsPointedOut) {
    const auto told = [&](double longitude, std::int16_t zone) {
        s->module.site = {35, longitude, zone};
        s->settings.showSite();
        return s->panel.lbl_zone.caption.get();
    };
    const std::string end = ": the sun times will be wrong by hours.";
    EXPECT_EQ(told(139.5, 300), "Zone 5 does not fit longitude 139.5" + end);
    EXPECT_EQ(told(0, 330), "Zone 5.5 does not fit longitude 0" + end);
    EXPECT_EQ(told(100, 600), "Zone 10 does not fit longitude 100" + end); // 3 hours and a third
    EXPECT_EQ(told(75, 480), "") << "exactly three hours";
    EXPECT_EQ(told(178.4, 720) + told(-171.8, 780), "") << "beyond the date line";
    EXPECT_EQ(told(-179, 840) + told(179, -660), "") << "on the circle";
}

/// Half a number that cannot be computed with is nobody's fault; where the sun rises before the
/// local day begins, the station warns and records.
TEST_F(PanelSettingsTest, SunTextsFollowTheSiteAsItIsTyped) {
    s->start(true);
    const std::string& sunset = s->panel.lbl_sunset.caption.get();
    const auto warns = [&] { return s->warnings.stands(Warnings::Cause::SunTimes); };
    const std::string first = sunset;
    typeLatitude("60");
    EXPECT_NE(sunset, first);
    EXPECT_EQ(s->module.sun.SunsetText, sunset);
    typeLatitude("80");
    EXPECT_EQ(sunset, "") << "polar night, not another site's sunset";
    typeLatitude("35");
    typeLongitude("-60");
    typeZone("-12");
    s->clock.run(2min);
    EXPECT_FALSE(warns());
    s->settings.showSite(); // the field is left: now it is in force
    EXPECT_TRUE(warns());
    const std::string warning = s->warnings.text;
    EXPECT_TRUE(has(warning, "The sun times of the site cannot be computed"));
    EXPECT_EQ(s->countLogged(warning), 1);
    runUntil(9, 1);
    EXPECT_EQ(count(), 1);
    EXPECT_EQ(sunset + s->panel.lbl_sunrise.caption.get(), "");
    typeZone("-1");
    EXPECT_GT(s->panel.lbl_sunrise.caption.get().size(), 3U);
    EXPECT_FALSE(warns());
    typeZone("-12");
    s->clock.runUntil(at(2006, 11, 16, 0, 1));
    EXPECT_TRUE(warns()) << "midnight waits for no field";
    EXPECT_NE(s->warnings.text.get(), warning) << "another day, another impossible time";
}

TEST_F(PanelSettingsTest, AGoneDataFolderFallsBackWithoutBeingForgotten) {
    std::string& stored = s->store.values["DataPath/PathDataFile"];
    std::filesystem::remove_all(s->dataFolder());
    s->start(false);
    s->clock.run(1s);
    EXPECT_EQ(s->panel.Dir1[0].path.get(), s->folder.path() / "pictures" / "Orvane");
    EXPECT_FALSE(std::filesystem::exists(s->panel.Dir1[0].path.get())) << "not before a capture";
    EXPECT_TRUE(s->warnings.stands(Warnings::Cause::ChosenFolder));
    EXPECT_EQ(stored, utf8FromPath(s->dataFolder()));
    s->store.readOnly = true;
    s->settings.selectDataFolder(s->folder.path());
    EXPECT_FALSE(s->settings.writeSetup());
    s->store.readOnly = false;
    EXPECT_TRUE(s->settings.writeSetup()) << "what could not be stored is stored later";
    EXPECT_EQ(stored, utf8FromPath(s->folder.path()));
    s->settings.selectDataFolder(s->dataFolder());
    EXPECT_EQ(stored, utf8FromPath(s->dataFolder())) << "at once";
}

struct QtSettingsStoreTest : testing::Test {
    /// As another start of the program would read it.
    std::string text(const char* section, const char* key, const char* fallback = "?") const {
        return QtSettingsStore(name).GetSetting(section, key, fallback);
    }

    TempFolder folder;
    std::filesystem::path path = folder.path() / "config" / "Orvane.ini";
    QString name = QString::fromStdString(utf8FromPath(path));
};

/// Written by hand, a comma makes a list and a semicolon a comment; saving another setting must
/// not spoil the path either.
TEST_F(QtSettingsStoreTest, KeepsTextsInAFileThatIsWrittenByHand) {
    for (const std::string value : {"/data/a,b;c", "/data/a, b", "/空;の=写真", "/data/a"}) {
        writeFile(path, "[Other]\nPathDataFile=/x,y\n[DataPath]\nPathDataFile = " + value +
                            "\n[Operation]\nTz=540 ; nine hours\n");
        EXPECT_EQ(text("DataPath", "PathDataFile"), value);
        EXPECT_EQ(text("Operation", "Tz"), "540");
        EXPECT_TRUE(QtSettingsStore(name).SaveSetting("Operation", "Mode Auto", value));
        EXPECT_EQ(text("DataPath", "PathDataFile"), value);
        std::filesystem::remove(path);
    }
    QtSettingsStore store(name);
    for (const std::string value : {"", "a,b;c", "空の写真", "C:\\Bilder\\", " x "}) {
        EXPECT_TRUE(store.SaveSetting("DataPath", "PathDataFile", value));
        EXPECT_EQ(text("DataPath", "PathDataFile"), value);
    }
    EXPECT_TRUE(store.SaveSetting("Operation", "Mode Auto", "True"));
    EXPECT_TRUE(has(contentsOf(path), "Mode%20Auto=True")) << "on the disk when the call returns";
}

TEST_F(QtSettingsStoreTest, ASaveThatFailedIsForgottenWithTheNextThatDoesNot) {
    writeFile(path.parent_path(), "not a folder");
    QtSettingsStore store(name);
    EXPECT_EQ(store.unreadable(), std::nullopt) << "not there";
    for (int time = 0; time < 2; ++time)
        EXPECT_FALSE(store.SaveSetting("Settings", "IP", "10.0.0.7")) << "not on the disk yet";
    std::filesystem::remove(path.parent_path());
    EXPECT_TRUE(store.SaveSetting("Settings", "IP", "10.0.0.7"));
    EXPECT_TRUE(store.SaveSetting("Settings", "IP-Port", "81"));
    EXPECT_EQ(text("Settings", "IP"), "10.0.0.7");
    EXPECT_TRUE(has(contentsOf(path), "10.0.0.7"));
}

TEST_F(QtSettingsStoreTest, WhatCannotBeReadIsToldAndNotReplaced) {
    std::filesystem::create_directories(path);
    QtSettingsStore store(name);
    ASSERT_TRUE(store.unreadable());
    EXPECT_TRUE(has(*store.unreadable(), "Orvane.ini: "));
    EXPECT_EQ(store.GetSetting("Settings", "IP", "none"), "none");
    EXPECT_FALSE(store.SaveSetting("Settings", "IP", "10.0.0.7"));
    EXPECT_TRUE(std::filesystem::is_directory(path));
}

} // namespace
} // namespace orvane::test

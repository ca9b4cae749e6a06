#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

#include <fstream>

namespace orvane::test {
namespace {

TEST(StartUp, SettingsThatCannotBeReadAreToldAndKept) {
    TestStation s(at(2006, 11, 15, 9, 29));
    s.store.fault = "/etc/Orvane.ini: Permission denied";
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 31));
    const std::string told = "The settings cannot be read: /etc/Orvane.ini: Permission denied. "
                             "Their defaults are in force, and nothing is stored.";
    EXPECT_EQ(s.countLogged(told), 1);
    EXPECT_EQ(s.warnings.text.get(), told);
    EXPECT_EQ(s.http.urls.front(), "http://192.168.0.10:80/Images/full.jpg") << "it records";
    EXPECT_FALSE(s.settings.writeSetup()) << "as the operator hears when closing";
}

TEST(StartUp, ComesInOrder) {
    TestStation s(at(2006, 11, 15, 7, 0));
    s.module.thumbnails[0] = "old";
    s.start(false);
    EXPECT_EQ(s.windowsShown, 1);
    EXPECT_EQ(s.logged(), std::vector<std::string>{"Orvane Starting"});
    EXPECT_TRUE(s.module.thumbnails[0].empty());
    EXPECT_FALSE(s.module.sun.SunriseText.empty());
    EXPECT_EQ(s.module.image.JpegTyp, 98);
    EXPECT_EQ(s.panel.Label7.caption.get(), "Ready");
    EXPECT_FALSE(s.panel.Command2.enabled);
}

TEST(StartUp, FilesAreLookedForAmongTodaysWhenThereAreAny) {
    for (const bool recorded : {true, false}) {
        TestStation s(at(2006, 11, 15, 7, 0));
        const auto today = s.dataFolder() / "20061115";
        if (recorded) std::filesystem::create_directory(today);
        s.start(false);
        EXPECT_EQ(s.panel.Dir1[1].path.get().filename(), recorded ? "20061115" : "data");
        EXPECT_EQ(s.panel.Dir1[0].path.get().filename(), "data");
    }
}

TEST(StartUp, WhatNobodyForesawIsToldAndEndsTheProgram) {
    TestStation s(at(2006, 11, 15, 7, 0));
    s.station.showMainWindow = [] { throw std::runtime_error("no window"); };
    s.start(true);
    EXPECT_EQ(s.op.told, std::vector<std::string>{"no window"});
    EXPECT_EQ(s.exitCode, -1) << "the box is still open";
    s.clock.run(2s);
    EXPECT_EQ(s.exitCode, 1);
    EXPECT_EQ(s.logged(), std::vector<std::string>{"StartUp:no window"});

    TestStation late(at(2006, 11, 15, 7, 0)); // behind the start-up's own steps
    late.panel.Command1.enabled.observe([](bool enabled) {
        if (!enabled) throw std::runtime_error("no button");
    });
    late.start(true);
    late.clock.run(2s);
    EXPECT_EQ(late.op.told, std::vector<std::string>{"no button"});
    EXPECT_EQ(late.exitCode, 1);
}

TEST(StartUp, ThumbnailsShowTodaysNewestImages) {
    TestStation s(at(2006, 11, 15, 12, 0));
    const auto today = s.dataFolder() / "20061115";
    std::filesystem::create_directory(today);
    for (int hour = 0; hour < 12; ++hour) {
        char name[32];
        std::snprintf(name, sizeof name, "20061115_%02d0000_00.jpg", hour);
        EXPECT_FALSE(writeToFinalName(jpegLike(name), today / name));
    }
    std::ofstream(today / "20061115_113000_00.jpg") << "left empty";
    std::ofstream(today / "99999999_notes.txt") << "x";
    s.start(false);
    EXPECT_EQ(s.module.thumbnails[0], today / "20061115_110000_00.jpg");
    EXPECT_EQ(s.module.thumbnails[9], today / "20061115_020000_00.jpg");
    EXPECT_EQ(s.views.newest, s.module.thumbnails[0]);
}

TEST(StartUp, AnUnusableStoredScheduleIsToldAndTheStationStaysReady) {
    TestStation s(at(2006, 11, 15, 9, 29));
    s.setSchedule("17", "9", "30");
    s.start(true);
    s.clock.run(48h);
    EXPECT_EQ(s.op.told, std::vector<std::string>{"You must be Start Time < End Time."});
    EXPECT_EQ(s.panel.Label7.caption.get(), "Ready");
    EXPECT_TRUE(s.panel.Command1.enabled);
    EXPECT_EQ(s.http.requests, 0);
}

} // namespace
} // namespace orvane::test

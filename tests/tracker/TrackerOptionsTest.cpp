#include "tests/tracker/TrackerStation.h"

namespace orvane::test {
namespace {

struct TrackerOptionsTest : Tracker {
    void type(const std::string& serial, const std::string& zone, const std::string& longitude,
              const std::string& latitude, const std::string& origin) {
        form.txt_sn.text = serial;
        form.txt_tz.text = zone;
        form.txt_lon.text = longitude;
        form.txt_lat.text = latitude;
        form.txt_org.text = origin;
    }
    Messages typed() const {
        return {form.txt_sn.text.get(), form.txt_tz.text.get(), form.txt_lon.text.get(),
                form.txt_lat.text.get(), form.txt_org.text.get()};
    }

    OptionForm& form = s.optionForm;
    const std::string& status = form.status.caption.get();
};

TEST_F(TrackerOptionsTest, ReadsThemAndTellsWhatItChanged) {
    finish(s.options.activate());
    const std::vector<Bytes> expected{{0x02, 0x01, 0x47, 0x30, 0x77, 0x03}, {0x06},
                                      {0x02, 0x01, 0x81, 0x30, 0xB1, 0x03}, {0x06},
                                      {0x02, 0x01, 0x85, 0x30, 0xB5, 0x03}, {0x06}};
    EXPECT_EQ(s.port.written, expected);
    EXPECT_EQ(typed(), (Messages{"ST-042", "540", "139.75", "35.50", "359.99"}));
    EXPECT_EQ(s.module.site.latitude, 35.5);
    EXPECT_EQ(s.module.origin, 359.99);
    EXPECT_EQ(s.siteChanges, 1);
    EXPECT_EQ(status, "Read from the tracker. Latitude changed: 35.738 to 35.5. Longitude changed: "
                      "139.315 to 139.75.");
    expectAtRest();
    finish(s.options.activate());
    EXPECT_EQ(status, "Read from the tracker.") << "nothing any more";
    s.port.site[0] = 0x01;
    s.port.site[1] = 0x4A; // 330 min
    answer([](std::uint8_t cmd, const Bytes& sound) { return cmd == 0x47 ? Bytes{0x15} : sound; });
    finish(s.options.activate());
    EXPECT_EQ(status, "Failed: OptionSetup Serial:Except[ACK]. Time zone changed: 540 to 330.");
    EXPECT_EQ(form.lbl_hours.caption.get(), "= 5 h 30 min");
    answer([this](std::uint8_t cmd, const Bytes& sound) {
        if (cmd == 0x81) return s.port.goodAnswer(0x85);                  // another command's reply
        return Bytes(sound.begin(), sound.end() - (cmd == 0x85 ? 1 : 0)); // no end byte
    });
    newlyLogged();
    finish(s.options.activate());
    EXPECT_EQ(newlyLogged(),
              (Messages{"OptionSetup Timezone:Except[ACK]", "recMessage:ETX/Receive ERROR",
                        "OptionSetup origin:Receive ERROR"}));
    EXPECT_TRUE(status.starts_with("Failed")) << status;
    expectAtRest();
}

TEST_F(TrackerOptionsTest, WhatTheDialogWouldRefuseIsShownButNotStored) {
    const Bytes sound = s.port.site;
    const auto shown = [&](std::size_t place, const Bytes& bytes) {
        s.port.site = sound;
        std::ranges::copy(bytes, s.port.site.begin() + static_cast<std::ptrdiff_t>(place));
        finish(s.options.activate());
        return typed();
    };
    EXPECT_EQ(shown(0, {0x02, 0xD0})[1], "720");
    EXPECT_EQ(shown(10, {0xC0, 0x5E, 0, 0, 0, 0, 0, 0})[3], "-120.00"); // as it would be written
    EXPECT_EQ(s.module.site.latitude, 35.738);
    EXPECT_EQ(s.siteChanges, 0);
    s.module.origin = 1;
    s.port.origin = {0x40, 0x76, 0x80, 0, 0, 0, 0, 0};
    EXPECT_EQ(shown(0, {})[4], "360.00");
    EXPECT_EQ(s.module.origin, 1);
    const std::string refused = "OptionSetup Timezone:values out of range, not stored";
    EXPECT_EQ(s.logged(),
              (Messages{refused, refused, "OptionSetup origin:value out of range, not stored"}));
}

TEST_F(TrackerOptionsTest, TheZonesHoursAreShown) {
    std::string shown;
    for (const char* minutes : {"540", "330", "-570", "0", "45", "-30", "", "-"}) {
        form.txt_tz.text = minutes;
        s.options.txt_tz_Change();
        shown += form.lbl_hours.caption.get() + ";";
    }
    EXPECT_EQ(shown, "= 9 h;= 5 h 30 min;= -9 h 30 min;= 0 h;= 45 min;= -30 min;;;");
}

/// Whichever of the three the tracker refuses or leaves unanswered: it is told, the others are
/// written all the same, nothing counts as taken, and the next attempt succeeds.
TEST_F(TrackerOptionsTest, WritesThemAndTellsFaults) {
    const std::pair<std::uint8_t, std::string> commands[] = {
        {0x46, "OptionSetup Serial"}, {0x80, "OptionSetup Timezone"}, {0x84, "OptionSetup origin"}};
    const std::pair<Bytes, const char*> faults[] = {
        {{}, ":Receive ERROR"},
        {{0x15}, ":Except[ACK]"},
        {{0x06, 0x02, 0x00, 0x77, 0x77, 0x03}, ":Except[CMD]"}};
    const std::vector<Bytes> frames{{0x02, 0x02, 0x46, 0x31, 0x36, 0xAD, 0x03}, {0x06},
                                    {0x02, 0x02, 0x80, 0x31, 0x38, 0xE9, 0x03}, {0x06},
                                    {0x02, 0x01, 0x84, 0x38, 0xBC, 0x03},       {0x06}};
    const auto stored = s.store.values;
    for (const auto& [failing, name] : commands)
        for (const auto& [wrong, text] : faults) {
            const std::string fault = name + text;
            SCOPED_TRACE(fault);
            type("ABCDE", " -330 ", "139.75", "-120", "359.99"); // beyond the pole
            s.port.written.clear();
            answer([&](std::uint8_t cmd, const Bytes& sound) {
                return cmd == failing ? wrong : sound;
            });
            finish(s.options.Command1_Click());
            EXPECT_EQ(newlyLogged(), Messages{fault});
            EXPECT_EQ(status, "Failed: " + fault + ".");
            EXPECT_EQ(form.txt_tz.text.get(), failing == 0x80 ? " -330 " : "-330");
            EXPECT_EQ(s.port.written.size(), 5U) << "three frames, acknowledged but for one";
            expectAtRest();
            answerSoundly();
            s.port.written.clear();
            finish(s.options.Command1_Click());
            EXPECT_EQ(status, "Sent to the tracker.");
            EXPECT_EQ(s.port.written, frames);
        }
    // refreshed from what is stored
    EXPECT_EQ(typed(), (Messages{"ABCDE", "-330", "139.75", "-120.00", "359.99"}));
    EXPECT_EQ(s.module.site.Tz, -330);
    EXPECT_EQ(s.module.site.latitude, -120);
    EXPECT_EQ(s.module.origin, 359.99);
    EXPECT_GT(s.siteChanges, 0);
    EXPECT_EQ(s.store.values, stored);
    EXPECT_EQ(s.op.told, Messages{});
}

/// Told at once, without a byte or a value changed, and no hindrance once the port is there.
TEST_F(TrackerOptionsTest, APortThatCannotBeOpenedOrVanishesIsTold) {
    s.port.openable = false;
    for (const bool writing : {false, true}) {
        type("ABCDE", "330", "139.75", "35.5", "10");
        finish(writing ? s.options.Command1_Click() : s.options.activate(), 0ms);
        EXPECT_EQ(status, "The tracker's port cannot be opened, or is in use.");
        EXPECT_EQ(newlyLogged(), Messages{"initCommunication:COM Port EEROR"});
        EXPECT_EQ(s.siteChanges, 0);
        EXPECT_EQ(form.txt_tz.text.get(), "330");
        expectAtRest();
    }
    EXPECT_TRUE(s.port.written.empty());
    s.port.openable = true;
    answer([this](std::uint8_t cmd, const Bytes& sound) {
        if (cmd == 0x80) s.port.unplug();
        return sound;
    });
    finish(s.options.Command1_Click(), 30s);
    EXPECT_EQ(status,
              "Failed: OptionSetup Timezone:Receive ERROR, OptionSetup origin:Receive ERROR.");
    expectAtRest();
    answerSoundly();
    finish(s.options.Command1_Click());
    EXPECT_EQ(status, "Sent to the tracker.");
}

TEST_F(TrackerOptionsTest, BeyondTheirBoundsTheyAreRefused) {
    const struct {
        const char *zone, *longitude, *latitude, *origin, *told;
        std::size_t frames;
    } cases[] = {{"720", "0", "0", "", "Input Error TimeZone Data.", 0},
                 {"-720", "0", "0", "", "Input Error TimeZone Data.", 0},
                 {"", "0", "0", "0", "Input Error TimeZone Data.", 1}, // the origin is sent
                 {"719", "180", "0", "", "Input Error Longitude Data.", 0},
                 {"719", "", "999", "", "Input Error Longitude Data.", 0},
                 {"719", "-179.9", "x", "", "Input Error Latitude Data.", 0},
                 {"719", "179.9", "180", "", "Input Error Latitude Data.", 0},
                 {"719", "179.9", "-179.9", "360", "", 1},
                 {"0", "0", "0", "-1", "", 1},
                 {"0", "0", "0", "0", "", 2}};
    for (const auto& [zone, longitude, latitude, origin, told, frames] : cases) {
        SCOPED_TRACE(std::string(zone) + "," + longitude + "," + latitude + "," + origin);
        s.port.written.clear();
        s.op.told.clear();
        type("", zone, longitude, latitude, origin);
        const SiteValues before = s.module.site;
        finish(s.options.Command1_Click());
        EXPECT_EQ(s.op.told, *told == 0 ? Messages{} : Messages{told});
        EXPECT_EQ(status, *told == 0 ? "Sent to the tracker." : told);
        EXPECT_EQ(s.port.written.size(), 2 * frames);
        EXPECT_TRUE(*told == 0 || s.module.site.Tz == before.Tz);
    }
}

} // namespace
} // namespace orvane::test

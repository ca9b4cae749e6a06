#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

using Messages = std::vector<std::string>;

struct Tracker : testing::Test {
    TestStation s{at(2006, 12, 31, 23, 59, 58)};

    void SetUp() override {
        s.status.initStatus(); // the clock timer bounds every wait
    }
    template <class T>
    T finish(Task<T> task, std::chrono::milliseconds limit = 1min) {
        task.start();
        EXPECT_TRUE(s.clock.runUntil([&] { return task.done(); }, limit));
        return task.result();
    }
    Bytes frame(std::size_t index) const { return s.port.written.at(index); }
};

TEST(MakeFrame, ByteExamples) {
    EXPECT_EQ(MakeFrame(0x48), (Bytes{0x02, 0x00, 0x48, 0x48, 0x03}));
    EXPECT_EQ(MakeFrame(0x48, "12"), (Bytes{0x02, 0x02, 0x48, 0x31, 0x32, 0xAB, 0x03}));
    EXPECT_EQ(MakeFrame(0xA8, "1"), (Bytes{0x02, 0x01, 0xA8, 0x31, 0xD9, 0x03}));
    EXPECT_EQ(MakeFrame(0x81, "0"), (Bytes{0x02, 0x01, 0x81, 0x30, 0xB1, 0x03}));
    const Bytes longest = MakeFrame(0x01, std::string(300, '\xFF'));
    EXPECT_EQ(longest.size(), 257U);
    EXPECT_EQ(longest[1], 252);
    EXPECT_EQ(longest[255], (1 + 252 * 255) % 256);
}

TEST(TrackerValues, ByteExamples) {
    Bytes bytes(8);
    const auto two = std::span(bytes).first<2>();
    for (const auto& [value, high, low] :
         {std::tuple{-1, 0xFF, 0xFF}, {330, 0x01, 0x4A}, {540, 0x02, 0x1C}, {-32768, 0x80, 0}}) {
        putInt16(two, static_cast<std::int16_t>(value));
        EXPECT_EQ(bytes[0], high);
        EXPECT_EQ(bytes[1], low);
        EXPECT_EQ(int16From(two), value);
    }
    const auto eight = std::span(bytes).first<8>();
    putDouble(eight, 139.75);
    EXPECT_EQ(bytes, (Bytes{0x40, 0x61, 0x78, 0, 0, 0, 0, 0}));
    EXPECT_EQ(doubleFrom(eight), 139.75);
    Bytes digits(12);
    putClock(std::span(digits).first<12>(), at(2006, 12, 31, 23, 59, 58));
    EXPECT_EQ(digits, (Bytes{0, 6, 1, 2, 3, 1, 2, 3, 5, 9, 5, 8}));
    Bytes serial(16);
    putSerial(std::span(serial).first<16>(), "ABCDE");
    EXPECT_EQ(serial, (Bytes{'A', 'B', 'C', 'D', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    putSerial(std::span(serial).first<16>(), "0123456789ABCDEFG");
    EXPECT_EQ(serial.back(), 'F');
}

TEST_F(Tracker, SetsItsClockFrameByFrame) {
    EXPECT_EQ(finish(s.timeSetting.setTrackerClock(false)), std::nullopt);
    const std::vector<Bytes> expected{
        {0x02, 0x01, 0xA8, 0x31, 0xD9, 0x03},       {0x06},  // sun tracking off
        {0x02, 0x02, 0x48, 0x31, 0x32, 0xAB, 0x03}, {0x06},  // clock
        {0x02, 0x01, 0xA8, 0x31, 0xD9, 0x03},       {0x06}}; // sun tracking on
    EXPECT_EQ(s.port.written, expected);
    EXPECT_EQ(s.port.settings, "38400,N,8,1");
    EXPECT_FALSE(s.port.isOpen());
    EXPECT_TRUE(s.logged().empty());
    EXPECT_TRUE(s.op.told.empty());
    EXPECT_TRUE(s.timeForm.Label2[1].blue);
    EXPECT_NE(s.timeForm.Label2[1].caption.get().find("2006/12/31 23:59:58"), std::string::npos);
}

/// What the tracker can do wrong in the clock procedure, and what comes of it.
TEST_F(Tracker, ClockSettingFaults) {
    struct Case {
        const char* name;
        std::function<Bytes(Bytes)> spoil;
        Messages log;
        const char* told;
    };
    const std::string noTime = "Communication is unusual. Please check connection.";
    const std::string wrong = "A time setup at the appointed time went wrong.";
    const Case cases[] = {
        {"silence",
         [](const Bytes&) { return Bytes{}; },
         {"SunRunning OFF:Recive[ACK]", "CLOCK SET:Racive Error", "SunRunning OFF:Recive[ACK]"},
         noTime.c_str()},
        {"refusal",
         [](const Bytes&) { return Bytes{0x15}; },
         {"SunRunning OFF:Except[ACK]", "CLOCK SET:Except[ACK]", "SunRunning ON:Except[ACK]"},
         nullptr},
        {"no echo",
         [](const Bytes&) { return Bytes{0x06}; },
         {"SunRunning OFF:Except[CMD]", "CLOCK SET:Except[ACK]", "SunRunning ON:Except[CMD]"},
         wrong.c_str()},
        {"short echo",
         [](const Bytes& good) { return Bytes(good.begin(), good.begin() + 3); },
         {"SunRunning OFF:Except[CMD]", "CLOCK SET:Except[ACK]", "SunRunning ON:Except[CMD]"},
         wrong.c_str()},
        {"another echo",
         [](Bytes good) {
             good[3] = 0x77;
             return good;
         },
         {"SunRunning OFF:Except[CMD]", "CLOCK SET:Except[ACK]", "SunRunning ON:Except[CMD]"},
         wrong.c_str()},
    };
    for (const Case& c : cases) {
        const std::size_t logged = s.logged().size();
        s.op.told.clear();
        s.port.answer = [&](const Bytes& frame) {
            s.port.send(c.spoil(s.port.goodAnswer(frame[2])));
        };
        const std::string fault =
            c.told ? c.told : "The tracker did not take the time. See ERROR.LOG.";
        EXPECT_EQ(finish(s.timeSetting.setTrackerClock(false), 30s), fault) << c.name;
        EXPECT_EQ(s.timeForm.Label2[1].caption.get(), fault) << c.name;
        Messages messages = s.logged();
        messages.erase(messages.begin(), messages.begin() + static_cast<std::ptrdiff_t>(logged));
        EXPECT_EQ(messages, c.log) << c.name;
        EXPECT_EQ(s.op.told, c.told ? Messages{c.told} : Messages{}) << c.name;
        EXPECT_FALSE(s.port.isOpen()) << c.name;
        EXPECT_TRUE(s.timeForm.Command3.enabled) << c.name;
        EXPECT_FALSE(s.busy.active()) << c.name;
    }
}

TEST_F(Tracker, AReplyThatNeverComesFailsAtTheThirdTick) {
    std::uint8_t byte = 0;
    ASSERT_TRUE(s.link.initCommunication());
    s.clock.run(300ms); // the ticks come at whole seconds of the timer, not of the wait
    const Ticks begin = s.clock.ticks();
    EXPECT_FALSE(finish(s.link.Get1Char(byte)));
    EXPECT_EQ(s.clock.ticks() - begin, 2700ms);
    EXPECT_TRUE(s.logged().empty());
}

TEST_F(Tracker, PortFailures) {
    s.port.openable = false;
    EXPECT_NE(finish(s.timeSetting.setTrackerClock(false)), std::nullopt);
    EXPECT_EQ(s.logged(), Messages{"initCommunication:COM Port EEROR"});
    EXPECT_EQ(s.op.told, Messages{"Initialization of a communication port went wrong."});

    s.port.openable = true;
    s.port.unplugAfterInput = true; // in the middle of the first exchange
    s.port.answer = [&](const Bytes&) { s.port.send({0x06}); };
    EXPECT_NE(finish(s.timeSetting.setTrackerClock(false), 30s), std::nullopt);
    EXPECT_FALSE(s.port.isOpen());
    EXPECT_GT(s.countLogged("get1charERROR:Input/output error"), 0);

    s.port.unplugAfterInput = false;
    s.port.answer = [&](const Bytes& frame) { s.port.send(s.port.goodAnswer(frame[2])); };
    s.port.stuckOutput = 7; // a line that takes nothing off
    EXPECT_EQ(finish(s.timeSetting.setTrackerClock(false), 1min), std::nullopt);
    s.store.values["Communication/Port"] = "3";
    s.port.stuckOutput = 0;
    EXPECT_EQ(finish(s.timeSetting.setTrackerClock(false)), std::nullopt);
    EXPECT_EQ(s.port.lastPort, 3);
}

TEST_F(Tracker, ReceivesFrames) {
    struct Case {
        const char* name;
        Bytes bytes;
        bool received;
        const char* log;
    };
    const Case cases[] = {
        {"whole", {0x02, 0x02, 0x47, 0x41, 0x42, 0xCA, 0x03}, true, nullptr},
        {"no STX", {0x06, 0x02}, false, "recMessage:Except[STX] 6"},
        {"hexadecimal", {0xAB}, false, "recMessage:Except[STX] AB"},
        {"nothing", {}, false, "recMessage:STX/Receive ERROR"},
        {"no length", {0x02}, false, "recMessage:LEN/Receive ERROR"},
        {"no command", {0x02, 0x02}, false, "recMessage:CMD/Receive ERROR"},
        {"cut data", {0x02, 0x02, 0x47, 0x41}, false, "recMessage:DATA/Receive ERROR 1"},
        {"no sum", {0x02, 0x01, 0x47, 0x41}, false, "recMessage:SUM/Receive ERROR"},
        {"no end", {0x02, 0x01, 0x47, 0x41, 0x88}, false, "recMessage:ETX/Receive ERROR"},
        {"wrong end and sum",
         {0x02, 0x01, 0x47, 0x41, 0x00, 0x1F},
         false,
         "recMessage:Except[ETX] 1F"},
        {"wrong sum", {0x02, 0x01, 0x47, 0x41, 0x89, 0x03}, false, "recMessage:SUM ERROR"},
        {"no data", {0x02, 0x00, 0x47, 0x47, 0x03}, false, "recMessage:DATA/Receive ERROR 2"},
    };
    for (const Case& c : cases) {
        ASSERT_TRUE(s.link.initCommunication());
        s.port.written.clear();
        const std::size_t logged = s.logged().size();
        s.port.send(c.bytes, 1ms, 900ms); // as slow as a tick allows
        Reply reply;
        EXPECT_EQ(finish(s.link.recMessage(reply)), c.received) << c.name;
        const Messages messages = s.logged();
        EXPECT_EQ(messages.size() - logged, c.log ? 1U : 0U) << c.name;
        if (c.log) {
            EXPECT_EQ(messages.back(), c.log) << c.name;
        } else {
            EXPECT_EQ(reply.data, (Bytes{0x41, 0x42, 0}));
            EXPECT_EQ(reply.lastIndex, 1);
        }
        const bool refused = c.log && std::string(c.log) == "recMessage:SUM ERROR";
        EXPECT_EQ(s.port.written, refused ? std::vector<Bytes>{{0x15}} : std::vector<Bytes>{})
            << c.name;
    }
    // a frame of length 0 followed by a stream without end ends with the receive buffer
    ASSERT_TRUE(s.link.initCommunication());
    s.port.send({0x02, 0x00});
    s.port.send(Bytes(5000, 0x55));
    Reply reply;
    EXPECT_FALSE(finish(s.link.recMessage(reply)));
    EXPECT_EQ(s.logged().back(), "recMessage:DATA/Receive ERROR 513");
}

TEST_F(Tracker, ReadsItsOptions) {
    finish(s.options.activate());
    const std::vector<Bytes> expected{{0x02, 0x01, 0x47, 0x30, 0x77, 0x03}, {0x06},
                                      {0x02, 0x01, 0x81, 0x30, 0xB1, 0x03}, {0x06},
                                      {0x02, 0x01, 0x85, 0x30, 0xB5, 0x03}, {0x06}};
    EXPECT_EQ(s.port.written, expected);
    EXPECT_EQ(s.optionForm.txt_sn.text.get(), "ST-042");
    EXPECT_EQ(s.optionForm.txt_tz.text.get(), "540");
    EXPECT_EQ(s.optionForm.txt_lon.text.get(), "139.75");
    EXPECT_EQ(s.optionForm.txt_lat.text.get(), "35.50");
    EXPECT_EQ(s.optionForm.txt_org.text.get(), "359.99");
    EXPECT_EQ(s.module.site.latitude, 35.5);
    EXPECT_EQ(s.siteChanges, 1);
    EXPECT_FALSE(s.optionForm.working);
    EXPECT_FALSE(s.port.isOpen());
}

TEST_F(Tracker, AValueThatTheDialogWouldRefuseIsShownButNotStored) {
    s.port.site[0] = 0x02;
    s.port.site[1] = 0xD0; // 720 min
    finish(s.options.activate());
    EXPECT_EQ(s.optionForm.txt_tz.text.get(), "720");
    EXPECT_EQ(s.module.site.longitude, 139.315);
    EXPECT_EQ(s.siteChanges, 0);
    EXPECT_EQ(s.logged(), Messages{"OptionSetup Timezone:values out of range, not stored"});
}

TEST_F(Tracker, ReadingTellsWhatItChanged) {
    finish(s.options.activate());
    EXPECT_EQ(s.optionForm.status.caption.get(),
              "Read from the tracker. Latitude changed: 35.738 to 35.5. Longitude changed: 139.315 "
              "to 139.75.");
    finish(s.options.activate());
    EXPECT_EQ(s.optionForm.status.caption.get(), "Read from the tracker.") << "nothing any more";
    s.port.site[0] = 0x01;
    s.port.site[1] = 0x4A; // 330 min
    s.port.answer = [&](const Bytes& frame) {
        s.port.send(frame[2] == 0x47 ? Bytes{0x15} : s.port.goodAnswer(frame[2]));
    };
    finish(s.options.activate());
    EXPECT_EQ(s.optionForm.status.caption.get(),
              "Failed: OptionSetup Serial:Except[ACK]. Time zone changed: 540 to 330.");
    EXPECT_EQ(s.optionForm.lbl_hours.caption.get(), "= 5 h 30 min");
}

TEST_F(Tracker, ALatitudeBeyondThePoleIsNotTaken) {
    s.port.site[10] = 0xC0; // -120, as the station would write it
    s.port.site[11] = 0x5E;
    for (std::size_t i = 12; i < 18; ++i)
        s.port.site[i] = 0;
    finish(s.options.activate());
    EXPECT_EQ(s.optionForm.txt_lat.text.get(), "-120.00");
    EXPECT_EQ(s.module.site.latitude, 35.738);
    EXPECT_EQ(s.logged(), Messages{"OptionSetup Timezone:values out of range, not stored"});
}

TEST_F(Tracker, ShowsTheZonesHours) {
    const std::pair<const char*, const char*> cases[] = {{"540", "= 9 h"},
                                                         {"330", "= 5 h 30 min"},
                                                         {"-570", "= -9 h 30 min"},
                                                         {"0", "= 0 h"},
                                                         {"45", "= 45 min"},
                                                         {"-30", "= -30 min"},
                                                         {"", ""},
                                                         {"-", ""}};
    for (const auto& [minutes, hours] : cases) {
        s.optionForm.txt_tz.text = minutes;
        s.options.txt_tz_Change();
        EXPECT_EQ(s.optionForm.lbl_hours.caption.get(), hours) << minutes;
    }
}

TEST_F(Tracker, OptionReadingFaults) {
    s.port.answer = [&](const Bytes& frame) {
        Bytes answer = s.port.goodAnswer(frame[2]);
        if (frame[2] == 0x47) answer = {0x15};
        if (frame[2] == 0x81) answer = s.port.goodAnswer(0x85);       // another command's reply
        if (frame[2] == 0x85) answer.resize(answer.size() - 1, 0x00); // no end byte
        s.port.send(answer);
    };
    finish(s.options.activate());
    EXPECT_EQ(s.logged(),
              (Messages{"OptionSetup Serial:Except[ACK]", "OptionSetup Timezone:Except[ACK]",
                        "recMessage:ETX/Receive ERROR", "OptionSetup origin:Receive ERROR"}));
    EXPECT_FALSE(s.port.isOpen());
    EXPECT_FALSE(s.busy.active());
    EXPECT_NE(s.optionForm.status.caption.get().find("Failed"), std::string::npos);
}

TEST_F(Tracker, WritesItsOptions) {
    s.optionForm.txt_sn.text = "ABCDE";
    s.optionForm.txt_tz.text = " -330 ";
    s.optionForm.txt_lon.text = "139.75";
    s.optionForm.txt_lat.text = "-120"; // beyond the pole, but within the bound
    s.optionForm.txt_org.text = "359.99";
    finish(s.options.Command1_Click());
    const std::vector<Bytes> expected{{0x02, 0x02, 0x46, 0x31, 0x36, 0xAD, 0x03}, {0x06},
                                      {0x02, 0x02, 0x80, 0x31, 0x38, 0xE9, 0x03}, {0x06},
                                      {0x02, 0x01, 0x84, 0x38, 0xBC, 0x03},       {0x06}};
    EXPECT_EQ(s.port.written, expected);
    EXPECT_EQ(s.optionForm.txt_tz.text.get(), "-330"); // refreshed from what is stored
    EXPECT_EQ(s.optionForm.txt_lat.text.get(), "-120.00");
    EXPECT_EQ(s.module.site.Tz, -330);
    EXPECT_EQ(s.module.site.latitude, -120);
    EXPECT_EQ(s.module.origin, 359.99);
    EXPECT_EQ(s.siteChanges, 1);
}

TEST_F(Tracker, RefusesOptionsBeyondTheirBounds) {
    struct Case {
        const char *zone, *longitude, *latitude, *origin;
        const char* told;
        std::size_t frames;
    };
    const Case cases[] = {
        {"720", "0", "0", "", "Input Error TimeZone Data.", 0},
        {"-720", "0", "0", "", "Input Error TimeZone Data.", 0},
        {"", "0", "0", "0", "Input Error TimeZone Data.", 1}, // the origin is sent all the same
        {"719", "180", "0", "", "Input Error Longitude Data.", 0},
        {"719", "", "999", "", "Input Error Longitude Data.", 0},
        {"719", "-179.9", "x", "", "Input Error Latitude Data.", 0},
        {"719", "179.9", "-179.9", "360", nullptr, 1},
        {"0", "0", "0", "-1", nullptr, 1},
        {"0", "0", "0", "0", nullptr, 2},
    };
    for (const Case& c : cases) {
        s.port.written.clear();
        s.op.told.clear();
        s.optionForm.txt_sn.text = std::string();
        s.optionForm.txt_tz.text = c.zone;
        s.optionForm.txt_lon.text = c.longitude;
        s.optionForm.txt_lat.text = c.latitude;
        s.optionForm.txt_org.text = c.origin;
        const SiteValues before = s.module.site;
        finish(s.options.Command1_Click());
        EXPECT_EQ(s.op.told, c.told ? Messages{c.told} : Messages{}) << c.zone;
        EXPECT_EQ(s.port.written.size(), 2 * c.frames) << c.zone << c.longitude << c.origin;
        if (c.told) {
            EXPECT_EQ(s.module.site.Tz, before.Tz);
        }
    }
}

TEST_F(Tracker, PortChoice) {
    EXPECT_EQ(s.portSelection.storedIndex(), 0);
    EXPECT_TRUE(finish(s.portSelection.confirm(2)));
    EXPECT_EQ(s.store.values["Communication/Port"], "3");
    EXPECT_EQ(s.portSelection.storedIndex(), 2);
    EXPECT_FALSE(s.port.isOpen());
    s.port.openable = false;
    EXPECT_FALSE(finish(s.portSelection.confirm(0)));
    EXPECT_EQ(s.op.told, Messages{"Port(COM):1 is unusual. Please re-set up."});
    EXPECT_EQ(s.logged(), Messages{"ComPORT Setup ERROR"});
    EXPECT_EQ(s.store.values["Communication/Port"], "3");
    s.port.openable = true;
    s.store.values["Communication/Port"] = "7";
    EXPECT_EQ(s.portSelection.storedIndex(), std::nullopt);
    EXPECT_FALSE(finish(s.portSelection.confirm(std::nullopt)));
    EXPECT_EQ(s.op.told.back(), "Port(COM):7 is unusual. Please re-set up.");
}

/// Two procedures never share the port: the later one is told so and leaves it alone.
TEST_F(Tracker, OneProcedureAtATimeUsesThePort) {
    s.port.answer = [](const Bytes&) {};
    Task<> reading = s.options.activate();
    reading.start();
    EXPECT_NE(finish(s.timeSetting.setTrackerClock(true)), std::nullopt);
    EXPECT_FALSE(finish(s.portSelection.confirm(1)));
    EXPECT_TRUE(s.port.isOpen());
    EXPECT_FALSE(s.dailyClocks.isDue(s.clock.now(), false));
    EXPECT_TRUE(s.clock.runUntil([&] { return reading.done(); }, 1min));
    EXPECT_EQ(s.port.opened, 1);
    EXPECT_FALSE(s.port.isOpen());
}

TEST_F(Tracker, CameraClock) {
    EXPECT_EQ(clockQuery(at(2006, 7, 5, 9, 3, 0)),
              "?i_year=2006&i_mon=7&i_day=5&i_hour=9&i_min=3&i_sec=0");
    Task<> setting = s.timeSetting.activate();
    setting.start();
    EXPECT_FALSE(s.timeForm.Command3.enabled);
    s.clock.run(999ms);
    EXPECT_TRUE(s.wbSystemTm.urls.empty());
    s.clock.run(1ms);
    // the target time is taken once, before the first wait
    const std::string base =
        "http://" + s.panel.txtIp.text.get() + ":" + s.panel.txtPort.text.get();
    EXPECT_EQ(
        s.wbSystemTm.urls.back(),
        base + "/cgi/conf_sys_inp.cgi?i_year=2006&i_mon=12&i_day=31&i_hour=23&i_min=59&i_sec=58");
    s.clock.run(7s);
    EXPECT_EQ(s.timeForm.Label2[0].caption.get(), "カメラ時刻校正:2006/12/31 23:59:58");
    EXPECT_TRUE(s.timeForm.Label2[0].blue);
    EXPECT_EQ(s.wbSystemTm.urls.back(), base + "/cgi/live_s_hide2.cgi?rec=1");
    EXPECT_FALSE(setting.done());
    s.clock.run(3s);
    EXPECT_TRUE(setting.done());
    EXPECT_TRUE(s.timeForm.Command3.enabled);
    EXPECT_EQ(s.logged(), Messages{"Adjust Time : 2006/12/31 23:59:58"});
}

/// Once a day while recording, with every minute's picture taken all the same.
TEST(DailyClocks, RunOnceADayBetweenCaptures) {
    for (const auto& [interval, perHour] : {std::pair{"1", 60U}, {"2", 30U}, {"30", 2U}}) {
        TestStation s(at(2006, 11, 15, 8, 58));
        s.store.values["Settings/AdjTime"] = "1";
        s.setSchedule("9", "17", interval);
        s.start(true);
        s.clock.run(24h * 2);
        EXPECT_EQ(s.timeDialog, "open unloaded open unloaded open unloaded ") << interval;
        EXPECT_EQ(s.imagesOf("20061116").size(), 8 * perHour) << interval;
        EXPECT_TRUE(s.warnings.text.get().empty());
    }
}

TEST(DailyClocks, ASilentTrackerCostsAWarningAndNoPicture) {
    TestStation s(at(2006, 11, 15, 8, 58));
    s.store.values["Settings/AdjTime"] = "1";
    s.setSchedule("9", "17", "1");
    s.port.answer = [](const Bytes&) {};
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 17, 1));
    EXPECT_EQ(s.imagesOf("20061115").size(), 480U);
    EXPECT_EQ(s.warnings.text.get(), "The daily clock setting failed: Communication is unusual. "
                                     "Please check connection.");
    EXPECT_TRUE(s.op.told.empty());
    s.port.answer = [&](const Bytes& frame) { s.port.send(s.port.goodAnswer(frame[2])); };
    s.clock.run(24h);
    EXPECT_TRUE(s.warnings.text.get().empty());
    // switched off, or not recording: never
    TestStation off(at(2006, 11, 15, 8, 58));
    off.store.values["Settings/AdjTime"] = "1";
    off.start(false);
    off.clock.run(48h);
    EXPECT_EQ(off.timeDialog, "");
}

} // namespace
} // namespace orvane::test

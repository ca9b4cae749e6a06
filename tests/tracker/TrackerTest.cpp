#include "tests/tracker/TrackerStation.h"

namespace orvane::test {
namespace {

TEST(TrackerBytes, OfFramesAndValues) {
    EXPECT_EQ(MakeFrame(0x48), (Bytes{0x02, 0x00, 0x48, 0x48, 0x03}));
    EXPECT_EQ(MakeFrame(0x48, "12"), (Bytes{0x02, 0x02, 0x48, 0x31, 0x32, 0xAB, 0x03}));
    const Bytes longest = MakeFrame(0x01, std::string(300, '\xFF'));
    EXPECT_EQ(longest.size(), 257U);
    EXPECT_EQ(longest[1], 252);
    EXPECT_EQ(longest[255], (1 + 252 * 255) % 256);
    Bytes bytes(16);
    const std::span all(bytes);
    for (const auto& [value, high, low] :
         {std::tuple{-1, 0xFF, 0xFF}, {330, 0x01, 0x4A}, {540, 0x02, 0x1C}, {-32768, 0x80, 0}}) {
        putInt16(all.first<2>(), static_cast<std::int16_t>(value));
        EXPECT_EQ(std::pair(int{bytes[0]}, int{bytes[1]}), std::pair(high, low));
        EXPECT_EQ(int16From(all.first<2>()), value);
    }
    putDouble(all.first<8>(), 139.75);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 8), (Bytes{0x40, 0x61, 0x78, 0, 0, 0, 0, 0}));
    EXPECT_EQ(doubleFrom(all.first<8>()), 139.75);
    putClock(all.first<12>(), at(2006, 12, 31, 23, 59, 58));
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 12),
              (Bytes{0, 6, 1, 2, 3, 1, 2, 3, 5, 9, 5, 8}));
    putSerial(all.first<16>(), "ABCDE");
    EXPECT_EQ(bytes, (Bytes{'A', 'B', 'C', 'D', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    putSerial(all.first<16>(), "0123456789ABCDEFG");
    EXPECT_EQ(bytes.back(), 'F');
}

TEST_F(Tracker, SetsItsClockFrameByFrame) {
    EXPECT_EQ(finish(s.timeSetting.setTrackerClock(false)), std::nullopt);
    const std::vector<Bytes> expected{
        {0x02, 0x01, 0xA8, 0x31, 0xD9, 0x03},       {0x06},  // sun tracking off
        {0x02, 0x02, 0x48, 0x31, 0x32, 0xAB, 0x03}, {0x06},  // clock
        {0x02, 0x01, 0xA8, 0x31, 0xD9, 0x03},       {0x06}}; // sun tracking on
    EXPECT_EQ(s.port.written, expected);
    EXPECT_EQ(s.port.settings, "38400,N,8,1");
    EXPECT_TRUE(s.logged().empty() && s.op.told.empty());
    EXPECT_TRUE(s.timeForm.Label2[1].blue);
    EXPECT_TRUE(s.timeForm.Label2[1].caption.get().ends_with("2006/12/31 23:59:58"));
    expectAtRest();
}

/// What the tracker can do wrong in the clock procedure, and what comes of it.
TEST_F(Tracker, ClockSettingFaults) {
    const std::string wrong = "A time setup at the appointed time went wrong.";
    const Messages echoes{"SunRunning OFF:Except[CMD]", "CLOCK SET:Except[ACK]",
                          "SunRunning ON:Except[CMD]"};
    const struct {
        const char* name;
        Bytes answer;
        Messages log;
        std::string fault;
    } cases[] = {
        {"silence",
         {},
         {"SunRunning OFF:Recive[ACK]", "CLOCK SET:Racive Error", "SunRunning OFF:Recive[ACK]"},
         "Communication is unusual. Please check connection."},
        {"refusal",
         {0x15},
         {"SunRunning OFF:Except[ACK]", "CLOCK SET:Except[ACK]", "SunRunning ON:Except[ACK]"},
         "The tracker did not take the time. See ERROR.LOG."},
        {"no echo", {0x06}, echoes, wrong},
        {"short echo", {0x06, 0x02, 0x00}, echoes, wrong},
        {"another echo", {0x06, 0x02, 0x00, 0x77, 0x77, 0x03}, echoes, wrong}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        s.op.told.clear();
        answer([&](std::uint8_t, const Bytes&) { return c.answer; });
        EXPECT_EQ(finish(s.timeSetting.setTrackerClock(false), 30s), c.fault);
        EXPECT_EQ(s.timeForm.Label2[1].caption.get(), c.fault);
        EXPECT_FALSE(s.timeForm.Label2[1].blue);
        EXPECT_EQ(newlyLogged(), c.log);
        EXPECT_EQ(s.op.told, c.answer == Bytes{0x15} ? Messages{} : Messages{c.fault});
        expectAtRest();
    }
}

TEST_F(Tracker, AReplyThatNeverComesFailsAtTheThirdTick) {
    std::uint8_t byte = 0;
    ASSERT_TRUE(s.link.initCommunication());
    s.clock.run(300ms); // the ticks come at whole seconds of the timer, not of the wait
    const Ticks begin = s.clock.ticks();
    EXPECT_FALSE(finish(s.link.Get1Char(byte)));
    EXPECT_EQ(s.clock.ticks() - begin, 2700ms);
}

TEST_F(Tracker, PortFailures) {
    s.port.openable = false;
    EXPECT_NE(finish(s.timeSetting.setTrackerClock(false)), std::nullopt);
    EXPECT_EQ(s.logged(), Messages{"initCommunication:COM Port EEROR"});
    EXPECT_EQ(s.op.told, Messages{"Initialization of a communication port went wrong."});
    expectAtRest();
    s.port.openable = true;
    s.port.unplugAfterInput = true; // in the middle of the first exchange
    answer([](std::uint8_t, const Bytes&) { return Bytes{0x06}; });
    EXPECT_NE(finish(s.timeSetting.setTrackerClock(false), 30s), std::nullopt);
    EXPECT_GT(s.countLogged("get1charERROR:Input/output error"), 0);
    expectAtRest();
    s.port.unplugAfterInput = false;
    answerSoundly();
    s.port.stuckOutput = 7; // a line that takes nothing off
    s.store.values["Communication/Port"] = "3";
    EXPECT_EQ(finish(s.timeSetting.setTrackerClock(false), 1min), std::nullopt);
    EXPECT_EQ(s.port.lastPort, 3);
}

TEST_F(Tracker, ReceivesFrames) {
    const struct {
        Bytes bytes;
        const char* log; ///< null: it is whole
    } cases[] = {
        {{0x02, 0x02, 0x47, 0x41, 0x42, 0xCA, 0x03}, nullptr},
        {{0x06, 0x02}, "recMessage:Except[STX] 6"},
        {{0xAB}, "recMessage:Except[STX] AB"},
        {{}, "recMessage:STX/Receive ERROR"},
        {{0x02}, "recMessage:LEN/Receive ERROR"},
        {{0x02, 0x02}, "recMessage:CMD/Receive ERROR"},
        {{0x02, 0x02, 0x47, 0x41}, "recMessage:DATA/Receive ERROR 1"},
        {{0x02, 0x01, 0x47, 0x41}, "recMessage:SUM/Receive ERROR"},
        {{0x02, 0x01, 0x47, 0x41, 0x88}, "recMessage:ETX/Receive ERROR"},
        {{0x02, 0x01, 0x47, 0x41, 0x00, 0x1F}, "recMessage:Except[ETX] 1F"}, // and a wrong sum
        {{0x02, 0x01, 0x47, 0x41, 0x89, 0x03}, "recMessage:SUM ERROR"},
        {{0x02, 0x00, 0x47, 0x47, 0x03}, "recMessage:DATA/Receive ERROR 2"}}; // without data
    Reply reply;
    for (const auto& [bytes, log] : cases) {
        SCOPED_TRACE(log == nullptr ? "whole" : log);
        ASSERT_TRUE(s.link.initCommunication());
        s.port.written.clear();
        s.port.send(bytes, 1ms, 900ms); // as slow as a tick allows
        EXPECT_EQ(finish(s.link.recMessage(reply)), log == nullptr);
        EXPECT_EQ(newlyLogged(), log == nullptr ? Messages{} : Messages{log});
        const bool refused = log != nullptr && std::string(log) == "recMessage:SUM ERROR";
        EXPECT_EQ(s.port.written, refused ? std::vector<Bytes>{{0x15}} : std::vector<Bytes>{});
        if (log != nullptr) continue;
        EXPECT_EQ(reply.data, (Bytes{0x41, 0x42, 0}));
        EXPECT_EQ(reply.lastIndex, 1);
    }
    // a frame of length 0 followed by a stream without end ends with the receive buffer
    ASSERT_TRUE(s.link.initCommunication());
    s.port.send({0x02, 0x00});
    s.port.send(Bytes(5000, 0x55));
    EXPECT_FALSE(finish(s.link.recMessage(reply)));
    EXPECT_EQ(s.logged().back(), "recMessage:DATA/Receive ERROR 513");
}

/// USB adapters hand on what they hold every 8 to 16 ms, wherever that cuts an echo.
TEST_F(Tracker, AnEchoMayComeInTwoPortionsAndEndsWithSilence) {
    for (std::ptrdiff_t split = 1; split < 6; ++split) {
        answer([&](std::uint8_t, const Bytes& whole) {
            s.port.send(Bytes(whole.begin(), whole.begin() + split), 3ms);
            s.port.send(Bytes(whole.begin() + split, whole.end()), 3ms + 16ms);
            return Bytes();
        });
        EXPECT_EQ(finish(s.timeSetting.setTrackerClock(false)), std::nullopt) << split;
    }
    EXPECT_TRUE(s.logged().empty());
    // with the 2 ms of a look at the line
    for (const auto& [bytes, expected, took] :
         {std::tuple{Bytes{1, 2}, 9, 22ms}, {Bytes{1, 2, 3}, 3, 22ms}, {Bytes(4000, 7), 7, 2ms}}) {
        ASSERT_TRUE(s.link.initCommunication());
        s.port.send(bytes);
        std::uint8_t cmd = 9;
        const Ticks begin = s.clock.ticks();
        EXPECT_TRUE(finish(s.link.GetCmd(cmd)));
        EXPECT_EQ(cmd, expected);
        EXPECT_EQ(s.clock.ticks() - begin, took) << bytes.size();
        EXPECT_EQ(s.port.inputCount(), 0U);
    }
}

/// Bytes that come just within each byte's time-out used to hold a dialog for a minute.
TEST_F(Tracker, AnExchangeEndsAfterFifteenSeconds) {
    s.port.answer = [&](const Bytes& frame) {
        s.port.discardInput();
        s.port.send(s.port.goodAnswer(frame[2]), 1700ms, 1700ms);
    };
    ASSERT_TRUE(s.link.initCommunication());
    const Ticks begin = s.clock.ticks();
    Reply reply;
    EXPECT_EQ(finish(s.commands.request(TrackerCommand::ReadSite, reply)), Exchange::NoReply);
    EXPECT_EQ(s.clock.ticks() - begin, 15s);
    // the acknowledgement, three bytes and four of the data had come
    EXPECT_EQ(s.logged(), Messages{"recMessage:DATA/Receive ERROR 4"});
    s.link.closeCommunication();
    finish(s.options.activate(), 46s);
    EXPECT_EQ(s.countLogged("OptionSetup Serial:Receive ERROR"), 1);
    EXPECT_FALSE(s.port.isOpen());
}

TEST_F(Tracker, ThePortIsClosedHoweverItsProcedureEnds) {
    Task<> destroyed = s.options.activate();
    destroyed.start();
    EXPECT_TRUE(s.port.isOpen());
    destroyed.reset();
    expectAtRest();
    s.port.answer = [](const Bytes&) { throw std::runtime_error("unforeseen"); };
    EXPECT_THROW(finish(s.options.activate()), std::runtime_error);
    expectAtRest();
    EXPECT_THROW(finish(s.timeSetting.setTrackerClock(true)), std::runtime_error);
    expectAtRest();
    answerSoundly();
    s.port.closingFails = true;
    EXPECT_EQ(finish(s.timeSetting.setTrackerClock(true)), std::nullopt);
    EXPECT_EQ(s.logged(), Messages{"closeCommunication:COM Port ERROR"});
}

TEST_F(Tracker, PortChoice) {
    EXPECT_EQ(s.portSelection.storedIndex(), 0);
    EXPECT_TRUE(finish(s.portSelection.confirm(2)));
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

/// Two procedures never share the port, not even one that has vanished, or the end of the first
/// would close another's: the later one is told so and leaves it alone.
TEST_F(Tracker, OneProcedureAtATimeUsesThePort) {
    s.op.patience = 0ms;
    answer([](std::uint8_t, const Bytes&) { return Bytes{}; });
    Task<> reading = s.options.activate();
    reading.start();
    for (const bool vanished : {false, true}) {
        if (vanished) s.port.unplug();
        EXPECT_NE(finish(s.timeSetting.setTrackerClock(true), 0s), std::nullopt);
        EXPECT_FALSE(finish(s.portSelection.confirm(1), 0s));
        EXPECT_FALSE(s.dailyClocks.isDue(s.clock.now(), false));
    }
    EXPECT_TRUE(s.clock.runUntil([&] { return reading.done(); }, 1s));
    EXPECT_EQ(s.port.opened, 1);
    expectAtRest();
    answerSoundly();
    EXPECT_EQ(finish(s.timeSetting.setTrackerClock(true)), std::nullopt);
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
    const auto cgi =
        "http://" + s.panel.txtIp.text.get() + ":" + s.panel.txtPort.text.get() + "/cgi/";
    EXPECT_EQ(s.wbSystemTm.urls.back(), // the time is taken once, before the first wait
              cgi + "conf_sys_inp.cgi?i_year=2006&i_mon=12&i_day=31&i_hour=23&i_min=59&i_sec=58");
    s.clock.run(7s);
    EXPECT_EQ(s.timeForm.Label2[0].caption.get(), "カメラ時刻校正:2006/12/31 23:59:58");
    EXPECT_TRUE(s.timeForm.Label2[0].blue);
    EXPECT_EQ(s.wbSystemTm.urls.back(), cgi + "live_s_hide2.cgi?rec=1");
    EXPECT_FALSE(setting.done());
    s.clock.run(3s);
    EXPECT_TRUE(setting.done());
    EXPECT_TRUE(s.timeForm.Command3.enabled);
    EXPECT_EQ(s.logged(), Messages{"Adjust Time : 2006/12/31 23:59:58"});
}

TEST(DailyClocks, RunOnceADayAndASilentTrackerCostsAWarningAndNoPicture) {
    for (const bool automatic : {true, false}) {
        TestStation s(at(2006, 11, 15, 8, 58));
        s.port.answer = [](const Bytes&) {};
        s.store.values["Settings/AdjTime"] = "1";
        s.setSchedule("9", "17", "1");
        s.start(automatic);
        s.clock.runUntil(at(2006, 11, 15, 17, 1));
        EXPECT_EQ(s.imagesOf("20061115").size(), automatic ? 480U : 0U);
        EXPECT_EQ(s.warnings.text.get(), automatic ? "The daily clock setting failed: Communication"
                                                     " is unusual. Please check connection."
                                                   : "");
        EXPECT_TRUE(s.op.told.empty());
        s.port.answer = [&](const Bytes& frame) { s.port.send(s.port.goodAnswer(frame[2])); };
        s.clock.run(24h);
        EXPECT_EQ(s.imagesOf("20061116").size(), automatic ? 480U : 0U);
        EXPECT_EQ(s.warnings.text.get(), "");
        EXPECT_EQ(s.timeDialog, automatic ? "open unloaded open unloaded " : "");
    }
}

} // namespace
} // namespace orvane::test

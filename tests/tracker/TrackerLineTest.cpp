#include "tests/tracker/TrackerStation.h"

namespace orvane::test {
namespace {

/// What a line does that is slow, noisy or gone.
struct TrackerLine : Tracker {};

/// USB adapters hand on what they hold every 8 to 16 ms, wherever that cuts an echo.
TEST_F(TrackerLine, AnEchoMayComeInTwoPortions) {
    for (const Ticks gap : {8ms, 16ms})
        for (std::ptrdiff_t split = 1; split < 6; ++split) {
            s.port.answer = [&](const Bytes& frame) {
                const Bytes whole = s.port.goodAnswer(frame[2]);
                s.port.send(Bytes(whole.begin(), whole.begin() + split), 3ms);
                s.port.send(Bytes(whole.begin() + split, whole.end()), 3ms + gap);
            };
            EXPECT_EQ(finish(s.timeSetting.setTrackerClock(false)), std::nullopt)
                << split << ", " << gap.count() << " ms";
        }
    EXPECT_TRUE(s.logged().empty());
}

TEST_F(TrackerLine, AnEchoEndsWithSilenceAndAllThatIsThereIsRead) {
    const struct {
        Bytes bytes;
        std::uint8_t cmd;
        Ticks took; ///< with the 2 ms of a look at the line
    } cases[] = {{{1, 2}, 9, 22ms}, {{1, 2, 3}, 3, 22ms}, {Bytes(4000, 7), 7, 2ms}};
    for (const auto& [bytes, expected, took] : cases) {
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
TEST_F(TrackerLine, AnExchangeEndsAfterFifteenSeconds) {
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

TEST_F(TrackerLine, ThePortIsClosedHoweverItsProcedureEnds) {
    {
        Task<> destroyed = s.options.activate();
        destroyed.start();
        EXPECT_TRUE(s.port.isOpen());
    }
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

/// A line that is shorted or has the wrong speed.
TEST_F(TrackerLine, GarbageAtFullSpeedHoldsNobody) {
    s.port.answer = [&](const Bytes&) {
        s.port.send({0x06});
        for (Ticks delay = 2ms; delay < 2s; delay += 1ms)
            s.port.send(Bytes(4, 0x55), delay);
    };
    EXPECT_NE(finish(s.timeSetting.setTrackerClock(true), 100ms), std::nullopt);
    EXPECT_EQ(s.logged(), (Messages{"SunRunning OFF:Except[CMD]", "CLOCK SET:Except[ACK]",
                                    "SunRunning ON:Except[CMD]"}));
    finish(s.options.activate(), 100ms);
    EXPECT_EQ(s.countLogged("recMessage:Except[STX] 55"), 3);
    EXPECT_FALSE(s.port.isOpen());
}

/// A port that has vanished is still its procedure's, or the end of that would close another's.
TEST_F(TrackerLine, AVanishedPortIsNoOthersBeforeItsProcedureEnds) {
    s.port.answer = [](const Bytes&) {};
    Task<> reading = s.options.activate();
    reading.start();
    s.port.unplug();
    EXPECT_NE(finish(s.timeSetting.setTrackerClock(true), 0s), std::nullopt);
    EXPECT_EQ(s.port.opened, 1);
    EXPECT_TRUE(s.clock.runUntil([&] { return reading.done(); }, 1s));
    EXPECT_GT(s.countLogged("get1charERROR:Input/output error"), 0);
    answerSoundly();
    EXPECT_EQ(finish(s.timeSetting.setTrackerClock(true)), std::nullopt);
}

} // namespace
} // namespace orvane::test

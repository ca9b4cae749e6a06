#include "tests/support/StationDay.h"

namespace orvane::test {
namespace {

using Lines = std::vector<std::string>;

[[noreturn]] void fail() {
    throw std::runtime_error("unforeseen");
}

struct FailingViews final : ImageViews {
    void refreshThumbnails(const ThumbnailHistory&) override {}
    void showLatest(const std::filesystem::path&) override {}
    void showLive(const std::string&) override { fail(); }
    void tellLive(const std::string&) override {}
};

TEST(Faults, AreLoggedOnceAMinuteEachAndToldOnce) {
    TestStation s(at(2006, 11, 15));
    s.op.patience = 10min;
    const auto faultOf = [](const char* text) {
        return std::make_exception_ptr(std::runtime_error(text));
    };
    for (int i = 0; i < 60 * 20; ++i) { // as two windows that cannot be painted
        s.faults.tell("Orvane", faultOf("first"));
        s.faults.tell("Orvane", faultOf("second"));
        s.clock.run(100ms);
    }
    s.clock.run(1min);
    const std::string end = "\nThe program goes on. Please note this text and tell whoever "
                            "maintains the program.";
    EXPECT_EQ(s.op.told,
              (Lines{"A fault occurred: first" + end, "A fault occurred: second" + end}));
    EXPECT_EQ(s.countLogged("Orvane:first"), 2);
    EXPECT_EQ(s.countLogged("Orvane:second (600 times)"), 2);
    EXPECT_EQ(s.logged().size(), 8U);
    s.clock.run(10min);
    s.faults.tell("Orvane", faultOf("first")); // the box was closed
    EXPECT_EQ(s.op.told.size(), 3U);
    s.clock.run(2min);
    EXPECT_EQ(s.logged().size(), 9U) << "no count of a single one";
    EXPECT_TRUE(s.faults.attempt("here", [] {}));
    EXPECT_FALSE(s.faults.attempt("here", [] { throw 1; }));
    EXPECT_EQ(s.logged().back(), "here:unknown fault");
}

/// What nobody foresaw, in each part of the main loop: it is told in few lines.
TEST(Faults, TheRecordingGoesOn) {
    static FailingViews views;
    const auto failAtText = [](const std::string& text) {
        if (!text.empty()) fail();
    };
    const auto failWhenShown = [](bool visible) {
        if (visible) fail();
    };
    const struct {
        const char* where;
        std::function<void(TestStation&)> spoil;
    } cases[] = {
        // at every look at the day, and at the disk
        {"MainLoop:unforeseen", [](auto& s) { s.station.keepAwake = [](bool) { fail(); }; }},
        {"MainLoop:unforeseen", [&](auto& s) { s.panel.lbl_free.caption.observe(failAtText); }},
        {"LiveView:unforeseen", [](auto& s) { s.views.shown = &views; }},
        {"Synchronisation:unforeseen",
         [&](auto& s) { s.panel.pgb_run.visible.observe(failWhenShown); }},
        {"DailyClocks:unforeseen",
         [](auto& s) {
             s.store.values["Settings/AdjTime"] = "1";
             s.port.answer = [](const Bytes&) { fail(); };
         }},
        {"Timer1:unforeseen", [&](auto& s) { s.panel.Label13.caption.observe(failAtText); }},
    };
    for (const auto& [where, spoil] : cases) {
        SCOPED_TRACE(where);
        TestStation s(at(2006, 11, 15, 8, 50));
        s.setSchedule("9", "17", "1");
        spoil(s);
        s.start(true);
        s.panel.chkLive.ticked = true;
        s.clock.runUntil(at(2006, 11, 15, 11, 0));
        EXPECT_EQ(s.imagesOf("20061115").size(), 120U);
        EXPECT_GT(s.countLogged(where), 0);
        EXPECT_LT(s.logged().size(), 2U * 130 + 10);
        EXPECT_TRUE(s.timeDialog.empty() || s.timeDialog == "open unloaded ") << s.timeDialog;
        EXPECT_FALSE(s.port.isOpen());
    }
}

TEST(Faults, PassesThatFailComeLessAndLessOften) {
    TestStation s(at(2006, 11, 15, 8, 59));
    s.setSchedule("9", "17", "1");
    bool broken = true;
    std::vector<Ticks> failures;
    s.panel.Label7.caption.observe([&](const std::string& text) {
        if (!broken || text != "Recording Now...") return;
        failures.push_back(s.clock.ticks());
        fail();
    });
    s.start(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 10));
    ASSERT_GT(failures.size(), 10U);
    EXPECT_EQ(failures[1] - failures[0], 200ms);
    EXPECT_EQ(failures[2] - failures[1], 400ms);
    EXPECT_EQ(failures.back() - *(failures.end() - 2), 10s);
    EXPECT_LT(s.logged().size(), 30U);
    broken = false;
    s.clock.runUntil(at(2006, 11, 15, 9, 20));
    EXPECT_EQ(s.imagesOf("20061115").size(), 10U);
    // and a failure later begins with a short pause again
    failures.clear();
    broken = true;
    s.clock.runUntil(at(2006, 11, 15, 9, 21));
    ASSERT_GT(failures.size(), 2U);
    EXPECT_EQ(failures[1] - failures[0], 200ms);
}

struct ErrorLogTest : StationDay {
    ErrorLogTest() { start(at(2006, 11, 15, 9, 29, 59)); }
};

/// "DownLoad Error" stands for each attempt, its reason once a minute with its count.
TEST_F(ErrorLogTest, SaysWhyADownloadFailed) {
    s->http.answer = failing("HTTP status 503");
    s->start(true);
    const std::size_t before = s->logged().size();
    runUntil(9, 30, 30);
    const int first = s->countLogged("DownLoad Error");
    s->http.answer = failing("refused");
    runUntil(9, 31, 50);
    const int second = s->countLogged("DownLoad Error") - first;
    const Lines log = s->logged();
    EXPECT_EQ(log[before], "DownLoad Error");
    EXPECT_EQ(log[before + 1], "Capture:HTTP status 503");
    EXPECT_GT(first, 10);
    EXPECT_EQ(s->countLogged("Capture:HTTP status 503 (" + std::to_string(first) + " times)"), 1);
    EXPECT_EQ(log.back(), "Capture:refused (" + std::to_string(second) + " times)");
    EXPECT_EQ(log.size() - before, static_cast<std::size_t>(first + second + 4));
    // a picture tells the count before its minute is over
    runUntil(10, 0, 5);
    s->http.answer = [attempts = 0](const std::string&) mutable {
        return ++attempts < 3 ? FakeHttp::failed("late") : FakeHttp::picture("x");
    };
    runUntil(10, 0, 20);
    EXPECT_EQ(s->logged().back(), "Capture:late (2 times)");
}

TEST_F(ErrorLogTest, StampsItsLinesAndFlashesThemOnTheStatusLabel) {
    const std::string& label = s->panel.Label7.caption.get();
    s->panel.Label7.caption = "Ready";
    EXPECT_TRUE(s->log.write("recMessage:SUM ERROR"));
    EXPECT_TRUE(s->log.write(""));
    EXPECT_EQ(contentsOf(s->module.programFolder / "ERROR.LOG"),
              "2006/11/15 09:29:59 recMessage:SUM ERROR\r\n2006/11/15 09:29:59 \r\n");
    EXPECT_EQ(label, "Ready") << "hidden ones";
    s->log.write("first", true);
    s->log.write("second", true);
    EXPECT_EQ(label, "second");
    s->clock.run(10ms);
    EXPECT_EQ(label, "Ready");
    s->log.write("third", true);
    s->panel.Label7.caption = "Recording Now..."; // newer than the flash: it stays
    s->clock.run(10ms);
    EXPECT_EQ(label, "Recording Now...");
}

TEST_F(ErrorLogTest, AFailureIsAResultAndAWarningAndStopsNothing) {
    std::filesystem::create_directory(s->module.programFolder / "ERROR.LOG");
    EXPECT_FALSE(s->log.write("x"));
    recordUntil(9, 31);
    EXPECT_EQ(count(), 1);
    EXPECT_EQ(s->warnings.text.get(), "ERROR.LOG in the program's folder cannot be written.");
    // a station that has nothing to log finds out as well
    std::filesystem::remove(s->module.programFolder / "ERROR.LOG");
    s->clock.run(1min);
    EXPECT_EQ(s->warnings.text.get(), "");
    s->clock.run(1min);
    EXPECT_EQ(s->logged(), Lines{"ErrorLog:3 lines could not be written"});
}

} // namespace
} // namespace orvane::test

#pragma once

#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {

using Messages = std::vector<std::string>;

/// A station beside its tracker, whose clock timer bounds every wait.
struct Tracker : testing::Test {
    Tracker() { s.status.initStatus(); }

    template <class T>
    T finish(Task<T> task, std::chrono::milliseconds limit = 1min) {
        task.start();
        EXPECT_TRUE(s.clock.runUntil([&] { return task.done(); }, limit));
        return task.result();
    }
    /// From now on frames are answered with what `spoil` makes of a sound answer.
    void answer(std::function<Bytes(std::uint8_t cmd, const Bytes& sound)> spoil) {
        s.port.answer = [this, spoil = std::move(spoil)](const Bytes& frame) {
            s.port.send(spoil(frame[2], s.port.goodAnswer(frame[2])));
        };
    }
    void answerSoundly() {
        answer([](std::uint8_t, const Bytes& sound) { return sound; });
    }
    /// What has been logged since this was asked last.
    Messages newlyLogged() {
        const Messages all = s.logged();
        Messages fresh(all.begin() + logged_, all.end());
        logged_ = static_cast<std::ptrdiff_t>(all.size());
        return fresh;
    }
    /// Whatever came of a procedure, it is over and another one may begin.
    void expectAtRest() const {
        EXPECT_FALSE(s.port.isOpen());
        EXPECT_FALSE(s.busy.active());
        EXPECT_TRUE(s.timeForm.Command3.enabled);
        EXPECT_TRUE(s.optionForm.Command1.enabled);
        EXPECT_FALSE(s.optionForm.working);
    }

    TestStation s{at(2006, 12, 31, 23, 59, 58)};

  private:
    std::ptrdiff_t logged_ = 0;
};

} // namespace orvane::test

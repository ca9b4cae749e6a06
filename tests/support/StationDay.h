#pragma once

#include "tests/support/TestPictures.h"
#include "tests/support/TestStation.h"

#include <gtest/gtest.h>

namespace orvane::test {

/// What a camera answers that fails.
inline std::function<HttpReply(const std::string&)> failing(const std::string& fault) {
    return [fault](const std::string&) { return FakeHttp::failed(fault); };
}

/// Whether `part` stands in the text; says both where not.
inline testing::AssertionResult has(const std::string& text, const std::string& part) {
    return testing::IsSubstring("part", "text", part, text);
}

/// A station on 15 November 2006 that fills no gaps, and those that are started after it.
class StationDay : public testing::Test {
  protected:
    /// The program before ends without a farewell; this one finds its settings and its data folder.
    void start(WallTime time) {
        auto next = std::make_unique<TestStation>(time);
        if (s) {
            std::filesystem::remove(next->dataFolder());
            std::filesystem::rename(s->dataFolder(), next->dataFolder());
            next->store.values = s->store.values;
            next->store.values["DataPath/PathDataFile"] = utf8FromPath(next->dataFolder());
        }
        next->store.values["Settings/FillGaps"] = "0";
        s = std::move(next);
    }
    void runUntil(int hour, int minute, int second = 0) {
        s->clock.runUntil(at(2006, 11, 15, hour, minute, second));
    }
    void recordUntil(int hour, int minute, int second = 0) {
        s->start(true);
        runUntil(hour, minute, second);
    }
    /// "Ready, start": the status line, and the buttons that can be pressed.
    std::string looks() const {
        return s->panel.Label7.caption.get() + (s->panel.Command1.enabled ? ", start" : "") +
               (s->panel.Command2.enabled ? ", stop" : "");
    }
    int count(const std::string& day = "20061115") const {
        return static_cast<int>(s->imagesOf(day).size());
    }
    std::string ledger(const std::string& day = "20061115") const {
        return contentsOf(s->dataFolder() / "Ledger" / (day + ".csv"));
    }

    std::unique_ptr<TestStation> s;
};

} // namespace orvane::test

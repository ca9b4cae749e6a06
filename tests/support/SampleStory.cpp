#include "tests/support/SampleStory.h"

namespace orvane::test {

namespace {

using enum Happens;

constexpr int hm(int hour, int minute) {
    return hour * 60 + minute;
}

constexpr SampleSchedule kQuarters{hm(6, 0), hm(20, 0), 15};
constexpr SampleSchedule kNight{0, hm(23, 59), 10};
constexpr SampleSchedule kMinutes{hm(8, 0), hm(12, 0), 1};

} // namespace

const std::vector<SampleEvent>& sampleStory() {
    static const std::vector<SampleEvent> story{
        {0, hm(8, 5), Start},
        // an outage that nothing fills, and one that the camera's store fills in part
        {3, hm(10, 5), Fails, "HTTP status 503"},
        {3, hm(13, 15), Works},
        {4, hm(9, 5), Fails, "no answer"},
        {4, hm(11, 5), Works},
        {4, hm(11, 12), Fill, "", 20},
        // another schedule in the middle of a day, and the old one again after a day's end
        {6, hm(12, 3), Off},
        {6, hm(12, 4), On, "", 0, kQuarters},
        {7, hm(21, 0), Off},
        {7, hm(21, 1), On},
        // switched off for an afternoon, and over a whole day
        {9, hm(12, 35), Off},
        {9, hm(16, 25), On},
        {10, hm(17, 55), Off},
        {12, hm(5, 40), On},
        // ended in the afternoon, started in the morning
        {14, hm(15, 0), End},
        {15, hm(8, 0), Start},
        // killed behind a capture, started two days later
        {18, hm(14, 20), Kill},
        {20, hm(9, 41), Start},
        // restarts within a day: by a power cut, and in order, when the store helps out
        {21, hm(11, 43), Kill},
        {21, hm(11, 52), Start},
        {22, hm(10, 15), End},
        {22, hm(10, 47), Start},
        {22, hm(10, 52), Fill, "", 20},
        // killed behind a capture and started on the same day
        {23, hm(16, 30), Kill},
        {23, hm(16, 44), Start},
        // an outage on a day whose ledger will be lost
        {25, hm(7, 5), Fails, "no answer"},
        {25, hm(8, 5), Works},
        // the power fails while a line is written
        {26, hm(15, 32), Kill},
        {27, hm(7, 15), Start},
        {28, hm(9, 5), Fails, "HTTP status 503"},
        {28, hm(9, 35), Works},
        // nights as well, and summer time begins
        {29, hm(20, 5), Off},
        {29, hm(20, 6), On, "", 0, kNight},
        {31, hm(2, 0), Forward},
        {32, hm(20, 5), Off},
        {32, hm(20, 6), On},
        // a picture a minute, with gaps
        {36, hm(5, 0), Off},
        {36, hm(5, 1), On, "", 0, kMinutes},
        {36, hm(9, 30), Fails, "The host is not known"},
        {36, hm(9, 37), Works},
        {36, hm(20, 0), Off},
        {36, hm(20, 1), On},
        // pictures that come late
        {38, hm(9, 5), Late, "", 1},
        {38, hm(11, 5), Late, "", 2},
        {38, hm(18, 5), Late, "", 0},
        // summer time ends in a night with two outages, of the first hour and of the second
        {44, hm(18, 35), Off},
        {44, hm(18, 36), On, "", 0, kNight},
        {46, hm(2, 15), Fails, "no answer"},
        {46, hm(2, 35), Works},
        {46, hm(3, 0), Back},
        {46, hm(2, 25), Fails, "HTTP status 404"},
        {46, hm(2, 45), Works},
        {46, hm(20, 5), Off},
        {46, hm(20, 6), On},
        // switched off, then ended; started without recording
        {52, hm(9, 5), Off},
        {52, hm(9, 35), End},
        {52, hm(11, 5), StartOff},
        {52, hm(12, 5), On},
        // killed while recording is off: from its last line to the next start it was not running
        {53, hm(9, 7), Off},
        {53, hm(9, 8), Kill},
        {53, hm(11, 5), Start},
        {54, hm(7, 5), Fails, "Saved as \"a, b\": no space"},
        {54, hm(7, 25), Works},
        // an outage of a whole day
        {55, hm(23, 5), Fails, "no answer"},
        {56, hm(23, 5), Works},
        {58, hm(15, 15), Fails, "HTTP status 503"},
        {58, hm(16, 35), Works},
        {58, hm(16, 42), Fill, "", 30},
    };
    return story;
}

const std::vector<SampleHarm>& sampleHarms() {
    static const std::vector<SampleHarm> harms{
        {24, hm(7, 0), Harm::Empty},
        {24, hm(7, 10), Harm::Cut},
        {24, hm(7, 20), Harm::Zeros},
        {24, hm(7, 30), Harm::Renamed, "picture of 7.30.jpg"},
        {24, hm(7, 40), Harm::Renamed, "20061115_256000_00.jpg"},
        {24, hm(7, 50), Harm::Removed},
        {24, hm(8, 0), Harm::Tail, "what a camera puts behind a picture"},
        {24, hm(8, 10), Harm::Cut},
        // what was fetched may be lost as well: then the reason of the miss is known again
        {58, hm(15, 30), Harm::Empty},
        {58, hm(9, 0), Harm::Cut},
    };
    return harms;
}

const std::vector<SampleExtra>& sampleExtras() {
    static const std::vector<SampleExtra> extras{
        {24, 24, hm(8, 10), "07_00"},                               // beside a broken capture
        {40, 40, hm(4, 58), "00_00"},                               // outside the window
        {40, 40, hm(9, 5), "07_00"},                                // between two due minutes
        {40, 40, hm(9, 5), "37_00"},  {40, 40, hm(9, 10), "07_00"}, // beside a capture
        {40, 40, hm(22, 0), "00_00"}, {40, 41, 0, "07_00"}, // a run that went on past midnight
        {3, 3, hm(10, 11), "07_00"},  // a minute after a missed one: no late capture
        {11, 11, hm(12, 0), "07_00"}, // on a day without recording
        {15, 15, hm(6, 30), "12_00"}, // while the program was not running
    };
    return extras;
}

const std::vector<SampleLedgerHarm>& sampleLedgerHarms() {
    static const std::vector<SampleLedgerHarm> harms{{25, LedgerHarm::Removed},
                                                     {26, LedgerHarm::Cut},
                                                     {28, LedgerHarm::Nonsense},
                                                     {34, LedgerHarm::Emptied}};
    return harms;
}

} // namespace orvane::test

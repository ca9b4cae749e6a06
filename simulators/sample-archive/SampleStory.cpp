#include "simulators/sample-archive/SampleArchive.h"

namespace samplearchive {

namespace {

using enum Happens;

/// A day of the story, and hours and minutes: {3, 1005} is five past ten.
struct Moment {
    int day;
    int time;
};

struct Story {
    std::vector<SampleEvent> events;

    void add(Moment when, Happens what, const char* text = "", int number = 0,
             const SampleSchedule& schedule = kSampleSchedule) {
        events.push_back(
            {when.day, when.time / 100 * 60 + when.time % 100, what, text, number, schedule});
    }
    void outage(Moment from, Moment until, const char* text) {
        add(from, Fails, text);
        add(until, Works);
    }
    void off(Moment from, Moment until, const SampleSchedule& next = kSampleSchedule) {
        add(from, Off);
        add(until, On, "", 0, next);
    }
    /// `how` is `End` or `Kill`.
    void away(Moment from, Happens how, Moment until) {
        add(from, how);
        add(until, Start);
    }
};

constexpr SampleSchedule kQuarters{6 * 60, 20 * 60, 15};
constexpr SampleSchedule kNight{0, 23 * 60 + 59, 10};
constexpr SampleSchedule kMinutes{8 * 60, 12 * 60, 1};

std::vector<SampleEvent> told() {
    Story story;
    story.add({0, 805}, Start);
    story.outage({3, 1005}, {3, 1315}, "HTTP status 503"); // nothing fills it
    story.outage({4, 905}, {4, 1105}, "no answer");        // the camera's store fills it in part
    story.add({4, 1112}, Fill, "", 20);
    story.off({6, 1203}, {6, 1204}, kQuarters); // another schedule in the middle of a day
    story.off({7, 2100}, {7, 2101});            // and the old one again after a day's end
    story.off({9, 1235}, {9, 1625}); // switched off for an afternoon, and over a whole day
    story.off({10, 1755}, {12, 540});
    story.away({14, 1500}, End, {15, 800});   // ended in the afternoon, started in the morning
    story.away({18, 1420}, Kill, {20, 941});  // killed behind a capture, started two days later
    story.away({21, 1143}, Kill, {21, 1152}); // a power cut of some minutes
    story.away({22, 1015}, End, {22, 1047});  // a restart, and the store helps out
    story.add({22, 1052}, Fill, "", 20);
    story.away({23, 1630}, Kill, {23, 1644}); // killed behind a capture and started on the same day
    story.outage({25, 705}, {25, 805}, "no answer"); // an outage on a day whose ledger will be lost
    story.away({26, 1532}, Kill, {27, 715});         // the power fails while a line is written
    story.outage({28, 905}, {28, 935}, "HTTP status 503");
    story.off({29, 2005}, {29, 2006}, kNight); // nights as well, and summer time begins
    story.add({31, 200}, Forward);
    story.off({32, 2005}, {32, 2006});
    story.off({36, 500}, {36, 501}, kMinutes); // a picture a minute, with gaps
    story.outage({36, 930}, {36, 937}, "The host is not known");
    story.off({36, 2000}, {36, 2001});
    story.add({38, 905}, Late, "", 1); // pictures that come late
    story.add({38, 1105}, Late, "", 2);
    story.add({38, 1805}, Late, "", 0);
    // summer time ends in a night with an outage of either hour
    story.off({44, 1835}, {44, 1836}, kNight);
    story.outage({46, 215}, {46, 235}, "no answer");
    story.add({46, 300}, Back);
    story.outage({46, 225}, {46, 245}, "HTTP status 404");
    story.off({46, 2005}, {46, 2006});
    story.add({52, 905}, Off); // switched off, then ended; started without recording
    story.add({52, 935}, End);
    story.add({52, 1105}, StartOff);
    story.add({52, 1205}, On);
    // killed while recording is off: from its last line to the next start it was not running
    story.add({53, 907}, Off);
    story.away({53, 908}, Kill, {53, 1105});
    story.outage({54, 705}, {54, 725}, "Saved as \"a, b\": no space");
    story.outage({55, 2305}, {56, 2305}, "no answer"); // an outage of a whole day
    story.outage({58, 1515}, {58, 1635}, "HTTP status 503");
    story.add({58, 1642}, Fill, "", 30);
    return story.events;
}

} // namespace

const std::vector<SampleEvent>& sampleStory() {
    static const std::vector<SampleEvent> story = told();
    return story;
}

} // namespace samplearchive

#include "simulators/sun-tracker/CommandLine.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

using namespace suntracker;

TEST(SunTrackerFaults, RandomFaultsRepeatWithTheirSeed) {
    auto draw = [](const QString& seed) {
        FaultSource source;
        source.setRule({parseFaults("random:" + seed).faults, 0});
        QStringList drawn;
        for (int turn = 0; turn < 400; ++turn)
            drawn << textOf(source.next(turn % 2 == 0));
        return drawn;
    };
    EXPECT_EQ(draw("7"), draw("7"));
    EXPECT_NE(draw("7"), draw("8"));
    for (const char* name : {"none", "hangup", "wrong-echo", "wrong-reply", "long", "silence"})
        EXPECT_FALSE(draw("7").filter(name).isEmpty()) << name;
}

TEST(SunTrackerLink, ReplacesAnOlderLinkButNoFile) {
    QTemporaryDir folder;
    const QString path = folder.filePath("tracker");
    ASSERT_TRUE(QFile::link("/dev/gone", path));
    EXPECT_TRUE(SunTracker({.link = path}).start());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    SunTracker refused({.link = path});
    EXPECT_FALSE(refused.start());
    EXPECT_TRUE(refused.errorString().contains(path));
    EXPECT_TRUE(file.exists());
}

TEST(SunTrackerCommandLine, RefusesWhatItDoesNotUnderstand) {
    for (const char* wrong :
         {"--nonsense", "--baud=-1", "--timezone=1.5", "--longitude=east", "--running=yes",
          "--serial=12345678901234567", "--fault=no-such", "--link=", "argument"})
        EXPECT_FALSE(parseCommandLine({"sun-tracker", wrong}).error.isEmpty()) << wrong;
    const CommandLine line = parseCommandLine(
        {"sun-tracker", "--timezone", "-210", "--latitude", "-35.5", "--running", "off"});
    EXPECT_EQ(line.error, "");
    EXPECT_EQ(line.options.values.timeZone, -210);
    EXPECT_EQ(line.options.values.latitude, -35.5);
    EXPECT_FALSE(line.options.values.running);
}

} // namespace

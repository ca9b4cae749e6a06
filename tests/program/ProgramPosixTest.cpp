#include "simulators/sun-tracker/SunTracker.h"
#include "tests/support/Finish.h"
#include "tests/support/TempFolder.h"

#include <QProcess>

namespace orvane::test {
namespace {

/// What main.cpp and Program do beside building the objects: a COM port's device, the fault that
/// leaves a handler, the end of the session. The program has a folder and settings of its own.
TEST(ProgramTest, ReachesItsTrackerOutlivesAHandlersFaultAndEndsWithTheSession) {
    suntracker::SunTracker tracker{suntracker::SunTrackerOptions{}};
    ASSERT_TRUE(tracker.start()) << tracker.errorString().toStdString();
    const TempFolder folder(std::filesystem::temp_directory_path()); // none may run in memory
    std::filesystem::copy_file(ORVANE_PROGRAM, folder.path() / "orvane");
    const auto settings = folder.path() / "Orvane" / "Orvane.ini";
    writeFile(settings, "[Communication]\nPort=2\nDevice1=/nowhere\nDevice2=" +
                            tracker.portPath().toStdString() + "\n");
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QString options = environment.value("ASAN_OPTIONS") + ":verify_asan_link_order=0";
    for (const auto& [name, value] :
         {std::pair<const char*, QString>{"QT_QPA_PLATFORM", "offscreen"},
          {"XDG_CONFIG_HOME", QString::fromStdString(folder.path().string())},
          {"LD_PRELOAD", ORVANE_HAND},
          {"ASAN_OPTIONS", options}})
        environment.insert(name, value);
    QProcess program;
    program.setProcessEnvironment(environment);
    program.setProcessChannelMode(QProcess::MergedChannels);
    program.start(QString::fromStdString((folder.path() / "orvane").string()), {});
    runEventLoopUntil([&] { return program.state() == QProcess::NotRunning; });
    const std::string log = contentsOf(folder.path() / "ERROR.LOG");
    SCOPED_TRACE(program.readAll().toStdString() + log);
    EXPECT_GT(tracker.counts().commands, 0);
    EXPECT_NE(log.find("Orvane:a handler's fault"), std::string::npos);
    EXPECT_NE(log.find("Orvane Ending (the session ends)"), std::string::npos);
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_NE(contentsOf(settings).find("StartHour="), std::string::npos) << "stored at the end";
}

} // namespace
} // namespace orvane::test

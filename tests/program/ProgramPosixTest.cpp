#include "simulators/sun-tracker/SunTracker.h"
#include "tests/support/Finish.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

#include <QProcess>

namespace orvane::test {
namespace {

/// The program itself, in a folder and with settings of its own.
struct ProgramTest : testing::Test {
    ProgramTest() {
        std::filesystem::copy_file(ORVANE_PROGRAM, folder.path() / "orvane");
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        environment.insert("XDG_CONFIG_HOME", QString::fromStdString(folder.path().string()));
        program.setProcessEnvironment(environment);
        program.setProcessChannelMode(QProcess::MergedChannels);
    }
    ~ProgramTest() override {
        program.kill();
        program.waitForFinished();
    }
    void preloadHand() {
        QProcessEnvironment environment = program.processEnvironment();
        environment.insert("LD_PRELOAD", ORVANE_HAND);
        const QString options = environment.value("ASAN_OPTIONS");
        environment.insert("ASAN_OPTIONS", options + ":verify_asan_link_order=0");
        program.setProcessEnvironment(environment);
    }
    void writeSettings(const std::string& text) {
        writeFile(folder.path() / "Orvane" / "Orvane.ini", text);
    }
    void runToItsEnd() {
        program.start(QString::fromStdString((folder.path() / "orvane").string()), {});
        runEventLoopUntil([&] { return program.state() == QProcess::NotRunning; });
        output = program.readAll().toStdString();
    }
    std::string log() const { return contentsOf(folder.path() / "ERROR.LOG"); }

    TempFolder folder{std::filesystem::temp_directory_path()}; // programs may not run in memory
    QProcess program;
    std::string output;
};

/// What main.cpp and Program do beside building the objects: a COM port's device, the fault that
/// leaves a handler, the end of the session.
TEST_F(ProgramTest, ReachesItsTrackerOutlivesAHandlersFaultAndEndsWithTheSession) {
    suntracker::SunTracker tracker{suntracker::SunTrackerOptions{}};
    ASSERT_TRUE(tracker.start()) << tracker.errorString().toStdString();
    preloadHand();
    writeSettings("[Communication]\nPort=2\nDevice1=/nowhere\nDevice2=" +
                  tracker.portPath().toStdString() + "\n");
    runToItsEnd();
    EXPECT_GT(tracker.counts().commands, 0) << output;
    EXPECT_NE(log().find("Orvane:a handler's fault"), std::string::npos) << output << log();
    EXPECT_NE(log().find("Orvane Ending (the session ends)"), std::string::npos) << output << log();
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit) << output;
    EXPECT_EQ(program.exitCode(), 0);
    const std::string settings = contentsOf(folder.path() / "Orvane" / "Orvane.ini");
    EXPECT_NE(settings.find("StartHour="), std::string::npos) << "not stored: " << settings;
}

} // namespace
} // namespace orvane::test

#include "core/MailSettings.h"
#include "platform/qt/QtSettingsStore.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace orvane::test {
namespace {

/// The file holds the password as it is: it is the user's alone before that is in it, and stays so.
TEST(MailSettings, StandInAFileThatNobodyElseMayRead) {
    const TempFolder folder;
    const std::filesystem::path path = folder.path() / "Orvane.ini";
    const auto mode = [&] {
        return static_cast<unsigned>(std::filesystem::status(path).permissions());
    };
    const mode_t before = ::umask(022);
    {
        QtSettingsStore store(QString::fromStdString(path.string()));
        EXPECT_TRUE(store.SaveSetting("Settings", "IP", "10.0.0.7"));
        EXPECT_EQ(mode(), 0600U);
        std::filesystem::permissions(path, std::filesystem::perms(0644));
    }
    QtSettingsStore store(QString::fromStdString(path.string()));
    EXPECT_EQ(mode(), 0600U) << "one of before";
    MailSettings settings;
    settings.server.password = "sec;ret";
    EXPECT_FALSE(saveMailSettings(store, settings));
    EXPECT_EQ(mode(), 0600U);
    EXPECT_EQ(loadMailSettings(store).settings.server.password, "sec;ret");
    ::umask(before);
}

} // namespace
} // namespace orvane::test

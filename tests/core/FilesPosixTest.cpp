#include "platform/qt/QtSettingsStore.h"
#include "tests/support/StationDay.h"

#include <QCoreApplication>
#include <QProcess>
#include <QRegularExpression>
#include <sys/stat.h>

namespace orvane::test {
namespace {

/// The file holds the password as it is: it is the user's alone before that is in it, and stays so.
TEST(MailSettings, StandInAFileThatNobodyElseMayRead) {
    const TempFolder folder;
    const std::filesystem::path path = folder.path() / "Orvane.ini";
    const QString name = QString::fromStdString(path.string());
    const auto mode = [&] {
        return static_cast<unsigned>(std::filesystem::status(path).permissions());
    };
    const mode_t before = ::umask(022);
    EXPECT_TRUE(QtSettingsStore(name).SaveSetting("Settings", "IP", "10.0.0.7"));
    EXPECT_EQ(mode(), 0600U);
    std::filesystem::permissions(path, std::filesystem::perms(0644));
    QtSettingsStore store(name);
    EXPECT_EQ(mode(), 0600U) << "one of before";
    MailSettings settings;
    settings.server.password = "sec;ret";
    EXPECT_FALSE(saveMailSettings(store, settings));
    EXPECT_EQ(mode(), 0600U);
    EXPECT_EQ(loadMailSettings(store).settings.server.password, "sec;ret");
    ::umask(before);
}

/// In another process, since the user's folder of settings is looked for once in each.
TEST(UsersSettings, AreInTheirFileWhenTheSaveReturns) {
    constexpr const char* kSaves = "ORVANE_TEST_SAVES";
    if (qEnvironmentVariableIsSet(kSaves)) // and has no time left to put anything in order
        std::_Exit(QtSettingsStore().SaveSetting("Settings", "IP", "10.0.0.7") ? 0 : 1);
    const TempFolder folder;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(kSaves, "1");
    for (const auto& [name, below] :
         {std::pair{"XDG_CONFIG_HOME", "user"}, {"XDG_CONFIG_DIRS", "all"}})
        environment.insert(name, QString::fromStdString((folder.path() / below).string()));
    QProcess program;
    program.setProcessEnvironment(environment);
    program.start(QCoreApplication::applicationFilePath(), {"--gtest_filter=UsersSettings.*"});
    ASSERT_TRUE(program.waitForFinished(120'000)) << program.errorString().toStdString();
    EXPECT_EQ(program.exitCode(), 0) << program.readAllStandardError().toStdString();
    EXPECT_EQ(contentsOf(folder.path() / "user/Orvane/Orvane.ini"), "[Settings]\nIP=10.0.0.7\n");
}

using StatusFields = StationDay;

/// Of all that is no object.
std::set<std::string> namesIn(const std::string& json) {
    const QRegularExpression name("\"(\\w+)\":(?! *\\{)");
    std::set<std::string> names;
    for (const auto& found : name.globalMatch(QString::fromStdString(json)))
        names.insert(found.captured(1).toStdString());
    EXPECT_FALSE(names.empty()) << json;
    return names;
}

/// The document describes each field, and its example has the very fields of the real file.
TEST_F(StatusFields, AreThoseOfTheDocument) {
    start(at(2006, 11, 15, 8, 50));
    s->tellsStatus = true;
    s->store.values["Settings/AdjTime"] = "1";
    s->start(true);
    s->settings.keepLatestCopy(true);
    runUntil(9, 10);
    s->http.answer = failing("HTTP status 503");
    runUntil(10, 2);
    const std::string document = contentsOf(QT_TESTCASE_SOURCEDIR "/../docs/status.md");
    const std::string begin = "```json\n";
    const auto at = document.find(begin) + begin.size();
    const auto names = namesIn(contentsOf(s->module.programFolder / "status.json"));
    EXPECT_EQ(namesIn(document.substr(at, document.find("```", at) - at)), names);
    for (const std::string& name : names) // as "`state`", "`today.due`" or "`.end`"
        EXPECT_TRUE(document.find("`" + name + "`") < at || document.find("." + name + "`") < at)
            << name;
}

} // namespace
} // namespace orvane::test

#include "tests/support/TestStation.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

#include <set>

namespace orvane::test {
namespace {

/// Every name with those that enclose it, "today.due"; of an array its first element's. A null's
/// own names are not known.
void collect(const QJsonValue& value, const std::string& path, std::set<std::string>& names) {
    if (value.isArray()) return collect(value.toArray().first(), path + "[]", names);
    const QJsonObject object = value.toObject();
    for (auto member = object.begin(); member != object.end(); ++member) {
        const std::string name =
            path + (path.empty() || path.ends_with(".") ? "" : ".") + member.key().toStdString();
        names.insert(name);
        collect(member.value(), name, names);
    }
}

std::set<std::string> namesOf(const std::string& json) {
    std::set<std::string> names;
    const auto document = QJsonDocument::fromJson(QByteArray::fromStdString(json));
    EXPECT_TRUE(document.isObject()) << json;
    collect(document.object(), "", names);
    return names;
}

/// The document describes each field, and its example has the very fields of the real file.
TEST(StatusFields, AreThoseOfTheDocument) {
    TestStation s(at(2006, 11, 15, 8, 50));
    s.tellsStatus = true;
    s.store.values["Settings/AdjTime"] = "1";
    s.store.values["Settings/FillGaps"] = "0";
    s.start(true);
    s.settings.keepLatestCopy(true);
    s.clock.runUntil(at(2006, 11, 15, 9, 10));
    s.http.answer = [](const std::string&) { return FakeHttp::failed("HTTP status 503"); };
    s.clock.runUntil(at(2006, 11, 15, 10, 2));
    std::string written, document;
    ASSERT_FALSE(readWholeFile(s.module.programFolder / "status.json", written));
    const auto docs = std::filesystem::path(QT_TESTCASE_SOURCEDIR).parent_path() / "docs";
    ASSERT_FALSE(readWholeFile(docs / "status.md", document));
    const std::string begin = "```json\n";
    const auto at = document.find(begin) + begin.size();
    const std::set<std::string> names = namesOf(written);
    EXPECT_EQ(namesOf(document.substr(at, document.find("```", at) - at)), names);
    const std::string table = document.substr(0, at);
    for (const std::string& name : names) {
        // in full, or as ".end" beside one of the same object
        const auto isNamed = [&](const std::string& text) {
            return table.find("`" + text + "`") != std::string::npos;
        };
        EXPECT_TRUE(isNamed(name) || isNamed(name.substr(std::min(name.rfind('.'), name.size()))))
            << name;
    }
}

} // namespace
} // namespace orvane::test

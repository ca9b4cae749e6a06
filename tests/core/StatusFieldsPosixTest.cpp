#include "tests/support/StationDay.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <set>

namespace orvane::test {
namespace {

using StatusFields = StationDay;

/// Every name with those that enclose it, "today.due"; of an array its first element's. A null's
/// own names are not known.
void collect(const QJsonValue& value, const std::string& path, std::set<std::string>& names) {
    if (value.isArray()) return collect(value[0], path + "[].", names);
    const QJsonObject object = value.toObject();
    for (auto member = object.begin(); member != object.end(); ++member) {
        const std::string name = path + member.key().toStdString();
        names.insert(name);
        collect(member.value(), name + (member->isArray() ? "" : "."), names);
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
TEST_F(StatusFields, AreThoseOfTheDocument) {
    start(at(2006, 11, 15, 8, 50));
    s->tellsStatus = true;
    s->store.values["Settings/AdjTime"] = "1";
    s->start(true);
    s->settings.keepLatestCopy(true);
    runUntil(9, 10);
    s->http.answer = failing("HTTP status 503");
    runUntil(10, 2);
    const auto docs = std::filesystem::path(QT_TESTCASE_SOURCEDIR).parent_path() / "docs";
    const std::string document = contentsOf(docs / "status.md");
    const std::string begin = "```json\n";
    const auto at = document.find(begin) + begin.size();
    const auto names = namesOf(contentsOf(s->module.programFolder / "status.json"));
    EXPECT_EQ(namesOf(document.substr(at, document.find("```", at) - at)), names);
    for (const std::string& name : names) {
        // in full, or as ".end" beside one of the same object
        const auto isNamed = [&](const std::string& text) {
            return document.find("`" + text + "`") < at;
        };
        EXPECT_TRUE(isNamed(name) || isNamed(name.substr(std::min(name.rfind('.'), name.size()))))
            << name;
    }
}

} // namespace
} // namespace orvane::test

#include "simulators/sky-camera/SearchQuery.h"

#include <algorithm>
#include <array>
#include <optional>

namespace skycamera {

namespace {

constexpr qint64 kMostRecords = 100'000;

std::optional<qint64> number(const QUrlQuery& query, const char* field) {
    const QString text = query.queryItemValue(field, QUrl::FullyDecoded);
    bool ok = false;
    const quint32 value = text.toUInt(&ok);
    if (!ok) return std::nullopt;
    return value;
}

} // namespace

SearchQuery parseSearchQuery(const QUrlQuery& query) {
    struct Field {
        const char* name;
        qint64 first;
        /// Keeps a number that is too large within the digits of its field.
        qint64 last;
    };
    constexpr std::array fields{
        Field{"from_year", 2000, 9999}, Field{"from_mon", 1, 99}, Field{"from_day", 1, 99},
        Field{"from_hour", 0, 99},      Field{"from_min", 0, 99}, Field{"from_sec", 0, 99},
        Field{"from_frame", 0, 100},
    };
    SearchQuery search;
    for (const Field& field : fields)
        search.from.digits =
            search.from.digits * 100 +
            std::min(field.first + number(query, field.name).value_or(0), field.last);
    search.most =
        std::clamp(number(query, "maxnum").value_or(search.most), qint64{1}, kMostRecords);
    return search;
}

} // namespace skycamera

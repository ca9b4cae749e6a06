#include "simulators/sky-camera/Stamp.h"

#include "simulators/sky-camera/CameraClock.h"

namespace skycamera {

Stamp Stamp::of(const QDateTime& time, int frame) {
    const QDate date = time.date();
    const QTime clock = time.time();
    const qint64 day = (date.year() * 100LL + date.month()) * 100 + date.day();
    const qint64 second = ((day * 100 + clock.hour()) * 100 + clock.minute()) * 100;
    return {(second + clock.second()) * 100 + frame};
}

std::optional<Stamp> Stamp::ofPath(const QByteArray& path) {
    constexpr qsizetype kNameLength = 22;
    QByteArray digits = path.right(kNameLength).left(kNameLength - 4);
    digits.replace("_", "");
    bool number = false;
    const Stamp stamp{digits.toLongLong(&number)};
    // Only the one way of writing it counts: no other folder, sign, blank or extension.
    if (!number || path != '/' + stamp.path()) return std::nullopt;
    return stamp;
}

QDateTime Stamp::time() const {
    auto field = [this](qint64 unit) { return static_cast<int>(digits / unit % 100); };
    const QDate date(static_cast<int>(digits / 1'000'000'000'000), field(10'000'000'000),
                     field(100'000'000));
    return calendarTime(date, QTime(field(1'000'000), field(10'000), field(100)));
}

QByteArray Stamp::name() const {
    const QByteArray all = text();
    return all.left(8) + '_' + all.mid(8, 6) + '_' + all.right(2) + ".jpg";
}

QByteArray Stamp::path() const {
    return "record/" + day() + '/' + name();
}

} // namespace skycamera

#include "simulators/sky-camera/StorePages.h"

#include "simulators/sky-camera/CameraClock.h"
#include "simulators/sky-camera/JpegSegments.h"
#include "simulators/sky-camera/SearchPage.h"
#include "simulators/sky-camera/SearchQuery.h"

#include <algorithm>

namespace skycamera {

namespace {

constexpr qint64 kHour = 3600;
constexpr qsizetype kDefaultRecords = 100;
/// What a made-up list has at most.
constexpr qsizetype kMadeUpRecords = 100;

/// Later than the clock of any camera or PC.
std::vector<Stamp> futureStamps(qsizetype count) {
    const QDateTime first = calendarTime(QDate(2099, 1, 1), QTime(0, 0, 7));
    std::vector<Stamp> stamps;
    for (qsizetype i = 0; i < count; ++i)
        stamps.push_back(Stamp::of(first.addSecs(60 * i)));
    return stamps;
}

} // namespace

StorePages::StorePages(const StoreOptions& options, const SkyScene& look,
                       const SkyPicture& renderer, const QDateTime& clock)
    : options_(options), look_(look), renderer_(renderer),
      recorder_(options.recordEvery, options.recording, clock) {
    if (!options.storedPictureSize.isEmpty()) look_.size = options.storedPictureSize;
    // The camera takes pictures of its own only while it records.
    look_.recording = true;
    look_.time = clock;
    storePast(store_, options.stored,
              options.storedEvery > 0 ? options.storedEvery : options.recordEvery, clock);
}

bool StorePages::serves(const QByteArray& path) {
    return path == kSearchPath || path.startsWith(kRecordPrefix);
}

HttpReply StorePages::answer(const HttpRequest& request, const Fault& fault,
                             const QDateTime& clock) {
    recorder_.catchUp(clock, store_);
    if (request.path == kSearchPath) return search(request, fault, clock);
    const std::optional<Stamp> stamp = Stamp::ofPath(request.path);
    if (!stamp || !store_.holds(*stamp)) return textReply(404, "There is no such picture.");
    return picture(*stamp, fault);
}

HttpReply StorePages::search(const HttpRequest& request, const Fault& fault,
                             const QDateTime& clock) {
    const bool bare = request.query.isEmpty();
    const SearchQuery query = parseSearchQuery(request.query);
    const qsizetype madeUp = std::min(query.most, kMadeUpRecords);
    std::vector<Stamp> stamps;
    if (fault.kind == FaultKind::ListFuture) {
        stamps = futureStamps(madeUp);
    } else if (fault.kind == FaultKind::ListMissing) {
        const bool wanted = !bare && query.from.time().isValid();
        stamps = missingFrom(wanted ? query.from.time() : clock.addSecs(-kHour), madeUp);
    } else if (bare) {
        stamps = lastHour(clock);
    } else {
        stamps = store_.from(query.from, options_.listAll ? store_.size() : query.most);
    }
    return searchPage(stamps, fault, searches_++);
}

std::vector<Stamp> StorePages::lastHour(const QDateTime& clock) const {
    std::vector<Stamp> stamps = store_.from(Stamp::of(clock.addSecs(-kHour)),
                                            options_.listAll ? store_.size() : kDefaultRecords);
    // A clock that was set back has pictures ahead of it.
    std::erase_if(stamps, [end = Stamp::of(clock, 99)](Stamp stamp) { return stamp > end; });
    return stamps;
}

std::vector<Stamp> StorePages::missingFrom(const QDateTime& time, qsizetype count) const {
    std::vector<Stamp> stamps;
    for (qint64 i = 0; std::ssize(stamps) < count; ++i) {
        const Stamp stamp = Stamp::of(time.addSecs(i), 99);
        if (!store_.holds(stamp)) stamps.push_back(stamp);
    }
    return stamps;
}

HttpReply StorePages::picture(Stamp stamp, const Fault& fault) {
    if (fault.kind != FaultKind::Stale || lastPicture_.isEmpty())
        lastPicture_ = jpeg(stamp, fault.kind == FaultKind::Huge ? kHugeSize : look_.size);
    HttpReply reply;
    reply.contentType = "image/jpeg";
    reply.body = lastPicture_;
    return reply;
}

QByteArray StorePages::jpeg(Stamp stamp, QSize size) {
    if (!options_.storedOnce || size != look_.size)
        return rendered(stamp.time(), stamp.frame(), size);
    if (sample_.isEmpty()) sample_ = rendered(look_.time, 0, size);
    return withComment(sample_, stamp.name());
}

QByteArray StorePages::rendered(const QDateTime& time, int frame, QSize size) const {
    SkyScene scene = look_;
    scene.time = time;
    scene.frame = static_cast<quint64>(frame);
    scene.size = size;
    return padded(renderer_.jpeg(scene), options_.storedSize);
}

void StorePages::switchRecording(bool on, const QDateTime& clock) {
    recorder_.switchTo(on, clock, store_);
}

void StorePages::clockWasSet(const QDateTime& before, const QDateTime& after) {
    recorder_.catchUp(before, store_);
    recorder_.clockWasSet(after);
}

qsizetype StorePages::picturesHeld(const QDateTime& clock) {
    recorder_.catchUp(clock, store_);
    return store_.size();
}

} // namespace skycamera

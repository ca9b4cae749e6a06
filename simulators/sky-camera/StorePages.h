#pragma once

#include "simulators/sky-camera/Fault.h"
#include "simulators/sky-camera/HttpMessage.h"
#include "simulators/sky-camera/Recorder.h"
#include "simulators/sky-camera/SkyPicture.h"
#include "simulators/sky-camera/Store.h"

namespace skycamera {

struct StoreOptions {
    /// Whether recording is on from the start.
    bool recording = false;
    /// Seconds of the camera's clock, 1 to 86,400.
    int recordEvery = 60;
    /// Pictures from before the start of the camera's clock, 0 to 100,000, and the seconds between
    /// them, 0 to 86,400; 0 for `recordEvery`.
    int stored = 0;
    int storedEvery = 0;
    /// Stored pictures have at least so many bytes; comments fill them up.
    qsizetype storedSize = 0;
    /// Width and height of a stored picture; empty for those of the live picture.
    QSize storedPictureSize;
    /// One rendering serves for all stored pictures; their names in a comment tell them apart. For
    /// whoever measures transfers: rendering takes milliseconds.
    bool storedOnce = false;
    /// Search pages ignore "maxnum" and list everything.
    bool listAll = false;
};

/// What the camera shows of its recorded pictures: the search page /cgi/srch.cgi and the pictures
/// below /record/. Every call gets the time of the camera's clock, with which the recording catches
/// up first. A stored picture depends on its stamp and the options alone: the same bytes each time.
class StorePages {
  public:
    /// `look` gives what all pictures have in common; `renderer` must outlive this object.
    StorePages(const StoreOptions& options, const SkyScene& look, const SkyPicture& renderer,
               const QDateTime& clock);

    static bool serves(const QByteArray& path);
    HttpReply answer(const HttpRequest& request, const Fault& fault, const QDateTime& clock);

    bool recording() const { return recorder_.on(); }
    void switchRecording(bool on, const QDateTime& clock);
    void clockWasSet(const QDateTime& before, const QDateTime& after);
    qsizetype picturesHeld(const QDateTime& clock);

  private:
    HttpReply search(const HttpRequest& request, const Fault& fault, const QDateTime& clock);
    HttpReply picture(Stamp stamp, const Fault& fault);
    QByteArray jpeg(Stamp stamp, QSize size);
    QByteArray rendered(const QDateTime& time, int frame, QSize size) const;
    std::vector<Stamp> lastHour(const QDateTime& clock) const;
    std::vector<Stamp> missingFrom(const QDateTime& time, qsizetype count) const;

    StoreOptions options_;
    SkyScene look_;
    const SkyPicture& renderer_;
    Store store_;
    Recorder recorder_;
    QByteArray lastPicture_;
    /// The one rendering of `storedOnce`; empty before the first picture.
    QByteArray sample_;
    quint64 searches_ = 0;
};

} // namespace skycamera

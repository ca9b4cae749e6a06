#include "core/StatusFile.h"

#include "platform/Paths.h"

#include <utility>

namespace orvane {

namespace {

constexpr Ticks kLook = 1s;
/// A reader keeps a file for less.
constexpr Ticks kPatience = 1min;
constexpr const char* kObject = "status.json";
constexpr const char* kScript = "status.js";

} // namespace

StatusFile::StatusFile(Parts parts, Faults& faults)
    : parts_(std::move(parts)),
      timer_(
          parts_.clock, kLook, [this] { follow(); }, faults.reporter("StatusFile")) {}

void StatusFile::begin() {
    text_.emplace(parts_.told);
    timer_.enable();
}

void StatusFile::end() {
    if (!text_) return;
    timer_.disable();
    if (const Fault fault = write(StatusText::State::Ended))
        parts_.log.write("StatusFile:" + *fault);
    text_.reset();
}

void StatusFile::follow() {
    Seen seen = see();
    if (seen == seen_ && !isTriedAgain()) return;
    seen_ = std::move(seen);
    settle(write(seen_.recording ? StatusText::State::Recording : StatusText::State::Stopped));
}

StatusFile::Seen StatusFile::see() const {
    const Module1& module = parts_.told.module;
    parts_.told.days.follow();
    return {minuteIndex(parts_.clock.now()),
            parts_.told.days.revision(),
            module.RecordFlg,
            module.latestCopy,
            module.lastAttempt ? module.lastAttempt->at : WallTime(),
            parts_.warnings.text,
            module.lastImage};
}

/// Whatever becomes of one file, the others are written. The picture comes first: the object never
/// names one that is not there.
Fault StatusFile::write(StatusText::State state) {
    Fault fault = followPage();
    const Fault copying = followCopy();
    if (!fault) fault = copying;
    const std::string object = text_->write(state, copied_);
    const Fault writing = put(object + "\n", kObject);
    if (!fault) fault = writing;
    const Fault script = put("var orvaneStatus = " + object + ";\n", kScript);
    return fault ? fault : script;
}

/// Written only where it is missing or another program version's.
Fault StatusFile::followPage() {
    if (hasPage_) return std::nullopt;
    std::string held;
    Fault fault;
    if (readWholeFile(inFolder(kPage), held) || held != parts_.page)
        fault = put(parts_.page, kPage);
    hasPage_ = !fault;
    return fault;
}

/// A picture that cannot be read, as on a network drive that has gone, is not asked for on and on.
Fault StatusFile::followCopy() {
    if (!parts_.told.module.latestCopy) return removeCopy();
    const std::filesystem::path picture = text_->lastPicture();
    if (picture.empty() || picture == copied_ || picture == unread_) return std::nullopt;
    std::string bytes;
    if (const Fault fault = readWholeFile(picture, bytes)) {
        unread_ = picture;
        parts_.log.write("StatusFile:" + utf8FromPath(picture.filename()) + ": " + *fault);
        return std::nullopt;
    }
    Fault fault = put(bytes, kLatest);
    if (!fault) copied_ = picture;
    return fault;
}

/// Only what this has made.
Fault StatusFile::removeCopy() {
    if (copied_.empty()) return std::nullopt;
    std::error_code error;
    std::filesystem::remove(inFolder(kLatest), error);
    if (error) return std::string(kLatest) + ": " + error.message();
    copied_.clear();
    return std::nullopt;
}

Fault StatusFile::put(const std::string& bytes, const char* name) {
    const Fault fault = parts_.files.put(bytes, inFolder(name));
    if (!fault) return std::nullopt;
    return name + (": " + *fault);
}

void StatusFile::settle(const Fault& fault) {
    constexpr auto kCause = Warnings::Cause::StatusFile;
    if (!fault) {
        failingSince_.reset();
        parts_.warnings.clear(kCause);
        return;
    }
    if (!failingSince_) failingSince_ = parts_.clock.ticks();
    if (isTriedAgain() || parts_.warnings.stands(kCause)) return;
    parts_.log.write("StatusFile:" + *fault);
    parts_.warnings.set(kCause, "The status page cannot be kept up to date: " + *fault + ".");
}

bool StatusFile::isTriedAgain() const {
    return failingSince_ && parts_.clock.ticks() - *failingSince_ < kPatience;
}

std::filesystem::path StatusFile::inFolder(const char* name) const {
    return parts_.told.module.programFolder / name;
}

} // namespace orvane

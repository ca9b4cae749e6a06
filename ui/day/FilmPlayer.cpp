#include "ui/day/FilmPlayer.h"

#include <algorithm>

namespace orvane {

FilmPlayer::FilmPlayer(PictureLoader& loader, Clock& clock, FaultHandler onFault)
    : loader_(loader), clock_(clock), tasks_(std::move(onFault)) {}

void FilmPlayer::setFiles(std::vector<std::filesystem::path> files, ImageOptions processing) {
    const std::filesystem::path shown = index_ < 0 ? std::filesystem::path() : file(index_);
    files_ = std::move(files);
    processing_ = processing;
    // New pictures come while a day is watched: the one that is shown keeps its place.
    const auto same = std::ranges::find(files_, shown.native(), &std::filesystem::path::native);
    index_ = same == files_.end() ? -1 : static_cast<int>(same - files_.begin());
    if (index_ < 0) {
        tasks_.clear();
        playing_ = false;
        seek(0);
    } else {
        goOn();
    }
    emit changed();
}

void FilmPlayer::setRate(int picturesPerSecond) {
    interval_ = Ticks(std::chrono::seconds(1)) / picturesPerSecond;
    goOn();
}

void FilmPlayer::play() {
    if (files_.empty()) return;
    // At its end: `run` goes on from the picture after this one.
    if (index_ + 1 >= count()) index_ = -1;
    playing_ = true;
    goOn();
    emit changed();
}

void FilmPlayer::pause() {
    // What was sought is shown all the same.
    if (!seeking_) tasks_.clear();
    playing_ = false;
    emit changed();
}

/// While one is on its way the next one waits: a slider moves faster than pictures come.
void FilmPlayer::seek(int index) {
    if (files_.empty()) return;
    index_ = std::clamp(index, 0, count() - 1);
    if (seeking_) return;
    tasks_.clear();
    tasks_.spawn(showSought());
}

/// From what is shown now.
void FilmPlayer::goOn() {
    if (!playing_ || seeking_) return;
    tasks_.clear();
    tasks_.spawn(run());
}

Task<LoadedPicture> FilmPlayer::load(int index) {
    return loader_.load({.file = file(index), .processing = processing_}, bound_);
}

Task<> FilmPlayer::showSought() {
    // Again while another one has been sought meanwhile: only the last of them counts.
    for (int sought = -1; sought != index_;) {
        const Scope seeking(seeking_);
        sought = index_;
        Task<LoadedPicture> loading = load(sought);
        const LoadedPicture picture = co_await loading;
        emit shown(picture, sought);
    }
    if (!playing_) co_return;
    Task<> running = run();
    co_await running;
}

/// Picture n after the first has its moment n intervals after the film's start.
Task<> FilmPlayer::run() {
    const Ticks start = clock_.ticks();
    const int first = index_;
    while (index_ + 1 < count()) {
        // How many moments have passed: as many are left out as were decoded too slowly.
        const auto over = static_cast<int>((clock_.ticks() - start) / interval_);
        const int next = std::min(std::max(index_ + 1, first + over), count() - 1);
        Task<LoadedPicture> loading = load(next);
        const LoadedPicture picture = co_await loading;
        co_await clock_.sleepUntil(start + (next - first) * interval_);
        index_ = next;
        emit shown(picture, next);
    }
    playing_ = false;
    emit changed();
}

} // namespace orvane

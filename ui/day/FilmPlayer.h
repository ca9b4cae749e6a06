#pragma once

#include <QObject>

#include "station/TaskGroup.h"
#include "ui/pictures/PictureLoader.h"

#include <vector>

namespace orvane {

/// Runs pictures one after the other at a fixed rate. A picture that would come too late is left
/// out, so the film keeps its time; no more than the next picture is held ahead. Paused or playing;
/// in both a picture may be sought, and then playing goes on from there. One task does all of it,
/// and goes with the player.
class FilmPlayer : public QObject {
    Q_OBJECT

  public:
    /// `loader` is the film's alone: other windows would hold it up. Both outlive this.
    FilmPlayer(PictureLoader& loader, Clock& clock, FaultHandler onFault);

    /// Goes on with `files`; the one that is shown stays, where it is among them.
    void setFiles(std::vector<std::filesystem::path> files, ImageOptions processing);
    /// Pictures are decoded no larger than that; whole without it.
    void setBound(QSize bound) { bound_ = bound; }
    void setRate(int picturesPerSecond);

    /// From the beginning when it is at its end.
    void play();
    void pause();
    bool isPlaying() const { return playing_; }
    /// Shows one picture; a film that is playing goes on from there.
    void seek(int index);
    int index() const { return index_; } ///< -1: none
    int count() const { return static_cast<int>(files_.size()); }
    const std::filesystem::path& file(int index) const {
        return files_[static_cast<std::size_t>(index)];
    }

    // Sent from the tasks: whoever hears them must not call back.
  signals:
    void shown(const orvane::LoadedPicture& picture, int index);
    void changed(); ///< whether it is playing, or what there is

  private:
    void goOn();
    Task<LoadedPicture> load(int index);
    Task<> showSought();
    Task<> run();

    PictureLoader& loader_;
    Clock& clock_;
    std::vector<std::filesystem::path> files_;
    ImageOptions processing_;
    QSize bound_;
    Ticks interval_{40};
    int index_ = -1;
    bool playing_ = false;
    bool seeking_ = false; ///< a picture that was sought is on its way
    TaskGroup tasks_;      ///< last: its task uses everything above
};

} // namespace orvane

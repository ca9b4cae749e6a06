#pragma once

// First: moc 6.4 cannot parse <coroutine> unless a Qt header came before.
#include <QWidget>

#include "archive/ShownDay.h"
#include "ui/day/FilmPlayer.h"
#include "ui/pictures/PictureView.h"

class QComboBox;
class QLabel;
class QPushButton;

namespace orvane {

/// The pictures of the day in view as a film, with buttons to play, pause and step. The band is its
/// slider: it tells where the film is (`minuteShown`) and where it shall be (`seekMinute`). A
/// window of the picture area, which goes when it is closed; hidden it pauses. It has
/// a loader and an imaging control of its own, since one that all windows share would not keep the
/// film's time.
class FilmWindow : public QWidget {
    Q_OBJECT

  public:
    /// What it works with; all of it outlives the window.
    struct Parts {
        ShownDay& day;
        const Module1& module; ///< for the save options
        Clock& clock;
        Faults& faults;
    };

    explicit FilmWindow(Parts parts, QWidget* parent = nullptr);

    /// Takes the pictures of the day in view, where they have changed.
    void follow();
    /// Shows the picture of that minute of the day, or the next one.
    void seekMinute(int minute);
    FilmPlayer& player() { return player_; }

    QSize sizeHint() const override { return {560, 460}; }
    QSize minimumSizeHint() const override { return {240, 200}; }

  signals:
    void minuteShown(int minute); ///< of the day; -1: none, or the window has gone
    void saveWanted();

  protected:
    void hideEvent(QHideEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QLayout* buttons();
    void setBound();
    void show(const LoadedPicture& picture, int index);
    void update();
    void toggle();
    void step(int by);

    Parts parts_;
    LibjpegImageControl control_;
    PictureLoader loader_;
    FilmPlayer player_;
    PictureView* view_;
    QPushButton* back_;
    QPushButton* play_;
    QPushButton* forward_;
    QComboBox* rate_;
    QLabel* where_;
    QPushButton* save_;
    std::vector<FiledPicture> pictures_;
};

} // namespace orvane

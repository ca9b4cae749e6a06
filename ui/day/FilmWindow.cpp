#include "ui/day/FilmWindow.h"

#include "ui/Layout.h"
#include "ui/Text.h"
#include "ui/panel/PanelControls.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QPushButton>
#include <QStyle>

#include <algorithm>

namespace orvane {
namespace {

constexpr int kRates[] = {1, 2, 5, 10, 25, 50}; ///< pictures a second
constexpr int kUsualRate = 25;

bool isSame(const std::vector<FiledPicture>& a, const std::vector<FiledPicture>& b) {
    return std::ranges::equal(a, b, [](const FiledPicture& x, const FiledPicture& y) {
        return x.file.native() == y.file.native();
    });
}

} // namespace

FilmWindow::FilmWindow(Parts parts, QWidget* parent)
    : QWidget(parent), parts_(parts), control_(parts.clock), loader_(parts.clock, control_),
      player_(loader_, parts.clock, parts.faults.reporter("Film")), view_(new PictureView),
      back_(control<QPushButton>("cmd_film_back", "", "One picture back (Left).")),
      play_(control<QPushButton>("cmd_film_play", "&Play", "Plays the day's pictures (Space).")),
      forward_(control<QPushButton>("cmd_film_forward", "", "One picture on (Right).")),
      rate_(new QComboBox), where_(new QLabel),
      save_(control<QPushButton>("cmd_film_save", "&Save Film...",
                                 "Saves the day's pictures as a film that other programs play.")) {
    setObjectName("frmFilm");
    setFocusProxy(view_);
    where_->setObjectName("lbl_film");
    rate_->setObjectName("cbo_film_rate");
    rate_->setToolTip("How many pictures are shown in a second.");
    for (const int rate : kRates)
        rate_->addItem(QString("%1 a second").arg(rate), rate);
    rate_->setCurrentIndex(rate_->findData(kUsualRate));
    connect(rate_, &QComboBox::currentIndexChanged, this,
            [this] { player_.setRate(rate_->currentData().toInt()); });
    fill(*this, column({{view_, 1}, buttons()}, 0));
    connect(view_, &PictureView::stepWanted, this, [this](bool on) { step(on ? 1 : -1); });
    // later: it may be said while a picture is being shown
    connect(
        view_, &PictureView::fullWanted, this,
        [this] {
            if (player_.isPlaying()) return; // the next ones come whole
            setBound();
            player_.seek(player_.index());
        },
        Qt::QueuedConnection);
    connect(&player_, &FilmPlayer::shown, this, &FilmWindow::show);
    connect(&player_, &FilmPlayer::changed, this, &FilmWindow::update);
    connect(save_, &QPushButton::clicked, this, &FilmWindow::saveWanted);
}

QLayout* FilmWindow::buttons() {
    back_->setIcon(style()->standardIcon(QStyle::SP_MediaSkipBackward));
    back_->setAccessibleName("One picture back");
    forward_->setIcon(style()->standardIcon(QStyle::SP_MediaSkipForward));
    forward_->setAccessibleName("One picture on");
    connect(back_, &QPushButton::clicked, this, [this] { step(-1); });
    connect(play_, &QPushButton::clicked, this, &FilmWindow::toggle);
    connect(forward_, &QPushButton::clicked, this, [this] { step(1); });
    QHBoxLayout* made = row({back_, play_, forward_, rate_, {where_, 1}, save_}, 6);
    made->setContentsMargins(6, 4, 6, 4);
    return made;
}

void FilmWindow::follow() {
    // What has been read so far would be half a day's film.
    if (!isVisible() || parts_.day.isReading()) return;
    std::vector<FiledPicture> pictures = onePerMinute(parts_.day.pictures());
    setWindowTitle("Film of " + toQString(plainDate(WallTime(parts_.day.day()))));
    if (isSame(pictures, pictures_) && view_->hasPicture()) return;
    pictures_ = std::move(pictures);
    std::vector<std::filesystem::path> files(pictures_.size());
    std::ranges::transform(pictures_, files.begin(), &FiledPicture::file);
    if (pictures_.empty()) view_->showText("There is no picture of this day. Turn to another one.");
    player_.setFiles(std::move(files),
                     parts_.module.imageProcessing ? parts_.module.image : ImageOptions());
}

void FilmWindow::seekMinute(int minute) {
    const std::int64_t sought = minuteIndex(WallTime(parts_.day.day())) + minute;
    // Behind the last picture the player keeps to its last one.
    const auto next = std::ranges::lower_bound(
        pictures_, sought, {}, [](const FiledPicture& picture) { return picture.name.minute(); });
    player_.seek(static_cast<int>(next - pictures_.begin()));
}

/// Fitted into the window a picture needs no more pixels than that has.
void FilmWindow::setBound() {
    player_.setBound(view_->geometryOfView().isFitted() ? view_->size() * devicePixelRatioF()
                                                        : QSize());
}

void FilmWindow::show(const LoadedPicture& picture, int index) {
    setBound();
    const ImageName& name = pictures_[static_cast<std::size_t>(index)].name;
    if (picture.fault.empty()) {
        view_->setPicture(picture.pixels, picture.size);
    } else {
        view_->showText(toQString(picture.fault));
    }
    where_->setText(QString("%1   %2 of %3")
                        .arg(toQString(hourMinute(name.time())))
                        .arg(index + 1)
                        .arg(player_.count()));
    emit minuteShown(minuteOfDay(name.time()));
}

void FilmWindow::update() {
    play_->setText(player_.isPlaying() ? "&Pause" : "&Play");
    for (QWidget* button : {back_, play_, forward_, save_})
        button->setEnabled(player_.count() > 0);
    if (player_.count() == 0) {
        where_->clear();
        emit minuteShown(-1);
    }
}

void FilmWindow::toggle() {
    if (player_.isPlaying()) {
        player_.pause();
    } else {
        player_.play();
    }
}

void FilmWindow::step(int by) {
    // Who steps wants to look at single pictures.
    if (player_.isPlaying()) player_.pause();
    player_.seek(player_.index() + by);
}

void FilmWindow::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Space:
        return toggle();
    case Qt::Key_Left:
        return step(-1);
    case Qt::Key_Right:
        return step(1);
    case Qt::Key_Home:
        return player_.seek(0);
    case Qt::Key_End:
        return player_.seek(player_.count() - 1);
    default:
        QWidget::keyPressEvent(event);
    }
}

/// What nobody sees costs nothing.
void FilmWindow::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    player_.pause();
    emit minuteShown(-1);
}

void FilmWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    follow();
    if (player_.index() >= 0) player_.seek(player_.index()); // and the band shows where it is
}

} // namespace orvane

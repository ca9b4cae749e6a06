#pragma once

// First: moc 6.4 cannot parse <coroutine> unless a Qt header came before.
#include <QWidget>

#include "core/FirstSteps.h"
#include "station/RepeatingTimer.h"

class QCommandLinkButton;
class QFrame;
class QLabel;

namespace orvane {

class PictureArea;

/// What stands in the picture area while no window is open there: the steps before the first
/// picture, each with its state. A click on one leads to the control where it is set right. It
/// looks once a second while it is seen, and not at all otherwise. The area owns it; it lies over
/// the viewport and is no window of the area.
class FirstRun : public QWidget {
    Q_OBJECT

  public:
    /// What it shows; all of it outlives the window.
    struct Parts {
        FirstSteps& steps;
        Clock& clock;
        Faults& faults;
    };

    FirstRun(Parts parts, PictureArea& area);

  signals:
    /// The operator wants to set something right.
    void controlWanted(const QString& control);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    QCommandLinkButton* addStep(std::size_t index);
    void look();
    void present();
    void present(QCommandLinkButton& link, const FirstSteps::Step& step);

    Parts parts_;
    QFrame* card_;
    QLabel* summary_;
    std::array<QCommandLinkButton*, FirstSteps::kSteps> links_{};
    FirstSteps::Look shown_;
    RepeatingTimer timer_;
};

} // namespace orvane

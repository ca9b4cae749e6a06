#include "ui/pictures/FirstRun.h"

#include "ui/Layout.h"
#include "ui/Text.h"
#include "ui/panel/PanelControls.h"
#include "ui/pictures/PictureArea.h"

#include <QCommandLinkButton>
#include <QEvent>
#include <QPainter>

#include <algorithm>

namespace orvane {
namespace {

// Logical pixels.
constexpr int kCardWidth = 480;
constexpr int kSign = 20;

constexpr std::array<const char*, FirstSteps::kSteps> kTitles{"&1  Camera", "&2  Data folder",
                                                              "&3  Schedule"};
constexpr std::array<const char*, FirstSteps::kSteps> kTips{
    "Leads to the camera's address.", "Leads to the choice of the data folder.",
    "Leads to the recording schedule."};

/// A tick, an exclamation mark or an empty ring: the states differ in shape as well.
QIcon sign(FirstSteps::State state, const QPalette& palette) {
    const bool dark = isDark(palette);
    QPixmap picture(64, 64);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    if (state == FirstSteps::State::Open) {
        painter.setPen(QPen(palette.color(QPalette::PlaceholderText), 5));
        painter.drawEllipse(QRectF(8, 8, 48, 48));
        return picture;
    }
    const bool done = state == FirstSteps::State::Done;
    const QColor good = dark ? QColor(105, 180, 240) : QColor(0, 100, 180);
    const QColor bad = dark ? QColor(255, 130, 80) : QColor(205, 70, 0);
    painter.setPen(Qt::NoPen);
    painter.setBrush(done ? good : bad);
    painter.drawEllipse(QRectF(4, 4, 56, 56));
    painter.setPen(QPen(dark ? Qt::black : Qt::white, 7, Qt::SolidLine, Qt::RoundCap));
    if (done) {
        painter.drawLine(20, 34, 28, 42);
        painter.drawLine(28, 42, 44, 23);
    } else {
        painter.drawLine(32, 17, 32, 35);
        painter.drawPoint(32, 47);
    }
    return picture;
}

} // namespace

FirstRun::FirstRun(Parts parts, PictureArea& area)
    : QWidget(&area), parts_(parts), card_(new QFrame(this)), summary_(new QLabel),
      timer_(
          parts.clock, 1s, [this] { look(); }, parts.faults.reporter("FirstRun")) {
    setObjectName("firstRun");
    setAccessibleName("Before the first picture");
    card_->setFrameShape(QFrame::StyledPanel);
    card_->setAutoFillBackground(true);
    summary_->setObjectName("lbl_first");
    QFont bold = summary_->font();
    bold.setBold(true);
    summary_->setFont(bold);
    QVBoxLayout* rows = column({summary_}, 2);
    for (std::size_t i = 0; i < links_.size(); ++i)
        rows->addWidget(links_[i] = addStep(i));
    fill(*card_, rows, {12, 10, 12, 8});
    fill(*this, column({Item(), row({Item(), card_, Item()}, 0), Item()}, 0));
    // A child without a layout: nobody else tells it the area's size.
    area.viewport()->installEventFilter(this);
    setGeometry(area.viewport()->geometry());
    connect(&area, &PictureArea::emptied, this, &QWidget::setVisible);
}

QCommandLinkButton* FirstRun::addStep(std::size_t index) {
    auto* link = control<QCommandLinkButton>(QString("cmd_first_%1").arg(index + 1), kTitles[index],
                                             kTips[index]);
    QFont font = link->font();
    // Styles write command links in large letters, for which the card has no room.
    font.setPointSizeF(QWidget::font().pointSizeF());
    link->setFont(font);
    link->setIconSize({kSign, kSign});
    link->setAccessibleDescription(kTips[index]);
    connect(link, &QPushButton::clicked, this,
            [this, index] { emit controlWanted(toQString(shown_.steps[index].control)); });
    return link;
}

bool FirstRun::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize)
        setGeometry(static_cast<PictureArea*>(parentWidget())->viewport()->geometry());
    return QWidget::eventFilter(watched, event);
}

/// The first look waits for the next turn: the window is shown before the settings are loaded.
void FirstRun::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    timer_.enable();
    QMetaObject::invokeMethod(this, &FirstRun::look, Qt::QueuedConnection);
}

void FirstRun::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    timer_.disable();
}

void FirstRun::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) present();
}

void FirstRun::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    // The texts are cut to the card's width, so they are presented again.
    card_->setFixedWidth(std::clamp(width() - 12, 0, kCardWidth));
    present();
}

void FirstRun::look() {
    // The queued call may come after the first window has opened.
    if (!isVisible()) return;
    const FirstSteps::Look seen = parts_.steps.look();
    if (seen == shown_) return;
    shown_ = seen;
    present();
}

void FirstRun::present() {
    card_->setVisible(!shown_.summary.empty());
    summary_->setText(toQString(shown_.summary));
    for (std::size_t i = 0; i < links_.size(); ++i)
        present(*links_[i], shown_.steps[i]);
}

/// Once nothing is left to be done, the steps stand back behind the summary.
void FirstRun::present(QCommandLinkButton& link, const FirstSteps::Step& step) {
    const QString text = toQString(step.text);
    const int room = card_->width() - 80; // beside the sign and the margins
    link.setDescription(link.fontMetrics().elidedText(text, Qt::ElideMiddle, room));
    link.setFixedHeight(link.heightForWidth(room + 56)); // else a layout may cut the description
    link.setToolTip(text + '\n' + link.accessibleDescription());
    link.setIcon(sign(step.state, palette()));
    link.setEnabled(!step.control.empty());
    QPalette colours; // without colours of its own a link follows the window
    if (shown_.isReady)
        colours.setColor(QPalette::ButtonText, palette().color(QPalette::PlaceholderText));
    link.setPalette(colours);
}

} // namespace orvane

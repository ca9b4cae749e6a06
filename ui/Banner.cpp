#include "ui/Banner.h"

#include "ui/Layout.h"
#include "ui/Text.h"
#include "ui/panel/GradeSign.h"
#include "ui/panel/PanelControls.h"

#include <QEvent>
#include <QPushButton>

namespace orvane {
namespace {

struct ButtonFace {
    const char* caption = "";
    const char* tip = "";
};

ButtonFace faceOf(Remedy remedy) {
    switch (remedy) {
    case Remedy::TestFetch:
        return {"Test fetch &now", "Fetches the camera's picture once, to see whether it answers."};
    case Remedy::SelectFolder:
        return {"Select D&ata Save Folder", "Chooses the folder that pictures are filed in."};
    case Remedy::ShowDataFolder:
    case Remedy::ShowProgramFolder:
        return {"Show in the file m&anager", "Shows the folder in the desktop's file manager."};
    case Remedy::SetClocks:
        return {"Time Setti&ng...", "Sets the clocks of camera and tracker."};
    case Remedy::CorrectSite:
        return {"Site v&alues", "Leads to latitude, longitude and time zone."};
    case Remedy::SeeAlerts:
        return {"&Alerts...", "Shows how the warnings are mailed."};
    case Remedy::None:
        break;
    }
    return {};
}

/// Window and text colours of a notice.
std::pair<QColor, QColor> coloursOf(Grade grade, bool dark) {
    switch (grade) {
    case Grade::Well:
        return dark ? std::pair("#17371f", "#cdf2d4") : std::pair("#e2f3e4", "#123f1b");
    case Grade::Trouble:
        return dark ? std::pair("#4b1b19", "#ffdcd8") : std::pair("#fde7e5", "#6b110c");
    default:
        return dark ? std::pair("#423408", "#ffeab0") : std::pair("#fff3d1", "#533c00");
    }
}

/// A path may be broken behind each of its separators.
QString breakable(const std::string& text) {
    QString html = toQString(text).toHtmlEscaped();
    html.replace("/", "/&#8203;").replace("\\", "\\&#8203;");
    return html;
}

} // namespace

BannerLine::BannerLine(std::size_t index, QWidget* parent)
    : QFrame(parent), sign_(new GradeSign), text_(new QLabel),
      button_(control<QPushButton>(QString("cmd_banner_%1").arg(index), {})) {
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    text_->setObjectName(QString("lbl_banner_%1").arg(index));
    // Rich for the bold part and the places where a path may be broken; what is told is escaped.
    text_->setTextFormat(Qt::RichText);
    text_->setWordWrap(true);
    // As wide as the window, whatever the text is, and as high as it needs at that width.
    QSizePolicy policy(QSizePolicy::Ignored, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    text_->setSizePolicy(policy);
    text_->setMinimumHeight(fontMetrics().height()); // a wrapped text asks for more than it needs
    connect(button_, &QPushButton::clicked, this, &BannerLine::pressed);
    fill(*this, row({sign_, {text_, 1}, button_}, 8), {8, 2, 6, 2});
}

void BannerLine::tell(const Notice& notice) {
    const bool dark = isDark(parentWidget()->palette());
    const auto [window, text] = coloursOf(notice.grade, dark);
    // From the parent's: its own has been coloured by the notice before.
    QPalette colours = parentWidget()->palette();
    colours.setColor(QPalette::Window, window);
    colours.setColor(QPalette::WindowText, text);
    setPalette(colours);
    sign_->show(notice.grade);
    text_->setText("<b>" + breakable(notice.text) + "</b> " + breakable(notice.advice));
    const std::string advice = notice.advice.empty() ? "" : " " + notice.advice;
    // Without the marks that the drawn text has.
    text_->setAccessibleName(toQString(notice.text + advice));
    label(notice);
    layout()->invalidate(); // it may need fewer lines now
    updateGeometry();
}

void BannerLine::label(const Notice& notice) {
    const bool isOver = notice.grade == Grade::Well;
    const ButtonFace face =
        isOver ? ButtonFace{"Close &note", "Closes this note."} : faceOf(notice.remedy);
    button_->setVisible(*face.caption != '\0');
    button_->setText(face.caption);
    button_->setEnabled(!notice.isLocked);
    button_->setToolTip(notice.isLocked ? QString("Stop recording first: the data folder is chosen "
                                                  "while recording is off.")
                                        : QString(face.tip));
}

void BannerLine::add(QWidget& control) {
    layout()->addWidget(&control);
}

Banner::Banner(Condition& condition, QWidget* parent)
    : QWidget(parent), condition_(condition), more_(control<QPushButton>("cmd_banner_more", {})) {
    setObjectName("banner");
    setAccessibleName("Warnings");
    fill(*this, column({}, 0));
    // The first line is the gravest notice's, and always there.
    line(0).add(*more_);
    connect(more_, &QPushButton::clicked, this, [this] {
        showsAll_ = !showsAll_;
        follow();
    });
    bindings_.follow(condition_.notices, [this](const auto&) { follow(); });
}

void Banner::follow() {
    const std::vector<Notice>& notices = condition_.notices.get();
    const std::size_t others = notices.empty() ? 0 : notices.size() - 1;
    if (others == 0) showsAll_ = false;
    more_->setVisible(others > 0);
    more_->setText(QString(showsAll_ ? "hide &%1" : "and &%1 more").arg(others));
    more_->setToolTip(showsAll_ ? "Shows the gravest one only." : "Shows all of them.");
    const std::size_t shown = showsAll_ ? notices.size() : std::min<std::size_t>(notices.size(), 1);
    for (std::size_t index = 0; index < shown; ++index)
        line(index).tell(notices[index]);
    for (std::size_t index = 0; index < lines_.size(); ++index)
        lines_[index]->setVisible(index < shown);
    layout()->invalidate();
    updateGeometry();
    setVisible(shown > 0);
}

BannerLine& Banner::line(std::size_t index) {
    while (lines_.size() <= index) {
        const std::size_t next = lines_.size();
        lines_.push_back(new BannerLine(next, this));
        layout()->addWidget(lines_.back());
        connect(lines_.back(), &BannerLine::pressed, this, [this, next] { press(next); });
    }
    return *lines_[index];
}

void Banner::press(std::size_t index) {
    // A copy: closing or mending it changes the list.
    const Notice notice = condition_.notices.get().at(index);
    if (notice.grade == Grade::Well) return condition_.closeOver();
    emit remedyWanted(notice.remedy);
}

/// The desktop may turn from light to dark.
void Banner::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) follow();
}

} // namespace orvane

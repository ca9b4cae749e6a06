#include "ui/pictures/LatestWindow.h"

#include "platform/Conversions.h"
#include "ui/Text.h"
#include "ui/panel/PanelControls.h"

#include <QLabel>

#include <algorithm>

namespace orvane {

std::string ageText(std::chrono::milliseconds age) {
    const long long seconds = std::max<long long>(0, age / 1s);
    const long long minutes = seconds / 60;
    if (minutes == 0) return std::to_string(seconds) + " s ago";
    if (minutes < 60) return std::to_string(minutes) + " min ago";
    if (minutes >= 2 * kDayMinutes) return std::to_string(minutes / kDayMinutes) + " days ago";
    return std::to_string(minutes / 60) + " h " + twoDigits(static_cast<int>(minutes % 60)) +
           " min ago";
}

LatestWindow::LatestWindow(ImageServices& services, Clock& clock, const DayWatch& days)
    : ImageWindow(services), clock_(clock), days_(days), age_(new QLabel),
      ageTimer_(
          clock, 1s, [this] { updateAge(); }, services.faults.reporter("LatestWindow")) {
    setObjectName("frmLatest");
    age_->setObjectName("imageAge");
    statusLine()->addWidget(age_);
    keepJpeg();
    ageTimer_.enable();
}

void LatestWindow::showFile(const std::filesystem::path& file) {
    // A name has no seconds: a picture of this very minute has just come.
    const WallTime now = clock_.now();
    const auto name = ImageName::ofFile(file);
    take(name && name->minute() != minuteIndex(now) ? name->time() : now, false);
    showPicture({.file = file}, "Latest Image: " + titleOf(file));
}

void LatestWindow::showLive(const std::string& jpeg) {
    take(clock_.now(), true);
    showPicture({.jpeg = QByteArray::fromStdString(jpeg)}, "Live Picture");
}

void LatestWindow::showNone() {
    take(std::nullopt, false);
    setWindowTitle("Latest Image");
    showText("No picture has been recorded yet.");
}

void LatestWindow::tellLive(const std::string& text) {
    liveText_ = live_ ? toQString(text) : QString();
    updateAge();
}

void LatestWindow::take(std::optional<WallTime> taken, bool live) {
    taken_ = taken;
    live_ = live;
    liveText_.clear();
    updateAge();
}

void LatestWindow::updateAge() {
    if (!taken_) return age_->clear();
    const WallTime now = clock_.now();
    const bool overdue = days_.isOverdue(*taken_);
    QString text = toQString(ageText(now - *taken_));
    if (overdue) text += ", overdue";
    if (!liveText_.isEmpty()) text = liveText_;
    // Called each second: a palette that is set anew paints the window anew.
    if (text == age_->text()) return;
    age_->setText(text);
    QPalette colours = palette();
    const bool dark = isDark(colours);
    if (overdue || !liveText_.isEmpty())
        colours.setColor(QPalette::WindowText, dark ? QColor("#ff8080") : QColor("#b00000"));
    age_->setPalette(colours);
    age_->setToolTip(overdue ? "Two or more pictures that were due have not come." : "");
}

} // namespace orvane

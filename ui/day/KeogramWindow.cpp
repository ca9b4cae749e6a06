#include "ui/day/KeogramWindow.h"

#include "platform/Files.h"
#include "ui/Layout.h"
#include "ui/Text.h"
#include "ui/day/DayView.h"
#include "ui/panel/PanelControls.h"

#include <QBuffer>
#include <QClipboard>
#include <QFileDialog>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QStandardPaths>
#include <QToolTip>

#include <algorithm>

namespace orvane {
namespace {

constexpr int kReach = 30;          ///< minutes: a column may go on that long
constexpr int kPngCompression = 70; ///< of Qt's scale: fast, as the window waits for it

} // namespace

KeogramView::KeogramView(ShownDay& day) : day_(day) {
    setObjectName("keogram");
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName("Keogram");
}

void KeogramView::setImage(const QImage& image) {
    image_ = image;
    update();
}

QRectF KeogramView::place() const {
    const double unit = fontMetrics().height();
    return QRectF(rect()).adjusted(unit * 1.5, unit * 0.5, -unit * 1.5, -unit * 1.6);
}

std::optional<int> KeogramView::minuteAt(const QPointF& position) const {
    const QRectF picture = place();
    if (!picture.contains(position)) return std::nullopt;
    const double share = (position.x() - picture.left()) / picture.width();
    return std::clamp(static_cast<int>(share * kDayMinutes), 0, kDayMinutes - 1);
}

/// A column belongs to the last picture before it.
std::filesystem::path KeogramView::pictureAround(int minute) const {
    const std::int64_t sought = minuteIndex(WallTime(day_.day())) + minute;
    const auto& pictures = day_.pictures();
    const auto after = std::ranges::upper_bound(
        pictures, sought, {}, [](const FiledPicture& picture) { return picture.name.minute(); });
    if (after == pictures.begin() || sought - (after - 1)->name.minute() > kReach) return {};
    return (after - 1)->file;
}

bool KeogramView::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const auto minute = minuteAt(help->pos());
    if (!minute) {
        QToolTip::hideText();
        event->ignore();
        return true;
    }
    const QString file = toQString(pictureAround(*minute).filename());
    QToolTip::showText(help->globalPos(),
                       toQString(minuteText(*minute)) + (file.isEmpty() ? "" : " - " + file), this);
    return true;
}

void KeogramView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QRectF picture = place();
    painter.drawImage(picture, image_, QRectF(image_.rect()));
    painter.setPen(palette().color(QPalette::WindowText));
    const double label = fontMetrics().horizontalAdvance("00:00");
    const int step = picture.width() / 24 > label * 1.2 ? 1 : picture.width() / 8 > label ? 3 : 6;
    for (int hour = 0; hour <= 24; hour += step) {
        const double x = picture.left() + picture.width() * hour / 24;
        painter.drawLine(QPointF(x, picture.bottom()), QPointF(x, picture.bottom() + 4));
        painter.drawText(QRectF(x - label, picture.bottom() + 4, 2 * label, fontMetrics().height()),
                         Qt::AlignHCenter | Qt::AlignTop, toQString(minuteText(hour * 60)));
    }
    if (!hasFocus()) return;
    painter.setPen(palette().color(QPalette::Highlight));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    const double x = picture.left() + picture.width() * (selected_ + 0.5) / kDayMinutes;
    if (selected_ >= 0) painter.drawLine(QPointF(x, picture.top()), QPointF(x, picture.bottom()));
}

void KeogramView::mousePressEvent(QMouseEvent* event) {
    QWidget::mousePressEvent(event);
    const auto minute = minuteAt(event->position());
    if (event->button() != Qt::LeftButton || !minute) return;
    const std::filesystem::path file = pictureAround(*minute);
    if (!file.empty()) emit pictureWanted(file);
}

/// The arrow keys go from picture to picture.
void KeogramView::keyPressEvent(QKeyEvent* event) {
    const bool opens = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const std::filesystem::path file =
        selected_ < 0 ? std::filesystem::path() : pictureAround(selected_);
    if (opens && !file.empty()) return emit pictureWanted(file);
    if (event->key() == Qt::Key_Left) return select(-1);
    if (event->key() == Qt::Key_Right) return select(+1);
    QWidget::keyPressEvent(event);
}

void KeogramView::select(int by) {
    const auto& pictures = day_.pictures();
    const std::int64_t begin = minuteIndex(WallTime(day_.day()));
    const auto minute = [&](const FiledPicture& picture) { return picture.name.minute() - begin; };
    auto next = by > 0 ? std::ranges::upper_bound(pictures, selected_, {}, minute)
                       : std::ranges::lower_bound(pictures, selected_, {}, minute);
    if (by < 0 && next == pictures.begin()) return;
    if (by < 0) --next;
    if (next == pictures.end()) return;
    selected_ = static_cast<int>(minute(*next));
    const QRectF picture = place();
    const double x = picture.left() + picture.width() * selected_ / kDayMinutes;
    QToolTip::showText(mapToGlobal(QPointF(x, picture.bottom()).toPoint()),
                       toQString(next->file.filename()), this);
    update();
}

void KeogramView::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    update();
}

void KeogramView::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    QToolTip::hideText();
    selected_ = -1;
    update();
}

KeogramWindow::KeogramWindow(ShownDay& day, QWidget* parent)
    : QWidget(parent), day_(day), view_(new KeogramView(day)) {
    setObjectName("frmKeogram");
    setFocusProxy(view_);
    auto* copying = control<QPushButton>("cmd_keogram_copy", "&Copy", "Copies the keogram.");
    auto* saving =
        control<QPushButton>("cmd_keogram_save", "Save &As...", "Saves the keogram as a picture.");
    connect(copying, &QPushButton::clicked, this, &KeogramWindow::copy);
    connect(saving, &QPushButton::clicked, this, &KeogramWindow::save);
    connect(view_, &KeogramView::pictureWanted, this, &KeogramWindow::pictureWanted);
    QHBoxLayout* buttons = row({Item(), copying, saving}, 6);
    buttons->setContentsMargins(6, 4, 6, 4);
    fill(*this, column({{view_, 1}, buttons}, 0));
}

void KeogramWindow::follow() {
    if (!isVisible() || std::exchange(shown_, day_.revision()) == day_.revision()) return;
    setWindowTitle("Keogram of " + toQString(plainDate(WallTime(day_.day()))));
    view_->setImage(imageOf(day_.keogram()));
}

void KeogramWindow::copy() {
    QGuiApplication::clipboard()->setImage(view_->image());
}

void KeogramWindow::save() {
    auto* dialog = new QFileDialog(
        this, "Save Keogram",
        folder_.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)
                          : folder_,
        "PNG pictures (*.png);;JPEG pictures (*.jpg *.jpeg)");
    dialog->setAcceptMode(QFileDialog::AcceptSave); // asks before it replaces a file
    dialog->setDefaultSuffix("png");
    dialog->selectFile("keogram-" + toQString(dateDigits(WallTime(day_.day()))) + ".png");
    connect(dialog, &QFileDialog::fileSelected, this,
            [this, image = view_->image()](const QString& file) {
                folder_ = QFileInfo(file).absolutePath();
                QBuffer buffer;
                const bool isPng = file.endsWith(".png", Qt::CaseInsensitive);
                // Into memory first: a file that cannot be written whole must not take the old
                // one's place.
                image.save(&buffer, isPng ? "PNG" : "JPEG", isPng ? kPngCompression : 92);
                const Fault fault = writeToFinalName(buffer.data().toStdString(), toPath(file));
                if (!fault) return;
                auto* box = new QMessageBox(QMessageBox::Warning, "Orvane",
                                            "The keogram was not saved.\n" + toQString(*fault) +
                                                "\nSee whether the disk is full or "
                                                "write-protected, or choose another folder.",
                                            QMessageBox::Ok, this);
                openOnce(box);
            });
    openOnce(dialog);
}

void KeogramWindow::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    emit shownChanged();
}

void KeogramWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    shown_ = -1;
    follow();
    emit shownChanged();
}

} // namespace orvane

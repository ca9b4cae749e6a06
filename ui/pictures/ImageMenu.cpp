#include "ui/pictures/ImageMenu.h"

#include "ui/Layout.h"
#include "ui/Text.h"
#include "ui/panel/PanelControls.h"
#include "ui/pictures/QtImageViews.h"

#include <QFileDialog>
#include <QStandardPaths>

namespace orvane {
namespace {

/// What the dialog offers: the picture's own name, marked when it is a part.
QString nameFor(const PictureSource& source) {
    QString name = source.file.empty() ? QString("live") : toQString(source.file.stem());
    if (!source.part.isNull()) name += "_trimmed";
    return name + ".jpg";
}

QString folderFor(const PictureSource& source, const QString& lastFolder) {
    if (!lastFolder.isEmpty()) return lastFolder;
    if (!source.file.empty()) return toQString(source.file.parent_path());
    return QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
}

} // namespace

ImageMenu::ImageMenu(QAction& saveAs, QMenu& image, PictureArea& area, QtImageViews& views)
    : QObject(&area), area_(area), views_(views) {
    entries_.append({&saveAs, Needs::Picture});
    connect(&saveAs, &QAction::triggered, this, &ImageMenu::mnuFileSaveAs_Click);
    addEntries(image);
    connect(&area_, &QMdiArea::subWindowActivated, this, &ImageMenu::follow);
    follow();
}

void ImageMenu::addEntries(QMenu& image) {
    const auto add = [&](Needs needs, const Face& face, const QList<QKeySequence>& keys,
                         void (*command)(ImageWindow&)) {
        const auto call = [this, command] {
            if (window_ != nullptr) command(*window_);
        };
        entries_.append({addEntry(image, face, keys, this, call), needs});
    };
    add(Needs::Picture, {"mnuEditCopy", "&Copy", "Copies the picture, or the marked rectangle."},
        {QKeySequence::Copy}, [](ImageWindow& window) { window.copy(); });
    add(Needs::Picture,
        {"mnuEditTrim", "&Trim",
         "Marks a rectangle, then opens it as a picture of its own. The arrow keys move it, with "
         "Shift they size it, with Ctrl in larger steps."},
        {Qt::CTRL | Qt::Key_I}, [](ImageWindow& window) { window.trim(); });
    image.addSeparator();
    add(Needs::Picture, {"mnuViewZoomIn", "Zoom &In", "Enlarges the picture."},
        {Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal},
        [](ImageWindow& window) { window.view().zoomIn(); });
    add(Needs::Picture, {"mnuViewZoomOut", "Zoom &Out", "Shows more of the picture."},
        {Qt::CTRL | Qt::Key_Minus}, [](ImageWindow& window) { window.view().zoomOut(); });
    add(Needs::Picture, {"mnuViewFit", "&Fit to Window", "Shows the whole picture."},
        {Qt::CTRL | Qt::Key_0}, [](ImageWindow& window) { window.view().zoomFit(); });
    // behind the tab the key, which is the picture's own
    add(Needs::Picture, {"mnuViewActualSize", "&Actual Size\t1", "Shows the picture's own pixels."},
        {}, [](ImageWindow& window) { window.view().zoomActual(); });
    image.addSeparator();
    add(Needs::File, {"mnuViewNext", "&Next Image", "Shows the folder's next picture."},
        {Qt::ALT | Qt::Key_Right}, [](ImageWindow& window) { window.step(true); });
    add(Needs::File, {"mnuViewPrevious", "&Previous Image", "Shows the folder's previous picture."},
        {Qt::ALT | Qt::Key_Left}, [](ImageWindow& window) { window.step(false); });
}

/// The window in front; the active one is none while another program is in use.
void ImageMenu::follow() {
    QMdiSubWindow* frame = area_.currentSubWindow();
    window_ = frame == nullptr ? nullptr : qobject_cast<ImageWindow*>(frame->widget());
    disconnect(following_);
    if (window_ != nullptr)
        following_ = connect(window_, &ImageWindow::changed, this, &ImageMenu::update);
    update();
}

void ImageMenu::update() {
    for (const auto& [action, needs] : entries_)
        action->setEnabled(window_ != nullptr &&
                           (needs == Needs::Picture ? window_->hasPicture() : window_->canStep()));
}

void ImageMenu::mnuFileSaveAs_Click() {
    if (window_ == nullptr || !window_->hasPicture()) return;
    // As it is now: the window may show another picture, or be gone, when the name has been chosen.
    const PictureSource source = window_->source();
    auto* dialog = new QFileDialog(area_.window(), "Save As", folderFor(source, saveFolder_),
                                   "JPEG pictures (*.jpg *.jpeg *.JPG *.JPEG)");
    dialog->setAcceptMode(QFileDialog::AcceptSave); // asks before it replaces a file
    dialog->setDefaultSuffix("jpg");
    dialog->selectFile(nameFor(source));
    connect(dialog, &QFileDialog::fileSelected, this, [this, source](const QString& file) {
        saveFolder_ = QFileInfo(file).absolutePath();
        views_.saveAs(source, toPath(file));
    });
    openOnce(dialog);
}

} // namespace orvane

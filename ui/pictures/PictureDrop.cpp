#include "ui/pictures/PictureDrop.h"

#include "ui/Text.h"
#include "ui/pictures/QtImageViews.h"

#include <QAction>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

namespace orvane {
namespace {

std::vector<std::filesystem::path> filesOf(const QMimeData& data) {
    std::vector<std::filesystem::path> files;
    for (const QUrl& url : data.urls())
        if (url.isLocalFile()) files.push_back(toPath(url.toLocalFile()));
    return files;
}

} // namespace

PictureDrop::PictureDrop(QWidget& window, const QAction& open, QtImageViews& views)
    : QObject(&window), open_(open), views_(views) {
    window.setAcceptDrops(true);
    window.installEventFilter(this);
}

bool PictureDrop::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop)
        return QObject::eventFilter(watched, event);
    auto& drop = *static_cast<QDropEvent*>(event);
    if (answer(drop) && type == QEvent::Drop) views_.openDropped(filesOf(*drop.mimeData()));
    return true;
}

/// A copy, whatever was offered: who moves files would remove them.
bool PictureDrop::answer(QDropEvent& event) const {
    const bool welcome = open_.isEnabled() && !filesOf(*event.mimeData()).empty();
    if (welcome) event.setDropAction(Qt::CopyAction);
    event.setAccepted(welcome);
    return welcome;
}

} // namespace orvane

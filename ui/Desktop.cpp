#include "ui/Desktop.h"

#include "ui/Text.h"

#include <QDesktopServices>
#include <QUrl>

namespace orvane {

bool openOnDesktop(const std::filesystem::path& path) {
    return QDesktopServices::openUrl(QUrl::fromLocalFile(toQString(path)));
}

} // namespace orvane

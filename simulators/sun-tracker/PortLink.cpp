#include "simulators/sun-tracker/PortLink.h"

#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace suntracker {

QString PortLink::pointTo(const QString& target) {
    if (path_.isEmpty()) return {};
    const QFileInfo there(path_);
    if (there.exists() && !there.isSymLink())
        return QString("%1 is there already and is no symbolic link").arg(path_);
    // By way of a second name, so that the link is never missing for a moment.
    const QByteArray name = QFile::encodeName(path_);
    const QByteArray fresh = name + '.' + QByteArray::number(static_cast<int>(::getpid()));
    if (::symlink(QFile::encodeName(target).constData(), fresh.constData()) != 0 ||
        std::rename(fresh.constData(), name.constData()) != 0) {
        const QString reason = QString::fromLocal8Bit(std::strerror(errno));
        if (QFileInfo(QFile::decodeName(fresh)).isSymLink()) ::unlink(fresh.constData());
        return QString("cannot make the link %1: %2").arg(path_, reason);
    }
    target_ = target;
    return {};
}

void PortLink::remove() {
    if (!target_.isEmpty() && QFileInfo(path_).symLinkTarget() == target_) QFile::remove(path_);
    target_.clear();
}

} // namespace suntracker

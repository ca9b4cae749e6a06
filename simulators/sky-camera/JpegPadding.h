#pragma once

#include <QByteArray>

namespace skycamera {

/// The same picture with at least `bytes` bytes, by comment segments behind its first segment.
QByteArray padded(const QByteArray& jpeg, qsizetype bytes);

} // namespace skycamera

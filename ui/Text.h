#pragma once

#include "platform/Paths.h"

#include <QString>

#include <string>

namespace orvane {

/// Text and paths between the windows and the rooms below. They go through UTF-8, which no system
/// refuses: a file name that is not valid text is shown with replacement characters.
inline QString toQString(const std::string& utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

inline QString toQString(const std::filesystem::path& path) {
    return toQString(utf8FromPath(path));
}

inline std::filesystem::path toPath(const QString& text) {
    return pathFromUtf8(text.toStdString());
}

} // namespace orvane

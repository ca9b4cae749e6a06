#pragma once

#include <filesystem>
#include <string>

namespace orvane {

/// Paths are kept as UTF-8 text in the settings and on the panel, whatever the system's own
/// encoding is.
inline std::filesystem::path pathFromUtf8(const std::string& text) {
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}
inline std::string utf8FromPath(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

} // namespace orvane

#pragma once

#include <string>

namespace orvane {

/// A text as it stands between two commas of a table (RFC 4180), quoted where it must be.
inline std::string csvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char c : text)
        quoted.append(c == '"' ? 2 : 1, c);
    return quoted + "\"";
}

} // namespace orvane

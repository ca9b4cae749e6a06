#pragma once

#include <optional>
#include <string_view>

namespace orvane {

enum class Parity { None, Even, Odd };

/// How bytes travel on a serial line, read from a text such as "38400,N,8,1".
struct LineSettings {
    int baud;
    Parity parity;
    int dataBits; ///< 5 to 8
    int stopBits; ///< 1 or 2

    bool operator==(const LineSettings&) const = default;
};

/// Strict: four fields, no spaces, upper-case parity, one of the usual rates from 300 to 115200.
/// A slip in the text must not open the port with a guess.
std::optional<LineSettings> parseLineSettings(std::string_view text);

} // namespace orvane

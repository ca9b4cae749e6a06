#include "platform/LineSettings.h"

#include <initializer_list>
#include <string>

namespace orvane {

namespace {

/// The number among `choices` that `field` writes out, to the letter.
std::optional<int> choose(std::string_view field, std::initializer_list<int> choices) {
    for (const int value : choices)
        if (std::to_string(value) == field) return value;
    return std::nullopt;
}

std::optional<Parity> parityOf(std::string_view field) {
    if (field == "N") return Parity::None;
    if (field == "E") return Parity::Even;
    if (field == "O") return Parity::Odd;
    return std::nullopt;
}

// Takes the text up to the next comma.
std::string_view nextField(std::string_view& rest) {
    const std::size_t comma = rest.find(',');
    const std::string_view field = rest.substr(0, comma);
    rest = comma == std::string_view::npos ? std::string_view() : rest.substr(comma + 1);
    return field;
}

} // namespace

std::optional<LineSettings> parseLineSettings(std::string_view text) {
    // The rates that every system's serial driver can name.
    const auto baud =
        choose(nextField(text), {300, 600, 1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200});
    const auto parity = parityOf(nextField(text));
    const auto dataBits = choose(nextField(text), {5, 6, 7, 8});
    // The last field is all the rest, so that a fifth one is no match.
    const auto stopBits = choose(text, {1, 2});
    if (!baud || !parity || !dataBits || !stopBits) return std::nullopt;
    return LineSettings{*baud, *parity, *dataBits, *stopBits};
}

} // namespace orvane

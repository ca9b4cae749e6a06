#include "platform/LineSettings.h"

#include <array>
#include <utility>

namespace orvane {

namespace {

template <typename Value>
using Choice = std::pair<std::string_view, Value>;

// The rates that every system's serial driver can name.
constexpr std::array<Choice<int>, 10> kBauds{{{"300", 300},
                                              {"600", 600},
                                              {"1200", 1200},
                                              {"2400", 2400},
                                              {"4800", 4800},
                                              {"9600", 9600},
                                              {"19200", 19200},
                                              {"38400", 38400},
                                              {"57600", 57600},
                                              {"115200", 115200}}};
constexpr std::array<Choice<Parity>, 3> kParities{
    {{"N", Parity::None}, {"E", Parity::Even}, {"O", Parity::Odd}}};
constexpr std::array<Choice<int>, 4> kDataBits{{{"5", 5}, {"6", 6}, {"7", 7}, {"8", 8}}};
constexpr std::array<Choice<int>, 2> kStopBits{{{"1", 1}, {"2", 2}}};

template <typename Value, std::size_t Count>
std::optional<Value> choose(std::string_view field,
                            const std::array<Choice<Value>, Count>& choices) {
    for (const auto& [name, value] : choices)
        if (name == field) return value;
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
    const auto baud = choose(nextField(text), kBauds);
    const auto parity = choose(nextField(text), kParities);
    const auto dataBits = choose(nextField(text), kDataBits);
    // The last field is all the rest, so that a fifth one is no match.
    const auto stopBits = choose(text, kStopBits);
    if (!baud || !parity || !dataBits || !stopBits) return std::nullopt;
    return LineSettings{*baud, *parity, *dataBits, *stopBits};
}

} // namespace orvane

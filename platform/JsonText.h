#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvane {

// Values as JSON (RFC 8259) has them, each a whole text of its own. `object` and `array` take such
// texts and lay them out for readers: one member a line.

inline constexpr const char* kJsonNull = "null";

/// `text` is UTF-8; what is none is replaced by U+FFFD.
std::string jsonString(std::string_view text);
std::string jsonNumber(std::int64_t number);
/// With one decimal; null for what is no finite number.
std::string jsonDecimal(double number);
std::string jsonFlag(bool flag);
/// Names are plain words.
std::string jsonObject(std::initializer_list<std::pair<std::string_view, std::string>> members);
std::string jsonArray(const std::vector<std::string>& values);

/// The text that `write` makes of a value; null where there is none.
template <class Value, class Write>
std::string jsonOrNull(const std::optional<Value>& value, const Write& write) {
    return value ? write(*value) : std::string(kJsonNull);
}

} // namespace orvane

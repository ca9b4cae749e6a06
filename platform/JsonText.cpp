#include "platform/JsonText.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace orvane {

namespace {

constexpr const char* kReplacement = "\xEF\xBF\xBD";

/// A kind of character by its first byte, and what bounds its second (RFC 3629, table 3.7 of the
/// Unicode standard): longer forms than needed, surrogates and what is beyond U+10FFFF are none.
struct Lead {
    unsigned char first, last;
    std::size_t length;
    unsigned char low, high;
};
constexpr std::array<Lead, 9> kLeads{{{0x00, 0x7F, 1, 0, 0},
                                      {0xC2, 0xDF, 2, 0x80, 0xBF},
                                      {0xE0, 0xE0, 3, 0xA0, 0xBF},
                                      {0xE1, 0xEC, 3, 0x80, 0xBF},
                                      {0xED, 0xED, 3, 0x80, 0x9F},
                                      {0xEE, 0xEF, 3, 0x80, 0xBF},
                                      {0xF0, 0xF0, 4, 0x90, 0xBF},
                                      {0xF1, 0xF3, 4, 0x80, 0xBF},
                                      {0xF4, 0xF4, 4, 0x80, 0x8F}}};

bool isBetween(char c, unsigned char low, unsigned char high) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= low && byte <= high;
}

/// Bytes of the character at the start of `text`; 0 when there is none.
std::size_t characterLength(std::string_view text) {
    for (const Lead& lead : kLeads) {
        if (!isBetween(text[0], lead.first, lead.last)) continue;
        if (lead.length == 1) return 1;
        if (text.size() < lead.length || !isBetween(text[1], lead.low, lead.high)) return 0;
        for (std::size_t at = 2; at < lead.length; ++at)
            if (!isBetween(text[at], 0x80, 0xBF)) return 0;
        return lead.length;
    }
    return 0;
}

std::string escaped(char c) {
    switch (c) {
    case '"':
        return "\\\"";
    case '\\':
        return "\\\\";
    case '\n':
        return "\\n";
    default:
        break;
    }
    char text[8];
    std::snprintf(text, sizeof text, "\\u%04x", static_cast<unsigned>(c));
    return text;
}

/// `lines` with every line after the first moved to the right.
std::string indented(const std::string& lines) {
    std::string text;
    for (const char c : lines)
        text += c == '\n' ? "\n  " : std::string(1, c);
    return text;
}

void addLine(std::string& body, const std::string& line) {
    body += (body.empty() ? "\n  " : ",\n  ") + indented(line);
}

} // namespace

std::string jsonString(std::string_view text) {
    std::string quoted = "\"";
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0) {
            quoted += kReplacement;
        } else if (length == 1 &&
                   (isBetween(text[0], 0, 0x1F) || text[0] == '"' || text[0] == '\\')) {
            quoted += escaped(text[0]);
        } else {
            quoted += text.substr(0, length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return quoted + '"';
}

std::string jsonNumber(std::int64_t number) {
    return std::to_string(number);
}

/// By whole tenths: the decimal sign of `printf` is the locale's.
std::string jsonDecimal(double number) {
    constexpr double kLargest = 1e15;
    if (!std::isfinite(number) || std::abs(number) > kLargest) return kJsonNull;
    const std::int64_t tenths = std::llround(number * 10);
    const std::int64_t size = tenths < 0 ? -tenths : tenths;
    return (tenths < 0 ? "-" : "") + std::to_string(size / 10) + "." + std::to_string(size % 10);
}

std::string jsonFlag(bool flag) {
    return flag ? "true" : "false";
}

std::string jsonObject(std::initializer_list<std::pair<std::string_view, std::string>> members) {
    std::string body;
    for (const auto& [name, value] : members)
        addLine(body, '"' + std::string(name) + "\": " + value);
    return body.empty() ? "{}" : "{" + body + "\n}";
}

std::string jsonArray(const std::vector<std::string>& values) {
    std::string body;
    for (const std::string& value : values)
        addLine(body, value);
    return body.empty() ? "[]" : "[" + body + "\n]";
}

} // namespace orvane

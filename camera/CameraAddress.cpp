#include "camera/CameraAddress.h"

#include <algorithm>
#include <optional>

namespace orvane {

namespace {

constexpr std::size_t kLongestPort = 5;

/// Those of ASCII, the no-break one that web pages hold, and the wide one of Japanese keyboards.
constexpr std::string_view kBlanks[] = {" ", "\t", "\r", "\n", "\xC2\xA0", "\xE3\x80\x80"};

std::string_view trimmed(std::string_view text) {
    for (std::size_t before = text.size() + 1; text.size() < before;) {
        before = text.size();
        for (const std::string_view blank : kBlanks) {
            if (text.starts_with(blank)) text.remove_prefix(blank.size());
            if (text.ends_with(blank)) text.remove_suffix(blank.size());
        }
    }
    return text;
}

bool isPort(std::string_view text) {
    return !text.empty() && text.size() <= kLongestPort &&
           std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

/// The scheme of a page's address in small letters, taken off `text` with its "://"; nothing where
/// none stands.
std::optional<std::string> takeScheme(std::string_view& text) {
    const std::size_t end = text.find("://");
    if (end == std::string_view::npos || text.find_first_of("/?#@") < end) return std::nullopt;
    std::string scheme(text.substr(0, end));
    for (char& c : scheme)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    text.remove_prefix(end + 3);
    return scheme;
}

/// Where the port's colon stands: behind the brackets of an IPv6 number, else the only one. The
/// colons of an IPv6 number without brackets are none.
std::size_t portColon(std::string_view host) {
    const std::size_t bracket = host.rfind(']');
    const std::size_t colon = host.rfind(':');
    if (colon == std::string_view::npos) return colon;
    if (bracket != std::string_view::npos)
        return colon == bracket + 1 ? colon : std::string_view::npos;
    return host.find(':') == colon ? colon : std::string_view::npos;
}

} // namespace

CameraAddress splitAddress(std::string_view text, std::string_view port) {
    std::string_view host = trimmed(text);
    CameraAddress address{.host = std::string(host), .port = std::string(trimmed(port))};
    const std::optional<std::string> scheme = takeScheme(host);
    host = host.substr(0, host.find_first_of("/?#\\"));
    const std::size_t user = host.rfind('@');
    if (user != std::string_view::npos) host.remove_prefix(user + 1);
    if (trimmed(host).empty()) return address;

    std::string given = scheme ? "80" : address.port;
    const std::size_t colon = portColon(host);
    if (colon != std::string_view::npos) {
        const std::string_view digits = trimmed(host.substr(colon + 1));
        if (isPort(digits)) given = digits;
        if (isPort(digits) || digits.empty()) host = host.substr(0, colon);
    }
    address.host = trimmed(host);
    address.port = given;
    address.wasHttps = scheme == "https";
    return address;
}

bool isPasted(std::string_view before, std::string_view after) {
    const auto [fromBefore, fromAfter] = std::ranges::mismatch(before, after);
    before.remove_prefix(static_cast<std::size_t>(fromBefore - before.begin()));
    after.remove_prefix(static_cast<std::size_t>(fromAfter - after.begin()));
    while (!before.empty() && !after.empty() && before.back() == after.back()) {
        before.remove_suffix(1);
        after.remove_suffix(1);
    }
    // the further bytes of a character in UTF-8 are 10xxxxxx
    return std::ranges::count_if(after, [](char c) { return (c & 0xC0) != 0x80; }) > 1;
}

} // namespace orvane

#include "core/MailMessage.h"

#include "platform/Conversions.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

namespace orvane {

namespace {

constexpr std::size_t kLongestAddress = 254;
constexpr std::size_t kLongestLocalPart = 64;
constexpr std::size_t kBytesOfALine = 57; ///< 76 characters of base64
constexpr std::size_t kBytesOfAWord = 42; ///< 56 of them, 68 with what encloses them
constexpr std::size_t kPlainSubject = 60; ///< characters that stand as they are
constexpr std::string_view kBlanks = " \t";

bool isAlphanumeric(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool isPrintable(unsigned char c) {
    return c >= 0x20 && c < 0x7F;
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// Parts between dots, none of them empty, of letters, digits and `marks`.
bool isDotted(std::string_view text, std::string_view marks) {
    if (text.empty() || text.front() == '.' || text.back() == '.') return false;
    if (text.find("..") != std::string_view::npos) return false;
    return std::ranges::all_of(text, [=](char c) {
        return isAlphanumeric(c) || c == '.' || marks.find(c) != std::string_view::npos;
    });
}

bool isAddress(std::string_view text) {
    const std::size_t at = text.find('@');
    if (at == std::string_view::npos || text.size() > kLongestAddress) return false;
    return at <= kLongestLocalPart && isDotted(text.substr(0, at), "!#$%&'*+-/=?^_`{|}~") &&
           isDotted(text.substr(at + 1), "-");
}

std::string base64(std::string_view bytes) {
    constexpr std::string_view kDigits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - at);
        std::uint32_t group = 0;
        for (std::size_t index = 0; index < 3; ++index)
            group =
                group << 8 | (index < count ? static_cast<unsigned char>(bytes[at + index]) : 0);
        for (std::size_t digit = 0; digit < 4; ++digit)
            text += digit <= count ? kDigits[group >> (18 - 6 * digit) & 63] : '=';
    }
    return text;
}

std::string base64Lines(std::string_view bytes) {
    std::string lines;
    lines.reserve(bytes.size() / kBytesOfALine * 78 + 80);
    for (std::size_t at = 0; at < bytes.size(); at += kBytesOfALine)
        lines += base64(bytes.substr(at, kBytesOfALine)) + "\r\n";
    return lines;
}

bool isInsideCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// As encoded words (RFC 2047), each of whole characters, on lines of their own.
std::string encodedWords(std::string_view text) {
    std::string words;
    while (!text.empty()) {
        std::size_t length = std::min(kBytesOfAWord, text.size());
        while (length < text.size() && length > 1 && isInsideCharacter(text[length]))
            --length;
        words += (words.empty() ? "" : "\r\n ");
        words += "=?UTF-8?B?" + base64(text.substr(0, length)) + "?=";
        text.remove_prefix(length);
    }
    return words;
}

/// A header's free text. One that a reader could take for something else is encoded.
std::string headerText(std::string text) {
    std::ranges::replace_if(
        text, [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
    const bool isPlain = text.size() <= kPlainSubject && std::ranges::all_of(text, isPrintable) &&
                         text.find("=?") == std::string::npos;
    return isPlain ? text : encodedWords(text);
}

std::string mailboxText(const MailAddress& mailbox) {
    if (mailbox.name.empty()) return mailbox.address;
    const bool isPlain = std::ranges::all_of(
        mailbox.name, [](char c) { return isAlphanumeric(c) || c == ' ' || c == '-'; });
    const bool isShort = mailbox.name.size() <= kPlainSubject;
    const std::string name = isPlain && isShort ? mailbox.name : encodedWords(mailbox.name);
    return name + "\r\n <" + mailbox.address + ">";
}

std::string mailboxesText(const std::vector<MailAddress>& mailboxes) {
    std::string text;
    for (const MailAddress& mailbox : mailboxes)
        text += (text.empty() ? "" : ",\r\n ") + mailboxText(mailbox);
    return text;
}

/// "Wed, 15 Nov 2006 10:10:00 +0900" (RFC 5322, 3.3)
std::string dateText(WallTime date, std::chrono::minutes offset) {
    constexpr std::array kDays{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    const auto day = std::chrono::floor<std::chrono::days>(date);
    const std::chrono::year_month_day calendar = dayOf(date);
    const auto minutes = std::abs(static_cast<int>(offset.count()));
    char text[64];
    std::snprintf(text, sizeof text, "%s, %02u %s %04d %s %c%02d%02d",
                  kDays.at(std::chrono::weekday(day).c_encoding()),
                  static_cast<unsigned>(calendar.day()), monthName(calendar.month()),
                  static_cast<int>(calendar.year()), timeText(date).c_str(),
                  offset < 0min ? '-' : '+', minutes / 60, minutes % 60);
    return text;
}

/// With CR LF behind every line.
std::string canonical(const std::string& text) {
    std::string lines;
    for (const char c : text)
        lines += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return lines;
}

std::string hostOf(const std::string& address) {
    return address.substr(address.find('@') + 1);
}

std::string headers(const MailMessage& message) {
    return "From: " + mailboxText(message.from) + "\r\nTo: " + mailboxesText(message.to) +
           "\r\nSubject: " + headerText(message.subject) +
           "\r\nDate: " + dateText(message.date, message.offset) + "\r\nMessage-ID: <" +
           message.id + "@" + hostOf(message.from.address) +
           ">\r\nAuto-Submitted: auto-generated\r\nMIME-Version: 1.0\r\n";
}

} // namespace

std::optional<MailAddress> parseMailAddress(std::string_view text) {
    text = trimmed(text);
    MailAddress mailbox;
    if (!text.empty() && text.back() == '>') {
        const std::size_t open = text.find('<');
        if (open == std::string_view::npos) return std::nullopt;
        mailbox.name = trimmed(text.substr(0, open));
        text = text.substr(open + 1, text.size() - open - 2);
    }
    const auto isControl = [](unsigned char c) { return c < 0x20 || c == 0x7F; };
    if (!isAddress(text) || std::ranges::any_of(mailbox.name, isControl)) return std::nullopt;
    if (mailbox.name.size() >= 2 && mailbox.name.front() == '"' && mailbox.name.back() == '"')
        mailbox.name = mailbox.name.substr(1, mailbox.name.size() - 2);
    mailbox.address = text;
    return mailbox;
}

std::optional<std::vector<MailAddress>> parseMailAddresses(std::string_view text) {
    std::vector<MailAddress> mailboxes;
    while (!trimmed(text).empty()) {
        const std::size_t end = std::min(text.find_first_of(",;"), text.size());
        const auto mailbox = parseMailAddress(text.substr(0, end));
        if (!mailbox) return std::nullopt;
        mailboxes.push_back(*mailbox);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return mailboxes;
}

std::string mailText(const MailMessage& message) {
    const std::string boundary = "=_" + message.id; // stands in no base64
    const auto part = [&](const std::string& head, const std::string& bytes) {
        return "--" + boundary + "\r\n" + head + "\r\nContent-Transfer-Encoding: base64\r\n\r\n" +
               base64Lines(bytes);
    };
    std::string text = headers(message) + "Content-Type: multipart/mixed;\r\n boundary=\"" +
                       boundary + "\"\r\n\r\n" +
                       part("Content-Type: text/plain; charset=UTF-8", canonical(message.text));
    for (const MailPicture& picture : message.pictures)
        text += part("Content-Type: image/jpeg;\r\n name=\"" + picture.name +
                         "\"\r\nContent-Disposition: inline;\r\n filename=\"" + picture.name + "\"",
                     picture.jpeg);
    return text + "--" + boundary + "--\r\n";
}

} // namespace orvane

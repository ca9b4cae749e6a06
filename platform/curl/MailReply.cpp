#include "platform/curl/MailReply.h"

#include <algorithm>
#include <string_view>

namespace orvane {

namespace {

constexpr std::size_t kMostWords = 400; ///< bytes
constexpr std::size_t kCodeLength = 3;

/// Where the line at `begin` ends, behind its end; nothing while it is not complete.
std::optional<std::size_t> endOfLine(const std::string& text, std::size_t begin) {
    const std::size_t end = text.find('\n', begin);
    if (end == std::string::npos) return std::nullopt;
    return end + 1;
}

bool isLastLine(std::string_view line) {
    return line.size() <= kCodeLength || line[kCodeLength] != '-';
}

} // namespace

std::optional<std::string> takeReply(std::string& text) {
    std::size_t begin = 0;
    while (const auto end = endOfLine(text, begin)) {
        const bool isLast = isLastLine(std::string_view(text).substr(begin, *end - begin));
        begin = *end;
        if (!isLast) continue;
        std::string reply = text.substr(0, begin);
        text.erase(0, begin);
        return reply;
    }
    return std::nullopt;
}

std::string wordsOf(const std::string& reply) {
    std::string words;
    for (std::size_t at = 0; at < reply.size();) {
        const std::size_t end = endOfLine(reply, at).value_or(reply.size());
        std::string line = reply.substr(at, end - at);
        std::ranges::replace_if(
            line, [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
        line.erase(line.find_last_not_of(' ') + 1);
        if (line.size() > kCodeLength && line[kCodeLength] == '-') line[kCodeLength] = ' ';
        const bool again = !words.empty() && line.size() > kCodeLength &&
                           words.compare(0, kCodeLength, line, 0, kCodeLength) == 0;
        words += again ? line.substr(kCodeLength) : (words.empty() ? "" : " ") + line;
        at = end;
    }
    return words.substr(0, kMostWords);
}

std::string lastReply(const std::string& dialogue) {
    std::size_t begin = 0;
    std::size_t reply = 0;
    bool complete = false;
    while (const auto end = endOfLine(dialogue, begin)) {
        if (complete) reply = begin;
        complete = isLastLine(std::string_view(dialogue).substr(begin, *end - begin));
        begin = *end;
    }
    return dialogue.substr(reply);
}

bool isRefusal(const std::string& reply) {
    return reply.starts_with('4') || reply.starts_with('5');
}

} // namespace orvane

#include "platform/Page.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

namespace orvane {

namespace {

/// A device's pages are small; what is longer is nonsense.
constexpr std::size_t kMostRead = 256 * 1024;
constexpr std::size_t kLongestEntity = 10;
constexpr std::string_view kBlanks = " \t\r\n\f";

constexpr std::array<std::string_view, 6> kHidden{"script",   "style",  "title",
                                                  "noscript", "iframe", "textarea"};
constexpr std::array<std::string_view, 20> kOwnLine{
    "address", "body", "br",   "dd", "div", "dl",  "dt", "form",  "h1", "h2",
    "h3",      "hr",   "html", "li", "ol",  "pre", "p",  "table", "tr", "ul"};

template <std::size_t size>
bool isOneOf(const std::array<std::string_view, size>& names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isLetter(char c) {
    return lower(c) >= 'a' && lower(c) <= 'z';
}

bool isOfName(char c) {
    return isLetter(c) || (c >= '0' && c <= '9');
}

/// `code` as UTF-8; "?" for what is no character.
std::string utf8(unsigned code) {
    const auto tail = [code](int shift) {
        return static_cast<char>(0x80 | (code >> shift & 0x3F));
    };
    if (code == 0 || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) return "?";
    if (code < 0x80) return {static_cast<char>(code)};
    if (code < 0x800) return {static_cast<char>(0xC0 | code >> 6), tail(0)};
    if (code < 0x10000) return {static_cast<char>(0xE0 | code >> 12), tail(6), tail(0)};
    return {static_cast<char>(0xF0 | code >> 18), tail(12), tail(6), tail(0)};
}

/// The character that an entity's name stands for; empty for a name that is none.
std::string entity(std::string_view name) {
    constexpr std::pair<std::string_view, std::string_view> kNamed[] = {
        {"amp", "&"}, {"lt", "<"}, {"gt", ">"}, {"quot", "\""}, {"apos", "'"}, {"nbsp", " "}};
    for (const auto& [known, character] : kNamed)
        if (name == known) return std::string(character);
    if (!name.starts_with('#')) return {};
    name.remove_prefix(1);
    const bool hex = name.starts_with('x') || name.starts_with('X');
    if (hex) name.remove_prefix(1);
    unsigned code = 0;
    const char* end = name.data() + name.size();
    const auto read = std::from_chars(name.data(), end, code, hex ? 16 : 10);
    return read.ec == std::errc() && read.ptr == end ? utf8(code) : std::string();
}

/// Takes a page apart from its start to its end, looking at each character a bounded number of
/// times: whatever is skipped is never looked at again.
class HtmlText {
  public:
    explicit HtmlText(std::string_view page) : rest_(page) {}

    std::string take() {
        while (!rest_.empty()) {
            if (rest_.front() == '<') {
                markup();
            } else if (rest_.front() == '&') {
                reference();
            } else {
                add(rest_.substr(0, 1));
                rest_.remove_prefix(1);
            }
        }
        return std::move(text_);
    }

  private:
    void add(std::string_view characters) {
        if (characters.size() == 1 && kBlanks.find(characters[0]) != std::string_view::npos) {
            blank_ = true;
            return;
        }
        if (blank_ && !text_.empty() && text_.back() != '\n') text_ += ' ';
        blank_ = false;
        text_ += characters;
    }

    /// Everything up to and with the next `mark` goes; all of the page when there is none.
    void skipPast(std::string_view mark) {
        const std::size_t found = rest_.find(mark);
        rest_.remove_prefix(found == std::string_view::npos ? rest_.size() : found + mark.size());
    }

    void markup() {
        if (rest_.starts_with("<!--")) return skipPast("-->");
        const char next = rest_.size() > 1 ? rest_[1] : ' ';
        if (next == '!' || next == '?') return skipPast(">");
        if (next == '/' || isLetter(next)) return tag();
        add("<");
        rest_.remove_prefix(1);
    }

    void tag() {
        const bool closing = rest_[1] == '/';
        rest_.remove_prefix(closing ? 2 : 1);
        std::string name;
        while (!rest_.empty() && isOfName(rest_[0])) {
            name += lower(rest_[0]);
            rest_.remove_prefix(1);
        }
        skipAttributes();
        if (!closing && isOneOf(kHidden, name)) return skipElement(name);
        if (isOneOf(kOwnLine, name) && !text_.empty() && text_.back() != '\n') text_ += '\n';
        if (name == "td" || name == "th") blank_ = true;
    }

    /// A ">" inside quotes does not end a tag.
    void skipAttributes() {
        char quote = 0;
        while (!rest_.empty()) {
            const char c = rest_[0];
            rest_.remove_prefix(1);
            if (quote == 0 && c == '>') return;
            if (c == '"' || c == '\'') {
                if (quote == 0) {
                    quote = c;
                } else if (quote == c) {
                    quote = 0;
                }
            }
        }
    }

    /// What stands in a script is no text, whatever it looks like.
    void skipElement(std::string_view name) {
        while (true) {
            skipPast("</");
            if (rest_.empty()) return;
            const std::string_view found = rest_.substr(0, name.size());
            const bool ends = rest_.size() <= name.size() || !isOfName(rest_[name.size()]);
            if (ends && std::ranges::equal(found, name, {}, lower)) return skipPast(">");
        }
    }

    void reference() {
        const std::string_view near = rest_.substr(0, kLongestEntity);
        const std::size_t end = near.find(';');
        const std::string character =
            end == std::string_view::npos ? std::string() : entity(near.substr(1, end - 1));
        add(character.empty() ? "&" : std::string_view(character));
        rest_.remove_prefix(character.empty() ? 1 : end + 1);
    }

    std::string_view rest_;
    std::string text_;
    bool blank_ = false; ///< blanks were passed over since the last character
};

} // namespace

std::string textOfPage(std::string body) {
    const std::size_t first = body.find_first_not_of(kBlanks);
    if (first == std::string::npos || body[first] != '<') return body;
    return HtmlText(std::string_view(body).substr(first, kMostRead)).take();
}

Task<HttpReply> getPage(HttpTransfer& transfer, std::string url) {
    Task<HttpReply> get = transfer.get(std::move(url), Wanted::Page);
    HttpReply reply = co_await get;
    if (reply.ok) reply.body = textOfPage(std::move(reply.body));
    co_return reply;
}

} // namespace orvane

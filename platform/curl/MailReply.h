#pragma once

#include <optional>
#include <string>

namespace orvane {

// The replies of a mail server: lines that begin with a code of three digits; all but the last go
// on with a hyphen (RFC 5321, 4.2).

/// Takes the first whole reply out of what has come; nothing while there is none.
std::optional<std::string> takeReply(std::string& text);
/// The last one of what a server said.
std::string lastReply(const std::string& dialogue);
/// A reply in one line: its code once, without what could not be shown, and no more than an
/// operator reads.
std::string wordsOf(const std::string& reply);
/// Whether the server says no, for now (4..) or for good (5..).
bool isRefusal(const std::string& reply);

} // namespace orvane

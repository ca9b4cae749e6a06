#pragma once

#include "platform/Clock.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// A mailbox as people write it: "Station South <sky@example.org>" or "sky@example.org".
struct MailAddress {
    std::string name;    ///< UTF-8; may be empty
    std::string address; ///< "sky@example.org"

    bool operator==(const MailAddress&) const = default;
};

/// Nothing for what is no address that every server takes: one at-sign, letters, digits and the
/// usual marks of ASCII, up to 254 characters. So none can hold a line's end or a blank.
std::optional<MailAddress> parseMailAddress(std::string_view text);
/// Several, with commas or semicolons between them; nothing when one of them is none. An empty text
/// is no addresses.
std::optional<std::vector<MailAddress>> parseMailAddresses(std::string_view text);

/// A picture that goes with a message.
struct MailPicture {
    std::string name; ///< a plain file name in ASCII
    std::string jpeg;
};

/// What a mail says; texts are UTF-8, line feeds end lines.
struct MailMessage {
    MailAddress from;
    std::vector<MailAddress> to;
    std::string subject;
    std::string text;
    std::vector<MailPicture> pictures{};
    WallTime date;
    std::chrono::minutes offset{}; ///< of `date` from universal time
    std::string id;                ///< unlike every other message's, letters and digits
};

/// The message in the form of RFC 5322 and MIME (RFC 2045 to 2047): ASCII, lines of 78 characters
/// at most (addresses may be longer) that end with CR LF.
std::string mailText(const MailMessage& message);

} // namespace orvane

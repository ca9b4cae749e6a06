#pragma once

#include "platform/HttpTransfer.h"

#include <string>

namespace orvane {

/// The text of a page as a reader sees it: of HTML without tags, comments and scripts, with the
/// usual entities (&amp;, &#233;) as characters and runs of blanks as one. What does not begin with
/// a "<" is plain text and comes back as it is. Takes time in proportion to the page; of HTML the
/// first 256 kB are read.
std::string textOfPage(std::string body);

/// Fetches a page; the reply's body is its text.
Task<HttpReply> getPage(HttpTransfer& transfer, std::string url);

} // namespace orvane

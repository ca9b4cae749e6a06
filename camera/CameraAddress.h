#pragma once

#include <string>
#include <string_view>

namespace orvane {

/// The camera's address as its two fields hold it.
struct CameraAddress {
    std::string host; ///< a name or number; an IPv6 number in its brackets
    std::string port;
    bool wasHttps = false; ///< the text asked for a secured connection, which the station has not

    bool operator==(const CameraAddress&) const = default;
};

/// Takes apart what somebody pasted into the address field, such as a page's address from a
/// browser: without blanks around, scheme, user and password, path. A port in it counts; else a
/// page's address has the usual 80, and a mere host leaves `port` as it is, without blanks around.
/// What cannot be taken apart stays as it stands, so that the operator sees it.
CameraAddress splitAddress(std::string_view text, std::string_view port);

/// Whether `after` came from `before` by more than one key: more than one character came in.
bool isPasted(std::string_view before, std::string_view after);

} // namespace orvane

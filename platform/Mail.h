#pragma once

#include "platform/Fault.h"
#include "platform/Task.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace orvane {

/// How a connection to a mail server is kept from being read: not at all, by STARTTLS (RFC 3207) or
/// from its first byte (SMTPS, RFC 8314).
enum class MailSecurity : std::uint8_t { None, StartTls, Tls };

/// A mail server and how to log in there.
struct MailServer {
    std::string host;
    int port = 587;
    MailSecurity security = MailSecurity::StartTls;
    std::string user; ///< empty: no log-in
    std::string password;
    /// Certificates (PEM) that are trusted besides the system's own; empty: none.
    std::filesystem::path caFile;

    bool operator==(const MailServer&) const = default;
};

/// What is handed to a server. The addresses are bare ones, "name@host", in ASCII.
struct Mail {
    std::string sender;
    std::vector<std::string> recipients;
    std::string bytes; ///< the message of RFC 5322, its lines ended by CR LF
};

/// What became of a mail.
struct MailOutcome {
    Fault fault; ///< why nobody got it; the server's own words stand in it
    /// "name@host: its words" for each recipient whom the server refused, while others got it.
    std::vector<std::string> refused;
};

/// Hands mails to a mail server (SMTP, RFC 5321), each over a connection of its own that ends with
/// it. What the operator chose for its security holds or nothing is sent: no log-in and no mail go
/// over a connection in clear when it was to be secure, and none to a server whose certificate is
/// not known or not that host's. Every call ends by itself: after 30 s without a byte, or 120 s in
/// all. Destroying the task ends it at once.
class MailTransfer {
  public:
    virtual ~MailTransfer() = default;
    /// Whether a mail whose connection broke behind its last byte has arrived nobody knows; that is
    /// a fault.
    virtual Task<MailOutcome> send(MailServer server, Mail mail) = 0;
};

} // namespace orvane

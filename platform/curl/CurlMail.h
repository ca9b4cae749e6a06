#pragma once

#include "platform/Clock.h"
#include "platform/Mail.h"
#include "platform/curl/CurlLoop.h"

namespace orvane {

/// Limits of one mail.
struct MailLimits {
    Ticks idle = 30s;   ///< without a byte
    Ticks total = 120s; ///< in all
};

/// Mail over libcurl, which connects, encrypts, checks the certificate and logs in. The few
/// commands behind the log-in are spoken here: libcurl's own sending waits in its call, for up to
/// minutes, for what the server says to a mail and to its farewell, and nothing of this program may
/// stand still.
class CurlMail final : public MailTransfer {
  public:
    CurlMail(CurlLoop& loop, Clock& clock, MailLimits limits = {})
        : loop_(loop), clock_(clock), limits_(limits) {}
    CurlMail(const CurlMail&) = delete;

    Task<MailOutcome> send(MailServer server, Mail mail) override;

  private:
    CurlLoop& loop_;
    Clock& clock_;
    MailLimits limits_;
};

} // namespace orvane

#pragma once

#include "platform/Task.h"

#include <string>

namespace orvane {

/// What a GET brought. `ok` is true only for a complete answer with a status below 400.
struct HttpReply {
    bool ok = false;
    int status = 0;    ///< HTTP status, 0 when there was no answer
    std::string body;  ///< bytes; complete when `ok`
    std::string fault; ///< why not, for the log; empty when `ok`
};

/// One GET at a time to bytes. Every call ends by itself: after 10 s without a byte, 60 s in all,
/// or a body beyond the size limit.
class HttpTransfer {
  public:
    virtual ~HttpTransfer() = default;
    /// Fetches `url` as it stands. A transfer that is still running is cancelled first.
    virtual Task<HttpReply> get(std::string url) = 0;
    /// Tells what will be fetched soon; it may be fetched ahead, beside the running transfer. Only
    /// for what does not change with time. An empty text drops what was fetched ahead.
    virtual void expect(const std::string& url) { static_cast<void>(url); }
    /// Ends the running transfer, whose `get` then answers a failure.
    virtual void cancel() = 0;
};

} // namespace orvane

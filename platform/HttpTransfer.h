#pragma once

#include "platform/Task.h"

#include <string>

namespace orvane {

/// What a GET brought. `ok` is true only for a complete answer with a status of 2xx.
struct HttpReply {
    bool ok = false;
    int status = 0;    ///< HTTP status, 0 when there was no answer
    std::string body;  ///< bytes, complete; empty unless `ok`
    std::string fault; ///< why not, for the log; empty when `ok`
};

/// The fault of a transfer that `cancel` or another one ended.
inline constexpr const char* kCancelled = "cancelled";

/// What an answer is asked for. A picture and a page must have a body (128 MB and 4 MB at most);
/// of a mere request (a switch) only the status counts.
enum class Wanted { Picture, Page, Nothing };

/// One GET at a time to bytes, over plain HTTP. Every call ends by itself: after 10 s without a
/// byte, 60 s in all, or a body beyond its limit.
class HttpTransfer {
  public:
    virtual ~HttpTransfer() = default;
    /// Fetches `url` as it stands ("http://" is added where no scheme is). A transfer that is still
    /// running is cancelled first.
    virtual Task<HttpReply> get(std::string url, Wanted wanted) = 0;
    Task<HttpReply> get(std::string url) { return get(std::move(url), Wanted::Picture); }
    /// Ends the running transfer, whose `get` then answers the fault `kCancelled`.
    virtual void cancel() = 0;
    /// Whether a transfer is under way.
    virtual bool running() const = 0;
};

} // namespace orvane

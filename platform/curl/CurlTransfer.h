#pragma once

#include "platform/Clock.h"
#include "platform/HttpTransfer.h"
#include "platform/curl/CurlLoop.h"

namespace orvane {

/// Limits of one transfer.
struct HttpLimits {
    Ticks idle = 10s;                               ///< without a byte
    Ticks total = 60s;                              ///< in all, redirects included
    std::size_t pictureSize = std::size_t{1} << 27; ///< bytes
    std::size_t pageSize = std::size_t{1} << 22;    ///< bytes, also of a mere request's body
};

/// GET by libcurl. `http` alone, without a proxy; three redirects at most, and none to another host
/// or port.
class CurlTransfer final : public HttpTransfer {
  public:
    CurlTransfer(CurlLoop& loop, Clock& clock, HttpLimits limits = {})
        : loop_(loop), clock_(clock), limits_(limits) {}
    CurlTransfer(const CurlTransfer&) = delete;

    using HttpTransfer::get;
    Task<HttpReply> get(std::string url, Wanted wanted) override;
    void cancel() override;
    bool running() const override { return running_ != nullptr; }

  private:
    class Transfer;

    CurlLoop& loop_;
    Clock& clock_;
    HttpLimits limits_;
    Transfer* running_ = nullptr; ///< lives in the frame of the running get()
};

} // namespace orvane

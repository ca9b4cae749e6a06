#pragma once

#include "platform/Clock.h"
#include "platform/HttpTransfer.h"

#include <QNetworkAccessManager>

#include <deque>
#include <memory>

namespace orvane {

/// Limits of one transfer.
struct HttpLimits {
    std::chrono::milliseconds idle = 10s;        ///< without a byte
    std::chrono::milliseconds total = 60s;       ///< in all
    qint64 bodySize = qint64{128} * 1024 * 1024; ///< bytes
};

/// GET over one shared network manager.
class QtHttpTransfer final : public HttpTransfer {
  public:
    QtHttpTransfer(QNetworkAccessManager& manager, Clock& clock, HttpLimits limits = {});
    ~QtHttpTransfer() override;

    Task<HttpReply> get(std::string url) override;
    void expect(const std::string& url) override;
    void cancel() override;

  private:
    class Transfer;

    QNetworkAccessManager& manager_;
    Clock& clock_;
    HttpLimits limits_;
    Transfer* running_ = nullptr; ///< lives in the frame of the running get()
    std::deque<std::unique_ptr<Transfer>> ahead_;
};

/// The program's network manager: no proxy (the system's look-up blocks).
void prepareManager(QNetworkAccessManager& manager);

} // namespace orvane

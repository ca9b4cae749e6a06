#include "platform/qt/QtHttpTransfer.h"

#include <QNetworkProxy>
#include <QNetworkReply>
#include <QTimer>

#include <algorithm>

namespace orvane {

namespace {
/// The next one, and the one after it while the next is not asked for yet.
constexpr std::size_t kMostAhead = 2;
} // namespace

/// One GET. Ends with its owner: the frame of the coroutine that waits for it, wherever that is
/// suspended.
class QtHttpTransfer::Transfer {
  public:
    Transfer(QtHttpTransfer& owner, const std::string& url)
        : finished(owner.clock_), address(url), owner_(owner),
          reply_(owner.manager_.get(requestFor(url))) {
        QObject::connect(reply_, &QNetworkReply::readyRead, &context_, [this] { takeBytes(); });
        QObject::connect(reply_, &QNetworkReply::metaDataChanged, &idle_,
                         [this] { idle_.start(); });
        QObject::connect(reply_, &QNetworkReply::finished, &context_, [this] { finished.fire(); });
        limit(idle_, owner.limits_.idle, "no answer from the camera");
        limit(total_, owner.limits_.total, "the answer took too long");
    }
    Transfer(const Transfer&) = delete;
    ~Transfer() {
        if (owner_.running_ == this) owner_.running_ = nullptr;
        reply_->disconnect(&context_);
        reply_->disconnect(&idle_);
        reply_->abort();
        reply_->deleteLater();
    }

    /// Gives up with `fault`; the first reason counts.
    void giveUp(const std::string& fault) {
        if (fault_.empty()) fault_ = fault;
        reply_->abort();
        finished.fire();
    }

    HttpReply result() {
        takeBytes();
        HttpReply answer;
        answer.status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        answer.fault = faultOf(answer.status);
        answer.ok = answer.fault.empty();
        answer.body = std::move(body_);
        return answer;
    }

    Signal finished;
    const std::string address;

  private:
    static QNetworkRequest requestFor(const std::string& url) {
        QNetworkRequest request(QUrl(QString::fromStdString(url)));
        request.setRawHeader("Accept-Encoding", "identity");
        request.setRawHeader("Cache-Control", "no-cache");
        request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
        request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                             QNetworkRequest::AlwaysNetwork);
        request.setMaximumRedirectsAllowed(3);
        return request;
    }

    void limit(QTimer& timer, std::chrono::milliseconds time, const char* fault) {
        timer.setSingleShot(true);
        QObject::connect(&timer, &QTimer::timeout, &context_, [this, fault] { giveUp(fault); });
        timer.start(time);
    }

    void takeBytes() {
        if (!reply_->isOpen()) return;
        const QByteArray bytes = reply_->readAll();
        if (bytes.isEmpty()) return;
        idle_.start();
        body_.append(bytes.constData(), static_cast<std::size_t>(bytes.size()));
        if (static_cast<qint64>(body_.size()) > owner_.limits_.bodySize)
            giveUp("the answer is too large");
    }

    std::string faultOf(int status) const {
        if (!fault_.empty()) return fault_;
        if (status >= 400) return "HTTP status " + std::to_string(status);
        if (reply_->error() != QNetworkReply::NoError) return reply_->errorString().toStdString();
        if (status == 0) return "no HTTP answer";
        const QVariant announced = reply_->header(QNetworkRequest::ContentLengthHeader);
        if (announced.isValid() && announced.toLongLong() > static_cast<qint64>(body_.size()))
            return "the answer is shorter than announced";
        return {};
    }

    QtHttpTransfer& owner_;
    QObject context_;
    QTimer idle_;
    QTimer total_;
    std::string body_;
    std::string fault_;
    QNetworkReply* reply_;
};

QtHttpTransfer::QtHttpTransfer(QNetworkAccessManager& manager, Clock& clock, HttpLimits limits)
    : manager_(manager), clock_(clock), limits_(limits) {}

QtHttpTransfer::~QtHttpTransfer() = default;

Task<HttpReply> QtHttpTransfer::get(std::string url) {
    cancel();
    std::unique_ptr<Transfer> transfer;
    const auto found =
        std::ranges::find(ahead_, url, [](const auto& ahead) { return ahead->address; });
    if (found == ahead_.end()) {
        transfer = std::make_unique<Transfer>(*this, url);
    } else {
        transfer = std::move(*found);
        ahead_.erase(ahead_.begin(), found + 1);
    }
    running_ = transfer.get();
    Signal& finished = transfer->finished;
    co_await finished;
    co_return transfer->result();
}

void QtHttpTransfer::expect(const std::string& url) {
    if (url.empty()) return ahead_.clear();
    if (ahead_.size() == kMostAhead) ahead_.pop_front();
    ahead_.push_back(std::make_unique<Transfer>(*this, url));
}

void QtHttpTransfer::cancel() {
    if (running_ != nullptr) std::exchange(running_, nullptr)->giveUp("cancelled");
}

void prepareManager(QNetworkAccessManager& manager) {
    manager.setProxy(QNetworkProxy::NoProxy);
    manager.setAutoDeleteReplies(false);
}

} // namespace orvane

#include "platform/qt/QtHttpTransfer.h"

#include <QNetworkProxy>
#include <QNetworkReply>
#include <QTimer>

namespace orvane {

/// One running GET. Ends with its coroutine's frame, wherever that is suspended.
class QtHttpTransfer::Transfer {
  public:
    Transfer(QtHttpTransfer& owner, const std::string& url)
        : finished(owner.clock_), owner_(owner), reply_(owner.manager_.get(requestFor(url))) {
        owner_.running_ = this;
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
    Transfer transfer(*this, url);
    co_await transfer.finished;
    co_return transfer.result();
}

void QtHttpTransfer::cancel() {
    if (running_ != nullptr) std::exchange(running_, nullptr)->giveUp("cancelled");
}

void prepareManager(QNetworkAccessManager& manager) {
    manager.setProxy(QNetworkProxy::NoProxy);
    manager.setAutoDeleteReplies(false);
}

} // namespace orvane

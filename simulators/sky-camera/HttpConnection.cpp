#include "simulators/sky-camera/HttpConnection.h"

#include "simulators/sky-camera/SocketLinger.h"

#include <algorithm>
#include <chrono>

namespace skycamera {

using namespace std::chrono_literals;

namespace {

constexpr qint64 kReadBufferBytes = 32 * 1024;
/// What the socket is given at a time: a large body must not lie in memory twice.
constexpr qsizetype kSliceBytes = 256 * 1024;
constexpr auto kIdleLimit = 60s;
/// Time for the first half of a body to reach the client before the reset overtakes it.
constexpr auto kResetDelay = 30ms;
/// A refused client may still be sending; closing with its bytes unread would reset the connection
/// before it has read why.
constexpr auto kRefusalLinger = 200ms;
constexpr auto kDripInterval = 50ms;

} // namespace

HttpConnection::HttpConnection(QTcpSocket* socket, QObject* parent)
    : QObject(parent), socket_(socket) {
    socket_->setParent(this);
    socket_->setReadBufferSize(kReadBufferBytes);
    socket_->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    connect(socket_, &QTcpSocket::readyRead, this, &HttpConnection::readRequests);
    connect(socket_, &QTcpSocket::disconnected, this, &QObject::deleteLater);
    connect(socket_, &QTcpSocket::bytesWritten, this, &HttpConnection::answerWritten);

    idleTimer_.setSingleShot(true);
    idleTimer_.setInterval(kIdleLimit);
    connect(&idleTimer_, &QTimer::timeout, this, &HttpConnection::abort);
    idleTimer_.start();
    connect(&sendTimer_, &QTimer::timeout, this, &HttpConnection::sendChunk);
}

void HttpConnection::readRequests() {
    if (state_ == State::Done) {
        // Unread input would hide the client's close.
        socket_->readAll();
        return;
    }
    while (state_ == State::Reading) {
        input_ += socket_->readAll();
        const RequestParse parse = parseRequest(input_);
        input_.remove(0, parse.used);
        if (parse.errorStatus != 0) return refuse(parse.errorStatus);
        if (parse.used == 0) return;
        if (!parse.request) continue;
        state_ = State::Answering;
        idleTimer_.start();
        request_ = *parse.request;
        emit requestArrived(request_);
    }
}

void HttpConnection::refuse(int status) {
    state_ = State::Done;
    input_.clear();
    HttpReply reply = textReply(status, "The request was not understood.");
    socket_->write(replyHead(reply, true) + reply.body);
    QTimer::singleShot(kRefusalLinger, this, &HttpConnection::closeLater);
    emit requestRefused(status);
}

void HttpConnection::send(const HttpReply& reply) {
    Q_ASSERT(state_ == State::Answering);
    reply_ = reply;
    sent_ = 0;
    if (reply_.delivery.delayMs > 0) {
        idleTimer_.stop();
        QTimer::singleShot(reply_.delivery.delayMs, this, &HttpConnection::startAnswer);
    } else {
        startAnswer();
    }
}

void HttpConnection::startAnswer() {
    idleTimer_.start();
    const Delivery& delivery = reply_.delivery;
    if (!delivery.sendHead) {
        state_ = State::Done;
        idleTimer_.stop();
        if (delivery.end == Delivery::End::Reset) reset();
        return;
    }
    const bool close = !request_.keepAlive || delivery.end == Delivery::End::Close;
    head_ = replyHead(reply_, close);
    if (delivery.bytesPerSecond > 0)
        // One byte at a time when a whole interval would bring less.
        sendTimer_.start(delivery.bytesPerSecond < 1s / kDripInterval
                             ? 1000ms / delivery.bytesPerSecond
                             : kDripInterval);
    else
        sendChunk();
}

qsizetype HttpConnection::bodyBytesToSend() const {
    if (request_.head()) return 0;
    const qsizetype wanted = reply_.delivery.bodyBytes;
    return wanted < 0 ? reply_.body.size() : std::min(wanted, reply_.body.size());
}

void HttpConnection::sendChunk() {
    const qsizetype left = bodyBytesToSend() - sent_;
    const int rate = reply_.delivery.bytesPerSecond;
    const qsizetype chunk =
        rate > 0 ? std::max<qsizetype>(1, rate / static_cast<int>(1s / kDripInterval))
                 : kSliceBytes;
    const qsizetype now = std::min(left, chunk);
    // in one piece with the head: two would wake the reader twice
    socket_->write(std::exchange(head_, {}) +
                   QByteArray::fromRawData(reply_.body.constData() + sent_, now));
    sent_ += now;
    if (now == left) sendTimer_.stop();
}

void HttpConnection::answerWritten() {
    idleTimer_.start();
    if (state_ != State::Answering || socket_->bytesToWrite() > 0) return;
    if (sent_ < bodyBytesToSend()) {
        if (!sendTimer_.isActive()) sendChunk();
        return;
    }
    sendTimer_.stop();
    reply_.body.clear();
    switch (reply_.delivery.end) {
    case Delivery::End::Reset:
        state_ = State::Done;
        QTimer::singleShot(kResetDelay, this, &HttpConnection::reset);
        break;
    case Delivery::End::Hang:
        state_ = State::Done;
        idleTimer_.stop();
        break;
    case Delivery::End::Close:
        closeLater();
        break;
    case Delivery::End::AsAsked:
        if (!request_.keepAlive) return closeLater();
        state_ = State::Reading;
        readRequests();
        break;
    }
}

void HttpConnection::closeLater() {
    state_ = State::Done;
    socket_->disconnectFromHost();
}

void HttpConnection::reset() {
    resetOnClose(socket_->socketDescriptor());
    abort();
}

void HttpConnection::abort() {
    state_ = State::Done;
    socket_->abort();
    deleteLater();
}

} // namespace skycamera

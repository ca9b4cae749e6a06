#pragma once

#include "simulators/sky-camera/HttpMessage.h"

#include <QTcpSocket>
#include <QTimer>

namespace skycamera {

/// One client's connection: takes requests one at a time, also from a client that sends several at
/// once, and sends each answer the way its `Delivery` says.
///
/// States: reading (waiting for a request), answering (from `requestArrived` until the answer is
/// on the wire) and done (hung, closing or thrown away). Input that comes while an answer is under
/// way waits in the socket, bounded by its read buffer. Deletes itself when the client is gone.
class HttpConnection final : public QObject {
    Q_OBJECT

  public:
    /// Takes the socket over.
    HttpConnection(QTcpSocket* socket, QObject* parent);

    /// Answers the request announced last; exactly once for each.
    void send(const HttpReply& reply);
    /// Ends the connection at once.
    void abort();

  signals:
    void requestArrived(const skycamera::HttpRequest& request);
    /// Nonsense arrived and was answered with `status`.
    void requestRefused(int status);

  private:
    enum class State { Reading, Answering, Done };

    void readRequests();
    void refuse(int status);
    void startAnswer();
    void sendChunk();
    void answerWritten();
    void closeLater();
    void reset();
    qsizetype bodyBytesToSend() const;

    QTcpSocket* socket_;
    State state_ = State::Reading;
    QByteArray input_;
    HttpRequest request_;
    HttpReply reply_;
    QByteArray head_; ///< not sent yet
    /// Bytes of the body given to the socket so far.
    qsizetype sent_ = 0;
    QTimer idleTimer_;
    QTimer sendTimer_;
};

} // namespace skycamera

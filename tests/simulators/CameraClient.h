#pragma once

#include <QEventLoop>
#include <QHostAddress>
#include <QTcpSocket>
#include <QTimer>
#include <gtest/gtest.h>

namespace skycamera::test {

struct Answer {
    QByteArray head;
    QByteArray body;

    int status() const { return head.mid(9, 3).toInt(); }
    /// -1 when no length was announced.
    qsizetype length() const {
        const qsizetype at = head.indexOf("Content-Length: ");
        return at < 0 ? -1 : head.mid(at + 16, head.indexOf('\r', at) - at - 16).toInt();
    }
    bool wholeJpeg() const { return body.startsWith("\xFF\xD8\xFF") && body.endsWith("\xFF\xD9"); }
};

/// A client that shows the bytes as they are. It waits in the event loop, which the camera shares,
/// and looks after each event of its connection.
class Client {
  public:
    explicit Client(quint16 port) { socket.connectToHost(QHostAddress::LocalHost, port); }

    template <class Condition>
    bool until(Condition condition, int patienceMs = 5000) {
        QEventLoop loop;
        QTimer patience;
        patience.setSingleShot(true);
        for (auto signal : {&QTcpSocket::connected, &QTcpSocket::disconnected})
            QObject::connect(&socket, signal, &loop, &QEventLoop::quit);
        QObject::connect(&socket, &QTcpSocket::readyRead, &loop, &QEventLoop::quit);
        QObject::connect(&socket, &QTcpSocket::errorOccurred, &loop, &QEventLoop::quit);
        QObject::connect(&patience, &QTimer::timeout, &loop, &QEventLoop::quit);
        patience.start(patienceMs);
        while (!condition() && patience.isActive())
            loop.exec();
        return condition();
    }
    bool closed(int patienceMs = 5000) {
        return until([&] { return socket.state() == QTcpSocket::UnconnectedState; }, patienceMs);
    }
    void get(const QByteArray& target) {
        socket.write("GET " + target + " HTTP/1.1\r\nHost: c\r\n\r\n");
    }

    /// What has come so far, as one answer.
    Answer soFar() {
        input_ += socket.readAll();
        const qsizetype end = input_.indexOf("\r\n\r\n");
        return end < 0 ? Answer{} : Answer{input_.left(end + 4), input_.mid(end + 4)};
    }
    /// The next answer, or what came of it before the end; what follows it stays for the next call.
    Answer next() {
        EXPECT_TRUE(until([this] {
            const Answer answer = soFar();
            return socket.state() == QTcpSocket::UnconnectedState ||
                   (answer.length() >= 0 && answer.body.size() >= answer.length());
        }));
        Answer answer = soFar();
        if (answer.length() >= 0) answer.body.truncate(answer.length());
        input_.remove(0, answer.head.size() + answer.body.size());
        return answer;
    }

    QTcpSocket socket;

  private:
    QByteArray input_;
};

inline Answer fetchFrom(quint16 port, const QByteArray& target) {
    Client client(port);
    client.get(target);
    return client.next();
}

} // namespace skycamera::test

#pragma once

#include "platform/curl/CurlTransfer.h"
#include "platform/qt/QtClock.h"
#include "tests/support/Finish.h"

#include <QTcpServer>
#include <QTcpSocket>

#include <functional>

namespace orvane::test {

/// A server that answers every request with bytes as they were written down, right or wrong.
class RawServer {
  public:
    RawServer() {
        server_.listen(QHostAddress::LocalHost);
        QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] { accept(); });
    }

    std::string url(const std::string& path = "/") const {
        return "http://127.0.0.1:" + std::to_string(server_.serverPort()) + path;
    }

    /// The answer to the next request; called for each.
    std::function<std::string(const std::string& path)> answer;
    bool resets = false; ///< the connection behind the answer, which it closes otherwise
    std::string flood;   ///< sent again and again behind the answer, as fast as it is taken
    int requests = 0;

  private:
    void accept() {
        QTcpSocket* socket = server_.nextPendingConnection();
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { read(*socket); });
        QObject::connect(socket, &QTcpSocket::bytesWritten, socket, [this, socket] {
            if (!flood.empty() && socket->bytesToWrite() < 100'000) send(*socket, flood);
        });
    }
    void read(QTcpSocket& socket) {
        const std::string head = socket.peek(10'000).toStdString();
        if (head.find("\r\n\r\n") == std::string::npos) return;
        socket.readAll();
        ++requests;
        const std::size_t path = head.find(' ') + 1;
        send(socket, answer(head.substr(path, head.find(' ', path) - path)));
        if (!flood.empty()) return;
        if (!resets) return socket.disconnectFromHost();
        socket.flush();
        socket.abort();
    }
    static void send(QTcpSocket& socket, const std::string& bytes) {
        socket.write(bytes.data(), static_cast<qint64>(bytes.size()));
    }

    QTcpServer server_;
};

/// How long a test over real connections waits for what does not come: 20 times as long as the
/// slowest of ten sound answers took just now, since machines differ and may be busy. 100 ms or
/// more.
inline Ticks measuredPatience() {
    RawServer server;
    server.answer = [](const std::string&) {
        return std::string("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok");
    };
    QtClock clock;
    CurlLoop loop;
    CurlTransfer transfer(loop, clock);
    Ticks slowest = 5ms;
    for (int i = 0; i < 10; ++i) {
        const Ticks before = clock.ticks();
        EXPECT_TRUE(finish(transfer.get(server.url(), Wanted::Picture)).ok);
        slowest = std::max(slowest, clock.ticks() - before);
    }
    return 20 * slowest;
}

/// Without a byte, and in all.
inline HttpLimits measuredLimits() {
    const Ticks patience = measuredPatience();
    return {patience, 3 * patience};
}

} // namespace orvane::test

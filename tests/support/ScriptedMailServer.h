#pragma once

#include <QTcpServer>
#include <QTcpSocket>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace orvane::test {

/// A mail server that says what a test gives it, line for line, right or wrong.
class ScriptedMailServer {
  public:
    ScriptedMailServer() {
        server_.listen(QHostAddress::LocalHost);
        QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] { accept(); });
    }

    int port() const { return server_.serverPort(); }
    /// What a well-behaved server without encryption says.
    static std::string sound(const std::string& line) {
        if (line.empty()) return "220 mail.example.org ready\r\n";
        if (line.starts_with("EHLO")) return "250-mail.example.org\r\n250 AUTH PLAIN LOGIN\r\n";
        if (line.starts_with("AUTH PLAIN")) return "334 \r\n";
        if (line == "DATA") return "354 go on\r\n";
        if (line == "QUIT") return "221 bye\r\n";
        if (line.find(' ') == std::string::npos && line != ".") return "235 welcome\r\n";
        return "250 fine\r\n";
    }
    void reset() {
        answer = sound;
        closesAt.reset();
        lines.clear();
        mail.clear();
        connections = 0;
    }

    /// The answer to a line without its end: "" for the greeting, "." for the end of a mail.
    std::function<std::string(const std::string& line)> answer = sound;
    /// A line, or a longer one that begins so, that is answered, and then the connection is closed.
    std::optional<std::string> closesAt;
    std::vector<std::string> lines; ///< what was said, without the mail
    std::string mail;               ///< as it came over the connection, up to its last dot
    int connections = 0;

  private:
    void accept() {
        QTcpSocket* socket = server_.nextPendingConnection();
        ++connections;
        inMail_ = false;
        pending_.clear();
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { read(*socket); });
        say(*socket, "");
    }
    void read(QTcpSocket& socket) {
        pending_ += socket.readAll().toStdString();
        for (std::size_t end; (end = pending_.find("\r\n")) != std::string::npos;) {
            const std::string line = pending_.substr(0, end);
            pending_.erase(0, end + 2);
            if (inMail_ && line != ".") {
                mail += line + "\r\n";
            } else {
                lines.push_back(line);
                say(socket, line);
            }
        }
    }
    void say(QTcpSocket& socket, const std::string& line) {
        const std::string reply = answer(line);
        inMail_ = line == "DATA" && reply.starts_with("354");
        socket.write(reply.data(), static_cast<qint64>(reply.size()));
        if (closesAt && (closesAt->empty() ? line.empty() : line.starts_with(*closesAt)))
            socket.disconnectFromHost();
    }

    QTcpServer server_;
    std::string pending_;
    bool inMail_ = false;
};

} // namespace orvane::test

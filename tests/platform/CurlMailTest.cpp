#include "platform/curl/CurlMail.h"
#include "tests/support/RawServer.h"

#include <QCoreApplication>

namespace orvane::test {
namespace {

/// A mail server that says what a test gives it, line for line, right or wrong.
class ScriptedMailServer {
  public:
    ScriptedMailServer() {
        server_.listen(QHostAddress::LocalHost);
        QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] { accept(); });
    }

    int port() const { return server_.serverPort(); }
    /// `line` ("" for the greeting, "." for the end of a mail), or a longer one that begins so, is
    /// answered with `reply`, and then the connection is closed if it `closes`.
    void answer(const std::string& line, const std::string& reply, bool closes = false) {
        meant_ = line;
        reply_ = reply;
        closes_ = closes;
        lines.clear();
        mail.clear();
    }
    bool wasSaid(const std::string& start) const {
        return std::ranges::any_of(lines,
                                   [&](const auto& line) { return line.starts_with(start); });
    }

    std::vector<std::string> lines; ///< what was said, without the mail
    std::string mail;               ///< as it came over the connection, up to its last dot
    int connections = 0;

  private:
    /// What a well-behaved server without encryption says.
    static std::string sound(const std::string& line) {
        if (line.empty()) return "220 mail.example.org ready\r\n";
        if (line.starts_with("EHLO")) return "250-mail.example.org\r\n250 AUTH PLAIN LOGIN\r\n";
        if (line.starts_with("AUTH PLAIN")) return "334 \r\n";
        if (line == "DATA") return "354 go on\r\n";
        if (line == "QUIT") return "221 bye\r\n";
        if (line == "STARTTLS") return "454 not now\r\n";
        if (line.find(' ') == std::string::npos && line != ".") return "235 welcome\r\n";
        return "250 fine\r\n";
    }
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
        const bool isMeant = meant_ && (meant_->empty() ? line.empty() : line.starts_with(*meant_));
        const std::string reply = isMeant ? reply_ : sound(line);
        inMail_ = line == "DATA" && reply.starts_with("354");
        socket.write(reply.data(), static_cast<qint64>(reply.size()));
        if (isMeant && closes_) socket.disconnectFromHost();
    }

    QTcpServer server_;
    std::optional<std::string> meant_;
    std::string reply_, pending_;
    bool closes_ = false, inMail_ = false;
};

/// Mails to a server that says whatever a test gives.
struct CurlMailTest : testing::Test {
    MailServer plain() const {
        return {"127.0.0.1", server.port(), MailSecurity::None, "", "", {}};
    }
    MailServer withLogIn(MailSecurity security = MailSecurity::None) const {
        return {"127.0.0.1", server.port(), security, "sky", "secret", {}};
    }
    MailOutcome send(const MailServer& to, Mail mail = kMail, MailLimits limits = {5s, 20s}) {
        CurlMail mails(loop, clock, limits);
        return finish(mails.send(to, std::move(mail)));
    }
    static inline const Mail kMail{
        "sky@example.org", {"one@example.org"}, "Subject: x\r\n\r\n.hidden\r\nlast"};

    ScriptedMailServer server;
    QtClock clock;
    CurlLoop loop;
    const Ticks patience = measuredPatience();
};

TEST_F(CurlMailTest, HandsAMailOverWholeAndSaysFarewell) {
    server.answer("RCPT TO:<two@", "550 no such user\r\n");
    Mail mail = kMail;
    mail.recipients = {"one@example.org", "two@example.org", "three@example.org"};
    const MailOutcome outcome = send(withLogIn(), mail);
    EXPECT_FALSE(outcome.fault);
    const std::string told = "two@example.org: the mail server refused the mail: 550 no such user";
    EXPECT_EQ(outcome.refused, std::vector<std::string>{told});
    runEventLoopUntil([&] { return server.wasSaid("QUIT"); });
    EXPECT_EQ(server.lines,
              (std::vector<std::string>{"EHLO [127.0.0.1]", "AUTH PLAIN",
                                        "AHNreQBzZWNyZXQ=", // \0sky\0secret in base64
                                        "MAIL FROM:<sky@example.org>", "RCPT TO:<one@example.org>",
                                        "RCPT TO:<two@example.org>", "RCPT TO:<three@example.org>",
                                        "DATA", ".", "QUIT"}));
    EXPECT_EQ(server.mail, "Subject: x\r\n\r\n..hidden\r\nlast\r\n");
    EXPECT_FALSE(send(plain()).fault);
    EXPECT_EQ(server.connections, 2) << "one that was kept could be less secure";
}

/// What the server says in refusing is told; a large mail and a full mailbox are such refusals.
TEST_F(CurlMailTest, RefusalsAreToldInTheServersWords) {
    const struct {
        const char *line, *reply, *fault;
    } cases[] = {
        {"", "554 no service\r\n", "the mail server refused the connection: 554 no service"},
        {"EHLO", "250 fine\r\n250 surplus\r\n", ""},
        {"MAIL", "530 5.7.0 Authentication Required\r\n",
         "the mail server refused the mail: 530 5.7.0 Authentication Required"},
        {"RCPT", "452 4.2.2 mailbox full\r\n",
         "the mail server refused the mail: 452 4.2.2 mailbox full"},
        {"DATA", "250 what\r\n", "the mail server does not answer as one: 250 what"},
        {".", "552-too\r\n552 large\x07\xC3\xA4\r\n",
         "the mail server refused the mail: 552 too large \xC3\xA4"},
        {".", "hello\r\n", "the mail server does not answer as one: hello"},
        {"QUIT", "500 rude\r\n", ""}};
    for (const auto& [line, reply, fault] : cases) {
        server.answer(line, reply);
        EXPECT_EQ(send(plain()).fault.value_or(""), fault) << line;
    }
    server.answer("AHNreQBzZWNyZXQ=", "535-5.7.8 Wrong user\r\n535 5.7.8 or password.\r\n");
    EXPECT_EQ(send(withLogIn()).fault,
              "the mail server refused the log-in: 535 5.7.8 Wrong user 5.7.8 or password.");
    EXPECT_FALSE(server.wasSaid("MAIL"));
}

/// At whatever point a server falls silent or closes the connection, the mail ends with a fault, in
/// time. Behind the farewell neither is one.
TEST_F(CurlMailTest, SilenceAndCutsEndAsFaults) {
    for (const std::string line : {"", "EHLO", "AUTH", "AHNr", "MAIL", "RCPT", "DATA", ".", "QUIT"})
        for (const auto& [reply, closes] :
             {std::pair{"", false}, std::pair{"", true}, std::pair{"250-fine\r\n", true}}) {
            server.answer(line, reply, closes);
            const bool fails = line != "QUIT";
            const MailOutcome outcome =
                send(withLogIn(), kMail, fails ? MailLimits{patience, 10s} : MailLimits{});
            EXPECT_EQ(outcome.fault.has_value(), fails) << line << "," << reply << closes;
        }
}

/// A server that keeps talking is no reason to wait for ever, nor to grow.
TEST_F(CurlMailTest, FloodsAreCutOff) {
    std::string flood;
    while (flood.size() < 100'000)
        flood += "250-more and more\r\n";
    for (const std::string line : {"EHLO", "MAIL", "."}) {
        server.answer(line, flood);
        const std::string fault = send(plain()).fault.value_or("none");
        // at the first the library's own limit comes before
        EXPECT_TRUE(line == "EHLO" ? fault != "none" && !server.wasSaid("MAIL")
                                   : fault == "the answer of the mail server is too long")
            << line << ": " << fault;
    }
}

/// The operator chose encryption: without it not a word of the log-in or the mail is said.
TEST_F(CurlMailTest, NothingGoesInClearThatWasToBeSecure) {
    const char* const greetings[] = {"250 AUTH PLAIN LOGIN\r\n", "502 what\r\n",
                                     "250-STARTTLS\r\n250 AUTH PLAIN\r\n"};
    for (const MailSecurity security : {MailSecurity::StartTls, MailSecurity::Tls})
        for (const char* greeting : greetings) {
            server.answer("EHLO", greeting);
            EXPECT_TRUE(send(withLogIn(security), kMail, {2 * patience, 20 * patience}).fault)
                << greeting;
            for (const char* word : {"AUTH", "MAIL", "RCPT", "DATA", "AHNr"})
                EXPECT_FALSE(server.wasSaid(word)) << word;
        }
    server.answer("none", "");
    EXPECT_EQ(send(withLogIn(MailSecurity::StartTls)).fault,
              "the mail server offers no encryption (STARTTLS)");
}

TEST_F(CurlMailTest, ServersThatCannotBeReached) {
    const auto faultOf = [this](const std::string& host, int port) {
        return send({host, port, MailSecurity::None, "", "", {}}).fault;
    };
    EXPECT_EQ(faultOf("mail.invalid", 25), "the name of the mail server is not known");
    EXPECT_EQ(faultOf("127.0.0.1", 1), "no connection to the mail server");
    for (const char* host : {"", "a b", "a/b", "user@host", "[", "http://x"})
        EXPECT_EQ(faultOf(host, 25), "the address of the mail server cannot be used") << host;
    MailServer away = plain();
    away.caFile = "no/such/file.pem";
    EXPECT_TRUE(send(away).fault->starts_with("the CA file cannot be read: "));
}

/// Destroyed at whatever moment, a mail ends at once and leaves nothing behind.
TEST_F(CurlMailTest, EndsAtAnyMoment) {
    CurlMail mails(loop, clock);
    for (int moment = 0; moment < 30; ++moment) {
        Task<MailOutcome> task = mails.send(plain(), kMail);
        task.start();
        const Ticks end = clock.ticks() + Ticks(moment);
        while (clock.ticks() < end)
            QCoreApplication::processEvents();
        task.reset();
        EXPECT_LT(clock.ticks(), end + 10 * patience);
    }
    EXPECT_FALSE(send(plain()).fault);
}

} // namespace
} // namespace orvane::test

#include "tests/support/RawServer.h"

#include <QCoreApplication>

namespace orvane::test {
namespace {

std::string answerOf(const std::string& status, const std::string& headers,
                     const std::string& body = {}) {
    return "HTTP/1.1 " + status + "\r\n" + headers + "\r\n" + body;
}

std::string sound(const std::string& body) {
    return answerOf("200 OK", "Content-Length: " + std::to_string(body.size()) + "\r\n", body);
}

/// `part` again and again, 50 kB of it.
std::string many(const std::string& part) {
    std::string all;
    while (all.size() < 50'000)
        all += part;
    return all;
}

/// GETs against a server that answers with whatever bytes a test gives.
struct CurlTransferTest : testing::Test {
    static constexpr HttpLimits kLimits{2s, 5s, 1'000'000, 100'000};

    CurlTransferTest() {
        server.answer = [this](const std::string&) { return bytes; };
    }
    HttpReply get(const std::string& url, Wanted wanted = Wanted::Picture) {
        return finish(transfer.get(url, wanted));
    }
    HttpReply get(Wanted wanted = Wanted::Picture) { return get(server.url(), wanted); }
    /// The server is well again, and so is the connection to it.
    void expectSoundAgain(const std::string& after) {
        server.flood.clear();
        server.resets = false;
        bytes = sound("again");
        const HttpReply reply = get();
        EXPECT_EQ(reply.body, "again") << after << ": " << reply.fault;
    }

    std::string bytes;
    RawServer server;
    QtClock clock;
    CurlLoop loop;
    CurlTransfer transfer{loop, clock, kLimits};
};

TEST_F(CurlTransferTest, EveryMalformedAnswerIsAFault) {
    const std::string chunked = "Transfer-Encoding: chunked\r\n";
    const struct {
        std::string answer;
        const char* fault; ///< empty: the body is "picture"
    } cases[] = {{sound("picture"), ""},
                 {answerOf("200 OK", "", "picture"), ""}, // up to the end of the connection
                 {answerOf("200 OK", chunked, "4\r\npict\r\n3\r\nure\r\n0\r\n\r\n"), ""},
                 {sound("picture") + sound("another"), ""},
                 {"HTTP/1.1 100 Continue\r\n\r\n" + sound("picture"), ""},
                 {answerOf("200 OK", chunked, "zz\r\npicture"), "connection broke"},
                 {answerOf("200 OK", chunked, "FFFFFFFFFFFFFFFFFF\r\npicture"), "connection broke"},
                 {answerOf("200 OK", chunked, "7\r\npict"), "shorter than announced"},
                 {answerOf("200 OK", "Content-Length: 9\r\n", "picture"), "shorter than announced"},
                 {answerOf("200 OK", "Content-Length: -7\r\n", "picture"), "not HTTP"},
                 {answerOf("200 OK", "Content-Length: many\r\n", "picture"), "not HTTP"},
                 {answerOf("200 OK", "Content-Length: 99999999999\r\n", "picture"), "too large"},
                 {answerOf("200 OK", "Content-Length: 0\r\n"), "empty"},
                 {answerOf("204 No Content", ""), "empty"},
                 {answerOf("302 Found", "Content-Length: 0\r\n"), "HTTP status 302"},
                 {answerOf("503 Busy", "Content-Length: 9\r\n", "Busy"), "HTTP status 503"},
                 {"picture", "not HTTP"},
                 {std::string("\0\xFF\xD8\xFF", 4), "not HTTP"},
                 {"\r\n\r\n", "not HTTP"},
                 {"HTTP/9.9 200 OK\r\n\r\npicture", "not HTTP"},
                 {"", "without an answer"}};
    for (const auto& [answer, fault] : cases) {
        SCOPED_TRACE(answer);
        bytes = answer;
        const HttpReply reply = get();
        EXPECT_EQ(reply.ok, *fault == 0);
        EXPECT_NE(reply.fault.find(fault), std::string::npos) << reply.fault;
        EXPECT_EQ(reply.body, reply.ok ? "picture" : "");
    }
    for (const char* status : {"200 OK", "202 Taken", "204 No Content", "302 Found", "500 No"}) {
        bytes = answerOf(status, "Content-Length: 0\r\n");
        EXPECT_EQ(get(Wanted::Nothing).ok, *status == '2') << "of a request it counts: " << status;
    }
    expectSoundAgain("all of them");
}

/// Cut after each of its bytes, by a close and by a reset, an answer is never taken for whole.
TEST_F(CurlTransferTest, ACutAnswerIsNeverWhole) {
    const std::string whole = sound("picture");
    for (const bool resets : {false, true}) {
        server.resets = resets;
        for (std::size_t length = 0; length < whole.size(); ++length) {
            bytes = whole.substr(0, length);
            EXPECT_NE(get().fault, "") << length;
        }
    }
    expectSoundAgain("cuts");
}

TEST_F(CurlTransferTest, RedirectsStayOnTheHost) {
    std::string target;
    server.answer = [&](const std::string& path) {
        if (path == "/there") return sound("picture");
        return answerOf("302 Found", "Location: " + target + "\r\nContent-Length: 0\r\n");
    };
    for (const auto& onHost : std::vector<std::string>{"/there", "there", server.url("/there")}) {
        target = onHost;
        EXPECT_EQ(get().body, "picture") << onHost;
    }
    RawServer other;
    other.answer = [](const std::string&) { return sound("elsewhere"); };
    for (const auto& elsewhere : std::vector<std::string>{
             other.url(), "http://localhost/", "file:///etc/passwd", "https://127.0.0.1/",
             "ftp://127.0.0.1/", "//127.0.0.2/", "javascript:alert(1)", ""}) {
        target = elsewhere;
        EXPECT_EQ(get().fault, "HTTP status 302") << elsewhere;
    }
    EXPECT_EQ(other.requests, 0);
    target = "/again";
    server.requests = 0;
    EXPECT_EQ(get().fault, "HTTP status 302");
    EXPECT_EQ(server.requests, 4);
}

TEST_F(CurlTransferTest, AddressesThatCannotBeUsedAreRefused) {
    server.answer = [](const std::string&) { return sound("picture"); };
    for (const char* url :
         {"", "http://", "http://:80/Images/full.jpg", "http://a b/", "http://127.0.0.1/a b.jpg",
          "file:///etc/passwd", "https://127.0.0.1/", "ftp://127.0.0.1/", "http://[/",
          "http://127.0.0.1:99999/", "http://127.0.0.1:80:/", "http://a\r\nb/"})
        EXPECT_EQ(get(url).fault, "the address cannot be used") << url;
    EXPECT_TRUE(get(server.url("/x").substr(7)).ok);
}

/// An answer without an end is cut off at the limit, whatever it consists of.
TEST_F(CurlTransferTest, FloodsAreCutOff) {
    const std::string line = "X-Filler: " + std::string(60, 'x') + "\r\n";
    const struct {
        const char* name;
        std::string start, flood;
        Wanted wanted = Wanted::Picture;
    } cases[] = {
        {"body", answerOf("200 OK", ""), many("x")},
        {"page", answerOf("200 OK", ""), many(","), Wanted::Page},
        {"request", answerOf("200 OK", ""), many(","), Wanted::Nothing},
        {"chunks", answerOf("200 OK", "Transfer-Encoding: chunked\r\n"), many("1\r\nx\r\n")},
        {"headers", "HTTP/1.1 200 OK\r\n", many(line)},
        {"one header", "HTTP/1.1 200 OK\r\nX: ", many("x")},
        {"continue", "", many("HTTP/1.1 100 Continue\r\n\r\n")}};
    for (const auto& [name, start, flood, wanted] : cases) {
        bytes = start + flood;
        server.flood = flood;
        const HttpReply reply = get(wanted);
        EXPECT_FALSE(reply.ok) << name;
        EXPECT_LE(reply.body.size(), 1'000'000U) << name;
        expectSoundAgain(name);
    }
}

/// Stands still until it is put forward.
struct SteppedClock final : Clock {
    WallTime now() const override { return WallTime(time); }
    Ticks ticks() const override {
        ++looks;
        return time;
    }
    void wakeAt(Wake& wake, Ticks deadline) override { queue.add(wake, deadline); }
    void forget(Wake& wake) noexcept override { queue.remove(wake); }
    void advance(Ticks by) {
        time += by;
        while (!queue.empty() && queue.earliest() <= time)
            queue.takeEarliest().fire();
    }

    Ticks time{0};
    mutable int looks = 0; ///< at the time: each byte that arrives costs one
    WakeQueue queue;
};

/// With the limits of the program itself: 10 s since the last byte and 60 s in all, so a picture
/// that comes steadily arrives, however long each byte takes.
TEST(CurlTransferLimits, CountFromTheLastByteAndFromTheBeginning) {
    const struct {
        const char* what;
        int parts; ///< that come, each 9.9 s after the one before: the headers, then bytes
        Ticks left;
        const char* fault; ///< empty: the last byte comes just in time
    } cases[] = {{"nothing", 0, 10s, "no answer from the camera"},
                 {"headers", 1, 10s, "no answer from the camera"},
                 {"two bytes", 3, 10s, "no answer from the camera"},
                 {"all but one byte", 6, 600ms, "the answer took too long"},
                 {"all", 6, 600ms, ""}};
    for (const auto& [what, parts, left, fault] : cases) {
        SCOPED_TRACE(what);
        SteppedClock clock;
        CurlLoop loop;
        CurlTransfer transfer(loop, clock);
        QTcpServer camera;
        camera.listen(QHostAddress::LocalHost);
        Task<HttpReply> task = transfer.get("127.0.0.1:" + std::to_string(camera.serverPort()));
        task.start();
        runEventLoopUntil([&] { return camera.hasPendingConnections(); });
        QTcpSocket& line = *camera.nextPendingConnection();
        runEventLoopUntil([&] { return line.bytesAvailable() > 0; });
        const auto say = [&](const char* bytes) {
            const int before = clock.looks;
            line.write(bytes);
            runEventLoopUntil([&] { return clock.looks > before; });
        };
        for (int part = 0; part < parts; ++part) {
            clock.advance(9900ms);
            say(part == 0 ? "HTTP/1.1 200 OK\r\nContent-Length: 6\r\n\r\n" : "x");
        }
        clock.advance(left - 1ms);
        EXPECT_FALSE(task.done());
        if (*fault == 0) say("x");
        clock.advance(1ms);
        ASSERT_TRUE(task.done());
        const HttpReply reply = task.result();
        EXPECT_EQ(reply.fault, fault);
        EXPECT_EQ(reply.body, *fault == 0 ? "xxxxxx" : "");
    }
}

/// Cancelled or destroyed at whatever moment, a transfer ends at once and leaves nothing behind.
TEST_F(CurlTransferTest, EndsAtAnyMoment) {
    bytes = sound(std::string(500'000, 'x'));
    for (int moment = 0; moment < 60; ++moment) {
        Task<HttpReply> task =
            transfer.get(moment % 3 == 0 ? "http://camera.invalid/" : server.url());
        task.start();
        for (int turn = 0; turn < moment / 2; ++turn)
            QCoreApplication::processEvents();
        if (moment % 2 == 0) continue; // destroyed
        const bool wasRunning = transfer.running();
        transfer.cancel();
        const HttpReply reply = finish(task);
        EXPECT_TRUE(reply.ok || !wasRunning || !reply.fault.empty());
    }
    EXPECT_FALSE(transfer.running());
    Task<HttpReply> earlier = transfer.get(server.url());
    earlier.start();
    expectSoundAgain("ends at any moment");
    EXPECT_EQ(finish(earlier).fault, "cancelled") << "by the new one";
}

} // namespace
} // namespace orvane::test

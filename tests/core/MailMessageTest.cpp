#include "core/MailMessage.h"
#include "tests/support/JumpingClock.h"
#include "tests/support/ReadMail.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace orvane::test {
namespace {

MailMessage message() {
    return {.from = {"", "sky@example.org"},
            .to = {{"", "one@example.org"}},
            .subject = "Orvane",
            .text = "text\n",
            .date = at(2006, 11, 5, 10, 10, 7),
            .offset = -210min,
            .id = "20061105abc"};
}

/// Lines that no mail server breaks, in ASCII.
void expectLines(const std::string& mail) {
    EXPECT_TRUE(std::ranges::all_of(mail, [](char c) { return c > 0; }));
    for (std::size_t at = 0, end = 0; at < mail.size(); at = end + 2) {
        end = mail.find('\r', at);
        ASSERT_NE(end, std::string::npos);
        EXPECT_EQ(mail.find('\n', at), end + 1);
        EXPECT_LE(end - at, 78U) << mail.substr(at, end - at);
    }
}

TEST(MailMessage, IsWrittenAsItsReadersExpect) {
    const std::string mail = mailText(message());
    expectLines(mail);
    EXPECT_EQ(mail.substr(0, mail.find("\r\n\r\n")),
              "From: sky@example.org\r\nTo: one@example.org\r\nSubject: Orvane\r\n"
              "Date: Sun, 05 Nov 2006 10:10:07 -0330\r\n"
              "Message-ID: <20061105abc@example.org>\r\n"
              "Auto-Submitted: auto-generated\r\nMIME-Version: 1.0\r\n"
              "Content-Type: multipart/mixed;\r\n boundary=\"=_20061105abc\"");
    EXPECT_TRUE(mail.ends_with("\r\n\r\ndGV4dA0K\r\n--=_20061105abc--\r\n"))
        << "\"text\" in base64";
}

TEST(MailMessage, EveryTextArrivesAsItIs) {
    const std::string hundred = QString(100, QChar(0x7A7A)).toStdString(); // "空"
    for (const std::string& subject :
         {std::string(), std::string("Störung: ä"), std::string("\xF0\x9F\x8C\xA5 = =?x?="),
          hundred, std::string("=?UTF-8?B?eA==?="), "ASCII " + std::string(300, 'x')}) {
        MailMessage mail = message();
        mail.subject = subject;
        mail.text = subject + "\n.\n\nFrom here\n";
        mail.from.name = "Süd, \"Station\" <5>";
        mail.to = {{"Ann-Lee 2", "a@example.org"}, {"Zoë", "z@example.org"}};
        const std::string bytes = mailText(mail);
        expectLines(bytes);
        ReadMail read(bytes);
        EXPECT_EQ(read.subject(), subject);
        EXPECT_EQ(read.text(), mail.text);
        EXPECT_EQ(read.headers["From"], "Süd, \"Station\" <5> <sky@example.org>");
        EXPECT_EQ(read.headers["To"], "Ann-Lee 2 <a@example.org>, Zoë <z@example.org>");
        EXPECT_TRUE(read.isClosed);
    }
}

/// What is taken from a server's words or a file's name makes no header of its own.
TEST(MailMessage, ASubjectStaysOneHeader) {
    MailMessage mail = message();
    mail.subject = "x\r\nBcc: evil@example.org\r\n\r\nbody";
    ReadMail read(mailText(mail));
    EXPECT_FALSE(read.headers.contains("Bcc"));
    EXPECT_EQ(read.subject(), "x  Bcc: evil@example.org    body");
}

TEST(MailMessage, PicturesArriveByteForByte) {
    MailMessage mail = message();
    for (std::size_t size = 0; size < 200; size += 19) {
        std::string bytes;
        for (std::size_t at = 0; at < size; ++at)
            bytes += static_cast<char>(at * 151 + size);
        mail.pictures.push_back({std::to_string(size) + ".jpg", bytes});
    }
    const std::string bytes = mailText(mail);
    expectLines(bytes);
    ReadMail read(bytes);
    ASSERT_EQ(read.parts.size(), mail.pictures.size() + 1);
    for (auto part = read.parts.begin() + 1; const auto& [name, jpeg] : mail.pictures) {
        EXPECT_EQ(part->bytes, jpeg);
        EXPECT_EQ(part++->headers["Content-Disposition"], "inline; filename=\"" + name + "\"");
    }
}

TEST(MailMessage, AddressesAreTakenOrRefused) {
    EXPECT_EQ(parseMailAddress(" sky@example.org "), (MailAddress{"", "sky@example.org"}));
    EXPECT_EQ(parseMailAddress("Süd <a.b+c@x-y.example.org>"),
              (MailAddress{"Süd", "a.b+c@x-y.example.org"}));
    EXPECT_EQ(parseMailAddress("\"Station\" <sky@localhost>"),
              (MailAddress{"Station", "sky@localhost"}));
    using namespace std::string_literals;
    for (const std::string& wrong :
         {""s, "sky"s, "sky@"s, "@example.org"s, "a@b@c"s, "a b@example.org"s, "sky@exa mple.org"s,
          "sky@example..org"s, ".sky@example.org"s, "sky@example.org>"s, "<sky@example.org"s,
          "sky@example.org\r\nRCPT TO:<b@c.d>"s, "Name\n <sky@example.org>"s,
          "s\xC3\xA4y@example.org"s, "a\0@example.org"s, std::string(65, 'a') + "@example.org",
          "a@" + std::string(260, 'b')})
        EXPECT_FALSE(parseMailAddress(wrong)) << wrong;
    const auto several = parseMailAddresses("a@b.c; Zoë <z@y.x>,\td@e.f ,");
    ASSERT_TRUE(several);
    EXPECT_EQ(*several, (std::vector<MailAddress>{{"", "a@b.c"}, {"Zoë", "z@y.x"}, {"", "d@e.f"}}));
    EXPECT_TRUE(parseMailAddresses("  ")->empty());
    EXPECT_FALSE(parseMailAddresses("a@b.c, d"));
}

} // namespace
} // namespace orvane::test

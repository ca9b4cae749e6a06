#include "core/MailMessage.h"
#include "tests/support/JumpingClock.h"
#include "tests/support/ReadMail.h"

#include <algorithm>

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
              "From: sky@example.org\r\n"
              "To: one@example.org\r\n"
              "Subject: Orvane\r\n"
              "Date: Sun, 05 Nov 2006 10:10:07 -0330\r\n"
              "Message-ID: <20061105abc@example.org>\r\n"
              "Auto-Submitted: auto-generated\r\n"
              "MIME-Version: 1.0\r\n"
              "Content-Type: multipart/mixed;\r\n boundary=\"=_20061105abc\"");
    EXPECT_NE(mail.find("\r\n\r\ndGV4dA0K\r\n--=_20061105abc--\r\n"), std::string::npos)
        << "\"text\", CR and LF in base64";
}

TEST(MailMessage, EveryTextArrivesAsItIs) {
    std::string hundred;
    for (int count = 0; count < 100; ++count)
        hundred += "空";
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
    for (std::size_t picture = 0; picture < mail.pictures.size(); ++picture) {
        ReadMail::Part& part = read.parts[picture + 1];
        EXPECT_EQ(part.bytes, mail.pictures[picture].jpeg);
        EXPECT_EQ(part.headers["Content-Disposition"],
                  "inline; filename=\"" + mail.pictures[picture].name + "\"");
    }
}

TEST(MailMessage, AddressesAreTakenOrRefused) {
    EXPECT_EQ(parseMailAddress(" sky@example.org "), (MailAddress{"", "sky@example.org"}));
    EXPECT_EQ(parseMailAddress("Süd <a.b+c@x-y.example.org>"),
              (MailAddress{"Süd", "a.b+c@x-y.example.org"}));
    EXPECT_EQ(parseMailAddress("\"Station\" <sky@localhost>"),
              (MailAddress{"Station", "sky@localhost"}));
    const std::string refused[] = {"",
                                   "sky",
                                   "sky@",
                                   "@example.org",
                                   "a@b@c",
                                   "a b@example.org",
                                   "sky@exa mple.org",
                                   "sky@example..org",
                                   ".sky@example.org",
                                   "sky@example.org>",
                                   "<sky@example.org",
                                   "sky@example.org\r\nRCPT TO:<b@c.d>",
                                   "Name\n <sky@example.org>",
                                   "s\xC3\xA4y@example.org",
                                   {"a\0@example.org", 14},
                                   std::string(65, 'a') + "@example.org",
                                   "a@" + std::string(260, 'b')};
    for (const std::string& wrong : refused)
        EXPECT_FALSE(parseMailAddress(wrong)) << wrong;
    const auto several = parseMailAddresses("a@b.c; Zoë <z@y.x>,\td@e.f ,");
    ASSERT_TRUE(several);
    EXPECT_EQ(*several, (std::vector<MailAddress>{{"", "a@b.c"}, {"Zoë", "z@y.x"}, {"", "d@e.f"}}));
    EXPECT_TRUE(parseMailAddresses("  ")->empty());
    EXPECT_FALSE(parseMailAddresses("a@b.c, d"));
}

} // namespace
} // namespace orvane::test

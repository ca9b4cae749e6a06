// Sends one mail with the program's own code, for scripts/mail-trial:
//     mail-trial host port none|starttls|tls user password ca-file from to picture|- [subject]
// Prints what came of it; exit code 0: the server took it.
#include "core/MailMessage.h"
#include "platform/Files.h"
#include "platform/Paths.h"
#include "platform/curl/CurlMail.h"
#include "platform/qt/QtClock.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>

namespace orvane {
namespace {

MailSecurity securityOf(const std::string& text) {
    if (text == "starttls") return MailSecurity::StartTls;
    return text == "tls" ? MailSecurity::Tls : MailSecurity::None;
}

Task<> sendAndExit(MailTransfer& transfer, MailServer server, Mail mail) {
    Task<MailOutcome> sending = transfer.send(std::move(server), std::move(mail));
    const MailOutcome outcome = co_await sending;
    for (const std::string& refused : outcome.refused)
        std::printf("refused: %s\n", refused.c_str());
    std::printf("%s\n", outcome.fault ? outcome.fault->c_str() : "sent");
    std::fflush(stdout);
    QCoreApplication::exit(outcome.fault ? 1 : 0);
}

int run(const std::vector<std::string>& words) {
    MailServer server{words[1], std::atoi(words[2].c_str()), securityOf(words[3]), words[4],
                      words[5], pathFromUtf8(words[6])};
    const auto to = parseMailAddresses(words[8]);
    const auto from = parseMailAddress(words[7]);
    if (!to || !from) return 2;
    QtClock clock;
    MailMessage message{.from = *from,
                        .to = *to,
                        .subject = words.size() > 10 ? words[10] : "Orvane",
                        .text = "Größe, 空.\n.a line with a dot\n",
                        .date = clock.now(),
                        .offset = clock.utcOffset(),
                        .id = "trial" + std::to_string(clock.now().time_since_epoch().count())};
    std::string jpeg;
    if (words[9] != "-" && !readWholeFile(pathFromUtf8(words[9]), jpeg))
        message.pictures.push_back({"picture.jpg", jpeg});
    Mail mail{from->address, {}, mailText(message)};
    for (const MailAddress& recipient : *to)
        mail.recipients.push_back(recipient.address);
    CurlLoop loop;
    CurlMail transfer(loop, clock, {3s, 10s});
    Task<> sending = sendAndExit(transfer, std::move(server), std::move(mail));
    sending.start();
    return QCoreApplication::exec();
}

} // namespace
} // namespace orvane

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    std::vector<std::string> words;
    for (const QString& word : QCoreApplication::arguments())
        words.push_back(word.toStdString());
    if (words.size() < 10) return 2;
    return orvane::run(words);
}

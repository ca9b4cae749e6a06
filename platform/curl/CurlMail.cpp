#include "platform/curl/MailConnection.h"

namespace orvane {

namespace {

constexpr char kDone = '2';
constexpr char kGoOn = '3';

/// The lines of a mail as they go over the connection: one that begins with a dot gets a second one
/// (RFC 5321, 4.5.2), and a line with a dot alone is the end.
std::string onTheWire(const std::string& bytes) {
    std::string wire;
    wire.reserve(bytes.size() + 8);
    bool lineBegins = true;
    for (const char byte : bytes) {
        if (lineBegins && byte == '.') wire += '.';
        wire += byte;
        lineBegins = byte == '\n';
    }
    if (!lineBegins) wire += "\r\n";
    return wire + ".\r\n";
}

/// Names the recipients one by one. A fault: none of them is accepted.
Task<Fault> nameRecipients(MailConnection& connection, std::vector<std::string> recipients,
                           std::vector<std::string>& refused) {
    Fault last = "the mail has no recipient";
    for (const std::string& recipient : recipients) {
        Task<Fault> naming = connection.command("RCPT TO:<" + recipient + ">", kDone);
        const Fault fault = co_await naming;
        if (!fault) continue;
        refused.push_back(recipient + ": " + *fault);
        last = fault;
    }
    if (refused.size() < recipients.size()) co_return std::nullopt;
    refused.clear();
    co_return last;
}

Task<Fault> deliver(MailConnection& connection, Mail mail, std::vector<std::string>& refused) {
    Task<Fault> sender = connection.command("MAIL FROM:<" + mail.sender + ">", kDone);
    Fault fault = co_await sender;
    if (fault) co_return fault;
    Task<Fault> naming = nameRecipients(connection, mail.recipients, refused);
    fault = co_await naming;
    if (fault) co_return fault;
    Task<Fault> data = connection.command("DATA", kGoOn);
    fault = co_await data;
    if (fault) co_return fault;
    Task<Fault> writing = connection.write(onTheWire(mail.bytes));
    fault = co_await writing;
    if (fault) co_return fault;
    Task<Fault> taken = connection.reply(kDone);
    fault = co_await taken;
    co_return fault;
}

} // namespace

Task<MailOutcome> CurlMail::send(MailServer server, Mail mail) {
    MailConnection connection(loop_, clock_, limits_);
    MailOutcome outcome;
    Task<Fault> opening = connection.open(std::move(server));
    outcome.fault = co_await opening;
    if (!outcome.fault) {
        Task<Fault> delivering = deliver(connection, std::move(mail), outcome.refused);
        outcome.fault = co_await delivering;
        connection.quit();
    }
    co_return outcome;
}

} // namespace orvane

#include "core/MailQueue.h"

#include "platform/Paths.h"
#include "station/Scope.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr int kPictureRows = 480;
constexpr int kPictureQuality = 75;
constexpr int kKeogramQuality = 85;
constexpr int kMostTurns = 120; ///< of a second, that a capture is waited for

std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts)
        all += (all.empty() ? "" : "; ") + text;
    return all;
}

std::vector<std::string> bareAddresses(const std::vector<MailAddress>& mailboxes) {
    std::vector<std::string> addresses(mailboxes.size());
    std::ranges::transform(mailboxes, addresses.begin(), &MailAddress::address);
    return addresses;
}

std::string withoutStop(std::string sentence) {
    if (sentence.ends_with('.')) sentence.pop_back();
    return sentence;
}

} // namespace

void MailQueue::use(const MailSettings& settings) {
    settings_ = settings;
    working_.reset(); // its pause is over, and a try with what was in force before
    if (!settings.wanted()) letters_.clear();
    if (letters_.empty()) parts_.warnings.clear(Warnings::Cause::Mail);
    begin();
}

void MailQueue::add(Letter letter) {
    if (letters_.size() == kMost) {
        const auto oldest = letters_.begin() + (sending_ ? 1 : 0);
        parts_.log.write("Alerts:Too many mails wait, not sent: " + oldest->subject);
        letters_.erase(oldest);
    }
    letters_.push_back(std::move(letter));
    begin();
}

void MailQueue::begin() {
    if (letters_.empty() || !working_.done()) return;
    working_ = parts_.faults.run("Alerts", work());
    working_.start();
}

Task<> MailQueue::work() {
    Ticks pause = kFirstPause;
    while (!letters_.empty()) {
        Task<Fault> trying = trySending();
        const Fault fault = co_await trying;
        if (!fault) {
            pause = kFirstPause;
            continue;
        }
        parts_.log.write("Alerts:No mail can be sent: " + *fault);
        parts_.warnings.set(Warnings::Cause::Mail,
                            "No mail can be sent: " + *fault + ". Please see Tools > Alerts.");
        giveUpOld(pause);
        if (letters_.empty()) break;
        co_await parts_.clock.sleep(pause);
        pause = std::min(2 * pause, kLongestPause);
    }
}

Task<Fault> MailQueue::trySending() {
    const Scope sending(sending_);
    Task<MailOutcome> task = send(settings_, letters_.front());
    const MailOutcome outcome = co_await task;
    if (outcome.fault) co_return outcome.fault;
    const Letter letter = std::move(letters_.front());
    letters_.pop_front();
    finish(letter, outcome.refused);
    co_return std::nullopt;
}

void MailQueue::finish(const Letter& letter, const std::vector<std::string>& refused) {
    parts_.log.write("Mail sent: " + letter.subject);
    std::string warning;
    if (!refused.empty()) {
        warning = "The mail server refused a recipient: " + joined(refused);
        parts_.log.write("Alerts:" + warning);
    }
    parts_.warnings.set(Warnings::Cause::Mail, warning);
    parts_.sent(letter);
}

/// Those for which the next try, after `pause`, would come too late.
void MailQueue::giveUpOld(Ticks pause) {
    const Ticks next = parts_.clock.ticks() + pause;
    while (!letters_.empty() && next > letters_.front().made + kPatience) {
        parts_.log.write("Alerts:Given up, not sent: " + letters_.front().subject);
        letters_.pop_front();
    }
}

Task<std::string> MailQueue::test(MailSettings settings, Letter letter) {
    Task<MailOutcome> task = send(settings, std::move(letter));
    const MailOutcome outcome = co_await task;
    std::string told = "The mail server has taken the mail.";
    if (outcome.fault) {
        told = "No mail was sent: " + *outcome.fault + ". Please correct that and test again.";
    } else if (!outcome.refused.empty()) {
        told = "The mail server has taken the mail, but not for " + joined(outcome.refused);
    }
    co_return told;
}

Task<MailOutcome> MailQueue::send(MailSettings settings, Letter letter) {
    MailOutcome outcome;
    if (const auto mistake = mistakeIn(settings)) {
        outcome.fault = withoutStop(mistake->text);
        co_return outcome;
    }
    Task<MailMessage> composing = compose(settings, std::move(letter));
    const MailMessage message = co_await composing;
    Mail mail{message.from.address, bareAddresses(message.to), mailText(message)};
    Task<MailOutcome> sending = parts_.mail.send(settings.server, std::move(mail));
    outcome = co_await sending;
    co_return outcome;
}

Task<MailMessage> MailQueue::compose(MailSettings settings, Letter letter) {
    MailMessage message{.from = *parseMailAddress(settings.from),
                        .to = *parseMailAddresses(settings.to),
                        .subject = letter.subject,
                        .text = letter.text,
                        .date = letter.date,
                        .offset = letter.offset,
                        .id = letter.id};
    for (int turn = 0; turn < kMostTurns && (composing_ || parts_.module.capturing); ++turn)
        co_await parts_.clock.sleep(1s);
    if (composing_) co_return message; // rather without pictures than never
    const Scope composing(composing_);
    Task<> picture = addPicture(letter, message);
    co_await picture;
    if (letter.day) {
        Task<> keogram = addKeogram(letter, message);
        co_await keogram;
    }
    parts_.pictures.clear();
    co_return message;
}

Task<> MailQueue::addPicture(Letter letter, MailMessage& message) {
    if (letter.picture.empty()) co_return;
    ImageControl& control = parts_.pictures;
    const std::string name = utf8FromPath(letter.picture.filename());
    Task<Fault> loading = control.loadReduced(letter.picture, kPictureRows);
    const Fault fault = co_await loading;
    if (fault) {
        message.text += "\nThe picture " + name + " cannot be shown: " + *fault + ".\n";
        co_return;
    }
    Task<std::string> encoding = control.encode(kPictureQuality);
    std::string jpeg = co_await encoding;
    message.pictures.push_back({name, std::move(jpeg)});
}

Task<> MailQueue::addKeogram(Letter letter, MailMessage& message) {
    const DayListing listing =
        listDay(datedFolderOf(parts_.panel.Dir1[0].path, WallTime(*letter.day)));
    if (listing.pictures.empty()) co_return;
    Task<> reading = parts_.keograms.read(listing.pictures);
    co_await reading;
    parts_.pictures.take(parts_.keograms.draw(*letter.day, listing.pictures, letter.isDue));
    Task<std::string> encoding = parts_.pictures.encode(kKeogramQuality);
    std::string jpeg = co_await encoding;
    message.pictures.push_back({"keogram.jpg", std::move(jpeg)});
}

} // namespace orvane

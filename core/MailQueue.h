#pragma once

#include "archive/Keograms.h"
#include "core/MailMessage.h"
#include "core/MailSettings.h"
#include "station/Faults.h"
#include "station/OperationPanel.h"
#include "station/Warnings.h"

#include <deque>
#include <functional>

namespace orvane {

/// A mail that waits to be sent. Its pictures are made when it is.
struct Letter {
    std::string subject;
    std::string text;
    std::filesystem::path picture{}; ///< empty: none
    /// The day that it reports on, whose keogram goes with it; nothing: no report.
    std::optional<std::chrono::local_days> day{};
    DueMinutes isDue{}; ///< of that day
    WallTime date{};
    std::chrono::minutes offset{}; ///< of `date` from universal time
    Ticks made{};
    std::string id{}; ///< alike in every try, so that a reader knows one that came twice
};

/// The mails to be sent, in their order, one at a time. A try that fails is followed by the next
/// after a pause, which grows from a minute to an hour; a mail is given up a day after it was made.
/// What cannot be sent is a warning and a line of the log. Only in memory: what is lost with the
/// program, the program finds again when it starts.
class MailQueue {
  public:
    static constexpr std::size_t kMost = 20; ///< the oldest gives way
    static constexpr Ticks kFirstPause = 1min;
    static constexpr Ticks kLongestPause = 1h;
    static constexpr Ticks kPatience = 24h;

    struct Parts {
        const Module1& module;
        const OperationPanel& panel; ///< for the data folder
        Warnings& warnings;
        ErrorLog& log;
        Faults& faults;
        Clock& clock;
        ImageControl& pictures; ///< an own one
        Keograms& keograms;
        MailTransfer& mail;
        std::function<void(const Letter&)> sent; ///< told of each letter that a server took
    };

    explicit MailQueue(Parts parts) : parts_(std::move(parts)) {}
    MailQueue(const MailQueue&) = delete;

    /// What waits is tried anew, at once; with settings that want no mails it is dropped.
    void use(const MailSettings& settings);
    void add(Letter letter);
    std::size_t size() const { return letters_.size(); }
    /// Sends `letter` beside the queue, with `settings`, once. Answers a sentence on what came of
    /// it.
    Task<std::string> test(MailSettings settings, Letter letter);

  private:
    void begin();
    Task<> work();
    Task<Fault> trySending();
    void finish(const Letter& letter, const std::vector<std::string>& refused);
    void giveUpOld(Ticks pause);
    Task<MailOutcome> send(MailSettings settings, Letter letter);
    Task<MailMessage> compose(MailSettings settings, Letter letter);
    Task<> addPicture(Letter letter, MailMessage& message);
    Task<> addKeogram(Letter letter, MailMessage& message);

    Parts parts_;
    MailSettings settings_;
    std::deque<Letter> letters_;
    bool sending_ = false;   ///< the first of them is on its way
    bool composing_ = false; ///< the image control is in use
    Task<bool> working_;
};

} // namespace orvane

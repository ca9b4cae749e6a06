#pragma once

#include "archive/DayWatch.h"
#include "core/AlertTexts.h"
#include "core/MailQueue.h"
#include "station/RepeatingTimer.h"

#include <deque>
#include <map>

namespace orvane {

/// Mails what somebody away from the station should know: a warning that has stood for ten minutes,
/// once, and that it has gone; and once a day, ten minutes after the recording window's end, how
/// the day was. It looks by itself every 20 seconds and never waits for a mail.
///
/// A cause brings one mail an hour at most, with news of either kind: what changes within that hour
/// is mailed behind it, if it still is news then. So a warning that comes and goes all day brings
/// 24 mails at most, and all of them together bring no more.
class Alerts {
  public:
    static constexpr Ticks kStood = 10min;
    static constexpr Ticks kBetween = 1h;        ///< two mails of one cause
    static constexpr std::size_t kMostADay = 24; ///< in any 24 hours
    static constexpr auto kAfterWindow = 10min;

    struct Parts {
        const Module1& module;
        const OperationPanel& panel;
        Warnings& warnings;
        DayWatch& days;
        SettingsStore& store;
        ErrorLog& log;
        Faults& faults;
        Clock& clock;
        ImageControl& pictures; ///< an own one
        Keograms& keograms;
        MailTransfer& mail;
        std::function<std::chrono::minutes()> utcOffset;
    };

    explicit Alerts(Parts parts);

    /// Loads the settings and begins to look.
    void start();
    const MailSettings& settings() const { return settings_; }
    /// Takes settings without a mistake over and stores them. Why they could not be stored, for the
    /// operator; they are in force all the same.
    Fault use(const MailSettings& settings);
    /// Sends a mail with these settings, whatever is in force. Answers a sentence on what came of
    /// it.
    Task<std::string> test(MailSettings settings);

  private:
    /// What is known of one warning since mails are wanted.
    struct Cause {
        bool stands = false;
        bool told = false; ///< the last mail said that it stands
        Warnings::Standing warning;
        Ticks seen{};    ///< when it came up
        WallTime gone{}; ///< when it went
        std::optional<Ticks> mailed;
    };

    void follow();
    void followWarnings();
    void note(Warnings::Cause which, const Warnings::Standing& warning);
    void tell(Warnings::Cause which, Cause& cause);
    bool isNews(const Cause& cause) const;
    bool mayMail(std::size_t most);
    void followDay();
    std::chrono::local_days lastDayOver() const;
    void reportOn(std::chrono::local_days day);
    void keepReported(std::chrono::local_days day);
    StationFigures figures();
    std::filesystem::path newestPicture() const;
    Letter letterOf(AlertText alert) const;
    void post(Letter letter);

    Parts parts_;
    MailSettings settings_;
    MailQueue queue_;
    RepeatingTimer timer_;
    std::map<Warnings::Cause, Cause> causes_;
    std::deque<Ticks> posted_; ///< the mails of the last 24 hours
    /// The day that was reported on last, "20061115"; stored once that mail is sent.
    std::string reported_;
};

} // namespace orvane

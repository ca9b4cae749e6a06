#pragma once

#include "platform/Clock.h"
#include "platform/Mail.h"

#include <functional>
#include <vector>

namespace orvane::test {

/// A mail server that takes every mail after `latency`, or fails with what `answer` gives.
class FakeMail final : public MailTransfer {
  public:
    explicit FakeMail(Clock& clock) : clock_(clock) {}

    Task<MailOutcome> send(MailServer server, Mail mail) override {
        ++tries;
        lastServer = server;
        triedAt.push_back(clock_.now());
        co_await clock_.sleep(latency);
        MailOutcome outcome = answer ? answer(mail) : MailOutcome{};
        if (!outcome.fault) sent.push_back(std::move(mail));
        co_return outcome;
    }

    std::function<MailOutcome(const Mail&)> answer;
    std::chrono::milliseconds latency{2000};
    int tries = 0;
    MailServer lastServer;
    std::vector<WallTime> triedAt;
    std::vector<Mail> sent;

  private:
    Clock& clock_;
};

} // namespace orvane::test

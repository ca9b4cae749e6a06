#pragma once

#include "platform/Mail.h"
#include "platform/curl/CurlMail.h"

#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// A connection to a mail server, logged in, and the bytes over it. It lives in the frame of the
/// coroutine that uses it and is closed with that, without a wait.
class MailConnection final : public CurlLoop::Owner {
  public:
    MailConnection(CurlLoop& loop, Clock& clock, MailLimits limits);
    MailConnection(const MailConnection&) = delete;
    ~MailConnection();

    /// Connects, secures and logs in as `server` says.
    Task<Fault> open(MailServer server);
    /// Hands over all of `bytes`.
    Task<Fault> write(std::string bytes);
    /// Sends a line (without its end) and takes the reply to it. A reply of another kind than
    /// `wanted`, its first digit, is a fault with the server's words.
    Task<Fault> command(std::string line, char wanted);
    /// The same for the reply to what was written.
    Task<Fault> reply(char wanted);
    /// Says farewell; the reply is not waited for.
    void quit();

    void ended(CURLcode result) override;

  private:
    static std::size_t onReply(char* bytes, std::size_t, std::size_t count, void* self);

    Fault setOptions(const MailServer& server);
    Fault setAddress(const MailServer& server);
    Fault setCertificates(const MailServer& server);
    Fault checkLimits() const;
    Fault read();
    std::string refusal(const std::string& reason) const;
    std::string faultOf(CURLcode result) const;

    CurlLoop& loop_;
    Clock& clock_;
    MailLimits limits_;
    CURL* easy_;
    CURLU* address_;
    Ticks started_;
    Ticks lastByte_;
    std::optional<CURLcode> ended_; ///< how the connecting ended
    std::string dialogue_;          ///< what the server said up to the log-in
    std::string read_;              ///< what it said after that and nobody has taken yet
    std::string words_;             ///< its reply that was taken last
    char libraryWords_[CURL_ERROR_SIZE] = {};
};

} // namespace orvane

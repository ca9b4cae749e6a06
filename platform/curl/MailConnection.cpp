#include "platform/curl/MailConnection.h"

#include "platform/Files.h"
#include "platform/curl/MailReply.h"

#include <new>

namespace orvane {

namespace {

constexpr Ticks kPoll = 20ms;
constexpr std::size_t kMostReplies = 64 * 1024; ///< bytes of what a server says to one command
/// Says nothing of this PC, and no server finds fault with it (RFC 5321, 4.1.3).
constexpr const char* kOwnName = "/%5B127.0.0.1%5D";
constexpr const char* kBroken = "the connection to the mail server broke";

/// Our own words, alike on all systems; what the library has to say about certificates follows.
std::string textOf(CURLcode fault) {
    switch (fault) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return "the name of the mail server is not known";
    case CURLE_COULDNT_CONNECT:
        return "no connection to the mail server";
    case CURLE_USE_SSL_FAILED:
        return "the mail server offers no encryption (STARTTLS)";
    case CURLE_LOGIN_DENIED:
        return "the mail server refused the log-in";
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_INVALIDCERTSTATUS:
        return "the certificate of the mail server is not accepted";
    case CURLE_SSL_CACERT_BADFILE:
        return "the CA file holds no usable certificate";
    case CURLE_SSL_CONNECT_ERROR:
        return "no encrypted connection to the mail server";
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_GOT_NOTHING:
        return kBroken;
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_REMOTE_ACCESS_DENIED:
        return "the mail server does not answer as one";
    case CURLE_OUT_OF_MEMORY:
        return "there is not enough memory";
    default:
        return "the connection to the mail server failed (code " + std::to_string(fault) + ")";
    }
}

bool isCertificates(CURLcode fault) {
    return fault == CURLE_PEER_FAILED_VERIFICATION || fault == CURLE_SSL_CONNECT_ERROR ||
           fault == CURLE_SSL_CACERT_BADFILE || fault == CURLE_SSL_ISSUER_ERROR ||
           fault == CURLE_SSL_INVALIDCERTSTATUS;
}

} // namespace

MailConnection::MailConnection(CurlLoop& loop, Clock& clock, MailLimits limits)
    : loop_(loop), clock_(clock), limits_(limits), easy_(curl_easy_init()), address_(curl_url()),
      started_(clock.ticks()), lastByte_(started_) {
    if (easy_ == nullptr || address_ == nullptr) throw std::bad_alloc();
}

/// A connection that is taken out of the loop is closed at once, without a word to the server.
MailConnection::~MailConnection() {
    loop_.remove(easy_);
    curl_easy_cleanup(easy_);
    curl_url_cleanup(address_);
}

Fault MailConnection::setAddress(const MailServer& server) {
    const bool isBareV6 = server.host.find(':') != std::string::npos && server.host[0] != '[';
    const std::string host = isBareV6 ? "[" + server.host + "]" : server.host;
    const bool secure = server.security == MailSecurity::Tls;
    for (const auto& [part, text] :
         {std::pair{CURLUPART_SCHEME, std::string(secure ? "smtps" : "smtp")},
          std::pair{CURLUPART_HOST, host}, std::pair{CURLUPART_PORT, std::to_string(server.port)},
          std::pair{CURLUPART_PATH, std::string(kOwnName)}})
        if (text.empty() || curl_url_set(address_, part, text.c_str(), 0) != CURLUE_OK)
            return "the address of the mail server cannot be used";
    return std::nullopt;
}

/// As bytes, since the library knows no file names beyond ASCII on every system.
Fault MailConnection::setCertificates(const MailServer& server) {
    curl_easy_setopt(easy_, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(easy_, CURLOPT_SSL_VERIFYHOST, 2L);
    // a session that goes on would not show its certificate again
    curl_easy_setopt(easy_, CURLOPT_SSL_SESSIONID_CACHE, 0L);
    // a private server's certificate names no list of revoked ones
    curl_easy_setopt(easy_, CURLOPT_SSL_OPTIONS, static_cast<long>(CURLSSLOPT_REVOKE_BEST_EFFORT));
    if (server.caFile.empty()) return std::nullopt;
    std::string bytes;
    if (const Fault fault = readWholeFile(server.caFile, bytes))
        return "the CA file cannot be read: " + *fault;
    curl_blob blob{bytes.data(), bytes.size(), CURL_BLOB_COPY};
    curl_easy_setopt(easy_, CURLOPT_CAINFO_BLOB, &blob);
    return std::nullopt;
}

/// A connection that was kept could be less secure than what is asked for: a fresh one, always.
Fault MailConnection::setOptions(const MailServer& server) {
    const auto set = [this](CURLoption option, auto value) {
        curl_easy_setopt(easy_, option, value);
    };
    if (Fault fault = setAddress(server)) return fault;
    if (Fault fault = setCertificates(server)) return fault;
    set(CURLOPT_CURLU, address_);
    set(CURLOPT_PRIVATE, static_cast<CurlLoop::Owner*>(this));
    set(CURLOPT_PROTOCOLS_STR, "smtp,smtps");
    set(CURLOPT_PROXY, "");
    set(CURLOPT_CONNECT_ONLY, 1L); // with the log-in
    set(CURLOPT_FRESH_CONNECT, 1L);
    set(CURLOPT_USE_SSL,
        static_cast<long>(server.security == MailSecurity::StartTls ? CURLUSESSL_ALL
                                                                    : CURLUSESSL_NONE));
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L);
    set(CURLOPT_HEADERFUNCTION, &MailConnection::onReply);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_ERRORBUFFER, &libraryWords_[0]);
    if (server.user.empty()) return std::nullopt;
    set(CURLOPT_USERNAME, server.user.c_str());
    set(CURLOPT_PASSWORD, server.password.c_str());
    return std::nullopt;
}

std::size_t MailConnection::onReply(char* bytes, std::size_t, std::size_t count, void* self) {
    auto& connection = *static_cast<MailConnection*>(self);
    connection.lastByte_ = connection.clock_.ticks();
    if (connection.dialogue_.size() + count > kMostReplies) return 0;
    try {
        connection.dialogue_.append(bytes, count);
    } catch (const std::bad_alloc&) {
        return 0; // no exception may cross the library
    }
    return count;
}

void MailConnection::ended(CURLcode result) {
    ended_ = result;
}

Fault MailConnection::checkLimits() const {
    const Ticks now = clock_.ticks();
    if (now >= started_ + limits_.total) return "the mail server took too long";
    if (now >= lastByte_ + limits_.idle) return "no answer from the mail server";
    return std::nullopt;
}

std::string MailConnection::refusal(const std::string& reason) const {
    return words_.empty() ? reason : reason + ": " + words_;
}

std::string MailConnection::faultOf(CURLcode result) const {
    const std::string reply = wordsOf(lastReply(dialogue_));
    if (isRefusal(reply)) {
        const bool known = result == CURLE_LOGIN_DENIED || result == CURLE_USE_SSL_FAILED;
        return (known ? textOf(result) : "the mail server refused the connection") + ": " + reply;
    }
    const std::string library(&libraryWords_[0]);
    return textOf(result) +
           (isCertificates(result) && !library.empty() ? " (" + library + ")" : "");
}

Task<Fault> MailConnection::open(MailServer server) {
    Fault fault = setOptions(server);
    if (fault) co_return fault;
    loop_.add(easy_);
    while (!ended_) {
        fault = checkLimits();
        if (fault) co_return fault;
        co_await clock_.sleep(kPoll);
    }
    lastByte_ = clock_.ticks();
    if (*ended_ != CURLE_OK) fault = faultOf(*ended_);
    co_return fault;
}

Task<Fault> MailConnection::write(std::string bytes) {
    std::size_t written = 0;
    while (written < bytes.size()) {
        std::size_t count = 0;
        const CURLcode result =
            curl_easy_send(easy_, bytes.data() + written, bytes.size() - written, &count);
        if (result != CURLE_OK && result != CURLE_AGAIN) co_return kBroken;
        written += count;
        if (count > 0) {
            lastByte_ = clock_.ticks();
            continue;
        }
        const Fault fault = checkLimits();
        if (fault) co_return fault;
        co_await clock_.sleep(kPoll);
    }
    co_return std::nullopt;
}

/// Takes what has come, as far as there is some.
Fault MailConnection::read() {
    char bytes[4096];
    std::size_t count = 0;
    const CURLcode result = curl_easy_recv(easy_, &bytes[0], sizeof bytes, &count);
    if (result == CURLE_AGAIN) return std::nullopt;
    if (result != CURLE_OK || count == 0) return kBroken;
    lastByte_ = clock_.ticks();
    read_.append(&bytes[0], count);
    if (read_.size() > kMostReplies) return "the answer of the mail server is too long";
    return std::nullopt;
}

Task<Fault> MailConnection::reply(char wanted) {
    std::optional<std::string> reply = takeReply(read_);
    while (!reply) {
        const Fault unread = read();
        reply = takeReply(read_);
        if (reply) break;
        if (unread) co_return unread;
        const Fault fault = checkLimits();
        if (fault) co_return fault;
        co_await clock_.sleep(kPoll);
    }
    words_ = wordsOf(*reply);
    if (words_.starts_with(wanted)) co_return std::nullopt;
    co_return refusal(isRefusal(words_) ? "the mail server refused the mail"
                                        : "the mail server does not answer as one");
}

Task<Fault> MailConnection::command(std::string line, char wanted) {
    Task<Fault> writing = write(line + "\r\n");
    const Fault fault = co_await writing;
    if (fault) co_return fault;
    Task<Fault> answering = reply(wanted);
    Fault answered = co_await answering;
    co_return answered;
}

void MailConnection::quit() {
    constexpr std::string_view kFarewell = "QUIT\r\n";
    std::size_t count = 0;
    curl_easy_send(easy_, kFarewell.data(), kFarewell.size(), &count);
}

} // namespace orvane

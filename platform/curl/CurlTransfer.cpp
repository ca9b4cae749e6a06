#include "platform/curl/CurlTransfer.h"

#include <algorithm>
#include <memory>
#include <new>
#include <optional>
#include <utility>

namespace orvane {

namespace {

constexpr int kMostRedirects = 3;
constexpr std::size_t kFirstRoom = 128 * 1024;   ///< bytes
constexpr std::size_t kMostHeaders = 256 * 1024; ///< bytes of all headers of a transfer

/// A picture comes in few pieces then, each of which costs a turn of the event loop.
constexpr long kBufferSize = 128 * 1024;

/// Our own words, alike on all systems and for every version of the library.
std::string textOf(CURLcode fault) {
    switch (fault) {
    case CURLE_URL_MALFORMAT:
        return "the address cannot be used";
    case CURLE_COULDNT_RESOLVE_HOST:
        return "the address is not known";
    case CURLE_COULDNT_CONNECT:
        return "no connection to the camera";
    case CURLE_GOT_NOTHING:
        return "the connection was closed without an answer";
    case CURLE_PARTIAL_FILE:
        return "the answer is shorter than announced";
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
        return "the connection broke";
    case CURLE_FILESIZE_EXCEEDED:
        return "the answer is too large";
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_BAD_CONTENT_ENCODING:
    case CURLE_UNSUPPORTED_PROTOCOL: // an answer without a status line
        return "the answer is not HTTP";
    case CURLE_OUT_OF_MEMORY:
        return "there is not enough memory";
    default:
        return "the transfer failed (code " + std::to_string(fault) + ")";
    }
}

/// Where an address leads, as "http:host:port:"; nothing for one that cannot be used, such as one
/// with a blank or of another scheme.
std::optional<std::string> hostAndPort(const std::string& url) {
    const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> parsed(curl_url(), curl_url_cleanup);
    if (curl_url_set(parsed.get(), CURLUPART_URL, url.c_str(), 0) != CURLUE_OK) return std::nullopt;
    std::string found;
    for (const CURLUPart part : {CURLUPART_SCHEME, CURLUPART_HOST, CURLUPART_PORT}) {
        char* text = nullptr;
        if (curl_url_get(parsed.get(), part, &text, CURLU_DEFAULT_PORT) != CURLUE_OK)
            return std::nullopt;
        found += std::string(text) + ":";
        curl_free(text);
    }
    if (!found.starts_with("http:")) return std::nullopt;
    return found;
}

} // namespace

/// One GET. It lives in the frame of the coroutine that waits for it and ends with that, wherever
/// it is.
class CurlTransfer::Transfer final : public CurlLoop::Owner {
  public:
    Transfer(CurlTransfer& owner, std::string url, Wanted wanted);
    Transfer(const Transfer&) = delete;
    ~Transfer() {
        owner_.loop_.remove(easy_);
        curl_easy_cleanup(easy_);
        curl_slist_free_all(headers_);
        if (owner_.running_ == this) owner_.running_ = nullptr;
    }

    /// Gives up with `fault`, unless it has ended.
    void giveUp(const std::string& fault) {
        if (finished.fired()) return;
        if (fault_.empty()) fault_ = fault;
        end();
    }
    void ended(CURLcode result) override {
        owner_.loop_.remove(easy_); // it may be added again
        if (result == CURLE_OK && fault_.empty() && followRedirect()) return;
        if (fault_.empty() && result != CURLE_OK) fault_ = textOf(result);
        end();
    }
    HttpReply result();

    Signal finished;

  private:
    static std::size_t onBody(char* bytes, std::size_t, std::size_t count, void* self);
    static std::size_t onHeader(char* bytes, std::size_t, std::size_t count, void* self);

    void setOptions();
    void start();
    void end();
    bool followRedirect();
    bool take(std::string_view bytes);
    void makeRoom(std::size_t count);
    Task<> watchLimits();
    std::size_t mostBytes() const {
        return wanted_ == Wanted::Picture ? owner_.limits_.pictureSize : owner_.limits_.pageSize;
    }

    CurlTransfer& owner_;
    std::string url_;
    Wanted wanted_;
    CURL* easy_;
    curl_slist* headers_ = nullptr;
    Ticks started_;
    Ticks lastByte_;
    int redirects_ = 0;
    std::size_t headerBytes_ = 0;
    std::size_t bodyBytes_ = 0;
    std::string body_;
    std::string fault_;
    Task<> watching_;
};

CurlTransfer::Transfer::Transfer(CurlTransfer& owner, std::string url, Wanted wanted)
    : finished(owner.clock_), owner_(owner), url_(std::move(url)), wanted_(wanted),
      easy_(curl_easy_init()), started_(owner.clock_.ticks()), lastByte_(started_) {
    if (easy_ == nullptr) throw std::bad_alloc();
    if (url_.find("://") == std::string::npos) url_ = "http://" + url_;
    if (!hostAndPort(url_)) {
        giveUp(textOf(CURLE_URL_MALFORMAT));
        return;
    }
    setOptions();
    start();
    watching_ = watchLimits();
    watching_.start();
}

void CurlTransfer::Transfer::setOptions() {
    const auto set = [this](CURLoption option, auto value) {
        curl_easy_setopt(easy_, option, value);
    };
    headers_ = curl_slist_append(headers_, "Accept-Encoding: identity");
    headers_ = curl_slist_append(headers_, "Cache-Control: no-cache");
    set(CURLOPT_HTTPHEADER, headers_);
    set(CURLOPT_PRIVATE, static_cast<CurlLoop::Owner*>(this));
    set(CURLOPT_PROTOCOLS_STR, "http");
    set(CURLOPT_PROXY, "");
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    set(CURLOPT_HTTP09_ALLOWED, 0L);
    set(CURLOPT_FOLLOWLOCATION, 0L); // not to everywhere: see followRedirect
    set(CURLOPT_PATH_AS_IS, 1L);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L); // else ending during a name's look-up waits for the look-up
    set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(mostBytes()));
    set(CURLOPT_BUFFERSIZE, kBufferSize);
    set(CURLOPT_WRITEFUNCTION, &Transfer::onBody);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_HEADERFUNCTION, &Transfer::onHeader);
    set(CURLOPT_HEADERDATA, this);
}

void CurlTransfer::Transfer::start() {
    curl_easy_setopt(easy_, CURLOPT_URL, url_.c_str());
    owner_.loop_.add(easy_);
}

void CurlTransfer::Transfer::end() {
    owner_.loop_.remove(easy_);
    finished.fire();
}

/// Whether the answer sends on to another place on the same host, which is asked for then.
bool CurlTransfer::Transfer::followRedirect() {
    const char* place = nullptr;
    curl_easy_getinfo(easy_, CURLINFO_REDIRECT_URL, &place);
    if (place == nullptr || redirects_ == kMostRedirects) return false;
    std::string next = place;
    if (hostAndPort(next) != hostAndPort(url_)) return false;
    ++redirects_;
    url_ = std::move(next);
    body_.clear();
    bodyBytes_ = 0;
    start();
    return true;
}

/// For as much as is announced, within the limit; else doubled in such steps that the largest body
/// fits the last of them.
void CurlTransfer::Transfer::makeRoom(std::size_t count) {
    const std::size_t wanted = body_.size() + count;
    if (wanted <= body_.capacity()) return;
    curl_off_t announced = -1;
    curl_easy_getinfo(easy_, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &announced);
    if (announced > 0 && std::cmp_greater_equal(announced, wanted))
        return body_.reserve(static_cast<std::size_t>(announced));
    std::size_t room = mostBytes();
    while (room / 2 >= std::max(wanted, kFirstRoom))
        room /= 2;
    body_.reserve(room);
}

/// Whether the transfer may go on. Of the headers only whole lines are told. `onBody` and
/// `onHeader` are called from inside the library, which no exception may cross.
bool CurlTransfer::Transfer::take(std::string_view bytes) {
    lastByte_ = owner_.clock_.ticks();
    bodyBytes_ += bytes.size();
    if (bodyBytes_ > mostBytes()) {
        fault_ = textOf(CURLE_FILESIZE_EXCEEDED);
        return false;
    }
    if (wanted_ == Wanted::Nothing) return true;
    try {
        makeRoom(bytes.size());
        body_ += bytes;
        return true;
    } catch (const std::bad_alloc&) {
        fault_ = textOf(CURLE_OUT_OF_MEMORY);
        return false;
    }
}

std::size_t CurlTransfer::Transfer::onBody(char* bytes, std::size_t, std::size_t count,
                                           void* self) {
    return static_cast<Transfer*>(self)->take({bytes, count}) ? count : CURL_WRITEFUNC_ERROR;
}

std::size_t CurlTransfer::Transfer::onHeader(char*, std::size_t, std::size_t count, void* self) {
    auto& transfer = *static_cast<Transfer*>(self);
    transfer.lastByte_ = transfer.owner_.clock_.ticks();
    transfer.headerBytes_ += count;
    if (transfer.headerBytes_ <= kMostHeaders) return count;
    transfer.fault_ = textOf(CURLE_FILESIZE_EXCEEDED);
    return 0;
}

/// The wake-up is not moved at every byte: when it comes, it is seen how long it is since the last.
Task<> CurlTransfer::Transfer::watchLimits() {
    while (!finished.fired()) {
        const Ticks now = owner_.clock_.ticks();
        const Ticks idle = lastByte_ + owner_.limits_.idle - now;
        const Ticks total = started_ + owner_.limits_.total - now;
        if (total <= 0ms) {
            giveUp("the answer took too long");
        } else if (idle <= 0ms) {
            giveUp("no answer from the camera");
        } else {
            co_await owner_.clock_.sleep(std::min(idle, total));
        }
    }
}

HttpReply CurlTransfer::Transfer::result() {
    HttpReply reply;
    long status = 0;
    curl_easy_getinfo(easy_, CURLINFO_RESPONSE_CODE, &status);
    reply.status = static_cast<int>(status);
    reply.fault = fault_;
    const bool isEmpty = status == 204 || body_.empty();
    // a status of failure tells more than what became of its page
    if (status >= 400 || (fault_.empty() && (status < 200 || status >= 300))) {
        reply.fault = "HTTP status " + std::to_string(status);
    } else if (fault_.empty() && wanted_ != Wanted::Nothing && isEmpty) {
        reply.fault = "the answer is empty";
    }
    reply.ok = reply.fault.empty();
    if (reply.ok) reply.body = std::move(body_);
    return reply;
}

Task<HttpReply> CurlTransfer::get(std::string url, Wanted wanted) {
    cancel();
    Transfer transfer(*this, std::move(url), wanted);
    running_ = &transfer;
    Signal& finished = transfer.finished;
    co_await finished;
    HttpReply reply = transfer.result();
    co_return reply;
}

void CurlTransfer::cancel() {
    if (running_ != nullptr) std::exchange(running_, nullptr)->giveUp(kCancelled);
}

} // namespace orvane

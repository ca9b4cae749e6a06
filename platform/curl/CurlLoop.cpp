#include "platform/curl/CurlLoop.h"

#include <algorithm>
#include <new>

namespace orvane {

namespace {

constexpr long kKeptConnections = 4;

CURLM* makeMulti() {
    static const CURLcode ready = curl_global_init(CURL_GLOBAL_DEFAULT);
    CURLM* multi = ready == CURLE_OK ? curl_multi_init() : nullptr;
    if (multi == nullptr) throw std::bad_alloc();
    return multi;
}

} // namespace

CurlLoop::CurlLoop() : multi_(makeMulti()) {
    curl_multi_setopt(multi_, CURLMOPT_SOCKETFUNCTION, &CurlLoop::onSocket);
    curl_multi_setopt(multi_, CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(multi_, CURLMOPT_TIMERFUNCTION, &CurlLoop::onTimer);
    curl_multi_setopt(multi_, CURLMOPT_TIMERDATA, this);
    curl_multi_setopt(multi_, CURLMOPT_MAXCONNECTS, kKeptConnections);
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { act(CURL_SOCKET_TIMEOUT, 0); });
}

CurlLoop::~CurlLoop() {
    curl_multi_cleanup(multi_);
    while (!sockets_.empty())
        forget(sockets_.begin()->first);
}

void CurlLoop::add(CURL* transfer) {
    curl_multi_add_handle(multi_, transfer);
}

void CurlLoop::remove(CURL* transfer) {
    curl_multi_remove_handle(multi_, transfer);
}

int CurlLoop::onSocket(CURL*, curl_socket_t socket, int what, void* self, void*) {
    CurlLoop& loop = *static_cast<CurlLoop*>(self);
    if (what == CURL_POLL_REMOVE) {
        loop.forget(socket);
        return 0;
    }
    const auto [reading, writing] = loop.watch(socket);
    reading->setEnabled(what == CURL_POLL_IN || what == CURL_POLL_INOUT);
    writing->setEnabled(what == CURL_POLL_OUT || what == CURL_POLL_INOUT);
    return 0;
}

/// A time of 0 must not be acted on inside this call; a timer of 0 fires at the next turn.
int CurlLoop::onTimer(CURLM*, long milliseconds, void* self) {
    QTimer& timer = static_cast<CurlLoop*>(self)->timer_;
    if (milliseconds < 0) {
        timer.stop();
    } else {
        timer.start(static_cast<int>(std::min(milliseconds, 3'600'000L)));
    }
    return 0;
}

CurlLoop::Notifiers CurlLoop::watch(curl_socket_t socket) {
    const auto found = sockets_.find(socket);
    if (found != sockets_.end()) return found->second;
    const auto notifier = [this, socket](QSocketNotifier::Type type, int event) {
        auto* made = new QSocketNotifier(static_cast<qintptr>(socket), type);
        QObject::connect(made, &QSocketNotifier::activated, made,
                         [this, socket, event] { act(socket, event); });
        return made;
    };
    return sockets_[socket] = {notifier(QSocketNotifier::Read, CURL_CSELECT_IN),
                               notifier(QSocketNotifier::Write, CURL_CSELECT_OUT)};
}

/// libcurl drops a socket from inside the notifier's own signal, so they are deleted later; a new
/// socket of the same number may come before that.
void CurlLoop::forget(curl_socket_t socket) {
    const auto found = sockets_.find(socket);
    if (found == sockets_.end()) return;
    for (QSocketNotifier* notifier : found->second) {
        notifier->setEnabled(false);
        notifier->deleteLater();
    }
    sockets_.erase(found);
}

void CurlLoop::act(curl_socket_t socket, int events) {
    int running = 0;
    curl_multi_socket_action(multi_, socket, events, &running);
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi_, &left)) {
        if (message->msg != CURLMSG_DONE) continue;
        const CURLcode result = message->data.result;
        CURL* transfer = message->easy_handle; // the message goes with the handle
        Owner* owner = nullptr;
        curl_easy_getinfo(transfer, CURLINFO_PRIVATE, &owner);
        owner->ended(result);
    }
}

} // namespace orvane

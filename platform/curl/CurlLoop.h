#pragma once

#include <QSocketNotifier>
#include <QTimer>

#include <curl/curl.h>

#include <array>
#include <map>

namespace orvane {

/// libcurl's transfers on the Qt event loop, by socket notifiers and one timer. One for the
/// program; it outlives every transfer, and its connections are kept alive between them.
class CurlLoop {
  public:
    /// Who is told, once, how a transfer ended by itself. libcurl holds no lock then: the handle
    /// may be removed, cleaned up, or removed and added again.
    class Owner {
      public:
        virtual void ended(CURLcode result) = 0;

      protected:
        ~Owner() = default;
    };

    CurlLoop();
    CurlLoop(const CurlLoop&) = delete;
    ~CurlLoop();

    /// Starts a transfer; nothing of it happens inside this call. Its owner is the handle's
    /// CURLOPT_PRIVATE.
    void add(CURL* transfer);
    /// Ends a transfer wherever it is. One that is not in the loop is left alone.
    void remove(CURL* transfer);

  private:
    using Notifiers = std::array<QSocketNotifier*, 2>; ///< reading, writing

    static int onSocket(CURL* transfer, curl_socket_t socket, int what, void* self, void* known);
    static int onTimer(CURLM* multi, long milliseconds, void* self);
    Notifiers watch(curl_socket_t socket);
    void forget(curl_socket_t socket);
    void act(curl_socket_t socket, int events);

    CURLM* multi_;
    QTimer timer_;
    std::map<curl_socket_t, Notifiers> sockets_;
};

} // namespace orvane

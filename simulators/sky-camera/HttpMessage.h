#pragma once

#include <QByteArray>
#include <QUrlQuery>
#include <optional>

namespace skycamera {

/// One request as the camera sees it: method, decoded path, query.
struct HttpRequest {
    QByteArray method;
    /// As it came, for the log.
    QByteArray target;
    QByteArray path;
    QUrlQuery query;
    bool keepAlive = true;

    bool head() const { return method == "HEAD"; }
    /// The first value of a query field; empty when it is missing.
    QString value(const char* field) const {
        return query.queryItemValue(field, QUrl::FullyDecoded);
    }
};

/// How an answer goes out: properly by default, otherwise as a fault wants it.
struct Delivery {
    enum class End {
        AsAsked, ///< open or closed, as the request wants
        Close,   ///< a clean close
        Reset,   ///< a TCP reset
        Hang,    ///< nothing more, but the connection stays open
    };

    bool sendHead = true;
    bool announceLength = true;
    /// Bytes of the body that are sent; -1 for all.
    qsizetype bodyBytes = -1;
    /// 0 for as fast as the network takes them.
    int bytesPerSecond = 0;
    int delayMs = 0;
    End end = End::AsAsked;
};

struct HttpReply {
    int status = 200;
    QByteArray contentType = "text/html; charset=utf-8";
    QByteArray body;
    Delivery delivery;
};

/// A small HTML page that says `text` (plain text).
HttpReply textReply(int status, const QString& text);

/// Status line and header lines up to and including the empty line.
QByteArray replyHead(const HttpReply& reply, bool close);

struct RequestParse {
    /// Bytes to remove from the input; 0 when the request is not complete yet.
    qsizetype used = 0;
    std::optional<HttpRequest> request;
    /// HTTP status that answers nonsense; 0 when there is none so far.
    int errorStatus = 0;
};

/// Looks for a request at the start of `input`. Header sections above 16 kB, methods other than GET
/// and HEAD, and requests with a body are errors.
RequestParse parseRequest(const QByteArray& input);

} // namespace skycamera

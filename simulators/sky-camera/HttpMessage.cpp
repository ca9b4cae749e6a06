#include "simulators/sky-camera/HttpMessage.h"

#include <QHash>
#include <QList>
#include <QUrl>

namespace skycamera {

namespace {

constexpr qsizetype kMaxHeadBytes = 16 * 1024;

QByteArray reason(int status) {
    static const QHash<int, QByteArray> reasons{{200, "OK"},
                                                {400, "Bad Request"},
                                                {401, "Unauthorized"},
                                                {403, "Forbidden"},
                                                {404, "Not Found"},
                                                {405, "Method Not Allowed"},
                                                {413, "Content Too Large"},
                                                {431, "Request Header Fields Too Large"},
                                                {500, "Internal Server Error"},
                                                {503, "Service Unavailable"},
                                                {505, "HTTP Version Not Supported"}};
    return reasons.value(status, "Error");
}

/// Length of the header section with its empty line; 0 when it is not complete. Bare line feeds are
/// taken too: people type requests by hand.
qsizetype headLength(const QByteArray& input) {
    for (qsizetype at = input.indexOf('\n'); at >= 0; at = input.indexOf('\n', at + 1)) {
        if (input.mid(at + 1, 1) == "\n") return at + 2;
        if (input.mid(at + 1, 2) == "\r\n") return at + 3;
    }
    return 0;
}

/// Reads the request line; 0 or the status that refuses it.
int parseRequestLine(const QByteArray& line, HttpRequest& request) {
    const QList<QByteArray> parts = line.split(' ');
    if (parts.size() != 3) return 400;
    request.method = parts[0];
    request.target = parts[1];
    if (!parts[2].startsWith("HTTP/")) return 400;
    if (parts[2] != "HTTP/1.1" && parts[2] != "HTTP/1.0") return 505;
    request.keepAlive = parts[2] == "HTTP/1.1";
    if (request.method != "GET" && request.method != "HEAD") return 405;

    const bool absolute = request.target.toLower().startsWith("http://");
    if (!absolute && !request.target.startsWith('/')) return 400;
    const QUrl url = QUrl::fromEncoded(absolute ? request.target : "http://x" + request.target);
    if (!url.isValid()) return 400;
    request.path = url.path(QUrl::FullyDecoded).toUtf8();
    if (request.path.isEmpty()) request.path = "/";
    request.query = QUrlQuery(url);
    return 0;
}

int parseHeaderLine(const QByteArray& line, HttpRequest& request) {
    const qsizetype colon = line.indexOf(':');
    if (colon <= 0) return 400;
    const QByteArray name = line.left(colon).toLower();
    const QByteArray value = line.mid(colon + 1).trimmed().toLower();
    if (name == "connection" && value.contains("close")) request.keepAlive = false;
    if (name == "connection" && value.contains("keep-alive")) request.keepAlive = true;
    if (name == "transfer-encoding") return 413;
    if (name == "content-length" && value != "0") return 413;
    return 0;
}

} // namespace

HttpReply textReply(int status, const QString& text) {
    HttpReply reply;
    reply.status = status;
    reply.body = QString("<!DOCTYPE html>\n<html><head><title>Sky Camera</title></head>"
                         "<body><p>%1</p></body></html>\n")
                     .arg(text.toHtmlEscaped())
                     .toUtf8();
    return reply;
}

QByteArray replyHead(const HttpReply& reply, bool close) {
    QByteArray head =
        "HTTP/1.1 " + QByteArray::number(reply.status) + ' ' + reason(reply.status) + "\r\n";
    head += "Server: SkyCameraSimulator\r\nCache-Control: no-store\r\n";
    head += "Content-Type: " + reply.contentType + "\r\n";
    if (reply.status == 401) head += "WWW-Authenticate: Basic realm=\"Sky Camera\"\r\n";
    if (reply.status == 405) head += "Allow: GET, HEAD\r\n";
    if (reply.delivery.announceLength)
        head += "Content-Length: " + QByteArray::number(reply.body.size()) + "\r\n";
    head += close ? "Connection: close\r\n" : "Connection: keep-alive\r\n";
    return head + "\r\n";
}

RequestParse parseRequest(const QByteArray& input) {
    // Empty lines between requests are allowed, but not without end.
    if (input.startsWith('\n')) return {1, {}, 0};
    if (input.startsWith("\r\n")) return {2, {}, 0};

    const qsizetype length = headLength(input.left(kMaxHeadBytes));
    if (length == 0) return {0, {}, input.size() >= kMaxHeadBytes ? 431 : 0};

    RequestParse parse{length, HttpRequest{}, 0};
    const QList<QByteArray> lines = input.left(length).split('\n');
    for (qsizetype i = 0; i < lines.size() && parse.errorStatus == 0; ++i) {
        QByteArray line = lines[i];
        if (line.endsWith('\r')) line.chop(1);
        if (i > 0 && line.isEmpty()) break;
        parse.errorStatus =
            i == 0 ? parseRequestLine(line, *parse.request) : parseHeaderLine(line, *parse.request);
    }
    return parse;
}

} // namespace skycamera

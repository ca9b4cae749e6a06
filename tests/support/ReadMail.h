#pragma once

#include <QByteArray>
#include <QRegularExpression>
#include <QString>

#include <map>

namespace orvane::test {

/// A mail as a reader shows it, taken apart by other means than it is made with.
struct ReadMail {
    struct Part {
        std::map<std::string, std::string> headers;
        std::string bytes;
    };

    explicit ReadMail(const std::string& mail) {
        const QString whole = QString::fromStdString(mail);
        const qsizetype end = whole.indexOf("\r\n\r\n");
        headers = headersOf(whole.left(end));
        const QRegularExpression boundary("boundary=\"([^\"]+)\"");
        const QString type = QString::fromStdString(headers["Content-Type"]);
        const auto pieces = whole.mid(end + 2).split("\r\n--" + boundary.match(type).captured(1));
        isClosed = pieces.size() > 2 && pieces.last() == "--\r\n";
        for (qsizetype piece = 1; piece + 1 < pieces.size(); ++piece)
            parts.push_back(partOf(pieces[piece].mid(2)));
    }
    std::string text() const {
        return QString::fromStdString(parts.at(0).bytes).replace("\r\n", "\n").toStdString();
    }
    std::string subject() { return headers["Subject"]; }

    std::map<std::string, std::string> headers; ///< unfolded and decoded
    std::vector<Part> parts;
    bool isClosed = false;

  private:
    static std::map<std::string, std::string> headersOf(const QString& head) {
        std::map<std::string, std::string> all;
        const QString unfolded = QString(head).replace("?=\r\n =?", "?==?").replace("\r\n ", " ");
        for (const QString& line : unfolded.split("\r\n")) {
            const qsizetype colon = line.indexOf(": ");
            all[line.left(colon).toStdString()] = decoded(line.mid(colon + 2));
        }
        return all;
    }
    static std::string decoded(const QString& text) {
        static const QRegularExpression words("=\\?UTF-8\\?B\\?([^?]*)\\?=");
        QString rest = text;
        std::string bytes;
        for (auto match = words.match(rest); match.hasMatch(); match = words.match(rest)) {
            bytes += rest.left(match.capturedStart()).toStdString();
            const auto word = QByteArray::fromBase64(match.captured(1).toLatin1());
            bytes += QString::fromUtf8(word).toStdString(); // each is whole characters
            rest = rest.mid(match.capturedEnd());
        }
        return bytes + rest.toStdString();
    }
    static Part partOf(const QString& text) {
        const qsizetype end = text.indexOf("\r\n\r\n");
        const QByteArray code = text.mid(end + 4).remove("\r\n").toLatin1();
        const auto strictly = QByteArray::AbortOnBase64DecodingErrors;
        return {headersOf(text.left(end)), QByteArray::fromBase64(code, strictly).toStdString()};
    }
};

} // namespace orvane::test

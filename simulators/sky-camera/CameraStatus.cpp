#include "simulators/sky-camera/CameraStatus.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QVariant>

namespace skycamera {

namespace {

QJsonObject objectOf(const CameraStatus& status) {
    return {
        {"recording", status.recording},
        {"clock", status.clock.toString("yyyy-MM-ddTHH:mm:ss")},
        {"clockOffsetSeconds", status.clockOffsetSeconds},
        {"fault", status.fault},
        {"requestsServed", static_cast<qint64>(status.requestsServed)},
        {"faultsServed", static_cast<qint64>(status.faultsServed)},
        {"picturesServed", static_cast<qint64>(status.picturesServed)},
        {"searchesServed", static_cast<qint64>(status.searchesServed)},
        {"picturesHeld", status.picturesHeld},
    };
}

} // namespace

QByteArray statusJson(const CameraStatus& status) {
    return QJsonDocument(objectOf(status)).toJson(QJsonDocument::Compact) + '\n';
}

QByteArray statusPage(const CameraStatus& status) {
    const QJsonObject object = objectOf(status);
    QString table;
    for (const QString& name : object.keys())
        table += QString("<tr><th>%1</th><td>%2</td></tr>\n")
                     .arg(name, object[name].toVariant().toString().toHtmlEscaped());
    return QString("<!DOCTYPE html>\n<html><head><title>Sky Camera</title></head><body>"
                   "<h1>Sky Camera Simulator</h1>\n<table>\n%1</table>\n"
                   "<p><a href=\"/Images/full.jpg\">Current picture</a></p>\n"
                   "<p><a href=\"/cgi/srch.cgi\">The last hour</a></p></body></html>\n")
        .arg(table)
        .toUtf8();
}

} // namespace skycamera

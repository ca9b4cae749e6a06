#include "simulators/sky-camera/CameraStatus.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QList>
#include <QPair>

namespace skycamera {

QByteArray statusJson(const CameraStatus& status) {
    const QJsonObject object{
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
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

QByteArray statusPage(const CameraStatus& status) {
    const QList<QPair<QString, QString>> rows{
        {"Clock", status.clock.toString("yyyy/MM/dd HH:mm:ss")},
        {"Recording", status.recording ? "on" : "off"},
        {"Pictures in store", QString::number(status.picturesHeld)},
        {"Fault in force", status.fault},
        {"Requests served", QString::number(status.requestsServed)},
        {"Pictures served", QString::number(status.picturesServed)},
        {"Searches served", QString::number(status.searchesServed)},
        {"Faults served", QString::number(status.faultsServed)},
    };
    QString table;
    for (const auto& [name, value] : rows)
        table += QString("<tr><th>%1</th><td>%2</td></tr>\n").arg(name, value.toHtmlEscaped());
    return QString("<!DOCTYPE html>\n<html><head><title>Sky Camera</title><style>"
                   "body{font-family:sans-serif;margin:2em}th{text-align:left;padding-right:2em}"
                   "</style></head><body><h1>Sky Camera Simulator</h1>\n<table>\n%1</table>\n"
                   "<p><a href=\"/Images/full.jpg\">Current picture</a></p>\n"
                   "<p><a href=\"/cgi/srch.cgi\">Recorded pictures of the last "
                   "hour</a></p></body></html>\n")
        .arg(table)
        .toUtf8();
}

} // namespace skycamera

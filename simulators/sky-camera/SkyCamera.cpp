#include "simulators/sky-camera/SkyCamera.h"

#include "simulators/sky-camera/FaultDelivery.h"
#include "simulators/sky-camera/HttpConnection.h"

#include <chrono>

namespace skycamera {

using namespace std::chrono_literals;

namespace {

constexpr qsizetype kMaxConnections = 400;

CameraClock startedClock(const SkyCameraOptions& options) {
    CameraClock clock(options.pcClock);
    if (options.startTime) clock.set(*options.startTime);
    return clock;
}

/// What all pictures have in common.
SkyScene sceneOf(const SkyCameraOptions& options) {
    SkyScene scene;
    scene.seed = options.seed;
    scene.site = options.site;
    scene.size = options.size;
    scene.jpegQuality = options.jpegQuality;
    return scene;
}

QString printable(const QByteArray& target) {
    QString text = QString::fromLatin1(target.left(200));
    for (QChar& c : text)
        if (!c.isPrint()) c = '?';
    return text;
}

} // namespace

SkyCamera::SkyCamera(const SkyCameraOptions& options, QObject* parent)
    : QObject(parent), options_(options), clock_(startedClock(options)),
      store_(options.store, sceneOf(options), renderer_, clock_.now()) {
    connect(&server_, &QTcpServer::newConnection, this, &SkyCamera::takeConnections);
    reopenTimer_.setSingleShot(true);
    connect(&reopenTimer_, &QTimer::timeout, this, &SkyCamera::reopen);
}

bool SkyCamera::start() {
    if (!server_.listen(options_.address, options_.port)) return false;
    port_ = server_.serverPort();
    if (options_.fault.active()) setFault(options_.fault);
    return true;
}

void SkyCamera::takeConnections() {
    while (QTcpSocket* socket = server_.nextPendingConnection()) {
        if (findChildren<HttpConnection*>().size() >= kMaxConnections) {
            delete socket;
            continue;
        }
        auto* connection = new HttpConnection(socket, this);
        connect(connection, &HttpConnection::requestArrived, this,
                [this, connection](const HttpRequest& request) { handle(*connection, request); });
        connect(connection, &HttpConnection::requestRefused, this, [this](int status) {
            ++counts_.requestsServed;
            log(QString("not a request -> %1").arg(status));
        });
    }
}

void SkyCamera::handle(HttpConnection& connection, const HttpRequest& request) {
    current_ = &connection;
    ++counts_.requestsServed;
    const QString line =
        QString("%1 %2").arg(QString::fromLatin1(request.method), printable(request.target));
    const bool controlPath = request.path.startsWith("/sim/");
    const Fault fault = controlPath ? Fault{} : faults_.next(request.path);
    const HttpReply reply = controlPath ? control(request) : answer(request, fault);
    if (fault.kind != FaultKind::None) {
        ++counts_.faultsServed;
        log(QString("%1 -> fault %2").arg(line, textOf(fault)));
    } else {
        log(QString("%1 -> %2, %3 bytes").arg(line).arg(reply.status).arg(reply.body.size()));
    }
    if (!request.head() && sendsWhole(fault.kind)) countServed(request, reply);
    connection.send(reply);
    if (fault.kind == FaultKind::Refuse) refuseConnections(fault.arg);
    current_ = nullptr;
}

void SkyCamera::countServed(const HttpRequest& request, const HttpReply& reply) {
    if (reply.contentType == "image/jpeg") ++counts_.picturesServed;
    if (request.path == kSearchPath) ++counts_.searchesServed;
}

HttpReply SkyCamera::answer(const HttpRequest& request, const Fault& fault) {
    HttpReply reply;
    switch (fault.kind) {
    case FaultKind::Status:
        return textReply(fault.arg, "The camera is out of order.");
    case FaultKind::Html:
        return textReply(200, "The camera is starting. Please wait.");
    case FaultKind::Refuse:
    case FaultKind::Silent:
        break;
    default:
        reply = route(request, fault);
    }
    if (fault.kind == FaultKind::Empty) reply.body.clear();
    if (fault.kind == FaultKind::Cut) reply.body.truncate(reply.body.size() * 3 / 5);
    reply.delivery = deliveryOf(fault, reply.body.size());
    return reply;
}

HttpReply SkyCamera::route(const HttpRequest& request, const Fault& fault) {
    if (request.path == "/Images/full.jpg") return picture(fault);
    if (StorePages::serves(request.path)) return store_.answer(request, fault, clock_.now());
    if (request.path == "/cgi/live_s_hide2.cgi") return switchRecording(request);
    if (request.path == "/cgi/conf_sys_inp.cgi") return setClock(request);
    if (request.path != "/") return textReply(404, "There is no such page.");
    HttpReply reply;
    reply.body = statusPage(status());
    return reply;
}

HttpReply SkyCamera::picture(const Fault& fault) {
    if (fault.kind != FaultKind::Stale || lastPicture_.isEmpty()) {
        SkyScene scene = sceneOf(options_);
        scene.time = clock_.now();
        scene.frame = ++frame_;
        scene.recording = recording();
        if (fault.kind == FaultKind::Huge) scene.size = kHugeSize;
        lastPicture_ = renderer_.jpeg(scene);
    }
    HttpReply reply;
    reply.contentType = "image/jpeg";
    reply.body = lastPicture_;
    return reply;
}

HttpReply SkyCamera::switchRecording(const HttpRequest& request) {
    const QString rec = request.value("rec");
    if (rec != "0" && rec != "1") return textReply(400, "rec must be 0 or 1.");
    store_.switchRecording(rec == "1", clock_.now());
    const QString state = recording() ? "on" : "off";
    log("recording " + state);
    return textReply(200, "Recording is " + state + ".");
}

HttpReply SkyCamera::setClock(const HttpRequest& request) {
    const ClockQueryResult query = parseClockQuery(request.query);
    if (!query.time) return textReply(400, "The clock was not set: " + query.error + ".");
    const QDateTime before = clock_.now();
    clock_.set(*query.time);
    store_.clockWasSet(before, clock_.now());
    const QString time = query.time->toString("yyyy/MM/dd HH:mm:ss");
    log(QString("clock set to %1, %2 s from the PC's")
            .arg(time)
            .arg(clock_.offsetSeconds(), 0, 'f', 3));
    return textReply(200, "The clock was set to " + time + ".");
}

HttpReply SkyCamera::control(const HttpRequest& request) {
    if (request.path == "/sim/fault") return controlFault(request);
    if (request.path != "/sim/status") return textReply(404, "There is no such page.");
    HttpReply reply;
    reply.contentType = "application/json";
    reply.body = statusJson(status());
    return reply;
}

HttpReply SkyCamera::controlFault(const HttpRequest& request) {
    const QString arg = request.value("arg");
    const QString count = request.value("count");
    const QString path = request.value("path");
    FaultListResult list =
        parseFaults(arg.isEmpty() ? request.value("name") : request.value("name") + ':' + arg);
    bool countOk = true;
    FaultRule rule{list.faults, 0, path.isEmpty() ? defaultPathPrefix(list.faults) : path.toUtf8()};
    if (!count.isEmpty()) rule.count = count.toInt(&countOk);
    if (!list.error.isEmpty()) return textReply(400, list.error);
    if (!countOk || rule.count < 0) return textReply(400, "count must be a number from 0 on.");
    // A refusal without end could never be taken back over the network.
    if (rule.refusesOutright()) rule.faults.front().argGiven = true;
    setFault(rule);
    HttpReply reply = textReply(200, "Fault: " + rule.text());
    if (rule.refusesOutright()) reply.delivery.end = Delivery::End::Close;
    return reply;
}

void SkyCamera::setFault(const FaultRule& rule) {
    if (!listening() && port_ != 0) reopen();
    faults_.setRule(rule);
    log("fault: " + rule.text());
    if (!rule.refusesOutright()) return;
    const Fault& fault = rule.faults.front();
    refuseConnections(fault.argGiven ? fault.arg : 0);
}

bool SkyCamera::setFault(const QString& faults, int count, const QByteArray& pathPrefix) {
    const FaultListResult list = parseFaults(faults);
    if (!list.error.isEmpty()) return false;
    setFault(FaultRule{list.faults, count,
                       pathPrefix.isEmpty() ? defaultPathPrefix(list.faults) : pathPrefix});
    return true;
}

CameraStatus SkyCamera::status() {
    CameraStatus status = counts_;
    status.recording = recording();
    status.clock = clock_.now();
    status.picturesHeld = store_.picturesHeld(status.clock);
    status.clockOffsetSeconds = clock_.offsetSeconds();
    status.fault = faults_.rule().text();
    return status;
}

void SkyCamera::refuseConnections(int seconds) {
    server_.close();
    for (HttpConnection* connection : findChildren<HttpConnection*>())
        if (connection != current_) connection->abort();
    if (seconds > 0) reopenTimer_.start(std::chrono::seconds(seconds));
    log("connections are refused");
}

void SkyCamera::reopen() {
    reopenTimer_.stop();
    if (faults_.rule().refusesOutright()) faults_.setRule({});
    if (server_.listen(options_.address, port_)) {
        log("connections are accepted again");
    } else {
        log("cannot listen again yet: " + server_.errorString());
        reopenTimer_.start(1s);
    }
}

void SkyCamera::log(const QString& text) {
    emit logged(QDateTime::currentDateTime().toString("yyyy-MM-dd HH:mm:ss.zzz ") + text);
}

} // namespace skycamera

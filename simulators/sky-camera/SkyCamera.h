#pragma once

#include "simulators/sky-camera/CameraClock.h"
#include "simulators/sky-camera/CameraStatus.h"
#include "simulators/sky-camera/Fault.h"
#include "simulators/sky-camera/HttpMessage.h"
#include "simulators/sky-camera/SkyPicture.h"
#include "simulators/sky-camera/StorePages.h"

#include <QHostAddress>
#include <QTcpServer>
#include <QTimer>
#include <optional>

namespace skycamera {

class HttpConnection;

struct SkyCameraOptions {
    QHostAddress address = QHostAddress::LocalHost;
    /// 0 takes a free one.
    quint16 port = 0;
    QSize size{1280, 960};
    int jpegQuality = 85;
    quint32 seed = 1;
    SkySite site;
    /// Where the camera's clock starts; without it the clock follows the PC.
    std::optional<QDateTime> startTime;
    FaultRule fault;
    StoreOptions store;
    /// The PC's local time; empty for the real one.
    CameraClock::PcClock pcClock;
};

/// A network camera aimed at the sky, over plain HTTP: its latest picture, its recording switch and
/// clock, its store of recorded pictures, and faults on demand. Lives in the thread and event loop
/// of its owner, so tests can run it beside what they test. Needs a QGuiApplication.
///
/// A picture is a function of its moment alone (`SkyScene`), so the store is a list of moments.
class SkyCamera final : public QObject {
    Q_OBJECT

  public:
    explicit SkyCamera(const SkyCameraOptions& options, QObject* parent = nullptr);

    /// Listens; false with `errorString` when the port cannot be had.
    bool start();
    QString errorString() const { return server_.errorString(); }
    /// The port it listens on; stays the same while connections are refused.
    quint16 port() const { return port_; }
    bool listening() const { return server_.isListening(); }

    /// In force from the next request on. A lone "refuse" without seconds lasts until the next
    /// call.
    void setFault(const FaultRule& rule);
    /// As the option --fault has it; false when `faults` was not understood. "none" clears. Without
    /// a prefix the faults are for the requests that `defaultPathPrefix` gives.
    bool setFault(const QString& faults, int count = 0, const QByteArray& pathPrefix = {});

    bool recording() const { return store_.recording(); }
    QDateTime clock() const { return clock_.now(); }
    /// Looking makes the store catch up with the clock.
    CameraStatus status();

  signals:
    /// One line for each request and each change of state.
    void logged(const QString& line);

  private:
    void takeConnections();
    void handle(HttpConnection& connection, const HttpRequest& request);
    HttpReply answer(const HttpRequest& request, const Fault& fault);
    HttpReply route(const HttpRequest& request, const Fault& fault);
    void countServed(const HttpRequest& request, const HttpReply& reply);
    HttpReply picture(const Fault& fault);
    HttpReply switchRecording(const HttpRequest& request);
    HttpReply setClock(const HttpRequest& request);
    HttpReply control(const HttpRequest& request);
    HttpReply controlFault(const HttpRequest& request);
    void refuseConnections(int seconds);
    void reopen();
    void log(const QString& text);

    SkyCameraOptions options_;
    QTcpServer server_;
    quint16 port_ = 0;
    QTimer reopenTimer_;
    SkyPicture renderer_;
    CameraClock clock_;
    FaultSource faults_;
    StorePages store_;
    quint64 frame_ = 0;
    QByteArray lastPicture_;
    CameraStatus counts_;
    /// The connection whose request is being answered.
    const HttpConnection* current_ = nullptr;
};

} // namespace skycamera

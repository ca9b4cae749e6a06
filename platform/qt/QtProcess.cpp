#include "platform/qt/QtProcess.h"

#include "platform/Paths.h"

#include <QCoreApplication>
#include <QStandardPaths>

#include <algorithm>
#include <utility>

#ifndef _WIN32
#include <unistd.h>
#endif

namespace orvane {

namespace {

constexpr qint64 kWaiting = 4 << 20; ///< bytes on their way to the program
constexpr qint64 kSlice = 1 << 20;
constexpr qsizetype kKept = 64 << 10; ///< of what it says
constexpr Ticks kLook = 2ms;
constexpr int kGone = 2000; ///< milliseconds, see `bury`

QString text(const std::string& utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

/// The processor's time is this program's first.
void giveWay(QProcess& process) {
#ifdef _WIN32
    process.setCreateProcessArgumentsModifier([](QProcess::CreateProcessArguments* arguments) {
        constexpr quint32 kBelowNormalPriorityClass = 0x4000;
        arguments->flags |= kBelowNormalPriorityClass;
    });
#else
    process.setChildProcessModifier([] {
        constexpr int kGentle = 10;
        static_cast<void>(::nice(kGentle) + 1);
    });
#endif
}

} // namespace

QtProcess::~QtProcess() {
    kill();
    bury();
}

void QtProcess::bury() {
    for (QProcess* process : dying_.findChildren<QProcess*>())
        process->waitForFinished(kGone);
}

std::filesystem::path QtProcess::find(const std::string& name) const {
    QString found = QStandardPaths::findExecutable(text(name));
    if (found.isEmpty())
        found =
            QStandardPaths::findExecutable(text(name), {QCoreApplication::applicationDirPath()});
    return pathFromUtf8(found.toStdString());
}

void QtProcess::start(const std::filesystem::path& program,
                      const std::vector<std::string>& arguments) {
    kill();
    said_.clear();
    fault_.reset();
    closed_ = false;
    process_ = new QProcess(&dying_);
    listen();
    giveWay(*process_);
    QStringList list;
    for (const std::string& argument : arguments)
        list << text(argument);
    process_->setProcessChannelMode(QProcess::MergedChannels);
    process_->start(text(utf8FromPath(program)), list);
}

void QtProcess::listen() {
    QProcess* process = process_;
    QObject::connect(process, &QProcess::readyRead, process, [this] { takeOutput(); });
    QObject::connect(process, &QProcess::errorOccurred, process, [this](QProcess::ProcessError e) {
        if (e == QProcess::FailedToStart)
            fail("it cannot be started: " + process_->errorString().toStdString());
        if (e == QProcess::Crashed) fault_ = "it crashed or was killed"; // tells more than before
        if (e == QProcess::WriteError) closed_ = true;
    });
}

void QtProcess::fail(const std::string& why) {
    if (!fault_) fault_ = why;
}

void QtProcess::takeOutput() {
    said_ += process_->readAll();
    if (said_.size() > kKept) said_.remove(0, said_.size() - kKept);
}

Task<Fault> QtProcess::write(std::string_view bytes, Ticks patience) {
    Ticks last = clock_.ticks();
    qint64 waiting = 0;
    while (!bytes.empty()) {
        if (!running() || closed_) fail("it stopped reading");
        if (fault_) co_return fault_;
        const qint64 before = std::exchange(waiting, process_->bytesToWrite());
        if (waiting < before) last = clock_.ticks();
        if (waiting < kWaiting) {
            const qint64 size = std::min(static_cast<qint64>(bytes.size()), kSlice);
            process_->write(bytes.data(), size);
            bytes.remove_prefix(static_cast<std::size_t>(size));
            waiting = process_->bytesToWrite();
            co_await clock_.yield();
        } else if (clock_.ticks() - last < patience) {
            co_await clock_.sleep(kLook);
        } else {
            fail("it stands still");
        }
    }
    co_return std::nullopt;
}

Task<ProcessEnd> QtProcess::end(Ticks patience) {
    if (running()) process_->closeWriteChannel();
    const Ticks until = clock_.ticks() + patience;
    while (running() && clock_.ticks() < until)
        co_await clock_.sleep(kLook);
    if (running()) {
        fail("it does not end");
        kill();
    }
    ProcessEnd result = ended();
    co_return result;
}

ProcessEnd QtProcess::ended() const {
    const int code = fault_ || process_ == nullptr ? 0 : process_->exitCode();
    return {fault_, code, said_.toStdString()};
}

void QtProcess::kill() {
    QProcess* process = std::exchange(process_, nullptr);
    if (process == nullptr) return;
    process->disconnect();
    if (process->state() == QProcess::NotRunning) {
        delete process;
        return;
    }
    QObject::connect(process, &QProcess::finished, process, &QObject::deleteLater);
    process->kill();
}

} // namespace orvane

#pragma once

#include "platform/Process.h"

#include <QObject>
#include <QPointer>
#include <QProcess>

namespace orvane {

/// A program run by QProcess. Nothing here blocks but for `bury`.
class QtProcess final : public Process {
  public:
    explicit QtProcess(Clock& clock) : clock_(clock) {}
    QtProcess(const QtProcess&) = delete;
    ~QtProcess() override;

    std::filesystem::path find(const std::string& name) const override;
    void start(const std::filesystem::path& program,
               const std::vector<std::string>& arguments) override;
    Task<Fault> write(std::string_view bytes, Ticks patience) override;
    Task<ProcessEnd> end(Ticks patience) override;
    void kill() override;
    void bury() override;

  private:
    void listen();
    void takeOutput();
    void fail(const std::string& why);
    bool running() const {
        return process_ != nullptr && process_->state() != QProcess::NotRunning;
    }
    ProcessEnd ended() const;

    Clock& clock_;
    QObject dying_; ///< owns those that were killed, until they are gone
    QPointer<QProcess> process_;
    QByteArray said_;
    Fault fault_;         ///< the first
    bool closed_ = false; ///< its input, by itself
};

} // namespace orvane

#include "Program.h"
#include "platform/SystemCalls.h"

#include <QApplication>
#include <QIcon>
#include <QSocketNotifier>

namespace orvane {
namespace {

QIcon programIcon() {
    QIcon icon;
    for (const char* size : {"16", "32", "48", "256"})
        icon.addFile(QStringLiteral(":/icons/orvane-%1.png").arg(size));
    return icon;
}

/// Some desktops give a dark theme but leave the quiet texts black.
void mendPalette() {
    QPalette colours = QApplication::palette();
    const QColor window = colours.color(QPalette::Window);
    const QColor quiet = colours.color(QPalette::PlaceholderText);
    const bool isDark = window.lightness() < 128;
    if ((quiet.lightness() < 128) != isDark) return;
    QColor readable = colours.color(QPalette::WindowText);
    readable.setAlpha(160);
    colours.setColor(QPalette::PlaceholderText, readable);
    QApplication::setPalette(colours);
}

/// Keeps a failing event handler from ending the program.
class Application : public QApplication {
  public:
    using QApplication::QApplication;

    void setProgram(Program* program) { program_ = program; }
    bool notify(QObject* receiver, QEvent* event) override {
        try {
            return QApplication::notify(receiver, event);
        } catch (...) {
            if (program_ != nullptr) program_->tellFault(std::current_exception());
            return true;
        }
    }

  private:
    Program* program_ = nullptr;
};

/// Has the system's requests to end the program handed to `end`.
class EndRequests {
  public:
    EndRequests(std::optional<int> requests, std::function<void(const std::string&)> end) {
        if (!requests) return;
        notifier_.emplace(*requests, QSocketNotifier::Read);
        QObject::connect(&*notifier_, &QSocketNotifier::activated, &*notifier_,
                         [end = std::move(end)] { end(endRequest()); });
    }

  private:
    std::optional<QSocketNotifier> notifier_;
};

int run(Application& application, const Fault& unlocked, std::optional<int> requests) {
    Program program;
    const EndRequests ending(requests, [&](const std::string& request) { program.end(request); });
    const Scope known([&](bool on) { application.setProgram(on ? &program : nullptr); });
    QObject context;
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &context,
                     [&] { program.end("the session ends"); });
    program.open(unlocked);
    return QApplication::exec();
}

/// Tells why there is no program.
int runBox(const std::string& text, int code, std::optional<int> requests) {
    QtClock clock;
    QtOperator op(clock);
    const EndRequests ending(requests, [code](const auto&) { QCoreApplication::exit(code); });
    Task<> telling = tellAndExit(op, text, code);
    telling.start();
    return QApplication::exec();
}

} // namespace
} // namespace orvane

int main(int argc, char** argv) {
    using namespace orvane;
    Application application(argc, argv);
    QCoreApplication::setApplicationName("Orvane");
    QCoreApplication::setApplicationVersion(ORVANE_VERSION);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(programIcon());
    mendPalette();

    const std::optional<int> requests = keepEndRequests();
    FileLock lock;
    const FileLock::Outcome locked = lock.take(programFolder() / "orvane.lock");
    if (locked.isOthers)
        return runBox("Orvane is running already. Look for its window.", 3, requests);
    try {
        return run(application, locked.fault, requests);
    } catch (...) {
        const std::string text = textOf(std::current_exception());
        QtClock clock;
        ErrorLog(programFolder(), clock).write("Orvane:" + text);
        return runBox(text, 1, requests);
    }
}

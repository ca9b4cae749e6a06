// A hand at the controls of the program itself, into which it is preloaded: it does one step after
// the other, each as soon as its window is there, and says on the standard error what it has done.
#include <QAction>
#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QSessionManager>
#include <QTimer>

#include <array>
#include <cstdio>
#include <stdexcept>

namespace {

template <class Control>
Control* control(const char* window, const char* name) {
    for (QWidget* each : QApplication::topLevelWidgets()) {
        auto* found = each->findChild<Control*>(name);
        if (each->isVisible() && each->objectName() == window && found != nullptr) return found;
    }
    return nullptr;
}

bool isEnabled(const char* window, const char* name) {
    const auto* button = control<QPushButton>(window, name);
    return button != nullptr && button->isEnabled();
}

bool click(const char* window, const char* name) {
    if (!isEnabled(window, name)) return false;
    control<QPushButton>(window, name)->click();
    return true;
}

bool choose(const char* entry) {
    auto* action = control<QAction>("frmMain", entry);
    if (action == nullptr || !action->isEnabled()) return false;
    action->trigger();
    return true;
}

/// Whether there was a box with such a text, which is closed.
bool closeBox(const QString& text) {
    for (QWidget* each : QApplication::topLevelWidgets()) {
        auto* box = qobject_cast<QMessageBox*>(each);
        if (box == nullptr || !box->isVisible() || !box->text().contains(text)) continue;
        box->button(QMessageBox::Ok)->click();
        return true;
    }
    return false;
}

struct Step {
    const char* what;
    bool (*go)();
};

const std::array kSteps{
    Step{"cancelled the countdown", [] { return click("Frm_AutoStart", "Command1"); }},
    Step{"opened the tracker's options", [] { return choose("mnuTKROption"); }},
    Step{"closed them when they had been read",
         [] { return isEnabled("frmOption", "Command1") && click("frmOption", "Command2"); }},
    Step{"let a handler fail",
         [] {
             QTimer::singleShot(0, qApp, [] { throw std::runtime_error("a handler's fault"); });
             return true;
         }},
    Step{"saw the fault in a box", [] { return closeBox("a handler's fault"); }},
    Step{"ended the session",
         [] {
             // nobody but a desktop can make one, and nobody looks into it
             alignas(QSessionManager) static std::array<char, sizeof(QSessionManager)> none{};
             emit qApp->commitDataRequest(reinterpret_cast<QSessionManager&>(none));
             return true;
         }},
};

void begin() {
    auto* look = new QTimer(qApp);
    QObject::connect(look, &QTimer::timeout, qApp, [look, next = kSteps.begin()]() mutable {
        if (!next->go()) return;
        std::fprintf(stderr, "hand: %s\n", next->what);
        if (++next == kSteps.end()) look->stop();
    });
    look->start(20);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(begin)

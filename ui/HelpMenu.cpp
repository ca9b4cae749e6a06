#include "ui/HelpMenu.h"

#include "platform/Paths.h"
#include "ui/Desktop.h"
#include "ui/panel/PanelControls.h"

#include <QApplication>
#include <QKeyEvent>

namespace orvane {
namespace {

std::string shown(std::filesystem::path path) {
    return utf8FromPath(path.make_preferred());
}

bool isThere(const std::filesystem::path& file) {
    std::error_code error;
    return std::filesystem::is_regular_file(file, error);
}

} // namespace

HelpMenu::HelpMenu(QMenu& menu, Parts parts) : QObject(&menu), parts_(parts) {
    addEntry(menu,
             {"mnuHelpGuide", "Operator's &Guide", "Shows the operator's guide in the browser."},
             {Qt::Key_F1}, this, &HelpMenu::mnuHelpGuide_Click);
    addEntry(menu, {"mnuHelpErrorLog", "&Error Log", "Shows ERROR.LOG in the system's viewer."}, {},
             this, &HelpMenu::mnuHelpErrorLog_Click);
    menu.addSeparator();
    qApp->installEventFilter(this);
}

/// The entry's own key comes as a shortcut, not as this event, wherever the menu may be used.
bool HelpMenu::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || !watched->isWidgetType()) return false;
    const auto& key = *static_cast<QKeyEvent*>(event);
    // One window of the browser, however long the key is held.
    if (key.key() != Qt::Key_F1 || key.modifiers() != Qt::NoModifier || key.isAutoRepeat())
        return false;
    mnuHelpGuide_Click();
    return true;
}

std::filesystem::path HelpMenu::guide() const {
    return parts_.module.programFolder / "guide" / "operators-guide.html";
}

void HelpMenu::mnuHelpGuide_Click() {
    const std::filesystem::path file = guide();
    if (!isThere(file))
        return tell("The operator's guide is not beside the program:\n" + shown(file) +
                    "\nThe program's packages have it there, its sources as "
                    "docs/operators-guide.md.");
    if (!openOnDesktop(file))
        tell("No browser could be started. Please open this file in one:\n" + shown(file));
}

void HelpMenu::mnuHelpErrorLog_Click() {
    const std::filesystem::path file = parts_.module.programFolder / "ERROR.LOG";
    if (!isThere(file)) return tell("There is no error log yet:\n" + shown(file));
    if (!openOnDesktop(file))
        tell("No program could be started to show the error log:\n" + shown(file));
}

} // namespace orvane

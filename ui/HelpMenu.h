#pragma once

#include "platform/Operator.h"
#include "station/Module1.h"
#include "station/TaskGroup.h"

#include <QObject>

class QMenu;

namespace orvane {

/// The entries of the menu "Help" that show files of the program's folder: the guide, which only
/// the packages carry, and the log. F1 shows the guide also from dialogs, which block the menu:
/// hence a filter on the whole application. The menu owns it, and the filter goes with it.
class HelpMenu : public QObject {
    Q_OBJECT

  public:
    struct Parts {
        const Module1& module;
        Operator& op;
        TaskGroup& tasks;
    };

    /// Fills `menu`, which owns this.
    HelpMenu(QMenu& menu, Parts parts);

    /// Where the guide lies.
    std::filesystem::path guide() const;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void mnuHelpGuide_Click();
    void mnuHelpErrorLog_Click();
    void tell(const std::string& text) { parts_.tasks.spawn(parts_.op.tell(text)); }

    Parts parts_;
};

} // namespace orvane

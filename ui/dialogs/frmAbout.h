#pragma once

#include "platform/Operator.h"
#include "platform/SystemInfo.h"
#include "station/TaskGroup.h"

#include <QDialog>

namespace orvane {

/// The about box: the program's title and version, and a button for the system's own information
/// tool. It shows the application's icon when there is one. Made anew each time, and gone when it
/// is closed; a start of the tool that is under way then goes on in the station's tasks.
class frmAbout : public QDialog {
  public:
    /// What the button drives; all of it outlives the dialog.
    struct Parts {
        SystemInfo& info;
        Operator& op;
        TaskGroup& tasks;
    };

    explicit frmAbout(Parts parts, QWidget* parent = nullptr);

  private:
    void Form_Load();
    void cmdSysInfo_Click();

    Parts parts_;
};

} // namespace orvane

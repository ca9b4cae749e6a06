#pragma once

#include "station/Module1.h"
#include "station/OperationPanel.h"

#include <string>

namespace orvane {

/// The trailing part from the last "." on, dot included; empty without one.
std::string ExtensionOf(const std::string& name);
/// The part before the last "."; the whole name without one.
std::string BaseNameOf(const std::string& name);

/// Looks through the folder of `Dir1(1)`, not its sub-folders, for files whose names hold a text.
class FolderScan {
  public:
    FolderScan(Module1& module, OperationPanel& panel) : module_(module), panel_(panel) {}

    /// Fills the shared list from index 1 with at most 24 paths, in the order in which the system
    /// lists them; the shared count ends at 1 + their number, or at 0 when the folder cannot be
    /// opened. Only an attribute word of exactly 16 marks a sub-folder.
    void file_check(const std::string& text);

    /// Runs `file_check` with the text that the operator typed and shows what was found.
    void cmd_find_Click();

  private:
    Module1& module_;
    OperationPanel& panel_;
};

} // namespace orvane

#pragma once

#include "archive/FolderScan.h"
#include "ui/panel/PanelControls.h"

#include <filesystem>

class QGroupBox;

namespace orvane {

/// The panel's controls that look through one folder for files by a part of their names. `open` is
/// called for a file that the operator wants to see.
QGroupBox* findGroup(PanelControls& controls, OperationPanel& panel, FolderScan& scan,
                     std::function<void(const std::filesystem::path&)> open);

} // namespace orvane

#pragma once

#include "archive/FolderScan.h"
#include "camera/ImageStore.h"
#include "station/TaskGroup.h"
#include "ui/panel/PanelControls.h"

#include <filesystem>

class QGroupBox;

namespace orvane {

class CameraPanel;

// The groups of the operation panel, a file each. What they are given outlives them.

/// What the station is doing, at the panel's top: state, date and time, sun, counts, disk.
QGroupBox* statusGroup(PanelControls& controls, OperationPanel& panel);
/// The controls for the camera itself. `pictureWanted` is called when the operator asks for its
/// picture.
QGroupBox* cameraGroup(PanelControls& controls, OperationPanel& panel, CameraPanel& camera,
                       TaskGroup& tasks, const std::function<void()>& pictureWanted);
/// The controls for the pictures that the camera itself has recorded.
QGroupBox* storeGroup(PanelControls& controls, OperationPanel& panel, ImageStore& store,
                      TaskGroup& tasks);
/// The controls that look through one folder for files by a part of their names. `open` is called
/// for a file that the operator wants to see.
QGroupBox* findGroup(PanelControls& controls, OperationPanel& panel, FolderScan& scan,
                     std::function<void(const std::filesystem::path&)> open);

} // namespace orvane

#pragma once

#include "camera/CameraPanel.h"
#include "station/TaskGroup.h"
#include "ui/panel/PanelControls.h"

class QGroupBox;

namespace orvane {

/// The panel's controls for the camera itself. `pictureWanted` is called when the operator asks for
/// its picture.
QGroupBox* cameraGroup(PanelControls& controls, OperationPanel& panel, CameraPanel& camera,
                       TaskGroup& tasks, const std::function<void()>& pictureWanted);

} // namespace orvane

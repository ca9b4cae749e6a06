#pragma once

#include "camera/ImageStore.h"
#include "station/TaskGroup.h"
#include "ui/panel/PanelControls.h"

class QGroupBox;

namespace orvane {

/// The panel's controls for the pictures that the camera itself has recorded.
QGroupBox* storeGroup(PanelControls& controls, OperationPanel& panel, ImageStore& store,
                      TaskGroup& tasks);

} // namespace orvane

#pragma once

#include "ui/panel/PanelControls.h"

class QGroupBox;

namespace orvane {

/// What the station is doing, at the panel's top: state, date and time, sun, counts, disk.
QGroupBox* statusGroup(PanelControls& controls, OperationPanel& panel);

} // namespace orvane

#pragma once

#include "platform/Operator.h"
#include "platform/SystemInfo.h"

namespace orvane {

/// Starts the operating system's system-information tool, found through the registry. When there is
/// none or it cannot be started, the operator is told; the task ends when that box is closed.
/// `info` and `op` outlive the task.
Task<> startSystemInformation(SystemInfo& info, Operator& op);

} // namespace orvane

#pragma once

#include "platform/SerialPort.h"

#include <functional>
#include <memory>
#include <string>

namespace orvane {

/// This system's serial port, still closed. `devicePath` gives the device that stands for port 1
/// to 4 and is asked at every open; where ports have names of their own (COM1) it is not used.
std::unique_ptr<SerialPort> makeSerialPort(std::function<std::string(int)> devicePath);

} // namespace orvane

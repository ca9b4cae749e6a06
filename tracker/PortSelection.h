#pragma once

#include "platform/Operator.h"
#include "tracker/FrameLink.h"

#include <optional>
#include <string>

namespace orvane {

/// The stored number of the tracker's COM port, as text.
std::string storedPort(const SettingsStore& store);

/// The choice of the tracker's COM port behind `FrmComPort`. A port is stored only after it could
/// be opened.
class PortSelection {
  public:
    PortSelection(SettingsStore& store, FrameLink& link, ErrorLog& log, Operator& op)
        : store_(store), link_(link), log_(log), op_(op) {}

    /// Index 0 to 3 of the option button to select; nothing for a stored value that no button
    /// stands for.
    std::optional<int> storedIndex() const;
    /// Whether there is a port for the option button of that index now.
    bool isThere(int index) const { return link_.isThere(index + 1); }
    /// Tries the chosen port (nothing: the stored one) and stores it. True: the dialog closes;
    /// false: the fault has been told.
    Task<bool> confirm(std::optional<int> index);

  private:
    SettingsStore& store_;
    FrameLink& link_;
    ErrorLog& log_;
    Operator& op_;
};

} // namespace orvane

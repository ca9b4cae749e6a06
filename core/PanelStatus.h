#pragma once

#include "platform/Clock.h"
#include "station/Module1.h"
#include "station/OperationPanel.h"
#include "station/RepeatingTimer.h"

namespace orvane {

/// The panel's clock and count labels and its two timers. `Timer1` (1 s) also advances the tick
/// counters that bound the serial and search waits; they stop at 32767. `Tim_sync` (10 s) counts to
/// the next synchronisation.
class PanelStatus {
  public:
    PanelStatus(Module1& module, OperationPanel& panel, Clock& clock, Faults& faults);

    /// Resets the status display and starts `Timer1`.
    void initStatus();
    void Timer1_Timer();
    void Tim_sync_Timer();
    /// Recomputes the planned number of records and shows `RecCount`.
    void NumberOfRec();
    /// Starts or stops counting to the next synchronisation, from the beginning.
    void runSync(bool enabled);
    /// Shows `RecCount` as "n sheet".
    void showCount();

    RepeatingTimer Timer1;
    RepeatingTimer Tim_sync;

  private:
    Module1& module_;
    OperationPanel& panel_;
    Clock& clock_;
    std::chrono::local_days shownDay_{}; ///< in `Label12`
};

} // namespace orvane

#include "station/PanelSchedule.h"

#include "station/OperationPanel.h"

#include <algorithm>

namespace orvane {

namespace {

template <class Unit>
Unit whole(const TextBox& field) {
    return Unit(static_cast<int>(std::clamp(leadingNumber(field.text.get()), 0.0, 59.0)));
}

} // namespace

Schedule scheduleOf(const OperationPanel& panel) {
    using namespace std::chrono;
    const auto& fields = panel.Text1;
    return {.StartTime = whole<hours>(fields[0]) + whole<minutes>(fields[1]),
            .EndTime = whole<hours>(fields[2]) + whole<minutes>(fields[3]),
            .IntervalTime = whole<minutes>(fields[5]) + whole<seconds>(fields[6])};
}

} // namespace orvane

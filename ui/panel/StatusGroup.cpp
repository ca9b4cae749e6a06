#include "ui/Layout.h"
#include "ui/panel/ElidedLabel.h"
#include "ui/panel/PanelGroups.h"

namespace orvane {

QGroupBox* statusGroup(PanelControls& controls, OperationPanel& panel) {
    ElidedLabel* status =
        controls.label({"Label7", "Status", "What the station is doing."}, panel.Label7);
    QFont large = status->font();
    QFont narrow = large; // with its own size and weight: a painter fills in what is not set
    narrow.setPointSizeF(large.pointSizeF());
    narrow.setBold(false);
    status->setNarrowFont(narrow);
    large.setPointSizeF(large.pointSizeF() * 1.6);
    large.setBold(true);
    status->setFont(large);

    auto* grid = new QGridLayout;
    grid->addWidget(status, 0, 0, 1, 4);
    const auto add = [&](int row, int column, const char* caption, const Face& face, Label& model) {
        grid->addWidget(unitLabel(caption), row, column);
        ElidedLabel* label = controls.label(face, model);
        if (column == 0) label->setShortest("0000/00/00");
        grid->addWidget(label, row, column + 1, 1, row < 3 ? 1 : 3);
    };
    add(1, 0, "Date", {"Label12", "Date", "Today's date."}, panel.Label12);
    add(1, 2, "Time", {"Label13", "Time", "The PC's time."}, panel.Label13);
    add(2, 0, "Sunrise \u2212 1 h",
        {"lbl_sunrise", "One hour before sunrise", "One hour before today's sunrise at the site."},
        panel.lbl_sunrise);
    add(2, 2, "Sunset + 1 h",
        {"lbl_sunset", "One hour after sunset", "One hour after today's sunset at the site."},
        panel.lbl_sunset);
    add(3, 0, "Recorded",
        {"Label11", "Recorded pictures", "Pictures recorded since recording was started."},
        panel.Label11);
    add(4, 0, "Disk", {"lbl_free", "Free space", "Free space of the data folder's disk."},
        panel.lbl_free);
    grid->setColumnStretch(1, 1);
    QGroupBox* box = panelGroup("Status", grid);
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(2);
    return box;
}

} // namespace orvane

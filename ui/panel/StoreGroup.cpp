#include "ui/Layout.h"
#include "ui/panel/ElidedLabel.h"
#include "ui/panel/PanelGroups.h"

#include <QCheckBox>
#include <QProgressBar>
#include <QPushButton>

namespace orvane {
namespace {

QLayout* countRow(PanelControls& controls, OperationPanel& panel) {
    ElidedLabel* span = controls.label(
        {"lbl_sync", "Synchronisation span",
         "How far back a synchronisation reaches: the minutes since the last run, at least 30."},
        panel.lbl_sync);
    span->setShortest("00000");
    span->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    // It stands between its caption and its unit: the count beside it takes the room.
    span->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    ElidedLabel* count = controls.label(
        {"lbl_dlcnt", "Downloaded files", "Files that the present or last run has downloaded."},
        panel.lbl_dlcnt);
    return row({unitLabel("Downloaded"), count, unitLabel("Span"), span, unitLabel("min")});
}

} // namespace

QGroupBox* storeGroup(PanelControls& controls, OperationPanel& panel, ImageStore& store,
                      TaskGroup& tasks) {
    QPushButton* stop = controls.button(
        {"Command6", "Sto&p Download", "Stops the search or synchronisation that is running."},
        panel.Command6, [&store] { store.Command6_Click(); });
    const auto startButton = [&](const Face& face, Button& model, Task<> (ImageStore::*start)()) {
        return controls.button(face, model, [&store, &tasks, stop, start] {
            tasks.spawn((store.*start)());
            if (stop->isEnabled()) stop->setFocus(); // the pressed button is disabled now
        });
    };
    QHBoxLayout* starts = sideBySide(
        startButton({"Command4", "Sear&ch and Download",
                     "Searches the camera's own pictures, from as many minutes ago as the "
                     "recording interval has, and downloads what it finds into today's folder."},
                    panel.Command4, &ImageStore::Test_DL),
        startButton({"cmd_Download", "S&ynchronise",
                     "Downloads the pictures that the camera lists by itself into today's folder."},
                    panel.cmd_Download, &ImageStore::cmd_Download));
    QProgressBar* bar = controls.progressBar(
        {"pgb_run", "Progress of the download", "Pictures of the camera's list that are done."},
        panel.pgb_run);
    QCheckBox* fill = controls.checkBox(
        {"chk_fill", "Fill &gaps",
         "While recording, fetches the pictures of missed minutes from the camera's own store."},
        panel.chk_fill, {});
    return panelGroup("Pictures recorded by the camera",
                      column({starts, stop, bar, countRow(controls, panel), fill}));
}

} // namespace orvane

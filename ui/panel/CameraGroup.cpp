#include "camera/CameraPanel.h"
#include "ui/Layout.h"
#include "ui/panel/ElidedLabel.h"
#include "ui/panel/PanelGroups.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>

namespace orvane {

QGroupBox* cameraGroup(PanelControls& controls, OperationPanel& panel, CameraPanel& camera,
                       TaskGroup& tasks, const std::function<void()>& pictureWanted) {
    QLineEdit* address = controls.textBox(
        {"txtIp", "Camera address", "The camera's address or name on the network."}, panel.txtIp,
        [&camera] { camera.txtIp_Change(); }, [&camera] { camera.address_LostFocus(); });
    QLineEdit* port = controls.textBox(
        {"txtPort", "Camera port", "The port of the camera's web server, usually 80."},
        panel.txtPort, [&camera] { camera.txtPort_Change(); },
        [&camera] { camera.address_LostFocus(); });
    // Five digits and a little: the address gets the room.
    port->setFixedWidth(port->fontMetrics().horizontalAdvance("000000") + 12);
    // The window for the camera's picture opens first: what comes of the fetch is shown in it.
    const auto fetch = [&camera, &tasks, pictureWanted] {
        pictureWanted();
        tasks.spawn(camera.Command8_Click());
    };
    return panelGroup(
        "Camera",
        column({row({captionOf(address, "&Address"), {address, 1}, captionOf(port, "Po&rt"), port}),
                sideBySide(controls.button({"Command5", "Camera recording o&n",
                                            "Has the camera record by itself."},
                                           panel.Command5, [&camera] { camera.Command5_Click(); }),
                           controls.button({"Command7", "Camera recording &off",
                                            "Ends the camera's own recording."},
                                           panel.Command7, [&camera] { camera.Command7_Click(); })),
                sideBySide(controls.button({"Command8", "T&est fetch",
                                            "Fetches the camera's picture once, to see whether it "
                                            "answers."},
                                           panel.Command8, fetch),
                           controls.checkBox({"chkLive", "Live &view",
                                              "Shows the camera's picture every 5 seconds without "
                                              "keeping it."},
                                             panel.chkLive, pictureWanted)),
                controls.label({"lbl_camera", "Camera's answer",
                                "What the camera answered to the buttons above."},
                               panel.lbl_camera)}));
}

} // namespace orvane

#include "ui/dialogs/Frm_AutoStart.h"

#include "ui/Layout.h"
#include "ui/panel/PanelControls.h"

#include <QCloseEvent>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>

namespace orvane {

Frm_AutoStart::Frm_AutoStart(AutoStart& autoStart, QWidget* parent)
    : QDialog(parent), autoStart_(autoStart) {
    auto* bar = new QProgressBar(this);
    bar->setObjectName("PBar1");
    bar->setRange(0, 100);
    bar->setTextVisible(false);
    bar->setAccessibleName("Time left until the automatic start");
    bar->setToolTip("The time left until recording starts by itself.");
    bindings_.follow(autoStart.PBar1, [bar](int value) { bar->setValue(value); });

    setUp(*this, "Frm_AutoStart", "Orvane", {message(), bar, buttons()});
    autoStart.Form_Load();
}

QLayout* Frm_AutoStart::message() {
    auto* caution =
        control<QLabel>("Label2", "/_/_/ Cautions /_/_/ Start in automatic recording mode.");
    QFont bold = caution->font();
    bold.setBold(true);
    caution->setFont(bold);
    auto* text = control<QLabel>("Label1", "It starts automatically after about 10 seconds.");
    return row({{warningSign(), 0, Qt::AlignTop}, {column({caution, text}, 6), 1}}, 16);
}

QLayout* Frm_AutoStart::buttons() {
    auto* cancel =
        control<QPushButton>("Command1", "&Cancel", "Starts the program without recording.", this);
    cancel->setDefault(true);
    connect(cancel, &QPushButton::clicked, this, [this] { autoStart_.Command1_Click(); });
    auto* end = control<QPushButton>("Command2", "&End", "Ends the program.", this);
    end->setAutoDefault(false);
    connect(end, &QPushButton::clicked, this, [this] { autoStart_.Command2_Click(); });
    return buttonRow({cancel, end});
}

void Frm_AutoStart::closeEvent(QCloseEvent* event) {
    event->ignore(); // the exit itself takes the dialog away
    reject();
}

void Frm_AutoStart::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    const QRect area = screen()->availableGeometry();
    // It has no parent that it could stand before.
    move(area.center() - rect().center());
}

} // namespace orvane

#include "ui/dialogs/Frm_AutoStart.h"

#include "ui/panel/PanelControls.h"

#include <QCloseEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QVBoxLayout>

namespace orvane {

Frm_AutoStart::Frm_AutoStart(AutoStart& autoStart, QWidget* parent)
    : QDialog(parent), autoStart_(autoStart) {
    setObjectName("Frm_AutoStart");
    setWindowTitle("Orvane");
    auto* bar = new QProgressBar(this);
    bar->setObjectName("PBar1");
    bar->setRange(0, 100);
    bar->setTextVisible(false);
    bar->setAccessibleName("Time left until the automatic start");
    bar->setToolTip("The time left until recording starts by itself.");
    bindings_.follow(autoStart.PBar1, [bar](int value) { bar->setValue(value); });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 20, 20, 16);
    layout->setSpacing(16);
    layout->addLayout(message());
    layout->addWidget(bar);
    layout->addLayout(buttons());
    layout->setSizeConstraint(QLayout::SetFixedSize);
    autoStart.Form_Load();
}

QLayout* Frm_AutoStart::message() {
    auto* icon = new QLabel(this);
    const int size = style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(size));
    auto* caution =
        control<QLabel>("Label2", "/_/_/ Cautions /_/_/ Start in automatic recording mode.");
    QFont bold = caution->font();
    bold.setBold(true);
    caution->setFont(bold);
    auto* text = control<QLabel>("Label1", "It starts automatically after about 10 seconds.");

    auto* texts = new QVBoxLayout;
    texts->setSpacing(6);
    texts->addWidget(caution);
    texts->addWidget(text);
    auto* row = new QHBoxLayout;
    row->setSpacing(16);
    row->addWidget(icon, 0, Qt::AlignTop);
    row->addLayout(texts, 1);
    return row;
}

QLayout* Frm_AutoStart::buttons() {
    auto* cancel =
        control<QPushButton>("Command1", "&Cancel", "Starts the program without recording.", this);
    cancel->setDefault(true);
    connect(cancel, &QPushButton::clicked, this, [this] { autoStart_.Command1_Click(); });
    auto* end = control<QPushButton>("Command2", "&End", "Ends the program.", this);
    end->setAutoDefault(false);
    connect(end, &QPushButton::clicked, this, [this] { autoStart_.Command2_Click(); });

    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(cancel);
    row->addWidget(end);
    return row;
}

void Frm_AutoStart::closeEvent(QCloseEvent* event) {
    event->ignore(); // the exit itself takes the dialog away
    reject();
}

void Frm_AutoStart::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    const QRect area = screen()->availableGeometry();
    move(area.center() - rect().center());
}

} // namespace orvane

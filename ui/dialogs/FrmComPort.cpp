#include "ui/dialogs/FrmComPort.h"

#include "ui/Layout.h"
#include "ui/panel/PanelControls.h"

#include <QPushButton>
#include <QRadioButton>
#include <QShowEvent>

namespace orvane {

FrmComPort::FrmComPort(PortSelection& ports, TaskGroup& tasks, QWidget* parent)
    : QDialog(parent), ports_(ports), tasks_(tasks) {
    QVBoxLayout* options = column({});
    for (std::size_t index = 0; index < Option1_.size(); ++index) {
        Option1_[index] = control<QRadioButton>(
            QString("Option1_%1").arg(index), QString("COM&%1").arg(index + 1),
            QString("The tracker is connected to COM%1.").arg(index + 1));
        options->addWidget(Option1_[index]);
    }
    Command1_ =
        control<QPushButton>("Command1", "OK", "Tries the port, and keeps it if it can be opened.");
    Command1_->setDefault(true);
    connect(Command1_, &QPushButton::clicked, this, &FrmComPort::Command1_Click);
    auto* cancel = control<QPushButton>("Command2", "Cancel", "Leaves the port as it is.");
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    setUp(*this, "FrmComPort", "COM Port",
          {dialogGroup("Port of the sun tracker", options), buttonRow({Command1_, cancel})});
}

void FrmComPort::setPortFree(bool free) {
    Command1_->setEnabled(free);
}

void FrmComPort::showEvent(QShowEvent* event) {
    if (!event->spontaneous()) Form_Activate();
    QDialog::showEvent(event);
}

void FrmComPort::Form_Activate() {
    for (std::size_t index = 0; index < Option1_.size(); ++index)
        Option1_[index]->setText(
            QString(ports_.isThere(static_cast<int>(index)) ? "COM&%1" : "COM&%1 (not there)")
                .arg(index + 1));
    const std::optional<int> stored = ports_.storedIndex();
    // A group of option buttons refuses to have none selected while it is exclusive.
    for (QRadioButton* option : Option1_) {
        option->setAutoExclusive(false);
        option->setChecked(false);
    }
    for (QRadioButton* option : Option1_)
        option->setAutoExclusive(true);
    // What is stored is none of these: OK without a choice tries that.
    if (!stored) return Command1_->setFocus();
    QRadioButton* option = Option1_.at(static_cast<std::size_t>(*stored));
    option->setChecked(true);
    option->setFocus();
}

std::optional<int> FrmComPort::selected() const {
    for (std::size_t index = 0; index < Option1_.size(); ++index)
        if (Option1_[index]->isChecked()) return static_cast<int>(index);
    return std::nullopt;
}

void FrmComPort::Command1_Click() {
    // A trial may have to tell the operator something, so it is a task. It belongs to the station
    // and may outlive the dialog: hence the weak pointer.
    tasks_.spawn(confirm(this, selected()));
}

Task<> FrmComPort::confirm(QPointer<FrmComPort> form, std::optional<int> index) {
    Task<bool> trial = form->ports_.confirm(index);
    const bool stored = co_await trial;
    if (stored && form != nullptr) form->accept();
}

} // namespace orvane

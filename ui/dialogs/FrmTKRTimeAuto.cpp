#include "ui/dialogs/FrmTKRTimeAuto.h"

#include "ui/Layout.h"
#include "ui/panel/ElidedLabel.h"

#include <QGridLayout>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QShowEvent>

namespace orvane {
namespace {
// The whole of it is seen, since the field cannot be widened.
constexpr const char* kLongestQuery = "?i_year=2000&i_mon=00&i_day=00&i_hour=00&i_min=00&i_sec=00";
} // namespace

FrmTKRTimeAuto::FrmTKRTimeAuto(TimeSettingForm& form, TimeSetting& timeSetting, TaskGroup& tasks,
                               QWidget* parent)
    : QDialog(parent), form_(form), timeSetting_(timeSetting), tasks_(tasks), controls_(*this) {
    setUp(*this, "FrmTKRTimeAuto", "Time Setting", {outcomes(), buttons()});
}

QGridLayout* FrmTKRTimeAuto::outcomes() {
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(12);
    grid->setVerticalSpacing(8);
    addOutcome(*grid, 0, "Camera", 0,
               {"Label2_0", "Camera's outcome", "The time that the camera's clock was set to."});
    QLineEdit* query = controls_.textBox(
        {"txtSystemQuery", "Query to the camera", "What is sent to the camera's clock page."},
        form_.txtSystemQuery, {});
    // A field all the same: a query can be selected and copied.
    query->setReadOnly(true);
    query->setMinimumWidth(query->fontMetrics().horizontalAdvance(kLongestQuery) + 20);
    grid->addWidget(captionOf(query, "&Query"), 1, 0);
    grid->addWidget(query, 1, 1);
    addOutcome(*grid, 2, "Tracker", 1,
               {"Label2_1", "Tracker's outcome", "How setting the tracker's clock ended."});
    grid->setColumnStretch(1, 1);
    return grid;
}

void FrmTKRTimeAuto::addOutcome(QGridLayout& grid, int row, const QString& caption,
                                std::size_t index, const Face& face) {
    auto& model = form_.Label2[index];
    ElidedLabel* label = controls_.label(face, model.caption);
    label->setFont(japaneseFont(label->font()));
    Label2_[index] = label;
    controls_.bindings().follow(model.blue, [this](bool) { applyColours(); });
    grid.addWidget(new QLabel(caption), row, 0);
    grid.addWidget(label, row, 1);
}

QLayout* FrmTKRTimeAuto::buttons() {
    QProgressBar* bar =
        controls_.busyBar({"busy", "A clock is being set", "A clock is being set; please wait."});
    QPushButton* set = controls_.button(
        {"Command1", "&Set Tracker Clock", "Sets the tracker's clock to the PC's time."},
        form_.Command1, [this] { tasks_.spawn(timeSetting_.Command1_Click()); });
    set->setAutoDefault(false);
    QPushButton* close = controls_.button({"Command3", "&Close", "Closes this window."},
                                          form_.Command3, [this] { unload(); });
    close->setDefault(true);
    // A disabled "Close" is what tells that a procedure runs.
    controls_.bindings().follow(form_.Command3.enabled, [this, bar, close](bool on) {
        bar->setVisible(!on);
        // In the place of the button's own following: a value has one observer.
        close->setEnabled(on);
        // Where the focus would fall when its button is disabled, it selects the query.
        QWidget* next = on ? static_cast<QWidget*>(close) : this;
        next->setFocus();
    });

    return column({bar, row({set, Item(), close})}, 12);
}

void FrmTKRTimeAuto::applyColours() {
    const bool dark = isDark(palette());
    const QColor blue = dark ? QColor(0x8a, 0xb4, 0xff) : QColor(0x00, 0x00, 0xff);
    for (std::size_t index = 0; index < Label2_.size(); ++index) {
        // Called while they are being made as well.
        if (Label2_[index] == nullptr) continue;
        QPalette colours;
        if (form_.Label2[index].blue) colours.setColor(QPalette::WindowText, blue);
        Label2_[index]->setPalette(colours);
    }
}

void FrmTKRTimeAuto::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) applyColours();
}

void FrmTKRTimeAuto::openManual() {
    // The daily run may have shown it last. `showEvent` asks for the same flag.
    setAttribute(Qt::WA_ShowWithoutActivating, false);
    show();
    raise();
    activateWindow();
}

void FrmTKRTimeAuto::openAutomatic() {
    setAttribute(Qt::WA_ShowWithoutActivating);
    show();
}

void FrmTKRTimeAuto::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    // Nothing is set by a window that only comes back from being minimised.
    const bool automatic = testAttribute(Qt::WA_ShowWithoutActivating);
    if (event->spontaneous() || automatic || timeSetting_.running()) return;
    tasks_.spawn(timeSetting_.activate());
}

void FrmTKRTimeAuto::reject() {
    if (!timeSetting_.running()) QDialog::reject();
}

} // namespace orvane

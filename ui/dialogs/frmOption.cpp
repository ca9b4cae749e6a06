#include "ui/dialogs/frmOption.h"

#include "ui/Layout.h"
#include "ui/Text.h"
#include "ui/panel/ElidedLabel.h"

#include <QFormLayout>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QShowEvent>

namespace orvane {
namespace {
/// Longer than the tracker keeps, so that a text which is too long can be seen and cut by hand.
constexpr int kSerialLength = 32;
} // namespace

frmOption::frmOption(OptionForm& form, TrackerOptions& options, TaskGroup& tasks, QWidget* parent)
    : QDialog(parent), form_(form), options_(options), tasks_(tasks), controls_(*this) {
    fields_ = fields();
    buttons_ = buttons();
    bar_ = controls_.busyBar({"busy", "Exchange with the tracker", "The tracker is being asked."});
    setUp(*this, "frmOption", "Tracker Options", {fields_, bar_, status(), buttons_});
    focus_ = findChild<QWidget*>("txt_sn");
    controls_.bindings().follow(form.working, [this](bool working) { followWorking(working); });
}

QWidget* frmOption::fields() {
    auto* layout = new QFormLayout;
    layout->setHorizontalSpacing(12);
    layout->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    addField(*layout,
             {"txt_sn", "Serial &number", "Up to 16 characters. Not written when it is empty."},
             form_.txt_sn)
        ->setMaxLength(kSerialLength);
    ElidedLabel* hours =
        controls_.label({"lbl_hours", "Time zone in hours", "The same in hours."}, form_.lbl_hours);
    hours->setShortest("= -10 h 30 min");
    addField(
        *layout,
        {"txt_tz", "Time &zone [min east of UTC]",
         "Minutes east of universal time, such as 540 for Japan; between -720 and 720."},
        form_.txt_tz, [this] { options_.txt_tz_Change(); }, hours);
    addField(*layout,
             {"txt_lon", "L&ongitude [\u00b0 east]", "Degrees, east is positive; below 180."},
             form_.txt_lon);
    addField(*layout, {"txt_lat", "L&atitude [\u00b0 north]", "Degrees, north is positive."},
             form_.txt_lat);
    addField(*layout,
             {"txt_org", "O&rigin [\u00b0]",
              "Degrees, from 0 to below 360. Not written when it is empty or outside."},
             form_.txt_org);
    return inWidget(layout);
}

/// `beside` stands in the field's row.
QLineEdit* frmOption::addField(QFormLayout& layout, const Face& face, TextBox& model,
                               PanelControls::Handler change, QWidget* beside) {
    QLineEdit* field = controls_.textBox(face, model, std::move(change));
    if (beside != nullptr) {
        layout.addRow(captionOf(field, face.caption), row({{field, 1}, beside}));
        return field;
    }
    field->setMinimumWidth(field->fontMetrics().averageCharWidth() * 36);
    // The form layout makes the caption, and its key leads to the field.
    layout.addRow(face.caption, field);
    return field;
}

QWidget* frmOption::buttons() {
    QPushButton* send =
        controls_.button({"Command1", "&Send", "Writes the values to the tracker."}, form_.Command1,
                         [this] { tasks_.spawn(options_.Command1_Click()); });
    send->setDefault(true);
    auto* close = control<QPushButton>("Command2", "&Close", "Closes this window without writing.");
    close->setAutoDefault(false);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    return inWidget(buttonRow({send, close}));
}

/// Several lines: it may list every exchange that failed.
QLabel* frmOption::status() {
    auto* label = new QLabel(this);
    label->setObjectName("status");
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    label->setMinimumHeight(2 * label->fontMetrics().lineSpacing());
    controls_.bindings().follow(form_.status.caption, [label](const std::string& text) {
        label->setText(toQString(text));
    });
    return label;
}

void frmOption::followWorking(bool working) {
    // Locked controls lose the focus: it is given back when the exchange has ended.
    if (working && focusWidget() != nullptr) focus_ = focusWidget();
    fields_->setEnabled(!working);
    buttons_->setEnabled(!working);
    bar_->setVisible(working);
    if (!working && focus_ != nullptr) focus_->setFocus();
}

void frmOption::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!event->spontaneous() && !form_.working) tasks_.spawn(options_.activate());
}

void frmOption::reject() {
    if (!form_.working) QDialog::reject();
}

} // namespace orvane

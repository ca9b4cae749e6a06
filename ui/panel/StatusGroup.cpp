#include "ui/Layout.h"
#include "ui/Text.h"
#include "ui/panel/ElidedLabel.h"
#include "ui/panel/GradeSign.h"
#include "ui/panel/PanelGroups.h"

#include <QPainter>
#include <QStyleOptionGroupBox>

namespace orvane {

namespace {

/// Draws itself once, not each second anew behind its clock: a style measures the title and reads a
/// picture for that.
class StillGroup : public QGroupBox {
  public:
    using QGroupBox::QGroupBox;

  protected:
    void changeEvent(QEvent* event) override {
        drawn_ = {};
        QGroupBox::changeEvent(event);
    }
    void paintEvent(QPaintEvent*) override {
        const QSize pixels = size() * devicePixelRatioF();
        if (drawn_.size() != pixels) draw(pixels);
        QPainter(this).drawPixmap(0, 0, drawn_);
    }

  private:
    void draw(QSize pixels) {
        drawn_ = QPixmap(pixels);
        drawn_.setDevicePixelRatio(devicePixelRatioF());
        drawn_.fill(palette().color(backgroundRole()));
        QStyleOptionGroupBox option;
        initStyleOption(&option);
        QPainter painter(&drawn_);
        style()->drawComplexControl(QStyle::CC_GroupBox, &option, &painter, this);
    }

    QPixmap drawn_;
};

} // namespace

QGroupBox* statusGroup(PanelControls& controls, OperationPanel& panel) {
    ElidedLabel* status =
        controls.label({"Label7", "Status", "What the station is doing."}, panel.Label7);
    QFont large = status->font();
    QFont narrow = large; // with its own size and weight: a painter fills in what is not set
    narrow.setPointSizeF(large.pointSizeF());
    narrow.setBold(false);
    // The longest texts of the status do not fit in large letters.
    status->setNarrowFont(narrow);
    large.setPointSizeF(large.pointSizeF() * 1.6);
    large.setBold(true);
    status->setFont(large);

    auto* grid = new QGridLayout;
    auto* sign = new GradeSign;
    sign->setObjectName("sgn_status");
    controls.bindings().follow(panel.sgn_status.grade, [sign](Grade grade) { sign->show(grade); });
    controls.bindings().follow(panel.sgn_status.words, [sign](const std::string& words) {
        sign->setToolTip(toQString(words));
        sign->setAccessibleName(toQString(words));
    });
    grid->addLayout(row({sign, {status, 1}}, 6), 0, 0, 1, 4);
    // Not made by `controls`: besides its text it follows whether there is one, and a value has one
    // observer.
    auto* fault = new ElidedLabel;
    fault->setObjectName("lbl_fault");
    fault->setAccessibleName("Why the last attempt failed");
    controls.bindings().follow(panel.lbl_fault.caption, [fault](const std::string& text) {
        fault->setText(toQString(text));
        fault->setVisible(!text.empty()); // it takes no room then
    });
    grid->addWidget(fault, 1, 0, 1, 4);
    const auto add = [&](int row, int column, const char* caption, const Face& face, Label& model) {
        grid->addWidget(unitLabel(caption), row, column);
        ElidedLabel* label = controls.label(face, model);
        if (column == 0) label->setShortest("0000/00/00");
        grid->addWidget(label, row, column + 1, 1, row < 4 ? 1 : 3);
        return label;
    };
    add(2, 0, "Date", {"Label12", "Date", "Today's date."}, panel.Label12);
    ElidedLabel* time = add(2, 2, "Time", {"Label13", "Time", "The PC's time."}, panel.Label13);
    time->setFixed("00:00:00");
    grid->setAlignment(time, Qt::AlignLeft | Qt::AlignVCenter);
    add(3, 0, "Sunrise \u2212 1 h",
        {"lbl_sunrise", "One hour before sunrise", "One hour before today's sunrise at the site."},
        panel.lbl_sunrise);
    add(3, 2, "Sunset + 1 h",
        {"lbl_sunset", "One hour after sunset", "One hour after today's sunset at the site."},
        panel.lbl_sunset);
    add(4, 0, "Recorded",
        {"Label11", "Recorded pictures", "Pictures recorded since recording was started."},
        panel.Label11);
    add(5, 0, "Disk", {"lbl_free", "Free space", "Free space of the data folder's disk."},
        panel.lbl_free);
    grid->setColumnStretch(1, 1);
    auto* box = new StillGroup;
    groupInto(*box, "Status", grid);
    // Behind `groupInto`, which gives a layout one spacing for both directions.
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(2);
    return box;
}

} // namespace orvane

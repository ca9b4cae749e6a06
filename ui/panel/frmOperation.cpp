#include "ui/panel/frmOperation.h"

#include "archive/DataFolder.h"
#include "ui/FocusRing.h"
#include "ui/Layout.h"
#include "ui/Text.h"
#include "ui/panel/ElidedLabel.h"
#include "ui/panel/FolderView.h"
#include "ui/panel/PanelGroups.h"
#include "ui/panel/UpDown.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>

namespace orvane {
namespace {

constexpr std::array<const char*, OperationPanel::kFieldCount> kTimeFields{
    "Start hour",    "Start minute",    "End hour",       "End minute",
    "Interval hour", "Interval minute", "Interval second"};

QString timeFieldTip(std::size_t index) {
    QString tip =
        QString("%1, 0 to %2.").arg(kTimeFields[index]).arg(OperationPanel::kFieldLimits[index]);
    if (index == 4)
        tip += " The interval is always shorter than an hour: this field has no effect.";
    if (index == 5) tip += " A picture is taken at every minute that is a multiple of it.";
    return tip;
}

/// A filled circle or square: the usual signs for recording and stopping.
QIcon sign(const QColor& colour, bool circle) {
    QPixmap picture(64, 64);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    if (circle)
        painter.drawEllipse(10, 10, 44, 44);
    else
        painter.drawRect(14, 14, 36, 36);
    return picture;
}

/// Marks a field whose text is not the number it should be, and says so in its tool tip.
void markNumber(QLineEdit& field, bool valid) {
    // The tip of a valid field, which the description keeps.
    const QString tip = field.accessibleDescription();
    field.setProperty("valid", valid);
    field.setToolTip(valid ? tip : "Not a number that can be used; the last one stays. " + tip);
    QPalette colours; // without colours of its own the field follows the window again
    if (!valid) {
        const bool dark = isDark(field.palette());
        colours = field.palette();
        colours.setColor(QPalette::Base, dark ? "#5a1e1e" : "#ffe3e0");
        colours.setColor(QPalette::Text, dark ? "#ffd0cc" : "#9c120c");
    }
    field.setPalette(colours);
}

} // namespace

frmOperation::frmOperation(Parts parts, QWidget* parent)
    : QWidget(parent), parts_(parts), pages_(new QTabWidget), controls_(*this) {
    setObjectName("frmOperation");
    setAccessibleName("Operation panel");
    pages_->setObjectName("pages");
    // Without a frame around the pages, whose groups have frames enough.
    pages_->setDocumentMode(true);
    pages_->tabBar()->setObjectName("pages_bar");
    addPage(*pages_, "Recording", "When pictures are taken and where they go.",
            {scheduleGroup(), folderGroup(), siteGroup()});
    addPage(*pages_, "Camera", "The camera and the pictures that it has recorded by itself.",
            {cameraGroup(controls_, parts_.panel, parts_.camera, parts_.tasks,
                         [this] { emit pictureWanted(); }),
             storeGroup(controls_, parts_.panel, parts_.store, parts_.tasks)});
    addPage(*pages_, "Files", "Finds files in a folder.",
            {findGroup(controls_, parts_.panel, parts_.folderScan,
                       [this](const std::filesystem::path& file) { emit imageWanted(file); })});
    fill(*this, column({statusGroup(controls_, parts_.panel), recordingButtons(), {pages_, 1}}, 5),
         {6, 4, 6, 6});
    orderTabs();
    // A start that the schedule's fields forbid leads to the field at fault.
    controls_.bindings().follow(parts_.recording.faultyField,
                                [this](const std::optional<std::size_t>& index) {
                                    if (index) bring(QString("Text1_%1").arg(*index));
                                });
}

/// Room that is left over goes to what can use it: the lists.
void frmOperation::addPage(QTabWidget& pages, const QString& title, const QString& tip,
                           std::initializer_list<QWidget*> groups) {
    QVBoxLayout* rows = column({}, 5);
    bool grows = false;
    for (QWidget* box : groups) {
        const bool growing = box->findChild<QListWidget*>() != nullptr;
        rows->addWidget(box, growing ? 1 : 0);
        grows = grows || growing;
    }
    if (!grows) rows->addStretch(1);
    pages.setTabToolTip(pages.addTab(inWidget(rows, {2, 6, 2, 2}), title), tip);
}

/// The order of the widgets' making is not the order in which they are read.
void frmOperation::orderTabs() {
    const char* const order[] = {
        "Command1", "Command2", "pages_bar", "Text1_0",  "Text1_1",      "Text1_2",  "Text1_3",
        "Text1_4",  "Text1_5",  "Text1_6",   "chk_auto", "chk_time",     "chk_sun",  "Dir1_0",
        "Command3", "txt_lat",  "txt_long",  "txt_tz",   "txtIp",        "txtPort",  "Command5",
        "Command7", "Command8", "chkLive",   "Command4", "cmd_Download", "Command6", "chk_fill",
        "Dir1_1",   "txt_find", "cmd_find",  "lst_found"};
    QWidget* previous = nullptr;
    for (const char* name : order) {
        auto* next = findChild<QWidget*>(name);
        if (previous != nullptr) setTabOrder(previous, next);
        previous = next;
    }
}

void frmOperation::focusStart() {
    start_->setFocus();
}

void frmOperation::showPage(int page) {
    pages_->setCurrentIndex(page);
    // The window's ring and not the page's own chain: it knows what is enabled and in which order.
    const FocusRing controls(*window(), {});
    for (QWidget* stop : controls.stops())
        if (pages_->currentWidget()->isAncestorOf(stop))
            return stop->setFocus(Qt::ShortcutFocusReason);
    pages_->tabBar()->setFocus(Qt::ShortcutFocusReason); // all of them are locked
}

QWidget* frmOperation::scheduleGroup() {
    auto* form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    const auto addTimes = [&](const char* caption, std::initializer_list<std::size_t> indices) {
        QHBoxLayout* fields = row({}, 3);
        QLineEdit* first = nullptr;
        for (const std::size_t index : indices) {
            const bool hour = index == 0 || index == 2 || index == 4;
            QLineEdit* field = addTimeField(*fields, index, hour ? "h" : index == 6 ? "s" : "min");
            if (first == nullptr) first = field;
        }
        fields->addStretch();
        form->addRow(captionOf(first, caption), fields);
    };
    addTimes("Start ti&me", {0, 1});
    addTimes("&End time", {2, 3});
    addTimes("Inte&rval", {4, 5, 6});
    form->addRow(sideBySide(
        controls_.checkBox(
            {"chk_auto", "Loc&k schedule", "Locks the schedule fields against changes by mistake."},
            parts_.panel.chk_auto, [this] { parts_.recording.chk_auto_Click(); }),
        controls_.checkBox({"chk_time", "Set &clocks daily",
                            "Sets the clocks of camera and tracker once a day while recording."},
                           parts_.panel.chk_time, [this] { parts_.settings.chk_time_Click(); })));
    form->addRow(row(
        {controls_.checkBox({"chk_sun", "Follow the su&n",
                             "Records from one hour before sunrise to one hour after sunset, each "
                             "day anew; the times above count on days without."},
                            parts_.panel.chk_sun, [this] { parts_.recording.chk_sun_Click(); }),
         {controls_.label({"lbl_window", "Today's window", "When pictures are taken today."},
                          parts_.panel.lbl_window),
          1}}));
    return panelGroup("Recording schedule", form);
}

QWidget* frmOperation::recordingButtons() {
    QPushButton* stop = controls_.button({"Command2", "S&top Recording", "Stops recording."},
                                         parts_.panel.Command2, [this] {
                                             parts_.recording.Command2_Click();
                                             // The pressed button is disabled now; see below.
                                             if (start_->isEnabled()) start_->setFocus();
                                         });
    start_ = controls_.button({"Command1", "&Start Recording",
                               "Checks the schedule and records at its times, every day."},
                              parts_.panel.Command1, [this, stop] {
                                  parts_.tasks.spawn(parts_.recording.Command1_Click());
                                  // The pressed button is disabled now: without this the focus
                                  // would fall on whatever control comes next.
                                  if (stop->isEnabled()) stop->setFocus();
                              });
    start_->setIcon(sign(QColor(0xd0, 0x2f, 0x2f), true));
    stop->setIcon(sign(QColor(0x5f, 0x6b, 0x7a), false));
    ElidedLabel* test = controls_.label(
        {"lbl_start", "Test at the start", "Whether the camera answered as recording was started."},
        parts_.panel.lbl_start.caption);
    // in the place of the label's own following: it takes room only while it tells something
    controls_.bindings().follow(parts_.panel.lbl_start.caption, [test](const std::string& text) {
        test->setText(toQString(text));
        test->setVisible(!text.empty());
    });
    return inWidget(column({sideBySide(start_, stop), test}, 3));
}

QLineEdit* frmOperation::addTimeField(QHBoxLayout& row, std::size_t index, const QString& unit) {
    const char* what = kTimeFields[index];
    const QString number = QString::number(index);
    Recording& recording = parts_.recording;
    QLineEdit* field = controls_.textBox(
        {"Text1_" + number, what, timeFieldTip(index)}, parts_.panel.Text1[index],
        [&recording, index] { recording.Text1_Change(index); },
        [&recording, index] { recording.Text1_LostFocus(index); });
    field->setMaxLength(4);
    field->setAlignment(Qt::AlignRight);
    field->setFixedWidth(field->fontMetrics().horizontalAdvance("0000") + 10);
    UpDown* upDown =
        controls_.upDown({"UpDown1_" + number, what, timeFieldTip(index)}, *field,
                         OperationPanel::kFieldLimits[index], parts_.panel.UpDown1[index],
                         [&recording, index] { recording.UpDown1_Change(index); });
    row.addWidget(field);
    row.addWidget(upDown);
    row.addWidget(unitLabel(unit));
    row.addSpacing(4);
    return field;
}

QWidget* frmOperation::folderGroup() {
    OperationPanel& panel = parts_.panel;
    QVBoxLayout* folder = controls_.folder(
        {"Dir1_0", "Data folder",
         "The data folder's sub-folders. Double-click one, or press Enter, to make it the data "
         "folder. A day opens in the band instead."},
        "Pictures are filed below %1", panel.Dir1[0],
        [this](const std::filesystem::path& path) { enterFolder(path); });
    addFolderMenu(*findChild<FolderView*>("Dir1_0"));
    folder->addWidget(controls_.button(
        {"Command3", "Select Data Sa&ve Folder", "Chooses the folder that pictures are filed in."},
        panel.Command3, [this] { selectFolder(); }));
    QGroupBox* frame = panelGroup("Data folder", folder);
    frame->setObjectName("Frame3_1");
    frame->setAccessibleName("Data folder");
    controls_.followEnabled(*frame, panel.Frame3[1].enabled);
    return frame;
}

/// A day of the data folder is looked at; what is above it may have a day's name as well.
void frmOperation::enterFolder(const std::filesystem::path& folder) {
    const auto day = dayOfFolder(folder);
    if (day && folder == parts_.panel.Dir1[0].path.get() / folder.filename()) {
        emit dayWanted(*day);
    } else {
        parts_.tasks.spawn(parts_.recording.chooseDataFolder(folder));
    }
}

void frmOperation::addFolderMenu(FolderView& list) {
    auto* show = new QAction("Show in the file &manager", &list);
    show->setObjectName("Dir1_0_show");
    connect(show, &QAction::triggered, this,
            [this, &list] { emit folderShowWanted(list.currentFolder()); });
    list.addAction(show);
    // The action is the list's own, so the menu's key opens it as well.
    list.setContextMenuPolicy(Qt::ActionsContextMenu);
}

QWidget& frmOperation::bring(const QString& name) {
    auto* control = findChild<QWidget*>(name);
    for (int page = 0; page < pages_->count(); ++page)
        if (pages_->widget(page)->isAncestorOf(control)) pages_->setCurrentIndex(page);
    // As by a key: a field's text is selected then, ready to be typed over.
    giveFocus(*control, Qt::ShortcutFocusReason);
    return *control;
}

void frmOperation::press(const QString& button) {
    qobject_cast<QPushButton*>(&bring(button))->click();
}

void frmOperation::selectFolder() {
    auto* dialog = new QFileDialog(this, "Select Data Save Folder",
                                   toQString(parts_.panel.Dir1[0].path.get()));
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    // Nothing happens when it is cancelled. A task, since the station may have a question about it.
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& folder) {
        parts_.tasks.spawn(parts_.recording.chooseDataFolder(toPath(folder)));
    });
    openOnce(dialog);
}

QWidget* frmOperation::siteGroup() {
    OperationPanel& panel = parts_.panel;
    auto* zone = new QLabel(this);
    zone->setObjectName("lbl_zone");
    zone->setWordWrap(true);
    controls_.bindings().follow(panel.lbl_zone.caption, [zone](const std::string& text) {
        zone->setText(toQString(text));
        zone->setVisible(!text.empty());
    });
    return panelGroup(
        "Site",
        column({row({{siteField({"txt_lat", "Lat&itude", "Degrees, north is positive."},
                                panel.txt_lat, &PanelSettings::txt_lat_Change),
                      1},
                     {siteField({"txt_long", "Lon&gitude", "Degrees, east is positive."},
                                panel.txt_long, &PanelSettings::txt_long_Change),
                      1},
                     {siteField({"txt_tz", "Time &zone",
                                 "Whole hours east of universal time, such as 9 for Japan."},
                                panel.txt_tz, &PanelSettings::txt_tz_Change),
                      1}},
                    8),
                zone},
               2));
}

QLayout* frmOperation::siteField(const Face& face, TextBox& model,
                                 bool (PanelSettings::*change)()) {
    PanelSettings& settings = parts_.settings;
    const auto mark = [this, name = face.name](bool valid) {
        markNumber(*findChild<QLineEdit*>(name), valid);
    };
    QLineEdit* field = controls_.textBox(
        face, model, [&settings, change, mark] { mark((settings.*change)()); },
        // Leaving the field shows the number that is in force again.
        [&settings, mark] {
            settings.showSite();
            mark(true);
        });
    field->setMinimumWidth(field->fontMetrics().horizontalAdvance("000.000") + 12);
    return column({captionOf(field, face.caption), field}, 1);
}

} // namespace orvane

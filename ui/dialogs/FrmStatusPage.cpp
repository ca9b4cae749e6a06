#include "ui/dialogs/FrmStatusPage.h"

#include "core/StatusFile.h"
#include "ui/Desktop.h"
#include "ui/Layout.h"
#include "ui/Text.h"
#include "ui/panel/PanelControls.h"

#include <QCheckBox>
#include <QDir>
#include <QMessageBox>
#include <QPushButton>

namespace orvane {

FrmStatusPage::FrmStatusPage(const Module1& module, PanelSettings& settings, QWidget* parent)
    : QDialog(parent), settings_(settings), page_(module.programFolder / StatusFile::kPage) {
    auto* about = control<QLabel>(
        "Label1", "The station's state stands in this page. It is brought up to date within a "
                  "second and can be opened from other computers when its folder is shared:");
    about->setWordWrap(true);
    auto* place = control<QLabel>("Label2", QDir::toNativeSeparators(toQString(page_)));
    // A path, to be copied into a browser elsewhere.
    place->setTextFormat(Qt::PlainText);
    place->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    place->setWordWrap(true);
    place->setMinimumWidth(place->fontMetrics().averageCharWidth() * 60);
    auto* latest =
        control<QCheckBox>("chk_latest", "Copy the &latest picture for the status page",
                           "Keeps a copy of each new picture, latest.jpg, beside the page.");
    latest->setChecked(module.latestCopy);
    connect(latest, &QCheckBox::clicked, this, &FrmStatusPage::chk_latest_Click);
    auto* open = control<QPushButton>("Command1", "&Open", "Opens the page in the browser.");
    open->setDefault(true);
    connect(open, &QPushButton::clicked, this, &FrmStatusPage::Command1_Click);
    auto* close = control<QPushButton>("Command2", "&Close", "Closes this window.");
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    setUp(*this, "FrmStatusPage", "Status Page", {about, place, latest, buttonRow({open, close})});
}

void FrmStatusPage::chk_latest_Click(bool on) {
    if (!settings_.keepLatestCopy(on))
        tell("The switch cannot be stored: it holds until the program ends. See whether the disk "
             "of the settings is full or write-protected.");
}

void FrmStatusPage::Command1_Click() {
    if (!openOnDesktop(page_))
        tell("No browser could be started. Please open the file named above in one.");
}

void FrmStatusPage::tell(const QString& text) {
    openOnce(new QMessageBox(QMessageBox::NoIcon, "Orvane", text, QMessageBox::Ok, this));
}

} // namespace orvane

#include "ui/dialogs/frmAbout.h"

#include "core/SystemInformation.h"
#include "ui/Layout.h"
#include "ui/panel/PanelControls.h"

#include <QApplication>
#include <QFrame>
#include <QIcon>
#include <QPushButton>
#include <QVersionNumber>

namespace orvane {
namespace {

constexpr int kIconSize = 48;

QLabel* label(const char* name, const QString& caption = {}) {
    auto* made = control<QLabel>(name, caption);
    made->setTextFormat(Qt::PlainText);
    made->setWordWrap(true);
    return made;
}

QLabel* heading(const char* name, const QString& caption, double scale) {
    QLabel* made = label(name, caption);
    QFont font = made->font();
    font.setFamily("Arial");
    font.setPointSizeF(font.pointSizeF() * scale);
    made->setFont(font);
    return made;
}

QFrame* line(const char* name) {
    auto* made = new QFrame;
    made->setObjectName(name);
    made->setFrameStyle(static_cast<int>(QFrame::HLine) | static_cast<int>(QFrame::Sunken));
    return made;
}

/// Empty where the application has no icon.
QLabel* icon(const QWidget& dialog) {
    QLabel* made = label("picIcon");
    const QIcon shown = QApplication::windowIcon();
    if (!shown.isNull())
        made->setPixmap(shown.pixmap(QSize(kIconSize, kIconSize), dialog.devicePixelRatioF()));
    // Without one it takes no room.
    made->setVisible(!shown.isNull());
    return made;
}

} // namespace

frmAbout::frmAbout(Parts parts, QWidget* parent) : QDialog(parent), parts_(parts) {
    auto* ok = control<QPushButton>("cmdOK", "OK", "Closes this window.");
    auto* system =
        control<QPushButton>("cmdSysInfo", "System(&S)", "Starts the system's information tool.");
    ok->setDefault(true);
    ok->setFocus();
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(system, &QPushButton::clicked, this, [this] { cmdSysInfo_Click(); });

    auto* title = heading("lblTitle", "Application", 1.8);
    title->setMinimumWidth(fontMetrics().averageCharWidth() * 44);
    QVBoxLayout* texts =
        column({title, heading("lblVersion", "Version", 1.0), label("lblDescription")}, 4);
    setUp(*this, "frmAbout", "About Orvane",
          {row({{icon(*this), 0, Qt::AlignTop}, {texts, 1}}, 16), line("Line1_0"),
           label("lblDisclaimer"), line("Line1_1"), buttonRow({ok, system})});
    Form_Load();
}

void frmAbout::Form_Load() {
    const auto version = QVersionNumber::fromString(QCoreApplication::applicationVersion());
    findChild<QLabel*>("lblVersion")
        ->setText(QString("Version %1.%2.%3")
                      .arg(version.majorVersion())
                      .arg(version.minorVersion())
                      .arg(version.microVersion()));
    findChild<QLabel*>("lblTitle")->setText("Orvane");
}

void frmAbout::cmdSysInfo_Click() {
    parts_.tasks.spawn(startSystemInformation(parts_.info, parts_.op));
}

} // namespace orvane

#include "ui/dialogs/Frm_massege.h"

#include "ui/Text.h"
#include "ui/panel/PanelControls.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>

namespace orvane {

Frm_massege::Frm_massege(Warnings& warnings, QWidget* parent)
    : QDialog(parent), text_(new QLabel("Warning", this)) {
    setObjectName("Frm_massege");
    setWindowTitle("Warning");
    setAttribute(Qt::WA_ShowWithoutActivating);
    auto* icon = new QLabel(this);
    const int size = style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(size));
    text_->setObjectName("Label1");
    text_->setTextFormat(Qt::PlainText);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    text_->setWordWrap(true);
    text_->setMinimumWidth(text_->fontMetrics().averageCharWidth() * 48);
    auto* close = control<QPushButton>("Command1", "&Close",
                                       "Closes this window until there is a new warning.", this);
    close->setDefault(true);
    close->setFocus();
    connect(close, &QPushButton::clicked, this, &QDialog::hide);

    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(20, 20, 20, 16);
    grid->setHorizontalSpacing(16);
    grid->setVerticalSpacing(16);
    grid->addWidget(icon, 0, 0, Qt::AlignTop);
    grid->addWidget(text_, 0, 1);
    grid->addWidget(close, 1, 0, 1, 2, Qt::AlignRight);
    grid->setSizeConstraint(QLayout::SetFixedSize);
    bindings_.follow(warnings.text, [this](const std::string& text) { follow(text); });
}

void Frm_massege::follow(const std::string& text) {
    if (text.empty()) return hide();
    text_->setText(toQString(text));
    show();
    raise();
}

} // namespace orvane

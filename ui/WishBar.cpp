#include "ui/WishBar.h"

#include "ui/Layout.h"
#include "ui/Text.h"
#include "ui/panel/PanelControls.h"

#include <QLabel>
#include <QPushButton>

namespace orvane {

WishBar::WishBar(Wishes& wishes, QWidget* parent) : QFrame(parent), text_(new QLabel) {
    setObjectName("wishBar");
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    text_->setObjectName("lbl_wish");
    text_->setForegroundRole(QPalette::ToolTipText);
    auto* cancel = control<QPushButton>("cmd_wish_cancel", "Cancel", "Goes on as before.");
    connect(cancel, &QPushButton::clicked, this, [&wishes] { wishes.drop(); });
    fill(*this, row({text_, cancel}, 12), {12, 4, 6, 4});
    bindings_.follow(wishes.text, [this](const std::string& text) { follow(text); });
}

void WishBar::follow(const std::string& text) {
    setVisible(!text.empty());
    if (text.empty()) return;
    text_->setText(toQString(text));
    // It stands in no layout.
    adjustSize();
    move((parentWidget()->width() - width()) / 2, 4);
    raise();
}

} // namespace orvane

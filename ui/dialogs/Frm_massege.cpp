#include "ui/dialogs/Frm_massege.h"

#include "core/Causes.h"
#include "ui/Layout.h"
#include "ui/Text.h"
#include "ui/panel/PanelControls.h"

#include <QPushButton>

namespace orvane {

Frm_massege::Frm_massege(Warnings& warnings, QWidget* parent)
    : QDialog(parent), warnings_(warnings), text_(new QLabel("Warning", this)) {
    // Whoever types into another window goes on typing there.
    setAttribute(Qt::WA_ShowWithoutActivating);
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
    setUp(*this, "Frm_massege", "Warning",
          {row({{warningSign(), 0, Qt::AlignTop}, {text_, 1}}, 16), buttonRow({close})});
    bindings_.follow(warnings.text, [this](const std::string& text) { follow(text); });
}

void Frm_massege::follow(const std::string& text) {
    // The value tells that something has changed; what is shown is asked for anew, with advice.
    if (text.empty()) return hide();
    QStringList all;
    for (const auto& [cause, warning] : warnings_.standing())
        all << toQString(withAdvice(cause, warning));
    text_->setText(all.join('\n'));
    show();
    raise();
}

} // namespace orvane

#include "ui/panel/NumberMark.h"

#include "ui/panel/PanelControls.h"

#include <QLineEdit>

namespace orvane {

void NumberMark::setValid(bool valid) {
    field_->setProperty("valid", valid);
    field_->setToolTip(valid ? tip_ : "Not a number that can be used; the last one stays. " + tip_);
    QPalette colours; // without colours of its own the field follows the window again
    if (!valid) {
        const bool dark = isDark(field_->palette());
        colours = field_->palette();
        colours.setColor(QPalette::Base,
                         dark ? QColor(0x5a, 0x1e, 0x1e) : QColor(0xff, 0xe3, 0xe0));
        colours.setColor(QPalette::Text,
                         dark ? QColor(0xff, 0xd0, 0xcc) : QColor(0x9c, 0x12, 0x0c));
    }
    field_->setPalette(colours);
}

} // namespace orvane

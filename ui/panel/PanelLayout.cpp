#include "ui/panel/PanelLayout.h"

namespace orvane {

QGroupBox* panelGroup(const QString& title, QLayout* layout) {
    auto* box = new QGroupBox(title);
    layout->setContentsMargins(8, 4, 8, 6);
    layout->setSpacing(4);
    box->setLayout(layout);
    return box;
}

QLabel* unitLabel(const QString& text) {
    auto* label = new QLabel(text);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

QHBoxLayout* sideBySide(QWidget* left, QWidget* right) {
    auto* row = new QHBoxLayout;
    row->setSpacing(6);
    row->addWidget(left, 1);
    row->addWidget(right, 1);
    return row;
}

} // namespace orvane

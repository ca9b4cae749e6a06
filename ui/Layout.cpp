#include "ui/Layout.h"

#include <QApplication>
#include <QDialog>
#include <QStyle>

namespace orvane {
namespace {

template <class Box>
Box* filled(Items items, int spacing) {
    auto* box = new Box;
    box->setSpacing(spacing);
    for (const Item& item : items) {
        if (item.widget != nullptr)
            box->addWidget(item.widget, item.stretch, item.alignment);
        else if (item.layout != nullptr)
            box->addLayout(item.layout, item.stretch);
        else
            box->addStretch(item.stretch);
    }
    return box;
}

} // namespace

QHBoxLayout* row(Items items, int spacing) {
    return filled<QHBoxLayout>(items, spacing);
}

QVBoxLayout* column(Items items, int spacing) {
    return filled<QVBoxLayout>(items, spacing);
}

QHBoxLayout* sideBySide(QWidget* left, QWidget* right) {
    return row({{left, 1}, {right, 1}}, 6);
}

void fill(QWidget& widget, QLayout* layout, QMargins margins) {
    layout->setContentsMargins(margins);
    widget.setLayout(layout);
}

QWidget* inWidget(QLayout* layout, QMargins margins) {
    auto* widget = new QWidget;
    fill(*widget, layout, margins);
    return widget;
}

void groupInto(QGroupBox& box, const QString& title, QLayout* layout, QMargins margins,
               int spacing) {
    box.setTitle(title);
    fill(box, layout, margins);
    layout->setSpacing(spacing);
}

QGroupBox* panelGroup(const QString& title, QLayout* layout) {
    auto* box = new QGroupBox;
    groupInto(*box, title, layout);
    return box;
}

QGroupBox* dialogGroup(const QString& title, QLayout* layout) {
    auto* box = new QGroupBox;
    groupInto(*box, title, layout, {12, 8, 12, 8}, 6);
    return box;
}

QLabel* unitLabel(const QString& text) {
    auto* label = new QLabel(text);
    // A role and not a colour, so that it follows a palette that turns dark.
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

QLabel* captionOf(QWidget* field, const QString& text) {
    auto* label = new QLabel(text);
    label->setBuddy(field);
    return label;
}

QLabel* warningSign() {
    const QStyle& style = *QApplication::style();
    auto* label = new QLabel;
    label->setPixmap(style.standardIcon(QStyle::SP_MessageBoxWarning)
                         .pixmap(style.pixelMetric(QStyle::PM_MessageBoxIconSize)));
    return label;
}

void setUp(QDialog& dialog, const char* name, const QString& title, Items rows) {
    dialog.setObjectName(name);
    dialog.setWindowTitle(title);
    fill(dialog, column(rows, 12), {16, 16, 16, 12});
    // It grows and shrinks with its rows; nothing in it could use more room.
    dialog.layout()->setSizeConstraint(QLayout::SetFixedSize);
}

QHBoxLayout* buttonRow(std::initializer_list<QWidget*> buttons) {
    QHBoxLayout* layout = row({Item()});
    for (QWidget* button : buttons)
        layout->addWidget(button);
    return layout;
}

void openOnce(QDialog* dialog) {
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    // Modal to its window, and without an event loop of its own.
    dialog->open();
}

} // namespace orvane

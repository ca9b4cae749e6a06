#pragma once

#include <QBoxLayout>
#include <QGroupBox>
#include <QLabel>

#include <initializer_list>

class QDialog;

namespace orvane {

// How windows, groups and rows are laid out, alike in all of them.

/// What stands in a row or a column: a widget, a layout or, by default, nothing that takes the room
/// which is left over.
struct Item {
    Item() = default;
    Item(QWidget* shown, int share = 0, Qt::Alignment where = {}) // NOLINT(*-explicit-*)
        : widget(shown), stretch(share), alignment(where) {}
    Item(QLayout* shown, int share = 0) : layout(shown), stretch(share) {} // NOLINT(*-explicit-*)

    QWidget* widget = nullptr;
    QLayout* layout = nullptr;
    int stretch = 1;
    Qt::Alignment alignment;
};
using Items = std::initializer_list<Item>;

/// `spacing` in pixels; -1: the style's own.
QHBoxLayout* row(Items items, int spacing = -1);
QVBoxLayout* column(Items items, int spacing = -1);
/// Two widgets side by side in equal widths.
QHBoxLayout* sideBySide(QWidget* left, QWidget* right);
/// Fills `widget` with `layout`, to its edges unless margins are given.
void fill(QWidget& widget, QLayout* layout, QMargins margins = {});
/// A widget filled so.
QWidget* inWidget(QLayout* layout, QMargins margins = {});

/// Makes `box` a titled group around `layout`.
void groupInto(QGroupBox& box, const QString& title, QLayout* layout,
               QMargins margins = {8, 4, 8, 6}, int spacing = 4);
/// A titled group around `layout`.
QGroupBox* panelGroup(const QString& title, QLayout* layout);
/// The same with a dialog's more generous room.
QGroupBox* dialogGroup(const QString& title, QLayout* layout);
/// A unit or a row's caption, quieter than the values.
QLabel* unitLabel(const QString& text);
/// The caption of `field`; a key marked in it by "&" leads there.
QLabel* captionOf(QWidget* field, const QString& text);
/// The sign that a message box with a warning shows.
QLabel* warningSign();

/// Names a dialog and gives it its rows. It has the size that they need.
void setUp(QDialog& dialog, const char* name, const QString& title, Items rows);
/// A dialog's buttons, at its right.
QHBoxLayout* buttonRow(std::initializer_list<QWidget*> buttons);
/// Opens a dialog that goes when it is closed.
void openOnce(QDialog* dialog);

} // namespace orvane

#pragma once

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>

namespace orvane {

// How the panel's groups are laid out, alike in all of them.

/// A titled group around `layout`.
QGroupBox* panelGroup(const QString& title, QLayout* layout);
/// A unit or a row's caption, quieter than the values.
QLabel* unitLabel(const QString& text);
/// Two widgets side by side in equal widths.
QHBoxLayout* sideBySide(QWidget* left, QWidget* right);

} // namespace orvane

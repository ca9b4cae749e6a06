#pragma once

#include "station/OperationPanel.h"
#include "ui/panel/Bindings.h"

#include <QFont>
#include <QKeySequence>
#include <QMenu>
#include <QPalette>
#include <QString>

#include <functional>

class QCheckBox;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QVBoxLayout;
class QWidget;

namespace orvane {

class ElidedLabel;
class UpDown;

/// How a control presents itself: its name, by which automation finds it, what stands on it, its
/// tool tip and what a screen reader calls it when nothing stands on it. A "&" in the caption marks
/// its key.
struct Face {
    QString name;
    QString caption;
    QString tip;
};

/// `font` with families that show Japanese captions: their own one first, and what stands in where
/// it is not installed.
QFont japaneseFont(QFont font);

/// Whether windows are dark, so that what is coloured on them must be light. Asked anew at each
/// drawing: the operator may change the desktop's colours while the program runs.
bool isDark(const QPalette& palette);

/// A dialog's own control: one that follows no value.
template <class Control>
Control* control(const QString& name, const QString& caption, const QString& tip = {},
                 QWidget* parent = nullptr) {
    auto* made = new Control(caption, parent);
    made->setObjectName(name);
    made->setToolTip(tip);
    return made;
}

/// An entry of a menu, which calls `command` of `receiver`.
template <class Receiver, class Command>
QAction* addEntry(QMenu& menu, const Face& face, const QList<QKeySequence>& keys,
                  Receiver* receiver, Command command) {
    QAction* action = menu.addAction(face.caption, receiver, command);
    action->setObjectName(face.name);
    action->setToolTip(face.tip);
    action->setShortcuts(keys);
    return action;
}

/// Makes the panel's widgets. Each follows the value of the same name; what the operator does goes
/// into the value first and then to the handler, so that a handler finds the new state in the
/// panel, as a routine does that sets it by itself. The widgets belong to their Qt parents, the
/// values to the station; this holds only the ties between the two and must go before the values
/// do.
class PanelControls {
  public:
    using Handler = std::function<void()>;

    explicit PanelControls(QWidget& owner) : owner_(owner) {}

    ElidedLabel* label(const Face& face, Label& model) { return label(face, model.caption); }
    ElidedLabel* label(const Face& face, Value<std::string>& caption);
    QPushButton* button(const Face& face, Button& model, Handler click);
    QCheckBox* checkBox(const Face& face, CheckBox& model, Handler click);
    /// A field; its caption is its accessible name.
    QLineEdit* textBox(const Face& face, TextBox& model, Handler change, Handler lostFocus = {});
    UpDown* upDown(const Face& face, QLineEdit& field, int maximum, Spinner& model, Handler change);
    /// Follows the bar of the same name; its place stays free while it is hidden.
    QProgressBar* progressBar(const Face& face, ProgressBar& model);
    /// A bar that tells that something is going on. Its place stays free while it is hidden.
    QProgressBar* busyBar(const Face& face);
    /// A folder's path above its sub-folders; `tip` is the path's own, with %1 for it. `entered` is
    /// called with the folder that the operator went into.
    QVBoxLayout* folder(const Face& face, const QString& tip, FolderList& model,
                        std::function<void(const std::filesystem::path&)> entered);
    /// Has `widget` enabled as `enabled` says.
    void followEnabled(QWidget& widget, Value<bool>& enabled);
    Bindings& bindings() { return bindings_; }

  private:
    void present(QWidget& widget, const Face& face) const;

    QWidget& owner_;
    Bindings bindings_;
};

} // namespace orvane

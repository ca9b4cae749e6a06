#include "ui/panel/PanelControls.h"

#include "ui/Layout.h"
#include "ui/Text.h"
#include "ui/panel/ElidedLabel.h"
#include "ui/panel/FolderView.h"
#include "ui/panel/UpDown.h"

#include <QCheckBox>
#include <QDir>
#include <QFocusEvent>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>

namespace orvane {
namespace {

/// Calls back when a field loses the focus to another control. Its context menu and another
/// program's window do not count.
class FocusWatch : public QObject {
  public:
    FocusWatch(QWidget& watched, PanelControls::Handler lost)
        : QObject(&watched), lost_(std::move(lost)) {
        watched.installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::FocusOut) {
            const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
            if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason) lost_();
        }
        return QObject::eventFilter(watched, event);
    }

  private:
    PanelControls::Handler lost_;
};

} // namespace

QFont japaneseFont(QFont font) {
    // Without a family named here the system picks one by itself, which for these characters may be
    // Chinese. The window's own stays the last, for what the others lack.
    font.setFamilies({"MS UI Gothic", "IPAPGothic", "IPAexGothic", "IPAGothic", "Noto Sans CJK JP",
                      "Noto Sans JP", "Yu Gothic UI", "Meiryo UI", font.family()});
    return font;
}

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < 128;
}

void PanelControls::present(QWidget& widget, const Face& face) const {
    widget.setObjectName(face.name);
    widget.setToolTip(face.tip);
    widget.setAccessibleName(QString(face.caption).remove('&'));
    widget.setAccessibleDescription(face.tip);
}

void PanelControls::followEnabled(QWidget& widget, Value<bool>& enabled) {
    bindings_.follow(enabled, [&widget](bool on) { widget.setEnabled(on); });
}

ElidedLabel* PanelControls::label(const Face& face, Value<std::string>& caption) {
    auto* label = new ElidedLabel(&owner_);
    present(*label, face);
    bindings_.follow(caption,
                     [label](const std::string& text) { label->setText(toQString(text)); });
    return label;
}

QPushButton* PanelControls::button(const Face& face, Button& model, Handler click) {
    auto* button = new QPushButton(face.caption, &owner_);
    present(*button, face);
    followEnabled(*button, model.enabled);
    // The button itself is the context: the handler cannot be called once it is gone.
    QObject::connect(button, &QPushButton::clicked, button, std::move(click));
    return button;
}

QCheckBox* PanelControls::checkBox(const Face& face, CheckBox& model, Handler click) {
    auto* box = new QCheckBox(face.caption, &owner_);
    present(*box, face);
    followEnabled(*box, model.enabled);
    bindings_.follow(model.ticked, [box](bool ticked) { box->setChecked(ticked); });
    // `clicked` and not `toggled`: a tick that a routine sets is no wish of the operator.
    QObject::connect(box, &QCheckBox::clicked, box, [&model, click = std::move(click)](bool on) {
        model.ticked = on;
        if (click) click();
    });
    return box;
}

QLineEdit* PanelControls::textBox(const Face& face, TextBox& model, Handler change,
                                  Handler lostFocus) {
    auto* field = new QLineEdit(&owner_);
    present(*field, face);
    followEnabled(*field, model.enabled);
    bindings_.follow(model.text, [field](const std::string& utf8) {
        const QString text = toQString(utf8);
        // Setting an equal text would move the cursor of a field that is being edited.
        if (field->text() != text) field->setText(text);
    });
    // `textEdited` and not `textChanged`, for the same reason.
    QObject::connect(field, &QLineEdit::textEdited, field,
                     [&model, change = std::move(change)](const QString& text) {
                         model.text = text.toStdString();
                         if (change) change();
                     });
    // An event filter, since a line edit has no signal that leaves out its menu and other windows.
    if (lostFocus) new FocusWatch(*field, std::move(lostFocus));
    return field;
}

UpDown* PanelControls::upDown(const Face& face, QLineEdit& field, int maximum, Spinner& model,
                              Handler change) {
    auto* upDown = new UpDown(field, maximum, &owner_);
    present(*upDown, face);
    followEnabled(*upDown, model.enabled);
    bindings_.follow(model.value, [upDown](int value) { upDown->setValue(value); });
    QObject::connect(upDown, &UpDown::stepped, upDown,
                     [&model, change = std::move(change)](int value) {
                         model.value = value;
                         change();
                     });
    return upDown;
}

QProgressBar* PanelControls::progressBar(const Face& face, ProgressBar& model) {
    QProgressBar* bar = busyBar(face);
    bindings_.follow(model.visible, [bar](bool visible) { bar->setVisible(visible); });
    bindings_.follow(model.maximum, [bar](int maximum) { bar->setMaximum(maximum); });
    bindings_.follow(model.value, [bar](int value) { bar->setValue(value); });
    return bar;
}

QProgressBar* PanelControls::busyBar(const Face& face) {
    auto* bar = new QProgressBar(&owner_);
    present(*bar, face);
    // Without a range the style shows a bar that runs to and fro.
    bar->setRange(0, 0);
    bar->setTextVisible(false);
    bar->setFixedHeight(bar->fontMetrics().height() / 2 + 2);
    QSizePolicy policy = bar->sizePolicy();
    // What is below it would jump at the begin and the end of each run.
    policy.setRetainSizeWhenHidden(true);
    bar->setSizePolicy(policy);
    return bar;
}

QVBoxLayout* PanelControls::folder(const Face& face, const QString& tip, FolderList& model,
                                   std::function<void(const std::filesystem::path&)> entered) {
    auto* path = new ElidedLabel(&owner_, Qt::ElideMiddle);
    // The list itself has the control's name.
    path->setObjectName(face.name + "_path");
    path->setAccessibleName(face.caption);
    auto* folders = new FolderView(&owner_);
    present(*folders, {face.name, "Sub-folders of the " + face.caption.toLower(), face.tip});
    followEnabled(*folders, model.enabled);
    bindings_.follow(model.path, [=](const std::filesystem::path& folder) {
        path->setText(QDir::toNativeSeparators(toQString(folder)));
        path->setToolTip(tip.arg(path->text()));
        folders->setPath(folder);
    });
    QObject::connect(folders, &FolderView::entered, folders, std::move(entered));
    return column({path, {folders, 1}}, 4);
}

} // namespace orvane

#include "ui/dialogs/SpanDialog.h"

#include "archive/CopiesAnew.h"
#include "archive/DayReport.h"
#include "ui/Dates.h"
#include "ui/Layout.h"
#include "ui/Text.h"
#include "ui/panel/PanelControls.h"

#include <QDateEdit>
#include <QFileDialog>
#include <QProgressBar>
#include <QPushButton>
#include <QShowEvent>

#include <algorithm>

namespace orvane {
namespace {

// Pixels, and lines: texts that come and go do not change the dialog's size.
constexpr int kTextWidth = 430;
constexpr int kTextLines = 3;

QLabel* text(const char* name) {
    auto* label = control<QLabel>(name, {});
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setFixedWidth(kTextWidth);
    label->setMinimumHeight(kTextLines * label->fontMetrics().lineSpacing());
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    return label;
}

QDateEdit* dateField(const char* name, const QString& tip) {
    auto* field = new QDateEdit;
    field->setObjectName(name);
    field->setToolTip(tip);
    field->setDisplayFormat("yyyy/MM/dd");
    field->setCalendarPopup(true);
    return field;
}

} // namespace

SpanDialog::SpanDialog(Job job, QWidget* parent)
    : QDialog(parent), job_(std::move(job)), purpose_(text("lblPurpose")),
      from_(dateField("dtpFrom", "The first day.")), to_(dateField("dtpTo", "The last day.")),
      bar_(new QProgressBar), text_(text("lblOutcome")),
      start_(control<QPushButton>("cmdStart", "&Start", "Begins the work for these days.")),
      cancel_(
          control<QPushButton>("cmdCancel", "Ca&ncel", "Ends the work; what has been done stays.")),
      close_(control<QPushButton>("cmdClose", "&Close",
                                  "Closes this window; work that has begun goes on.")) {
    bar_->setObjectName("prgDays");
    bar_->setToolTip("How far the work is.");
    bar_->setRange(0, SpanWork::kWhole);
    setUp(*this, job_.name, job_.title, {purpose_, span(), work(), text_, buttons()});
    bindings_.follow(job_.work.progress, [this](int done) { bar_->setValue(done); });
    bindings_.follow(job_.work.text,
                     [this](const std::string& told) { text_->setText(toQString(told)); });
    bindings_.follow(job_.work.running, [this](bool running) { followRunning(running); });
}

QLayout* SpanDialog::span() {
    return row({captionOf(from_, "&From"), from_, captionOf(to_, "&to"), to_, Item()}, 8);
}

QLayout* SpanDialog::work() {
    if (job_.options == nullptr) return column({bar_}, 0);
    return column({job_.options, bar_});
}

QLayout* SpanDialog::buttons() {
    start_->setDefault(true);
    for (QPushButton* other : {cancel_, close_})
        // Enter is "Start" from wherever it is pressed.
        other->setAutoDefault(false);
    connect(start_, &QPushButton::clicked, this, [this] { start(); });
    connect(cancel_, &QPushButton::clicked, this, [this] { job_.work.cancel(); });
    connect(close_, &QPushButton::clicked, this, &QDialog::reject);
    return row({start_, cancel_, Item(), close_});
}

void SpanDialog::bring() {
    show();
    raise();
    activateWindow();
}

void SpanDialog::bringFor(DaySpan days) {
    // Work that goes on keeps its days: the dialog then shows that.
    if (!job_.work.running) {
        from_->setDate(dateOf(days.first));
        to_->setDate(dateOf(days.last));
        used_ = true;
    }
    bring();
}

void SpanDialog::tellPurpose() {
    purpose_->setText(job_.purpose());
}

void SpanDialog::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (event->spontaneous()) return;
    // Today at each opening: the program may have been running for weeks.
    if (!used_) {
        const QDate today = dateOf(std::chrono::floor<std::chrono::days>(job_.clock.now()));
        from_->setDate(today);
        to_->setDate(today);
    }
    from_->setFocus();
}

/// What the work would do may have changed in another window.
bool SpanDialog::event(QEvent* event) {
    if (event->type() == QEvent::Show || event->type() == QEvent::WindowActivate) tellPurpose();
    return QDialog::event(event);
}

/// In whatever order the two days were given.
DaySpan SpanDialog::chosen() const {
    const auto [first, last] = std::minmax({dayOf(from_->date()), dayOf(to_->date())});
    return {first, last};
}

void SpanDialog::start() {
    used_ = true;
    for (QDateEdit* field : {from_, to_})
        field->interpretText(); // a key may start it while a day is being typed
    job_.start(chosen(), *this);
}

void SpanDialog::followRunning(bool running) {
    // a control that is disabled hands its focus on, to whichever comes next
    if (running) {
        cancel_->setEnabled(true);
        cancel_->setFocus();
    }
    for (QWidget* control : std::initializer_list<QWidget*>{from_, to_, start_, job_.options})
        if (control != nullptr) control->setEnabled(!running);
    // And only then: the operator may have gone elsewhere meanwhile.
    if (!running && cancel_->hasFocus()) close_->setFocus();
    cancel_->setEnabled(running);
}

void askForFile(QWidget& form, const FileQuestion& question,
                std::function<void(const std::filesystem::path&)> write) {
    auto* dialog = new QFileDialog(&form, question.title,
                                   QStandardPaths::writableLocation(question.where), question.kind);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(question.suffix);
    dialog->selectFile(question.name);
    QObject::connect(dialog, &QFileDialog::fileSelected, &form,
                     [write = std::move(write)](const QString& file) { write(toPath(file)); });
    openOnce(dialog);
}

SpanDialog* copiesDialog(CopiesAnew& copies, const Module1& module, const Clock& clock,
                         QWidget* parent) {
    const auto purpose = [&module] {
        return "Makes the processed copies of all pictures of these days anew, with the save "
               "options as they are now: " +
               toQString(describe(module.image)) +
               ". The pictures themselves stay as they are, and captures go first.";
    };
    const auto start = [&](DaySpan span, SpanDialog&) { copies.start(span, module.image); };
    return new SpanDialog({"frmCopiesAnew", "Processed Copies Anew", copies, purpose, start, clock},
                          parent);
}

SpanDialog* reportDialog(DayReport& report, const Clock& clock, QWidget* parent) {
    const auto purpose = [] {
        return QString(
            "Saves how complete each of these days is as a table (CSV): minutes that "
            "were due by the schedule on the panel, taken, fetched later and missed, first "
            "and last picture.");
    };
    const auto start = [&report](DaySpan span, SpanDialog& form) {
        const QString days =
            toQString(dateDigits(WallTime(span.first)) + "-" + dateDigits(WallTime(span.last)));
        askForFile(form,
                   {"Save Report", QStandardPaths::DocumentsLocation, "Tables (*.csv)", "csv",
                    "orvane-" + days + ".csv"},
                   [&report, span](const auto& file) { report.start(span, file); });
    };
    return new SpanDialog({"frmDayReport", "Save Report", report, purpose, start, clock}, parent);
}

} // namespace orvane

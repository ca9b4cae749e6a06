#pragma once

#include "archive/SpanWork.h"
#include "ui/panel/Bindings.h"

#include <QDialog>
#include <QStandardPaths>

#include <functional>

class QDateEdit;
class QLabel;
class QProgressBar;
class QPushButton;

namespace orvane {

class CopiesAnew;
class DayReport;
struct Module1;

/// Starts work over a span of days, shows how far it is and how it ended, and cancels it. It does
/// not hold up the rest of the program, and the work goes on when it is closed. The days stand as
/// they were used last while the program runs, before that both are today. Its parent owns it; it
/// is made once and only hidden when it closes, since it follows the work's values.
class SpanDialog : public QDialog {
  public:
    /// What is done. All but the texts outlive the dialog.
    struct Job {
        const char* name; ///< the dialog's
        QString title;
        SpanWork& work;
        std::function<QString()> purpose; ///< what a start would do now, in sentences
        std::function<void(DaySpan, SpanDialog&)> start;
        const Clock& clock;
        QWidget* options = nullptr; ///< the work's own, below the days; locked while it goes on
    };

    SpanDialog(Job job, QWidget* parent);

    /// Brings the dialog before the operator.
    void bring();
    /// The same for these days, unless its work goes on.
    void bringFor(DaySpan days);
    /// Tells the purpose as it is now.
    void tellPurpose();

  protected:
    void showEvent(QShowEvent* event) override;
    bool event(QEvent* event) override;

  private:
    QLayout* span();
    QLayout* work();
    QLayout* buttons();
    DaySpan chosen() const;
    void start();
    void followRunning(bool running);

    Job job_;
    QLabel* purpose_;
    QDateEdit* from_;
    QDateEdit* to_;
    QProgressBar* bar_;
    QLabel* text_;
    QPushButton* start_;
    QPushButton* cancel_;
    QPushButton* close_;
    bool used_ = false; ///< the days are the operator's
    Bindings bindings_;
};

/// "Processed Copies Anew".
SpanDialog* copiesDialog(CopiesAnew& copies, const Module1& module, const Clock& clock,
                         QWidget* parent);
/// "Save Report", which asks for the file.
SpanDialog* reportDialog(DayReport& report, const Clock& clock, QWidget* parent);

/// Asks for a file to be written, and before an existing one is replaced. `write` is called with
/// it, not at all when the operator cancels or closes `form`.
struct FileQuestion {
    QString title;
    QStandardPaths::StandardLocation where;
    QString kind;   ///< "Tables (*.csv)"
    QString suffix; ///< without its point
    QString name;   ///< that is proposed
};
void askForFile(QWidget& form, const FileQuestion& question,
                std::function<void(const std::filesystem::path&)> write);

} // namespace orvane

#pragma once

// First: moc 6.4 cannot parse <coroutine> unless a Qt header came before.
#include <QDialog>

#include "archive/DaySurvey.h"
#include "ui/panel/Bindings.h"

class QCalendarWidget;
class QLabel;

namespace orvane {

class ShownDay;

/// A calendar whose days are coloured by how complete they are, with the numbers in their tips. A
/// click or Enter turns to a day; the window stays, so that one day after the other can be looked
/// at. The main window owns it; it is kept when it closes, and its survey ends then. Days get their
/// colours as the survey finds them.
class FrmCalendar : public QDialog {
    Q_OBJECT

  public:
    /// Both outlive the window.
    FrmCalendar(ShownDay& day, DaySurvey& survey, QWidget* parent);

    /// Brings the window before the operator, at the day in view.
    void bring();
    /// Marks the day in view.
    void follow();

  signals:
    void dayWanted(std::chrono::local_days day);

  protected:
    void hideEvent(QHideEvent* event) override;

  private:
    QLayout* legend();
    void survey();
    void colour();
    void tell();

    ShownDay& day_;
    DaySurvey& survey_;
    QCalendarWidget* calendar_;
    QLabel* text_;
    Bindings bindings_;
};

} // namespace orvane

#pragma once

#include <QWidget>

class QToolButton;

namespace orvane {

class ShownDay;

/// Which day is in view: "<", the day itself, ">" and "Today". They lie over the band's line of
/// text, at its left. The band owns it and tells it of every change; it turns the day by itself,
/// and says so afterwards. A button for which there is no day is disabled.
class DayBar : public QWidget {
    Q_OBJECT

  public:
    explicit DayBar(ShownDay& day, QWidget* parent);

    /// Takes note of the day in view.
    void follow();

  signals:
    void turned();         ///< another day is in view
    void calendarWanted(); ///< the day was clicked

  private:
    QToolButton* button(const char* name, const QString& caption, const QString& tip);

    ShownDay& day_;
    QToolButton* previous_;
    QToolButton* date_;
    QToolButton* next_;
    QToolButton* today_;
};

} // namespace orvane

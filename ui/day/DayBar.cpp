#include "ui/day/DayBar.h"

#include "archive/ShownDay.h"
#include "ui/Layout.h"
#include "ui/Text.h"
#include "ui/panel/PanelControls.h"

#include <QToolButton>

namespace orvane {

DayBar::DayBar(ShownDay& day, QWidget* parent)
    : QWidget(parent), day_(day),
      previous_(button("cmd_day_previous", "", "The day before (Alt+Page Up).")),
      date_(button("cmd_day", "", "The day in view; shows the calendar (Ctrl+D).")),
      next_(button("cmd_day_next", "", "The day after (Alt+Page Down).")),
      today_(button("cmd_day_today", "Today", "Goes back to today (Alt+Home).")) {
    setObjectName("dayBar");
    previous_->setArrowType(Qt::LeftArrow);
    previous_->setAccessibleName("Previous day");
    next_->setArrowType(Qt::RightArrow);
    next_->setAccessibleName("Next day");
    fill(*this, row({previous_, date_, next_, today_}, 0));
    const auto turn = [this](QToolButton* source, auto target) {
        connect(source, &QToolButton::clicked, this, [this, target] {
            day_.turnTo(target(day_));
            emit turned();
        });
    };
    turn(previous_, [](const ShownDay& shown) { return shown.day() - std::chrono::days(1); });
    turn(next_, [](const ShownDay& shown) { return shown.day() + std::chrono::days(1); });
    // `turnTo` takes any day that is still to come for today.
    turn(today_, [](const ShownDay&) { return std::chrono::local_days::max(); });
    connect(date_, &QToolButton::clicked, this, &DayBar::calendarWanted);
}

QToolButton* DayBar::button(const char* name, const QString& caption, const QString& tip) {
    auto* made = new QToolButton;
    made->setObjectName(name);
    made->setText(caption);
    made->setToolTip(tip);
    made->setAutoRaise(true);
    // Tool buttons are left out by the Tab key otherwise.
    made->setFocusPolicy(Qt::StrongFocus);
    made->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    return made;
}

void DayBar::follow() {
    date_->setText(toQString(dateText(WallTime(day_.day()))));
    previous_->setEnabled(day_.day() > day_.firstDay());
    next_->setEnabled(!day_.isToday());
    today_->setEnabled(!day_.isToday());
}

} // namespace orvane

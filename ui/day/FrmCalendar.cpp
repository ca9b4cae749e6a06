#include "ui/day/FrmCalendar.h"

#include "archive/ShownDay.h"
#include "ui/Dates.h"
#include "ui/Layout.h"
#include "ui/Text.h"
#include "ui/panel/PanelControls.h"

#include <QCalendarWidget>
#include <QPushButton>
#include <QTextCharFormat>

namespace orvane {
namespace {

/// Of a scale that is told apart without red and green, and by its lightness.
struct DayGrade {
    double least; ///< of the share of the due minutes that have a picture
    QRgb ground;
    QRgb ink;
    const char* text;
};
constexpr DayGrade kGrades[] = {{1, 0xff0064b4, 0xffffffff, "complete"},
                                {0.95, 0xff8cc8f0, 0xff000000, "95 % or more"},
                                {0.5, 0xfff5d76e, 0xff000000, "half or more"},
                                {0, 0xffcd4600, 0xffffffff, "less"}};
constexpr DayGrade kNotRecorded{0, 0xffa8a8a8, 0xff000000, "not recorded"};

/// Null: nothing was due, and the day keeps the calendar's own colours.
const DayGrade* gradeOf(const DaySurvey::Result& result) {
    if (!result.share) return result.isRecorded ? nullptr : &kNotRecorded;
    if (*result.share == 0 && !result.isRecorded) return &kNotRecorded;
    for (const DayGrade& grade : kGrades)
        if (*result.share >= grade.least) return &grade;
    return nullptr;
}

} // namespace

FrmCalendar::FrmCalendar(ShownDay& day, DaySurvey& survey, QWidget* parent)
    : QDialog(parent), day_(day), survey_(survey), calendar_(new QCalendarWidget),
      text_(new QLabel) {
    text_->setObjectName("lbl_calendar");
    text_->setTextFormat(Qt::PlainText);
    calendar_->setObjectName("calendar");
    calendar_->setGridVisible(true);
    calendar_->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    calendar_->setFirstDayOfWeek(Qt::Monday);
    for (const Qt::DayOfWeek weekday : {Qt::Saturday, Qt::Sunday}) // red would read as a grade
        calendar_->setWeekdayTextFormat(weekday, {});
    auto* today = control<QPushButton>("cmd_calendar_today", "&Today", "Goes back to today.");
    auto* close = control<QPushButton>("cmdClose", "&Close", "Closes the calendar.");
    for (QPushButton* button : {today, close})
        // Enter is the calendar's.
        button->setAutoDefault(false);
    setUp(*this, "frmCalendar", "Calendar",
          {calendar_, legend(), text_, row({today, Item(), close})});
    // a click and Enter both; the arrow keys only tell
    connect(calendar_, &QCalendarWidget::activated, this,
            [this](QDate date) { emit dayWanted(dayOf(date)); });
    connect(calendar_, &QCalendarWidget::clicked, this,
            [this](QDate date) { emit dayWanted(dayOf(date)); });
    connect(calendar_, &QCalendarWidget::selectionChanged, this, &FrmCalendar::tell);
    connect(calendar_, &QCalendarWidget::currentPageChanged, this, &FrmCalendar::survey);
    connect(today, &QPushButton::clicked, this,
            [this] { emit dayWanted(std::chrono::local_days::max()); });
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    bindings_.follow(survey_.found, [this](int) { colour(); });
}

QLayout* FrmCalendar::legend() {
    auto* made = new QHBoxLayout;
    made->setSpacing(6);
    const auto add = [made](const DayGrade& grade) {
        auto* square = new QLabel;
        const int side = square->fontMetrics().height() * 3 / 4;
        square->setFixedSize(side, side);
        square->setStyleSheet("background:" + QColor(grade.ground).name());
        made->addWidget(square);
        made->addWidget(new QLabel(grade.text));
        made->addSpacing(4);
    };
    for (const DayGrade& grade : kGrades)
        add(grade);
    add(kNotRecorded);
    made->addStretch();
    return made;
}

void FrmCalendar::bring() {
    const bool wasOpen = isVisible();
    show();
    raise();
    activateWindow();
    calendar_->setFocus();
    follow();
    if (!wasOpen) survey();
}

void FrmCalendar::follow() {
    if (!isVisible()) return;
    calendar_->setMinimumDate(dateOf(day_.firstDay()));
    calendar_->setSelectedDate(dateOf(day_.day()));
    tell();
}

/// The page and what is seen of the months beside it.
void FrmCalendar::survey() {
    constexpr int kBefore = 7;
    constexpr int kShown = 42;
    // All formats go: a day of another page may have changed since it was surveyed.
    calendar_->setDateTextFormat({}, {});
    const QDate first(calendar_->yearShown(), calendar_->monthShown(), 1);
    const std::chrono::local_days begin = dayOf(first) - std::chrono::days(kBefore);
    survey_.start({begin, begin + std::chrono::days(kBefore + kShown)});
}

void FrmCalendar::colour() {
    for (const auto& [day, result] : survey_.results()) {
        const QDate date = dateOf(day);
        // It has its colour: each that is set draws the calendar anew.
        if (!calendar_->dateTextFormat(date).toolTip().isEmpty()) continue;
        QTextCharFormat format;
        if (const DayGrade* grade = gradeOf(result)) {
            format.setBackground(QColor(grade->ground));
            format.setForeground(QColor(grade->ink));
        }
        format.setToolTip(toQString(dateText(WallTime(day)) + ": " + result.text));
        calendar_->setDateTextFormat(date, format);
    }
    tell();
}

/// What the selected day's tip says, for the keyboard.
void FrmCalendar::tell() {
    text_->setText(calendar_->dateTextFormat(calendar_->selectedDate()).toolTip());
}

void FrmCalendar::hideEvent(QHideEvent* event) {
    QDialog::hideEvent(event);
    survey_.stop();
}

} // namespace orvane

#include "archive/DataFolder.h"
#include "tests/ui/WindowTest.h"

#include <QComboBox>
#include <QDateEdit>
#include <QProgressBar>
#include <QSpinBox>

namespace orvane::test {
namespace {

/// The operator's work on a span of days, with ten pictures of each of the two days before today.
class SpanUi : public WindowTest {
  protected:
    SpanUi() {
        w.panel.Dir1[0].path = w.dataFolder();
        for (const std::string day : {"20061113", "20061114"}) {
            std::filesystem::create_directory(w.dataFolder() / day);
            for (int minute = 10; minute < 20; ++minute) {
                const std::string name = day + "_09" + std::to_string(minute) + "00_00.jpg";
                writeFile(w.dataFolder() / day / name, jpegLike(name));
            }
        }
    }
    static void choose(const QDialog& form, QDate from, QDate to) {
        find<QDateEdit>(form, "dtpFrom").setDate(from);
        find<QDateEdit>(form, "dtpTo").setDate(to);
    }
    static QDate dateIn(const QDialog& form, const char* name) {
        return find<QDateEdit>(form, name).date();
    }
    static std::string told(const QDialog& form) { return textOf(form, "lblOutcome"); }
    static std::string purpose(const QDialog& form) { return textOf(form, "lblPurpose"); }
    /// What can be used while the work goes on, and while it does not.
    static void expectRunning(const QDialog& form, bool running) {
        for (const char* name : {"dtpFrom", "dtpTo", "cmdStart"})
            EXPECT_EQ(find<QWidget>(form, name).isEnabled(), !running) << name;
        EXPECT_EQ(find<QWidget>(form, "cmdCancel").isEnabled(), running);
        EXPECT_EQ(focusOf(form), running ? "cmdCancel" : "cmdClose");
    }

    const QDate today{2006, 11, 15};
};

TEST_F(SpanUi, CopiesAreMadeAnewBesideTheRest) {
    QDialog& form = open("mnuCopiesAnew", "frmCopiesAnew");
    EXPECT_FALSE(form.isModal());
    EXPECT_TRUE(has(purpose(form), " not mirrored, "));
    for (const char* name : {"dtpFrom", "dtpTo"})
        EXPECT_EQ(dateIn(form, name), today);
    choose(form, today.addDays(-1), today.addDays(-2)); // either way round
    QTest::keyClick(&find<QDateEdit>(form, "dtpTo"), Qt::Key_Return);
    w.clock.run(30ms);
    const auto& bar = find<QProgressBar>(form, "prgDays");
    EXPECT_GT(bar.value(), 0);
    EXPECT_LT(bar.value(), bar.maximum() / 2);
    EXPECT_TRUE(told(form).starts_with("2006/11/13, day 1 of 2: picture ")) << told(form);
    expectRunning(form, true);
    EXPECT_FALSE(w.busy.active()) << "the program may be closed at any moment";
    EXPECT_TRUE(action("mnuFileOpen").isEnabled());
    click(form, "cmdClose");
    EXPECT_FALSE(form.isVisible());
    w.clock.run(1s);
    EXPECT_EQ(listDay(w.dataFolder() / "Edit" / "20061114").pictures.size(), 10U);
    w.module.image.LrFlg = asFlag(true);
    trigger("mnuCopiesAnew");
    EXPECT_TRUE(has(purpose(form), ": mirrored, "));
    EXPECT_EQ(told(form), "20 copies made.");
    EXPECT_EQ(bar.value(), bar.maximum());
    EXPECT_EQ(dateIn(form, "dtpFrom"), today.addDays(-1)) << "used last";

    choose(form, today.addDays(-2), today);
    click(form, "cmdStart");
    w.clock.run(30ms);
    click(form, "cmdCancel");
    EXPECT_TRUE(has(told(form), "Cancelled. ")) << "and keeps what is made";
    expectRunning(form, false);
}

TEST_F(SpanUi, TheReportGoesIntoTheFileThatIsChosen) {
    QDialog& form = open("mnuFileReport", "frmDayReport");
    choose(form, today.addDays(-1), today);
    const auto file = w.folder.path() / "days.csv";
    for (const bool chosen : {false, true}) {
        click(form, "cmdStart");
        EXPECT_FALSE(w.report.running) << "nothing is done before there is a file";
        const FileQuestion asked = chosen ? answer({file}) : answer({});
        EXPECT_EQ(asked.title, "Save Report");
        EXPECT_EQ(asked.name, "orvane-20061114-20061115.csv");
        w.clock.run(1s);
        EXPECT_EQ(told(form), chosen ? "days.csv is written." : "");
    }
    EXPECT_TRUE(has(contentsOf(file), "09:10:00,09:19:00,"));
}

TEST_F(SpanUi, AFilmIsOfTheDayInViewAndAsTheOptionsSay) {
    w.module.image.LrFlg = asFlag(true);
    QDialog& form = open("mnuDaySaveFilm", "frmFilmFile");
    EXPECT_TRUE(has(purpose(form), ", mirrored, "));
    EXPECT_EQ(dateIn(form, "dtpFrom"), today);
    choose(form, today.addDays(-1), today.addDays(-1));
    find<QComboBox>(form, "cboSize").setCurrentIndex(2);
    find<QSpinBox>(form, "spnRate").setValue(5);
    click(form, "chkStamp");
    click(form, "cmdStart");
    const FileQuestion asked = answer({w.folder.path() / "day.mp4"});
    EXPECT_EQ(asked.title, "Save Film");
    EXPECT_EQ(asked.name, "orvane-20061114.mp4");
    EXPECT_FALSE(find<QWidget>(form, "spnRate").isEnabled());
    w.clock.run(10s);
    EXPECT_EQ(told(form), "day.mp4 is written: 10 pictures, 2.0 s.");
    EXPECT_TRUE(find<QWidget>(form, "spnRate").isEnabled());
    std::string arguments;
    for (const std::string& argument : w.process.arguments)
        arguments += argument + ' ';
    EXPECT_TRUE(has(arguments, " 5 "));
    EXPECT_TRUE(has(arguments, "scale=") && has(arguments, ":720:"));
    EXPECT_TRUE(has(contentsOf(w.folder.path() / "day.mp4"), std::string(1, '\0')));
    form.close();
    trigger("mnuDaySaveFilm");
    EXPECT_EQ(dateIn(form, "dtpTo"), today) << "the day in view again";
}

TEST_F(SpanUi, WithoutFfmpegTheOperatorIsToldAndMayChooseOne) {
    w.process.installed = false;
    QDialog& form = open("mnuDaySaveFilm", "frmFilmFile");
    EXPECT_TRUE(has(purpose(form), "apt-get install ffmpeg"));
    const auto program = w.folder.path() / "ffmpeg of mine";
    writeFile(program, "a program");
    click(form, "cmdFfmpeg");
    EXPECT_EQ(answer({program}).title, "Choose ffmpeg");
    EXPECT_TRUE(has(purpose(form), "ffmpeg of mine"));
    EXPECT_TRUE(has(w.store.values["Station/Ffmpeg"], "ffmpeg of mine"));
}

} // namespace
} // namespace orvane::test

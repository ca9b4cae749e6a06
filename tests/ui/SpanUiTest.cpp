#include "archive/DataFolder.h"
#include "tests/support/TestPictures.h"
#include "tests/support/TestWindow.h"
#include "ui/Text.h"

#include <QComboBox>
#include <QDateEdit>
#include <QFileDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>

namespace orvane::test {
namespace {

/// The main window, and ten pictures of the day before yesterday and of yesterday.
class SpanUi : public testing::Test {
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
    QDialog& open(const char* action, const char* name) {
        w.main.findChild<QAction*>(action)->trigger();
        return find<QDialog>(w.main, name);
    }
    static void choose(const QDialog& form, QDate from, QDate to) {
        find<QDateEdit>(form, "dtpFrom").setDate(from);
        find<QDateEdit>(form, "dtpTo").setDate(to);
    }
    static QString told(const QDialog& form) { return find<QLabel>(form, "lblOutcome").text(); }

    JumpingClock clock{at(2006, 11, 15)};
    FakeOperator op{clock};
    Window w{op};
    const QDate today{2006, 11, 15};
};

TEST_F(SpanUi, CopiesAreMadeAnewBesideTheRest) {
    QDialog& form = open("mnuCopiesAnew", "frmCopiesAnew");
    EXPECT_FALSE(form.isModal());
    EXPECT_EQ(find<QDateEdit>(form, "dtpFrom").date(), today);
    EXPECT_EQ(find<QDateEdit>(form, "dtpTo").date(), today);
    choose(form, today.addDays(-1), today.addDays(-2)); // either way round
    QTest::keyClick(&find<QDateEdit>(form, "dtpTo"), Qt::Key_Return);
    w.clock.run(30ms);
    const auto& bar = find<QProgressBar>(form, "prgDays");
    EXPECT_GT(bar.value(), 0);
    EXPECT_LT(bar.value(), bar.maximum() / 2);
    EXPECT_TRUE(told(form).startsWith("2006/11/13, day 1 of 2: picture "))
        << told(form).toStdString();
    for (const char* name : {"dtpFrom", "dtpTo", "cmdStart", "cmdCancel"})
        EXPECT_EQ(find<QWidget>(form, name).isEnabled(), QString(name) == "cmdCancel") << name;

    click(form, "cmdClose");
    EXPECT_FALSE(form.isVisible());
    w.clock.run(1s);
    EXPECT_EQ(listDay(w.dataFolder() / "Edit" / "20061114").pictures.size(), 10U);
    open("mnuCopiesAnew", "frmCopiesAnew");
    EXPECT_EQ(told(form), "20 copies made.");
    EXPECT_EQ(bar.value(), bar.maximum());
    EXPECT_EQ(find<QDateEdit>(form, "dtpFrom").date(), today.addDays(-1)) << "used last";
}

TEST_F(SpanUi, CancelKeepsWhatIsMade) {
    QDialog& form = open("mnuCopiesAnew", "frmCopiesAnew");
    choose(form, today.addDays(-2), today);
    click(form, "cmdStart");
    w.clock.run(30ms);
    click(form, "cmdCancel");
    const auto made = listDay(w.dataFolder() / "Edit" / "20061113").pictures.size();
    EXPECT_GT(made, 0U);
    EXPECT_EQ(told(form), QString("Cancelled. %1 copies made.").arg(made));
    EXPECT_TRUE(find<QWidget>(form, "cmdStart").isEnabled());
    EXPECT_FALSE(find<QWidget>(form, "cmdCancel").isEnabled());
}

TEST_F(SpanUi, TheOptionsInForceAreTold) {
    QDialog& form = open("mnuCopiesAnew", "frmCopiesAnew");
    const auto& purpose = find<QLabel>(form, "lblPurpose");
    EXPECT_TRUE(purpose.text().contains(" not mirrored, "));
    form.close();
    w.module.image.LrFlg = asFlag(true);
    open("mnuCopiesAnew", "frmCopiesAnew");
    EXPECT_TRUE(purpose.text().contains(": mirrored, ")) << purpose.text().toStdString();
}

TEST_F(SpanUi, TheReportGoesIntoTheFileThatIsChosen) {
    QDialog& form = open("mnuFileReport", "frmDayReport");
    choose(form, today.addDays(-1), today);
    click(form, "cmdStart");
    auto* dialog = form.findChild<QFileDialog*>();
    ASSERT_NE(dialog, nullptr);
    EXPECT_FALSE(w.report.running) << "nothing is done before there is a file";
    EXPECT_TRUE(dialog->selectedFiles().value(0).endsWith("orvane-20061114-20061115.csv"));
    const auto file = w.folder.path() / "days.csv";
    emit dialog->fileSelected(toQString(file));
    delete dialog;
    w.clock.run(1s);
    EXPECT_EQ(told(form), "days.csv is written.");
    EXPECT_NE(contentsOf(file).find("09:10:00,09:19:00,"), std::string::npos);
}

TEST_F(SpanUi, AFilmIsOfTheDayInViewAndAsTheOptionsSay) {
    w.module.image.LrFlg = asFlag(true);
    QDialog& form = open("mnuDaySaveFilm", "frmFilmFile");
    const auto& purpose = find<QLabel>(form, "lblPurpose");
    EXPECT_TRUE(purpose.text().contains(", mirrored, ")) << purpose.text().toStdString();
    EXPECT_EQ(find<QDateEdit>(form, "dtpFrom").date(), today);
    choose(form, today.addDays(-1), today.addDays(-1));
    find<QComboBox>(form, "cboSize").setCurrentIndex(2);
    find<QSpinBox>(form, "spnRate").setValue(5);
    click(form, "chkStamp");
    click(form, "cmdStart");
    auto* dialog = form.findChild<QFileDialog*>();
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(dialog->selectedFiles().value(0).endsWith("orvane-20061114.mp4"));
    emit dialog->fileSelected(toQString(w.folder.path() / "day.mp4"));
    delete dialog;
    EXPECT_FALSE(find<QWidget>(form, "spnRate").isEnabled());
    w.clock.run(10s);
    EXPECT_EQ(told(form), "day.mp4 is written: 10 pictures, 2.0 s.");
    EXPECT_TRUE(find<QWidget>(form, "spnRate").isEnabled());
    const auto& arguments = w.process.arguments;
    EXPECT_NE(std::ranges::find(arguments, "5"), arguments.end());
    EXPECT_TRUE(std::ranges::any_of(arguments, [](const std::string& argument) {
        return argument.starts_with("scale=") && argument.find(":720:") != std::string::npos;
    }));
    EXPECT_NE(contentsOf(w.folder.path() / "day.mp4").find('\0'), std::string::npos);

    form.close();
    open("mnuDaySaveFilm", "frmFilmFile");
    EXPECT_EQ(find<QDateEdit>(form, "dtpTo").date(), today) << "the day in view again";
}

TEST_F(SpanUi, WithoutFfmpegTheOperatorIsToldAndMayChooseOne) {
    w.process.installed = false;
    QDialog& form = open("mnuDaySaveFilm", "frmFilmFile");
    const auto& purpose = find<QLabel>(form, "lblPurpose");
    EXPECT_TRUE(purpose.text().contains("apt-get install ffmpeg")) << purpose.text().toStdString();
    const auto program = w.folder.path() / "ffmpeg of mine";
    writeFile(program, "a program");
    click(form, "cmdFfmpeg");
    auto* dialog = form.findChild<QFileDialog*>();
    ASSERT_NE(dialog, nullptr);
    emit dialog->fileSelected(toQString(program));
    delete dialog;
    EXPECT_TRUE(purpose.text().contains("ffmpeg of mine")) << purpose.text().toStdString();
    EXPECT_EQ(w.store.values["Station/Ffmpeg"], utf8FromPath(program));
}

/// The program may be closed at any moment; the work ends with it.
TEST_F(SpanUi, WorkDoesNotKeepTheStationBusy) {
    QDialog& form = open("mnuCopiesAnew", "frmCopiesAnew");
    choose(form, today.addDays(-2), today);
    click(form, "cmdStart");
    w.clock.run(30ms);
    EXPECT_TRUE(w.copies.running);
    EXPECT_FALSE(w.busy.active());
    EXPECT_TRUE(w.main.findChild<QAction*>("mnuFileOpen")->isEnabled());
}

} // namespace
} // namespace orvane::test

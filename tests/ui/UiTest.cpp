#include "tests/support/TestWindow.h"
#include "ui/Text.h"
#include "ui/dialogs/FrmSave.h"
#include "ui/dialogs/Frm_AutoStart.h"
#include "ui/dialogs/Frm_massege.h"
#include "ui/dialogs/QtOperator.h"
#include "ui/panel/FolderView.h"

#include <QCheckBox>
#include <QLabel>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QToolButton>
#include <gtest/gtest.h>

namespace orvane::test {
namespace {

/// A check box reacts on its box and text only, not on the rest of its rectangle.
void tick(const QWidget& form, const char* name) {
    QTest::mouseClick(&find<QCheckBox>(form, name), Qt::LeftButton, {}, QPoint(8, 8));
}
bool writePicture(const std::filesystem::path& file, Qt::GlobalColor colour,
                  QSize size = {64, 48}) {
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(colour);
    return picture.save(toQString(file), "JPEG");
}

class Ui : public testing::Test {
  protected:
    JumpingClock clock{at(2006, 11, 15)};
    FakeOperator op{clock};
};

TEST_F(Ui, TypingReachesValueAndSpinner) {
    Window w(op);
    auto& hour = find<QLineEdit>(w.main, "Text1_0");
    EXPECT_EQ(hour.text(), "9");
    type(hour, "21");
    EXPECT_EQ(w.panel.Text1[0].text.get(), "21");
    EXPECT_EQ(w.panel.UpDown1[0].value, 21);
    click(find<QToolButton>(find<QWidget>(w.main, "UpDown1_0"), "up"));
    QTest::keyClick(&hour, Qt::Key_Up);
    EXPECT_EQ(hour.text(), "23");
    QTest::keyClick(&hour, Qt::Key_Up);
    EXPECT_EQ(w.panel.Text1[0].text.get(), "23") << "no hour is beyond 23";
    w.panel.UpDown1[0].enabled = false;
    QTest::keyClick(&hour, Qt::Key_Down);
    EXPECT_EQ(hour.text(), "23") << "a locked spinner does not step by key";
}

TEST_F(Ui, LeavingAFieldEmptiesAValueOutOfRange) {
    Window w(op);
    auto& minute = find<QLineEdit>(w.main, "Text1_1");
    type(minute, "60");
    EXPECT_EQ(w.panel.Text1[1].text.get(), "60");
    QTest::keyClick(&minute, Qt::Key_Tab);
    EXPECT_EQ(minute.text(), "");
    EXPECT_EQ(w.panel.Text1[1].text.get(), "");
}

TEST_F(Ui, TabFollowsTheLayout) {
    Window w(op);
    const std::vector<const char*> pages[] = {
        {"Text1_0", "Text1_1", "Text1_2", "Text1_3", "Text1_4", "Text1_5", "Text1_6", "chk_auto",
         "chk_time", "chk_sun", "Dir1_0", "Command3", "txt_lat", "txt_long", "txt_tz"},
        {"txtIp", "txtPort", "Command5", "Command7", "Command8", "chkLive", "Command4",
         "cmd_Download", "chk_fill"},
        {"Dir1_1", "txt_find", "cmd_find", "lst_found"}};
    auto& tabs = find<QTabWidget>(w.main, "pages");
    for (int page = 0; page < tabs.count(); ++page) {
        tabs.setCurrentIndex(page);
        QWidget* control = tabs.tabBar();
        control->setFocus();
        for (const char* next : pages[page]) {
            QTest::keyClick(control, Qt::Key_Tab);
            control = w.main.focusWidget();
            ASSERT_EQ(control->objectName().toStdString(), next)
                << control->metaObject()->className();
        }
    }
}

TEST_F(Ui, WidgetsFollowValues) {
    Window w(op);
    w.panel.Label7.caption = "撮影中";
    EXPECT_EQ(find<QLabel>(w.main, "Label7").text(), "撮影中");
    w.panel.chk_time.ticked = false;
    EXPECT_FALSE(find<QCheckBox>(w.main, "chk_time").isChecked());
    w.panel.txtIp.text = "camera";
    EXPECT_EQ(find<QLineEdit>(w.main, "txtIp").text(), "camera");
    w.panel.Frame3[1].enabled = false;
    EXPECT_FALSE(find<QWidget>(w.main, "Command3").isEnabled());
    w.panel.Frame3[1].enabled = true;
    w.panel.Dir1[0].enabled = false;
    EXPECT_FALSE(find<QWidget>(w.main, "Dir1_0").isEnabled());
    EXPECT_TRUE(find<QWidget>(w.main, "Command3").isEnabled());
}

TEST_F(Ui, EveryControlOfThePanelIsThere) {
    Window w(op);
    const char* names[] = {"chk_auto",  "chk_time",   "chkLive",      "Command1",   "Command2",
                           "Command3",  "Command5",   "Command7",     "Command8",   "Dir1_0",
                           "Frame3_1",  "txtIp",      "txtPort",      "txt_lat",    "txt_long",
                           "txt_tz",    "Label7",     "Label11",      "Label12",    "Label13",
                           "lbl_free",  "Text1_6",    "lbl_sunrise",  "lbl_sunset", "UpDown1_6",
                           "Command4",  "Command6",   "cmd_Download", "lbl_dlcnt",  "lbl_sync",
                           "chk_fill",  "Dir1_1",     "txt_find",     "cmd_find",   "lst_found",
                           "lbl_found", "sgn_status", "chk_sun",      "lbl_window"};
    auto& tabs = find<QTabWidget>(w.main, "pages");
    for (const char* name : names) {
        const auto found = w.main.operation().findChildren<QWidget*>(name);
        ASSERT_EQ(found.size(), 1) << name;
        int page = 0;
        while (page < tabs.count() && !found[0]->isVisible())
            tabs.setCurrentIndex(page++);
        EXPECT_TRUE(found[0]->isVisible()) << name;
        EXPECT_FALSE(found[0]->toolTip().isEmpty() && found[0]->accessibleName().isEmpty()) << name;
    }
}

TEST_F(Ui, RecordingButtonsAndLocks) {
    Window w(op);
    click(w.main, "Command1");
    EXPECT_TRUE(w.module.RecordFlg);
    EXPECT_FALSE(find<QWidget>(w.main, "Command1").isEnabled());
    EXPECT_TRUE(find<QWidget>(w.main, "Command2").hasFocus());
    EXPECT_FALSE(find<QWidget>(w.main, "Text1_5").isEnabled());
    click(w.main, "Command2");
    EXPECT_FALSE(w.module.RecordFlg);
    tick(w.main, "chk_auto");
    EXPECT_FALSE(find<QWidget>(w.main, "Text1_0").isEnabled());
    EXPECT_TRUE(find<QWidget>(w.main, "Text1_6").isEnabled());
    tick(w.main, "chk_time");
    EXPECT_EQ(w.module.AdjTime, 1);
    find<QTabWidget>(w.main, "pages").setCurrentIndex(1);
    tick(w.main, "chkLive");
    EXPECT_TRUE(w.panel.chkLive.ticked);
    click(w.main, "Command7");
    ASSERT_EQ(w.switches.urls.size(), 1u);
    EXPECT_EQ(w.switches.urls[0], "http://192.168.0.10:80/cgi/live_s_hide2.cgi?rec=0");
}

TEST_F(Ui, TheSunTakesTheTimeFieldsPlace) {
    Window w(op);
    tick(w.main, "chk_sun");
    for (const char* name : {"Text1_0", "UpDown1_1", "Text1_2", "UpDown1_3"})
        EXPECT_FALSE(find<QWidget>(w.main, name).isEnabled()) << name;
    EXPECT_TRUE(find<QWidget>(w.main, "Text1_5").isEnabled());
    EXPECT_EQ(find<QLineEdit>(w.main, "Text1_0").text(), "9") << "what was typed stays";
    const auto& window = find<QLabel>(w.main, "lbl_window");
    EXPECT_TRUE(window.text().startsWith("today 05:")) << window.text().toStdString();
    tick(w.main, "chk_sun");
    EXPECT_TRUE(find<QWidget>(w.main, "Text1_0").isEnabled());
    EXPECT_EQ(window.text(), "");
}

TEST_F(Ui, AZoneThatDoesNotFitIsPointedOutWhenItsFieldIsLeft) {
    Window w(op);
    const auto& told = find<QLabel>(w.main, "lbl_zone");
    EXPECT_FALSE(told.isVisible()) << "no room is taken";
    auto& longitude = find<QLineEdit>(w.main, "txt_long");
    type(longitude, "-70");
    EXPECT_FALSE(told.isVisible());
    QTest::keyClick(&longitude, Qt::Key_Tab);
    EXPECT_TRUE(told.isVisible());
    EXPECT_EQ(told.text(),
              "Zone 9 does not fit longitude -70: the sun times will be wrong by hours.");
}

TEST_F(Ui, SiteFieldIsMarkedUntilItIsANumber) {
    Window w(op);
    auto& latitude = find<QLineEdit>(w.main, "txt_lat");
    type(latitude, "-");
    EXPECT_FALSE(latitude.property("valid").toBool());
    EXPECT_EQ(w.module.site.latitude, 35.738);
    QTest::keyClicks(&latitude, "12.5");
    EXPECT_TRUE(latitude.property("valid").toBool());
    EXPECT_EQ(w.module.site.latitude, -12.5);
    type(latitude, "north");
    QTest::keyClick(&latitude, Qt::Key_Tab);
    EXPECT_EQ(latitude.text(), "-12.5");
    EXPECT_TRUE(latitude.property("valid").toBool());
}

TEST_F(Ui, FolderListWalksAndStores) {
    Window w(op);
    std::filesystem::create_directory(w.dataFolder() / "夏");
    auto& list = find<FolderView>(w.main, "Dir1_0");
    list.setFocus();
    ASSERT_EQ(list.count(), 2);
    list.setCurrentRow(1);
    QTest::keyClick(&list, Qt::Key_Return);
    EXPECT_EQ(w.panel.Dir1[0].path.get(), w.dataFolder() / "夏");
    EXPECT_EQ(w.store.values["DataPath/PathDataFile"], utf8FromPath(w.dataFolder() / "夏"));
    const QPoint parent = list.visualItemRect(list.item(0)).center();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, parent);
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, parent);
    EXPECT_EQ(w.panel.Dir1[0].path.get(), w.dataFolder());
    w.panel.Dir1[0].enabled = false;
    std::filesystem::create_directory(w.dataFolder() / "20061115"); // while recording
    w.panel.Dir1[0].enabled = true;
    EXPECT_EQ(list.count(), 3);
    w.panel.Dir1[0].path = std::filesystem::path("/nowhere/at/all");
    ASSERT_EQ(list.count(), 2);
    EXPECT_EQ(list.item(1)->text(), "(folder not available: choose another one)");
}

TEST_F(Ui, ADayOfTheFolderListOpensInTheBand) {
    Window w(op);
    for (const char* name : {"20061113", "Edit", "20061340"})
        std::filesystem::create_directory(w.dataFolder() / name);
    auto& list = find<FolderView>(w.main, "Dir1_0");
    list.setPath(w.dataFolder());
    list.setFocus();
    const auto enter = [&](int row) {
        list.setCurrentRow(row);
        QTest::keyClick(&list, Qt::Key_Return);
    };
    enter(1);
    EXPECT_EQ(w.shownDay.day(), std::chrono::floor<std::chrono::days>(at(2006, 11, 13)));
    EXPECT_EQ(w.panel.Dir1[0].path.get(), w.dataFolder()) << "it stays the data folder";
    w.op.answer = false;
    enter(3);
    ASSERT_EQ(w.op.asked.size(), 1U);
    w.clock.run(2s);
    EXPECT_EQ(w.panel.Dir1[0].path.get(), w.dataFolder());
    enter(2);
    EXPECT_EQ(w.panel.Dir1[0].path.get(), w.dataFolder() / "20061340") << "no day of any calendar";
    EXPECT_EQ(w.op.asked.size(), 1U);
}

TEST_F(Ui, AQuestionWithDoubtIsAnsweredNoByEnterAndEscape) {
    QtOperator asked(clock);
    for (const auto& [key, expected] :
         {std::pair(Qt::Key_Return, false), std::pair(Qt::Key_Escape, false),
          std::pair(Qt::Key_unknown, true)}) {
        Task<bool> question = asked.confirm("Sure?");
        question.start();
        QMessageBox* box = openBox();
        ASSERT_NE(box, nullptr);
        ASSERT_TRUE(QTest::qWaitForWindowActive(box));
        if (expected) {
            click(*box->button(QMessageBox::Yes));
        } else {
            QTest::keyClick(box, key);
        }
        clock.run(1s);
        ASSERT_TRUE(question.done());
        EXPECT_EQ(question.result(), expected);
    }
}

TEST_F(Ui, FolderListIsBounded) {
    TempFolder folder;
    for (int i = 0; i <= 500; ++i)
        std::filesystem::create_directory(folder.path() / std::to_string(i));
    FolderView list;
    list.setPath(folder.path());
    EXPECT_EQ(list.count(), 1 + 500 + 1);
}

TEST_F(Ui, SaveOptionsSelectQuality) {
    const std::pair<std::int16_t, const char*> cases[] = {
        {2, "Option1"}, {9, "Option1"}, {10, "Option2"}, {49, "Option2"}, {50, "Option3"}};
    for (const auto& [quality, name] : cases) {
        ImageOptions options;
        options.Quality = quality;
        FrmSave form(options);
        show(form);
        EXPECT_TRUE(find<QRadioButton>(form, name).isChecked()) << quality;
        click(form, "Command1");
        EXPECT_EQ(options.Quality, quality) << "OK alone changes nothing";
    }
    ImageOptions options;
    FrmSave form(options);
    show(form);
    QTest::mouseClick(&find<QRadioButton>(form, "Option3"), Qt::LeftButton, {}, QPoint(8, 8));
    EXPECT_EQ(options.Quality, 56);
    click(form, "Command2");
    EXPECT_EQ(options.Quality, 56) << "Cancel does not undo it";
}

TEST_F(Ui, DateStampNeedsMirroring) {
    ImageOptions options;
    options.DateFlg = -1;
    FrmSave form(options);
    show(form);
    auto& date = find<QCheckBox>(form, "chk_date");
    EXPECT_EQ(options.DateFlg, 0) << "cleared as soon as the dialog opens";
    EXPECT_FALSE(date.isEnabled());
    tick(form, "chk_lr");
    tick(form, "chk_date");
    EXPECT_TRUE(date.isChecked());
    tick(form, "chk_lr");
    EXPECT_FALSE(date.isChecked());
    tick(form, "chk_lr");
    tick(form, "chk_date");
    EXPECT_EQ(options.LrFlg, 0);
    click(form, "Command1");
    EXPECT_EQ(options.LrFlg, -1);
    EXPECT_EQ(options.DateFlg, -1);
    EXPECT_EQ(options.RawFlg, 0);
    EXPECT_FALSE(form.isVisible());
}

TEST_F(Ui, UnknownSaveFormatStays) {
    ImageOptions options;
    options.JpegTyp = 20;
    FrmSave form(options);
    show(form);
    EXPECT_FALSE(find<QRadioButton>(form, "opt_type_0").isChecked());
    EXPECT_FALSE(find<QRadioButton>(form, "opt_type_1").isChecked());
    click(form, "Command1");
    EXPECT_EQ(options.JpegTyp, 20);
}

TEST_F(Ui, DelayIsA16BitNumber) {
    const std::tuple<const char*, bool, int> cases[] = {
        {"20", true, 20},       {"2.5", true, 2},     {"-1", true, -1}, {"３０", true, 30},
        {"32767", true, 32767}, {"32768", false, 15}, {"", false, 15},  {"five", false, 15}};
    for (const auto& [text, taken, delay] : cases) {
        ImageOptions options;
        FrmSave form(options);
        show(form);
        tick(form, "chk_save");
        find<QLineEdit>(form, "txt_delay").setText(text);
        click(form, "Command1");
        EXPECT_EQ(options.Delay, delay) << text;
        EXPECT_EQ(options.RawFlg, taken ? -1 : 0) << text;
        EXPECT_EQ(form.isVisible(), !taken) << text;
        EXPECT_EQ(openBox() != nullptr, !taken) << text;
    }
}

TEST_F(Ui, WarningOpensAndClosesByItself) {
    Warnings warnings{clock};
    Frm_massege form(warnings);
    EXPECT_FALSE(form.isVisible());
    warnings.set(Warnings::Cause::NoImage, "No image at 09:30 and 10:00.");
    EXPECT_TRUE(form.isVisible());
    EXPECT_FALSE(form.isModal());
    EXPECT_EQ(form.windowTitle(), "Warning");
    click(form, "Command1");
    EXPECT_FALSE(form.isVisible());
    warnings.set(Warnings::Cause::DiskSpace, "Little space.");
    EXPECT_TRUE(form.isVisible()) << "a new text opens it again";
    const QString text = find<QLabel>(form, "Label1").text();
    EXPECT_TRUE(text.startsWith("No image at 09:30 and 10:00.\nCheck the camera's power"))
        << text.toStdString();
    EXPECT_TRUE(text.contains("\nLittle space.\nMove old days elsewhere"));
    warnings.clear(Warnings::Cause::NoImage);
    EXPECT_TRUE(form.isVisible());
    warnings.clear(Warnings::Cause::DiskSpace);
    EXPECT_FALSE(form.isVisible());
}

TEST_F(Ui, CountdownExits) {
    enum class Exit { None, MainLoop, End };
    const std::pair<std::function<void(Frm_AutoStart&)>, Exit> cases[] = {
        {[](auto& form) { click(form, "Command1"); }, Exit::MainLoop},
        {[](auto& form) { click(form, "Command2"); }, Exit::End},
        {[](auto& form) { form.close(); }, Exit::MainLoop},
        {[](auto& form) { QTest::keyClick(&form, Qt::Key_Escape); }, Exit::MainLoop},
        {[this](auto&) { clock.run(99 * 105ms); }, Exit::MainLoop}};
    for (const auto& [act, expected] : cases) {
        Module1 module;
        FakeStore store;
        Exit exit = Exit::None;
        Frm_AutoStart* form = nullptr;
        AutoStart autoStart(module, store, clock,
                            {[&] { form->closeDialog(); }, [&] { exit = Exit::MainLoop; },
                             [&] { exit = Exit::End; }},
                            noFault);
        Frm_AutoStart dialog(autoStart);
        form = &dialog;
        show(dialog);
        clock.run(10 * 105ms);
        EXPECT_EQ(find<QProgressBar>(dialog, "PBar1").value(), 90);
        act(dialog);
        EXPECT_EQ(exit, expected);
        EXPECT_FALSE(dialog.isVisible());
    }
}

TEST_F(Ui, ThumbnailsAreDecodedOnce) {
    TempFolder folder;
    LibjpegImageControl control(clock);
    PictureLoader loader(clock, control);
    ThumbnailStrip strip(loader, noFault);
    ThumbnailHistory history;
    const auto file = [&](int hour) {
        return folder.path() / ("20061115_" + std::to_string(hour) + "3000_00.jpg");
    };
    for (int i = 0; i < 10; ++i) {
        history[static_cast<std::size_t>(i)] = file(20 - i);
        ASSERT_TRUE(writePicture(file(20 - i), Qt::red, {800, 600}));
    }
    strip.showHistory(history);
    clock.run(1s);
    auto& newest = find<Thumbnail>(strip, "thumbnail_0");
    EXPECT_LE(newest.picture().width(), 100) << "kept small";

    // The known pictures are gone from the disk: only pictures kept in memory can still be shown.
    for (int i = 0; i < 10; ++i)
        std::filesystem::remove(file(20 - i));
    std::move_backward(history.begin(), history.end() - 1, history.end());
    history[0] = file(21);
    ASSERT_TRUE(writePicture(file(21), Qt::blue));
    strip.showHistory(history);
    clock.run(1s);
    EXPECT_EQ(loader.decodeCount(), 11);
    EXPECT_EQ(strip.findChildren<Thumbnail*>().size(), 10);
    EXPECT_GT(newest.picture().toImage().pixelColor(5, 5).blue(), 200);
    for (int i = 1; i < 10; ++i) {
        auto& frame = find<Thumbnail>(strip, ("thumbnail_" + std::to_string(i)).c_str());
        ASSERT_FALSE(frame.picture().isNull()) << i;
        EXPECT_GT(frame.picture().toImage().pixelColor(5, 5).red(), 200) << i;
    }
    EXPECT_EQ(newest.findChildren<QLabel*>().last()->text(), "21:30");

    std::filesystem::path opened;
    QObject::connect(&strip, &ThumbnailStrip::opened, [&](const auto& path) { opened = path; });
    QTest::mouseDClick(&newest, Qt::LeftButton);
    EXPECT_EQ(opened, file(21));
}

TEST_F(Ui, PictureWindows) {
    Window w(op);
    const auto count = [&] { return w.main.findChildren<ImageWindow*>().size(); };
    const auto picture = w.dataFolder() / "20061115_093000_00.jpg";
    ASSERT_TRUE(writePicture(picture, Qt::green, {4000, 3000}));
    find<QLineEdit>(w.main, "txtIp").setFocus();
    w.pictures.showLatest(picture);
    EXPECT_TRUE(find<QLineEdit>(w.main, "txtIp").hasFocus()) << "nobody is disturbed while typing";
    w.pictures.showLive("no picture");
    w.pictures.showLatest(picture);
    w.clock.run(1s);
    ASSERT_EQ(count(), 1);
    auto* latest = w.main.findChild<ImageWindow*>("frmLatest");
    EXPECT_LE(latest->view().picture().width(), QGuiApplication::primaryScreen()->size().width());
    EXPECT_TRUE(latest->hasPicture());

    delete latest->parentWidget();
    w.pictures.showLatest(picture);
    EXPECT_EQ(count(), 0) << "a closed latest-image window stays closed";
    w.main.findChild<QAction*>("mnuFileLatest")->trigger();
    EXPECT_EQ(count(), 1);
    EXPECT_TRUE(w.main.findChild<ImageWindow*>("frmLatest")->view().hasFocus()) << "asked for";
    w.pictures.openImage(w.dataFolder() / "gone.jpg");
    w.pictures.openImage(w.dataFolder() / "gone.jpg");
    EXPECT_EQ(count(), 2) << "one window for each file";
}

} // namespace
} // namespace orvane::test

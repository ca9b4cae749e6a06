#include "tests/support/TestPictures.h"
#include "tests/support/TestWindow.h"
#include "ui/Text.h"
#include "ui/WishBar.h"

#include <QDropEvent>
#include <QLabel>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QMimeData>
#include <QUrl>

namespace orvane::test {
namespace {

/// Pictures opened by drops, on the whole screen, and cut by keys.
class PictureScreen : public testing::Test {
  protected:
    std::filesystem::path write(const std::string& name, int width = 640, int height = 480) {
        const auto file = w.dataFolder() / name;
        writeFile(file, encoded(gradient(width, height)));
        return file;
    }
    ImageWindow& open(const std::filesystem::path& file) {
        w.pictures.openFiled(file);
        w.clock.run(1s);
        return *windows().last();
    }
    QList<ImageWindow*> windows() { return w.main.findChildren<ImageWindow*>("frmImage"); }
    PictureArea& area() { return *w.main.findChild<PictureArea*>(); }
    void trigger(const char* name) {
        w.main.findChild<QAction*>(name)->trigger();
        QTest::qWait(1);
    }
    void key(QWidget& widget, Qt::Key code, Qt::KeyboardModifiers keys = {}) {
        QTest::keyClick(&widget, code, keys);
        QTest::qWait(1);
    }
    static QString status(const ImageWindow& window) {
        return find<QLabel>(window, "imageStatus").text();
    }
    /// Drags files over the main window and lets go of them; whether its cursor welcomed them.
    bool drop(const std::vector<std::filesystem::path>& files) {
        QMimeData data;
        QList<QUrl> urls;
        for (const auto& file : files)
            urls << QUrl::fromLocalFile(toQString(file));
        data.setUrls(urls);
        return drop(data);
    }
    bool drop(const QMimeData& data) {
        const Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction;
        QDragEnterEvent enter({100, 100}, offered, &data, Qt::LeftButton, {});
        QApplication::sendEvent(&w.main, &enter);
        QDropEvent let({100, 100}, offered, &data, Qt::LeftButton, {});
        QApplication::sendEvent(&w.main, &let);
        w.clock.run(1s);
        EXPECT_EQ(enter.isAccepted(), let.isAccepted());
        EXPECT_TRUE(!let.isAccepted() || let.dropAction() == Qt::CopyAction);
        return enter.isAccepted();
    }

    JumpingClock operatorClock{at(2006, 11, 15)};
    FakeOperator op{operatorClock};
    Window w{op};
};

TEST_F(PictureScreen, DroppedPicturesOpenAndOthersAreToldOnce) {
    const auto first = write("20061115_093000_00.jpg");
    EXPECT_TRUE(drop({first, write("b.JPEG")}));
    ASSERT_EQ(windows().size(), 2);
    EXPECT_EQ(windows().first()->windowTitle(), "15 Nov 2006 09:30");
    EXPECT_TRUE(op.told.empty());
    std::vector<std::filesystem::path> files{write("c.jpg")};
    std::filesystem::create_directory(w.dataFolder() / "day.jpg");
    for (const char* name : {"day.jpg", "1.txt", "2.png", "3.txt", "4.txt", "5.txt", "6.txt"})
        files.push_back(w.dataFolder() / name);
    EXPECT_TRUE(drop(files));
    EXPECT_EQ(windows().size(), 3);
    EXPECT_EQ(op.told, (std::vector<std::string>{
                           "Only JPEG pictures (.jpg, .jpeg) can be dropped here.\n"
                           "Not opened: day.jpg, 1.txt, 2.png, 3.txt, 4.txt and 2 more."}));
}

TEST_F(PictureScreen, DropsAreRefusedWhileOpenIsNotAvailable) {
    const auto file = write("a.jpg");
    {
        const Busy::Hold busy(w.busy);
        EXPECT_FALSE(drop({file}));
    }
    QMimeData text;
    text.setText("a.jpg");
    EXPECT_FALSE(drop(text));
    QMimeData page;
    page.setUrls({QUrl("http://192.168.0.10/Images/full.jpg")});
    EXPECT_FALSE(drop(page));
    EXPECT_TRUE(windows().isEmpty());
    EXPECT_TRUE(drop({file}));
}

TEST_F(PictureScreen, FullScreenShowsThePictureAloneAndGivesAllBack) {
    QAction& entry = *w.main.findChild<QAction*>("mnuViewFullScreen");
    EXPECT_FALSE(entry.isEnabled()) << "there is no picture";
    write("b.jpg");
    ImageWindow& picture = open(write("a.jpg"));
    const QRect place = picture.parentWidget()->geometry();
    const QRect mainPlace = w.main.geometry();
    const QRect frame = w.main.frameGeometry();
    auto& panel = w.main.operation();
    key(picture.view(), Qt::Key_F11);
    EXPECT_TRUE(w.main.isFullScreen());
    EXPECT_FALSE(panel.isVisible());
    EXPECT_EQ(w.main.menuBar()->height(), 0);
    EXPECT_EQ(picture.view().width(), w.main.width());
    EXPECT_EQ(w.main.place()->width, frame.width()) << "as it would be stored";
    key(picture.view(), Qt::Key_PageDown);
    EXPECT_EQ(picture.windowTitle(), "b.jpg");
    key(picture.view(), Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(status(picture), "This is the folder's last picture.") << "a key of the menu";
    key(picture.view(), Qt::Key_Escape);
    EXPECT_FALSE(w.main.isFullScreen());
    EXPECT_TRUE(panel.isVisible());
    EXPECT_GT(w.main.menuBar()->height(), 0);
    EXPECT_EQ(w.main.geometry(), mainPlace);
    EXPECT_EQ(picture.parentWidget()->geometry(), place);
    trigger("mnuViewFullScreen");
    EXPECT_TRUE(entry.isChecked());
    key(picture.view(), Qt::Key_F11);
    EXPECT_FALSE(w.main.isFullScreen());
    EXPECT_FALSE(entry.isChecked());
}

TEST_F(PictureScreen, FullScreenFollowsTheLatestImageAndEndsWithTheLastWindow) {
    w.pictures.showLatest(write("20061115_090000_00.jpg"));
    w.clock.run(1s);
    auto& latest = *w.main.findChild<LatestWindow*>("frmLatest");
    trigger("mnuViewFullScreen");
    const Scope capturing(w.module.capturing);
    w.pictures.showLatest(write("20061115_093000_00.jpg"));
    w.clock.run(1s);
    EXPECT_EQ(latest.windowTitle(), "Latest Image: 15 Nov 2006 09:30");
    EXPECT_TRUE(w.main.isFullScreen());
    ThumbnailHistory history;
    history[0] = w.dataFolder() / "20061115_093000_00.jpg";
    w.pictures.refreshThumbnails(history);
    const auto& strip = *w.main.findChild<ThumbnailStrip*>();
    EXPECT_FALSE(strip.isVisible()) << "also with a new picture in it";
    trigger("mnuEditTrim");
    key(latest.view(), Qt::Key_Escape);
    EXPECT_TRUE(w.main.isFullScreen()) << "the rectangle goes first";
    ImageWindow& other = open(write("a.jpg"));
    QTest::qWait(1);
    EXPECT_TRUE(w.main.isFullScreen());
    EXPECT_EQ(other.view().width(), w.main.width()) << "takes its place";
    key(other.view(), Qt::Key_F11);
    EXPECT_TRUE(area().viewport()->rect().contains(other.parentWidget()->geometry()))
        << "opened on the whole screen, it fits into the window";
    key(other.view(), Qt::Key_F11);
    trigger("mnuWindowCloseAll");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(w.main.isFullScreen());
    EXPECT_TRUE(w.main.operation().isVisible());
    EXPECT_TRUE(strip.isVisible());
}

TEST_F(PictureScreen, TilesKeepTheirPlacesUntilOneIsMoved) {
    for (const char* name : {"a.jpg", "b.jpg", "c.jpg"})
        open(write(name));
    area().currentSubWindow()->showMaximized();
    trigger("mnuWindowTile");
    const auto covered = [&] {
        int pixels = 0;
        for (const QMdiSubWindow* frame : area().subWindowList())
            pixels += frame->width() * frame->height();
        return pixels;
    };
    const auto room = [&] { return area().viewport()->width() * area().viewport()->height(); };
    EXPECT_EQ(covered(), room());
    w.main.resize(w.main.size() + QSize(120, 60));
    QTest::qWait(1);
    EXPECT_EQ(covered(), room());
    QMdiSubWindow& moved = *area().subWindowList().first();
    const QRect elsewhere = moved.geometry().adjusted(0, 0, -10, -10);
    moved.setGeometry(elsewhere);
    w.main.resize(w.main.size() + QSize(50, 50));
    QTest::qWait(1);
    EXPECT_EQ(moved.geometry(), elsewhere);
}

TEST_F(PictureScreen, KeysMoveAndSizeTheRectangle) {
    ImageWindow& window = open(write("a.jpg", 800, 600));
    PictureView& view = window.view();
    trigger("mnuEditTrim");
    ASSERT_EQ(view.rectangle(), QRect(200, 150, 400, 300)) << "the middle half";
    EXPECT_TRUE(status(window).startsWith(QString::fromUtf8("400 × 300 pixels at 200, 150 marked")))
        << status(window).toStdString();
    struct Press {
        Qt::Key code;
        Qt::KeyboardModifiers keys;
        int times;
        QRect rectangle;
    };
    const Press presses[] = {
        {Qt::Key_Right, {}, 1, {201, 150, 400, 300}},
        {Qt::Key_Up, Qt::ControlModifier, 2, {201, 110, 400, 300}},
        {Qt::Key_Left, Qt::ShiftModifier, 3, {201, 110, 397, 300}},
        {Qt::Key_Down, Qt::ShiftModifier | Qt::ControlModifier, 1, {201, 110, 397, 320}},
        {Qt::Key_Up, Qt::ControlModifier, 20, {201, 0, 397, 320}},
        {Qt::Key_Right, Qt::ControlModifier, 30, {403, 0, 397, 320}},
        {Qt::Key_Right, Qt::ShiftModifier, 5, {403, 0, 397, 320}},
        {Qt::Key_Left, Qt::ShiftModifier | Qt::ControlModifier, 30, {403, 0, 2, 320}},
    };
    for (const Press& press : presses) {
        for (int i = 0; i < press.times; ++i)
            key(view, press.code, press.keys);
        EXPECT_EQ(view.rectangle(), press.rectangle) << status(window).toStdString();
    }
    key(view, Qt::Key_Escape);
    EXPECT_TRUE(view.rectangle().isNull());
    trigger("mnuEditTrim");
    EXPECT_EQ(view.rectangle(), QRect(403, 0, 2, 320)) << "the last one again";
    key(view, Qt::Key_Return);
    ASSERT_EQ(windows().size(), 2);
    w.clock.run(1s);
    EXPECT_EQ(windows().last()->view().pictureSize(), QSize(2, 320));
}

TEST_F(PictureScreen, TheMovedEdgeStaysInSight) {
    ImageWindow& window = open(write("a.jpg", 2400, 1800));
    PictureView& view = window.view();
    key(view, Qt::Key_1);
    w.clock.run(1s);
    trigger("mnuEditTrim");
    const auto seen = [&] { return view.geometryOfView().visiblePart(); };
    EXPECT_TRUE(seen().contains(view.rectangle())) << "begins where one looks";
    const auto press = [&](Qt::Key code, Qt::KeyboardModifiers keys) {
        for (int i = 0; i < 60; ++i)
            key(view, code, keys | Qt::ControlModifier);
    };
    press(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_GT(seen().right(), view.rectangle().right());
    EXPECT_LT(seen().left(), view.rectangle().right());
    press(Qt::Key_Left, {});
    EXPECT_EQ(view.rectangle().left(), 0);
    EXPECT_DOUBLE_EQ(seen().left(), 0);
    press(Qt::Key_Down, {});
    EXPECT_GT(seen().bottom(), view.rectangle().bottom());
    EXPECT_DOUBLE_EQ(seen().left(), 0) << "only along the way";
}

} // namespace
} // namespace orvane::test

#include "tests/ui/WindowTest.h"

#include <QDropEvent>
#include <QMenuBar>
#include <QMimeData>

namespace orvane::test {
namespace {

/// Pictures opened by drops, on the whole screen, and cut by keys.
class PictureScreen : public WindowTest {
  protected:
    /// Lets a drag go over the main window; whether its cursor welcomed it.
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
    bool drop(const QList<QUrl>& urls) {
        QMimeData data;
        data.setUrls(urls);
        return drop(data);
    }
    QUrl urlOf(const char* name) const {
        return QUrl::fromLocalFile(toQString(w.dataFolder() / name));
    }
    void key(QWidget& widget, Qt::Key code, Qt::KeyboardModifiers keys = {}) {
        QTest::keyClick(&widget, code, keys);
        QTest::qWait(1);
    }
    void run(const char* entry) {
        trigger(entry);
        QTest::qWait(1);
    }
};

TEST_F(PictureScreen, DroppedPicturesOpenAndOthersAreToldOnce) {
    for (const char* name : {"a.jpg", "b.JPEG", "c.jpg"})
        write(name);
    QMimeData text;
    text.setText("a.jpg");
    EXPECT_FALSE(drop(text));
    EXPECT_FALSE(drop({QUrl("http://192.168.0.10/Images/full.jpg")}));
    {
        const Busy::Hold busy(w.busy);
        EXPECT_FALSE(drop({urlOf("a.jpg")})) << "no more than by the menu";
    }
    EXPECT_EQ(titles(), "");
    EXPECT_TRUE(drop({urlOf("a.jpg"), urlOf("b.JPEG")}));
    EXPECT_EQ(titles(), "a.jpg, b.JPEG");
    EXPECT_TRUE(op.told.empty());
    std::filesystem::create_directory(w.dataFolder() / "day.jpg");
    QList<QUrl> urls{urlOf("c.jpg")};
    for (const char* name : {"day.jpg", "1.txt", "2.png", "3.txt", "4.txt", "5.txt", "6.txt"})
        urls << urlOf(name);
    EXPECT_TRUE(drop(urls));
    EXPECT_EQ(titles(), "a.jpg, b.JPEG, c.jpg");
    EXPECT_EQ(op.told, (std::vector<std::string>{
                           "Only JPEG pictures (.jpg, .jpeg) can be dropped here.\n"
                           "Not opened: day.jpg, 1.txt, 2.png, 3.txt, 4.txt and 2 more."}));
}

TEST_F(PictureScreen, FullScreenShowsThePictureAloneAndGivesAllBack) {
    EXPECT_FALSE(action("mnuViewFullScreen").isEnabled()) << "there is no picture";
    write("b.jpg");
    ImageWindow& picture = openPicture(write("a.jpg", 640, 480));
    const QRect place = picture.parentWidget()->geometry();
    const QRect mainPlace = w.main.geometry();
    const QRect frame = w.main.frameGeometry();
    const auto expectFull = [&](bool full) {
        EXPECT_EQ(w.main.isFullScreen(), full);
        EXPECT_EQ(action("mnuViewFullScreen").isChecked(), full);
        EXPECT_EQ(w.main.operation().isVisible(), !full);
        EXPECT_EQ(w.main.menuBar()->height() > 0, !full);
        EXPECT_EQ(w.main.place()->width, frame.width()) << "as it would be stored";
        EXPECT_EQ(picture.view().width() == w.main.width(), full);
        EXPECT_EQ(picture.parentWidget()->geometry() == place, !full);
    };
    key(picture.view(), Qt::Key_F11);
    expectFull(true);
    key(picture.view(), Qt::Key_PageDown);
    EXPECT_EQ(picture.windowTitle(), "b.jpg");
    key(picture.view(), Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(textOf(picture, "imageStatus"), "This is the folder's last picture.") << "by a menu";
    key(picture.view(), Qt::Key_Escape);
    expectFull(false);
    EXPECT_EQ(w.main.geometry(), mainPlace);
    run("mnuViewFullScreen");
    expectFull(true);
    key(picture.view(), Qt::Key_F11);
    expectFull(false);
}

TEST_F(PictureScreen, FullScreenFollowsTheLatestImageAndEndsWithTheLastWindow) {
    w.pictures.showLatest(write("20061115_090000_00.jpg"));
    w.clock.run(1s);
    auto& latest = part<LatestWindow>("frmLatest");
    run("mnuViewFullScreen");
    const auto newest = write("20061115_093000_00.jpg");
    w.pictures.showLatest(newest);
    w.pictures.refreshThumbnails({newest});
    w.clock.run(1s);
    EXPECT_EQ(titles(), "Latest Image: 15 Nov 2006 09:30");
    EXPECT_TRUE(w.main.isFullScreen());
    EXPECT_FALSE(part("thumbnails").isVisible()) << "also with a new picture in it";
    run("mnuEditTrim");
    key(latest.view(), Qt::Key_Escape);
    EXPECT_TRUE(w.main.isFullScreen()) << "the rectangle goes first";
    ImageWindow& other = openPicture(write("a.jpg"));
    QTest::qWait(1);
    EXPECT_TRUE(w.main.isFullScreen());
    EXPECT_EQ(other.view().width(), w.main.width()) << "takes its place";
    key(other.view(), Qt::Key_F11);
    EXPECT_TRUE(area().viewport()->rect().contains(other.parentWidget()->geometry()))
        << "opened on the whole screen, it fits into the window";
    key(other.view(), Qt::Key_F11);
    run("mnuWindowCloseAll");
    clearAway();
    EXPECT_FALSE(w.main.isFullScreen());
    EXPECT_TRUE(w.main.operation().isVisible());
    EXPECT_TRUE(part("thumbnails").isVisible());
}

TEST_F(PictureScreen, TilesKeepTheirPlacesUntilOneIsMoved) {
    for (const char* name : {"a.jpg", "b.jpg", "c.jpg"})
        openPicture(write(name));
    area().currentSubWindow()->showMaximized();
    run("mnuWindowTile");
    for (int grown = 0; grown < 2; ++grown) {
        int covered = 0;
        for (const QMdiSubWindow* frame : area().subWindowList())
            covered += frame->width() * frame->height();
        EXPECT_EQ(covered, area().viewport()->width() * area().viewport()->height());
        w.main.resize(w.main.size() + QSize(120, 60));
        QTest::qWait(1);
    }
    QMdiSubWindow& moved = *area().subWindowList().first();
    const QRect elsewhere = moved.geometry().adjusted(0, 0, -10, -10);
    moved.setGeometry(elsewhere);
    w.main.resize(w.main.size() + QSize(50, 50));
    QTest::qWait(1);
    EXPECT_EQ(moved.geometry(), elsewhere);
}

TEST_F(PictureScreen, KeysMoveAndSizeTheRectangle) {
    PictureView& view = openPicture(write("a.jpg", 800, 600)).view();
    run("mnuEditTrim");
    const auto status = [this] { return textOf(*windows().first(), "imageStatus"); };
    EXPECT_TRUE(status().starts_with("400 × 300 pixels at 200, 150 marked")) << status();
    struct Press {
        Qt::Key code;
        Qt::KeyboardModifiers keys;
        int times;
        QRect rectangle;
    };
    const Qt::KeyboardModifiers shift = Qt::ShiftModifier, ctrl = Qt::ControlModifier;
    const Press presses[] = {
        {Qt::Key_Right, {}, 0, {200, 150, 400, 300}}, // the middle half
        {Qt::Key_Right, {}, 1, {201, 150, 400, 300}},
        {Qt::Key_Up, ctrl, 2, {201, 110, 400, 300}},
        {Qt::Key_Left, shift, 3, {201, 110, 397, 300}},
        {Qt::Key_Down, shift | ctrl, 1, {201, 110, 397, 320}},
        {Qt::Key_Up, ctrl, 20, {201, 0, 397, 320}},
        {Qt::Key_Right, ctrl, 30, {403, 0, 397, 320}},
        {Qt::Key_Right, shift, 5, {403, 0, 397, 320}},
        {Qt::Key_Left, shift | ctrl, 30, {403, 0, 2, 320}},
    };
    for (const Press& press : presses) {
        for (int i = 0; i < press.times; ++i)
            QTest::keyClick(&view, press.code, press.keys);
        EXPECT_EQ(view.rectangle(), press.rectangle) << status();
    }
    key(view, Qt::Key_Escape);
    EXPECT_TRUE(view.rectangle().isNull());
    run("mnuEditTrim");
    EXPECT_EQ(view.rectangle(), QRect(403, 0, 2, 320)) << "the last one again";
    key(view, Qt::Key_Return);
    w.clock.run(1s);
    ASSERT_EQ(windows().size(), 2);
    EXPECT_EQ(windows().last()->view().pictureSize(), QSize(2, 320));
}

TEST_F(PictureScreen, TheMovedEdgeStaysInSight) {
    PictureView& view = openPicture(write("a.jpg", 2400, 1800)).view();
    key(view, Qt::Key_1);
    w.clock.run(1s);
    run("mnuEditTrim");
    const auto seen = [&] { return view.geometryOfView().visiblePart(); };
    EXPECT_TRUE(seen().contains(view.rectangle())) << "begins where one looks";
    const auto press = [&](Qt::Key code, Qt::KeyboardModifiers keys) {
        for (int i = 0; i < 60; ++i)
            QTest::keyClick(&view, code, keys | Qt::ControlModifier);
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

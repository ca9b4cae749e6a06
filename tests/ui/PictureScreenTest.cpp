#include "tests/ui/WindowTest.h"
#include "ui/pictures/Tiles.h"

#include <QCommandLinkButton>
#include <QDropEvent>
#include <QMenuBar>
#include <QMimeData>

namespace orvane::test {
namespace {

/// Pictures opened by drops, on the whole screen, and cut by keys.
class PictureScreen : public WindowTest {
  protected:
    /// Lets a drag go over the main window; whether its cursor welcomed it.
    bool drop(const QList<QUrl>& urls, const QString& text = {}) {
        QMimeData data;
        data.setUrls(urls);
        data.setText(text);
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
    QUrl urlOf(const char* name) const {
        return QUrl::fromLocalFile(toQString(w.dataFolder() / name));
    }
    void grow() {
        w.main.resize(w.main.size() + QSize(120, 60));
        settle();
    }
};

TEST_F(PictureScreen, DroppedPicturesOpenAndOthersAreToldOnce) {
    for (const char* name : {"a.jpg", "b.JPEG", "c.jpg"})
        write(name);
    EXPECT_FALSE(drop({}, "a.jpg"));
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
    const auto& card = part("firstRun");
    EXPECT_TRUE(card.isVisible() && !action("mnuWindowCloseAll").isEnabled());
    w.pictures.showLatest(write("20061115_090000_00.jpg"));
    auto& latest = part<LatestWindow>("frmLatest");
    EXPECT_FALSE(card.isVisible()) << "it gives way to pictures";
    run("mnuViewFullScreen");
    const auto newest = write("20061115_093000_00.jpg");
    w.pictures.showLatest(newest);
    w.pictures.refreshThumbnails({newest});
    settle();
    EXPECT_EQ(titles(), "Latest Image: 15 Nov 2006 09:30");
    EXPECT_TRUE(w.main.isFullScreen());
    EXPECT_FALSE(part("thumbnails").isVisible()) << "also with a new picture in it";
    run("mnuEditTrim");
    key(latest.view(), Qt::Key_Escape);
    EXPECT_TRUE(w.main.isFullScreen()) << "the rectangle goes first";
    ImageWindow& other = openPicture(write("a.jpg"));
    settle();
    EXPECT_TRUE(w.main.isFullScreen());
    EXPECT_EQ(other.view().width(), w.main.width()) << "takes its place";
    key(other.view(), Qt::Key_F11);
    EXPECT_TRUE(area().viewport()->rect().contains(other.parentWidget()->geometry()))
        << "opened on the whole screen, it fits into the window";
    key(other.view(), Qt::Key_F11);
    run("mnuWindowCloseAll");
    clearAway();
    EXPECT_FALSE(w.main.isFullScreen());
    EXPECT_TRUE(part("thumbnails").isVisible() && card.isVisible());
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
        grow();
    }
    QMdiSubWindow& moved = *area().subWindowList().first();
    const QRect elsewhere = moved.geometry().adjusted(0, 0, -10, -10);
    moved.setGeometry(elsewhere);
    grow();
    EXPECT_EQ(moved.geometry(), elsewhere);
}

TEST_F(PictureScreen, KeysMoveAndSizeTheRectangle) {
    PictureView& view = openPicture(write("a.jpg", 800, 600)).view();
    run("mnuEditTrim");
    const auto status = [this] { return textOf(*windows().first(), "imageStatus"); };
    EXPECT_TRUE(status().starts_with("400 × 300 pixels at 200, 150 marked")) << status();
    const Qt::KeyboardModifiers shift = Qt::ShiftModifier, ctrl = Qt::ControlModifier;
    const std::tuple<int, Qt::Key, Qt::KeyboardModifiers, QRect> presses[] = {
        {0, Qt::Key_Right, {}, {200, 150, 400, 300}}, // the middle half
        {1, Qt::Key_Right, {}, {201, 150, 400, 300}},
        {2, Qt::Key_Up, ctrl, {201, 110, 400, 300}},
        {3, Qt::Key_Left, shift, {201, 110, 397, 300}},
        {1, Qt::Key_Down, shift | ctrl, {201, 110, 397, 320}},
        {20, Qt::Key_Up, ctrl, {201, 0, 397, 320}},
        {30, Qt::Key_Right, ctrl, {403, 0, 397, 320}},
        {5, Qt::Key_Right, shift, {403, 0, 397, 320}},
        {30, Qt::Key_Left, shift | ctrl, {403, 0, 2, 320}}};
    for (const auto& [times, code, keys, rectangle] : presses) {
        for (int i = 0; i < times; ++i)
            QTest::keyClick(&view, code, keys);
        EXPECT_EQ(view.rectangle(), rectangle) << status();
    }
    key(view, Qt::Key_Escape);
    EXPECT_TRUE(view.rectangle().isNull());
    run("mnuEditTrim");
    EXPECT_EQ(view.rectangle(), QRect(403, 0, 2, 320)) << "the last one again";
}

using FirstRunUi = WindowTest;

TEST_F(FirstRunUi, TheStepsAreLiveAndLeadToTheirControls) {
    const auto& card = part("firstRun");
    const auto& schedule = part<QCommandLinkButton>("cmd_first_3");
    w.main.resize(910, 512);
    QApplication::processEvents();
    EXPECT_TRUE(card.isVisible());
    for (const char* name : {"lbl_first", "cmd_first_1", "cmd_first_2", "cmd_first_3"}) {
        const QRect place(part(name).mapTo(&card, QPoint()), part(name).size());
        EXPECT_TRUE(card.rect().contains(place)) << name << " fits a small screen";
        EXPECT_GE(place.height(), part(name).heightForWidth(place.width())) << name;
    }
    EXPECT_EQ(text("lbl_first"), "Before pictures can be recorded");
    EXPECT_EQ(schedule.description(), "09:00 to 17:00 every 30 min");
    type(part<QLineEdit>("Text1_2"), "8");
    const qint64 sign = schedule.icon().cacheKey();
    w.clock.run(1s);
    EXPECT_EQ(schedule.description(), "You must be Start Time < End Time.");
    EXPECT_NE(schedule.icon().cacheKey(), sign);
    part("cmd_first_1").setFocus();
    QTest::keyClick(&part("cmd_first_1"), Qt::Key_Space);
    EXPECT_EQ(page(), 1);
    EXPECT_EQ(focusOf(w.main), "txtIp");
    click(w.main, "cmd_first_3");
    EXPECT_EQ(page(), 0);
    EXPECT_EQ(focusOf(w.main), "Text1_2");
    QTest::keyClick(&w.main, Qt::Key_2, Qt::AltModifier);
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return part("Command3").hasFocus(); }, 2000)); // it is seen pressed
    type(part<QLineEdit>("Text1_2"), "17");
    click(w.main, "Command1");
    w.clock.run(1s);
    EXPECT_FALSE(isOn("cmd_first_2")) << "locked while recording";
}

std::vector<Tile> windowsOf(std::size_t count, QSize picture = {640, 480}, QSize around = {0, 0}) {
    return std::vector<Tile>(count, Tile{picture, around, {100, 80}});
}

/// By hand: 3 in 900 x 300 are 300 x 225 each in one row, but 200 x 150 in two; 7 in 1200 x 900
/// are 400 x 300 each in three rows, but four of them only 300 x 225 in two. A frame's title and
/// status line cost rows more than columns.
TEST(Tiles, TakesTheGridWithTheLargestPictures) {
    const std::tuple<QSize, std::size_t, QSize, QSize, std::size_t> cases[] = {
        {{800, 600}, 1, {640, 480}, {0, 0}, 1},    {{600, 800}, 2, {640, 480}, {0, 0}, 2},
        {{900, 300}, 3, {640, 480}, {0, 0}, 1},    {{1200, 900}, 7, {640, 480}, {0, 0}, 3},
        {{800, 600}, 3, {300, 900}, {0, 0}, 1},    {{800, 600}, 3, {900, 300}, {0, 0}, 3},
        {{800, 640}, 2, {1600, 600}, {0, 0}, 2},   {{800, 640}, 2, {1600, 600}, {0, 240}, 1},
        {{1001, 701}, 24, {640, 480}, {10, 50}, 4}};
    for (const auto& [area, count, picture, around, rows] : cases) {
        SCOPED_TRACE(area.width());
        std::set<int> tops;
        QRegion all;
        int covered = 0;
        for (const QRect& place : tilesIn(area, windowsOf(count, picture, around))) {
            tops.insert(place.top());
            all += place;
            covered += place.width() * place.height();
        }
        EXPECT_EQ(tops.size(), rows) << count;
        EXPECT_EQ(all, QRegion(QRect({}, area))) << "without gaps";
        EXPECT_EQ(covered, area.width() * area.height()) << "or overlap";
    }
    const std::vector<QRect> columns{{0, 0, 400, 320}, {0, 320, 400, 320}, {400, 0, 400, 640}};
    EXPECT_EQ(tilesIn({800, 640}, windowsOf(3, {400, 320}, {0, 40})), columns);
    EXPECT_TRUE(tilesIn({800, 600}, {}).empty());
    const auto below = tilesIn({350, 200}, windowsOf(24)); // too small an area for them
    EXPECT_EQ(below.back().bottom(), 8 * 80 - 1);
    for (const QRect& place : below)
        EXPECT_TRUE(place.width() >= 100 && place.height() >= 80 && place.right() < 350);
}

} // namespace
} // namespace orvane::test

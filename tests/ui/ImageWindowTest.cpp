#include "tests/ui/WindowTest.h"

#include <QClipboard>
#include <QWheelEvent>

namespace orvane::test {
namespace {

/// Picture windows in the main window, driven by events.
class ImageWindows : public WindowTest {
  protected:
    void key(ImageWindow& window, Qt::Key code) { WindowTest::key(window.view(), code); }
    /// One notch at `at`, upwards for `up`.
    void wheel(ImageWindow& window, QPoint at, int up, Qt::KeyboardModifiers keys = {}) {
        QWheelEvent event(at, window.view().mapToGlobal(at), {}, {0, up * 120}, {}, keys,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&window.view(), &event);
        settle();
    }
    static void drag(ImageWindow& window, QPoint from, QPoint to, Qt::KeyboardModifiers keys = {}) {
        QTest::mousePress(&window.view(), Qt::LeftButton, keys, from);
        QMouseEvent move(QEvent::MouseMove, to, window.view().mapToGlobal(to), Qt::NoButton,
                         Qt::LeftButton, keys);
        QApplication::sendEvent(&window.view(), &move);
        QTest::mouseRelease(&window.view(), Qt::LeftButton, keys, to);
    }
    static std::string status(const ImageWindow& window) { return textOf(window, "imageStatus"); }
    static double zoom(const ImageWindow& window) { return window.view().geometryOfView().zoom(); }
    FileQuestion saveAs(const std::filesystem::path& target) {
        trigger("mnuFileSaveAs");
        FileQuestion asked = answer({target});
        w.clock.run(5s);
        return asked;
    }
    LatestWindow& latest() { return part<LatestWindow>("frmLatest"); }
    /// In whatever format they are.
    static double off(const QImage& a, const QImage& b) {
        return meanDifference(a.convertToFormat(QImage::Format_RGB32),
                              b.convertToFormat(QImage::Format_RGB32));
    }
};

TEST_F(ImageWindows, OpenEachFileOnceUpToABoundAndOneHoldsItWhole) {
    const auto first = write("a.jpg", 2400, 1800);
    const auto second = write("b.jpg", 2400, 1800);
    w.pictures.openImages({first, second, first});
    w.clock.run(1s);
    ASSERT_EQ(titles(), "a.jpg, b.jpg");
    for (const ImageWindow* window : windows()) {
        EXPECT_TRUE(window->view().geometryOfView().isFitted());
        EXPECT_TRUE(status(*window).starts_with("2400 × 1800 pixels")) << status(*window);
        EXPECT_LE(window->view().picture().width(), w.main.screen()->size().width());
    }
    const QList<ImageWindow*> both = windows();
    for (ImageWindow* window : {both[0], both[1], both[0]}) {
        key(*window, Qt::Key_1); // decoded again for who needs it
        EXPECT_EQ(both[0]->view().holdsFull(), window == both[0]) << "one window holds it whole";
        EXPECT_EQ(both[1]->view().holdsFull(), window == both[1]);
    }
    PictureView& view = both[0]->view();
    const QRectF part = view.geometryOfView().visiblePart();
    EXPECT_LT(off(view.grab().toImage(), decoded(first).copy(part.toRect())), 2);
    key(*both[0], Qt::Key_0);
    EXPECT_FALSE(view.holdsFull()) << "released when the reduced one is enough";
    w.pictures.openFiled(second);
    EXPECT_EQ(windows().size(), 2) << "shown as it is filed already";
    w.module.image.LrFlg = -1;
    w.pictures.openImage(second);
    EXPECT_EQ(windows().size(), 3) << "a mirrored picture is another one";
    std::vector<std::filesystem::path> files(QtImageViews::kMaxWindows);
    for (std::size_t i = 0; i < files.size(); ++i)
        files[i] = write("p" + std::to_string(100 + i) + ".jpg");
    w.pictures.openImages(files);
    EXPECT_EQ(windows().size(), 24);
    ASSERT_EQ(op.told.size(), 1U) << "told once, not for each file";
    EXPECT_TRUE(has(op.told[0], "24 pictures"));
}

TEST_F(ImageWindows, WheelKeysAndMouseZoomAndPan) {
    ImageWindow& window = openPicture(write("a.jpg", 2400, 1800));
    const ViewGeometry& geometry = window.view().geometryOfView();
    const QPoint cursor(100, 80);
    const QPointF before = geometry.toPicture(cursor);
    const double fitted = zoom(window);
    wheel(window, cursor, +6);
    EXPECT_NEAR(zoom(window) / fitted, 3.8147, 0.001) << "1.25 to the sixth";
    EXPECT_NEAR(geometry.toPicture(cursor).x(), before.x(), 0.01);
    EXPECT_NEAR(geometry.toPicture(cursor).y(), before.y(), 0.01);
    for (const auto& [notches, end] : {std::pair(-20, fitted), std::pair(+60, 16.0)}) {
        wheel(window, cursor, notches);
        EXPECT_NEAR(zoom(window), end, 1e-6) << "the whole picture, or 16 times";
    }
    const std::tuple<Qt::Key, const char*, double> zooms[] = {{Qt::Key_0, "mnuViewFit", fitted},
                                                              {Qt::Key_1, "mnuViewActualSize", 1},
                                                              {Qt::Key_Plus, "mnuViewZoomIn", 1.25},
                                                              {Qt::Key_Minus, "mnuViewZoomOut", 1}};
    for (const bool byKey : {true, false})
        for (const auto& [code, entry, expected] : zooms) {
            if (byKey) key(window, code);
            if (!byKey) run(entry);
            EXPECT_NEAR(zoom(window), expected, 1e-9) << entry;
            EXPECT_EQ(geometry.isFitted(), expected == fitted);
        }
    EXPECT_TRUE(has(status(window), "100 %"));
    QRectF part = geometry.visiblePart();
    /// By how much the part in view has moved since the last time.
    const auto moved = [&] {
        const QRectF last = std::exchange(part, geometry.visiblePart());
        return part.topLeft() - last.topLeft();
    };
    key(window, Qt::Key_Right);
    EXPECT_NEAR(moved().x(), window.view().width() * 0.1, 0.5);
    key(window, Qt::Key_Up);
    EXPECT_NEAR(moved().y(), window.view().height() * -0.1, 0.5);
    drag(window, {100, 100}, {130, 90});
    EXPECT_EQ(moved().toPoint(), QPoint(-30, 10));
    wheel(window, cursor, -1, Qt::ControlModifier);
    EXPECT_EQ(moved().toPoint(), QPoint(0, 60)) << "down";
    wheel(window, cursor, +100, Qt::ShiftModifier);
    EXPECT_NEAR(geometry.visiblePart().x(), 0, 0.01) << "sideways, to the picture's edge";
}

TEST_F(ImageWindows, NextAndPreviousFollowTheNames) {
    for (const char* name : {"c.JPEG", "a.jpg"})
        write(name);
    writeFile(w.dataFolder() / "bb.txt", "no picture");
    ImageWindow& window = openPicture(write("b.jpg"));
    const std::tuple<Qt::Key, const char*, const char*> steps[] = {
        {Qt::Key_PageDown, "c.JPEG", "64"},
        {Qt::Key_PageDown, "c.JPEG", "This is the folder's last picture."},
        {Qt::Key_PageUp, "b.jpg", "64"},
        {Qt::Key_PageUp, "a.jpg", "64"},
        {Qt::Key_PageUp, "a.jpg", "This is the folder's first picture."}};
    for (const auto& [code, title, told] : steps) {
        key(window, code);
        EXPECT_EQ(window.windowTitle(), title);
        EXPECT_TRUE(status(window).starts_with(told)) << status(window);
    }
    run("mnuViewNext");
    EXPECT_EQ(titles(), "b.jpg");
    run("mnuViewPrevious");
    EXPECT_EQ(titles(), "a.jpg");
    EXPECT_TRUE(neighbourOf(w.dataFolder() / "gone" / "x.jpg", true).empty());
}

TEST_F(ImageWindows, TrimAndSaveThePart) {
    const auto file = write("20061115_093000_00.jpg", 2400, 1800);
    ImageWindow& window = openPicture(file);
    key(window, Qt::Key_1);
    run("mnuEditTrim");
    EXPECT_TRUE(window.view().isTrimming());
    const auto seen = [&] { return window.view().geometryOfView().visiblePart(); };
    EXPECT_TRUE(seen().contains(window.view().rectangle())) << "begins where one looks";
    for (int i = 0; i < 60; ++i)
        QTest::keyClick(&window.view(), Qt::Key_Right, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(seen().right(), 2400) << "the moved edge stays in sight";
    drag(window, {20, 30}, {140, 90});
    const QRect marked = window.view().rectangle();
    EXPECT_NEAR(marked.width(), 120, 1);
    EXPECT_NEAR(marked.height(), 60, 1);
    key(window, Qt::Key_Escape);
    EXPECT_TRUE(window.view().rectangle().isNull());
    drag(window, {20, 30}, {140, 90}, Qt::ShiftModifier);
    EXPECT_EQ(window.view().rectangle(), marked) << "Shift draws without the mode";
    const QImage own = decoded(file).copy(marked);
    run("mnuEditCopy");
    EXPECT_LT(off(QGuiApplication::clipboard()->image(), own), 1);
    key(window, Qt::Key_Return);
    EXPECT_EQ(titles(), "15 Nov 2006 09:30, 15 Nov 2006 09:30 (trimmed)");
    EXPECT_EQ(windows().last()->view().pictureSize(), marked.size());
    std::filesystem::remove(file); // what was trimmed can be saved without its file
    w.module.image = {.Quality = 2, .JpegTyp = 98};
    const auto target = w.dataFolder() / "part.jpg";
    EXPECT_EQ(saveAs(target).name, "20061115_093000_00_trimmed.jpg");
    EXPECT_LT(off(decoded(target), own), 2);
    EXPECT_EQ(listing(w.dataFolder()), (std::vector<std::string>{"part.jpg"})) << "no temporary";
    EXPECT_TRUE(op.told.empty());
}

TEST_F(ImageWindows, AnUnalteredPictureIsSavedByteForByteAndCopied) {
    const auto file = write("a.jpg", 1600, 1200);
    openPicture(file);
    run("mnuEditCopy");
    EXPECT_LT(off(QGuiApplication::clipboard()->image(), decoded(file)), 1);
    std::filesystem::create_directory(w.dataFolder() / "mine");
    const auto target = w.dataFolder() / "mine" / "copy.jpg";
    EXPECT_EQ(saveAs(target).folder, "data") << "it begins where the picture is";
    EXPECT_EQ(contentsOf(target), contentsOf(file));
    trigger("mnuFileSaveAs");
    emit fileDialog()->fileSelected(toQString(w.dataFolder() / "gone" / "copy.jpg"));
    EXPECT_EQ(answer({}).folder, "mine") << "as before";
    w.clock.run(1s);
    ASSERT_EQ(op.told.size(), 1U);
    EXPECT_TRUE(op.told[0].starts_with("copy.jpg was not saved.\n")) << op.told[0];
}

TEST_F(ImageWindows, OpenProcessesAndWritesTheDatedCopyOnly) {
    w.module.image.LrFlg = -1;
    const auto dated = write("20061115/20061115_093000_00.jpg", 320, 240);
    const auto edited = write("Edit/20061114/20061114_093000_00.jpg", 320, 240);
    const auto loose = write("loose.jpg", 320, 240);
    const QImage mirrored = decoded(dated).mirrored(true, false);
    const auto before = listing(w.dataFolder()).size();
    for (const auto& file : {edited, loose, dated})
        EXPECT_LT(off(openPicture(file).view().picture(), mirrored), 3) << file;
    const auto copy = w.dataFolder() / "Edit" / "20061115" / "20061115_093000_00.jpg";
    ASSERT_TRUE(std::filesystem::exists(copy));
    EXPECT_LT(off(decoded(copy), mirrored), 8);
    EXPECT_EQ(listing(w.dataFolder()).size(), before + 2) << "the copy and its folder";
    w.pictures.openFiled(dated);
    w.clock.run(1s);
    EXPECT_LT(off(windows().last()->view().picture(), decoded(dated)), 3) << "as it is filed";
}

TEST_F(ImageWindows, FaultyFilesAreTold) {
    const std::string whole = encoded(gradient(64, 48));
    // 65500 x 65500 pixels in the frame header, which no memory holds.
    std::string huge = whole;
    huge.replace(huge.find("\xFF\xC0") + 5, 4, "\xFF\xDC\xFF\xDC");
    std::filesystem::create_directory(w.dataFolder() / "folder.jpg");
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {"cut.jpg", whole.substr(0, whole.size() / 2), "not a JPEG picture"},
        {"text.jpg", "GIF89a", "It is no JPEG file"},
        {"huge.jpg", huge, "too large"},
        {"empty.jpg", "", "It is empty"},
        {"folder.jpg", "", "It is not a file"},
        {"gone.jpg", "", "This file cannot be opened: "}};
    for (const auto& [name, bytes, text] : cases) {
        const auto file = w.dataFolder() / name;
        if (*name != 'g' && *name != 'f') writeFile(file, bytes);
        const std::string told = openPicture(file).view().text().toStdString();
        EXPECT_TRUE(has(told, text));
        EXPECT_TRUE(has(told, name)) << "tells which file";
    }
    for (const char* entry : {"mnuEditTrim", "mnuFileSaveAs"})
        EXPECT_FALSE(action(entry).isEnabled()) << entry;
    EXPECT_TRUE(action("mnuViewNext").isEnabled());
    EXPECT_TRUE(op.told.empty());
}

TEST_F(ImageWindows, TheLatestFollowsTheCapturesUnlessItIsClosed) {
    const auto file = write("20061115_090000_00.jpg", 4000, 3000);
    part("txtIp").setFocus();
    w.pictures.showLatest(file);
    EXPECT_EQ(focusOf(w.main), "txtIp") << "nobody is disturbed while typing";
    w.pictures.showLive("no picture");
    w.pictures.showLatest(file);
    settle();
    ASSERT_EQ(titles(), "Latest Image: 15 Nov 2006 09:00");
    EXPECT_LE(latest().view().picture().width(), w.main.screen()->size().width());
    EXPECT_TRUE(latest().hasPicture());
    EXPECT_TRUE(action("mnuViewZoomIn").isEnabled());
    EXPECT_FALSE(action("mnuViewNext").isEnabled()) << "it follows the captures";
    for (int grown = 0; grown < 2; ++grown) {
        EXPECT_EQ(latest().parentWidget()->size(), area().viewport()->size());
        w.main.resize(w.main.size() + QSize(200, 150));
        settle();
    }
    for (const char* wanted : {"mnuFileLatest", "Command8"}) {
        delete latest().parentWidget();
        w.pictures.showLatest(file);
        EXPECT_EQ(titles(), "") << "a closed latest-image window stays closed";
        if (*wanted == 'm') {
            trigger(wanted);
            EXPECT_TRUE(latest().view().hasFocus()) << "asked for";
        } else {
            w.main.operation().press(wanted);
            w.pictures.showLive(contentsOf(file));
        }
        EXPECT_NE(titles(), "") << wanted;
    }
}

TEST_F(ImageWindows, TheLatestTellsItsAge) {
    w.module.schedule = {9h, 17h, 30min, {}};
    w.module.RecordFlg = true;
    w.clock.runUntil(at(2006, 11, 15, 9, 0, 20));
    const auto file = write("20061115_090000_00.jpg");
    w.pictures.showLatest(file);
    const std::pair<std::chrono::seconds, const char*> ages[] = {
        {12s, "12 s ago"},
        {3min, "3 min ago"},
        {56min + 58s, "1 h 00 min ago"}, // at 10:00:30, one picture is late
        {1min, "1 h 01 min ago, overdue"}};
    for (const auto& [later, age] : ages) {
        w.clock.run(later);
        EXPECT_EQ(text("imageAge"), age);
    }
    w.clock.jumpWall(-2h);
    w.clock.run(1s);
    EXPECT_EQ(text("imageAge"), "0 s ago") << "a clock set back";
    const std::string silent = "live view: no answer since 08:00:05";
    for (const bool live : {false, true}) {
        w.pictures.tellLive(silent);
        w.clock.run(1s);
        EXPECT_EQ(text("imageAge"), live ? silent : "0 s ago") << "of a picture of the live view";
        w.pictures.showLive(contentsOf(file));
        w.clock.run(3s);
        EXPECT_EQ(text("imageAge"), "3 s ago");
    }
    EXPECT_EQ(titles(), "Live Picture");
    w.pictures.showLatest(w.dataFolder() / "20061112_235900_00.jpg");
    EXPECT_EQ(text("imageAge"), "2 days ago, overdue");
}

TEST_F(ImageWindows, ThumbnailsAreDecodedOnceAndWalkedByKeys) {
    ThumbnailHistory history;
    std::vector<Thumbnail*> frames;
    for (const char number : {'0', '1', '2', '3', '4'})
        frames.push_back(&part<Thumbnail>((std::string("thumbnail_") + number).c_str()));
    const auto show = [&] {
        w.pictures.refreshThumbnails(history);
        w.clock.run(1s);
        return w.pictures.loader().decodeCount();
    };
    for (std::size_t i = 0; i < 4; ++i)
        history[i] = write("20061115_1" + std::to_string(9 - i) + "3000_00.jpg", 800, 600);
    writeFile(history[3], "broken");
    EXPECT_EQ(show(), 3) << "one is broken";
    EXPECT_LE(frames[0]->picture().width(), 100) << "kept small";
    const QImage first = frames[0]->picture().toImage();
    for (std::size_t i = 0; i < 4; ++i)
        std::filesystem::remove(history[i]); // only those kept in memory can still be shown
    std::move_backward(history.begin(), history.end() - 1, history.end());
    history[0] = write("20061115_213000_00.jpg");
    EXPECT_EQ(show(), 4) << "not even the broken one again";
    EXPECT_EQ(frames[1]->picture().toImage(), first);
    EXPECT_EQ(frames[4]->state(), Thumbnail::State::Unreadable);
    EXPECT_EQ(frames[0]->findChildren<QLabel*>().last()->text(), "21:30");
    EXPECT_TRUE(frames[0]->toolTip().startsWith("2006/11/15"));
    frames[0]->setFocus();
    const std::pair<Qt::Key, std::size_t> keys[] = {
        {Qt::Key_Left, 0},  {Qt::Key_Right, 1}, {Qt::Key_Right, 2}, {Qt::Key_Left, 1},
        {Qt::Key_Right, 2}, {Qt::Key_Right, 3}, {Qt::Key_Right, 4}, {Qt::Key_Right, 4}};
    for (const auto& [code, there] : keys) {
        QTest::keyClick(QApplication::focusWidget(), code);
        EXPECT_TRUE(frames[there]->hasFocus()) << there;
    }
    QTest::keyClick(frames[4], Qt::Key_Return);
    EXPECT_EQ(titles(), "15 Nov 2006 16:30");
    QTest::mouseDClick(frames[0], Qt::LeftButton);
    EXPECT_EQ(titles(), "15 Nov 2006 16:30, 15 Nov 2006 21:30");
}

} // namespace
} // namespace orvane::test

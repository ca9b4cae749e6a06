#include "archive/DataFolder.h"
#include "tests/support/TestPictures.h"
#include "tests/support/TestWindow.h"
#include "ui/Text.h"

#include <QClipboard>
#include <QFileDialog>
#include <QLabel>
#include <QMdiSubWindow>
#include <QWheelEvent>

namespace orvane::test {
namespace {

/// The main window with picture windows in it, driven by events.
class ImageWindows : public testing::Test {
  protected:
    ImageWindows() { screen = QGuiApplication::primaryScreen()->size(); }

    std::filesystem::path write(const std::string& name, int width = 2400, int height = 1800) {
        const auto file = w.dataFolder() / name;
        std::filesystem::create_directories(file.parent_path());
        writeFile(file, encoded(gradient(width, height)));
        return file;
    }
    ImageWindow& open(const std::filesystem::path& file) {
        w.pictures.openImage(file);
        w.clock.run(1s);
        return *windows().last();
    }
    QList<ImageWindow*> windows() { return w.main.findChildren<ImageWindow*>("frmImage"); }
    QAction& action(const char* name) {
        auto* found = w.main.findChild<QAction*>(name);
        if (found == nullptr) throw std::runtime_error(std::string("no action ") + name);
        return *found;
    }
    void trigger(const char* name) {
        action(name).trigger();
        w.clock.run(1s);
    }
    void key(ImageWindow& window, int code) {
        QTest::keyClick(&window.view(), static_cast<Qt::Key>(code));
        w.clock.run(1s);
    }
    /// One notch at `at`, upwards for `up`.
    void wheel(ImageWindow& window, QPoint at, int up, Qt::KeyboardModifiers keys = {}) {
        QWheelEvent event(at, window.view().mapToGlobal(at), {}, {0, up * 120}, {}, keys,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&window.view(), &event);
        w.clock.run(1s);
    }
    void drag(ImageWindow& window, QPoint from, QPoint to, Qt::KeyboardModifiers keys = {}) {
        QTest::mousePress(&window.view(), Qt::LeftButton, keys, from);
        QTest::mouseMove(&window.view(), to);
        QMouseEvent move(QEvent::MouseMove, to, window.view().mapToGlobal(to), Qt::NoButton,
                         Qt::LeftButton, keys);
        QApplication::sendEvent(&window.view(), &move);
        QTest::mouseRelease(&window.view(), Qt::LeftButton, keys, to);
    }
    static QString status(const ImageWindow& window) {
        return find<QLabel>(window, "imageStatus").text();
    }
    static double zoom(const ImageWindow& window) { return window.view().geometryOfView().zoom(); }
    int fullPictures() {
        int held = 0;
        for (ImageWindow* window : w.main.findChildren<ImageWindow*>())
            held += window->view().holdsFull() ? 1 : 0;
        return held;
    }
    void saveAs(const std::filesystem::path& target) {
        action("mnuFileSaveAs").trigger();
        auto* dialog = w.main.findChild<QFileDialog*>();
        ASSERT_NE(dialog, nullptr);
        emit dialog->fileSelected(toQString(target));
        delete dialog;
        w.clock.run(5s);
    }

    JumpingClock operatorClock{at(2006, 11, 15)};
    FakeOperator op{operatorClock};
    Window w{op};
    QSize screen;
};

TEST_F(ImageWindows, OpensSeveralFilesEachOnce) {
    const auto first = write("a.jpg");
    const auto second = write("b.jpg");
    w.pictures.openImages({first, second, first});
    w.clock.run(1s);
    ASSERT_EQ(windows().size(), 2);
    for (ImageWindow* window : windows()) {
        EXPECT_TRUE(window->view().geometryOfView().isFitted());
        EXPECT_TRUE(status(*window).startsWith(QString::fromUtf8("2400 × 1800 pixels")))
            << status(*window).toStdString();
        EXPECT_LE(window->view().picture().width(), screen.width());
    }
    w.pictures.openFiled(second);
    EXPECT_EQ(windows().size(), 2) << "shown as it is filed already";
    w.module.image.LrFlg = -1;
    w.pictures.openImage(second);
    EXPECT_EQ(windows().size(), 3) << "a mirrored picture is another one";
}

TEST_F(ImageWindows, NumberOfWindowsIsBounded) {
    std::vector<std::filesystem::path> files;
    for (int i = 0; i < QtImageViews::kMaxWindows + 2; ++i)
        files.push_back(write("p" + std::to_string(100 + i) + ".jpg", 64, 48));
    w.pictures.openImages(files);
    EXPECT_EQ(windows().size(), QtImageViews::kMaxWindows);
    ASSERT_EQ(op.told.size(), 1U) << "told once, not for each file";
    EXPECT_NE(op.told[0].find("24 pictures"), std::string::npos);
}

TEST_F(ImageWindows, WheelZoomsAroundTheCursor) {
    ImageWindow& window = open(write("a.jpg"));
    const ViewGeometry& geometry = window.view().geometryOfView();
    const QPoint cursor(100, 80);
    const QPointF before = geometry.toPicture(cursor);
    const double fitted = zoom(window);
    wheel(window, cursor, +6);
    EXPECT_NEAR(zoom(window) / fitted, 3.8147, 0.001) << "1.25 to the sixth";
    EXPECT_NEAR(geometry.toPicture(cursor).x(), before.x(), 0.01);
    EXPECT_NEAR(geometry.toPicture(cursor).y(), before.y(), 0.01);
    wheel(window, cursor, -20);
    EXPECT_NEAR(zoom(window), fitted, 1e-6) << "not below the whole picture";
    wheel(window, cursor, +60);
    EXPECT_NEAR(zoom(window), 16, 1e-6);
}

TEST_F(ImageWindows, KeysZoomAndPan) {
    ImageWindow& window = open(write("a.jpg"));
    const ViewGeometry& geometry = window.view().geometryOfView();
    key(window, Qt::Key_1);
    EXPECT_DOUBLE_EQ(zoom(window), 1);
    EXPECT_TRUE(status(window).contains("100 %"));
    key(window, Qt::Key_Plus);
    EXPECT_DOUBLE_EQ(zoom(window), 1.25);
    key(window, Qt::Key_Minus);
    EXPECT_DOUBLE_EQ(zoom(window), 1);
    const QPointF middle = geometry.visiblePart().center();
    key(window, Qt::Key_Right);
    EXPECT_NEAR(geometry.visiblePart().center().x() - middle.x(), window.view().width() * 0.1, 0.5);
    key(window, Qt::Key_Up);
    EXPECT_LT(geometry.visiblePart().center().y(), middle.y());
    const QRectF part = geometry.visiblePart();
    drag(window, {100, 100}, {130, 90});
    EXPECT_NEAR(geometry.visiblePart().x(), part.x() - 30, 0.01);
    EXPECT_NEAR(geometry.visiblePart().y(), part.y() + 10, 0.01);
    for (int i = 0; i < 100; ++i)
        wheel(window, {50, 50}, +1, Qt::ShiftModifier);
    EXPECT_NEAR(geometry.visiblePart().x(), 0, 0.01) << "stops at the picture's edge";
    key(window, Qt::Key_0);
    EXPECT_TRUE(geometry.isFitted());
}

/// What is on the screen at 100 % are the picture's own pixels.
TEST_F(ImageWindows, ShowsWholePixelsWhenZoomedIn) {
    const auto file = write("a.jpg");
    ImageWindow& window = open(file);
    trigger("mnuViewActualSize");
    const QRectF part = window.view().geometryOfView().visiblePart();
    const QImage shown = window.view().grab().toImage().convertToFormat(QImage::Format_RGB32);
    const QImage own = decoded(file).copy(part.toRect()).convertToFormat(QImage::Format_RGB32);
    EXPECT_LT(meanDifference(shown, own), 2);
}

TEST_F(ImageWindows, OneWindowHoldsAWholePicture) {
    std::vector<ImageWindow*> opened;
    for (const char* name : {"a.jpg", "b.jpg", "c.jpg"})
        opened.push_back(&open(write(name)));
    EXPECT_EQ(fullPictures(), 0);
    for (ImageWindow* window : opened) {
        key(*window, Qt::Key_1);
        EXPECT_EQ(fullPictures(), 1);
        EXPECT_TRUE(window->view().holdsFull());
    }
    key(*opened[0], Qt::Key_Left);
    EXPECT_TRUE(opened[0]->view().holdsFull()) << "decoded again for who needs it";
    EXPECT_EQ(fullPictures(), 1);
    key(*opened[0], Qt::Key_0);
    EXPECT_EQ(fullPictures(), 0) << "released when the reduced one is enough";
}

TEST_F(ImageWindows, NextAndPreviousFollowTheNames) {
    const auto b = write("b.jpg");
    write("c.JPEG");
    write("a.jpg");
    writeFile(w.dataFolder() / "bb.txt", "no picture");
    ImageWindow& window = open(b);
    key(window, Qt::Key_PageDown);
    EXPECT_EQ(window.windowTitle(), "c.JPEG");
    EXPECT_TRUE(window.hasPicture());
    key(window, Qt::Key_PageDown);
    EXPECT_EQ(window.windowTitle(), "c.JPEG");
    EXPECT_EQ(status(window), "This is the folder's last picture.");
    trigger("mnuViewPrevious");
    trigger("mnuViewPrevious");
    EXPECT_EQ(window.windowTitle(), "a.jpg");
    EXPECT_TRUE(neighbourOf(w.dataFolder() / "gone" / "x.jpg", true).empty());
}

TEST_F(ImageWindows, TrimsAndSavesThePart) {
    const auto file = write("20061115_093000_00.jpg");
    ImageWindow& window = open(file);
    key(window, Qt::Key_1);
    trigger("mnuEditTrim");
    EXPECT_TRUE(window.view().isTrimming());
    drag(window, {20, 30}, {140, 90});
    const QRect marked = window.view().rectangle();
    EXPECT_NEAR(marked.width(), 120, 1);
    EXPECT_NEAR(marked.height(), 60, 1);
    key(window, Qt::Key_Escape);
    EXPECT_TRUE(window.view().rectangle().isNull());
    drag(window, {20, 30}, {140, 90}, Qt::ShiftModifier);
    EXPECT_EQ(window.view().rectangle(), marked) << "Shift draws without the mode";
    key(window, Qt::Key_Return);

    ASSERT_EQ(windows().size(), 2);
    ImageWindow& part = *windows().last();
    EXPECT_EQ(part.windowTitle(), "15 Nov 2006 09:30 (trimmed)");
    EXPECT_TRUE(part.toolTip().endsWith("20061115_093000_00.jpg"));
    EXPECT_EQ(part.view().pictureSize(), marked.size());
    const QImage own = decoded(file).copy(marked);
    std::filesystem::remove(file); // what was trimmed can be saved without its file
    w.module.image = {.Quality = 2, .JpegTyp = 98};
    const auto target = w.dataFolder() / "part.jpg";
    saveAs(target);
    EXPECT_LT(meanDifference(decoded(target), own), 2);
    EXPECT_EQ(listing(w.dataFolder()), (std::vector<std::string>{"part.jpg"})) << "no temporary";
    EXPECT_TRUE(op.told.empty());
}

TEST_F(ImageWindows, SavesAnUnalteredPictureByteForByte) {
    const auto file = write("a.jpg", 320, 240);
    open(file);
    const auto target = w.dataFolder() / "copy.jpg";
    saveAs(target);
    EXPECT_EQ(contentsOf(target), contentsOf(file));
    saveAs(w.dataFolder() / "no folder" / "copy.jpg");
    ASSERT_EQ(op.told.size(), 1U);
    EXPECT_EQ(op.told[0].rfind("copy.jpg was not saved.\n", 0), 0U) << op.told[0];
}

TEST_F(ImageWindows, CopiesThePictureOrItsPart) {
    const auto file = write("a.jpg", 1600, 1200);
    ImageWindow& window = open(file);
    trigger("mnuEditCopy");
    const QImage whole = QGuiApplication::clipboard()->image();
    EXPECT_LT(meanDifference(whole.convertToFormat(QImage::Format_RGB32), decoded(file)), 1);
    drag(window, {20, 30}, {140, 90}, Qt::ShiftModifier);
    const QRect marked = window.view().rectangle();
    trigger("mnuEditCopy");
    EXPECT_EQ(QGuiApplication::clipboard()->image().size(), marked.size());
}

TEST_F(ImageWindows, OpenProcessesAndWritesTheDatedCopyOnly) {
    w.module.image.LrFlg = -1;
    const auto dated = write("20061115/20061115_093000_00.jpg", 320, 240);
    const auto edited = write("Edit/20061114/20061114_093000_00.jpg", 320, 240);
    const auto loose = write("loose.jpg", 320, 240);
    const QImage mirrored = decoded(dated).mirrored(true, false);
    const auto before = listing(w.dataFolder()).size();
    for (const auto& file : {edited, loose, dated})
        EXPECT_LT(meanDifference(open(file).view().picture(), mirrored), 3) << file;
    const auto copy = w.dataFolder() / "Edit" / "20061115" / "20061115_093000_00.jpg";
    ASSERT_TRUE(std::filesystem::exists(copy));
    EXPECT_LT(meanDifference(decoded(copy), mirrored), 8);
    EXPECT_EQ(listing(w.dataFolder()).size(), before + 2) << "the copy and its folder";

    w.pictures.openFiled(dated);
    w.clock.run(1s);
    EXPECT_LT(meanDifference(windows().last()->view().picture(), decoded(dated)), 3)
        << "as it is filed";
}

TEST_F(ImageWindows, FaultyFilesAreTold) {
    const std::string whole = encoded(gradient(64, 48));
    // 65500 x 65500 pixels in the frame header, which no memory holds.
    std::string huge = whole;
    const std::size_t frame = huge.find("\xFF\xC0");
    huge.replace(frame + 5, 4, "\xFF\xDC\xFF\xDC");
    const std::tuple<const char*, std::string, const char*> cases[] = {
        {"cut.jpg", whole.substr(0, whole.size() / 2), "not a JPEG picture"},
        {"empty.jpg", "", "It is empty"},
        {"text.jpg", "GIF89a", "It is no JPEG file"},
        {"huge.jpg", huge, "too large"},
    };
    for (const auto& [name, bytes, text] : cases) {
        writeFile(w.dataFolder() / name, bytes);
        const ImageWindow& window = open(w.dataFolder() / name);
        EXPECT_FALSE(window.hasPicture()) << name;
        EXPECT_TRUE(window.view().text().contains(text)) << window.view().text().toStdString();
        EXPECT_TRUE(window.view().text().contains(name)) << "tells which file";
    }
    const ImageWindow& missing = open(w.dataFolder() / "gone.jpg");
    EXPECT_TRUE(missing.view().text().startsWith("This file cannot be opened: "));
    std::filesystem::create_directory(w.dataFolder() / "folder.jpg");
    EXPECT_TRUE(open(w.dataFolder() / "folder.jpg").view().text().contains("It is not a file"));
    EXPECT_FALSE(action("mnuEditTrim").isEnabled());
    EXPECT_FALSE(action("mnuFileSaveAs").isEnabled());
    EXPECT_TRUE(action("mnuViewNext").isEnabled());
    EXPECT_TRUE(op.told.empty());
}

TEST_F(ImageWindows, ClosingWhileLoadingFreesTheLoader) {
    const auto file = write("a.jpg");
    w.pictures.openImages({file, write("b.jpg")});
    int steps = 0;
    w.clock.runUntil([&] { return ++steps > 4; }, 1s); // in the middle of the first
    EXPECT_FALSE(windows().first()->hasPicture());
    delete windows().first()->parentWidget();
    w.clock.run(1s);
    ASSERT_EQ(windows().size(), 1);
    EXPECT_TRUE(windows().first()->hasPicture());
    windows().first()->step(false);
    w.pictures.openFiled(file); // shown by the one that is still loading it
    delete windows().first()->parentWidget();
    w.clock.run(1s);
    EXPECT_TRUE(windows().isEmpty());
    EXPECT_TRUE(open(file).hasPicture());
}

TEST_F(ImageWindows, EntriesFollowTheWindowInFront) {
    EXPECT_FALSE(action("mnuViewZoomIn").isEnabled());
    open(write("20061115_093000_00.jpg", 64, 48));
    EXPECT_TRUE(action("mnuViewZoomIn").isEnabled());
    EXPECT_TRUE(action("mnuViewNext").isEnabled());
    w.pictures.openLatest(w.dataFolder() / "20061115_093000_00.jpg");
    w.clock.run(1s);
    EXPECT_TRUE(action("mnuEditCopy").isEnabled());
    EXPECT_FALSE(action("mnuViewNext").isEnabled()) << "the latest picture follows the captures";
    trigger("mnuWindowCloseAll");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(action("mnuEditCopy").isEnabled());
}

TEST_F(ImageWindows, LatestTellsItsAgeAndFillsTheArea) {
    w.module.schedule = {9h, 17h, 30min, {}};
    w.module.RecordFlg = true;
    w.clock.runUntil(at(2006, 11, 15, 9, 0, 20));
    w.pictures.showLatest(write("20061115_090000_00.jpg", 64, 48));
    auto& latest = *w.main.findChild<LatestWindow*>("frmLatest");
    auto& age = find<QLabel>(latest, "imageAge");
    const auto* frame = qobject_cast<QMdiSubWindow*>(latest.parentWidget());
    EXPECT_EQ(frame->size(), frame->mdiArea()->viewport()->size());
    w.main.resize(w.main.size() + QSize(200, 150));
    QTest::qWait(1);
    EXPECT_EQ(frame->size(), frame->mdiArea()->viewport()->size()) << "goes on filling it";

    EXPECT_EQ(latest.windowTitle(), "Latest Image: 15 Nov 2006 09:00");
    EXPECT_EQ(age.text(), "0 s ago");
    w.clock.run(12s);
    EXPECT_EQ(age.text(), "12 s ago");
    w.clock.run(3min);
    EXPECT_EQ(age.text(), "3 min ago");
    w.clock.runUntil(at(2006, 11, 15, 10, 0, 30));
    EXPECT_EQ(age.text(), "1 h 00 min ago") << "one picture is late";
    w.clock.runUntil(at(2006, 11, 15, 10, 1, 30));
    EXPECT_EQ(age.text(), "1 h 01 min ago, overdue");
    w.clock.jumpWall(-2h);
    w.clock.run(1s);
    EXPECT_EQ(age.text(), "0 s ago") << "a clock set back";
    w.pictures.showLive(encoded(gradient(64, 48)));
    w.clock.run(3s);
    EXPECT_EQ(age.text(), "3 s ago");
    EXPECT_TRUE(latest.hasPicture());
    w.pictures.showLatest(w.dataFolder() / "20061112_235900_00.jpg");
    EXPECT_EQ(age.text(), "2 days ago, overdue");
}

TEST_F(ImageWindows, ArrowKeysWalkTheThumbnails) {
    ThumbnailHistory history;
    history[0] = write("20061115_100000_00.jpg", 64, 48);
    history[1] = write("20061115_093000_00.jpg", 64, 48);
    writeFile(w.dataFolder() / "20061115_090000_00.jpg", "broken");
    history[2] = w.dataFolder() / "20061115_090000_00.jpg";
    w.pictures.refreshThumbnails(history);
    w.clock.run(1s);
    auto& first = find<Thumbnail>(w.main, "thumbnail_0");
    auto& third = find<Thumbnail>(w.main, "thumbnail_2");
    EXPECT_TRUE(first.toolTip().startsWith("2006/11/15"));
    EXPECT_EQ(third.state(), Thumbnail::State::Unreadable);
    first.setFocus();
    QTest::keyClick(&first, Qt::Key_Left);
    EXPECT_TRUE(first.hasFocus());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
    EXPECT_TRUE(third.hasFocus());
    QTest::keyClick(&third, Qt::Key_Right);
    EXPECT_TRUE(third.hasFocus()) << "no picture further on";
    const int decodes = w.pictures.loader().decodeCount();
    w.pictures.refreshThumbnails(history);
    w.clock.run(1s);
    EXPECT_EQ(w.pictures.loader().decodeCount(), decodes) << "not even the broken one again";
    QTest::keyClick(&third, Qt::Key_Return);
    w.clock.run(1s);
    EXPECT_EQ(windows().size(), 1);
}

} // namespace
} // namespace orvane::test

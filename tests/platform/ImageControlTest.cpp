#include "platform/qt/LibjpegImageControl.h"
#include "tests/support/TestPictures.h"

#include <QBuffer>
#include <QImageReader>
#include <QTransform>

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

constexpr int kMake = 0x010F, kOrientation = 0x0112, kExposureTime = 0x829A,
              kDateTimeOriginal = 0x9003, kUserComment = 0x9286, kPixelXDimension = 0xA002,
              kPixelYDimension = 0xA003, kUnknownTag = 0xC3A1;
constexpr int kTables = 0xDB, kApp0 = 0xE0, kApp1 = 0xE1, kApp2 = 0xE2, kCom = 0xFE;
const std::string kStamp = "2025:06:21 09:30:00";

struct ImageControlTest : testing::Test {
    Fault load(const std::string& bytes) {
        writeFile(source_, bytes);
        return finish(clock_, control_.load(source_));
    }
    Fault save(int format, int factor = 24, const std::string& stamp = kStamp) {
        return finish(clock_, control_.save(target_, static_cast<std::int16_t>(format),
                                            static_cast<std::int16_t>(factor), stamp));
    }
    void loadAndSave(const std::string& bytes, int format, int factor = 24,
                     const std::string& stamp = kStamp) {
        ASSERT_EQ(load(bytes), std::nullopt);
        ASSERT_EQ(save(format, factor, stamp), std::nullopt);
    }
    JpegParts saved() const { return partsOf(contentsOf(target_)); }
    TiffEntries savedExif() const { return tiffEntries(saved().tiff()); }

    const std::string plain_ = encoded(gradient(60, 40));
    TempFolder folder_;
    std::filesystem::path source_ = folder_.path() / "source.jpg";
    std::filesystem::path target_ = folder_.path() / "target.jpg";
    JumpingClock clock_{at(2025, 6, 21, 9, 30)};
    LibjpegImageControl control_{clock_};
};

std::string withExif(const std::string& jpeg, const std::string& payload) {
    return withSegments(jpeg, segment(kApp1, payload));
}
std::string cameraExif(int orientation, const std::string& thumbnail = {}) {
    return exifPayload({textEntry(kMake, "SkyCam"), shortEntry(kOrientation, orientation)},
                       {{kExposureTime, 5, 1, std::string("\1\0\0\0\xFA\0\0\0", 8)},
                        textEntry(kDateTimeOriginal, "2001:01:01 00:00:00"),
                        longEntry(kPixelXDimension, 9999),
                        longEntry(kPixelYDimension, 7777),
                        shortEntry(kUnknownTag, 4711)},
                       thumbnail);
}

/// Qt's own reader, turned upright by the EXIF orientation.
QImage readByQt(const std::string& jpeg) {
    QByteArray bytes = QByteArray::fromStdString(jpeg);
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer, "jpeg");
    reader.setAutoTransform(true);
    return reader.read();
}

/// The even ones of progressive files.
TEST_F(ImageControlTest, LoadsEveryOrientationUpright) {
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const std::string jpeg = encoded(gradient(60, 40), 95, orientation % 2 == 0);
        const std::string turned = withExif(jpeg, cameraExif(orientation));
        ASSERT_EQ(load(turned), std::nullopt);
        EXPECT_EQ(control_.picture().width(), orientation >= 5 ? 40 : 60);
        EXPECT_LE(difference(control_.picture(), readByQt(turned)), 2) << orientation;
    }
}

TEST_F(ImageControlTest, SavesATurnedPictureAsUpright) {
    loadAndSave(withExif(plain_, cameraExif(6)), ImageControl::kFormatExif, 2);
    EXPECT_EQ(numberOf(savedExif(), Ifd::Zero, kOrientation), 1u);
    EXPECT_EQ(numberOf(savedExif(), Ifd::Exif, kPixelXDimension), 40u);
    EXPECT_EQ(numberOf(savedExif(), Ifd::Exif, kPixelYDimension), 60u);
    const QImage expected = gradient(60, 40).transformed(QTransform().rotate(90));
    EXPECT_LE(meanDifference(readByQt(contentsOf(target_)), expected), 4);
}

TEST_F(ImageControlTest, LoadsGreyPicturesAndSavesThemInColour) {
    const QImage grey = gradient(60, 40).convertToFormat(QImage::Format_Grayscale8);
    const std::string profile = segment(kApp2, std::string("ICC_PROFILE\0\1\1", 14) + "grey");
    loadAndSave(withSegments(encoded(grey), profile), ImageControl::kFormat444);
    EXPECT_LE(difference(control_.picture(), grey.convertToFormat(QImage::Format_RGB32)), 12);
    EXPECT_EQ(saved().sampling, (std::vector<int>{0x11, 0x11, 0x11}));
    EXPECT_FALSE(saved().has(kApp2)) << "a grey profile does not fit a colour picture";
}

TEST_F(ImageControlTest, ExifFormKeepsTheCamerasExif) {
    const std::string camera = withExif(plain_, cameraExif(1, encoded(gradient(16, 12), 50)));
    loadAndSave(camera, ImageControl::kFormatExif);
    EXPECT_EQ(saved().sampling, (std::vector<int>{0x22, 0x11, 0x11}));
    const TiffEntries exif = savedExif();
    EXPECT_EQ(textOf(exif, Ifd::Zero, kMake), "SkyCam");
    EXPECT_EQ(exif.at({Ifd::Exif, kExposureTime}).bytes, std::string("\1\0\0\0\xFA\0\0\0", 8));
    EXPECT_EQ(numberOf(exif, Ifd::Exif, kUnknownTag), 4711u);
    EXPECT_EQ(textOf(exif, Ifd::Exif, kDateTimeOriginal), kStamp);
    EXPECT_EQ(numberOf(exif, Ifd::Exif, kPixelXDimension), 60u);
    EXPECT_EQ(numberOf(exif, Ifd::Exif, kPixelYDimension), 40u);
    EXPECT_EQ(saved().tiff().find("\xFF\xD8\xFF"), std::string::npos) << "thumbnail left over";
    loadAndSave(camera, ImageControl::kFormatExif, 24, "");
    EXPECT_EQ(textOf(savedExif(), Ifd::Exif, kDateTimeOriginal), "2001:01:01 00:00:00");
}

TEST_F(ImageControlTest, WritesFreshExifWhereTheCamerasIsMissingOrUnusable) {
    std::string lost = cameraExif(6);
    lost.replace(10, 4, "\xFF\xFF\xFF\x7F"); // the first directory lies outside
    // Fills its segment to the last byte, so that nothing can be added.
    const std::string full = exifPayload({textEntry(kMake, "SkyCam")},
                                         {{kUserComment, 7, 65450, std::string(65450, 'x')}});
    ASSERT_LE(full.size(), 65533u);
    for (const std::string& source : {plain_, withExif(plain_, std::string("Exif\0\0garbage", 13)),
                                      withExif(plain_, std::string("Exif\0\0", 6)),
                                      withExif(plain_, lost), withExif(plain_, full)}) {
        loadAndSave(source, ImageControl::kFormatExif);
        EXPECT_EQ(control_.picture().width(), 60);
        const TiffEntries exif = savedExif();
        EXPECT_EQ(textOf(exif, Ifd::Exif, kDateTimeOriginal), kStamp);
        EXPECT_EQ(numberOf(exif, Ifd::Zero, kOrientation), 1u);
        EXPECT_EQ(numberOf(exif, Ifd::Exif, kPixelXDimension), 60u);
        EXPECT_EQ(textOf(exif, Ifd::Zero, kMake), "missing");
    }
}

TEST_F(ImageControlTest, ColourProfileAndCommentsSurviveInBothForms) {
    const std::string signature("ICC_PROFILE\0", 12);
    const std::string first(60'000, 'a'), second(5'000, 'b');
    const std::string source =
        withSegments(plain_, segment(kApp2, signature + "\1\2" + first) +
                                 segment(kApp2, signature + "\2\2" + second) +
                                 segment(kCom, "clear sky") + segment(kCom, "second"));
    for (const int format : {10, 98}) {
        loadAndSave(withExif(source, cameraExif(1)), format);
        EXPECT_EQ(saved().segments.front().first, format == 10 ? kApp1 : kApp0);
        EXPECT_EQ(saved().has(kApp1), format == 10);
        EXPECT_EQ(saved().has(kApp0), format == 98) << "JFIF without Exif";
        std::string profile;
        for (const std::string& part : saved().all(kApp2))
            profile += part.substr(signature.size() + 2);
        EXPECT_EQ(profile, first + second);
        EXPECT_EQ(saved().all(kCom), (std::vector<std::string>{"clear sky", "second"}));
    }
}

// The standard's example tables begin with 16 (luminance) and end with 99; a quality q scales them
// by 5000 / q percent below 50 and by 200 - 2 q percent from there on.
TEST_F(ImageControlTest, FactorBecomesQuality) {
    const struct {
        int factor, first, last;
    } cases[] = {{2, 1, 4},    {24, 8, 48},     {56, 18, 112},    {0, 1, 1},
                 {-300, 1, 1}, {100, 255, 255}, {32767, 255, 255}};
    for (const auto& [factor, first, last] : cases) {
        loadAndSave(plain_, 98, factor);
        const std::string table = saved().all(kTables).front();
        EXPECT_EQ(static_cast<unsigned char>(table[1]), first) << factor;
        EXPECT_EQ(static_cast<unsigned char>(table[64]), last) << factor;
    }
}

TEST_F(ImageControlTest, MirrorsLeftToRight) {
    ASSERT_EQ(load(encoded(gradient(61, 40))), std::nullopt);
    const QImage before = control_.picture();
    control_.mirror();
    EXPECT_EQ(difference(control_.picture(), before.mirrored(true, false)), 0);
}

/// Digits are 0.73 of the font's size high; sixteen of them some 0.57 wide.
TEST_F(ImageControlTest, StampIsWhiteOnDarkInTheLowerLeftCorner) {
    for (const auto& [size, pixels] : {std::pair(QSize(1280, 960), 32), {QSize(400, 300), 12}}) {
        QImage grey(size, QImage::Format_RGB32);
        grey.fill(QColor(128, 128, 128));
        ASSERT_EQ(load(encoded(grey)), std::nullopt);
        const QImage before = control_.picture();
        control_.drawText("2025/06/21 09:30");
        const QImage after = control_.picture();
        QRect changed;
        int white = 0, dark = 0;
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x) {
                const int green = qGreen(after.pixel(x, y));
                if (before.pixel(x, y) != after.pixel(x, y)) changed |= QRect(x, y, 1, 1);
                white += green > 200 ? 1 : 0;
                dark += green < 60 ? 1 : 0;
            }
        EXPECT_LT(changed.left(), pixels);
        EXPECT_GT(changed.top(), size.height() - 2 * pixels);
        EXPECT_LT(changed.bottom(), size.height() - 1);
        EXPECT_NEAR(changed.height(), pixels * 0.9, pixels * 0.2);
        EXPECT_NEAR(changed.width(), pixels * 9.2, pixels * 1.5);
        EXPECT_GT(white, pixels * 10);
        EXPECT_GT(dark, pixels * 10);
    }
    ASSERT_EQ(load(encoded(gradient(8, 6))), std::nullopt);
    control_.drawText("2025/06/21 09:30");
    control_.drawText("");
    EXPECT_EQ(control_.picture().size(), QSize(8, 6)) << "too small for its text, which is cut off";
}

TEST_F(ImageControlTest, TellsWhatItCannotReadDecodeOrWrite) {
    const std::pair<std::string, const char*> cases[] = {
        {"", "Empty input file"},
        {"<html><body>Not Found</body></html>", "Not a JPEG file"},
        {plain_.substr(0, plain_.size() - 200) + "\xFF\xD9", "Corrupt JPEG data"},
        {plain_.substr(0, plain_.size() - 2), "Premature end of JPEG file"},
        {plain_.substr(0, 100), "JPEG datastream contains no image"}};
    for (const auto& [bytes, reason] : cases) {
        ASSERT_EQ(load(plain_), std::nullopt);
        const std::string fault = load(bytes).value_or("none");
        EXPECT_NE(fault.find(reason), std::string::npos) << fault;
        EXPECT_TRUE(control_.picture().isNull());
        EXPECT_EQ(save(98), "No picture to save");
        EXPECT_FALSE(std::filesystem::exists(target_));
    }
    std::filesystem::remove(source_);
    EXPECT_EQ(finish(clock_, control_.load(source_)), "No such file or directory");
    ASSERT_EQ(load(plain_), std::nullopt);
    EXPECT_EQ(save(11), "Unknown picture format 11");
    std::filesystem::create_directories(target_ / "occupied");
    const auto before = listing(folder_.path());
    EXPECT_NE(save(98).value_or(""), "");
    EXPECT_EQ(listing(folder_.path()), before);
}

TEST_F(ImageControlTest, SaveKeepsItsPictureWhileAnotherIsLoaded) {
    ASSERT_EQ(load(encoded(gradient(1500, 1000))), std::nullopt);
    Task<Fault> saving = control_.save(target_, 98, 2, "");
    saving.start();
    ASSERT_EQ(load(encoded(gradient(40, 30))), std::nullopt);
    ASSERT_FALSE(saving.done());
    clock_.runUntil([&] { return saving.done(); }, 1h);
    ASSERT_EQ(saving.result(), std::nullopt);
    EXPECT_LE(meanDifference(decoded(target_), gradient(1500, 1000)), 2);
    EXPECT_EQ(control_.picture().size(), QSize(40, 30));
}

} // namespace
} // namespace orvane::test

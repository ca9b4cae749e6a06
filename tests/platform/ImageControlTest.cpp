#include "platform/qt/LibjpegImageControl.h"

#include "tests/support/TempFolder.h"
#include "tests/support/TestPictures.h"

#include <QBuffer>
#include <QImageReader>
#include <QTransform>

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

constexpr int kMake = 0x010F;
constexpr int kOrientation = 0x0112;
constexpr int kExposureTime = 0x829A;
constexpr int kDateTimeOriginal = 0x9003;
constexpr int kUserComment = 0x9286;
constexpr int kPixelXDimension = 0xA002;
constexpr int kPixelYDimension = 0xA003;
constexpr int kUnknownTag = 0xC3A1;
constexpr int kApp0 = 0xE0;
constexpr int kApp1 = 0xE1;
constexpr int kApp2 = 0xE2;
constexpr int kCom = 0xFE;
const std::string kStamp = "2025:06:21 09:30:00";

class ImageControlTest : public testing::Test {
  protected:
    Fault load(const std::string& bytes) {
        writeFile(source_, bytes);
        return finish(clock_, control_.load(source_));
    }
    Fault save(int format, int factor = 24, const std::string& stamp = kStamp) {
        return finish(clock_, control_.save(target_, static_cast<std::int16_t>(format),
                                            static_cast<std::int16_t>(factor), stamp));
    }
    JpegParts saved() const { return partsOf(contentsOf(target_)); }
    TiffEntries savedExif() const { return tiffEntries(saved().tiff()); }

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

TEST_F(ImageControlTest, LoadsEveryOrientationUpright) {
    const std::string jpeg = encoded(gradient(60, 40));
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const std::string turned = withExif(jpeg, cameraExif(orientation));
        ASSERT_EQ(load(turned), std::nullopt);
        EXPECT_EQ(control_.picture().width(), orientation >= 5 ? 40 : 60);
        EXPECT_LE(difference(control_.picture(), readByQt(turned)), 2) << orientation;
    }
}

TEST_F(ImageControlTest, SavesATurnedPictureAsUpright) {
    ASSERT_EQ(load(withExif(encoded(gradient(60, 40)), cameraExif(6))), std::nullopt);
    ASSERT_EQ(save(ImageControl::kFormatExif, 2), std::nullopt);
    EXPECT_EQ(numberOf(savedExif(), Ifd::Zero, kOrientation), 1u);
    EXPECT_EQ(numberOf(savedExif(), Ifd::Exif, kPixelXDimension), 40u);
    EXPECT_EQ(numberOf(savedExif(), Ifd::Exif, kPixelYDimension), 60u);
    const QImage expected = gradient(60, 40).transformed(QTransform().rotate(90));
    EXPECT_LE(meanDifference(readByQt(contentsOf(target_)), expected), 4);
    EXPECT_EQ(saved().width, 40);
    EXPECT_EQ(saved().height, 60);
}

TEST_F(ImageControlTest, DecodesSlicesBaselineAndProgressiveAlike) {
    for (const bool progressive : {false, true}) {
        const std::string jpeg = encoded(gradient(1500, 1000), 90, progressive);
        writeFile(source_, jpeg);
        Task<Fault> loading = control_.load(source_);
        loading.start();
        int yields = 0;
        clock_.runUntil([&] { return loading.done() || ++yields == 0; }, std::chrono::hours(1));
        ASSERT_EQ(loading.result(), std::nullopt);
        // 1.5 megapixels in slices of half a megapixel; every scan of a progressive file is a pass.
        EXPECT_GE(yields, progressive ? 12 : 3);
        EXPECT_LE(difference(control_.picture(), readByQt(jpeg)), 2);
    }
}

TEST_F(ImageControlTest, LoadsGreyPicturesAndSavesThemInColour) {
    const QImage grey = gradient(60, 40).convertToFormat(QImage::Format_Grayscale8);
    const std::string profile = segment(kApp2, std::string("ICC_PROFILE\0\1\1", 14) + "grey");
    ASSERT_EQ(load(withSegments(encoded(grey), profile)), std::nullopt);
    EXPECT_LE(difference(control_.picture(), grey.convertToFormat(QImage::Format_RGB32)), 12);
    ASSERT_EQ(save(ImageControl::kFormat444), std::nullopt);
    EXPECT_EQ(saved().sampling.size(), 3u);
    EXPECT_FALSE(saved().has(kApp2)) << "a grey profile does not fit a colour picture";
}

TEST_F(ImageControlTest, ExifFormHasItsHeaderFirstAndHalvedColour) {
    ASSERT_EQ(load(encoded(gradient(60, 40))), std::nullopt);
    ASSERT_EQ(save(ImageControl::kFormatExif), std::nullopt);
    EXPECT_EQ(saved().segments.front().first, kApp1);
    EXPECT_FALSE(saved().has(kApp0));
    EXPECT_EQ(saved().sampling, (std::vector<int>{0x22, 0x11, 0x11}));
}

TEST_F(ImageControlTest, FullColourFormIsJfifWithoutExif) {
    ASSERT_EQ(load(withExif(encoded(gradient(60, 40)), cameraExif(1))), std::nullopt);
    ASSERT_EQ(save(ImageControl::kFormat444), std::nullopt);
    EXPECT_EQ(saved().segments.front().first, kApp0);
    EXPECT_EQ(saved().segments.front().second.substr(0, 5), std::string("JFIF\0", 5));
    EXPECT_FALSE(saved().has(kApp1));
    EXPECT_EQ(saved().sampling, (std::vector<int>{0x11, 0x11, 0x11}));
}

TEST_F(ImageControlTest, KeepsTheCamerasExif) {
    const std::string thumbnail = encoded(gradient(16, 12), 50);
    ASSERT_EQ(load(withExif(encoded(gradient(60, 40)), cameraExif(1, thumbnail))), std::nullopt);
    ASSERT_EQ(save(ImageControl::kFormatExif), std::nullopt);
    const TiffEntries exif = savedExif();
    EXPECT_EQ(textOf(exif, Ifd::Zero, kMake), "SkyCam");
    EXPECT_EQ(exif.at({Ifd::Exif, kExposureTime}).bytes, std::string("\1\0\0\0\xFA\0\0\0", 8));
    EXPECT_EQ(numberOf(exif, Ifd::Exif, kUnknownTag), 4711u);
    EXPECT_EQ(textOf(exif, Ifd::Exif, kDateTimeOriginal), kStamp);
    EXPECT_EQ(numberOf(exif, Ifd::Exif, kPixelXDimension), 60u);
    EXPECT_EQ(numberOf(exif, Ifd::Exif, kPixelYDimension), 40u);
    for (const auto& entry : exif)
        EXPECT_NE(entry.first.first, Ifd::One);
    EXPECT_EQ(saved().tiff().find("\xFF\xD8\xFF"), std::string::npos) << "thumbnail left over";
}

TEST_F(ImageControlTest, WithoutAStampTheCamerasDateStays) {
    ASSERT_EQ(load(withExif(encoded(gradient(60, 40)), cameraExif(1))), std::nullopt);
    ASSERT_EQ(save(ImageControl::kFormatExif, 24, ""), std::nullopt);
    EXPECT_EQ(textOf(savedExif(), Ifd::Exif, kDateTimeOriginal), "2001:01:01 00:00:00");
}

TEST_F(ImageControlTest, WritesFreshExifWhereTheCamerasIsMissingOrUnusable) {
    std::string lost = cameraExif(6);
    lost.replace(10, 4, "\xFF\xFF\xFF\x7F"); // the first directory lies outside
    // Fills its segment to the last byte, so that nothing can be added.
    const std::string full = exifPayload({textEntry(kMake, "SkyCam")},
                                         {{kUserComment, 7, 65450, std::string(65450, 'x')}});
    ASSERT_LE(full.size(), 65533u);
    const std::string jpeg = encoded(gradient(60, 40));
    const std::string sources[] = {jpeg, withExif(jpeg, std::string("Exif\0\0garbage", 13)),
                                   withExif(jpeg, std::string("Exif\0\0", 6)), withExif(jpeg, lost),
                                   withExif(jpeg, full)};
    for (const std::string& source : sources) {
        ASSERT_EQ(load(source), std::nullopt);
        EXPECT_EQ(control_.picture().width(), 60);
        ASSERT_EQ(save(ImageControl::kFormatExif), std::nullopt);
        const TiffEntries exif = savedExif();
        EXPECT_EQ(textOf(exif, Ifd::Exif, kDateTimeOriginal), kStamp);
        EXPECT_EQ(numberOf(exif, Ifd::Zero, kOrientation), 1u);
        EXPECT_EQ(numberOf(exif, Ifd::Exif, kPixelXDimension), 60u);
        EXPECT_EQ(textOf(exif, Ifd::Zero, kMake), "missing");
    }
}

TEST_F(ImageControlTest, ColourProfileAndCommentsSurvive) {
    const std::string signature("ICC_PROFILE\0", 12);
    const std::string first(60'000, 'a');
    const std::string second(5'000, 'b');
    const std::string source = withSegments(
        encoded(gradient(60, 40)), segment(kApp2, signature + "\1\2" + first) +
                                       segment(kApp2, signature + "\2\2" + second) +
                                       segment(kCom, "clear sky") + segment(kCom, "second"));
    for (const int format : {10, 98}) {
        ASSERT_EQ(load(source), std::nullopt);
        ASSERT_EQ(save(format), std::nullopt);
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
    struct Case {
        int factor;
        int first;
        int last;
    };
    ASSERT_EQ(load(encoded(gradient(60, 40))), std::nullopt);
    for (const Case& test : {Case{2, 1, 4}, Case{24, 8, 48}, Case{56, 18, 112}, Case{0, 1, 1},
                             Case{-300, 1, 1}, Case{100, 255, 255}, Case{32767, 255, 255}}) {
        ASSERT_EQ(save(98, test.factor), std::nullopt);
        const std::string table = saved().all(0xDB).front();
        EXPECT_EQ(static_cast<unsigned char>(table[1]), test.first) << test.factor;
        EXPECT_EQ(static_cast<unsigned char>(table[64]), test.last) << test.factor;
    }
}

TEST_F(ImageControlTest, MirrorsLeftToRight) {
    ASSERT_EQ(load(encoded(gradient(61, 40))), std::nullopt);
    const QImage before = control_.picture();
    control_.mirror();
    EXPECT_EQ(difference(control_.picture(), before.mirrored(true, false)), 0);
}

QRect changedRegion(const QImage& before, const QImage& after) {
    QRect changed;
    for (int y = 0; y < before.height(); ++y)
        for (int x = 0; x < before.width(); ++x)
            if (before.pixel(x, y) != after.pixel(x, y)) changed |= QRect(x, y, 1, 1);
    return changed;
}

TEST_F(ImageControlTest, StampIsWhiteOnDarkInTheLowerLeftCorner) {
    struct Case {
        QSize size;
        int pixels; ///< of the font
    };
    for (const Case& test : {Case{{1280, 960}, 32}, Case{{400, 300}, 12}}) {
        QImage grey(test.size, QImage::Format_RGB32);
        grey.fill(QColor(128, 128, 128));
        ASSERT_EQ(load(encoded(grey)), std::nullopt);
        const QImage before = control_.picture();
        control_.drawText("2025/06/21 09:30");
        const QImage after = control_.picture();
        const QRect changed = changedRegion(before, after);
        EXPECT_LT(changed.left(), test.pixels);
        EXPECT_GT(changed.top(), test.size.height() - 2 * test.pixels);
        EXPECT_LT(changed.bottom(), test.size.height() - 1);
        // Digits are 0.73 of the font's size high; sixteen of them some 0.57 wide.
        EXPECT_NEAR(changed.height(), test.pixels * 0.9, test.pixels * 0.2);
        EXPECT_NEAR(changed.width(), test.pixels * 9.2, test.pixels * 1.5);
        int white = 0;
        int dark = 0;
        for (int y = changed.top(); y <= changed.bottom(); ++y)
            for (int x = changed.left(); x <= changed.right(); ++x) {
                white += qGreen(after.pixel(x, y)) > 200 ? 1 : 0;
                dark += qGreen(after.pixel(x, y)) < 60 ? 1 : 0;
            }
        EXPECT_GT(white, test.pixels * 10);
        EXPECT_GT(dark, test.pixels * 10);
    }
}

TEST_F(ImageControlTest, TextLargerThanThePictureIsCutOff) {
    ASSERT_EQ(load(encoded(gradient(8, 6))), std::nullopt);
    control_.drawText("2025/06/21 09:30");
    control_.drawText("");
    EXPECT_EQ(control_.picture().size(), QSize(8, 6));
}

/// A header that is all a decoder sees before it must decide.
std::string headerOf(int width, int height, int components) {
    std::string frame = {8,
                         static_cast<char>(height >> 8),
                         static_cast<char>(height & 0xFF),
                         static_cast<char>(width >> 8),
                         static_cast<char>(width & 0xFF),
                         static_cast<char>(components)};
    std::string scan = {static_cast<char>(components)};
    for (int i = 1; i <= components; ++i) {
        frame += {static_cast<char>(i), 0x11, 0};
        scan += {static_cast<char>(i), 0};
    }
    scan += {0, 63, 0};
    return "\xFF\xD8" + segment(0xC0, frame) + segment(0xDA, scan) + "\xFF\xD9";
}

TEST_F(ImageControlTest, RefusesWhatItCannotDecode) {
    const std::string whole = encoded(gradient(60, 40));
    std::string cutShort = whole;
    cutShort.replace(whole.size() - 200, 2, "\xFF\xD9"); // end marker amid the pixels
    struct Case {
        std::string bytes;
        const char* reason;
    };
    const Case cases[] = {
        {"", "Empty input file"},
        {"<html><body>Not Found</body></html>", "Not a JPEG file"},
        {headerOf(64, 64, 4), "CMYK pictures are not supported"},
        {headerOf(20000, 20000, 3), "Picture of 20000 x 20000 pixels is too large"},
        {cutShort, "Corrupt JPEG data"},
        {whole.substr(0, whole.size() - 2), "Premature end of JPEG file"},
        {whole.substr(0, 100), "JPEG datastream contains no image"}};
    for (const Case& test : cases) {
        ASSERT_EQ(load(whole), std::nullopt);
        const std::string fault = load(test.bytes).value_or("none");
        EXPECT_NE(fault.find(test.reason), std::string::npos) << fault;
        EXPECT_TRUE(control_.picture().isNull());
        EXPECT_EQ(save(98), "No picture to save");
        EXPECT_FALSE(std::filesystem::exists(target_));
    }
}

TEST_F(ImageControlTest, RefusesEveryTruncation) {
    for (const bool progressive : {false, true}) {
        const std::string whole = encoded(gradient(40, 24), 80, progressive);
        for (std::size_t length = 0; length < whole.size(); length += 7) {
            EXPECT_NE(load(whole.substr(0, length)).value_or(""), "") << length;
        }
    }
}

TEST_F(ImageControlTest, TellsWhyAFileCannotBeReadOrWritten) {
    EXPECT_EQ(finish(clock_, control_.load(folder_.path() / "missing.jpg")),
              "No such file or directory");
    ASSERT_EQ(load(encoded(gradient(60, 40))), std::nullopt);
    EXPECT_EQ(save(11), "Unknown picture format 11");
    std::filesystem::create_directories(target_ / "occupied");
    const auto before = listing(folder_.path());
    EXPECT_NE(save(98).value_or(""), "");
    EXPECT_EQ(listing(folder_.path()), before);
}

TEST_F(ImageControlTest, TaskMayBeDestroyedInTheMiddle) {
    const std::string big = encoded(gradient(1500, 1000));
    writeFile(source_, big);
    {
        Task<Fault> loading = control_.load(source_);
        loading.start();
        ASSERT_FALSE(loading.done());
    }
    EXPECT_EQ(clock_.pending(), 0u);
    EXPECT_TRUE(control_.picture().isNull());
    ASSERT_EQ(load(big), std::nullopt);
    {
        Task<Fault> saving = control_.save(target_, 98, 24, "");
        saving.start();
        ASSERT_FALSE(saving.done());
    }
    EXPECT_EQ(clock_.pending(), 0u);
    EXPECT_EQ(listing(folder_.path()), std::vector<std::string>{"source.jpg"});
}

TEST_F(ImageControlTest, SaveKeepsItsPictureWhileAnotherIsLoaded) {
    ASSERT_EQ(load(encoded(gradient(1500, 1000))), std::nullopt);
    Task<Fault> saving = control_.save(target_, 98, 2, "");
    saving.start();
    ASSERT_FALSE(saving.done());
    const auto other = folder_.path() / "other.jpg";
    writeFile(other, encoded(gradient(40, 30)));
    Task<Fault> loading = control_.load(other);
    loading.start();
    clock_.runUntil([&] { return loading.done(); }, std::chrono::hours(1));
    ASSERT_EQ(loading.result(), std::nullopt);
    ASSERT_FALSE(saving.done());
    clock_.runUntil([&] { return saving.done(); }, std::chrono::hours(1));
    ASSERT_EQ(saving.result(), std::nullopt);
    EXPECT_LE(meanDifference(decoded(target_), gradient(1500, 1000)), 2);
    EXPECT_EQ(control_.picture().size(), QSize(40, 30));
}

} // namespace
} // namespace orvane::test

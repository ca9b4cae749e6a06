#include "imaging/JpegMarkers.h"
#include "imaging/ProcessImageFile.h"
#include "platform/qt/JpegDecoder.h"
#include "platform/qt/LibjpegImageControl.h"
#include "tests/support/TestPictures.h"
#include "ui/pictures/LatestWindow.h"
#include "ui/pictures/ViewGeometry.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

std::string bytesOf(const std::vector<int>& values) {
    std::string bytes;
    for (const int value : values)
        bytes += static_cast<char>(value);
    return bytes;
}

/// Whole as encoders write them, with their own size (not the thumbnail's) and whatever follows,
/// and never whole when they are cut.
TEST(JpegMarkers, KnowWholePicturesAndTheirSize) {
    const QImage picture = gradient(24, 16);
    const std::string exif = exifPayload({shortEntry(0x0112, 1)}, {}, encoded(gradient(32, 24)));
    const std::string pictures[] = {encoded(picture), encoded(picture, 80, true),
                                    encoded(picture.convertToFormat(QImage::Format_Grayscale8)),
                                    withSegments(encoded(picture), segment(0xE1, exif))};
    for (const std::string& whole : pictures) {
        EXPECT_TRUE(isWholeJpeg(whole));
        EXPECT_TRUE(isWholeJpeg(whole + "trailing bytes \xFF\xD8"));
        const JpegSize size = jpegSize(whole).value_or(JpegSize{});
        EXPECT_EQ(std::pair(size.width, size.height), std::pair(24, 16));
        for (std::size_t length = 0; length < whole.size(); ++length) {
            // A copy of exactly this size, so that the sanitizer sees any step outside.
            const std::vector<char> cut(whole.begin(),
                                        whole.begin() + static_cast<std::ptrdiff_t>(length));
            ASSERT_FALSE(isWholeJpeg({cut.data(), cut.size()})) << length;
        }
    }
    for (const std::string& none :
         {std::string("<html>"), bytesOf({0xFF, 0xD8, 0xFF, 0xC0, 0, 6, 8, 0, 50, 0, 70}), // short
          bytesOf({0xFF, 0xD8, 0xFF, 0xC4, 0, 7, 8, 0, 50, 0, 70})}) // a table, no frame header
        EXPECT_FALSE(jpegSize(none) || isWholeJpeg(none));
}

TEST(JpegMarkers, FollowTheStructure) {
    const struct {
        const char* name;
        std::vector<int> bytes;
        bool whole = false;
    } cases[] = {
        {"no scan", {0xFF, 0xD8, 0xFF, 0xD9}},
        {"stuffed zero, restart, fill bytes",
         {0xFF, 0xD8, 0xFF, 0xFF, 0xFF, 0xDA, 0, 2, 0x12, 0xFF, 0, 0x34, 0xFF, 0xD3, 0x56, 0xFF,
          0xFF, 0xD9},
         true},
        {"two scans with a table between",
         {0xFF, 0xD8, 0xFF, 0xDA, 0, 2, 1, 0xFF, 0xC4, 0, 3, 9, 0xFF, 0xDA, 0, 2, 2, 0xFF, 0xD9},
         true},
        {"end marker inside a segment only",
         {0xFF, 0xD8, 0xFF, 0xE1, 0, 4, 0xFF, 0xD9, 0xFF, 0xDA, 0, 2, 1}},
        {"second start marker", {0xFF, 0xD8, 0xFF, 0xD8, 0xFF, 0xDA, 0, 2, 0xFF, 0xD9}},
        {"length below two", {0xFF, 0xD8, 0xFF, 0xE0, 0, 1, 0xFF, 0xDA, 0, 2, 0xFF, 0xD9}},
        {"beyond the end", {0xFF, 0xD8, 0xFF, 0xDA, 0, 2, 1, 0xFF, 0xE0, 0, 9, 0xFF, 0xD9}},
        {"garbage between segments", {0xFF, 0xD8, 0x00, 0xFF, 0xDA, 0, 2, 1, 0xFF, 0xD9}},
        {"leading byte", {0, 0xFF, 0xD8, 0xFF, 0xDA, 0, 2, 1, 0xFF, 0xD9}}};
    for (const auto& [name, bytes, whole] : cases)
        EXPECT_EQ(isWholeJpeg(bytesOf(bytes)), whole) << name;
}

TEST(ViewGeometry, ZoomCountsThePixelsOfTheScreen) {
    ViewGeometry geometry;
    geometry.setPicture({1600, 1200});
    geometry.setView({400, 400}, 1.5);
    EXPECT_DOUBLE_EQ(geometry.zoom(), 0.375) << "1600 pixels on 600 of the screen";
    EXPECT_EQ(geometry.toView({0, 0, 1600, 1200}), QRectF(0, 50, 400, 300));
    geometry.zoomTo(1, geometry.centreOfView());
    EXPECT_EQ(geometry.visiblePart(), QRectF(500, 300, 600, 600));
    geometry.setPicture({1600, 1201});
    EXPECT_TRUE(geometry.isFitted()) << "a picture of another size is shown whole";
}

TEST(PictureDecoder, DecodesNoMorePixelsThanTheBoundNeeds) {
    const struct {
        QSize picture, bound, decoded;
    } cases[] = {{{800, 600}, {400, 400}, {400, 300}}, {{800, 600}, {90, 90}, {100, 75}},
                 {{800, 600}, {101, 76}, {200, 150}},  {{800, 600}, {2000, 2000}, {800, 600}},
                 {{600, 800}, {400, 400}, {300, 400}}, {{801, 3}, {100, 100}, {101, 1}}};
    for (const auto& [picture, bound, expected] : cases) {
        const std::string jpeg = encoded(gradient(picture.width(), picture.height()));
        JpegDecoder decoder(jpeg, bound);
        ASSERT_EQ(decoder.begin(), std::nullopt);
        EXPECT_EQ(decoder.fullSize(), picture);
        while (decoder.more())
            ASSERT_EQ(decoder.decodeSlice(), std::nullopt);
        EXPECT_EQ(decoder.take().pixels.size(), expected)
            << picture.width() << " in " << bound.width();
    }
}

TEST(PictureAge, CountsInWholeUnits) {
    const std::pair<std::chrono::milliseconds, const char*> cases[] = {
        {-5s, "0 s ago"},      {59999ms, "59 s ago"},      {60s, "1 min ago"},
        {3599s, "59 min ago"}, {7500s, "2 h 05 min ago"},  {47h + 59min, "47 h 59 min ago"},
        {48h, "2 days ago"},   {24h * 400, "400 days ago"}};
    for (const auto& [age, text] : cases)
        EXPECT_EQ(ageText(age), text);
}

constexpr std::int16_t kOn = -1;
constexpr int kMake = 0x010F, kOrientation = 0x0112, kDateTimeOriginal = 0x9003;

using Names = std::vector<std::string>;

struct ProcessImageFileTest : testing::Test {
    Fault process(const ImageOptions& options, bool processingOn = true) {
        return finish(clock_, ProcessImageFile(control_, image_, options, processingOn));
    }
    Names edited() const { return listing(folder_.path() / "Edit"); }

    TempFolder folder_;
    std::filesystem::path image_ = folder_.path() / "20250621" / "20250621_093000_00.jpg";
    std::filesystem::path copy_ = folder_.path() / "Edit" / "20250621" / "20250621_093000_00.jpg";
    std::string source_ = encoded(gradient(320, 240));
    JumpingClock clock_{at(2025, 6, 21, 9, 30)};
    LibjpegImageControl control_{clock_};
};

TEST_F(ProcessImageFileTest, AppliesMirrorAndStampAndKeepsTheRawFile) {
    writeFile(image_, source_);
    ASSERT_EQ(process({.LrFlg = kOn, .RawFlg = kOn}, false), std::nullopt);
    EXPECT_EQ(edited(), Names()) << "switched off";
    const struct {
        ImageOptions options;
        bool mirrored, stamped;
    } cases[] = {
        {{.Quality = 2, .JpegTyp = 98}, false, false},
        {{.Quality = 2, .DateFlg = kOn, .JpegTyp = 98}, false, false},
        {{.Quality = 2, .LrFlg = kOn, .JpegTyp = 98}, true, false},
        {{.Quality = 2, .LrFlg = kOn, .DateFlg = kOn, .RawFlg = kOn, .JpegTyp = 98}, true, true}};
    for (const auto& [options, mirrored, stamped] : cases) {
        ASSERT_EQ(process(options), std::nullopt);
        const QImage plain = gradient(320, 240).mirrored(mirrored, false);
        const QImage result = decoded(copy_);
        const QRect upper(0, 0, 320, 200), corner(0, 210, 150, 30);
        EXPECT_LE(meanDifference(result.copy(upper), plain.copy(upper)), 2);
        EXPECT_EQ(difference(result.copy(corner), plain.copy(corner)) > 100, stamped);
        EXPECT_EQ(contentsOf(image_), source_) << "the camera's file was changed";
        EXPECT_TRUE(control_.picture().isNull()) << "the pixels are still held";
        EXPECT_EQ(std::filesystem::exists(rawPathOf(image_)), options.RawFlg != 0);
        const JpegParts parts = partsOf(contentsOf(copy_));
        EXPECT_EQ(parts.sampling.front(), 0x11);
        EXPECT_EQ(parts.all(0xDB).front()[64], 4) << "of quality 98";
    }
    EXPECT_EQ(edited(), (Names{"20250621", "20250621/20250621_093000_00.jpg",
                               "20250621/20250621_093000_00_raw.jpg"}));
    EXPECT_EQ(contentsOf(rawPathOf(image_)), source_);
}

/// A picture that is turned by its header is worked on as a whole, any other one some rows after
/// the others, by pixels or by planes: they must not differ.
TEST_F(ProcessImageFileTest, RowsAfterRowsOrAsAWholeIsTheSame) {
    const struct {
        QSize size;
        bool progressive;
        std::int16_t format;
    } cases[] = {{{1500, 1000}, false, ImageControl::kFormatExif},
                 {{1500, 1000}, true, ImageControl::kFormatExif},
                 {{1500, 1000}, false, ImageControl::kFormat444},
                 {{1500, 1000}, true, ImageControl::kFormat444},
                 {{1601, 900}, false, ImageControl::kFormatExif},
                 {{322, 203}, false, ImageControl::kFormatExif}};
    for (const auto& [size, progressive, format] : cases) {
        SCOPED_TRACE(std::to_string(size.width()) + " " + std::to_string(format) +
                     (progressive ? " progressive" : ""));
        const QImage sky = gradient(size.width(), size.height());
        QImage made[2];
        for (const int orientation : {1, 3}) {
            const std::string exif = exifPayload(
                {textEntry(kMake, "SkyCam"), shortEntry(kOrientation, orientation)}, {});
            const bool turned = orientation == 3;
            writeFile(image_, withSegments(encoded(sky.mirrored(turned, turned), 95, progressive),
                                           segment(0xE1, exif) + segment(0xFE, "roof")));
            ASSERT_EQ(process({.Quality = 2, .LrFlg = kOn, .DateFlg = kOn, .JpegTyp = format}),
                      std::nullopt);
            made[turned ? 1 : 0] = decoded(copy_);
            const JpegParts parts = partsOf(contentsOf(copy_));
            EXPECT_EQ(parts.all(0xFE), std::vector<std::string>{"roof"});
            if (format == ImageControl::kFormat444) continue;
            const TiffEntries written = tiffEntries(parts.tiff());
            EXPECT_EQ(textOf(written, Ifd::Zero, kMake), "SkyCam");
            EXPECT_EQ(textOf(written, Ifd::Exif, kDateTimeOriginal), "2025:06:21 09:30:00");
        }
        EXPECT_EQ(made[0].size(), made[1].size());
        EXPECT_LT(meanDifference(made[0], made[1]), 1);
        EXPECT_LT(difference(made[0], made[1]), 80) << "the stamp stands where it stood";
    }
}

TEST_F(ProcessImageFileTest, FailureLeavesNoFile) {
    for (const std::string& bytes :
         {std::string("<html>busy</html>"), source_.substr(0, source_.size() / 2), std::string()}) {
        writeFile(image_, bytes);
        EXPECT_NE(process({.RawFlg = kOn}).value_or(""), "");
        EXPECT_EQ(edited(), Names());
        EXPECT_EQ(contentsOf(image_), bytes);
    }
    std::filesystem::remove(image_);
    EXPECT_EQ(process({}), "No such file or directory");

    writeFile(image_, source_);
    EXPECT_EQ(process({.JpegTyp = 11}), "Unknown picture format 11");
    EXPECT_EQ(edited(), Names{"20250621"});

    const auto edit = folder_.path() / "Edit";
    std::filesystem::remove_all(edit);
    writeFile(edit, "a file of the user's");
    EXPECT_NE(process({.RawFlg = kOn}).value_or(""), "");
    EXPECT_TRUE(control_.picture().isNull());
    EXPECT_EQ(contentsOf(edit), "a file of the user's");
}

TEST_F(ProcessImageFileTest, MayBeDestroyedAtAnyWait) {
    writeFile(image_, encoded(gradient(1500, 1000)));
    const int waits = destroyAtEveryWait(clock_, [this] {
        EXPECT_LE(edited().size(), 1u) << "no more than the folder of the day";
        const ImageOptions options{.LrFlg = kOn, .DateFlg = kOn, .RawFlg = kOn};
        return ProcessImageFile(control_, image_, options, true);
    });
    EXPECT_GE(waits, 4) << "loading and saving 1.5 megapixels take two waits each";
}

TEST(ProcessedPaths, LieInTheEditTree) {
    const std::filesystem::path data = std::filesystem::path("sky") / u8"空の写真";
    EXPECT_EQ(editPathOf(data / "20250621" / "a.jpg"), data / "Edit" / "20250621" / "a.jpg");
    EXPECT_EQ(rawPathOf(data / "20250621" / "a.b.jpg"), data / "Edit" / "20250621" / "a.b_raw.jpg");
    EXPECT_EQ(editPathOf("20250621/a.jpg"), std::filesystem::path("Edit/20250621/a.jpg"));
}

TEST(StampText, IsCutByPosition) {
    const struct {
        const char8_t* path;
        const char *text, *exif;
    } cases[] = {
        {u8"/data/20250621/20250621_093005_00.jpg", "2025/06/21 09:30", "2025:06:21 09:30:05"},
        {u8"/data/x/20250621_093005_00.jpeg", "0250/62/1_ 93:00", ""}, // the last 22 characters
        {u8"/sky.jpg", "/sky/.j/pg :", ""},
        {u8"a", "a// :", ""},
        {u8"", "// :", ""},
        {u8"20250621_0930", "2025/06/21 09:30", ""},
        {u8"/写真/20250621_093005_空0.jpg", "2025/06/21 09:30", "2025:06:21 09:30:05"},
        {u8"空空空空空空空空空空空空空空空空空空空空空空空", "空空空空/空空/空空 空空:空空", ""},
        {u8"/data/2025o621_093005_00.jpg", "2025/o6/21 09:30", ""}};
    for (const auto& [path, text, exif] : cases) {
        EXPECT_EQ(stampTextOf(path), text);
        EXPECT_EQ(exifStampOf(path), exif);
    }
}

} // namespace
} // namespace orvane::test

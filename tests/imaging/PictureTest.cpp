#include "imaging/JpegMarkers.h"
#include "platform/qt/JpegDecoder.h"
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

} // namespace
} // namespace orvane::test

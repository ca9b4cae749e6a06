#include "imaging/JpegMarkers.h"

#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

std::string bytesOf(std::initializer_list<int> values) {
    std::string bytes;
    for (const int value : values)
        bytes += static_cast<char>(value);
    return bytes;
}

std::string thumbnailed(const std::string& jpeg) {
    return withSegments(
        jpeg, segment(0xE1, exifPayload({shortEntry(0x0112, 1)}, {}, encoded(gradient(32, 24)))));
}

TEST(JpegMarkers, AcceptWhatEncodersWrite) {
    const QImage picture = gradient(70, 50);
    EXPECT_TRUE(isWholeJpeg(encoded(picture)));
    EXPECT_TRUE(isWholeJpeg(encoded(picture, 80, true)));
    EXPECT_TRUE(isWholeJpeg(encoded(picture.convertToFormat(QImage::Format_Grayscale8))));
    EXPECT_TRUE(isWholeJpeg(thumbnailed(encoded(picture))));
    EXPECT_TRUE(isWholeJpeg(encoded(picture) + "trailing bytes \xFF\xD8"));
}

TEST(JpegMarkers, TellThePicturesOwnSize) {
    const QImage picture = gradient(70, 50);
    const auto size = [](const std::string& bytes) {
        const JpegSize told = jpegSize(bytes).value_or(JpegSize{});
        return std::pair(told.width, told.height);
    };
    EXPECT_EQ(size(encoded(picture)), std::pair(70, 50));
    EXPECT_EQ(size(encoded(picture, 80, true)), std::pair(70, 50));
    EXPECT_EQ(size(thumbnailed(encoded(picture))), std::pair(70, 50)) << "not the thumbnail's";
    EXPECT_EQ(size("<html>"), std::pair(0, 0));
    EXPECT_EQ(size(bytesOf({0xFF, 0xD8, 0xFF, 0xC0, 0, 6, 8, 0, 50, 0, 70})), std::pair(0, 0))
        << "a frame header that is too short";
    EXPECT_EQ(size(bytesOf({0xFF, 0xD8, 0xFF, 0xC4, 0, 7, 8, 0, 50, 0, 70})), std::pair(0, 0))
        << "a table, no frame header";
}

TEST(JpegMarkers, RefuseEveryTruncation) {
    const std::string pictures[] = {encoded(gradient(24, 16)), encoded(gradient(24, 16), 80, true),
                                    thumbnailed(encoded(gradient(24, 16)))};
    for (const std::string& whole : pictures)
        for (std::size_t length = 0; length < whole.size(); ++length) {
            // A copy of exactly this size, so that the sanitizer sees any step outside.
            const std::vector<char> cut(whole.begin(),
                                        whole.begin() + static_cast<std::ptrdiff_t>(length));
            ASSERT_FALSE(isWholeJpeg({cut.data(), cut.size()})) << length;
        }
}

TEST(JpegMarkers, FollowTheStructure) {
    struct Case {
        const char* name;
        std::string bytes;
        bool whole;
    };
    const Case cases[] = {
        {"empty", "", false},
        {"page", "<html><body>503 Service Unavailable</body></html>", false},
        {"start marker only", bytesOf({0xFF, 0xD8}), false},
        {"no scan", bytesOf({0xFF, 0xD8, 0xFF, 0xD9}), false},
        {"stuffed zero, restart, fill bytes",
         bytesOf({0xFF, 0xD8, 0xFF, 0xFF, 0xFF, 0xDA, 0, 2, 0x12, 0xFF, 0, 0x34, 0xFF, 0xD3, 0x56,
                  0xFF, 0xFF, 0xD9}),
         true},
        {"two scans with a table between",
         bytesOf({0xFF, 0xD8, 0xFF, 0xDA, 0, 2, 1, 0xFF, 0xC4, 0, 3, 9, 0xFF, 0xDA, 0, 2, 2, 0xFF,
                  0xD9}),
         true},
        {"end marker inside a segment only",
         bytesOf({0xFF, 0xD8, 0xFF, 0xE1, 0, 4, 0xFF, 0xD9, 0xFF, 0xDA, 0, 2, 1}), false},
        {"second start marker", bytesOf({0xFF, 0xD8, 0xFF, 0xD8, 0xFF, 0xDA, 0, 2, 0xFF, 0xD9}),
         false},
        {"segment length below two",
         bytesOf({0xFF, 0xD8, 0xFF, 0xE0, 0, 1, 0xFF, 0xDA, 0, 2, 0xFF, 0xD9}), false},
        {"segment reaching behind the end",
         bytesOf({0xFF, 0xD8, 0xFF, 0xDA, 0, 2, 1, 0xFF, 0xE0, 0, 9, 0xFF, 0xD9}), false},
        {"garbage between segments", bytesOf({0xFF, 0xD8, 0x00, 0xFF, 0xDA, 0, 2, 1, 0xFF, 0xD9}),
         false},
        {"leading byte", bytesOf({0, 0xFF, 0xD8, 0xFF, 0xDA, 0, 2, 1, 0xFF, 0xD9}), false},
    };
    for (const Case& test : cases)
        EXPECT_EQ(isWholeJpeg(test.bytes), test.whole) << test.name;
}

} // namespace
} // namespace orvane::test

#include "platform/qt/JpegDecoder.h"
#include "tests/support/JumpingClock.h"
#include "tests/support/TestPictures.h"
#include "ui/pictures/LatestWindow.h"
#include "ui/pictures/ViewGeometry.h"

#include <gtest/gtest.h>

namespace orvane::test {
namespace {

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

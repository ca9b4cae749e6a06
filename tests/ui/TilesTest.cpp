#include "ui/pictures/Tiles.h"

#include <gtest/gtest.h>

#include <set>

namespace orvane::test {
namespace {

std::vector<Tile> windowsOf(std::size_t count, QSize picture = {640, 480}, QSize around = {0, 0}) {
    return std::vector<Tile>(count, Tile{picture, around, {100, 80}});
}

TEST(Tiles, TakesTheGridWithTheLargestPictures) {
    struct Case {
        QSize area;
        std::size_t windows;
        QSize picture;
        std::size_t rows;
        QSize around{0, 0};
    };
    // rows: of different tops. By hand: 3 in 900 x 300 are 300 x 225 each in one row, but 200 x 150
    // in two; 7 in 1200 x 900 are 400 x 300 each in three rows, but four of them only 300 x 225 in
    // two. A frame's title and status line cost rows more than columns.
    const Case cases[] = {
        {{800, 600}, 1, {640, 480}, 1},
        {{800, 600}, 2, {640, 480}, 1},
        {{600, 800}, 2, {640, 480}, 2},
        {{900, 300}, 3, {640, 480}, 1},
        {{800, 600}, 4, {640, 480}, 2},
        {{1200, 900}, 7, {640, 480}, 3},
        {{800, 600}, 3, {300, 900}, 1},
        {{800, 600}, 3, {900, 300}, 3},
        {{800, 600}, 3, {640, 480}, 2},
        {{800, 640}, 2, {1600, 600}, 2},
        {{800, 640}, 2, {1600, 600}, 1, {0, 240}},
    };
    for (const Case& c : cases) {
        std::set<int> tops;
        for (const QRect& place : tilesIn(c.area, windowsOf(c.windows, c.picture, c.around)))
            tops.insert(place.top());
        EXPECT_EQ(tops.size(), c.rows) << c.windows << " in " << c.area.width();
    }
}

TEST(Tiles, FillTheAreaWithoutGapsOrOverlap) {
    const QSize area(1001, 701);
    for (const std::size_t count : {1U, 2U, 3U, 5U, 7U, 11U, 24U}) {
        const auto places = tilesIn(area, windowsOf(count, {640, 480}, {10, 50}));
        ASSERT_EQ(places.size(), count);
        int covered = 0;
        for (std::size_t i = 0; i < count; ++i) {
            EXPECT_TRUE(QRect({}, area).contains(places[i]));
            covered += places[i].width() * places[i].height();
            for (std::size_t j = 0; j < i; ++j)
                EXPECT_FALSE(places[i].intersects(places[j])) << i << " and " << j;
        }
        EXPECT_EQ(covered, area.width() * area.height()) << count;
    }
    EXPECT_TRUE(tilesIn(area, {}).empty());
}

/// One window beside two: 400 x 300 each, and no column left empty.
TEST(Tiles, StandInColumnsWhereThatIsMore) {
    const auto places = tilesIn({800, 640}, windowsOf(3, {400, 320}, {0, 40}));
    EXPECT_EQ(places,
              (std::vector<QRect>{{0, 0, 400, 320}, {0, 320, 400, 320}, {400, 0, 400, 640}}));
}

TEST(Tiles, GoOnBelowWhereTheAreaIsTooSmall) {
    const auto places = tilesIn({350, 200}, windowsOf(24));
    ASSERT_EQ(places.size(), 24U);
    for (const QRect& place : places) {
        EXPECT_GE(place.width(), 100);
        EXPECT_GE(place.height(), 80);
        EXPECT_LE(place.right(), 349);
    }
    EXPECT_EQ(places.back().bottom(), 8 * 80 - 1);
}

} // namespace
} // namespace orvane::test

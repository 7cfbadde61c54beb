#include "drawing/Rect.h"

#include <gtest/gtest.h>

#include <limits>

namespace norvane {
namespace {

constexpr Rect rect(double x, double y, double width, double height) {
    return {{x, y}, {width, height}};
}

TEST(Rect, IsEmptyWithoutAnArea) {
    EXPECT_TRUE(rect(3, 4, 0, 5).isEmpty());
    EXPECT_TRUE(rect(3, 4, -1, 5).isEmpty());
    EXPECT_TRUE(rect(3, 4, std::numeric_limits<double>::quiet_NaN(), 5).isEmpty());
    EXPECT_FALSE(rect(3, 4, 0.1, 5).isEmpty());
}

TEST(Rect, SharesNoPointWithItsNeighbours) {
    const Rect left = rect(0, 0, 10, 10);
    const Rect right = rect(10, 0, 10, 10);
    const Rect below = rect(0, 10, 10, 10);
    for (const Point& point : {Point{0, 0}, Point{10, 0}, Point{0, 10}, Point{10, 9.5}}) {
        EXPECT_EQ(left.contains(point) + right.contains(point) + below.contains(point), 1)
            << point.x << ',' << point.y;
    }
    EXPECT_FALSE(left.contains({-0.5, 5}));
}

TEST(Rect, IntersectsAndUnites) {
    struct Case {
        const char* name;
        Rect one, other, common, around;
    };
    for (const Case& c : {
             Case{"overlapping at a corner", rect(0, 0, 10, 10), rect(6, 7, 10, 10), rect(6, 7, 4, 3),
                  rect(0, 0, 16, 17)},
             Case{"a cross", rect(-5, 0, 20, 2), rect(0, -5, 2, 20), rect(0, 0, 2, 2), rect(-5, -5, 20, 20)},
             Case{"side by side", rect(0, 0, 10, 10), rect(10, 0, 10, 10), {}, rect(0, 0, 20, 10)},
             Case{"apart", rect(0, 0, 1, 1), rect(8, 9, 1, 1), {}, rect(0, 0, 9, 10)},
             Case{"an empty one, elsewhere", rect(0, 0, 10, 10), rect(90, 90, 0, 5), {}, rect(0, 0, 10, 10)},
         }) {
        EXPECT_EQ(c.one.intersection(c.other), c.common) << c.name;
        EXPECT_EQ(c.other.intersection(c.one), c.common) << c.name;
        EXPECT_EQ(c.one.intersects(c.other), !c.common.isEmpty()) << c.name;
        EXPECT_EQ(c.one.united(c.other), c.around) << c.name;
        EXPECT_EQ(c.other.united(c.one), c.around) << c.name;
    }
}

TEST(Rect, IsNeverInsetToLessThanNothing) {
    EXPECT_EQ(rect(10, 20, 30, 40).inset({1, 2, 3, 4}), rect(12, 21, 24, 36));
    EXPECT_EQ(rect(10, 20, 30, 40).inset(Insets::all(25)).size, (Size{0, 0}));
    EXPECT_EQ(rect(10, 20, 30, 40).outset(2), rect(8, 18, 34, 44));
}

}  // namespace
}  // namespace norvane

#include <gtest/gtest.h>

#include <limits>

#include "drawing/Contrast.h"
#include "drawing/Shape.h"

namespace norvane {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(Rect, IntersectsAndUnites) {
    struct Case {
        const char* name;
        Rect one, other, common, around;
    };
    const Rect ten{{0, 0}, {10, 10}};
    for (const Case& c :
         {Case{"overlapping at a corner", ten, {{6, 7}, {10, 10}}, {{6, 7}, {4, 3}}, {{0, 0}, {16, 17}}},
          Case{"side by side", ten, {{10, 0}, {10, 10}}, {}, {{0, 0}, {20, 10}}},
          Case{"an empty one, elsewhere", ten, {{90, 90}, {-1, 5}}, {}, ten}}) {
        EXPECT_EQ(c.one.intersection(c.other), c.common) << c.name;
        EXPECT_EQ(c.other.intersection(c.one), c.common) << c.name;
        EXPECT_EQ(c.one.intersects(c.other), !c.common.isEmpty()) << c.name;
        EXPECT_EQ(c.one.united(c.other), c.around) << c.name;
        EXPECT_EQ(c.other.united(c.one), c.around) << c.name;
    }
    const Rect right{{10, 0}, {10, 10}};
    for (const Point& point : {Point{0, 0}, Point{10, 0}, Point{10, 9.5}})
        EXPECT_NE(ten.contains(point), right.contains(point)) << "neighbours share no point";
    EXPECT_FALSE(ten.contains({0, 10}));
    EXPECT_EQ(ten.inset({1, 2, 3, 4}), (Rect{{2, 1}, {4, 6}}));
    EXPECT_EQ(ten.inset(Insets::all(25)).size, Size{}) << "never less than nothing";
}

TEST(Shape, LiesWithinItsBounds) {
    const auto path = std::make_shared<const Path>(Path{
        {Path::MoveTo{{1, 2}}, Path::LineTo{{5, 2}}, Path::CurveTo{{9, 4}, {7, 12}, {3, 8}}, Path::Close{}}});
    const auto odd =
        std::make_shared<const Path>(Path{{Path::MoveTo{{kNaN, 1}}, Path::LineTo{{3, 4}}, Path::Close{}}});
    struct Case {
        const char* name;
        Shape shape;
        Rect want;
    };
    for (const Case& c : {Case{"an arc: its whole circle", Arc{{10, 20}, 5, 0, 0.25}, {{5, 15}, {10, 10}}},
                          Case{"a path, placed", PlacedPath{path, {100, 200}, 2, 3}, {{102, 206}, {16, 30}}},
                          Case{"one that is mirrored", PlacedPath{path, {}, -1, 1}, {{-9, 2}, {8, 10}}},
                          Case{"no path", PlacedPath{nullptr, {7, 7}}, {}},
                          Case{"an empty path", PlacedPath{std::make_shared<const Path>(), {7, 7}}, {}},
                          Case{"a path of no numbers", PlacedPath{odd, {}}, {{3, 4}, {0, 0}}}})
        EXPECT_EQ(boundsOf(c.shape), c.want) << c.name;
    const auto same = std::make_shared<const Path>(*path);
    EXPECT_EQ((PlacedPath{path, {}}), (PlacedPath{same, {}}));
    EXPECT_NE((PlacedPath{path, {}}), (PlacedPath{odd, {}}));
    EXPECT_NE((PlacedPath{path, {}}), (PlacedPath{path, {1, 0}}));
    EXPECT_NE((PlacedPath{path, {}}), (PlacedPath{nullptr, {}}));
}

// Values that anybody's checker gives for these pairs.
TEST(Contrast, IsTheOneThatEveryCheckerTells) {
    const auto grey = [](int level) { return Color{level / 255.0, level / 255.0, level / 255.0, 1}; };
    const Color white = grey(255), red{1, 0, 0, 1};
    for (const auto& [one, other, want] : {std::tuple{grey(0), white, 21.0},
                                           {grey(99), grey(99), 1.0},
                                           {grey(0x76), white, 4.54},
                                           {Color{0, 1, 0, 1}, white, 1.37},
                                           {Color{1, 1, 0, 1}, grey(0), 19.56},
                                           {grey(3), grey(0), 1.02}}) {
        EXPECT_NEAR(contrastBetween(one, other), want, 0.005);
        EXPECT_NEAR(contrastBetween(other, one), want, 0.005);
    }
    EXPECT_EQ(laidUpon(Color::clear(), red), red);
    EXPECT_EQ(laidUpon(red.withOpacity(0.25), {0, 0, 1, 1}), (Color{0.25, 0, 0.75, 1}));
}

}  // namespace
}  // namespace norvane

#include "drawing/Shape.h"

#include <gtest/gtest.h>

#include <limits>

namespace norvane {
namespace {

TEST(Shape, LiesWithinItsBounds) {
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    const auto path = std::make_shared<const Path>(Path{
        {Path::MoveTo{{1, 2}}, Path::LineTo{{5, 2}}, Path::CurveTo{{9, 4}, {7, 12}, {3, 8}}, Path::Close{}}});
    struct Case {
        const char* name;
        Shape shape;
        Rect want;
    };
    for (const Case& c : {
             Case{"a rounded rectangle", RoundedRect{{{1, 2}, {3, 4}}, 9}, {{1, 2}, {3, 4}}},
             Case{"an arc: its whole circle", Arc{{10, 20}, 5, 0, 0.25}, {{5, 15}, {10, 10}}},
             Case{"a path: its points and control points", PlacedPath{path, {}}, {{1, 2}, {8, 10}}},
             Case{"one that is placed", PlacedPath{path, {100, 200}, 2, 3}, {{102, 206}, {16, 30}}},
             Case{"one that is mirrored", PlacedPath{path, {}, -1, 1}, {{-9, 2}, {8, 10}}},
             Case{"no path", PlacedPath{nullptr, {7, 7}}, {}},
             Case{"an empty path", PlacedPath{std::make_shared<const Path>(), {7, 7}}, {}},
             Case{
                 "a path of no numbers",
                 PlacedPath{
                     std::make_shared<const Path>(Path{{Path::MoveTo{{kNaN, 1}}, Path::LineTo{{3, 4}}}}), {}},
                 {{3, 4}, {0, 0}}},
         }) {
        EXPECT_EQ(boundsOf(c.shape), c.want) << c.name;
    }
}

TEST(Shape, PathsOfTheSameSegmentsAreTheSame) {
    const auto make = [](double x) { return std::make_shared<const Path>(Path{{Path::MoveTo{{x, 2}}}}); };
    const auto shared = make(1);
    EXPECT_EQ((PlacedPath{shared, {}}), (PlacedPath{shared, {}}));
    EXPECT_EQ((PlacedPath{make(1), {}}), (PlacedPath{make(1), {}}));
    EXPECT_NE((PlacedPath{make(1), {}}), (PlacedPath{make(2), {}}));
    EXPECT_NE((PlacedPath{shared, {}}), (PlacedPath{shared, {1, 0}}));
    EXPECT_NE((PlacedPath{shared, {}}), (PlacedPath{nullptr, {}}));
    EXPECT_EQ((PlacedPath{nullptr, {}}), (PlacedPath{nullptr, {}}));
}

}  // namespace
}  // namespace norvane

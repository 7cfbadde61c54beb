#include "dashboard/CachedPaths.h"

#include <gtest/gtest.h>

#include <vector>

namespace norvane {
namespace {

// A step between two points is one point wide here, and a percent of the height one point high.
constexpr Size kSize{58, 100};

// Where the path comes to, one segment after the other; a closing is no place of its own.
std::vector<Point> stops(const std::shared_ptr<const Path>& path) {
    std::vector<Point> found;
    for (const Path::Segment& segment : path->segments) {
        if (const auto* move = std::get_if<Path::MoveTo>(&segment)) found.push_back(move->to);
        if (const auto* line = std::get_if<Path::LineTo>(&segment)) found.push_back(line->to);
        if (const auto* curve = std::get_if<Path::CurveTo>(&segment)) found.push_back(curve->to);
    }
    return found;
}

TEST(CachedPaths, AStackOfTheEfficiencyCoresShareBelowTheWholeUsage) {
    struct Case {
        const char* name;
        CPUHistoryPoint point;
        double mid, top;  // in percent of the height
    };
    for (const Case& c :
         {Case{"both kinds", {30, 10, 40}, 10, 40}, Case{"idle kinds of a busy whole", {0, 0, 40}, 0, 40},
          Case{"performance cores only", {50, 0, 50}, 0, 50},
          Case{"efficiency cores only", {0, 50, 50}, 50, 50}, Case{"over the top", {30, 10, 150}, 25, 100},
          Case{"below the bottom", {30, 10, -5}, 0, 0}}) {
        const CachedPaths paths = CachedPaths::of(std::vector{c.point, c.point}, kSize);
        for (const Point& at : stops(paths.effStroke))
            EXPECT_DOUBLE_EQ(at.y, 100 - c.mid) << c.name;
        for (const Point& at : stops(paths.perfStroke))
            EXPECT_DOUBLE_EQ(at.y, 100 - c.top) << c.name;
    }
}

TEST(CachedPaths, TheNewestPointStandsAtTheRightEdgeAndTheSixtiethBeyondTheLeftOne) {
    const auto of = [](std::size_t count) {
        return CachedPaths::of(std::vector<CPUHistoryPoint>(count, {1, 1, 50}), kSize);
    };
    EXPECT_TRUE(of(0).perfStroke->segments.empty());
    EXPECT_TRUE(of(1).perfStroke->segments.empty());
    EXPECT_TRUE(of(1).effBand->segments.empty());
    EXPECT_EQ(stops(of(60).effStroke).size(), 60U);
    EXPECT_DOUBLE_EQ(stops(of(60).perfStroke).back().x, 58);
    EXPECT_DOUBLE_EQ(stops(of(60).perfStroke).front().x, -1);
}

TEST(CachedPaths, CurvesAreLevelAtEachPointAndBandsGoThereAndBack) {
    const CachedPaths paths = CachedPaths::of(std::vector<CPUHistoryPoint>{{3, 1, 50}, {1, 1, 100}}, kSize);
    EXPECT_EQ(*paths.perfStroke,
              (Path{{Path::MoveTo{{57, 50}}, Path::CurveTo{{57.5, 50}, {57.5, 0}, {58, 0}}}}));
    EXPECT_EQ(stops(paths.effBand),
              (std::vector<Point>{{57, 100}, {57, 87.5}, {58, 50}, {58, 100}, {57, 100}}));
    EXPECT_EQ(stops(paths.perfBand),
              (std::vector<Point>{{57, 87.5}, {57, 50}, {58, 0}, {58, 50}, {57, 87.5}}));
    EXPECT_EQ(paths.perfBand->segments[4],
              Path::Segment(Path::CurveTo{{57.5, 50}, {57.5, 87.5}, {57, 87.5}}));
    EXPECT_EQ(paths.perfBand->segments.back(), Path::Segment(Path::Close{}));
}

}  // namespace
}  // namespace norvane

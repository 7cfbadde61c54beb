#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "platform/linux/Monitor.h"
#include "platform/linux/PixelRect.h"
#include "platform/linux/XftScale.h"

namespace norvane {
namespace {

TEST(XftScale, IsReadFromTheResourcesAndStaysSane) {
    const std::pair<std::string, double> cases[] = {
        {"", 1},
        {"  Xft.dpi :  144  \r\nXft.hinting: 1", 1.5},
        {"*background: red\nXft.dpi:\t96\nXft.dpi:\t192\n", 2},
        {"Xft.dpix: 192\n! Xft.dpi: 192", 1},
        {"Xft.dpi: 1e9", 8},
        {"Xft.dpi: 10", 0.5},
        {"Xft.dpi: 0", 1},
        {"Xft.dpi: nan", 1},
        {"Xft.dpi: 192dpi", 1},
        {"Xft.dpi:", 1},
        {std::string("Xft.dpi: 19\0002", 13), 1},
        {"Xft.dpi: 9999999999999999999999999999999999e99999", 1},
    };
    for (const auto& [resources, scale] : cases)
        EXPECT_EQ(scaleFromResources(resources), scale) << resources;
}

TEST(MonitorAt, IsTheSmallestAroundThePlaceOrTheNearest) {
    const Monitor monitors[]{{{0, 0, 1600, 1000}}, {{0, 0, 800, 1000}, true}, {{800, 0, 800, 500}}};
    for (const auto& [x, y, wanted] :
         {std::tuple{10, 10, 1}, {799, 999, 1}, {800, 0, 2}, {900, 700, 0}, {-50, 3, 1}, {5000, 100, 2}})
        EXPECT_EQ(monitorAt(monitors, x, y), &monitors[wanted]) << x << ", " << y;
    EXPECT_EQ(primaryMonitor(monitors), &monitors[1]);
    EXPECT_EQ(primaryMonitor({monitors, 1}), &monitors[0]);
    EXPECT_EQ(monitorAt({}, 0, 0), nullptr);
    EXPECT_EQ(primaryMonitor({}), nullptr);
}

TEST(PixelRect, CoversWhatItStandsForAndNoMore) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    const double endless = std::numeric_limits<double>::infinity();
    const std::tuple<Rect, double, PixelRect> cases[] = {
        {{{0.4, 0.6}, {1, 1}}, 1, {0, 0, 2, 2}},
        {{{0.1 + 0.2, 0}, {0.7, 1}}, 10, {3, 0, 7, 10}},  // a rounding error is no pixel
        {{{1, 1}, {0, 5}}, 1, {}},
        {{{none, 0}, {5, 5}}, 1, {}},
        {{{0, 0}, {endless, 5}}, 1, {0, 0, 32767, 5}},
        {{{1e12, 0}, {5, 5}}, 1, {32767, 0, 0, 5}},
    };
    for (const auto& [rect, scale, wanted] : cases)
        EXPECT_EQ(pixelsCovering(rect, scale), wanted) << rect.minX() << ", " << rect.size.width;
    EXPECT_EQ(pixelsAt(-1e30, 2), -32767);
    EXPECT_EQ(pixelsAt(none, 2), 0);
}

}  // namespace
}  // namespace norvane

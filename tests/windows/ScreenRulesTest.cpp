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
    const struct {
        std::string resources;
        double scale;
    } cases[] = {
        {"", 1},
        {"Xft.dpi:\t192\n", 2},
        {"  Xft.dpi :  144  \r\nXft.hinting: 1", 1.5},
        {"*background: red\nXft.dpi:\t96\nXft.dpi:\t192\n", 2},
        {"Xft.dpix: 192", 1},
        {"! Xft.dpi: 192", 1},
        {"Xft.dpi: 1e9", 8},
        {"Xft.dpi: 10", 0.5},
        {"Xft.dpi: 0", 1},
        {"Xft.dpi: nan", 1},
        {"Xft.dpi: 192dpi", 1},
        {"Xft.dpi:", 1},
        {std::string("Xft.dpi: 19\0002", 13), 1},
        {"Xft.dpi: 9999999999999999999999999999999999e99999", 1},
    };
    for (const auto& c : cases)
        EXPECT_EQ(scaleFromResources(c.resources), c.scale) << c.resources;
}

TEST(MonitorAt, IsTheSmallestAroundThePlaceOrTheNearest) {
    const std::vector<Monitor> monitors{
        {{0, 0, 1600, 1000}}, {{0, 0, 800, 1000}, true}, {{800, 0, 800, 500}}};
    const struct {
        const char* name;
        int x, y, wanted;
    } cases[] = {{"left half", 10, 10, 1},
                 {"last pixel of the left half", 799, 999, 1},
                 {"first pixel of the right half", 800, 0, 2},
                 {"only on the whole", 900, 700, 0},
                 {"left of all, nearest", -50, 3, 1},
                 {"far right", 5000, 100, 2}};
    for (const auto& c : cases) {
        EXPECT_EQ(monitorAt(monitors, c.x, c.y), &monitors[static_cast<std::size_t>(c.wanted)]) << c.name;
    }
    EXPECT_EQ(primaryMonitor(monitors), &monitors[1]);
    EXPECT_EQ(primaryMonitor(std::span(monitors).first(1)), &monitors[0]);
    EXPECT_EQ(monitorAt({}, 0, 0), nullptr);
    EXPECT_EQ(primaryMonitor({}), nullptr);
}

TEST(PixelRect, CoversWhatItStandsForAndNoMore) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    const double endless = std::numeric_limits<double>::infinity();
    const struct {
        const char* name;
        Rect rect;
        double scale;
        PixelRect wanted;
    } cases[] = {
        {"whole pixels", {{2, 3}, {4, 5}}, 2, {4, 6, 8, 10}},
        {"rounded outward", {{0.4, 0.6}, {1, 1}}, 1, {0, 0, 2, 2}},
        {"a rounding error is no pixel", {{0.1 + 0.2, 0}, {0.7, 1}}, 10, {3, 0, 7, 10}},
        {"empty", {{1, 1}, {0, 5}}, 1, {}},
        {"no number", {{none, 0}, {5, 5}}, 1, {}},
        {"endless", {{0, 0}, {endless, 5}}, 1, {0, 0, 32767, 5}},
        {"far away", {{1e12, 0}, {5, 5}}, 1, {32767, 0, 0, 5}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(pixelsCovering(c.rect, c.scale), c.wanted) << c.name;
    EXPECT_EQ(pixelsCovering(54.0, 1.1), 60);
    EXPECT_EQ(pixelsAt(-1e30, 2), -32767);
    EXPECT_EQ(pixelsAt(none, 2), 0);
}

}  // namespace
}  // namespace norvane

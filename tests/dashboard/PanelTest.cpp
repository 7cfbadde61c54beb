#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "dashboard/ArdoMultiCPUGraph.h"
#include "dashboard/BatteryDetailListView.h"
#include "dashboard/BatteryExpandedView.h"
#include "dashboard/BatteryLook.h"
#include "dashboard/CachedPaths.h"
#include "dashboard/CPUDetailListView.h"
#include "dashboard/CPUExpandedView.h"
#include "dashboard/MemoryExpandedView.h"
#include "ShownElement.h"
#include "views/Palette.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using enum Ink;
using Told = std::vector<std::string>;

// One panel of the dashboard, or its details, with the snapshot that it is made of.
class PanelTest : public testing::Test {
 protected:
    PanelTest() { shown_.appear(); }
    template <typename Panel>
    Told told(Panel panel) {
        shown_.change([&] { body_ = [panel] { return panel.body(); }; });
        shown_.advance(1s);
        return shown_.told();
    }
    std::shared_ptr<const SystemSnapshot> snapshot() const {
        return std::make_shared<const SystemSnapshot>(now_);
    }
    static Color light(const Paint& paint) { return Palette::light().color(paint); }
    // The only bar of a panel: the part that it fills, and its colour at the far end.
    std::pair<double, Color> bar() {
        for (const FillShape& fill : shown_.all<FillShape>()) {
            const auto* bar = std::get_if<RoundedRect>(&fill.shape);
            if (bar != nullptr && !fill.fill.isPlain()) return {bar->rect.size.width / 496, fill.fill.to};
        }
        return {};
    }

    ScriptedMachine machine_;
    CPUHardwareInfo hardware_{machine_.sysctl};
    SystemSnapshot now_{};
    std::function<Element()> body_ = Element::none;
    ShownElement shown_{{496, 400}, [this] { return body_(); }};
};

TEST_F(PanelTest, TheProcessorsTellsItsFiguresAndWhatTheGraphShows) {
    EXPECT_EQ(told(CPUExpandedView{nullptr, nullptr}),
              (Told{"CPU Usage: Normal", "GPU Impact", "System Uptime", "Idle Capacity",
                    "CPU History: No history yet.", "CPU status unavailable."}));
    now_.cpuState = ComponentState::critical;
    now_.gpuUsage = 7.125;
    now_.uptime = 11'220;
    now_.idlePercent = 3;
    const auto history = std::make_shared<const std::vector<CPUHistoryPoint>>(
        std::vector<CPUHistoryPoint>{{80, 99, 90}, {40, 0, 40}});
    Told all = told(CPUExpandedView{snapshot(), history});
    all.pop_back();  // the sentence, which waits
    EXPECT_EQ(
        all, (Told{"CPU Usage: Critical", "GPU Impact: 7.12%", "System Uptime: 3h 7m", "Idle Capacity: 3.00%",
                   "CPU History: The last 2 readings: now 40 %, at most 90 %."}));
}

TEST_F(PanelTest, CoresAreNumberedThroughTheEfficientOnesFirst) {
    EXPECT_EQ(told(CPUDetailListView{nullptr, hardware_}), Told{});
    now_.efficiencyCoreUsages = {10};
    now_.performanceCoreUsages = {50, 60};
    now_.efficiencyCoreUsage = 12.5;
    now_.performanceCoreUsage = 62.5;
    EXPECT_EQ(told(CPUDetailListView{snapshot(), hardware_}),
              (Told{"Scripted Processor", "Efficiency Cluster: 12.50%", "Performance Cluster: 62.50%",
                    "Core 1: 10 %", "Core 2: 50 %", "Core 3: 60 %"}));
    const auto lines = shown_.all<StrokeShape>();  // each arc after its track
    ASSERT_EQ(lines.size(), 6U);
    for (const auto& [at, end, ink] :
         {std::tuple{std::size_t{1}, 0.1, blue}, {3, 0.5, purple}, {5, 0.6, purple}}) {
        EXPECT_DOUBLE_EQ(std::get<Arc>(lines[at].shape).to, end);
        EXPECT_EQ(lines[at].fill.from, light(ink)) << end;
    }
    now_.efficiencyCoreUsages.clear();
    EXPECT_EQ(told(CPUDetailListView{snapshot(), hardware_}).at(1), "Performance Cluster: 62.50%");
}

TEST_F(PanelTest, TheMemorysTellsHowHardPressedItIsAndItsSizes) {
    EXPECT_EQ(told(MemoryExpandedView{nullptr}),
              (Told{"Memory Usage: Normal", "8.00 GB Total", "Memory Used: 0.00 GB",
                    "Memory status unavailable."}));
    now_.totalMemoryGB = 1536;
    now_.usedMemoryGB = 384;
    now_.wiredMemoryGB = 1.25;
    now_.compressedMemoryGB = kNaN;
    now_.appMemoryGB = 300;
    now_.swapUsedGB = 0.5;
    Told all = told(MemoryExpandedView{snapshot()});
    all.resize(7);
    EXPECT_EQ(all, (Told{"Memory Usage: Normal", "1.50 TB Total", "Wired: 1.25 GB", "Compressed: 0.0 GB",
                         "App Memory: 300.00 GB", "Swap: 0.50 GB", "Memory Used: 384.00 GB"}));
    struct Case {
        std::int64_t pressure;
        double swapGB, compressedGB;  // of 1536
        const char* word;
        Ink ink;
    };
    for (const Case& c :
         {Case{1, 1, 0, "Normal", green}, Case{1, 1.01, 0, "Elevated", orange},
          Case{1, 0, 615, "Elevated", orange}, Case{2, 0, 0, "Elevated", orange},
          Case{3, 5, 0, "Normal", green}, Case{4, 0, 0, "Critical", red}, Case{4, 5, 900, "Critical", red}}) {
        now_.memoryPressure = c.pressure;
        now_.swapUsedGB = c.swapGB;
        now_.compressedMemoryGB = c.compressedGB;
        EXPECT_EQ(told(MemoryExpandedView{snapshot()}).at(0), std::string("Memory Usage: ") + c.word);
        EXPECT_EQ(bar().second, light(c.ink)) << c.pressure << ' ' << c.word;
    }
}

TEST_F(PanelTest, TheBatterysAsksForLowPowerModeAtEachDrawing) {
    now_.batteryTemperatureC = 36.9;
    const BatteryExpandedView panel{.snapshot = snapshot(),
                                    .temperatureUnit = TemperatureUnit::fahrenheit,
                                    .processInfo = machine_.processInfo};
    EXPECT_EQ(told(panel).at(2), "Energy mode: Automatic");
    machine_.processInfo.lowPower.always(true);
    EXPECT_EQ(told(panel).at(2), "Energy mode: Low Power");
    EXPECT_EQ(told(panel).at(3), "Battery Temperature: 98°F");
}

TEST_F(PanelTest, TheBatterysHealthIsABarOverTheDesignWhereThatIsKnown) {
    struct Case {
        std::optional<std::int64_t> max, design;
        const char* health;
        double part;
        Paint color;
    };
    const Paint dimmed = Paint(primary).withOpacity(0.2);
    for (const Case& c : {Case{4'000, 5'000, "80.0%", 0.8, green}, Case{3'500, 5'000, "70.0%", 0.7, orange},
                          Case{3'450, 5'000, "69.0%", 0.69, red}, Case{5'200, 5'000, "100.0%", 1, green},
                          Case{3'800, {}, "100.0%", 1, green}, Case{-3, -5'000, "—", 0, dimmed},
                          Case{{}, 5'000, "—", 0, dimmed}}) {
        now_.batteryMaxCapacitymAh = c.max;
        now_.batteryDesignCapacitymAh = c.design;
        EXPECT_EQ(told(BatteryDetailListView{snapshot()}).at(0), std::string("Battery Health: ") + c.health);
        EXPECT_NEAR(bar().first, c.part, 0.001) << c.health;
        EXPECT_EQ(batteryHealthColor(&now_), c.color) << c.health;
    }
}

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

TEST(CPUGraph, StacksTheEfficiencyCoresShareBelowTheWholeUsageInBandsThatGoThereAndBack) {
    struct Case {
        CPUHistoryPoint point;
        double mid, top;  // in percent of the height
    };
    for (const Case& c :
         {Case{{30, 10, 40}, 10, 40}, Case{{0, 0, 40}, 0, 40}, Case{{50, 0, 50}, 0, 50},
          Case{{0, 50, 50}, 50, 50}, Case{{30, 10, 150}, 25, 100}, Case{{30, 10, -5}, 0, 0}}) {
        const CachedPaths paths = CachedPaths::of(std::vector{c.point, c.point}, kSize);
        const double mid = 100 - c.mid;
        const double top = 100 - c.top;
        using Points = std::vector<Point>;
        EXPECT_EQ(stops(paths.effStroke), (Points{{57, mid}, {58, mid}})) << c.point.total;
        EXPECT_EQ(stops(paths.effBand), (Points{{57, 100}, {57, mid}, {58, mid}, {58, 100}, {57, 100}}));
        EXPECT_EQ(stops(paths.perfStroke), (Points{{57, top}, {58, top}})) << c.point.total;
        EXPECT_EQ(stops(paths.perfBand), (Points{{57, mid}, {57, top}, {58, top}, {58, mid}, {57, mid}}));
    }
    // A curve is level at both of its points.
    const CachedPaths paths = CachedPaths::of(std::vector<CPUHistoryPoint>{{3, 1, 50}, {1, 1, 100}}, kSize);
    EXPECT_EQ(*paths.perfStroke,
              (Path{{Path::MoveTo{{57, 50}}, Path::CurveTo{{57.5, 50}, {57.5, 0}, {58, 0}}}}));
}

// The newest point stands at the right edge, and the sixtieth beyond the left one.
TEST(CPUGraph, GlidesByOneStepFromSampleToSampleWithTheSamePicture) {
    const auto historyOf = [](std::size_t count) {
        return std::make_shared<const std::vector<CPUHistoryPoint>>(count, CPUHistoryPoint{1, 1, 50});
    };
    ArdoMultiCPUGraph graph{historyOf(1)};
    ShownElement shown({116, 80}, [&] { return graph.body(); });
    const auto drawn = [&] { return shown.all<DrawPicture>().back(); };  // in front of the grid
    shown.appear();
    shown.change([&] { graph.history = historyOf(60); });
    const DrawPicture first = drawn();
    const auto& stroke = std::get<StrokeShape>(first.picture->items.back().command);
    const auto line = stops(std::get<PlacedPath>(stroke.shape).path);
    ASSERT_EQ(line.size(), 60U);
    EXPECT_DOUBLE_EQ(line.front().x, -2);
    EXPECT_DOUBLE_EQ(line.back().x, 116);
    for (const double steps : {0.0, 0.25, 0.5, 0.75, 1.0, 1.0}) {
        EXPECT_DOUBLE_EQ(first.at.x - drawn().at.x, steps * 2);
        EXPECT_EQ(drawn().picture, first.picture) << "moved, not made anew";
        EXPECT_EQ(shown.view.frameRate(), steps < 1 ? 30 : 0);
        shown.advance(250ms);
    }
}

}  // namespace
}  // namespace norvane

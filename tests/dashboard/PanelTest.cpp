#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "dashboard/ArdoMultiCPUGraph.h"
#include "dashboard/CPUDetailListView.h"
#include "dashboard/CPUExpandedView.h"
#include "dashboard/MemoryExpandedView.h"
#include "dashboard/RateRow.h"
#include "insight/HealthySnapshot.h"
#include "OddNumbers.h"
#include "ShownElement.h"
#include "views/Palette.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Told = std::vector<std::string>;

constexpr Size kPanelSize{496, 400};
// One panel of the dashboard, or its details, with what it is made of.
class PanelTest : public testing::Test {
 protected:
    std::shared_ptr<const SystemSnapshot> snapshot() const {
        return std::make_shared<const SystemSnapshot>(now_);
    }
    // All that is told, in order, by name and value: "Wired: 1.25 GB".
    static Told told(ShownElement& shown) {
        Told all;
        for (const AccessibleNode& node : shown.nodes()) {
            if (node.name.empty()) continue;
            all.push_back(node.name + (node.value.empty() ? "" : ": " + node.value));
        }
        return all;
    }
    static Color light(const Paint& paint) { return Palette::light().color(paint); }
    static Color colorOf(ShownElement& shown, std::string_view text) {
        for (const DrawText& drawn : shown.all<DrawText>())
            if (drawn.text == text) return drawn.color;
        ADD_FAILURE() << text << " is not shown";
        return {};
    }
    // The small dots before the figures, in order.
    static std::vector<Color> dots(ShownElement& shown) {
        std::vector<Color> found;
        for (const FillShape& fill : shown.all<FillShape>()) {
            const auto* round = std::get_if<RoundedRect>(&fill.shape);
            if (round != nullptr && round->rect.size == Size{4.5, 4.5}) found.push_back(fill.fill.from);
        }
        return found;
    }

    SystemSnapshot now_ = healthySnapshot();
};

TEST_F(PanelTest, FiguresAreWrittenWithFixedPlacesAndSurviveWhatIsNone) {
    struct Case {
        double value;
        const char* want;
    };
    for (const Case& c :
         {Case{59.99, "0h 0m"}, Case{86'399, "23h 59m"}, Case{86'400, "1d 0h"}, Case{190'800, "2d 5h"},
          Case{kNaN, "0h 0m"}, Case{kInfinite, "0h 0m"}, Case{1e300, "106751991167300d 15h"}}) {
        EXPECT_EQ(formatUptime(c.value), c.want) << c.value;
    }
    for (const Case& c : {Case{1023.99, "1023.99 GB"}, Case{1024, "1.00 TB"}, Case{kNaN, "0.0 GB"},
                          Case{-kInfinite, "0.0 GB"}}) {
        EXPECT_EQ(formatMemorySize(c.value), c.want) << c.value;
    }
    for (const Case& c :
         {Case{0.99, "0 MB/s"}, Case{12'345.9, "12345 MB/s"}, Case{-3, "0 MB/s"}, Case{kNaN, "0 MB/s"}}) {
        EXPECT_EQ(formatRate(c.value), c.want) << c.value;
    }
}

TEST_F(PanelTest, TheProcessorsTellsItsStateItsFiguresAndWhatTheGraphShows) {
    CPUExpandedView panel{nullptr, nullptr};
    ShownElement shown(kPanelSize, [&] { return panel.body(); });
    shown.appear();
    EXPECT_EQ(told(shown), (Told{"CPU Usage: Normal", "GPU Impact", "System Uptime", "Idle Capacity",
                                 "CPU History: No history yet.", "CPU status unavailable."}));
    EXPECT_EQ(colorOf(shown, "Normal"), light(Ink::green));
    const Color muted = dots(shown).at(0);

    now_.cpuState = ComponentState::critical;
    now_.gpuUsage = 7.125;
    now_.uptime = 11'220;
    now_.idlePercent = 3;
    shown.change([&] {
        panel.snapshot = snapshot();
        panel.history = std::make_shared<const std::vector<CPUHistoryPoint>>(
            std::vector<CPUHistoryPoint>{{80, 99, 90}, {40, 0, 40}});
    });
    Told all = told(shown);
    all.pop_back();  // the sentence, which waits
    EXPECT_EQ(
        all, (Told{"CPU Usage: Critical", "GPU Impact: 7.12%", "System Uptime: 3h 7m", "Idle Capacity: 3.00%",
                   "CPU History: The last 2 readings: now 40 %, at most 90 %."}));
    EXPECT_EQ(colorOf(shown, "Critical"), light(Ink::red));
    const std::vector<Color> inAlarm = dots(shown);
    EXPECT_EQ(inAlarm, (std::vector<Color>{light(Ink::red), muted, muted, muted}));
}

TEST_F(PanelTest, TheGraphGlidesByOneStepFromSampleToSampleWithTheSamePicture) {
    const auto historyOf = [](std::size_t count) {
        return std::make_shared<const std::vector<CPUHistoryPoint>>(count, CPUHistoryPoint{1, 1, 50});
    };
    ArdoMultiCPUGraph graph{historyOf(1)};
    ShownElement shown({116, 80}, [&] { return graph.body(); });
    const auto drawn = [&] { return shown.all<DrawPicture>().back(); };  // in front of the grid
    shown.appear();
    for (const DisplayItem& item : drawn().picture->items) {
        const auto* band = std::get_if<FillShape>(&item.command);
        const Shape& shape = band != nullptr ? band->shape : std::get<StrokeShape>(item.command).shape;
        EXPECT_TRUE(std::get<PlacedPath>(shape).path->segments.empty()) << item.key << " of one point";
    }
    EXPECT_EQ(shown.all<DrawPicture>().size(), 2U) << "the grid";

    const auto before = drawn().picture;
    shown.change([&] { graph.history = historyOf(60); });
    const DrawPicture first = drawn();
    EXPECT_NE(first.picture, before);
    for (const double steps : {0.0, 0.25, 0.5, 0.75, 1.0, 1.0}) {
        EXPECT_DOUBLE_EQ(first.at.x - drawn().at.x, steps * 2);
        EXPECT_EQ(drawn().picture, first.picture) << "moved, not made anew";
        EXPECT_EQ(shown.view.frameRate(), steps < 1 ? 30 : 0);
        shown.advance(250ms);
    }
}

TEST_F(PanelTest, CoresAreNumberedThroughTheEfficientOnesFirst) {
    struct Case {
        const char* name;
        std::vector<double> efficiency, performance;
        std::string chip;
        Told want;
    };
    for (const Case& c : {Case{"both kinds",
                               {10},
                               {50, 60},
                               "Chip",
                               {"Chip", "Efficiency Cluster: 12.50%", "Performance Cluster: 62.50%",
                                "Core 1: 10 %", "Core 2: 50 %", "Core 3: 60 %"}},
                          Case{"one kind", {}, {75}, "", {"Performance Cluster: 62.50%", "Core 1: 75 %"}},
                          Case{"none", {}, {}, "Chip", {"Chip"}}}) {
        ScriptedMachine machine;
        machine.sysctl.text(SysctlText::machdep_cpu_brand_string).always(c.chip);
        const CPUHardwareInfo hardware(machine.sysctl);
        now_.efficiencyCoreUsages = c.efficiency;
        now_.performanceCoreUsages = c.performance;
        now_.efficiencyCoreUsage = 12.5;
        now_.performanceCoreUsage = 62.5;
        ShownElement shown(kPanelSize, [&] { return CPUDetailListView{snapshot(), hardware}.body(); });
        shown.appear();
        EXPECT_EQ(told(shown), c.want) << c.name;
        const auto arcs = [&] { return shown.all<StrokeShape>(); };  // each after its track
        const std::size_t cores = c.efficiency.size() + c.performance.size();
        ASSERT_EQ(arcs().size(), 2 * cores) << c.name;
        for (std::size_t i = 0; i < cores; ++i)
            EXPECT_EQ(std::get<Arc>(arcs()[2 * i + 1].shape).to, 0) << c.name << ": it grows from nothing";
        shown.advance(350ms);
        for (std::size_t i = 0; i < cores; ++i) {
            const bool isEfficient = i < c.efficiency.size();
            const double usage = isEfficient ? c.efficiency[i] : c.performance[i - c.efficiency.size()];
            const StrokeShape arc = arcs()[2 * i + 1];
            EXPECT_DOUBLE_EQ(std::get<Arc>(arc.shape).to, usage / 100) << c.name;
            EXPECT_EQ(arc.fill.from, light(isEfficient ? Ink::blue : Ink::purple)) << c.name;
        }
        ShownElement unknown(kPanelSize, [&] { return CPUDetailListView{nullptr, hardware}.body(); });
        unknown.appear();
        EXPECT_EQ(told(unknown), Told{});
    }
}

TEST_F(PanelTest, TheMemorysTellsHowHardPressedItIs) {
    struct Case {
        std::int64_t pressure;
        double swapGB, compressedGB;  // of 16
        const char* word;
        Ink ink;
    };
    using enum Ink;
    for (const Case& c :
         {Case{1, 0, 0, "Normal", green}, Case{1, 1, 0, "Normal", green},
          Case{1, 1.01, 0, "Elevated", orange}, Case{1, 0, 6.5, "Elevated", orange},
          Case{2, 0, 0, "Elevated", orange}, Case{3, 0, 0, "Normal", green}, Case{3, 5, 0, "Normal", green},
          Case{4, 0, 0, "Critical", red}, Case{4, 5, 9, "Critical", red}}) {
        now_.memoryPressure = c.pressure;
        now_.swapUsedGB = c.swapGB;
        now_.compressedMemoryGB = c.compressedGB;
        ShownElement shown(kPanelSize, [&] { return MemoryExpandedView{snapshot()}.body(); });
        shown.appear();
        shown.advance(1s);
        EXPECT_EQ(told(shown).at(0), std::string("Memory Usage: ") + c.word) << c.pressure;
        EXPECT_EQ(colorOf(shown, c.word), light(c.ink)) << c.pressure;
        const auto fills = shown.all<FillShape>();
        const auto bar = std::find_if(fills.begin(), fills.end(),
                                      [](const FillShape& fill) { return !fill.fill.isPlain(); });
        ASSERT_NE(bar, fills.end());
        EXPECT_EQ(bar->fill.to, light(c.ink)) << "the bar, at " << c.pressure;
    }
}

TEST_F(PanelTest, TheMemorysTellsItsSizesAndWhatIsKnownWithoutAny) {
    MemoryExpandedView panel{nullptr};
    ShownElement shown(kPanelSize, [&] { return panel.body(); });
    shown.appear();
    EXPECT_EQ(told(shown), (Told{"Memory Usage: Normal", "8.00 GB Total", "Memory Used: 0.00 GB",
                                 "Memory status unavailable."}));
    EXPECT_EQ(colorOf(shown, "Normal"), light(Ink::green));
    now_.totalMemoryGB = 1536;
    now_.usedMemoryGB = 384;
    now_.wiredMemoryGB = 1.25;
    now_.compressedMemoryGB = kNaN;
    now_.appMemoryGB = 300;
    now_.swapUsedGB = 0.5;
    shown.change([&] { panel.snapshot = snapshot(); });
    Told all = told(shown);
    all.resize(7);
    EXPECT_EQ(all, (Told{"Memory Usage: Normal", "1.50 TB Total", "Wired: 1.25 GB", "Compressed: 0.0 GB",
                         "App Memory: 300.00 GB", "Swap: 0.50 GB", "Memory Used: 384.00 GB"}));
}

}  // namespace
}  // namespace norvane

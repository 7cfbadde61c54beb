#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dashboard/BatteryDetailListView.h"
#include "dashboard/BatteryExpandedView.h"
#include "dashboard/BatteryLook.h"
#include "insight/HealthySnapshot.h"
#include "OddNumbers.h"
#include "ShownElement.h"

namespace norvane {
namespace {

using enum Ink;
using Milliamperes = std::optional<std::int64_t>;

TEST(BatteryLook, HealthIsTheFullChargeOverTheDesign) {
    const Paint dimmed = Paint(primary).withOpacity(0.2);
    struct Case {
        Milliamperes max, design;
        const char* text;
        Paint color;
        double bar;
        const char* maxRow;
        const char* designRow;
    };
    for (const Case& c : {Case{3'800, 5'000, "76.0%", orange, 0.76, "3800 mAh", "5000 mAh"},
                          {4'000, 5'000, "80.0%", green, 0.8, "4000 mAh", "5000 mAh"},
                          {3'450, 5'000, "69.0%", red, 0.69, "3450 mAh", "5000 mAh"},
                          {5'200, 5'000, "100.0%", green, 1, "5200 mAh", "5000 mAh"},
                          {3'800, {}, "100.0%", green, 1, "3800 mAh", "1 mAh"},
                          {{}, 5'000, "—", dimmed, 0, "0 mAh", "5000 mAh"},
                          {-3, -5'000, "—", dimmed, 0, "-3 mAh", "1 mAh"}}) {
        SystemSnapshot now = healthySnapshot();
        now.batteryMaxCapacitymAh = c.max;
        now.batteryDesignCapacitymAh = c.design;
        EXPECT_EQ(formatBatteryHealth(&now), c.text);
        EXPECT_EQ(batteryHealthColor(&now), c.color) << c.text;
        ShownElement shown({472, 300}, [&] {
            return BatteryDetailListView{std::make_shared<const SystemSnapshot>(now)}.body();
        });
        shown.appear();
        shown.advance(std::chrono::seconds(1));
        EXPECT_EQ(shown.node("Battery Health").value, c.text);
        EXPECT_EQ(shown.node("Max Capacity").value, c.maxRow);
        EXPECT_EQ(shown.node("Design Capacity").value, c.designRow);
        EXPECT_EQ(shown.node("Normal").role, AccessibleRole::text) << "without a condition";
        double filled = 0;  // of the bar's width
        for (const FillShape& fill : shown.all<FillShape>()) {
            const auto* bar = std::get_if<RoundedRect>(&fill.shape);
            if (bar != nullptr && !fill.fill.isPlain()) filled = bar->rect.size.width / 472;
        }
        EXPECT_NEAR(filled, c.bar, 0.001) << c.text;
    }
    EXPECT_EQ(formatBatteryHealth(nullptr), "—");
    EXPECT_EQ(batteryHealthRatio(nullptr), 0);
    EXPECT_EQ(batteryHealthColor(nullptr), dimmed);
}

TEST(BatteryLook, TheTemperatureIsCutAndTurnsWarmInSteps) {
    struct Case {
        std::optional<double> degrees;
        const char* celsius;
        const char* fahrenheit;
        Ink color;
        double progress;
    };
    for (const Case& c : {Case{{}, "—", "—", green, 0},
                          {kNaN, "—", "—", green, 0},
                          {-0.5, "0°C", "31°F", green, 0},
                          {36.9, "36°C", "98°F", green, 0.476},
                          {37, "37°C", "98°F", yellow, 0.48},
                          {42, "42°C", "107°F", orange, 0.68},
                          {47, "47°C", "116°F", red, 0.88},
                          {1e6, "1000000°C", "1800032°F", red, 1}}) {
        EXPECT_EQ(formatBatteryTemperature(c.degrees, TemperatureUnit::celsius), c.celsius);
        EXPECT_EQ(formatBatteryTemperature(c.degrees, TemperatureUnit::fahrenheit), c.fahrenheit);
        EXPECT_EQ(batteryTemperatureColor(c.degrees), c.color) << c.celsius;
        EXPECT_NEAR(batteryTemperatureProgress(c.degrees), c.progress, 1e-9) << c.celsius;
    }
}

TEST(BatteryLook, TheLevelTellsItsSourceItsModeAndItsCharge) {
    const auto check = [](const SystemSnapshot* now, bool isLowPower, const char* icon,
                          std::optional<Paint> tint, Ink ring) {
        const std::string what =
            (now != nullptr ? std::to_string(now->batteryPercentage) : "none") + (isLowPower ? " low" : "");
        EXPECT_EQ(powerIconName(now, isLowPower), icon) << what;
        EXPECT_EQ(powerIconColor(now, isLowPower), tint) << what;
        EXPECT_EQ(batteryLevelColor(now, isLowPower), ring) << what;
    };
    SystemSnapshot now = healthySnapshot();
    now.deviceModelIcon = "macmini";
    now.isOnBattery = true;
    struct Case {
        std::int64_t percentage;
        Ink ring;
        double progress;
    };
    for (const Case& c : {Case{100, teal, 1}, Case{21, teal, 0.21}, Case{20, orange, 0.2},
                          Case{11, orange, 0.11}, Case{10, red, 0.1}, Case{0, red, 0}, Case{130, teal, 1}}) {
        now.batteryPercentage = c.percentage;
        check(&now, false, "macmini", {}, c.ring);
        check(&now, true, "leaf.fill", yellow, yellow);
        EXPECT_EQ(batteryLevelProgress(&now), c.progress);
    }
    EXPECT_EQ(powerSourceName(&now), "Battery");
    now.isOnBattery = false;
    now.batteryPercentage = 5;
    check(&now, false, "bolt.fill", green, green);
    check(&now, true, "bolt.fill", yellow, yellow);
    EXPECT_EQ(powerSourceName(&now), "Power Adapter");
    check(nullptr, false, "laptopcomputer", {}, red);
    check(nullptr, true, "leaf.fill", yellow, yellow);
}

TEST(BatteryPanel, TellsWhatItShowsAndAsksForLowPowerModeAtEachDrawing) {
    std::shared_ptr<const SystemSnapshot> snapshot;
    ScriptedMachine machine;
    ShownElement shown({496, 300}, [&] {
        return BatteryExpandedView{.snapshot = snapshot,
                                   .temperatureUnit = TemperatureUnit::fahrenheit,
                                   .processInfo = machine.processInfo}
            .body();
    });
    shown.appear();
    EXPECT_EQ(shown.node("Battery Level").value, "0%");
    EXPECT_EQ(shown.node("Battery Temperature").value, "—");
    for (const char* line :
         {"Power Source: Battery", "Estimating…", "Energy mode: Automatic", "Battery status unavailable."})
        EXPECT_EQ(shown.node(line).role, AccessibleRole::text) << line;

    SystemSnapshot now = healthySnapshot();
    now.isOnBattery = false;
    now.isCharging = true;
    now.batteryPercentage = 64;
    now.batteryTemperatureC = 36.9;
    now.batteryTimeRemaining = "Full in 20m";
    for (int tick = 0; tick < 3; ++tick) {
        now.timestamp += std::chrono::seconds(1);
        shown.change([&] { snapshot = std::make_shared<const SystemSnapshot>(now); });
    }
    EXPECT_EQ(shown.node("Battery Level").value, "64%");
    EXPECT_EQ(shown.node("Battery Temperature").value, "98°F");
    // The sentence with its line feed, as one text, is steady after the third.
    for (const char* line : {"Power Source: Power Adapter", "Full in 20m",
                             "Active charging.\nEnergy transfer and thermals are operating within optimal, "
                             "efficient margins."})
        EXPECT_EQ(shown.node(line).name, line);
    EXPECT_EQ(shown.all<DrawSymbol>().front().name, "bolt.fill");

    machine.processInfo.lowPower.always(true);
    shown.change([] {});
    EXPECT_EQ(shown.node("Energy mode: Low Power").role, AccessibleRole::text);
}

}  // namespace
}  // namespace norvane

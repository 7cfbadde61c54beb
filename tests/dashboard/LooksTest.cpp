#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "dashboard/ArdoNeonBar.h"
#include "dashboard/BatteryLook.h"
#include "dashboard/CapacityColor.h"
#include "dashboard/CPUExpandedView.h"
#include "dashboard/MemoryExpandedView.h"
#include "dashboard/PodLook.h"
#include "dashboard/PodValue.h"
#include "dashboard/RateRow.h"
#include "dashboard/ShownVolumeName.h"
#include "dashboard/StorageVolumeRow.h"
#include "dashboard/VelocityBar.h"
#include "ShownElement.h"

namespace norvane {
namespace {

using enum Ink;

TEST(Looks, FiguresAreWrittenWithFixedPlacesAndSurviveWhatIsNone) {
    EXPECT_EQ(formatUptime(86'399), "23h 59m");
    EXPECT_EQ(formatUptime(86'400), "1d 0h");
    EXPECT_EQ(formatUptime(kInfinite), "0h 0m");
    EXPECT_EQ(formatUptime(1e300), "106751991167300d 15h");
    EXPECT_EQ(formatMemorySize(1023.99), "1023.99 GB");
    EXPECT_EQ(formatMemorySize(1024), "1.00 TB");
    EXPECT_EQ(formatMemorySize(kNaN), "0.0 GB");
    EXPECT_EQ(formatRate(12'345.9), "12345 MB/s");
    EXPECT_EQ(formatRate(-3), "0 MB/s");
    EXPECT_EQ(formatRate(kNaN), "0 MB/s");
    EXPECT_EQ(formatUsedOverTotal(999, 999.99), "999.00 / 999.99 GB");
    EXPECT_EQ(formatUsedOverTotal(250, 1000), "0.25 / 1.00 TB") << "another terabyte than the memory's";
    SystemSnapshot now{};
    now.cpuUsagePercent = 7.125;
    now.usedMemoryGB = now.usedDiskGB = 512;
    now.totalMemoryGB = now.totalDiskGB = 1023.9;
    EXPECT_EQ(cpuPodValue(&now), (PodValue{"7.12", "%"})) << "a tie goes to the even digit";
    EXPECT_EQ(memoryPodValue(&now), (PodValue{"512.00", "GB used"}));
    EXPECT_EQ(storagePodValue(&now), (PodValue{"512.0", "GB used"}));
    now.totalMemoryGB = now.totalDiskGB = 1024;
    EXPECT_EQ(memoryPodValue(&now), (PodValue{"0.50", "TB used"}));
    EXPECT_EQ(storagePodValue(&now), (PodValue{"0.5", "TB used"}));
}

// The room left on the boot volume comes before its share. Another one that is nearly full does not count.
TEST(Looks, DisksAreColouredByTheRoomOnTheBootVolumeThenByHowFullTheyAre) {
    struct Case {
        std::optional<double> bootAvailable;  // no boot volume without
        double used, total;
        Ink want;
    };
    for (const Case& c : {Case{9.99, 1, 100, red}, Case{10, 99, 100, orange}, Case{30, 1, 100, green},
                          Case{500, 95, 100, red}, Case{{}, 69.9, 100, green}, Case{{}, 70, 100, yellow},
                          Case{{}, 85, 100, orange}, Case{{}, 0.5, 0, green}, Case{{}, 0.8, 1, yellow}}) {
        SystemSnapshot now{};
        now.volumes.assign(2, {});
        now.volumes[0].availableForImportantUsage = 1;
        DiskSnapshot& disk = now.volumes[1];
        disk.isBootVolume = c.bootAvailable.has_value();
        disk.availableForImportantUsage = c.bootAvailable.value_or(1);
        disk.usedGB = now.usedDiskGB = c.used;
        disk.totalGB = now.totalDiskGB = c.total;
        EXPECT_EQ(storagePodColor(&now), c.want) << c.used << " of " << c.total;
        EXPECT_EQ(diskColor(disk), c.want) << c.used << " of " << c.total;
    }
}

TEST(Looks, ThePodsTurnRedByStateByHeatAndByWhatTheBatterySuffers) {
    SystemSnapshot hot{};
    hot.memoryState = ComponentState::critical;
    EXPECT_EQ(cpuPodColor(&hot), green);
    EXPECT_EQ(memoryPodColor(&hot), red);
    std::swap(hot.cpuState, hot.memoryState);
    EXPECT_EQ(cpuPodColor(&hot), red);
    EXPECT_EQ(memoryPodColor(&hot), purple);
    struct Case {
        ThermalLevel heat;
        bool isOnBattery;
        std::int64_t percentage;
        ImpactState impact;
        Ink want;
    };
    using enum ThermalLevel;
    using enum ImpactState;
    for (const Case& c : {Case{serious, false, 100, low, red}, Case{critical, true, 100, low, red},
                          Case{fair, false, 5, high, teal}, Case{nominal, true, 15, high, red},
                          Case{nominal, true, 16, high, orange}, Case{fair, true, 16, moderate, teal}}) {
        SystemSnapshot now{};
        now.thermalLevel = c.heat;
        now.isOnBattery = c.isOnBattery;
        now.batteryPercentage = c.percentage;
        now.energyImpact = c.impact;
        EXPECT_EQ(batteryPodColor(&now), c.want) << rawTextOf(c.heat) << ' ' << c.percentage;
    }
}

TEST(Looks, ABatteryTellsItsSourceItsModeItsChargeAndItsHeatInSteps) {
    struct Level {
        std::int64_t percentage;
        bool isOnBattery, isLowPower;
        const char* icon;
        std::optional<Paint> tint;
        Ink ring;
    };
    SystemSnapshot now{};
    now.deviceModelIcon = "macmini";
    for (const Level& c :
         {Level{21, true, false, "macmini", {}, teal}, Level{20, true, false, "macmini", {}, orange},
          Level{10, true, false, "macmini", {}, red}, Level{10, true, true, "leaf.fill", yellow, yellow},
          Level{5, false, false, "bolt.fill", green, green},
          Level{5, false, true, "bolt.fill", yellow, yellow}}) {
        now.isOnBattery = c.isOnBattery;
        now.batteryPercentage = c.percentage;
        EXPECT_EQ(powerIconName(&now, c.isLowPower), c.icon);
        EXPECT_EQ(powerIconColor(&now, c.isLowPower), c.tint) << c.icon;
        EXPECT_EQ(batteryLevelColor(&now, c.isLowPower), c.ring) << c.icon << ' ' << c.percentage;
    }
    struct Heat {
        std::optional<double> degrees;
        const char* fahrenheit;
        Ink color;
        double progress;
    };
    for (const Heat& c :
         {Heat{{}, "—", green, 0}, Heat{kNaN, "—", green, 0}, Heat{-18, "0°F", green, 0},
          Heat{36.9, "98°F", green, 0.476}, Heat{37, "98°F", yellow, 0.48}, Heat{42, "107°F", orange, 0.68},
          Heat{47, "116°F", red, 0.88}, Heat{200, "392°F", red, 1}}) {
        EXPECT_EQ(formatBatteryTemperature(c.degrees, TemperatureUnit::fahrenheit), c.fahrenheit);
        EXPECT_EQ(batteryTemperatureColor(c.degrees), c.color) << c.fahrenheit;
        EXPECT_NEAR(batteryTemperatureProgress(c.degrees), c.progress, 1e-9) << c.fahrenheit;
    }
    EXPECT_EQ(formatBatteryTemperature(-0.5, TemperatureUnit::celsius), "0°C");
}

TEST(Looks, ABarShowsThePartAndAVelocityBarSpreadsTwoDecades) {
    for (const auto& [value, total] : {std::pair{-5.0, 100.0}, {5, 0}, {-5, -10}, {kNaN, 100}, {5, kNaN}})
        EXPECT_EQ(ArdoNeonBar::ratio(value, total), 0) << value << " of " << total;
    EXPECT_EQ(ArdoNeonBar::ratio(kInfinite, kInfinite), 0);
    EXPECT_EQ(ArdoNeonBar::ratio(1e300, 1e-300), 1);
    for (const auto& [speed, fill] :
         {std::pair{-3.0, 0.0}, {1, 0}, {3.1622776601683795, 0.25}, {100, 1}, {kInfinite, 1}, {kNaN, 0}})
        EXPECT_NEAR(VelocityBar::fill(speed), fill, 1e-12) << speed;
}

TEST(Looks, AVolumesNameIsOneHarmlessLine) {
    for (const auto& [name, shown] :
         {std::pair{"<b>A & B</b> %s \\n", "<b>A & B</b> %s \\n"},
          {"a\nb\tc\rd", "a b c d"},
          {"a\xC2\x85 \xE2\x80\xA8 \xE2\x80\xA9z", "a     z"},
          {"a\x1B[31m\x7F\xC2\x9B", "a\uFFFD[31m\uFFFD\uFFFD"},
          {"\u202Egpj.exe\u2069\u200F\u061C", "gpj.exe"},
          {"a\xFF\xC3", "a\uFFFD\uFFFD"},
          {"a\u200B\u2060\uFEFF\u00ADb", "ab"},
          {"a\u0301\u0302\u0303\u0304\u0305\u0306b", "a\u0301\u0302\u0303\u0304b"},
          {"עברית ü 💾", "עברית ü 💾"}})
        EXPECT_EQ(shownVolumeName(name), shown) << name;
    EXPECT_EQ(shownVolumeName(ExternalVolume{.id = {}, .url = "/media/ada/ST\nICK", .name = " \u202E\u200B"}),
              "ST ICK");
}

}  // namespace
}  // namespace norvane

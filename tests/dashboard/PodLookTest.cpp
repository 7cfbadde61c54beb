#include "dashboard/PodLook.h"

#include <gtest/gtest.h>

#include <optional>

#include "insight/HealthySnapshot.h"

namespace norvane {
namespace {

using enum Ink;

TEST(PodLook, ProcessorAndMemoryTurnRedEachWhenItIsCritical) {
    SystemSnapshot now = healthySnapshot();
    now.memoryState = ComponentState::critical;
    EXPECT_EQ(cpuPodColor(&now), green);
    EXPECT_EQ(memoryPodColor(&now), red);
    std::swap(now.cpuState, now.memoryState);
    EXPECT_EQ(cpuPodColor(&now), red);
    EXPECT_EQ(memoryPodColor(&now), purple);
    EXPECT_EQ(cpuPodColor(nullptr), green);
    EXPECT_EQ(memoryPodColor(nullptr), purple);
}

TEST(PodLook, TheDiskIsColouredByTheRoomOnItsBootVolumeThenByHowFullItIs) {
    EXPECT_EQ(storagePodColor(nullptr), blue);
    struct Case {
        const char* name;
        std::optional<double> bootAvailable;  // no boot volume without
        double used, total;
        Ink want;
    };
    for (const Case& c :
         {Case{"nearly nothing left", 9.99, 1, 100, red}, Case{"little left", 10, 99, 100, orange},
          Case{"enough left", 30, 1, 100, green}, Case{"below seven tenths", {}, 69.9, 100, green},
          Case{"seven tenths", {}, 70, 100, yellow}, Case{"nearly full", {}, 85, 100, orange},
          Case{"full", 500, 95, 100, red}, Case{"of a whole that is none", {}, 0.5, 0, green},
          Case{"of one gigabyte", {}, 0.8, 1, yellow}}) {
        SystemSnapshot now = healthySnapshot();
        // One that is nearly full comes first, and does not count.
        now.volumes.assign(2, {});
        now.volumes[0].availableForImportantUsage = 1;
        now.volumes[1].isBootVolume = c.bootAvailable.has_value();
        now.volumes[1].availableForImportantUsage = c.bootAvailable.value_or(1);
        now.usedDiskGB = c.used;
        now.totalDiskGB = c.total;
        EXPECT_EQ(storagePodColor(&now), c.want) << c.name;
    }
}

TEST(PodLook, TheImpactIsColouredByHeatThenByWhatTheBatterySuffers) {
    EXPECT_EQ(batteryPodColor(nullptr), teal);
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
                          Case{fair, false, 5, high, teal}, Case{nominal, true, 15, low, red},
                          Case{nominal, true, 15, high, red}, Case{nominal, true, 16, high, orange},
                          Case{fair, true, 16, moderate, teal}, Case{nominal, true, 100, low, teal}}) {
        SystemSnapshot now = healthySnapshot();
        now.thermalLevel = c.heat;
        now.isOnBattery = c.isOnBattery;
        now.batteryPercentage = c.percentage;
        now.energyImpact = c.impact;
        EXPECT_EQ(batteryPodColor(&now), c.want)
            << rawTextOf(c.heat) << ' ' << c.isOnBattery << ' ' << c.percentage;
    }
}

}  // namespace
}  // namespace norvane

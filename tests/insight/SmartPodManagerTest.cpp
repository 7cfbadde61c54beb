#include "insight/SmartPodManager.h"

#include <gtest/gtest.h>

#include <map>

#include "insight/Combination.h"
#include "insight/HealthySnapshot.h"

namespace norvane {
namespace {

// Each condition by its gravity, 1 the gravest, with the pod that tells about it.
TEST(SmartPodManager, PicksThePodOfTheGravestConditionInEveryCombination) {
    struct Charge {
        bool isOnBattery;
        std::int64_t percentage;
    };
    const std::map<char, Charge> charges = {{'p', {false, 5}}, {'0', {true, 0}},  {'a', {true, 10}},
                                            {'b', {true, 11}}, {'c', {true, 20}}, {'d', {true, 21}}};
    const std::map<char, ThermalLevel> thermalLevels = {{'n', ThermalLevel::nominal},
                                                        {'f', ThermalLevel::fair},
                                                        {'s', ThermalLevel::serious},
                                                        {'c', ThermalLevel::critical}};
    const SmartPodManager manager;
    SystemSnapshot now = healthySnapshot();
    for (unsigned number = 0;; ++number) {
        Combination combination(number);
        const char charge = combination.letter("p0abcd");
        const char thermal = combination.letter("nfsc");
        const char pressure = combination.letter("012345");
        now.isOnBattery = charges.at(charge).isOnBattery;
        now.batteryPercentage = charges.at(charge).percentage;
        now.thermalLevel = thermalLevels.at(thermal);
        now.memoryPressure = pressure - '0';
        now.isMemoryThrashing = combination.flag();
        now.isMemorySwapHigh = combination.flag();
        now.cpuState = combination.flag() ? ComponentState::critical : ComponentState::normal;
        now.isStorageCritical = combination.flag();
        now.isStorageLow = combination.flag();
        now.isStorageHeavyIO = combination.flag();
        if (combination.isBeyondLast()) break;

        std::map<int, std::string> holding;
        if (now.isStorageCritical) holding[1] = "storage";
        if (thermal == 'c') holding[2] = "battery";
        if (charge == '0' || charge == 'a') holding[3] = "battery";
        if (now.isMemoryThrashing) holding[4] = "memory";
        if (pressure == '4') holding[5] = "memory";
        if (now.cpuState == ComponentState::critical) holding[6] = "cpu";
        if (now.isStorageLow) holding[7] = "storage";
        if (thermal == 's') holding[8] = "battery";
        if (charge == 'b' || charge == 'c') holding[9] = "battery";
        if (pressure >= '2') holding[10] = "memory";
        if (now.isMemorySwapHigh) holding[11] = "memory";
        if (now.isStorageHeavyIO) holding[12] = "storage";

        EXPECT_EQ(manager.evaluate(now),
                  holding.empty() ? std::nullopt : std::optional(holding.begin()->second))
            << combination.state();
    }
}

TEST(SmartPodManager, IsNotMovedByMereActivity) {
    const SmartPodManager manager;
    SystemSnapshot now = healthySnapshot();
    EXPECT_EQ(manager.evaluate(now), std::nullopt);
    now.cpuUsagePercent = now.cpuSustained = now.gpuUsage = 100;
    now.memoryState = ComponentState::critical;
    now.energyImpact = ImpactState::high;
    now.batteryHealthCondition = "Service Recommended";
    now.swapUsedGB = 20;
    now.isCPUModerateLoad = now.isGPUSaturated = now.isGPUHigh = now.isGPUActive = true;
    now.isPCoreSaturated = now.isPCoreActive = now.isMemoryHighlyCompressed = true;
    now.isStorageFilling = now.isBatteryWarm = true;
    EXPECT_EQ(manager.evaluate(now), std::nullopt);
}

}  // namespace
}  // namespace norvane

#include <gtest/gtest.h>

#include <map>

#include "insight/Combination.h"
#include "insight/ImpactPod.h"
#include "insight/OpeningRule.h"
#include "insight/SmartPodManager.h"

namespace norvane {
namespace {

using enum SnapshotSection;

// Each condition by its gravity, 1 the gravest, with the pod that tells about it.
TEST(SmartPodManager, PicksThePodOfTheGravestConditionInEveryCombination) {
    const SmartPodManager manager;
    SystemSnapshot now{};
    EXPECT_EQ(manager.evaluate(now), std::nullopt);
    // Mere activity moves nothing.
    now.cpuUsagePercent = now.cpuSustained = now.gpuUsage = 100;
    now.memoryState = ComponentState::critical;
    now.energyImpact = ImpactState::high;
    now.batteryHealthCondition = "Service Recommended";
    now.swapUsedGB = 20;
    now.isCPUModerateLoad = now.isGPUSaturated = now.isPCoreSaturated = now.isMemoryHighlyCompressed = true;
    now.isStorageFilling = now.isBatteryWarm = true;
    for (unsigned number = 0;; ++number) {
        Combination combination(number);
        now.isOnBattery = combination.flag();
        now.batteryPercentage = combination.of("0abcd", {0, 10, 11, 20, 21});
        now.thermalLevel = combination.of("nfsc", {ThermalLevel::nominal, ThermalLevel::fair,
                                                   ThermalLevel::serious, ThermalLevel::critical});
        now.memoryPressure = combination.of("012345", {0, 1, 2, 3, 4, 5});
        now.isMemoryThrashing = combination.flag();
        now.isMemorySwapHigh = combination.flag();
        now.cpuState = combination.flag() ? ComponentState::critical : ComponentState::normal;
        now.isStorageCritical = combination.flag();
        now.isStorageLow = combination.flag();
        now.isStorageHeavyIO = combination.flag();
        if (combination.isBeyondLast()) break;

        std::map<int, std::string> holding;
        if (now.isStorageCritical) holding[1] = "storage";
        if (now.thermalLevel == ThermalLevel::critical) holding[2] = "battery";
        if (now.isOnBattery && now.batteryPercentage <= 10) holding[3] = "battery";
        if (now.isMemoryThrashing) holding[4] = "memory";
        if (now.memoryPressure == 4) holding[5] = "memory";
        if (now.cpuState == ComponentState::critical) holding[6] = "cpu";
        if (now.isStorageLow) holding[7] = "storage";
        if (now.thermalLevel == ThermalLevel::serious) holding[8] = "battery";
        if (now.isOnBattery && now.batteryPercentage <= 20) holding[9] = "battery";
        if (now.memoryPressure >= 2) holding[10] = "memory";
        if (now.isMemorySwapHigh) holding[11] = "memory";
        if (now.isStorageHeavyIO) holding[12] = "storage";
        EXPECT_EQ(manager.evaluate(now),
                  holding.empty() ? std::nullopt : std::optional(holding.begin()->second))
            << combination.state();
    }
}

TEST(OpeningRule, CountsOnlyOpeningsThatWereNotSmartAsTheFirstAndRemembersNoOddPod) {
    const SystemSnapshot calm{};
    SmartPodManager manager;
    OpeningRule rule(manager);
    EXPECT_EQ(rule.open(true, nullptr, "memory"), cpu) << "nothing is known yet";
    EXPECT_EQ(rule.open(true, &calm, "memory"), memory);
    EXPECT_EQ(rule.open(false, &calm, "battery"), cpu);
    EXPECT_EQ(rule.open(true, &calm, "battery"), battery);
    EXPECT_EQ(rule.open(false, &calm, "battery"), battery) << "and that only once";
    for (const bool isSmart : {false, true})
        EXPECT_EQ(rule.open(isSmart, &calm, std::string("storage\0", 8)), cpu);
}

TEST(ImpactPod, TellsTheImpactOnBatteryAndThePlugOtherwise) {
    SystemSnapshot now{};
    now.energyImpact = ImpactState::moderate;
    for (const bool isOnBattery : {false, true}) {
        now.isOnBattery = isOnBattery;
        EXPECT_EQ(impactPodIcon(&now), isOnBattery ? "bolt.circle" : "bolt.circle.fill");
        EXPECT_EQ(impactPodValue(&now), isOnBattery ? "Moderate" : "Plugged In");
    }
    EXPECT_EQ(impactPodIcon(nullptr), "bolt.circle");
    EXPECT_EQ(impactPodValue(nullptr), "\u2014");
}

}  // namespace
}  // namespace norvane

#include "insight/BatteryInsight.h"

#include <gtest/gtest.h>

#include "insight/Combination.h"
#include "insight/HealthySnapshot.h"
#include "insight/InsightTable.h"

namespace norvane {
namespace {

ThermalLevel thermalLevelNamed(char letter) {
    return letter == 's'   ? ThermalLevel::serious
           : letter == 'c' ? ThermalLevel::critical
           : letter == 'f' ? ThermalLevel::fair
                           : ThermalLevel::nominal;
}

std::optional<std::string> conditionNamed(char letter) {
    if (letter == '-') return std::nullopt;
    return letter == 'N' ? "Normal" : "Service Recommended";
}

TEST(BatteryInsight, SaysTheSentenceOfEveryCombination) {
    // Thermal level, P cores and GPU saturated; on battery, charging, warm; charge (critical, low, middling,
    // full), condition, energy impact; memory pressure, swap high, GPU high; low power mode, the processor's
    // kind, its cores in use.
    InsightTable table({
        {{"[sc]1. ... ... ... ...", "[sc]01 ... ... ... ..."},
         "Thermal limit reached.",
         "Heavy compute load is"},
        {{"[sc]00 ... ... ... ..."}, "Thermal limit reached.", "Internal temperatures are high."},
        {{"[nf].. 011 ... ... ..."}, "Active charging.", "Battery is slightly warm, which"},
        {{"[nf].. 010 ... ... ..."}, "Active charging.", "Energy transfer and thermals"},
        {{"[nf].. 00. f.. ... ..."}, "Fully charged.", "The system is operating"},
        {{"[nf].. 00. [clm].. ... ..."}, "Charge on hold.", "macOS is maintaining current"},
        {{"[nf].. 1.. .S. ... ..."}, "Service recommended.", "Battery capacity has noticeably"},
        {{"[nf].. 1.. c[-N]. ... ..."}, "Battery critically low.", "Connect to power immediately to"},
        {{"[nf].. 1.. l[-N]. ... ..."}, "Battery is running low.", "Connect to power soon to avoid"},
        {{"[nf].. 1.. [mf][-N]h [24]1. ..."}, "High energy impact.", "Excessive memory swap is"},
        {{"[nf].. 1.. [mf][-N]h 1.1 ...", "[nf].. 1.. [mf][-N]h [24]01 ..."},
         "High energy impact.",
         "Heavy GPU utilization is"},
        {{"[nf].. 1.. [mf][-N]h 1.0 ...", "[nf].. 1.. [mf][-N]h [24]00 ..."},
         "High energy impact.",
         "Sustained background workloads"},
        {{"[nf].. 1.. [mf][-N][lm] ... 1.."}, "Low Power Mode active.", "macOS is deliberately"},
        {{"[nf].. 1.. [mf][-N][lm] ... 011"}, "Operating optimally.", "macOS is efficiently routing"},
        {{"[nf].. 1.. [mf][-N][lm] ... 00.", "[nf].. 1.. [mf][-N][lm] ... 010"},
         "Battery is healthy.",
         "Compute demand, memory"},
    });
    SystemSnapshot now = healthySnapshot();
    // Every thirteenth of a great many: no number of choices divides it.
    for (unsigned number = 0; !HasFatalFailure(); number += 13) {
        Combination combination(number);
        now.thermalLevel = thermalLevelNamed(combination.letter("nfsc"));
        now.isPCoreSaturated = combination.flag();
        now.isGPUSaturated = combination.flag();
        now.isOnBattery = combination.flag();
        now.isCharging = combination.flag();
        now.isBatteryWarm = combination.flag();
        const char charge = combination.letter("clmf");
        now.batteryPercentage = charge == 'c' ? 10 : charge == 'l' ? 20 : charge == 'm' ? 50 : 100;
        now.batteryHealthCondition = conditionNamed(combination.letter("-NS"));
        const char impact = combination.letter("lmh");
        now.energyImpact = impact == 'l'   ? ImpactState::low
                           : impact == 'm' ? ImpactState::moderate
                                           : ImpactState::high;
        now.memoryPressure = combination.letter("124") - '0';
        now.isMemorySwapHigh = combination.flag();
        now.isGPUHigh = combination.flag();
        const bool isLowPowerModeEnabled = combination.flag();
        now.isAppleSilicon = combination.flag();
        now.isAppleSiliconOptimized = combination.flag();
        if (combination.isBeyondLast()) break;
        table.expect(combination.state(), [&](InsightVerbosity verbosity) {
            return batteryInsightText(&now, isLowPowerModeEnabled, verbosity);
        });
    }
    table.expectAllReached();
    EXPECT_EQ(batteryInsightText(nullptr, true, InsightVerbosity::detailed), "Battery status unavailable.");
}

class BatteryInsightTest : public testing::Test {
 protected:
    std::string_view headline() const { return batteryInsightText(&now_, false, InsightVerbosity::concise); }

    SystemSnapshot now_ = healthySnapshot();
};

TEST_F(BatteryInsightTest, TurnsAtWholePercentages) {
    struct Case {
        bool isOnBattery;
        std::int64_t percentage;
        std::string_view headline;
    };
    now_.isCharging = false;
    now_.batteryHealthCondition = "Normal";
    for (const Case& c : {
             Case{true, 10, "Battery critically low."},
             Case{true, 11, "Battery is running low."},
             Case{true, 20, "Battery is running low."},
             Case{true, 21, "Battery is healthy."},
             Case{false, 99, "Charge on hold."},
             Case{false, 100, "Fully charged."},
         }) {
        now_.isOnBattery = c.isOnBattery;
        now_.batteryPercentage = c.percentage;
        EXPECT_EQ(headline(), c.headline) << c.percentage << (c.isOnBattery ? " on battery" : " on mains");
    }
}

TEST_F(BatteryInsightTest, TakesEveryConditionButNormalForAServiceCase) {
    now_.isOnBattery = true;
    now_.batteryPercentage = 80;
    for (const char* condition : {"normal", "Normal ", "Check Battery"}) {
        now_.batteryHealthCondition = condition;
        EXPECT_EQ(headline(), "Service recommended.") << condition;
    }
    now_.isOnBattery = false;
    EXPECT_NE(headline(), "Service recommended.");
}

}  // namespace
}  // namespace norvane

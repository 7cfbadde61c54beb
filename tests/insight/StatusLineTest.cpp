#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "insight/HealthySnapshot.h"
#include "insight/SteadyStatusLine.h"
#include "insight/SystemStatusText.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// The verdict by its own statement: each condition with its sentence, the earlier one winning.
TEST(SystemStatusText, NamesTheMostSeriousThingFirstInEveryCombination) {
    const SystemSnapshot healthy = healthySnapshot();
    for (unsigned bits = 0; bits < 128; ++bits) {
        const bool serious = (bits & 1) != 0, hot = (bits & 2) != 0, lowBattery = (bits & 4) != 0;
        const bool exhausted = (bits & 8) != 0, critical = (bits & 16) != 0, gpu = (bits & 32) != 0;
        const bool lowPower = (bits & 64) != 0;
        SystemSnapshot now = healthy;
        now.thermalLevel = hot       ? ThermalLevel::critical
                           : serious ? ThermalLevel::serious
                                     : ThermalLevel::fair;
        now.isOnBattery = lowBattery;
        now.batteryPercentage = 15;
        now.memoryPressure = exhausted ? 4 : 2;
        now.isGPUSaturated = gpu;

        const std::pair<bool, const char*> verdicts[] = {{serious && !hot, "System temperature is elevated."},
                                                         {hot, "Thermal limit reached."},
                                                         {lowBattery, "Battery is running low."},
                                                         {exhausted, "Critical memory exhaustion."},
                                                         {critical && gpu, "Critical resource saturation."},
                                                         {critical, "Critical processor load."},
                                                         {lowPower, "Low Power Mode is active."},
                                                         {true, "System is operating optimally"}};
        const auto* first = std::find_if(std::begin(verdicts), std::end(verdicts),
                                         [](const auto& verdict) { return verdict.first; });
        const auto state = critical ? ComponentState::critical : ComponentState::normal;
        EXPECT_TRUE(systemStatusText(&now, state, lowPower).starts_with(first->second))
            << first->second << " at " << bits;
        EXPECT_EQ(systemStatusText(nullptr, state, lowPower), "Initializing system telemetry...");
    }
}

TEST(SystemStatusText, CallsABatteryLowAtFifteenPercentOnBatteryOnly) {
    SystemSnapshot now = healthySnapshot();
    const auto isLow = [&](bool onBattery, std::int64_t percentage) {
        now.isOnBattery = onBattery;
        now.batteryPercentage = percentage;
        return systemStatusText(&now, ComponentState::normal, false).substr(0, 7) == "Battery";
    };
    EXPECT_TRUE(isLow(true, 15));
    EXPECT_FALSE(isLow(true, 16));
    EXPECT_FALSE(isLow(false, 5));
}

TEST(SystemStatusText, CallsMemoryExhaustedFromTheKernelsCriticalLevelUp) {
    SystemSnapshot now = healthySnapshot();
    for (std::int64_t pressure = 0; pressure <= 5; ++pressure) {
        now.memoryPressure = pressure;
        const auto text = systemStatusText(&now, ComponentState::normal, false);
        EXPECT_EQ(text.starts_with("Critical memory exhaustion."), pressure >= 4) << pressure;
    }
}

class SteadyStatusLineTest : public testing::Test {
 protected:
    ScriptedMachine machine_;
    int changes_ = 0;
    SteadyStatusLine line_{machine_.dispatch.mainQueue(), [this] { ++changes_; }};
};

TEST_F(SteadyStatusLineTest, LetsAVerdictThroughThatHasHeldForThreeSeconds) {
    line_.open("A");
    EXPECT_EQ(line_.stableStatusText(), "A");
    line_.observe("B");
    machine_.advance(2s);
    line_.observe("B");  // the same verdict at another evaluation restarts nothing
    machine_.advance(999ms);
    EXPECT_EQ(line_.stableStatusText(), "A");
    machine_.advance(1ms);
    EXPECT_EQ(line_.stableStatusText(), "B");
    EXPECT_EQ(changes_, 1);
}

TEST_F(SteadyStatusLineTest, RestartsTheWaitWithEachChange) {
    line_.open("A");
    line_.observe("B");
    machine_.advance(2s);
    line_.observe("C");
    machine_.advance(2900ms);
    EXPECT_EQ(line_.stableStatusText(), "A");
    machine_.advance(100ms);
    EXPECT_EQ(line_.stableStatusText(), "C");

    line_.observe("D");
    machine_.advance(1s);
    line_.observe("C");  // gone and back
    machine_.advance(10s);
    EXPECT_EQ(line_.stableStatusText(), "C");
    EXPECT_EQ(changes_, 1) << "writing what is there is no change";

    for (int i = 0; i < 20; ++i) {
        line_.observe(i % 2 == 0 ? "E" : "F");
        machine_.advance(2s);
        EXPECT_EQ(line_.stableStatusText(), "C") << "a flickering verdict never shows";
    }
}

TEST_F(SteadyStatusLineTest, AnOpeningForgetsWhatWasWaitedForBefore) {
    line_.open("A");
    line_.observe("B");
    machine_.advance(2s);
    line_.open("C");
    line_.observe("B");  // seen before the opening, but new to this one
    machine_.advance(2999ms);
    EXPECT_EQ(line_.stableStatusText(), "C");
    machine_.advance(1ms);
    EXPECT_EQ(line_.stableStatusText(), "B");
}

}  // namespace
}  // namespace norvane

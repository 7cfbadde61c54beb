#include "telemetry/BatteryReader.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "platform/scripted/ScriptedPowerSources.h"
#include "platform/scripted/ScriptedRegistry.h"

namespace norvane {
namespace {

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

class BatteryReaderTest : public testing::Test {
 protected:
    void setBatteries(ScriptedRegistry::Services services) {
        registry_.services(RegistryService::AppleSmartBattery).always(std::move(services));
    }
    CachedBattery readOf(PropertyDictionary properties) {
        setBatteries({{RegistryEntry(std::move(properties)), RegistryEntry({{"CycleCount", 1}})}});
        return reader_.refreshBattery({1});
    }

    ScriptedRegistry registry_;
    ScriptedPowerSources sources_;
    BatteryReader reader_{registry_, sources_};
};

TEST_F(BatteryReaderTest, TakesTheFirstBatteryAndTheGaugesOwnFiguresAndKeepsNothing) {
    sources_.sources.always(
        {{PropertyDictionary{{"BatteryHealthCondition", "Normal"}, {"Time to Empty", 135}}}});
    EXPECT_EQ(readOf({{"DesignCapacity", 5'100.9},
                      {"AppleRawMaxCapacity", 4'800},
                      {"MaxCapacity", 100},
                      {"AppleRawCurrentCapacity", 2'400},
                      {"CurrentCapacity", 50},
                      {"CycleCount", 1e300},
                      {"Temperature", 3'055.5},
                      {"IsCharging", false}}),
              (CachedBattery{5'100, 4'800, 2'400, kHighest, 30.555, "Normal", true, 50, "2h 15m remaining",
                             false, true}));
    sources_.sources.always(std::nullopt);
    EXPECT_EQ(readOf({{"DesignCapacity", true},
                      {"AppleRawMaxCapacity", "full"},
                      {"MaxCapacity", 5'000},
                      {"CurrentCapacity", 4'321},
                      {"CycleCount", "312"},
                      {"Temperature", kNoNumber},
                      {"ExternalConnected", 2},
                      {"IsCharging", 0}}),
              (CachedBattery{{}, 5'000, 4'321, {}, {}, {}, false, 86, "—", true, true}));
    for (const PropertyValue& connected : {PropertyValue(false), PropertyValue(0), PropertyValue("true")})
        EXPECT_TRUE(readOf({{"ExternalConnected", connected}}).isOnBattery);
    setBatteries({{RegistryEntry::unreadable()}});
    EXPECT_EQ(reader_.refreshBattery({2}),
              (CachedBattery{{}, {}, {}, {}, {}, {}, true, 100, "—", true, true}));
}

TEST_F(BatteryReaderTest, AMachineWithoutABatteryIsFullAndOnTheMains) {
    CachedBattery desktop{{}, {}, {}, {}, {}, {}, false, 100, "—", true, false};
    setBatteries(std::nullopt);
    EXPECT_EQ(reader_.refreshBattery({1}), desktop);
    // What a power supply without a battery says is worth a text, and no more.
    setBatteries(std::vector<RegistryEntry>{});
    sources_.sources.always({{PropertyDictionary{{"BatteryHealthCondition", "Normal"}}}});
    desktop.timeRemaining = "Fully Charged";
    EXPECT_EQ(reader_.refreshBattery({1}), desktop);
}

TEST_F(BatteryReaderTest, TakesTheChargeFromThePlainPairAndCutsIt) {
    const auto percentageOf = [this](PropertyValue current, PropertyValue max) {
        return readOf({{"CurrentCapacity", current}, {"MaxCapacity", max}, {"AppleRawMaxCapacity", 3}})
            .percentage;
    };
    EXPECT_EQ(percentageOf(29, 100), 28);
    EXPECT_EQ(percentageOf(110, 100), 110);
    EXPECT_EQ(percentageOf(-29, 100), -28);
    EXPECT_EQ(percentageOf(kHighest, 1), kHighest);
    for (const PropertyValue& odd : {PropertyValue(0), PropertyValue("100"), PropertyValue(kNoNumber)})
        EXPECT_EQ(percentageOf(50, odd), 100);
}

TEST_F(BatteryReaderTest, TheFirstUsableDescriptionTellsTheConditionWhichIsAText) {
    const auto conditionOf = [this](PropertyValue first) {
        sources_.sources.always({{std::nullopt, PropertyDictionary{{"BatteryHealthCondition", first}},
                                  PropertyDictionary{{"BatteryHealthCondition", "Normal"}}}});
        return readOf({}).condition;
    };
    EXPECT_EQ(conditionOf("\xFFold"), "\uFFFDold");
    EXPECT_EQ(conditionOf(""), std::nullopt);
    EXPECT_EQ(conditionOf(7), std::nullopt);
}

TEST_F(BatteryReaderTest, TellsTheTimeThatRemains) {
    const auto remaining = [this](bool isOnBattery, std::int64_t percentage, PropertyDictionary description) {
        sources_.sources.always({{std::nullopt, std::move(description)}});
        return reader_.batteryTimeRemaining({1}, isOnBattery, percentage);
    };
    const std::string toEmpty = "Time to Empty", toFull = "Time to Full Charge", charged = "Is Charged";
    EXPECT_EQ(remaining(true, 50, {{toEmpty, 59}, {toFull, 95}}), "59m remaining");
    EXPECT_EQ(remaining(true, 100, {{charged, true}, {toEmpty, 135}}), "2h 15m remaining");
    EXPECT_EQ(remaining(false, 100, {{charged, false}, {toFull, 5}}), "Fully Charged");
    EXPECT_EQ(remaining(false, 80, {{charged, true}, {toFull, 5}}), "Fully Charged");
    EXPECT_EQ(remaining(false, 80, {{toFull, 61}, {toEmpty, 30}}), "Full in 1h 1m");
    EXPECT_EQ(remaining(false, 80, {{charged, 1}, {toFull, 60}}), "Full in 1h");
    EXPECT_EQ(remaining(true, 50, {{toEmpty, -1}}), "Estimating…");
    EXPECT_EQ(remaining(true, 50, {{toFull, 95}}), "Estimating…");
    EXPECT_EQ(remaining(false, 50, {{toFull, "30"}}), "Estimating…");
}

}  // namespace
}  // namespace norvane

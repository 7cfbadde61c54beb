#include "telemetry/BatteryReader.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "platform/scripted/ScriptedPowerSources.h"
#include "platform/scripted/ScriptedRegistry.h"
#include "telemetry/BatteryMinutes.h"

namespace norvane {
namespace {

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

class BatteryReaderTest : public testing::Test {
 protected:
    using Services = ScriptedRegistry::Services;
    using Sources = ScriptedPowerSources::Sources;

    void setBatteries(Services services) {
        registry_.services(RegistryService::AppleSmartBattery).always(std::move(services));
    }
    void setBattery(PropertyDictionary properties) {
        setBatteries(Services({RegistryEntry(std::move(properties))}));
    }
    void setSources(Sources sources) { sources_.sources.always(std::move(sources)); }

    ScriptedRegistry registry_;
    ScriptedPowerSources sources_;
    BatteryReader reader_{registry_, sources_};
};

TEST_F(BatteryReaderTest, TakesTheHardwareFromTheRegistry) {
    const auto read = [this](PropertyDictionary properties) {
        setBattery(std::move(properties));
        return reader_.readBatteryRegistry({1});
    };
    using Reading = BatteryReader::RegistryReading;
    EXPECT_EQ(read({{"DesignCapacity", 5'100},
                    {"AppleRawMaxCapacity", 4'800},
                    {"MaxCapacity", 100},
                    {"AppleRawCurrentCapacity", 2'400},
                    {"CurrentCapacity", 50},
                    {"CycleCount", 312},
                    {"Temperature", 3'055},
                    {"ExternalConnected", true}}),
              (Reading{5'100, 4'800, 2'400, 312, 30.55, false}));
    EXPECT_EQ(read({{"AppleRawMaxCapacity", "full"}, {"MaxCapacity", 5'000}, {"CurrentCapacity", 4'321}}),
              (Reading{{}, 5'000, 4'321, {}, {}, true}))
        << "without figures of the gauge's own that are numbers";
    EXPECT_EQ(read({{"DesignCapacity", 5'100.9}, {"CycleCount", 1e300}, {"Temperature", 3'055.5}}),
              (Reading{5'100, {}, {}, kHighest, 30.555, true}));
    EXPECT_EQ(read({{"DesignCapacity", true}, {"CycleCount", "312"}, {"Temperature", kNoNumber}}),
              (Reading{{}, {}, {}, {}, {}, true}));
    // A number is connected by its truth, and anything else is not.
    for (const auto& [value, isConnected] :
         std::vector<std::pair<PropertyValue, bool>>{{false, false}, {2, true}, {0, false}, {"true", false}})
        EXPECT_EQ(read({{"ExternalConnected", value}}), (Reading{{}, {}, {}, {}, {}, !isConnected}));
}

TEST_F(BatteryReaderTest, TakesTheChargeFromThePlainPair) {
    struct Case {
        PropertyValue current, max;
        std::int64_t want;
    };
    for (const Case& c : {Case{4'321, 5'000, 86},
                          {29, 100, 28},
                          {110, 100, 110},
                          {-29, 100, -28},
                          {50, 0, 100},
                          {50, -1, 100},
                          {"50", 100, 100},
                          {50, kNoNumber, 100},
                          {kHighest, 1, kHighest}}) {
        setBattery({{"CurrentCapacity", c.current},
                    {"MaxCapacity", c.max},
                    {"AppleRawCurrentCapacity", 1},
                    {"AppleRawMaxCapacity", 3}});
        EXPECT_EQ(reader_.readBatteryPower({1}).percentage, c.want);
    }
}

TEST_F(BatteryReaderTest, IsChargingUnlessTheBatterySaysOtherwise) {
    for (const auto& [properties, want] : std::vector<std::pair<PropertyDictionary, bool>>{
             {{{"IsCharging", false}}, false}, {{{"IsCharging", 0}}, true}, {{}, true}}) {
        setBattery(properties);
        EXPECT_EQ(reader_.readBatteryPower({1}).isCharging, want);
        EXPECT_TRUE(reader_.readBatteryPower({1}).hasBattery);
    }
}

TEST_F(BatteryReaderTest, TheFirstUsableDescriptionTellsTheCondition) {
    const auto condition = [](PropertyValue value) {
        return PropertyDictionary{{"BatteryHealthCondition", value}};
    };
    setBattery(PropertyDictionary());
    for (const auto& [sources, want] : std::vector<std::pair<Sources, std::optional<std::string>>>{
             {{{std::nullopt, condition("Poor"), condition("Normal")}}, "Poor"},
             {{{PropertyDictionary(), condition("Normal")}}, std::nullopt},
             {{{condition("")}}, std::nullopt},
             {{{condition(7)}}, std::nullopt},
             {{{condition("\xFFold")}}, "\uFFFDold"},
             {{{std::nullopt}}, std::nullopt},
             {std::vector<PowerSourceDescription>{}, std::nullopt},
             {std::nullopt, std::nullopt}}) {
        setSources(sources);
        EXPECT_EQ(reader_.readBatteryPower({1}).condition, want);
    }
}

TEST_F(BatteryReaderTest, TellsTheTimeThatRemains) {
    const auto remaining = [this](bool isOnBattery, std::int64_t percentage, PropertyDictionary description) {
        setSources({{std::nullopt, std::move(description)}});
        return reader_.batteryTimeRemaining({1}, isOnBattery, percentage);
    };
    constexpr const char* kToEmpty = "Time to Empty";
    constexpr const char* kToFull = "Time to Full Charge";
    EXPECT_EQ(remaining(true, 50, {{kToEmpty, 30}, {kToFull, 95}}), "30m remaining");
    EXPECT_EQ(remaining(true, 0, {{kToEmpty, 0}}), "0m remaining");
    EXPECT_EQ(remaining(true, 100, {{"Is Charged", true}, {kToEmpty, 135}}), "2h 15m remaining");
    EXPECT_EQ(remaining(false, 100, {{"Is Charged", false}, {kToFull, 5}}), "Fully Charged");
    EXPECT_EQ(remaining(false, 80, {{"Is Charged", true}, {kToFull, 5}}), "Fully Charged");
    EXPECT_EQ(remaining(false, 80, {{kToFull, 95}, {kToEmpty, 30}}), "Full in 1h 35m");
    EXPECT_EQ(remaining(false, 80, {{"Is Charged", 1}, {kToFull, 120}}), "Full in 2h");
    const std::string estimating = "Estimating…";
    EXPECT_EQ(remaining(true, 50, {{kToEmpty, -1}}), estimating);
    EXPECT_EQ(remaining(false, 50, {{kToFull, -1}}), estimating);
    EXPECT_EQ(remaining(true, 50, {{kToFull, 95}}), estimating);
    EXPECT_EQ(remaining(false, 50, {{kToEmpty, 95}}), estimating);
    EXPECT_EQ(remaining(true, 50, {{kToEmpty, 30.5}}), estimating);
    EXPECT_EQ(remaining(false, 50, {{kToFull, "30"}}), estimating);
    for (const Sources& none : {Sources(), {std::vector<PowerSourceDescription>{}}, {{std::nullopt}}}) {
        setSources(none);
        EXPECT_EQ(reader_.batteryTimeRemaining({1}, false, 100), "—");
    }
}

TEST_F(BatteryReaderTest, WritesMinutesAsPeopleReadThem) {
    for (const auto& [minutes, want] :
         {std::pair{0, "0m"}, {59, "59m"}, {60, "1h"}, {61, "1h 1m"}, {120, "2h"}})
        EXPECT_EQ(formatBatteryMinutes(minutes), want);
}

TEST_F(BatteryReaderTest, AMachineWithoutABatteryIsFullAndOnTheMains) {
    CachedBattery desktop{{}, {}, {}, {}, {}, {}, false, 100, "—", true, false};
    for (const Services& none : {Services(), {std::vector<RegistryEntry>{}}}) {
        setBatteries(none);
        EXPECT_EQ(reader_.refreshBattery({1}), desktop);
    }
    // What a power supply without a battery says is worth a text, and no more.
    setSources({{PropertyDictionary{{"BatteryHealthCondition", "Normal"}}}});
    desktop.timeRemaining = "Fully Charged";
    EXPECT_EQ(reader_.refreshBattery({1}), desktop);
}

TEST_F(BatteryReaderTest, ARefreshTakesTheFirstBatteryAndKeepsNothingOfTheOneBefore) {
    setSources({{PropertyDictionary{{"BatteryHealthCondition", "Normal"}, {"Time to Empty", 135}}}});
    setBatteries(Services({RegistryEntry({{"DesignCapacity", 5'100},
                                          {"MaxCapacity", 5'000},
                                          {"CurrentCapacity", 2'500},
                                          {"CycleCount", 312},
                                          {"Temperature", 3'055},
                                          {"IsCharging", false}}),
                           RegistryEntry({{"CycleCount", 1}})}));
    EXPECT_EQ(reader_.refreshBattery({1}), (CachedBattery{5'100, 5'000, 2'500, 312, 30.55, "Normal", true, 50,
                                                          "2h 15m remaining", false, true}));
    setBatteries(Services({RegistryEntry::unreadable()}));
    setSources(std::nullopt);
    EXPECT_EQ(reader_.refreshBattery({2}),
              (CachedBattery{{}, {}, {}, {}, {}, {}, true, 100, "—", true, true}));
}

}  // namespace
}  // namespace norvane

#include "telemetry/BatteryReader.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "platform/scripted/ScriptedPowerSources.h"
#include "platform/scripted/ScriptedRegistry.h"
#include "telemetry/BatteryMinutes.h"

namespace norvane {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

class BatteryReaderTest : public testing::Test {
 protected:
    void setBattery(ScriptedRegistry::Services services) {
        registry_.services(RegistryService::AppleSmartBattery).always(std::move(services));
    }
    void setBattery(PropertyDictionary properties) {
        setBattery(ScriptedRegistry::Services({RegistryEntry(std::move(properties))}));
    }
    void setSources(ScriptedPowerSources::Sources sources) { sources_.sources.always(std::move(sources)); }
    std::string timeText(bool isOnBattery, std::int64_t percentage, PropertyDictionary description) {
        setSources({{std::nullopt, std::move(description)}});
        return reader_.batteryTimeRemaining({1}, isOnBattery, percentage);
    }

    ScriptedRegistry registry_;
    ScriptedPowerSources sources_;
    BatteryReader reader_{registry_, sources_};
};

TEST_F(BatteryReaderTest, TakesTheHardwareFromTheRegistry) {
    using Reading = BatteryReader::RegistryReading;
    struct Case {
        const char* name;
        PropertyDictionary properties;
        Reading want;
    };
    for (const Case& c : {
             Case{"all of it",
                  {{"DesignCapacity", 5'100},
                   {"AppleRawMaxCapacity", 4'800},
                   {"MaxCapacity", 100},
                   {"AppleRawCurrentCapacity", 2'400},
                   {"CurrentCapacity", 50},
                   {"CycleCount", 312},
                   {"Temperature", 3'055},
                   {"ExternalConnected", true}},
                  Reading{5'100, 4'800, 2'400, 312, 30.55, false}},
             Case{"without the gauge's own figures",
                  {{"MaxCapacity", 5'000}, {"CurrentCapacity", 4'321}},
                  Reading{{}, 5'000, 4'321, {}, {}, true}},
             Case{"own figures that are no numbers",
                  {{"AppleRawMaxCapacity", "full"},
                   {"MaxCapacity", 5'000},
                   {"AppleRawCurrentCapacity", kNaN},
                   {"CurrentCapacity", 4'321}},
                  Reading{{}, 5'000, 4'321, {}, {}, true}},
             Case{"fractions",
                  {{"DesignCapacity", 5'100.9}, {"CycleCount", 1e300}, {"Temperature", 3'055.5}},
                  Reading{5'100, {}, {}, kHighest, 30.555, true}},
             Case{"not numbers",
                  {{"DesignCapacity", true}, {"CycleCount", "312"}, {"Temperature", kNaN}},
                  Reading{{}, {}, {}, {}, {}, true}},
             Case{"on battery", {{"ExternalConnected", false}}, Reading{{}, {}, {}, {}, {}, true}},
             Case{"a number by its truth", {{"ExternalConnected", 2}}, Reading{{}, {}, {}, {}, {}, false}},
             Case{"zero by its truth", {{"ExternalConnected", 0}}, Reading{{}, {}, {}, {}, {}, true}},
             Case{"anything else is no", {{"ExternalConnected", "true"}}, Reading{{}, {}, {}, {}, {}, true}},
         }) {
        setBattery(c.properties);
        EXPECT_EQ(reader_.readBatteryRegistry({1}), c.want) << c.name;
    }
}

TEST_F(BatteryReaderTest, TakesTheChargeFromThePlainPair) {
    struct Case {
        PropertyValue current, max;
        std::int64_t want;
    };
    for (const Case& c : {Case{4'321, 5'000, 86},
                          {49, 50, 98},
                          {29, 100, 28},
                          {100, 100, 100},
                          {110, 100, 110},
                          {-29, 100, -28},
                          {50, 0, 100},
                          {50, -1, 100},
                          {"50", 100, 100},
                          {50, kNaN, 100},
                          {kHighest, 1, kHighest}}) {
        setBattery({{"CurrentCapacity", c.current},
                    {"MaxCapacity", c.max},
                    {"AppleRawCurrentCapacity", 1},
                    {"AppleRawMaxCapacity", 3}});
        EXPECT_EQ(reader_.readBatteryPower({1}).percentage, c.want);
    }
}

TEST_F(BatteryReaderTest, IsChargingUnlessTheBatterySaysOtherwise) {
    for (const auto& [properties, want] :
         std::vector<std::pair<PropertyDictionary, bool>>{{{{"IsCharging", false}}, false},
                                                          {{{"IsCharging", true}}, true},
                                                          {{{"IsCharging", 0}}, true},
                                                          {{}, true}}) {
        setBattery(properties);
        EXPECT_EQ(reader_.readBatteryPower({1}).isCharging, want);
        EXPECT_TRUE(reader_.readBatteryPower({1}).hasBattery);
    }
}

TEST_F(BatteryReaderTest, TheFirstUsableDescriptionTellsTheCondition) {
    using Sources = ScriptedPowerSources::Sources;
    const auto condition = [](PropertyValue value) {
        return PropertyDictionary{{"BatteryHealthCondition", value}};
    };
    setBattery(PropertyDictionary());
    for (const auto& [sources, want] : std::vector<std::pair<Sources, std::optional<std::string>>>{
             {{{condition("Normal")}}, "Normal"},
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
    struct Case {
        const char* name;
        bool isOnBattery;
        std::int64_t percentage;
        PropertyDictionary description;
        const char* want;
    };
    constexpr const char* kToEmpty = "Time to Empty";
    constexpr const char* kToFull = "Time to Full Charge";
    for (const Case& c : {
             Case{"discharging", true, 50, {{kToEmpty, 30}, {kToFull, 95}}, "30m remaining"},
             Case{"empty", true, 0, {{kToEmpty, 0}}, "0m remaining"},
             Case{"full and charged on battery",
                  true,
                  100,
                  {{"Is Charged", true}, {kToEmpty, 135}},
                  "2h 15m remaining"},
             Case{"full on the mains", false, 100, {{"Is Charged", false}, {kToFull, 5}}, "Fully Charged"},
             Case{"more than full", false, 104, {}, "Fully Charged"},
             Case{"charged below full", false, 80, {{"Is Charged", true}, {kToFull, 5}}, "Fully Charged"},
             Case{"charging",
                  false,
                  80,
                  {{"Is Charged", false}, {kToFull, 95}, {kToEmpty, 30}},
                  "Full in 1h 35m"},
             Case{"charged is no Boolean", false, 80, {{"Is Charged", 1}, {kToFull, 120}}, "Full in 2h"},
             Case{"estimating the discharge", true, 50, {{kToEmpty, -1}}, "Estimating…"},
             Case{"estimating the charge", false, 50, {{kToFull, -1}}, "Estimating…"},
             Case{"no time to empty", true, 50, {{kToFull, 95}}, "Estimating…"},
             Case{"no time to full", false, 50, {{kToEmpty, 95}}, "Estimating…"},
             Case{"a fraction", true, 50, {{kToEmpty, 30.5}}, "Estimating…"},
             Case{"a text", false, 50, {{kToFull, "30"}}, "Estimating…"},
         }) {
        EXPECT_EQ(timeText(c.isOnBattery, c.percentage, c.description), c.want) << c.name;
    }
    for (const ScriptedPowerSources::Sources& none :
         {ScriptedPowerSources::Sources(), {std::vector<PowerSourceDescription>{}}, {{std::nullopt}}}) {
        setSources(none);
        EXPECT_EQ(reader_.batteryTimeRemaining({1}, true, 50), "—");
        EXPECT_EQ(reader_.batteryTimeRemaining({1}, false, 100), "—");
    }
}

TEST_F(BatteryReaderTest, WritesMinutesAsPeopleReadThem) {
    struct Case {
        std::int64_t minutes;
        const char* want;
    };
    for (const Case& c :
         {Case{0, "0m"}, {45, "45m"}, {59, "59m"}, {60, "1h"}, {61, "1h 1m"}, {120, "2h"}, {135, "2h 15m"}})
        EXPECT_EQ(formatBatteryMinutes(c.minutes), c.want);
}

TEST_F(BatteryReaderTest, AMachineWithoutABatteryIsFullAndOnTheMains) {
    CachedBattery desktop{{}, {}, {}, {}, {}, {}, false, 100, "—", true, false};
    for (const ScriptedRegistry::Services& none :
         {ScriptedRegistry::Services(), {std::vector<RegistryEntry>{}}}) {
        setBattery(none);
        EXPECT_EQ(reader_.refreshBattery({1}), desktop);
    }
    // What a power supply without a battery says is worth a text, and no more.
    setSources({{PropertyDictionary{{"BatteryHealthCondition", "Normal"}}}});
    desktop.timeRemaining = "Fully Charged";
    EXPECT_EQ(reader_.refreshBattery({1}), desktop);
}

TEST_F(BatteryReaderTest, ARefreshKeepsNothingOfTheOneBefore) {
    setSources({{PropertyDictionary{{"BatteryHealthCondition", "Normal"}, {"Time to Empty", 135}}}});
    setBattery(ScriptedRegistry::Services({RegistryEntry({{"DesignCapacity", 5'100},
                                                          {"MaxCapacity", 5'000},
                                                          {"CurrentCapacity", 2'500},
                                                          {"CycleCount", 312},
                                                          {"Temperature", 3'055},
                                                          {"IsCharging", false}}),
                                           RegistryEntry({{"CycleCount", 1}})}));
    EXPECT_EQ(reader_.refreshBattery({1}), (CachedBattery{5'100, 5'000, 2'500, 312, 30.55, "Normal", true, 50,
                                                          "2h 15m remaining", false, true}))
        << "the first battery alone";
    setBattery(ScriptedRegistry::Services({RegistryEntry::unreadable()}));
    setSources(std::nullopt);
    EXPECT_EQ(reader_.refreshBattery({2}),
              (CachedBattery{{}, {}, {}, {}, {}, {}, true, 100, "—", true, true}));
}

}  // namespace
}  // namespace norvane

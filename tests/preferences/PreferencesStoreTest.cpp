#include <gtest/gtest.h>

#include <cmath>

#include "platform/scripted/ScriptedMachine.h"
#include "preferences/PreferencesStore.h"
#include "preferences/StoredValue.h"

namespace norvane {
namespace {

// All keys, with values that are not the defaults.
const std::vector<std::pair<std::string, DefaultsValue>> kStored{{"temperatureUnit", "fahrenheit"},
                                                                 {"menuBarIconMode", "on"},
                                                                 {"isSmartAutoExpandEnabled", false},
                                                                 {"insightVerbosity", "concise"},
                                                                 {"sustainedLoadNotificationsEnabled", true},
                                                                 {"storageAlertEnabled", true},
                                                                 {"storageAlertThresholdGB", 42.5},
                                                                 {"batteryAlertEnabled", true},
                                                                 {"batteryAlertThresholdPct", 7.0}};

// A key of the store is a promise to every user who has one already.
TEST(PreferencesStore, WritesAtOnceUnderItsKeysAndTellsObserversOncePerTurn) {
    ScriptedMachine machine;
    ScriptedUserDefaults& defaults = machine.userDefaults;
    PreferencesStore prefs(defaults);
    int told = 0;
    const Cancellation observing = prefs.observe([&] { ++told; });
    prefs.setTemperatureUnit(TemperatureUnit::fahrenheit);
    prefs.setMenuBarIconMode(MenuBarIconMode::on);
    prefs.setIsSmartAutoExpandEnabled(false);
    prefs.setInsightVerbosity(InsightVerbosity::concise);
    prefs.setSustainedLoadNotificationsEnabled(true);
    prefs.setStorageAlertEnabled(true);
    prefs.setStorageAlertThresholdGB(42.5);
    prefs.setBatteryAlertEnabled(true);
    prefs.setBatteryAlertThresholdPct(7);
    EXPECT_EQ(told, 0) << "never while it writes";
    machine.settle();
    EXPECT_EQ(told, 1);
    for (const auto& [key, value] : kStored)
        EXPECT_EQ(defaults.objectForKey(key), value) << key;
    EXPECT_EQ(defaults.written.size(), kStored.size());
}

TEST(PreferencesStore, HasItsDefaultsAlsoForGarbageWhichItDoesNotRewrite) {
    ScriptedMachine machine;
    ScriptedUserDefaults& defaults = machine.userDefaults;
    const PreferencesStore prefs(defaults);
    const auto expectDefaults = [&] {
        EXPECT_EQ(prefs.temperatureUnit(), TemperatureUnit::celsius);
        EXPECT_EQ(prefs.menuBarIconMode(), MenuBarIconMode::stats);
        EXPECT_TRUE(prefs.isSmartAutoExpandEnabled());
        EXPECT_EQ(prefs.insightVerbosity(), InsightVerbosity::detailed);
        EXPECT_EQ(prefs.storageAlertThresholdGB(), 20.0);
        EXPECT_EQ(prefs.batteryAlertThresholdPct(), 15.0);
        EXPECT_FALSE(prefs.sustainedLoadNotificationsEnabled() || prefs.storageAlertEnabled() ||
                     prefs.batteryAlertEnabled());
    };
    expectDefaults();
    for (const DefaultsValue& garbage :
         {DefaultsValue("dancing"), DefaultsValue(NAN), DefaultsValue("1e999")}) {
        for (const auto& [key, value] : kStored)
            defaults.changeFromOutside(key, garbage);
        expectDefaults();
    }
    EXPECT_TRUE(defaults.written.empty());
}

TEST(PreferencesStore, CarriesTheLegacySwitchOverOnce) {
    constexpr auto on = MenuBarIconMode::on, stats = MenuBarIconMode::stats;
    for (const auto& [legacy, want] : std::vector<std::pair<std::optional<DefaultsValue>, MenuBarIconMode>>{
             {std::nullopt, on}, {false, stats}, {true, on}, {0.0, stats}, {"?", stats}}) {
        ScriptedMachine machine;
        ScriptedUserDefaults& defaults = machine.userDefaults;
        defaults.changeFromOutside("menuBarIconMode", "on");
        if (legacy) defaults.changeFromOutside("isDynamicMenuBarEnabled", *legacy);
        for (int start = 1; start <= 2; ++start) {
            EXPECT_EQ(PreferencesStore(defaults).menuBarIconMode(), want);
            EXPECT_EQ(defaults.written.size(), want == on ? 0U : 1U) << "start " << start;
            EXPECT_EQ(defaults.removed.size(), legacy ? 1U : 0U) << "start " << start;
        }
    }
}

TEST(StoredValue, MeansSomethingOnlyOfItsType) {
    struct Case {
        DefaultsValue stored;
        std::optional<bool> asBool;
        std::optional<double> asNumber;
    };
    for (const Case& c :
         {Case{true, true, {}}, Case{1.0, true, 1.0}, Case{0.0, false, 0.0}, Case{2.0, {}, 2.0},
          Case{-INFINITY, {}, {}}, Case{"1", true, 1.0}, Case{"+12.50", {}, 12.5}, Case{"-.5e2", {}, -50.0},
          Case{"5.", {}, 5.0}, Case{"true", {}, {}}, Case{"", {}, {}}, Case{".", {}, {}}, Case{"1,5", {}, {}},
          Case{" 1", {}, {}}, Case{"0x10", {}, {}}, Case{"1e", {}, {}}, Case{"1e-400", false, 0.0},
          Case{"nan", {}, {}}, Case{"1e400", {}, {}}}) {
        const std::string* const text = std::get_if<std::string>(&c.stored);
        const std::string name = text != nullptr ? *text : "no text";
        EXPECT_EQ(storedBool(c.stored), c.asBool) << name;
        EXPECT_EQ(storedNumber(c.stored), c.asNumber) << name;
        EXPECT_EQ(storedText(c.stored).has_value(), text != nullptr) << name;
    }
}

}  // namespace
}  // namespace norvane

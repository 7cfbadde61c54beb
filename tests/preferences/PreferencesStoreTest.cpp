#include <gtest/gtest.h>

#include <cmath>

#include "platform/scripted/ScriptedMachine.h"
#include "preferences/DefaultsKeys.h"
#include "preferences/PreferencesStore.h"
#include "preferences/StoredValue.h"

namespace norvane {
namespace {

TEST(PreferencesStore, AFreshUserHasTheDefaults) {
    ScriptedMachine machine;
    ScriptedUserDefaults& defaults = machine.userDefaults;
    const PreferencesStore prefs(defaults);
    EXPECT_EQ(prefs.temperatureUnit(), TemperatureUnit::celsius);
    EXPECT_EQ(prefs.menuBarIconMode(), MenuBarIconMode::stats);
    EXPECT_TRUE(prefs.isSmartAutoExpandEnabled());
    EXPECT_EQ(prefs.insightVerbosity(), InsightVerbosity::detailed);
    EXPECT_FALSE(prefs.sustainedLoadNotificationsEnabled());
    EXPECT_FALSE(prefs.storageAlertEnabled());
    EXPECT_EQ(prefs.storageAlertThresholdGB(), 20.0);
    EXPECT_FALSE(prefs.batteryAlertEnabled());
    EXPECT_EQ(prefs.batteryAlertThresholdPct(), 15.0);
    EXPECT_TRUE(defaults.written.empty()) << "reading stores nothing";
}

TEST(PreferencesStore, WritesAtOnceUnderItsKeysAndTellsObservers) {
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
    EXPECT_EQ(told, 1) << "once for all of one turn";
    prefs.setBatteryAlertThresholdPct(7);
    machine.settle();
    EXPECT_EQ(told, 2);
    defaults.written.pop_back();

    const PreferencesStore again(defaults);
    EXPECT_EQ(again.temperatureUnit(), TemperatureUnit::fahrenheit);
    EXPECT_EQ(again.menuBarIconMode(), MenuBarIconMode::on);
    EXPECT_FALSE(again.isSmartAutoExpandEnabled());
    EXPECT_EQ(again.insightVerbosity(), InsightVerbosity::concise);
    EXPECT_TRUE(again.sustainedLoadNotificationsEnabled());
    EXPECT_TRUE(again.storageAlertEnabled());
    EXPECT_EQ(again.storageAlertThresholdGB(), 42.5);
    EXPECT_TRUE(again.batteryAlertEnabled());
    EXPECT_EQ(again.batteryAlertThresholdPct(), 7);
    EXPECT_EQ(defaults.written,
              (std::vector<std::string>{"temperatureUnit", "menuBarIconMode", "isSmartAutoExpandEnabled",
                                        "insightVerbosity", "sustainedLoadNotificationsEnabled",
                                        "storageAlertEnabled", "storageAlertThresholdGB",
                                        "batteryAlertEnabled", "batteryAlertThresholdPct"}));
    EXPECT_EQ(defaults.objectForKey("menuBarIconMode"), DefaultsValue(std::string("on")));
    EXPECT_EQ(defaults.objectForKey("temperatureUnit"), DefaultsValue(std::string("fahrenheit")));
    EXPECT_EQ(defaults.objectForKey("insightVerbosity"), DefaultsValue(std::string("concise")));
}

TEST(PreferencesStore, SeesWhatIsChangedFromOutsideAndFallsBackOnGarbageWithoutRewritingIt) {
    ScriptedMachine machine;
    ScriptedUserDefaults& defaults = machine.userDefaults;
    const PreferencesStore prefs(defaults);
    defaults.changeFromOutside("menuBarIconMode", std::string("on"));
    EXPECT_EQ(prefs.menuBarIconMode(), MenuBarIconMode::on);
    for (const DefaultsValue& garbage :
         {DefaultsValue(std::string("dancing")), DefaultsValue(1.0), DefaultsValue(true)}) {
        defaults.changeFromOutside("menuBarIconMode", garbage);
        EXPECT_EQ(prefs.menuBarIconMode(), MenuBarIconMode::stats);
    }
    for (const DefaultsValue& garbage :
         {DefaultsValue(NAN), DefaultsValue(INFINITY), DefaultsValue(std::string("inf")),
          DefaultsValue(std::string("1e999")), DefaultsValue(false)}) {
        defaults.changeFromOutside("storageAlertThresholdGB", garbage);
        EXPECT_EQ(prefs.storageAlertThresholdGB(), 20.0);
    }
    EXPECT_TRUE(defaults.written.empty());
}

TEST(PreferencesStore, CarriesTheLegacySwitchOverOnce) {
    struct Case {
        const char* name;
        std::optional<DefaultsValue> legacy;
        std::vector<std::string> wantWritten, wantRemoved;
    };
    const std::vector<std::string> gone{"isDynamicMenuBarEnabled"};
    for (const Case& c :
         {Case{"missing", std::nullopt, {}, {}}, Case{"off", DefaultsValue(false), {"menuBarIconMode"}, gone},
          Case{"on", DefaultsValue(true), {}, gone},
          Case{"off as 0", DefaultsValue(0.0), {"menuBarIconMode"}, gone},
          Case{"no Bool", DefaultsValue(std::string("?")), {"menuBarIconMode"}, gone}}) {
        ScriptedMachine machine;
        ScriptedUserDefaults& defaults = machine.userDefaults;
        defaults.changeFromOutside("menuBarIconMode", std::string("on"));
        if (c.legacy) defaults.changeFromOutside("isDynamicMenuBarEnabled", *c.legacy);
        const PreferencesStore prefs(defaults);
        EXPECT_EQ(defaults.written, c.wantWritten) << c.name;
        EXPECT_EQ(defaults.removed, c.wantRemoved) << c.name;
        EXPECT_EQ(prefs.menuBarIconMode(),
                  c.wantWritten.empty() ? MenuBarIconMode::on : MenuBarIconMode::stats)
            << c.name;
        const PreferencesStore second(defaults);
        EXPECT_EQ(defaults.written, c.wantWritten) << c.name << ": a second start does nothing";
        EXPECT_EQ(defaults.removed, c.wantRemoved) << c.name;
    }
}

TEST(StoredValue, MeansSomethingOnlyOfItsType) {
    struct Case {
        DefaultsValue stored;
        std::optional<bool> asBool;
        std::optional<double> asNumber;
        std::optional<std::string> asText;
    };
    const auto text = [](const char* t) { return DefaultsValue(std::string(t)); };
    int row = 0;
    for (const Case& c :
         {Case{true, true, {}, {}}, Case{1.0, true, 1.0, {}}, Case{0.0, false, 0.0, {}},
          Case{2.0, {}, 2.0, {}}, Case{-INFINITY, {}, {}, {}}, Case{text("1"), true, 1.0, "1"},
          Case{text("+12.50"), {}, 12.5, "+12.50"}, Case{text("-.5e2"), {}, -50.0, "-.5e2"},
          Case{text("5."), {}, 5.0, "5."}, Case{text("true"), {}, {}, "true"}, Case{text(""), {}, {}, ""},
          Case{text("."), {}, {}, "."}, Case{text("1,5"), {}, {}, "1,5"}, Case{text(" 1"), {}, {}, " 1"},
          Case{text("0x10"), {}, {}, "0x10"}, Case{text("1e"), {}, {}, "1e"},
          Case{text("1e-400"), false, 0.0, "1e-400"}, Case{text("nan"), {}, {}, "nan"},
          Case{text("1e400"), {}, {}, "1e400"}}) {
        EXPECT_EQ(storedBool(c.stored), c.asBool) << row;
        EXPECT_EQ(storedNumber(c.stored), c.asNumber) << row;
        EXPECT_EQ(storedText(c.stored), c.asText) << row;
        ++row;
    }
}

}  // namespace
}  // namespace norvane

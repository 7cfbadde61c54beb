#include <cmath>

#include "platform/linux/DefaultsFile.h"
#include "platform/scripted/ScriptedDispatch.h"
#include "platform/scripted/ScriptedUserDefaults.h"
#include "preferences/DefaultsKeys.h"
#include "preferences/PreferencesStore.h"
#include "preferences/StoredValue.h"
#include "Property.h"

namespace norvane {
namespace {

struct Choices {
    TemperatureUnit temperatureUnit;
    MenuBarIconMode menuBarIconMode;
    bool isSmartAutoExpandEnabled;
    InsightVerbosity insightVerbosity;
    bool sustainedLoadNotificationsEnabled;
    bool storageAlertEnabled;
    double storageAlertThresholdGB;
    bool batteryAlertEnabled;
    double batteryAlertThresholdPct;

    bool operator==(const Choices&) const = default;
};

Choices choicesIn(const PreferencesStore& store) {
    return {store.temperatureUnit(),
            store.menuBarIconMode(),
            store.isSmartAutoExpandEnabled(),
            store.insightVerbosity(),
            store.sustainedLoadNotificationsEnabled(),
            store.storageAlertEnabled(),
            store.storageAlertThresholdGB(),
            store.batteryAlertEnabled(),
            store.batteryAlertThresholdPct()};
}

void choose(PreferencesStore& store, const Choices& choices) {
    store.setTemperatureUnit(choices.temperatureUnit);
    store.setMenuBarIconMode(choices.menuBarIconMode);
    store.setIsSmartAutoExpandEnabled(choices.isSmartAutoExpandEnabled);
    store.setInsightVerbosity(choices.insightVerbosity);
    store.setSustainedLoadNotificationsEnabled(choices.sustainedLoadNotificationsEnabled);
    store.setStorageAlertEnabled(choices.storageAlertEnabled);
    store.setStorageAlertThresholdGB(choices.storageAlertThresholdGB);
    store.setBatteryAlertEnabled(choices.batteryAlertEnabled);
    store.setBatteryAlertThresholdPct(choices.batteryAlertThresholdPct);
}

// A bare number and the same digits as a text mean the same.
void checkValue(const DefaultsValue& value) {
    const auto number = storedNumber(value);
    require(!number || std::isfinite(*number), "a stored number is finite");
    const auto truth = storedBool(value);
    require(!truth || std::holds_alternative<bool>(value) || number == (*truth ? 1.0 : 0.0),
            "a truth value is one, or 0 or 1");
    require(storedText(value).has_value() == std::holds_alternative<std::string>(value), "a text is a text");
    if (number) {
        const DefaultsMap again = parseDefaults(rewriteDefaults({}, {{"number", *number}}));
        require(again.size() == 1 && storedNumber(again.begin()->second) == number,
                "a stored number is read back to the last bit");
    }
}

void check(std::string_view text) {
    ScriptedTime time;
    ScriptedLoop loop(time);
    ScriptedDispatch dispatch(loop);
    ScriptedUserDefaults defaults(dispatch.mainQueue());
    for (const auto& [key, value] : parseDefaults(text)) {
        checkValue(value);
        defaults.changeFromOutside(key, value);
    }

    const bool hadLegacy = defaults.objectForKey(defaultskey::kLegacyIsDynamicMenuBarEnabled).has_value();
    PreferencesStore store(defaults);
    require(!defaults.objectForKey(defaultskey::kLegacyIsDynamicMenuBarEnabled),
            "what an earlier version stored is gone");
    require(hadLegacy || (defaults.written.empty() && defaults.removed.empty()), "reading writes nothing");

    const Choices choices = choicesIn(store);
    require(static_cast<std::size_t>(choices.temperatureUnit) < 2 &&
                static_cast<std::size_t>(choices.menuBarIconMode) < 2 &&
                static_cast<std::size_t>(choices.insightVerbosity) < 2,
            "a choice is one of those that there are");
    require(std::isfinite(choices.storageAlertThresholdGB) && std::isfinite(choices.batteryAlertThresholdPct),
            "thresholds are finite");

    defaults.written.clear();
    const PreferencesStore another(defaults);
    require(defaults.written.empty() && choicesIn(another) == choices, "carrying over happens once");
    choose(store, choices);
    require(choicesIn(store) == choices, "what was chosen is read back");
}

}  // namespace
}  // namespace norvane

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    norvane::check(norvane::textOf(data, size));
    return 0;
}

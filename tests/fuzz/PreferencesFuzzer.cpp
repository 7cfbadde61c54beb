#include <cmath>
#include <tuple>

#include "platform/linux/DefaultsFile.h"
#include "platform/scripted/ScriptedDispatch.h"
#include "platform/scripted/ScriptedUserDefaults.h"
#include "preferences/DefaultsKeys.h"
#include "preferences/PreferencesStore.h"
#include "preferences/StoredValue.h"
#include "Property.h"

namespace norvane {
namespace {

// All that can be chosen.
auto choicesIn(const PreferencesStore& store) {
    return std::tuple(store.temperatureUnit(), store.menuBarIconMode(), store.insightVerbosity(),
                      store.isSmartAutoExpandEnabled(), store.sustainedLoadNotificationsEnabled(),
                      store.storageAlertEnabled(), store.storageAlertThresholdGB(),
                      store.batteryAlertEnabled(), store.batteryAlertThresholdPct());
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

}  // namespace

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

    const auto choices = choicesIn(store);
    require(static_cast<std::size_t>(store.temperatureUnit()) < 2 &&
                static_cast<std::size_t>(store.menuBarIconMode()) < 2 &&
                static_cast<std::size_t>(store.insightVerbosity()) < 2,
            "a choice is one of those that there are");
    require(std::isfinite(store.storageAlertThresholdGB()) && std::isfinite(store.batteryAlertThresholdPct()),
            "thresholds are finite");

    defaults.written.clear();
    const PreferencesStore another(defaults);
    require(defaults.written.empty() && choicesIn(another) == choices, "carrying over happens once");
    store.setTemperatureUnit(store.temperatureUnit());
    store.setMenuBarIconMode(store.menuBarIconMode());
    store.setInsightVerbosity(store.insightVerbosity());
    store.setStorageAlertThresholdGB(store.storageAlertThresholdGB());
    store.setBatteryAlertThresholdPct(store.batteryAlertThresholdPct());
    require(choicesIn(store) == choices && choicesIn(PreferencesStore(defaults)) == choices,
            "what was chosen is read back");
}

}  // namespace norvane

#include "preferences/PreferencesStore.h"

#include <string>
#include <string_view>
#include <utility>

#include "preferences/DefaultsKeys.h"
#include "preferences/StoredValue.h"

namespace norvane {
namespace {

bool read(const UserDefaults& defaults, std::string_view key, bool fallback) {
    const auto stored = defaults.objectForKey(key);
    return stored ? storedBool(*stored).value_or(fallback) : fallback;
}

double read(const UserDefaults& defaults, std::string_view key, double fallback) {
    const auto stored = defaults.objectForKey(key);
    return stored ? storedNumber(*stored).value_or(fallback) : fallback;
}

template <typename Enumeration>
requires std::is_enum_v<Enumeration> Enumeration read(const UserDefaults& defaults, std::string_view key,
                                                      Enumeration fallback) {
    const auto stored = defaults.objectForKey(key);
    const auto text = stored ? storedText(*stored) : std::nullopt;
    return text ? fromRawText<Enumeration>(*text).value_or(fallback) : fallback;
}

// An earlier version had one switch for the label. Off became the label's mode; on is today's default.
void migrate(UserDefaults& defaults) {
    const auto legacy = defaults.objectForKey(defaultskey::kLegacyIsDynamicMenuBarEnabled);
    if (!legacy) return;
    // What is no Bool reads as false, as the store's own Bool reading does.
    if (!storedBool(*legacy).value_or(false)) {
        defaults.setObject(defaultskey::kMenuBarIconMode, std::string(rawTextOf(MenuBarIconMode::stats)));
    }
    defaults.removeObjectForKey(defaultskey::kLegacyIsDynamicMenuBarEnabled);
}

}  // namespace

PreferencesStore::PreferencesStore(UserDefaults& defaults) : defaults_(defaults) {
    migrate(defaults_);
}

TemperatureUnit PreferencesStore::temperatureUnit() const {
    return read(defaults_, defaultskey::kTemperatureUnit, TemperatureUnit::celsius);
}
void PreferencesStore::setTemperatureUnit(TemperatureUnit unit) {
    defaults_.setObject(defaultskey::kTemperatureUnit, std::string(rawTextOf(unit)));
}

MenuBarIconMode PreferencesStore::menuBarIconMode() const {
    return read(defaults_, defaultskey::kMenuBarIconMode, MenuBarIconMode::stats);
}
void PreferencesStore::setMenuBarIconMode(MenuBarIconMode mode) {
    defaults_.setObject(defaultskey::kMenuBarIconMode, std::string(rawTextOf(mode)));
}

bool PreferencesStore::isSmartAutoExpandEnabled() const {
    return read(defaults_, defaultskey::kIsSmartAutoExpandEnabled, true);
}
void PreferencesStore::setIsSmartAutoExpandEnabled(bool enabled) {
    defaults_.setObject(defaultskey::kIsSmartAutoExpandEnabled, enabled);
}

InsightVerbosity PreferencesStore::insightVerbosity() const {
    return read(defaults_, defaultskey::kInsightVerbosity, InsightVerbosity::detailed);
}
void PreferencesStore::setInsightVerbosity(InsightVerbosity verbosity) {
    defaults_.setObject(defaultskey::kInsightVerbosity, std::string(rawTextOf(verbosity)));
}

bool PreferencesStore::sustainedLoadNotificationsEnabled() const {
    return read(defaults_, defaultskey::kSustainedLoadNotificationsEnabled, false);
}
void PreferencesStore::setSustainedLoadNotificationsEnabled(bool enabled) {
    defaults_.setObject(defaultskey::kSustainedLoadNotificationsEnabled, enabled);
}

bool PreferencesStore::storageAlertEnabled() const {
    return read(defaults_, defaultskey::kStorageAlertEnabled, false);
}
void PreferencesStore::setStorageAlertEnabled(bool enabled) {
    defaults_.setObject(defaultskey::kStorageAlertEnabled, enabled);
}

double PreferencesStore::storageAlertThresholdGB() const {
    return read(defaults_, defaultskey::kStorageAlertThresholdGB, 20.0);
}
void PreferencesStore::setStorageAlertThresholdGB(double gigabytes) {
    defaults_.setObject(defaultskey::kStorageAlertThresholdGB, gigabytes);
}

bool PreferencesStore::batteryAlertEnabled() const {
    return read(defaults_, defaultskey::kBatteryAlertEnabled, false);
}
void PreferencesStore::setBatteryAlertEnabled(bool enabled) {
    defaults_.setObject(defaultskey::kBatteryAlertEnabled, enabled);
}

double PreferencesStore::batteryAlertThresholdPct() const {
    return read(defaults_, defaultskey::kBatteryAlertThresholdPct, 15.0);
}
void PreferencesStore::setBatteryAlertThresholdPct(double percent) {
    defaults_.setObject(defaultskey::kBatteryAlertThresholdPct, percent);
}

Cancellation PreferencesStore::observe(std::function<void()> observer) const {
    return defaults_.onDidChange(std::move(observer));
}

}  // namespace norvane

#pragma once

#include <string_view>

namespace norvane {

// The keys of the defaults store: the settled storage format.
namespace defaultskey {

inline constexpr std::string_view kTemperatureUnit = "temperatureUnit";
inline constexpr std::string_view kMenuBarIconMode = "menuBarIconMode";
inline constexpr std::string_view kIsSmartAutoExpandEnabled = "isSmartAutoExpandEnabled";
inline constexpr std::string_view kInsightVerbosity = "insightVerbosity";
inline constexpr std::string_view kSustainedLoadNotificationsEnabled = "sustainedLoadNotificationsEnabled";
inline constexpr std::string_view kStorageAlertEnabled = "storageAlertEnabled";
inline constexpr std::string_view kStorageAlertThresholdGB = "storageAlertThresholdGB";
inline constexpr std::string_view kBatteryAlertEnabled = "batteryAlertEnabled";
inline constexpr std::string_view kBatteryAlertThresholdPct = "batteryAlertThresholdPct";
// Written by an earlier version, removed at start-up.
inline constexpr std::string_view kLegacyIsDynamicMenuBarEnabled = "isDynamicMenuBarEnabled";

}  // namespace defaultskey

}  // namespace norvane

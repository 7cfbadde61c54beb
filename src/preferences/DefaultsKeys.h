#pragma once

#include <string_view>

// The keys of the defaults store, all there are: the storage format.
namespace norvane::defaultskey {

inline constexpr std::string_view kTemperatureUnit = "temperatureUnit";
inline constexpr std::string_view kMenuBarIconMode = "menuBarIconMode";
inline constexpr std::string_view kIsSmartAutoExpandEnabled = "isSmartAutoExpandEnabled";
inline constexpr std::string_view kInsightVerbosity = "insightVerbosity";
inline constexpr std::string_view kSustainedLoadNotificationsEnabled = "sustainedLoadNotificationsEnabled";
inline constexpr std::string_view kStorageAlertEnabled = "storageAlertEnabled";
inline constexpr std::string_view kStorageAlertThresholdGB = "storageAlertThresholdGB";
inline constexpr std::string_view kBatteryAlertEnabled = "batteryAlertEnabled";
inline constexpr std::string_view kBatteryAlertThresholdPct = "batteryAlertThresholdPct";
// A raw value of the pods' names: the pod that the user opened last. Written by the dashboard.
inline constexpr std::string_view kLastViewedPod = "lastViewedPod";
// Whether the welcome has been gone through. Written by the shell.
inline constexpr std::string_view kHasSeenWelcome = "hasSeenWelcome";
// Written by an earlier version, removed at start-up.
inline constexpr std::string_view kLegacyIsDynamicMenuBarEnabled = "isDynamicMenuBarEnabled";

}  // namespace norvane::defaultskey

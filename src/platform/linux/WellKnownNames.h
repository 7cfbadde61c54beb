#pragma once

namespace norvane {

// What several of us ask for on a bus: the bus itself and what every object may have, and
// the desktop's portal (XDG Desktop Portal).
inline constexpr const char* kBusDriver = "org.freedesktop.DBus";
inline constexpr const char* kBusDriverPath = "/org/freedesktop/DBus";
inline constexpr const char* kPropertiesInterface = "org.freedesktop.DBus.Properties";
inline constexpr const char* kPortalName = "org.freedesktop.portal.Desktop";
inline constexpr const char* kPortalPath = "/org/freedesktop/portal/desktop";

}  // namespace norvane

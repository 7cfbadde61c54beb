#pragma once

#include <string_view>

namespace norvane {

// What a settings manager says that concerns us ("XSETTINGS" of freedesktop.org).
struct XSettings {
    // Gtk/EnableAnimations is 0.
    bool reducesMotion = false;
    // Gtk/ApplicationPreferDarkTheme is not 0, or the theme's name ends as those of dark themes do.
    bool isDark = false;

    bool operator==(const XSettings&) const = default;
};

// From the manager's property. Any bytes may be given: those that are cut off, or not what the protocol says,
// say nothing. Settings of other types than theirs are passed over.
XSettings parseXSettings(std::string_view bytes);

}  // namespace norvane

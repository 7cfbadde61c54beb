#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

namespace norvane {

// What the administrator has told the desktop about a mount, in options that the kernel never sees.
struct DesktopMountOptions {
    // "x-gvfs-hide": not to be shown.
    bool hide = false;
    // "x-gvfs-show": to be shown wherever it is mounted.
    bool show = false;

    bool operator==(const DesktopMountOptions&) const = default;
};

// By mount point, from the text of /run/mount/utab, where mount(8) keeps the options of user space. The last
// line about a mount point counts.
std::unordered_map<std::string, DesktopMountOptions> parseUtab(std::string_view text);

}  // namespace norvane
